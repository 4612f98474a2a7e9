// Solid history (4-node tetrahedron, 5-node pyramid, 6-node wedge, 8-node
// hexahedron): nodal forces, stresses and strains of each listed element
// from the stress-displacement matrix the analysis stored per element.
//
// Element record (section SOLD, serial 3, or 4 when ELEM_FORM is 2), 3805
// doubles, integers stored as doubles:
//   1 .. NDOF                 equation numbers LM
//   NDOF+1 .. NDOF+NR*NDOF    STRS(NR,NDOF), column by column: rows 1..24
//                             nodal forces in element axes (3 per node),
//                             rows 25.. six stresses (element axes) at the
//                             centre and then each integration point
//   3793 NDOF (at most 48), 3794 NR (at most 78), 3795 not used,
//   3796 NN, 3797..3805 T(I,J) = word 3796 + 3(I-1) + J, whose columns are
//   the element axes in global components.
//
// TDSP rows: 1..24 forces, 25..78 stresses of the centre and the nodes,
// from 79 the strains in the same order.
#include <algorithm>

#include "nodal/disp_equation.hpp"
#include "solid/solid_histories.hpp"
#include "solid/solid_steps.hpp"

namespace respcore {

namespace {

constexpr int32_t kRecWords = 3805;
constexpr int32_t kMaxDof = 48;
constexpr int32_t kMaxRow = 78;
constexpr int32_t kForceRows = 24;
constexpr int32_t kMaxPoints = 9;
constexpr int32_t kMaxNodes = 8;

// What the record holds, cut to what the arrays hold.
struct SolidCounts {
  int32_t ndof, nr, nn;
};

// The counts of the record in SA, its axes into T, its equation numbers into
// LM and its matrix into STRS (rows beyond NR zero, so that the product may
// run over all 78). The record holds at most 48 columns and 78 rows and 8
// nodes; anything beyond is a bound failure, reported once and left out.
SolidCounts unpack_record(Vec<double>& SA, Vec<int32_t>& LM, Mat<double>& STRS, Mat<double>& T) {
  const int32_t NDOF = trunc_i32(SA(3793));
  const int32_t NR = trunc_i32(SA(3794));
  const int32_t NN = trunc_i32(SA(3796));
  for (int32_t i = 1; i <= 3; ++i)
    for (int32_t j = 1; j <= 3; ++j) T(i, j) = SA(3796 + 3 * (i - 1) + j);

  SolidCounts n{std::max(NDOF, 0), std::max(NR, 0), std::max(NN, 0)};
  if (n.ndof > kMaxDof) {
    report_bound_failure("LM", n.ndof, 1, kMaxDof);
    n.ndof = kMaxDof;
  }
  if (n.nr > kMaxRow) {
    report_bound_failure("STRS", n.nr, 1, kMaxRow);
    n.nr = kMaxRow;
  }
  if (n.nn >= kMaxPoints) {
    report_bound_failure("SIG", kForceRows + 6 * (int64_t{n.nn} + 1), 1, kMaxRow);
    n.nn = kMaxPoints - 1;
  }

  LM.fill(0);
  // (The counts are held to 48 and 78 above.)
  for (int32_t i = 1; i <= n.ndof; ++i) LM(i) = trunc_i32(SA(i));
  const int64_t base0 = NDOF;
  auto copy_columns = [&](auto sa) {
    for (int32_t j = 1; j <= n.ndof; ++j) {
      double* col = STRS.col(j);
      std::fill(col, col + kMaxRow, 0.0);
      const int64_t base = base0 + int64_t{j - 1} * NR;
      for (int32_t i = 1; i <= n.nr; ++i) col[i - 1] = sa(base + i);
    }
  };
  if (base0 + int64_t{n.ndof} * NR <= kRecWords && n.nr == NR && n.ndof == NDOF)
    copy_columns(SA.raw());
  else
    copy_columns(SA.ref());
  return n;
}

}  // namespace

void SOLID_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, SolidContext& C, Tdsp& TDSP,
                ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;

  Vec<double> SA("SA", kRecWords);
  Mat<double> STRS("STRS", kMaxRow, kMaxDof);
  Mat<double> T("T", 3, 3);
  Vec<int32_t> LM("LM", kMaxDof);
  Vec<int32_t> IIA("IIA", kMaxNodes);
  const bool long_row = R.REQUEST_MODE == 1 && nsteps > kCombinedSteps && TDSP.allocated() &&
                        TDSP.cols() >= nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kMaxDof, long_row ? 0 : nsteps);
  Mat<double> DISP_NO("DISP_NO", 0, 0);
  // One element over many steps needs only the requested row: the full
  // tables serve the other request modes, whose steps are one.
  const int32_t full_steps = R.REQUEST_MODE == 1 ? 0 : nsteps;
  Mat<double> SSIG("SSIG", kMaxRow, full_steps);
  Mat<double> STRAIN_GLOBAL_TIME("STRAIN_GLOBAL_TIME", 6 * kMaxPoints, full_steps);

  SolidStepLayout layout;
  layout.force_rows = kForceRows;
  layout.max_points = kMaxPoints;
  layout.low_order = true;

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    T.fill(0.0);
    const int32_t serial = INUM_SERIAL(p);
    const int32_t element = INUM_ELEMNT(p);

    READING_ELEMENT_MATERIAL_DATA(A, C.material, element);
    // The whole record or nothing: a read that fails leaves the table clear.
    if (!A.read(A.find(sections::SOLD, ID), serial, SA.data(), int64_t{kRecWords} * 8))
      SA.fill(0.0);

    const SolidCounts n = unpack_record(SA, LM, STRS, T);
    const int32_t ndof = n.ndof, nr = n.nr, nn = n.nn;

    // One row of a long history is combined from the displacement histories.
    DispRow row;
    const bool combined = long_row && ndof <= kCombinedInputs &&
                          row.start(M, kMaxDof, ndof, LM.ref(), IIA.ref(), std::min(nn, kMaxNodes));
    if (!combined) {
      if (DISP_EQ.cols() != nsteps) DISP_EQ.resize(kMaxDof, nsteps);
      DISP_EQUATION(M, kMaxDof, DISP_EQ.ref(), DISP_NO.ref(), ndof, LM.ref(), IIA.ref(),
                    std::min(nn, kMaxNodes), 1);
    }

    // The extrapolated node values are delivered even when the stored matrix
    // ends at the centre (a tetrahedron's single point).
    const int32_t nrows = std::min(std::max(nr, kForceRows + 6 * (nn + 1)), kMaxRow);
    // Rows beyond NR are zero rows of STRS.
    if (combined) {
      solid_combined_row(C, R.RESULT_COMP, TDSP, layout, STRS.ref(), kMaxRow, ndof, T.ref(), nn,
                         AXIS_FLAG, nrows, kMaxRow, 6 * (nn + 1), row);
      continue;
    }
    solid_element_rows(C, R, TDSP, p, layout, STRS.ref(), kMaxRow, ndof, DISP_EQ.ref(), T.ref(), nn,
                       AXIS_FLAG, nrows, kMaxRow, 6 * (nn + 1), SSIG.ref(),
                       STRAIN_GLOBAL_TIME.ref());
  }
}

}  // namespace respcore
