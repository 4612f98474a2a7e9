// Shared storage of the line-element routines: element records and the
// arrays that keep their contents from one element (or call) to the next.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct LineState {
  // Truss record buffer and its initial-displacement work array.
  Vec<double> TRUSS_SA{"SA", 1250};
  Vec<double> TRUSS_DISP_INIT{"DISP_INIT", 100};
};

}  // namespace respcore
