// Small geometric tools of the plate routines: vector normalisation, the
// warp projection of a flat quadrilateral, and the material-axis helpers.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/plate_context.hpp"

namespace respcore {

// Scales the 3-vector V to unit length; LEN receives its length. A zero or
// NaN length prints an internal-error frame on standard output and the
// division is made all the same.
void NORM(const PlateContext& C, VecRef<double> V, double& LEN);

// P(NDOF,NDOF): carries the nodal vector of a flat quadrilateral (six
// freedoms per node, u v w rx ry rz) onto its warped shape of height H.
// XY holds the nodal coordinates, x and y of node 1 to 4 in turn.
void GET_LINEAR_PROJECTION(const PlateContext& C, VecRef<double> XY, double H, int32_t NDOF,
                           MatRef<double> P);

// COORDS(3,3) from the material coordinate block (zero when FLAG is 0).
void GET_COORD(const PlateContext& C, MatRef<double> COORDS, int32_t FLAG);

// Angle BETA between the material x axis (first column of B) and the
// element axes (columns of A), signed by the element y axis.
void COMPUTE_BETA(const PlateContext& C, MatRef<double> A, MatRef<double> B, double& BETA);

}  // namespace respcore
