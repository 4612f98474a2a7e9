// High-order solid history (10-node tetrahedron, 13-node pyramid, 15-node
// wedge, 20-node hexahedron): the element matrices are rebuilt from the
// geometry once per element; the steps then run as for the low-order
// solids.
//
// Element record (section PSOH, serial 3, or 4 when ELEM_FORM is 2), 90
// doubles, integers stored as doubles:
//   1        NN
//   2 .. 21  node numbers (unused slots 0): records of the node coordinates
//            (section CORD, serial 3, three doubles per node) and the node
//            list of the displacement look-up
//   22 .. 81 equation numbers, three per node
//   82 .. 90 the nine material values, which replace MAT_VALS(1..9)
//
// TDSP rows: 1..60 nodal forces (global, three per node), 61..186 stresses
// of the centre and the nodes, from 187 the strains in the same order.
#include <algorithm>

#include "nodal/disp_equation.hpp"
#include "plane/panel_axes.hpp"
#include "recovery/stress_recovery.hpp"
#include "solid/solid_high_matrices.hpp"
#include "solid/solid_histories.hpp"
#include "solid/solid_steps.hpp"

namespace respcore {

namespace {

constexpr int32_t kRecWords = 90;
constexpr int32_t kMaxNode = SOLID_HIGH_MAX_NODE;
constexpr int32_t kMaxDof = SOLID_HIGH_MAX_DOF;
constexpr int32_t kMaxPoints = kMaxNode + 1;
constexpr int32_t kOutRows = kMaxDof + 6 * kMaxPoints;  // 186
constexpr int32_t kStrainRow0 = kOutRows;

// The coordinates of nodes IIA(1..NN) (section CORD) into XYZ.
void read_node_coordinates(ArchiveReader A, VecRef<int32_t> IIA, int32_t nn, Mat<double>& XYZ) {
  XYZ.fill(0.0);
  const SectionRef cord = A.find(sections::CORD, 3);
  for (int32_t k = 1; k <= nn; ++k) {
    double c[3] = {0.0, 0.0, 0.0};
    A.read_f64(cord, IIA(k), VecRef<double>(c, 3, "XYZ"), 3);
    for (int32_t i = 1; i <= 3; ++i) XYZ(i, k) = c[i - 1];
  }
}

// The element axes: the quadrilateral rule on nodes 1..4 for the hexahedron,
// the triangle rule on nodes 1..3 otherwise. PANEL_T holds them as rows, TT
// as columns (as the tensor rotations take them).
void element_axes(Mat<double>& XYZ, int32_t nn, Mat<double>& PANEL_T, Mat<double>& TT) {
  double X[4], Y[4], Z[4];
  for (int32_t k = 1; k <= 4; ++k) {
    X[k - 1] = XYZ(1, k);
    Y[k - 1] = XYZ(2, k);
    Z[k - 1] = XYZ(3, k);
  }
  PANEL_T.fill(0.0);
  QDCOS(VecRef<double>(X, 4, "X"), VecRef<double>(Y, 4, "Y"), VecRef<double>(Z, 4, "Z"),
        PANEL_T.ref(), nn == 20 ? 4 : 1);
  for (int32_t i = 1; i <= 3; ++i)
    for (int32_t j = 1; j <= 3; ++j) TT(i, j) = PANEL_T(j, i);
}

// The element's matrix of nodal results: the forces of ASA, and its stresses
// carried from the integration points to the centre and the nodes. The
// recovery is linear, so it is applied once to the columns of the stress
// matrix, and every step's nodal stresses come out of the one product.
void nodal_matrix_of(Mat<double>& ASA, int32_t nn, Mat<double>& VALUE_GAUSS,
                     Mat<double>& VALUE_NODAL, Mat<double>& NODAL) {
  const int32_t neq = 3 * nn;
  const int32_t ngp = SOLID_HIGH_NGP(nn);
  const int32_t npts = nn + 1;
  NODAL.fill(0.0);
  // NN is at most kMaxNode: every subscript below lies within its array.
  const auto A = ASA.raw();
  const auto N = NODAL.raw();
  for (int32_t j = 1; j <= neq; ++j)
    for (int32_t i = 1; i <= kMaxDof; ++i) N(i, j) = A(i, j);
  if (neq <= 0) return;
  const int32_t nc = 6 * neq;
  MatRef<double> VG(VALUE_GAUSS.data(), nc, ngp, "VALUE_GAUSS");
  MatRef<double> VN(VALUE_NODAL.data(), nc, npts, "VALUE_NODAL");
  const auto G = VG.raw();
  const auto P = VN.raw();
  for (int32_t g = 1; g <= ngp; ++g)
    for (int32_t j = 1; j <= neq; ++j)
      for (int32_t c = 1; c <= 6; ++c) G(c + 6 * (j - 1), g) = A(kMaxDof + 6 * g + c, j);
  STRESS_RECOVERY_SOLID(VN.flat(), VG.flat(), nc, ngp, npts, 1);
  for (int32_t pt = 1; pt <= npts; ++pt)
    for (int32_t j = 1; j <= neq; ++j)
      for (int32_t c = 1; c <= 6; ++c) N(kMaxDof + 6 * (pt - 1) + c, j) = P(c + 6 * (j - 1), pt);
}

}  // namespace

void SOLID_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, SolidContext& C, Tdsp& TDSP,
                ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;

