// The thick three-node plate and shell triangle: a discrete Kirchhoff-Mindlin
// bending field with transverse shear, joined to the membrane of the thin
// triangle. The bending strain is a constant part from the corner rotations
// plus an edge part from the increments of the tangential rotation at the
// midsides; those increments are eliminated through the shear factors of the
// sides, and the transverse shear follows from them.
//
// Conventions, point layout and stress blocks are those of the thin triangle
// (dkt.hpp).
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/dkt.hpp"
#include "plate/plate_context.hpp"
#include "plate/plate_section.hpp"

namespace respcore {

// The edge shear strain that the elimination gives is -(2/3) phi times the
// rotation increment, while the interpolation of the side values carries
// phi times the increment: the shear rows are scaled by 2/3 so that they are
// the shear strain itself (and an assembled plate reaches the thick-plate
// solution).
inline constexpr double kDkmtShearScale = 2.0 / 3.0;

// Edge data of the triangle; index k = 0, 1, 2 is edge 4 (node 1 to 2), 5 (2
// to 3), 6 (3 to 1).
struct DkmtEdges {
  double X[3] = {}, Y[3] = {};  // edge vectors
  double L[3] = {};             // lengths
  double C[3] = {}, S[3] = {};  // direction cosines
  double W4 = 0, W5 = 0, W6 = 0;
  double PHI[3] = {};  // shear factors
  double H[3] = {};    // (1/L) / (1 + phi)
};

// The edge table with the shear factors (2.4/(1-nu)) t^2 / L^2 of the
// ordinary section.
void DKMTINI(const TriGeometry& G, double T, double NU, DkmtEdges& E);
// The same with the factors PHI_COEF / L^2 of a given section.
void dkmt_edges(const TriGeometry& G, double PHI_COEF, DkmtEdges& E);

// The edge-to-nodal matrix A(3,9) over (w, rx, ry) of the three nodes: row k
// gives the rotation increment at the midside of edge k.
void dkmt_edge_matrix(const DkmtEdges& E, double A[9][3]);

// Constant bending part BBC(3,9), twice the area times the curvature.
void MKBBC(const DkmtEdges& E, double BBC[9][3]);
// Edge bending part BBM(3,9) at a point, from the natural derivatives
// DN(1..12) of the six quadratic functions.
void MKBBM(const DkmtEdges& E, const double DN[12], double BBM[9][3]);
// Shear rows BBS(2,9) (xz, yz) at a point of area coordinates L.
void MKBBS(const DkmtEdges& E, const double L[3], double BBS[9][2]);

// What DKMTLMT_STR and its variants keep between the steps of an element.
struct DkmtSaved {
  TriGeometry geom;
  DkmtEdges edges;
  double t = 0.0, D0 = 0.0, Gs = 0.0, e8 = 0.0, e9 = 0.0;
  int32_t mat_type = 0;
  double DM[9] = {}, DB[9] = {}, SC[4] = {};
  double SHAP[4][3] = {};
  double BM[4][9][3] = {};
  double BBC[9][3] = {};
  double BBM[4][9][3] = {};
  double BBS[4][9][2] = {};
  PlateSection section;  // general and stiffened variants
};

// Stresses of the thick triangle from CONST(1..18) into ST(1..40), set up
// when STEP is 1. Every block is the centroid block. NNODE is written back
// as 3.
void DKMTLMT_STR(const PlateContext& C, DkmtSaved& S, int32_t& NNODE, VecRef<double> CONST,
                 VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP);

// The same kinematics with the general section: ST(1..8) the centroid,
// ST(9..32) the points (1/6,1/6), (2/3,1/6), (1/6,2/3), ST(33..40) zero.
void DKMTLMT_STR_GNRL(const PlateContext& C, DkmtSaved& S, int32_t& NNODE, VecRef<double> CONST,
                      VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                      int32_t FLAG);

// The ribbed plate: forces per unit width Nx, Ny, Nxy, Mx, My, Mxy, Qyz, Qxz
// of the stiffened section, the centroid block in all five blocks.
void DKMTLMT_STR_STIFFENED(const PlateContext& C, DkmtSaved& S, int32_t ZERO, int32_t& NNODE,
                           VecRef<double> D, VecRef<double> ST, MatRef<double> XYZ,
                           MatRef<double> TR, int32_t STEP);

// Stiffness of the thick triangle in element axes, freedoms u, v, w, rx, ry,
// rz per node, into STIF(1..18, 1..18) (overwritten).
void DKMTLMT_STF(const PlateContext& C, MatRef<double> XYZ, MatRef<double> TR,
                 MatRef<double> STIF);

}  // namespace respcore
