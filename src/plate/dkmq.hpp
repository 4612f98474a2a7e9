// The four-node plate and shell quadrilaterals: the discrete
// Kirchhoff-Mindlin quadrilateral (DKMQ) and, with the shear factors of the
// sides set to zero, the discrete Kirchhoff quadrilateral of the thin shell
// (SHL3DS). Bending: bilinear rotations plus a tangential rotation increment
// on each side (quadratic side functions P5..P8), tied to the nodal values
// through the transverse shear of the side. Membrane: bilinear with the
// incompatible modes (MEMB_KIND 0) or with nodal drilling rotations
// (MEMB_KIND 1, stiffness only). A warped element (node heights ZCOOR about
// its mean plane) gets the offset rule PROJ3D_MOD in the stiffness and
// constant warp rows on (u, v, rz) in its curvatures.
//
// Conventions: element axes are the rows of TR (local = TR * global);
// freedoms u, v, w, rx, ry, rz per node; normal rotations bx = ry,
// by = -rx; curvature (bx,x, by,y, bx,y + by,x); transverse shear
// gxz = w,x + bx, gyz = w,y + by. Stress blocks have eight rows: membrane
// xx, yy, xy; bending stress xx, yy, xy at the top surface; shear yz (row 7)
// and xz (row 8).
//
// Stress routines set up when NEWELEM is 1 (the step number of the history
// drivers) and keep what they need in their DkmqSaved; later calls only
// multiply. The history drivers keep one DkmqSaved per element slot.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/plate_context.hpp"
#include "plate/plate_section.hpp"

namespace respcore {

// The side matrix A gives (2/3) of each side's tangential rotation
// increment (what the shear of the side needs); the bending rows take the
// increment itself, BB * (3/2) * A.
inline constexpr double kSideIncrementFactor = 1.5;

// Side data of the element (sides k = 1..4 from node k to the next).
struct DkmqGeom {
  double XK[4] = {}, YK[4] = {};  // next node minus this node
  double LK[4] = {};              // side length
  double CK[4] = {}, SK[4] = {};  // XK/LK, YK/LK
  double PHI[4] = {};             // shear factor of the side
  double RK[4] = {};              // 1 / (LK (1 + PHI))
};

// What a stress routine keeps of an element between its steps.
struct DkmqSaved {
  double XY1[8] = {};     // XY1(2,4): flat coordinates, node 1 at the origin
  double ZCOOR[4] = {};   // heights about the mean plane (small ones cleared)
  int32_t warped = 0;     // ZCOOR(1) not 0
  int32_t memb_kind = 0;  // 0: the incompatible modes are added
  int32_t thin = 0;       // 1: no transverse shear (SHL3DS)
  DkmqGeom geom;
  double EST[3 * 24 * 5] = {};  // EST(3,6,4,5): curvature rows by freedom, node, point
  double A[4 * 12] = {};        // A(4,12): side matrix over (w, rx, ry) of the nodes
  double DN[8 * 5] = {};        // (N,x, N,y) of the nodes at each point
  double QS[8 * 5] = {};        // Q(2,4) shear rows at each point
  double INC[12 * 5] = {};      // incompatible mode rows (3,4) at each point
  double WORK1[4 * 9] = {};     // mode condensation: inv(Kmm) Kmn, load column
  PlateSection section;         // strains to the stress block

