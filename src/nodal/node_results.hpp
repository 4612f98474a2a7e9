// Node results: displacement, velocity or acceleration of listed nodes, by
// component, in node axes (or a node's skew system), with the relative and
// absolute forms and the envelopes.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "nodal/nodal_motion.hpp"
#include "run/tdsp.hpp"

namespace respcore {

// ELEM_TYPE 9, 10, 11 (RESULT_KIND 1, 2, 3): the node results of the nodes
// INUM_ELEMNT into TDSP.
void DISP_VELO_ACCEL(NodalMotion& M, NodeSkew& S, Tdsp& TDSP, VecRef<int32_t> INUM_ELEMNT,
                     int32_t RESULT_KIND, int32_t AXIS_FLAG);

// One node over all steps (REQUEST_MODE 1): row RESULT_COMP of the node
// INUM_ELEMNT(1) in TDSP, in node axes (or its skew system), relative to
// INUM_ELEMNT(2) for STEP_NO 3, absolute with the ground motion for STEP_NO 2.
void node_history_over_steps(NodalMotion& M, NodeSkew& S, Tdsp& TDSP,
                             VecRef<int32_t> INUM_ELEMNT, Quantity q, int32_t AXIS_FLAG);

// INDEX := position of NODE in NODE_SKEW(1..N), 0 if it is not listed.
void CHECK_NODE_SKEW_INFM(int32_t node, int32_t n, VecRef<int32_t> NODE_SKEW, int32_t& index);

// Turns the translations and rotations of columns 1..NCOLS of DISP_NO by the
// skew matrix of entry INDEX (laid down by rows in SKEW_INFM(1..9, INDEX)).
void TRANSFORM_TO_LOCAL(MatRef<double> DISP_NO, int32_t ncols, int32_t index,
                        MatRef<double> SKEW_INFM);

}  // namespace respcore