  Vec<double> SA("SA", kRecWords);
  Vec<int32_t> IIA("IIA", kMaxNode);
  Vec<int32_t> LM("LM", kMaxDof);
  Mat<double> XYZ("XYZ", 3, kMaxNode);
  Mat<double> PANEL_T("PANEL_T", 3, 3);
  Mat<double> TT("TT", 3, 3);
  Mat<double> ASA("ASA", SOLID_HIGH_NROW, kMaxDof);
  Mat<double> nodal("ASA_NODAL", kOutRows, kMaxDof);
  const bool long_row = R.REQUEST_MODE == 1 && nsteps > kCombinedSteps && TDSP.allocated() &&
                        TDSP.cols() >= nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kMaxDof, long_row ? 0 : nsteps);
  Mat<double> DISP_NO("DISP_NO", 0, 0);
  // One element over many steps needs only the requested row: the full
  // tables serve the other request modes, whose steps are one.
  const int32_t full_steps = R.REQUEST_MODE == 1 ? 0 : nsteps;
  Mat<double> SIG("SIG", kOutRows, full_steps);
  Mat<double> STRAIN_GLOBAL_TIME("STRAIN_GLOBAL_TIME", 6 * kMaxPoints, full_steps);
  Mat<double> VALUE_GAUSS("VALUE_GAUSS", 6 * kMaxDof, SOLID_HIGH_MAX_GP);
  Mat<double> VALUE_NODAL("VALUE_NODAL", 6 * kMaxDof, kMaxPoints);

  SolidStepLayout layout;
  layout.force_rows = kMaxDof;
  layout.max_points = kMaxPoints;
  layout.low_order = false;

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    const int32_t serial = INUM_SERIAL(p);
    const int32_t element = INUM_ELEMNT(p);
    SA.fill(0.0);

    // 1. Material, then the element record, whose material values win.
    READING_ELEMENT_MATERIAL_DATA(A, C.material, element);
    A.read_f64(A.find(sections::PSOH, ID), serial, SA.ref(), kRecWords);
    const int32_t NN = trunc_i32(SA(1));
    int32_t nn = std::max(NN, 0);
    if (nn > kMaxNode) {
      report_bound_failure("IIA", nn, 1, kMaxNode);
      nn = kMaxNode;
    }
    const int32_t neq = 3 * nn;
    IIA.fill(0);
    LM.fill(0);
    for (int64_t k = 1; k <= nn; ++k) IIA(k) = trunc_i32(SA(1 + k));
    for (int64_t i = 1; i <= neq; ++i) LM(i) = trunc_i32(SA(21 + i));
    for (int32_t v = 1; v <= 9; ++v) C.material.mat_vals()(v) = SA(81 + v);

    // 2. Node coordinates and element axes.
    read_node_coordinates(A, IIA.ref(), nn, XYZ);
    element_axes(XYZ, nn, PANEL_T, TT);

    // 3. Displacements and the element matrices.
    // One row of a long history is combined from the displacement histories.
    DispRow row;
    const bool combined = long_row && neq <= kCombinedInputs &&
                          row.start(M, kMaxDof, neq, LM.ref(), IIA.ref(), nn);
    if (!combined) {
      if (DISP_EQ.cols() != nsteps) DISP_EQ.resize(kMaxDof, nsteps);
      DISP_EQUATION(M, kMaxDof, DISP_EQ.ref(), DISP_NO.ref(), neq, LM.ref(), IIA.ref(), nn, 1);
    }
    // A combined row of stress or strain uses no nodal force: the stiffness
    // need not be integrated.
    const bool forces = !combined || (R.RESULT_COMP >= 1 && R.RESULT_COMP <= kMaxDof);
    // SOLID_HIGH_STRS writes every entry of ASA.
    SOLID_HIGH_STRS(C, element, nn, ASA.ref(), XYZ.ref(), PANEL_T.ref(), forces);
    nodal_matrix_of(ASA, nn, VALUE_GAUSS, VALUE_NODAL, nodal);

    // 4. The steps.
    const int32_t npts = nn + 1;
    if (combined) {
      solid_combined_row(C, R.RESULT_COMP, TDSP, layout, nodal.ref(), kOutRows, neq, TT.ref(), nn,
                         AXIS_FLAG, kMaxDof + 6 * npts, kStrainRow0, 6 * npts, row);
      continue;
    }
    solid_element_rows(C, R, TDSP, p, layout, nodal.ref(), kOutRows, neq, DISP_EQ.ref(), TT.ref(),
                       nn, AXIS_FLAG, kMaxDof + 6 * npts, kStrainRow0, 6 * npts, SIG.ref(),
                       STRAIN_GLOBAL_TIME.ref());
  }
}

}  // namespace respcore
