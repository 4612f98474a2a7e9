// Saved data of the solid families, and what their routines work with
// besides the archive and the nodal motion.
#pragma once

#include <cstdint>

#include "continuum/continuum_state.hpp"
#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"

namespace respcore {

struct SolidState {
  // SOLID_STRAIN_TIME: the elastic matrix of the element (left as the
  // inverse leaves it, which is what a material type without a matrix of
  // its own then starts from) and its inverse, kept for the element's later
  // steps.
  Mat<double> DD{"DD", 6, 6};
  Mat<double> DD_INV{"DD_INV", 6, 6};
};

// The parts of the kernel state the solid routines use: the diagnostics, the
// current element's material, the continuum kit's carried values and the
// solids' saved data. Made by the entry from its kernel state.
struct SolidContext {
  Diagnostics& diag;
  ElementMaterial& material;
  ContinuumState& continuum;
  SolidState& solid;
};

}  // namespace respcore
