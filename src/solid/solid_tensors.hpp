// Point values of the solid elements: rotation of stress tensors and nodal
// forces between element and global axes, extrapolation of the stored
// integration-point stresses to the nodes, and strains from stresses.
//
// Tensors are six values per point in the order xx, yy, zz, xy, yz, zx; a
// block holds NN + 1 points, the element centre first. T(3,3) holds the
// element axes as its columns, in global components (the transpose of a
// panel-axis matrix, whose rows are the axes).
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "solid/solid_state.hpp"

namespace respcore {

// Each of the NN + 1 tensors of VALUES from element to global axes:
// S := T S T'. Shear slots are loaded as the off-diagonal entries of a
// symmetric 3 by 3 array.
void CHANGE_L_G(VecRef<double> VALUES, MatRef<double> T, int32_t NN);
// The same from global to element axes: S := T' S T.
void CHANGE_G_L(VecRef<double> VALUES, MatRef<double> T, int32_t NN);

// NN force triples of F from element to global axes: F := T F.
void CHANGE_L_G_FORC(VecRef<double> F, MatRef<double> T, int32_t NN);
// NN force triples of F from global to element axes: F(I) := sum over K of
// T(K,I) F(K).
void CHANGE_G_L_FORC(VecRef<double> F, MatRef<double> T, int32_t NN);

// Extrapolates, in place, the integration-point stresses of a low-order
// solid to its nodes. SIG starts at the centre's six values, which stay;
// the integration points follow and are replaced by the node values:
//   NN 8: 2 by 2 by 2 points, trilinear extrapolation;
//   NN 6: 3 by 2 wedge points;
//   NN 4: the single point (the centre) is copied to the four nodes;
//   NN 5: 8 pyramid points; the eight point slots are cleared first;
//   any other NN: nothing.
void SOL_RECV_H(VecRef<double> SIG, int32_t NN);

// STRAIN := inverse of the elastic matrix times STRESS, at each of the NN + 1
// points. With FIRST = 1 the matrix of the current element's material is
// built and inverted, and FIRST is cleared; later calls use the kept inverse.
void SOLID_STRAIN_TIME(SolidContext& C, int32_t NN, int32_t& FIRST, VecRef<double> STRESS,
                       VecRef<double> STRAIN);

}  // namespace respcore
