// The kernel state: everything one kernel keeps, one plain struct per shared
// block of the system. It is assembled here, above every subsystem, and only
// the entry takes it whole: it hands each routine the parts that routine
// uses. Two states never share anything.
#pragma once

#include "archive/archive_state.hpp"
#include "archive/section_access.hpp"
#include "continuum/continuum_state.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"
#include "line/line_state.hpp"
#include "nodal/nodal_motion.hpp"
#include "nodal/nodal_state.hpp"
#include "plane/plane_state.hpp"
#include "plate/plate_state.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"
#include "solid/solid_state.hpp"

namespace respcore {

struct KernelState {
  RunContext run;
  ArchiveState archive;
  UnitTable units;
  ElementMaterial ELEM_MATERIAL;
  InactiveTables inactive;
  NodeSkew skew;
  NodalState nodal;
  LineState line;
  ContinuumState continuum;
  PlateState plate;
  SolidState solid;
  PlaneState plane;

  // The result store of the current call (made per call; small rows keep
  // their memory for the next one).
  Tdsp TDSP{"TDSP", 0};

  // Lines written to standard output by the current call, and the element
  // message sink (unit 78).
  Diagnostics diag;

  // The parts as the routines take them.
  ArchiveReader reader() { return ArchiveReader(archive, units, diag); }
  SolidContext solids() { return SolidContext{diag, ELEM_MATERIAL, continuum, solid}; }
};

}  // namespace respcore
