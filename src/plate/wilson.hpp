// The four-node membrane with incompatible modes (QM6): the bilinear field
// plus the four nodeless modes u(1-xi^2), v(1-xi^2), u(1-eta^2), v(1-eta^2),
// whose derivatives are taken with the centre Jacobian and scaled by
// det J0 / det J of the point, so that the element passes the patch test on
// any quadrilateral. The modes are condensed out of the element; what is kept
// of the condensation gives their amplitudes from the nodal values.
//
// Also the shape kit of the four-node quadrilateral shared with the plate
// quadrilaterals. Nodes at natural coordinates (-1,-1), (1,-1), (1,1), (-1,1).
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// MODE 1: the derivatives of the four shape functions as pairs
// (d/dxi, d/deta) in N(1..8); any other MODE: the four values in N(1..4).
void SHP4L(double XI, double ETA, VecRef<double> N, int32_t MODE);

// DN(1..2N) holds the N pairs (d/dxi, d/deta) of the functions of the nodes
// XY(2,N); they are replaced in place by the pairs (d/dx, d/dy). DET is the
// Jacobian determinant. Nothing is tested: a degenerate element gives
// non-finite values.
void FORMB(int32_t N, VecRef<double> DN, MatRef<double> XY, double& DET);

// The Jacobian terms of the element centre, which drive the modes:
// X-XI = (-x1+x2+x3-x4)/4, Y-XI likewise in y, X-ETA = (-x1-x2+x3+x4)/4,
// Y-ETA likewise in y.
struct CentreJacobian {
  double XXI = 0.0, YXI = 0.0, XETA = 0.0, YETA = 0.0;
};
CentreJacobian quad_centre_jacobian(MatRef<double> XY1);

// ROWS(3,4): column k is the strain triple (xx, yy, xy) of mode k at
// (XI, ETA), R = 2 / DETJ of the point.
void incompatible_mode_rows(const CentreJacobian& J0, double R, double XI, double ETA,
                            MatRef<double> ROWS);

// Mode amplitudes of a step: A = WORK1(:,9) - WORK1(:,1:8) * UM, UM the
// in-plane nodal values (u1, v1, ..., u4, v4), WORK1(4,9) column-major.
void incompatible_mode_amplitudes(const double WORK1[36], const double UM[8], double A[4]);

// The element over its 12 freedoms (u1, v1, ..., u4, v4, then the modes),
// integrated on 2x2 points: K = sum B' D B det J w1 w2 T, nodes XY1(2,4),
// in-plane D(3,3) used in full. The modes are condensed by STCOND with
// OPTION as its flag: OPTION 1 leaves S with the uncondensed matrix, any
// other value leaves the condensed 8x8 stiffness in S(1..8,1..8). WORK1(4,9) always receives
// inv(Kmm)*Kmn in columns 1..8 and zero in column 9 (the modes carry no
// load). NDOF is 12.
void WILSON(MatRef<double> XY1, MatRef<double> D, double T, int32_t NDOF, int32_t OPTION,
            MatRef<double> S, MatRef<double> WORK1);

// The same element for a general (coupled) D, condensed through the
// Cholesky factor of the mode block: equal to WILSON to rounding. A mode
// block that is not positive definite keeps the partial factor, unreported.
void WILSON_GNRL(MatRef<double> XY1, MatRef<double> D, double T, int32_t NDOF, int32_t OPTION,
                 MatRef<double> S, MatRef<double> WORK1);

}  // namespace respcore
