// The line elements: truss, beam and wall beam. The beam and the wall beam
// are one routine driven by the layout of their record; the three share the
// initial end forces, the treatment of late-activated elements and the
// delivery of their rows.
#pragma once

#include <cstdint>

#include "archive/section_access.hpp"
#include "core/arrays.hpp"
#include "line/line_state.hpp"
#include "nodal/nodal_motion.hpp"
#include "nodal/nodal_state.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"

namespace respcore {

using ItemList = VecRef<int32_t>;

// Truss, beam, wall beam (ELEM_TYPE 12, 13, 14): the rows of each listed
// element into TDSP.
void TRUSS_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
                LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL);
void BEAM_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
               LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL);
void WBEAM_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
                LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL);

// In place on SIG(1..26): each force or moment triple (a, b, c) of rows
// 1..12 becomes (a, -c, b); rows 14 and 15 are exchanged and rows 16..19
// negated (end i section factors); rows 21 and 22 are exchanged and rows
// 23..26 negated (end j). Rows 13 and 20 stay.
void MODFLOC(VecRef<double> SIG);

// The wall beam's form: the same four triples; rows 20 and 21 exchanged,
// 22..25 negated; rows 33 and 34 exchanged, 35..38 negated. Rows 26..32 stay.
void WMODFLOC(VecRef<double> SIG);

namespace line_detail {

// Initial end forces of the listed elements: NVAL doubles per element from
// section NAME of the case, one column per list position. Returns false (and
// leaves RST_INITIAL empty) when the case has no such section.
bool read_initial_forces(const RunContext& R, ArchiveReader A, const SectionName& name,
                         int32_t NVAL, ItemList INUM_SERIAL, Mat<double>& RST_INITIAL);

// Takes the initial displacement of a late-activated element off its
// displacements, or, when the case's histories live in direct file 1, sets
// them all to zero.
void remove_initial_state(const RunContext& R, ArchiveReader A, InactiveTables& IT,
                          int32_t kind, int32_t serial, int32_t NEQ, VecRef<int32_t> LM,
                          Vec<double>& DISP_INIT, Mat<double>& DISP_EQ);

}  // namespace line_detail

}  // namespace respcore
