// One node over all steps: the REQUEST_MODE 1 form of the node results.
#pragma once

#include <cstdint>

#include "run/histories.hpp"

namespace respcore {

struct KernelState;

// Leaves row RESULT_COMP of the node INUM_ELEMNT(1) in TDSP: in node axes
// (or its skew system), relative to INUM_ELEMNT(2) for STEP_NO 3, absolute
// with the ground motion for STEP_NO 2.
void node_history_over_steps(KernelState& K, Tdsp& TDSP, ItemList INUM_ELEMNT, int32_t NCOLS,
                             int32_t RESULT_KIND, int32_t AXIS_FLAG);

}  // namespace respcore
