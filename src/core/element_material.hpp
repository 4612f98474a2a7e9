// The current element's material, filled from the archive's material records
// and, for plates, the section values.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct ElementMaterial {
  double MAT_YOUNG = 0.0;
  double MAT_POISSON = 0.0;
  double PLATE_PROP[11] = {};  // plate section values, right behind the first two
  int32_t MAT_TYPE = 0;
  double MAT_VALS[9] = {};

  VecRef<double> plate_prop() { return VecRef<double>(PLATE_PROP, 11, "PLATE_PROP"); }
  VecRef<double> mat_vals() { return VecRef<double>(MAT_VALS, 9, "MAT_VALS"); }
};

}  // namespace respcore
