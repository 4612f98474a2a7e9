// Elements left out at the start of a staged history and activated later
// with the displacements their nodes already had: the run's table of them,
// the question whether an element is one, and its stored initial state.
#pragma once

#include <cstdint>

#include "archive/section_access.hpp"
#include "core/arrays.hpp"
#include "nodal/nodal_state.hpp"

namespace respcore {

// Element kinds of the table.
inline constexpr int32_t INACTIVE_KIND_TRUSS = 1;
inline constexpr int32_t INACTIVE_KIND_BEAM = 2;
inline constexpr int32_t INACTIVE_KIND_WALL_BEAM = 41;

// Fills the inactive-element tables from sections IASI and IASE.
void READ_INFORM_INITIAL(ArchiveReader A, InactiveTables& T);

// FLAG := 1 if ELEMENT of KIND is listed and the case has inactive elements.
void CHECK_INACTIVE_ELEM(InactiveTables& T, int32_t kind, int32_t element, int32_t hist_case,
                         int32_t& flag);

// DISP_INIT(i) := the stored initial displacement of equation LM(i).
void DISP_EQUATION_INITIAL(ArchiveReader A, VecRef<double> DISP_INIT, int32_t NDOF,
                           VecRef<int32_t> LM);

// Releases the tables at the end of a call.
void release_inactive_tables(InactiveTables& T);

}  // namespace respcore
