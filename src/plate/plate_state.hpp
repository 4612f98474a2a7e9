// Saved data of the plate families and their constitutive matrices: what the
// routines keep between calls, held in the kernel state.
#pragma once

#include <cstdint>
#include <memory>

#include "core/arrays.hpp"

namespace respcore {

struct PlateSaved;  // plate/plate_histories.hpp

struct PlateState {
  // Section data of the current plate element, set by the plate history
  // driver and read by the constitutive routines.
  int32_t SCALE_FLAG = 0;        // 1 when the section carries stiffness factors
  double SCALE_FACTOR[8] = {};   // membrane x, y, xy; bending x, y, xy; shear x, y
  double SECT_ANGLE = 0.0;       // material axes on the element, radians (negated when scaled)
  double SECT_ANGLE_COPY = 0.0;  // refreshed by CHECK_PLATE_DMATRIX_TRANSFORM
  int32_t SECT_ORTHO = 0;        // 1 when the section itself is orthotropic

  VecRef<double> scale_factor() { return VecRef<double>(SCALE_FACTOR, 8, "SCALE_FACTOR"); }

  // PLATE_STIFF_SCALE_MOD: first factor index of the last call, reused when
  // a call names no known matrix type.
  int32_t SCALE_INDEX = 0;

  // Material coordinate block read by GET_COORD: the coordinate type word,
  // the nine direction values behind it and the assignment word.
  double COORD_TYPE = 0.0;
  double COORD_VALS[9] = {};
  int32_t COORD_ASSIGNED = 0;

  // What the plate histories keep between the steps of an element and from
  // one element to the next (the formulations' set-ups, the last stress
  // blocks), made by the first plate history that runs.
  std::unique_ptr<PlateSaved> saved;
  PlateState();
  ~PlateState();
};

}  // namespace respcore
