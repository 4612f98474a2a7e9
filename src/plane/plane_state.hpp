// Saved data of the plane families: what their routines keep from one
// element, step or call to the next, held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct PlaneState {};

}  // namespace respcore
