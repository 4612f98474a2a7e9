// Panel axes of a plane or plate element, and of the high-order solids,
// built from the positions of its first nodes.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// PANEL_T(3,3): row k is axis k in global components. X, Y, Z hold the node
// coordinates, node by node.
//   N = 4, quadrilateral rule on nodes 1..4: a = P2 + P3 - P4 - P1,
//          b = P3 + P4 - P1 - P2.
//   any other N, triangle rule on nodes 1..3 (N = 1 by convention):
//          a = P2 - P1, b = P3 - P2.
// Axis 1 is a normalised, axis 2 is b less its component along axis 1,
// normalised, axis 3 is axis 1 cross axis 2. Coincident or collinear nodes
// divide by zero and the axes carry the result; nothing is reported.
void QDCOS(VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> PANEL_T, int32_t N);

}  // namespace respcore
