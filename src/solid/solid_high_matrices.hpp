// Element matrices of the high-order solids (10-node tetrahedron, 13-node
// pyramid, 15-node wedge, 20-node hexahedron), rebuilt from the geometry
// once per element: the stiffness in global axes and the stress matrix at
// the centre and the integration points.
//
// T(3,3) here is the element's axis matrix as the panel-axis routine builds
// it: row k is axis k in global components. Element-axis coordinates are
// x_l = T (x - x1); element-axis displacements u_l = T u.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "solid/solid_state.hpp"

namespace respcore {

// Capacities of the family.
inline constexpr int32_t SOLID_HIGH_MAX_NODE = 20;
inline constexpr int32_t SOLID_HIGH_MAX_DOF = 60;
inline constexpr int32_t SOLID_HIGH_MAX_GP = 27;
inline constexpr int32_t SOLID_HIGH_NROW = 228;  // 60 + 6 x (27 + 1)

// Integration order by node count: 10 nodes 4 points, 15 nodes 9 points, any
// other count 27 points.
int32_t SOLID_HIGH_NGP(int32_t NN);

// XL(3,NN): each node's coordinates projected on the axes of T, less the
// projection of node 1.
void CALC_CN_3D(MatRef<double> XL, MatRef<double> XYZ, MatRef<double> T, int32_t NN);

// S += W B' D B over the leading NDOF rows and columns of S (read with its
// own leading dimension), with B(6,NDOF) and D(6,6).
void SOL_STIFF_MAT(MatRef<double> S, MatRef<double> D, MatRef<double> B, double W, int32_t NDOF);

// Rows IROW+1 .. IROW+6 of STR := D B with its columns turned to global
// axes block by block of three: (D B)(:, block) T, so that they act on
// global displacements.
void SOL_STRESS_HIGH(MatRef<double> STR, MatRef<double> D, MatRef<double> B, MatRef<double> T,
                     int32_t IROW, int32_t NDOF);

// S(N,N): the element stiffness in global axes over its 3 NN degrees of
// freedom, integrated in element axes with the family's rule (the
// tetrahedron rules of 4 and 5 points carry their factor 1/6 here) and
// turned with LOCTOGLO. WORK(N,N) is scratch. ELEM_NO names the element in
// the element-shape message. Without INTEGRATE, S is left zero and each
// point forms only its determinant, so that the messages stay the same.
void SOL_STF(SolidContext& C, int32_t ELEM_NO, MatRef<double> S, MatRef<double> WORK, int32_t N,
             int32_t NN, MatRef<double> XYZ, MatRef<double> T, bool integrate);

// STR(NROW,N): from row N + 1, six stress rows (element axes) for the centre
// and then each integration point, acting on global displacements.
void SOL_STR(SolidContext& C, int32_t ELEM_NO, MatRef<double> STR, int32_t NROW, int32_t N,
             int32_t NN, MatRef<double> XYZ, MatRef<double> T);

// ASA(228,60): rows 1 .. 3 NN the stiffness (nodal forces = stiffness times
// global displacements), rows 61 onward the stress rows of SOL_STR. Without
// FORCES the stiffness rows are left zero, for a request that uses none.
void SOLID_HIGH_STRS(SolidContext& C, int32_t ELEM_NO, int32_t NN, MatRef<double> ASA,
                     MatRef<double> XYZ, MatRef<double> T, bool forces);

// Shape functions SHAPE(NN) and their natural derivatives DN_S, DN_T, DN_U
// of the solid families of 4, 6, 8, 10, 15 and 20 nodes at (S, T, U), from
// the routine's own tables of nodal natural coordinates. Any other NN gives
// zeros.
void SOL_SHAPE_FUNCT(VecRef<double> SHAPE, VecRef<double> DN_S, VecRef<double> DN_T,
                     VecRef<double> DN_U, double S, double T, double U, int32_t NN);

// Cartesian derivatives CARTD(3,NN) and strain-displacement matrix
// B(6,3 NN) at (S, T, U) for element-axis coordinates XL(3,NN), with the
// Jacobian determinant DETJ (signed). A DETJ at or below zero writes two
// lines to the message sink and the work goes on.
void SOL_B_MAT_HIGH(Diagnostics& D, MatRef<double> B, MatRef<double> CARTD, double& DETJ,
                    double S, double T, double U, MatRef<double> XL, int32_t NN);

}  // namespace respcore
