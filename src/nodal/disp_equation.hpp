// The nodal motion of an element: the displacement of each of its equations
// for every requested step, from modal or direct storage with support motion,
// and optionally turned into the nodes' own axes.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "nodal/nodal_motion.hpp"

namespace respcore {

// DISP_EQ(NDOF, NUM_STEPS) := displacement of element dof i at step column j.
// Unless NO_TRANSFORM is 1, DISP_NO gets the same in node axes (rows grouped
// six per node).
void DISP_EQUATION(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                   int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                   int32_t NO_TRANSFORM);

}  // namespace respcore
