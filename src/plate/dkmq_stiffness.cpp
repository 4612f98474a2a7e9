// Element stiffness of the plate quadrilaterals.
#include <algorithm>

#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"
#include "plate/dkmq.hpp"
#include "plate/quad_drilling.hpp"
#include "plate/wilson.hpp"

namespace respcore {

namespace {

// The fictitious drilling stiffness of the incompatible-mode membrane: a
// small fraction of the smallest diagonal term, but no less than 1.0E-10 of
// the largest.
constexpr double kDrillFraction = 1.0e-5;
constexpr double kDrillConditionLimit = 1.0e10;

void quad_stiffness(const PlateContext& C, int32_t MEMB_KIND, bool thin, MatRef<double> S_arg,
                    MatRef<double> WORK, int32_t N, VecRef<double> X, VecRef<double> Y,
                    VecRef<double> Z, MatRef<double> T, int32_t TOGLOBAL) {
  MatRef<double> S = as_shape(S_arg, N, N);
  const ElementMaterial& m = C.mat;
  const double E = m.MAT_YOUNG, NU = m.MAT_POISSON;
  const double T1 = m.PLATE_PROP[0], T2 = m.PLATE_PROP[1];

  double d[9], dbend[9], ds[4];
  MatRef<double> D(d, 3, 3, "D"), DBEND(dbend, 3, 3, "DB"), DS(ds, 2, 2, "DS");
  dkmq_material(C, 1, D, DBEND, DS);

  double xy1[8], zc[4];
  MatRef<double> XY1(xy1, 2, 4, "XY1");
  VecRef<double> ZCOOR(zc, 4, "ZCOOR");
  const int32_t warped = dkmq_flatten(X, Y, Z, T, XY1, ZCOOR);

  for (int32_t j = 1; j <= 24; ++j)
    for (int32_t i = 1; i <= 24; ++i) S(i, j) = 0.0;

  if (MEMB_KIND == 0) {
    double k12[144], work1[36];
    MatRef<double> K12(k12, 12, 12, "S"), WORK1(work1, 4, 9, "WORK1");
    WILSON(XY1, D, T1, 12, 0, K12, WORK1);
    for (int32_t j = 1; j <= 8; ++j)
      for (int32_t i = 1; i <= 8; ++i)
        S(6 * ((i - 1) / 2) + (i - 1) % 2 + 1, 6 * ((j - 1) / 2) + (j - 1) % 2 + 1) += K12(i, j);
  } else {
    QUAD_WITH_DRILLING(C, XY1, E, E / (1.0 - NU * NU), NU, T1, S, 0);
  }

  // Warp rows first, so that the bending stiffness sees the same curvature
  // rows as the stresses.
  double warp[72] = {}, est[72], a[48], dn[8], dp[8], jinv[4], q[8];
  MatRef<double> WARP(warp, 3, 24, "EST"), EST(est, 3, 24, "EST"), A(a, 4, 12, "A");
  MatRef<double> JINV(jinv, 2, 2, "JINV"), Q(q, 2, 4, "Q");
  VecRef<double> DN(dn, 8, "DN"), DP(dp, 8, "DP");
  if (warped) JACQ3D_DKMQ(XY1, ZCOOR, WARP);

  DkmqGeom G;
  DKMQINI(G, XY1, thin ? 0.0 : T2, NU);
  for (int32_t ix = 1; ix <= 2; ++ix) {
    for (int32_t iy = 1; iy <= 2; ++iy) {
      double xi, eta, w1, w2, detj;
      INTPT4(2, ix, xi, w1);
      INTPT4(2, iy, eta, w2);
      SHP4L(xi, eta, DN, 1);
      DPN(xi, eta, DP);
      DKMQINV(4, XY1, DN, DP, detj, JINV);
      std::copy(warp, warp + 72, est);
      BMMAT(G, EST, A, DN, DP);
      DKMQBND_MOD(S, EST, DBEND, w1 * w2 * detj * T2 * T2 * T2 / 12.0, warped);
      if (!thin) {
        dkmq_shear_rows(G, xi, eta, JINV, Q);
        DKMQSHR(G, S, Q, DS, 0.0625 * w1 * w2 * detj * T2);
      }
    }
  }

  if (MEMB_KIND == 0) {
    double dmin = 0.0, dmax = 0.0;
    bool first = true;
    for (int32_t i = 2; i <= 24; ++i) {
      if (i % 6 == 0) continue;
      if (first || S(i, i) < dmin) dmin = S(i, i);
      if (first || S(i, i) > dmax) dmax = S(i, i);
      first = false;
    }
    double v = kDrillFraction * dmin;
    if (dmax / v > kDrillConditionLimit) v = dmax / kDrillConditionLimit;
    for (int32_t n = 1; n <= 4; ++n) S(6 * n, 6 * n) += v;
  }

  if (warped)
    for (int32_t i = 1; i <= 4; ++i)
      for (int32_t j = i; j <= 4; ++j) PROJ3D_MOD(S, i, j, ZCOOR(i), ZCOOR(j));

  for (int32_t j = 1; j <= 24; ++j)
    for (int32_t i = j + 1; i <= 24; ++i) S(i, j) = S(j, i);
  if (TOGLOBAL == 1) LOCTOGLO(S, N, WORK, N, T, 24);
}

}  // namespace

void DKMQ_STF_WARP(const PlateContext& C, int32_t MEMB_KIND, MatRef<double> S, MatRef<double> WORK,
                   int32_t N, VecRef<double> X, VecRef<double> Y, VecRef<double> Z,
                   MatRef<double> T, int32_t TOGLOBAL) {
  quad_stiffness(C, MEMB_KIND, false, S, WORK, N, X, Y, Z, T, TOGLOBAL);
}

void SHL3DS(const PlateContext& C, int32_t MEMB_KIND, MatRef<double> S, MatRef<double> WORK,
            int32_t N, VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> T,
            int32_t TOGLOBAL) {
  quad_stiffness(C, MEMB_KIND, true, S, WORK, N, X, Y, Z, T, TOGLOBAL);
}

}  // namespace respcore
