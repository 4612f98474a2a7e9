// The thin three-node plate and shell triangle: a discrete Kirchhoff bending
// triangle in explicit form (freedoms w, rx, ry per node) joined to a
// membrane triangle whose six-node quadratic field is tied to the corner
// freedoms u, v, rz. Also the small triangle kit that the thick triangle
// shares: stress points, linear and quadratic shape functions, the
// Jacobian, the three-point rule and the linear least-squares fit.
//
// Element axes are the rows of TR (local = TR * global); node 1 sits at the
// origin and node 2 on the x axis. Curvatures are
// (ry,x, -rx,y, ry,y - rx,x), which is -(w,xx, w,yy, 2 w,xy) for a Kirchhoff
// field, and bending rows of a stress block are the stress at z = +t/2.
//
// Stress blocks are eight values per point: membrane sx, sy, txy; bending
// sx, sy, txy at the top surface; transverse shear yz, xz. A 40-value ST
// holds five blocks.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/plate_context.hpp"
#include "plate/plate_section.hpp"

namespace respcore {

// ---------------------------------------------------------------- triangle kit

// Stress point I of an N-point layout: N = 4 gives the centroid and
// (1/6, 1/6), (2/3, 1/6), (1/6, 2/3); anything else the centroid.
void STROUT3(int32_t N, int32_t I, double& XI, double& ETA);

// Linear triangle: MODE 1 gives the derivatives OUT(1..6) (d/dxi, d/deta per
// node), any other mode the values (1 - xi - eta, xi, eta) in OUT(1..3).
void SHP3L(double XI, double ETA, VecRef<double> OUT, int32_t MODE);

// Six-node triangle, midside nodes on sides 1-2, 2-3, 3-1: MODE 1 gives the
// derivatives OUT(1..12), per node d/dxi then d/deta; otherwise the values.
void SHP6L(double XI, double ETA, VecRef<double> OUT, int32_t MODE);

// Jacobian of the N geometry functions with derivatives DG(2,N) over the
// nodes XY(2,N); DET its determinant. MODE other than 1 converts the 2N
// functions of DF(2,2N) from natural to x, y derivatives in place.
void FORMBL(int32_t N, MatRef<double> DG, MatRef<double> XY, MatRef<double> DF, double& DET,
            int32_t MODE);

// Point I and weight W of the triangle rule: N below 2 the centroid rule,
// otherwise the three-point midside rule.
void INT3PL(int32_t N, int32_t I, double& XI, double& ETA, double& W);

// Least-squares plane v = a + b x + c y through four points (PTS holds x1..x4
// then y1..y4, VAL(1..4) the values), evaluated at the three nodes of
// XY(2,3) into VAL(5..7). A singular normal matrix gives a = b = c = 0.
void LEAST_SQUARE(MatRef<double> XY, VecRef<double> PTS, VecRef<double> VAL);

// Element geometry in element axes.
struct TriGeometry {
  double XY[3][2] = {};  // XY(k,i) = XY[i-1][k-1]; node 1 at the origin
  double AREA = 0.0;     // from the three-dimensional side lengths
};

// XY from the rows of TR and the global node coordinates XYZ(3,3); AREA by
// Heron's form.
void triangle_geometry(MatRef<double> XYZ, MatRef<double> TR, TriGeometry& G);

// The coefficients of the explicit bending triangle (PT3INI).
struct Pt3Coef {
  double a = 0, b = 0, d = 0, e = 0;
  double P4 = 0, P5 = 0, P6 = 0, T4 = 0, T5 = 0, Q4 = 0, Q5 = 0, R4 = 0, R5 = 0;
};
void PT3INI(const TriGeometry& G, Pt3Coef& P);

// A(3,3) of curvature component I (1 xx, 2 yy, 3 xy) for node J: row r the
// area coordinate, column the freedom (w, rx, ry). 2*AREA times the
// curvature at area coordinates L is sum over J of A' L applied to the
// node's (w, rx, ry).
void PT3ALP(const Pt3Coef& P, int32_t I, int32_t J, double A[3][3]);

// E += sum over freedoms c of d(c) * (sum over r of A(r,c) L(r)).
void PT3EB(double& E, const double A[3][3], const double L[3], double d1, double d2, double d3);

// The membrane rows BM(3,9) (columns u1 v1 rz1 .. u3 v3 rz3) at a point, from
// the x, y derivatives DN(2,6) of the six quadratic functions.
void membrane_rows(const TriGeometry& G, const double DN[6][2], double BM[9][3]);

// The membrane and bending-curvature rows of the four stress points.
struct TriPoints {
  double SHAP[4][3] = {};   // area coordinates of point p
  double BM[4][9][3] = {};  // BM(r, c, p) = BM[p-1][c-1][r-1]
  double KB[4][9][3] = {};  // 2*AREA * curvature row I of freedom c: KB[p-1][c-1][I-1], c over w rx ry
};
void triangle_points(const TriGeometry& G, const Pt3Coef& P, TriPoints& T);

// ------------------------------------------------------------- thin triangle

// What DKTLMT_STR and its variants keep between the steps of an element.
struct DktSaved {
  TriGeometry geom;
  Pt3Coef pt3;
  TriPoints pts;
  double t = 0.0;     // bending thickness, PLATE_PROP(2)
  double DM[9] = {};  // membrane and bending matrices, column-major, no thickness
  double DB[9] = {};
  PlateSection section;  // general and plane variants
};

// Stresses of the thin triangle from CONST(1..18), the local displacements
// (u, v, w, rx, ry, rz per node), into ST(1..40). FLAG 1 sets up at step 1,
// FLAG 2 at every call, FLAG 0 never. Every block is the centroid block; the
// shear rows are 0. NNODE is written back as 3.
void DKTLMT_STR(const PlateContext& C, DktSaved& S, int32_t& NNODE, VecRef<double> CONST,
                VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                int32_t FLAG);

// The same kinematics with the general section, set up at step 1: ST(1..8)
// the centroid, ST(9..32) the points (1/6,1/6), (2/3,1/6), (1/6,2/3),
// ST(33..40) zero.
void DKTLMT_STR_GNRL(const PlateContext& C, DktSaved& S, int32_t& NNODE, VecRef<double> CONST,
                     VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                     int32_t FLAG);

// The membrane triangle of a plane element with drilling freedoms, with the
// plane section of PLANE_KIND and MAT_ANGLE (radians), set up at STEP 1.
// OUT(1..15) are the stress triples at the centroid, the three points and a
// zero fifth point; OUT(16..40) are zero.
void DKTLMT_PLANE_STR_DRILL(const PlateContext& C, DktSaved& S, int32_t PLANE_KIND,
                            double MAT_ANGLE, int32_t NNOD, VecRef<double> DISP_LOCAL,
                            VecRef<double> OUT, MatRef<double> XYZ, MatRef<double> PANEL_T,
                            int32_t STEP);

// Stiffness of the thin triangle in element axes, freedoms u, v, w, rx, ry, rz
// per node, into STIF(1..18, 1..18) (overwritten). Membrane thickness
// PLATE_PROP(1), bending thickness PLATE_PROP(2).
void DKTLMT_STF(const PlateContext& C, MatRef<double> XYZ, MatRef<double> TR, MatRef<double> STIF);

// Column-major 3x3 and 2x2 entries.
inline double& cm3(double* m, int i, int j) { return m[(i - 1) + 3 * (j - 1)]; }
inline double cm3(const double* m, int i, int j) { return m[(i - 1) + 3 * (j - 1)]; }
inline double& cm2(double* m, int i, int j) { return m[(i - 1) + 2 * (j - 1)]; }
inline double cm2(const double* m, int i, int j) { return m[(i - 1) + 2 * (j - 1)]; }

// The membrane stresses S1, S2, S3 of a triangle at its centroid: DM times
// the strains of the rows BM (three per node) from the node values
// u, v, rz of CONST (six per node).
inline void membrane_centroid_stress(const double (*BM)[3], const double* DM,
                                     VecRef<double> CONST, double& s1, double& s2, double& s3) {
  for (int n = 0; n < 3; ++n) {
    const double u = CONST(6 * n + 1), v = CONST(6 * n + 2), rz = CONST(6 * n + 6);
    const double e1 = BM[3 * n][0] * u + BM[3 * n + 2][0] * rz;
    const double e2 = BM[3 * n + 1][1] * v + BM[3 * n + 2][1] * rz;
    const double e3 = BM[3 * n][2] * u + BM[3 * n + 1][2] * v + BM[3 * n + 2][2] * rz;
    s1 += cm3(DM, 1, 1) * e1 + cm3(DM, 1, 2) * e2;
    s2 += cm3(DM, 2, 1) * e1 + cm3(DM, 2, 2) * e2;
    s3 += cm3(DM, 3, 3) * e3;
  }
}

// The in-plane matrices of the plate triangles (no thickness), DM and DB:
// the isotropic form, or the plane-stress matrix of MAT_TYPE 1. A scaled
// section rebuilds DM with the membrane factors and DB with the bending
// factors from the moduli (1 - nu^2) D0, G and nu, turned by the section
// angle; SC(2,2), when given, becomes the turned shear factor matrix.
void triangle_material(const PlateContext& C, double DM[9], double DB[9], double G, double* SC);

// The membrane stiffness of the triangle (three-point rule, thickness T) added
// into the u, v, rz freedoms of STIF.
void BTDBLST(const PlateContext& C, const TriGeometry& G, double T, MatRef<double> STIF);

}  // namespace respcore
