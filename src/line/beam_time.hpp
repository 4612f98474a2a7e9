// Two-node beams and wall beams: the change of local axis convention applied
// to a step's rows, and the pieces both histories share.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "run/tdsp.hpp"

namespace respcore {

struct KernelState;

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
// the section (HIST_CASE, ID_S) of the second file, one column per list
// position. Returns false (and leaves RST_INITIAL empty) when the case has
// no such section.
bool read_initial_forces(KernelState& K, int32_t ID_S, int32_t NVAL, VecRef<int32_t> INUM_SERIAL,
                         Mat<double>& RST_INITIAL);

// Takes the initial displacement of a late-activated element off its
// displacements, or, when the case's histories live in direct file 1, sets
// them all to zero.
void remove_initial_state(KernelState& K, int32_t kind, int32_t serial, int32_t NEQ,
                          VecRef<int32_t> LM, Vec<double>& DISP_INIT, Mat<double>& DISP_EQ);

// Rows 1..34 of SSIG to TDSP: column s per step under REQUEST_MODE 1,
// otherwise the first step's rows to column P.
void deliver_rows(KernelState& K, Tdsp& TDSP, Mat<double>& SSIG, int64_t p);

}  // namespace line_detail

}  // namespace respcore
