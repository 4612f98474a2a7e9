// Saved data of the solid families: what the routines keep between calls
// (their static locals in the original design), held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct SolidState {
  // SOLID_STRAIN_TIME: the elastic matrix of the element (left as the
  // inverse leaves it, which is what a material type without a matrix of
  // its own then starts from) and its inverse, kept for the element's later
  // steps.
  Mat<double> DD{"DD", 6, 6};
  Mat<double> DD_INV{"DD_INV", 6, 6};
};

}  // namespace respcore
