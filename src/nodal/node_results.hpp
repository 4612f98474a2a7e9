// Node results: displacement, velocity or acceleration of listed nodes, by
// component, in node axes (or a node's skew system), with the relative and
// absolute forms and the envelopes.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// INDEX := position of NODE in NODE_SKEW(1..N), 0 if it is not listed.
void CHECK_NODE_SKEW_INFM(int32_t node, int32_t n, VecRef<int32_t> NODE_SKEW, int32_t& index);

// Turns the translations and rotations of columns 1..NCOLS of DISP_NO by the
// skew matrix of entry INDEX (laid down by rows in SKEW_INFM(1..9, INDEX)).
void TRANSFORM_TO_LOCAL(MatRef<double> DISP_NO, int32_t ncols, int32_t index, int32_t n,
                        MatRef<double> SKEW_INFM);

}  // namespace respcore
