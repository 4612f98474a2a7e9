// Plate history of the general form (product tag "J.W.U"): the analysis
// stored, per element, the force matrix on the displacements by equation and
// the stress matrix on the element-axis nodal displacements, so no
// formulation runs here.
//
// Element record (section PLAT, serial 3, or 4 under element form 2), 1595
// four-byte reals: 1 NNODE; 2..5 the node records; 6..10 the thickness at
// the five result points; 11..34 TEMP(1..24): the offset switch, the offset
// triple of each node, the element axes TR row by row, the top and bottom
// fibre factors; 35.. the 6*NNODE equation numbers; from 59 FORC_DISP, a
// column of 24 words per equation; behind it STRS_DISP, 24 words per stress
// row (8*NNODE+8 rows); word 1595 PLATE_FORM.
//
// Rows of a step (94) as the plate history: forces as stored, then the five
// result blocks.
#include <algorithm>

#include "nodal/disp_equation.hpp"
#include "numeric/blas.hpp"
#include "plate/plate_histories.hpp"
#include "plate/wilson.hpp"
#include "recovery/point_extrapolation.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

constexpr int32_t kWords = 1595;
constexpr int32_t kBuffer = 1650;
constexpr int32_t kRows = 94;
constexpr int32_t kMaxDof = 24;
constexpr int32_t kMaxStress = 40;

}  // namespace

void COMPUTE_SHEAR_FORCE(VecRef<double> R, MatRef<double> XYZ, MatRef<double> TR, int32_t NNODE) {
  if (NNODE != 3 && NNODE != 4) return;
  double xy[8] = {};
  MatRef<double> XY(xy, 2, 4, "XY");
  for (int32_t n = 1; n <= NNODE; ++n)
    for (int32_t r = 1; r <= 2; ++r)
      for (int32_t c = 1; c <= 3; ++c) XY(r, n) += TR(r, c) * (XYZ(c, n) - XYZ(c, 1));
  // The centre and the nodes in natural coordinates.
  constexpr double XP5[5] = {0, -1, 1, 1, -1}, YP5[5] = {0, -1, -1, 1, 1};
  constexpr double XP4[4] = {0.33333333, 0, 1, 0}, YP4[4] = {0.33333333, 0, 0, 1};
  for (int32_t p = 1; p <= NNODE + 1; ++p) {
    double dn[8], det = 0.0;
    VecRef<double> DN(dn, 8, "DN");
    if (NNODE == 4)
      SHP4L(table_entry(XP5, p, "XP5"), table_entry(YP5, p, "YP5"), DN, 1);
    else
      SHP3L(table_entry(XP4, p, "XP4"), table_entry(YP4, p, "YP4"), DN, 1);
    FORMB(NNODE, DN, XY, det);
    const int64_t b = 14 * (p - 1);
    R(b + 13) = 0.0;
    R(b + 14) = 0.0;
    for (int32_t n = 1; n <= NNODE; ++n) {
      const int64_t m = 14 * n;
      const double dx = DN(2 * n - 1), dy = DN(2 * n);
      R(b + 13) -= dx * R(m + 10) + dy * R(m + 12);
      R(b + 14) -= dy * R(m + 11) + dx * R(m + 12);
    }
  }
}

