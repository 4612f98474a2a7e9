// The history routines of the plane and plate families, called by the
// entry's dispatch on ELEM_TYPE. Each leaves its rows in TDSP, one column per
// step (REQUEST_MODE 1) or per listed item. The node, line and solid
// families are declared with their subsystems (nodal/node_results.hpp,
// line/line_element.hpp, solid/solid_histories.hpp).
#pragma once

#include <cstdint>

#include "archive/section_access.hpp"
#include "continuum/continuum_state.hpp"
#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"
#include "nodal/nodal_motion.hpp"
#include "plane/plane_state.hpp"
#include "plate/plate_state.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"

namespace respcore {

using ItemList = VecRef<int32_t>;

// The parts of the kernel state that the plane and plate histories use
// besides the run context, the archive and the nodal motion.
struct ContinuumParts {
  Diagnostics& diag;
  ElementMaterial& material;
  ContinuumState& continuum;
  PlaneState& plane;
  PlateState& plate;
};

// Plane stress and plane strain (ELEM_TYPE 1, 2).
void PSTR_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
               ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG,
               VecRef<double> EL_ANGLE);
// Plate (ELEM_TYPE 3), and its general-section form under the tag "J.W.U".
void PLAT_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
               ItemList INUM_SERIAL, ItemList INUM_ELEMNT, VecRef<double> EL_ANGLE);
void PLAT_TIME_GNRL(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                    Tdsp& TDSP, ItemList INUM_SERIAL);
// High-order plane stress and plane strain (ELEM_TYPE 5, 6).
void PLANE_STRESS_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                       Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT);
void PLANE_STRAIN_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                       Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG);
// High-order plate (ELEM_TYPE 7), and its general-section form.
void PLATE_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
                ItemList INUM_SERIAL, ItemList INUM_ELEMNT);
void PLATE_HIGH_GNRL(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                     Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT);

}  // namespace respcore
