// Saved data of the solid families: what the routines keep between calls
// (their static locals in the original design), held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct SolidState {};

}  // namespace respcore