void PLAT_TIME_GNRL(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                    Tdsp& TDSP, ItemList INUM_SERIAL) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  ElementMaterial& MAT = C.material;

  Vec<float> W("SA", kBuffer);
  Vec<int32_t> LM("LM", kMaxDof), IIA("IIA", 4);
  Vec<double> THK("THK", 5), TEMP("TEMP", 24), OFFSET("OFFSET", 25);
  Mat<double> XYZ("XYZ", 3, 4), TR("TR", 3, 3);
  Mat<double> FORC_DISP("FORC_DISP", kMaxDof, kMaxDof), STRS_DISP("STRS_DISP", kMaxStress, kMaxDof);
  // A long history of one row needs only the probe's columns.
  const int32_t table = ItemRows::combinable(R, TDSP, kRows) ? 0 : nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kMaxDof, table), DISP_NO("DISP_NO", kMaxDof, table);
  Mat<double> FORCE("FORCE", kMaxDof, table);
  StepProbe probe(kMaxDof, kMaxDof);
  double sig[200];
  VecRef<double> SIG(sig, 200, "SIG");
  Vec<double> D("D", kMaxDof);

  for (int64_t ie = 1; ie <= R.NUM_ITEMS; ++ie) {
    // An element whose record cannot be read keeps its rows at zero.
    W.fill(0.0f);
    if (!A.read(A.find(sections::PLAT, ID), INUM_SERIAL(ie), W.data(), int64_t{kWords} * 4))
      continue;
    auto word = [&](int32_t k) { return static_cast<double>(W(k)); };

    int32_t nnode = std::max(trunc_i32(word(1)), 0);
    if (nnode > 4) {
      report_bound_failure("IIA", nnode, 1, 4);
      nnode = 4;
    }
    const int32_t neq = 6 * nnode;
    const int32_t nstress = 8 * nnode + 8;
    for (int32_t i = 1; i <= 4; ++i) IIA(i) = trunc_i32(word(1 + i));
    for (int32_t p = 1; p <= 5; ++p) THK(p) = word(5 + p);
    for (int32_t k = 1; k <= 24; ++k) TEMP(k) = word(10 + k);
    LM.fill(0);
    for (int32_t i = 1; i <= neq; ++i) LM(i) = trunc_i32(word(34 + i));
    FORC_DISP.fill(0.0);
    STRS_DISP.fill(0.0);
    for (int32_t i = 1; i <= neq; ++i) {
      for (int32_t j = 1; j <= neq; ++j) FORC_DISP(j, i) = word(59 + 24 * (i - 1) + (j - 1));
      for (int32_t m = 1; m <= nstress; ++m)
        STRS_DISP(m, i) = word(59 + 24 * neq + 24 * (m - 1) + (i - 1));
    }
    int32_t form = trunc_i32(word(kWords));
    if (form == 2 || form == 3) form -= 2;

    OFFSET.fill(0.0);
    for (int32_t k = 1; k <= 13; ++k) OFFSET(k) = TEMP(k);
    for (int32_t r = 1; r <= 3; ++r)
      for (int32_t c = 1; c <= 3; ++c) TR(r, c) = TEMP(14 + 3 * (r - 1) + c - 1);
    MAT.PLATE_PROP[8] = TEMP(23);
    MAT.PLATE_PROP[9] = TEMP(24);
    XYZ.fill(0.0);
    read_node_coordinates(A, IIA.ref(), nnode, XYZ.ref());
    for (int32_t i = 1; i <= nnode; ++i)
      for (int32_t j = 1; j <= 3; ++j) XYZ(j, i) += OFFSET(3 * i - 2 + j);

    // The steps on the columns of DISP_EQ and DISP_NO, each affine in them:
    // the offsets and the record's two matrices.
    ItemRows rows(TDSP, R, kRows, 24, 40, ie);
    auto prepare = [&](Mat<double>& DEQ, Mat<double>& DNO, Mat<double>& FRC, int32_t ncols) {
      if (trunc_i32(TEMP(1)) == 1)
        RECOV_DISP_OFFSET_TIME(DNO.ref(), kMaxDof, ncols, nnode, TR.ref(), OFFSET.ref());
      FRC.fill(0.0);
      if (neq > 0 && ncols > 0)
        DGEMM('N', 'N', kMaxDof, ncols, neq, 1.0, FORC_DISP.data(), kMaxDof, DEQ.data(), kMaxDof,
              0.0, FRC.data(), kMaxDof);
    };
    double t[3][3];
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) t[r][c] = TR(r + 1, c + 1);
    auto step = [&](int32_t, const double* dn, double* frc) {
      std::fill(sig, sig + 200, 0.0);
      std::copy(frc, frc + neq, sig);
      for (int32_t n = 0; n < 2 * nnode; ++n)
        for (int r = 0; r < 3; ++r)
          D(3 * n + r + 1) =
              t[r][0] * dn[3 * n] + t[r][1] * dn[3 * n + 1] + t[r][2] * dn[3 * n + 2];
      for (int32_t m = 1; m <= nstress; ++m) {
        double s = 0.0;
        for (int32_t i = 1; i <= neq; ++i) s += STRS_DISP(m, i) * D(i);
        SIG(24 + m) += s;
      }
      if (nnode == 4)
        TRTONO(SIG, 6, 8);
      else
        CURVED_EXPOLATE(SIG.sub(25, 40), 3);
      MIX_STRESS(SIG.sub(25, 40), SIG.sub(65, 70), nnode, MAT.PLATE_PROP[8], MAT.PLATE_PROP[9],
                 THK.ref());
      if (form == 1) COMPUTE_SHEAR_FORCE(SIG.sub(65, 70), XYZ.ref(), TR.ref(), nnode);
      return static_cast<const double*>(sig);
    };
    if (combined_row(M, rows, probe, neq, LM.ref(), IIA.ref(), nnode, false, prepare, step))
      continue;
    if (DISP_EQ.cols() != nsteps) {
      DISP_EQ.resize(kMaxDof, nsteps);
      DISP_NO.resize(kMaxDof, nsteps);
      FORCE.resize(kMaxDof, nsteps);
    }
    DISP_EQUATION(M, kMaxDof, DISP_EQ.ref(), DISP_NO.ref(), neq, LM.ref(), IIA.ref(), nnode, 0);
    prepare(DISP_EQ, DISP_NO, FORCE, nsteps);
    for (int32_t k = 1; k <= nsteps; ++k) rows.put(k, step(k, DISP_NO.col(k), FORCE.col(k)));
  }
}

}  // namespace respcore
