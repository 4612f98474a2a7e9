// What the plate constitutive and formulation routines read and keep besides
// their own saved data: the diagnostics of the kernel, the current element's
// material and section, the section data that the plate driver sets per
// element, and the values the in-plane material routine carries from one
// element to the next. Made by the driver from its kernel state.
#pragma once

#include "continuum/continuum_state.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"
#include "plate/plate_state.hpp"

namespace respcore {

struct PlateContext {
  Diagnostics& diag;
  const ElementMaterial& mat;
  PlateState& plate;
  PlaneCompliance& compliance;
};

}  // namespace respcore
