// The plate result kit: from the stress blocks of a plate formulation to the
// result blocks that a plate history returns, the strains of the general
// section, and the turns and offsets of plate results and displacements.
//
// Stress block, 8 values: membrane sx, sy, txy; bending sx, sy, txy at the
// top surface; shear yz, xz. Result block, 14 values: sx, sy, txy at the top
// fibre; the same at the bottom fibre; Nx, Ny, Nxy; Mx, My, Mxy; Vxz, Vyz.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/plate_context.hpp"

namespace respcore {

// OUT(1..8) = N, M, V of one point from its stress block S, with the
// membrane and bending thickness T(1), T(2). Moments are -t^2/6 times the
// surface bending stress.
void CONVERT(VecRef<double> S, VecRef<double> OUT, VecRef<double> T);

// The same with the membrane thickness T; the moments use T as it stands
// when PAIR(1) equals PAIR(2), otherwise the bending stress scaled by
// PAIR(2)/PAIR(1) over the thickness PAIR(2).
void CONVERT_GNRL(VecRef<double> S, VecRef<double> OUT, double T, VecRef<double> PAIR);

// Result blocks R (14 per point) from stress blocks S (8 per point) of the
// NNODE+1 points, fibres at 2*TOP and 2*BOT times the surface bending
// stress. The forces come from CONVERT_GNRL with the pair (TOP, 0): a
// non-zero TOP gives moments of zero, signed as -(bending stress * TOP).
void MIX_STRESS(VecRef<double> S, VecRef<double> R, int32_t NNODE, double TOP, double BOT,
                VecRef<double> THK);

// As MIX_STRESS with PROP (PLATE_PROP) as the pair, and the membrane and
// surface bending strains of STRAIN (6 per point) turned into the top and
// bottom fibre strains in place.
void MIX_STRESS_STRAIN(VecRef<double> S, VecRef<double> R, VecRef<double> STRAIN, int32_t NNODE,
                       double TOP, double BOT, VecRef<double> THK, VecRef<double> PROP);

// COMPUTE_PLATE_STRAIN's factors of the element's section: the Cholesky
// factors (lower) of the membrane and bending matrices at the thickness
// THK(1), made at step 1 and kept for the element's later steps.
struct PlateStrainSaved {
  double DM[9] = {};
  double DB[9] = {};
  double T = 0.0;
};

// STRAIN (6 per point): the membrane strain and the bending strain at the
// surface z = THK(1)/2 of the NNODE+1 stress blocks of S. TR, the zero words
// and NUM_STEPS are not read.
void COMPUTE_PLATE_STRAIN(const PlateContext& C, PlateStrainSaved& SV, VecRef<double> STRAIN,
                          VecRef<double> S, MatRef<double> TR, VecRef<double> THK, int32_t NNODE,
                          int32_t ZERO1, int32_t STEP, int32_t NUM_STEPS, int32_t ZERO2);

// Principal values of the in-plane stress S(1..3) into P(1..4): the radius
// is never formed, so P(1) = P(2) = the mean stress; P(3) the angle in
// degrees; P(4) the equivalent stress (with the out-of-plane stress
// NU*(sx+sy) when PLANE_STRAIN is 1).
void PRNSTR(VecRef<double> S, VecRef<double> P, int32_t PLANE_STRAIN, double NU);

// Each of the N/3 triples of IN turned by TR into OUT (global to element).
void GLOTOLOC_FOC(VecRef<double> IN, VecRef<double> OUT, int32_t N, MatRef<double> TR);

// Each of the 2*NN triples of V turned by the transpose of A, in place.
void LOCTOGLO_FORCE(MatRef<double> A, VecRef<double> V, int32_t NN);

// Moves the global displacements DISP_NO(ROWS, NUM_STEPS) of the NNODE nodes
// to their offset positions by the rigid link u + theta x r, r the offset
// triple of node n at OFFSET(3n-1..3n+1). TR is not read.
void RECOV_DISP_OFFSET_TIME(MatRef<double> DISP_NO, int32_t ROWS, int32_t NUM_STEPS,
                            int32_t NNODE, MatRef<double> TR, VecRef<double> OFFSET);

// Turns forces, stress blocks (rows 25..) and result blocks (rows 65..) of a
// plate SIG to the user's axes at ANGLE degrees about the element normal.
void TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(int32_t NNODE, double ANGLE, VecRef<double> SIG);

}  // namespace respcore