  MatRef<double> est(int32_t p) { return MatRef<double>(EST + 72 * (p - 1), 3, 24, "EST"); }
  MatRef<double> xy1() { return MatRef<double>(XY1, 2, 4, "XY1"); }
};

// --- the element kit ---

// Side data from the flat coordinates XY1(2,4); PHI(k) = 2.4 T^2 / ((1-NU) LK^2).
void DKMQINI(DkmqGeom& G, MatRef<double> XY1, double T, double NU);
// The same with PHI(k) = PHI_COEF / LK^2 (a section's shear factor).
void dkmq_sides(DkmqGeom& G, MatRef<double> XY1, double PHI_COEF);

// (d/dxi, d/deta) of the side functions P5 = (1-xi^2)(1-eta)/2,
// P6 = (1+xi)(1-eta^2)/2, P7 = (1-xi^2)(1+eta)/2, P8 = (1-xi)(1-eta^2)/2 as
// four pairs in P(1..8).
void DPN(double XI, double ETA, VecRef<double> P);

// Jacobian of the point from the natural derivatives DN (four pairs); DN and
// DP (four pairs each) become (d/dx, d/dy) pairs in place. No test: a
// degenerate element gives infinities.
void DKMQINV(int32_t NN, MatRef<double> XY1, VecRef<double> DN, VecRef<double> DP, double& DETJ,
             MatRef<double> JINV);

// The side matrix A(4,12) over (w, rx, ry) of the four nodes.
void dkmq_side_matrix(const DkmqGeom& G, MatRef<double> A);

// Adds the bending rows of a point to EST(3,24) (columns 6(node-1)+freedom):
// the bilinear rotations and BB * kSideIncrementFactor * A, BB(3,4) from the
// Cartesian side-function derivatives DP; A(4,12) receives the side matrix.
void BMMAT(const DkmqGeom& G, MatRef<double> EST, MatRef<double> A, VecRef<double> DN,
           VecRef<double> DP);

// Shear rows Q(2,4) at (XI, ETA): shear strain = 0.25 Q A d.
void dkmq_shear_rows(const DkmqGeom& G, double XI, double ETA, MatRef<double> JINV,
                     MatRef<double> Q);

// S(24,24) += Bs' DS Bs * WT, Bs = Q(2,4) A on (w, rx, ry); WT carries the
// 0.25^2 of the shear rows.
void DKMQSHR(const DkmqGeom& G, MatRef<double> S, MatRef<double> Q, MatRef<double> DS, double WT);

// S(24,24) += EST' D EST * WT, over the freedoms w, rx, ry of each node
// (WARPED 0) or all six (WARPED 1).
void DKMQBND_MOD(MatRef<double> S, MatRef<double> EST, MatRef<double> D, double WT, int32_t WARPED);

// Warp rows of EST(3,24): curvature = (4/W) H (spin of the bilinear in-plane
// field at the centre - mean rz), H from the side height differences. Zero
// for rigid motions of the warped element and constant over it.
void JACQ3D_DKMQ(MatRef<double> XY1, VecRef<double> ZCOOR, MatRef<double> EST);

// The offset of the nodes from the mean plane on the 6x6 block (node I,
// node J) of S: columns with ZCOL = ZCOOR(J), rows with ZROW = ZCOOR(I).
void PROJ3D_MOD(MatRef<double> S, int32_t I, int32_t J, double ZROW, double ZCOL);

// Flat coordinates XY1(2,4) (node 1 at the origin) and heights ZCOOR(4)
// about the mean plane of the nodes X, Y, Z in the axes T; heights within
// 1.0E-5 of the largest flat coordinate are cleared. Returns 1 when the
// element is warped (ZCOOR(1) not 0).
int32_t dkmq_flatten(VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> T,
                     MatRef<double> XY1, VecRef<double> ZCOOR);

// The ordinary section's matrices in element axes: in-plane D(3,3), the
// bending matrix per unit of 0.5 T2 (DBEND, D unless the section is scaled)
// and the shear DS(2,2). A scaled section turns by the rotation of
// CALC_ROTATION_MATRIX (STORED_ANGLE 0, the stress routines) or by that of
// SECT_ANGLE itself (STORED_ANGLE 1, the stiffness).
void dkmq_material(const PlateContext& C, int32_t STORED_ANGLE, MatRef<double> D,
                   MatRef<double> DBEND, MatRef<double> DS);

// Set-up of a stress routine with the section SECT (THIN 1: no shear); the
// modes (MEMB_KIND 0) are condensed on SECT's membrane matrix with t = 1 by
// WILSON_GNRL (GENERAL_CONDENSATION 1) or WILSON (0).
void dkmq_section_setup(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t THIN,
                        int32_t GENERAL_CONDENSATION, MatRef<double> XYZ, MatRef<double> TR);

// One step of a set-up element: STRS(8,5) from DISP(24), KEEP as below.
void dkmq_stress_step(const DkmqSaved& SV, VecRef<double> DISP, MatRef<double> STRS, int32_t KEEP);

// --- stress routines: STRS(8,5), centre then the 2x2 points (-,-), (+,-),
// (+,+), (-,+); DISP(24) element-axis nodal values; XYZ(3,4) global node
// coordinates; TR(3,3) element axes. KEEP 1 repacks: DISP is cleared, the
// membrane triples of the five points go to DISP(1..15) and over STRS's
// first 15 values. ---

// The ordinary section: in-plane D, bending DB = 0.5 T2 D, shear G/1.2 (or
// G13/1.2, G23/1.2), rotated or scaled as the section says; writes the
// matrices to the message sink at each set-up. The membrane rows leave out
// the couplings D(1,3), D(2,3), D(3,1), D(3,2).
void DKMQ_STR_WARP(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                   VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                   MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP);
// The same without transverse shear (rows 7, 8 zero).
void SHL3DS_STR(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ, MatRef<double> TRANS,
                int32_t NEWELEM, int32_t KEEP);

// With the caller's section (the general plate section or the plane
// section), read at set-up; modes from WILSON_GNRL with the section's
// membrane matrix when MEMB_KIND is 0 (the plane histories pass 1: the plane
// section has none). No message.
void DKMQ_STR_WARP_GNRL(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                        VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                        MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP);
void SHL3DS_STR_GNRL(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                     VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                     MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP);

// The stiffened section (built at set-up): the rows are Nx, Ny, Nxy, Mx, My,
// Mxy, Qyz, Qxz per unit width; modes condensed with WILSON on A, t = 1.
void DKMQ_STR_STIF(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                   VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                   MatRef<double> TRANS, int32_t NEWELEM);

// --- stiffness: S(N,N) (N at least 24) of the element with nodes at
// X(4), Y(4), Z(4) and axes T(3,3), in element axes or, with TOGLOBAL 1,
// turned to global axes by LOCTOGLO (WORK(N,N) scratch). Membrane thickness
// PLATE_PROP(1), bending thickness PLATE_PROP(2); MEMB_KIND 0 the modes and
// a fictitious drilling term, 1 the drilling membrane. ---
void DKMQ_STF_WARP(const PlateContext& C, int32_t MEMB_KIND, MatRef<double> S, MatRef<double> WORK,
                   int32_t N, VecRef<double> X, VecRef<double> Y, VecRef<double> Z,
                   MatRef<double> T, int32_t TOGLOBAL);
// The same without transverse shear (the discrete Kirchhoff quadrilateral).
void SHL3DS(const PlateContext& C, int32_t MEMB_KIND, MatRef<double> S, MatRef<double> WORK,
            int32_t N, VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> T,
            int32_t TOGLOBAL);

}  // namespace respcore
