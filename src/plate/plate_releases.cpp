// Released freedoms of a plate: the displacements that the element's
// released freedoms take, recovered from the element itself.
#include <cmath>

#include "numeric/dense.hpp"
#include "plate/plate_histories.hpp"

namespace respcore {

int32_t released_components(double code) {
  const double whole = std::trunc(std::fabs(code));
  if (!std::isfinite(whole)) return 0;
  const auto c = static_cast<int32_t>(std::fmod(whole, 1.0e6));
  int32_t mask = 0;
  for (int32_t k = 1, scale = 100000; k <= 6; ++k, scale /= 10)
    if ((c / scale) % 10 != 0) mask |= 1 << (k - 1);
  return mask;
}

void RECOV_RLS_PLATE(const PlateContext& C, int32_t PLATE_KIND, int32_t MEMB_KIND,
                     MatRef<double> DISP_NO_arg, int32_t ROWS, MatRef<double> XYZ,
                     int32_t NUM_STEPS, int32_t NNODE, MatRef<double> TR, VecRef<double> RLS_CODE) {
  if (NUM_STEPS <= 0 || (NNODE != 3 && NNODE != 4) || (PLATE_KIND != 0 && PLATE_KIND != 1)) return;
  const int32_t nt = 6 * NNODE;
  // Kept freedoms first, released ones last, as the condensation orders them.
  int32_t order[24], nr = 0, nc = 0;
  int32_t mask[4] = {};
  for (int32_t n = 1; n <= NNODE; ++n) mask[n - 1] = released_components(RLS_CODE(n));
  for (int32_t i = 0; i < nt; ++i)
    if (!(mask[i / 6] & (1 << (i % 6)))) order[nc++] = i;
  for (int32_t i = 0; i < nt; ++i)
    if (mask[i / 6] & (1 << (i % 6))) order[nc + nr++] = i;
  if (nr == 0) return;

  // The ordinary stiffness of the element in its own axes: the variant is
  // not known yet, and every section variant shares these kinematics.
  double k[24 * 24] = {}, work[24 * 24];
  MatRef<double> K(k, nt, nt, "STIF");
  if (NNODE == 4) {
    double x[4], y[4], z[4];
    for (int32_t i = 0; i < 4; ++i)
      x[i] = XYZ(1, i + 1), y[i] = XYZ(2, i + 1), z[i] = XYZ(3, i + 1);
    VecRef<double> X(x, 4, "X"), Y(y, 4, "Y"), Z(z, 4, "Z");
    MatRef<double> WORK(work, 24, 24, "WORK");
    if (PLATE_KIND == 0)
      DKMQ_STF_WARP(C, MEMB_KIND, K, WORK, 24, X, Y, Z, TR, 0);
    else
      SHL3DS(C, MEMB_KIND, K, WORK, 24, X, Y, Z, TR, 0);
  } else if (PLATE_KIND == 0) {
    DKMTLMT_STF(C, XYZ, TR, K);
  } else {
    DKTLMT_STF(C, XYZ, TR, K);
  }

  double kp[24 * 24], forc[24] = {}, w[24 * 24], w1[24 * 25];
  MatRef<double> KP(kp, nt, nt, "ST");
  for (int32_t b = 1; b <= nt; ++b)
    for (int32_t a = 1; a <= nt; ++a) KP(a, b) = K(order[a - 1] + 1, order[b - 1] + 1);
  MatRef<double> WORK1(w1, nr, nc + 1, "WORK1");
  STCOND(nt, nr, KP, VecRef<double>(forc, nt, "FORC"), MatRef<double>(w, nr, nr, "WORK"), WORK1, 1);

  MatRef<double> DISP_NO = as_shape(DISP_NO_arg, ROWS, NUM_STEPS);
  double t[3][3];
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) t[r][c] = TR(r + 1, c + 1);
  for (int32_t s = 1; s <= NUM_STEPS; ++s) {
    double d[24];
    for (int32_t q = 0; q < 2 * NNODE; ++q) {
      const double g[3] = {DISP_NO(3 * q + 1, s), DISP_NO(3 * q + 2, s), DISP_NO(3 * q + 3, s)};
      for (int r = 0; r < 3; ++r) d[3 * q + r] = t[r][0] * g[0] + t[r][1] * g[1] + t[r][2] * g[2];
    }
    double dr[24];
    for (int32_t a = 1; a <= nr; ++a) {
      double v = 0.0;
      for (int32_t b = 1; b <= nc; ++b) v -= WORK1(a, b) * d[order[b - 1]];
      dr[a - 1] = v;
    }
    for (int32_t a = 0; a < nr; ++a) d[order[nc + a]] = dr[a];
    for (int32_t n = 0; n < NNODE; ++n) {
      if (mask[n] == 0) continue;
      for (int32_t q = 2 * n; q < 2 * n + 2; ++q)
        for (int c = 0; c < 3; ++c)
          DISP_NO(3 * q + c + 1, s) =
              t[0][c] * d[3 * q] + t[1][c] * d[3 * q + 1] + t[2][c] * d[3 * q + 2];
    }
  }
}

}  // namespace respcore
