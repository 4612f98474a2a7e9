// The solid histories, called by the entry's dispatch on ELEM_TYPE. Each
// leaves its rows in TDSP, one column per step (REQUEST_MODE 1) or per item.
#pragma once

#include <cstdint>

#include "archive/section_access.hpp"
#include "nodal/nodal_motion.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"
#include "solid/solid_state.hpp"

namespace respcore {

using ItemList = VecRef<int32_t>;

// Solid (ELEM_TYPE 4): 4-node tetrahedron, 5-node pyramid, 6-node wedge,
// 8-node hexahedron.
void SOLID_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, SolidContext& C,
                Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                int32_t AXIS_FLAG);

// High-order solid (ELEM_TYPE 8): 10-node tetrahedron, 13-node pyramid,
// 15-node wedge, 20-node hexahedron.
void SOLID_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, SolidContext& C,
                Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                int32_t AXIS_FLAG);

}  // namespace respcore
