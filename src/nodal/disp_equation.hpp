// The one door through which the element histories get nodal motion: the
// displacement of each of an element's equations for every requested step,
// from modal or direct storage, with support motion, and optionally turned
// into the nodes' own axes.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct KernelState;

// DISP_EQ(NDOF, NUM_STEPS) := displacement of element dof i at step column j.
// Unless NO_TRANSFORM is 1, DISP_NO gets the same in node axes (rows grouped
// six per node).
void DISP_EQUATION(KernelState& K, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                   int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                   int32_t NO_TRANSFORM);

// Reads the node-transform record of NODE (K + 21 doubles at first - 1 + NODE)
// into the kernel's TEMP and builds the 6x6 upper triangle T from it.
void read_node_transform(KernelState& K, int64_t first, int64_t node, int32_t Kw,
                         double T[6][6]);

}  // namespace respcore
