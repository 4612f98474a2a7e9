// Interpolation of the high-order continuum elements: shape functions and
// their natural derivatives by family, the strain-displacement matrix at a
// point, the reduction of a panel to its own plane, and the Jacobian of the
// element centre.
//
// Families by NDIM and NNODE (node order as in the element tables):
//   1: 2 linear line, 3 quadratic line (end, middle, end)
//   2: 3 linear triangle, 4 bilinear quadrilateral, 6 quadratic triangle
//      (corners, then midsides 1-2, 2-3, 3-1), 8 serendipity quadrilateral
//      (corners, then midsides on eta=-1, xi=+1, eta=+1, xi=-1)
//   3: 4 linear tetrahedron, 6 linear wedge, 8 trilinear brick, 10 quadratic
//      tetrahedron, 15 quadratic wedge, 20 serendipity brick
// Triangles and tetrahedra use area/volume coordinates with N1 = 1-xi-eta
// (-zeta); wedges a triangle by a line in zeta.
//
// Behind the NNODE nodal entries sit NDIM nodeless (bubble) modes: 1-xi^2,
// 1-eta^2 for the 4- and 8-node quadrilaterals, and 1-xi^2, 1-eta^2, 1-zeta^2
// for the 8- and 20-node bricks. Other families leave them zero. Any NDIM,
// NNODE pair not listed leaves SHAPE and DERIV zero.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "core/diagnostics.hpp"

namespace respcore {

// SHAPE(1..NNODE+NDIM) at (XI, ETA, ZETA), zeroed first.
void SHAPE_FUN_BUB(VecRef<double> SHAPE, double XI, double ETA, double ZETA, int32_t NNODE,
                   int32_t NDIM);

// DERIV(NDIM, NNODE+NDIM): natural derivatives, row i by coordinate i,
// zeroed first.
void SHAPE_DER_BUB(MatRef<double> DERIV, double XI, double ETA, double ZETA, int32_t NNODE,
                   int32_t NDIM);

// Strain-displacement matrix B(NSTRS, NDIM*(NNODE[+NDIM])) at (XI, ETA, ZETA)
// for node coordinates CN(NDIM, NNODE). Also returns DET (the Jacobian
// determinant, taken by absolute value in 2 and 3 dimensions), CARTD (the
// Cartesian derivatives, NDIM by NNODE+NDIM), SHAPE and GPCOD (the point's
// coordinates). Plane rows are xx, yy, xy and, when PLANE_TYPE (the shared
// plane word) is
// 2, the hoop strain in row 4; solid rows are xx, yy, zz, xy, yz, zx.
// BUBBLE = 1 adds the nodeless columns, mapped with the centre Jacobian.
// DET_ONLY = 1 returns as soon as DET is known. A DET of exactly 0 writes the
// element-shape message for element ELEM_NO to the message sink and goes on.
void B_BUB(Diagnostics& DG, int32_t ELEM_NO, int32_t PLANE_TYPE, MatRef<double> B, double& DET,
           MatRef<double> CARTD, VecRef<double> SHAPE, VecRef<double> GPCOD, double XI, double ETA,
           double ZETA, MatRef<double> CN, int32_t NNODE, int32_t NDIM, int32_t NSTRS,
           int32_t BUBBLE, int32_t DET_ONLY);

// CN(2,8), zeroed first: CN(i,k) = row i of TRAN(3,3) dotted with
// XYZ(:,k) - XYZ(:,1), for i = 1, 2 and k = 1..NNODE.
void CALC_CN_2D(MatRef<double> CN, MatRef<double> XYZ, MatRef<double> TRAN, int32_t NNODE);

// DJ0(NDIM,NDIM): the Jacobian at the element centre from the corner
// coordinates of CN(NDIM,NNODE), by closed formulas. A family it does not
// know gives zero.
void CALC_J0(MatRef<double> DJ0, MatRef<double> CN, int32_t NNODE, int32_t NDIM);

}  // namespace respcore
