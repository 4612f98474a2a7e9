// The plate result kit: strains of the general section, fibre and force
// rows, extrapolation to the nodes, turns and offsets.
#include "plate/plate_results.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "plane/panel_turns.hpp"
#include "plate/dkt.hpp"
#include "plate/plate_section.hpp"
#include "recovery/point_extrapolation.hpp"
#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;

// Stress blocks from known membrane and surface bending strains; the strain
// routine and the fibre rule must give back fibre strains whose stresses
// are the fibre stresses.
TEST(PlateStrain, FibreStrainsInvertFibreStresses) {
  for (int kind = 0; kind < 3; ++kind) {
    Material m;
    const double t = 0.2;
    if (kind == 0) m.isotropic(2.0e5, 0.3, t, t);
    if (kind > 0) m.orthotropic(1.5e5, 0.28, 0.9e5, 4.0e4, 3.0e4, 2.0e4, t, t);
    if (kind == 2) m.K.plate.SECT_ANGLE = 0.6;  // material axes turned on the element
    const PlateSection sec = general_plate_section(m.ctx());
    double S[40] = {}, R[70] = {}, E[30] = {}, strain[4][6];
    for (int p = 0; p < 4; ++p) {
      for (int c = 0; c < 6; ++c) strain[p][c] = 1e-4 * std::sin(1.0 + 7 * p + 3 * c);
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
          S[8 * p + r] += sec.Dm[r][c] * strain[p][c];
          S[8 * p + 3 + r] += sec.Dm[r][c] * strain[p][3 + c];  // stress of the surface strain
        }
    }
    double thk[5] = {t, t, t, t, 0}, tr[9] = {};
    PlateStrainSaved sv;
    COMPUTE_PLATE_STRAIN(m.ctx(), sv, VecRef<double>(E, 30, "STRAIN"), VecRef<double>(S, 40, "S"),
                         MatRef<double>(tr, 3, 3, "TR"), VecRef<double>(thk, 5, "THK"), 3, 0, 1, 1,
                         0);
    MIX_STRESS_STRAIN(VecRef<double>(S, 40, "S"), VecRef<double>(R, 70, "R"),
                      VecRef<double>(E, 30, "STRAIN"), 3, 0.5, -0.5, VecRef<double>(thk, 5, "THK"),
                      m.K.ELEM_MATERIAL.plate_prop());
    for (int p = 0; p < 4; ++p)
      for (int r = 0; r < 3; ++r) {
        double top = 0, bot = 0;
        for (int c = 0; c < 3; ++c)
          top += sec.Dm[r][c] * E[6 * p + c], bot += sec.Dm[r][c] * E[6 * p + 3 + c];
        EXPECT_NEAR(top, R[14 * p + r], 1e-9 * 2e5 * 1e-4) << kind << p << r;
        EXPECT_NEAR(bot, R[14 * p + 3 + r], 1e-9 * 2e5 * 1e-4) << kind << p << r;
        EXPECT_NEAR(E[6 * p + r], strain[p][r] + strain[p][3 + r], 1e-15) << kind;
        // Moments: the surface bending stress times -t^2/6.
        EXPECT_NEAR(R[14 * p + 9 + r], -t * t / 6 * S[8 * p + 3 + r], 1e-12);
      }
  }
}

// With a fibre factor the three-value force rule gives moments of zero,
// signed as -(bending stress * factor); without one, -t^2/6 times the stress.
TEST(PlateStrain, MixStressMomentSigns) {
  double S[8] = {1, 2, 3, 5.0, -4.0, 0.0, 7, 8}, R[14], thk[1] = {0.3};
  MIX_STRESS(VecRef<double>(S, 8, "S"), VecRef<double>(R, 14, "R"), 0, 0.5, -0.5,
             VecRef<double>(thk, 1, "THK"));
  EXPECT_EQ(R[9], 0.0);
  EXPECT_TRUE(std::signbit(R[9]));
  EXPECT_FALSE(std::signbit(R[10]));
  EXPECT_TRUE(std::signbit(R[11]));
  EXPECT_EQ(R[12], 8 * 0.3);
  EXPECT_EQ(R[0], 1 + 5.0);
  MIX_STRESS(VecRef<double>(S, 8, "S"), VecRef<double>(R, 14, "R"), 0, 0.0, -0.5,
             VecRef<double>(thk, 1, "THK"));
  EXPECT_DOUBLE_EQ(R[9], -0.09 * 5.0 / 6);
}

// Values of a linear field at the sampling points become its values at the
// corners and midsides.
TEST(Extrapolation, LinearFieldsAreExact) {
  auto f = [](int c, double x, double y) { return 1.0 + c + (2.0 - c) * x + (0.5 * c - 1.0) * y; };
  const double s = 1 / std::sqrt(3.0);
  const double quad_pts[4][2] = {{-s, -s}, {s, -s}, {s, s}, {-s, s}};
  const double quad_nodes[8][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1},
                                   {0, -1},  {1, 0},  {0, 1}, {-1, 0}};
  const double tri_pts[3][2] = {{1. / 6, 1. / 6}, {2. / 3, 1. / 6}, {1. / 6, 2. / 3}};
  const double tri_nodes[6][2] = {{0, 0}, {1, 0}, {0, 1}, {0.5, 0}, {0.5, 0.5}, {0, 0.5}};
  auto check = [&](const char* what, const std::function<void(VecRef<double>)>& run, int first,
                   int ncomp, int npts, const double(*pts)[2], int nnodes,
                   const double(*nodes)[2]) {
    double v[80] = {};
    for (int p = 0; p < npts; ++p)
      for (int c = 0; c < ncomp; ++c) v[first - 1 + ncomp * p + c] = f(c, pts[p][0], pts[p][1]);
    run(VecRef<double>(v, 80, "V"));
    for (int n = 0; n < nnodes; ++n)
      for (int c = 0; c < ncomp; ++c)
        EXPECT_NEAR(v[first - 1 + ncomp * n + c], f(c, nodes[n][0], nodes[n][1]), 1e-12)
            << what << n << c;
  };
  check(
      "TRTONO", [](VecRef<double> v) { TRTONO(v, 6, 8); }, 33, 8, 4, quad_pts, 4, quad_nodes);
  check(
      "TRTONO plane", [](VecRef<double> v) { TRTONO(v, 3, 3); }, 16, 3, 4, quad_pts, 4, quad_nodes);
  check(
      "TRTONO_3NODE_STRES", [](VecRef<double> v) { TRTONO_3NODE_STRES(v, 3); }, 16, 3, 3, tri_pts,
      3, tri_nodes);
  for (int n : {3, 6})
    check(
        "CURVED_EXPOLATE", [n](VecRef<double> v) { CURVED_EXPOLATE(v, n); }, 9, 8, 3, tri_pts, n,
        tri_nodes);
  check(
      "CURVED_EXPOLATE 8", [](VecRef<double> v) { CURVED_EXPOLATE(v, 8); }, 9, 8, 4, quad_pts, 8,
      quad_nodes);
  // The centre and the points 0.4 of the way to the corners.
  const double tri4[4][2] = {{1. / 3, 1. / 3}, {0.2, 0.2}, {0.6, 0.2}, {0.2, 0.6}};
  const double tri4_nodes[4][2] = {{1. / 3, 1. / 3}, {0, 0}, {1, 0}, {0, 1}};
  check(
      "TRTONO_3", [](VecRef<double> v) { TRTONO_3(v, 6, 8); }, 25, 8, 4, tri4, 4, tri4_nodes);
}

// Turning results to the user's axes by an angle and back changes nothing;
// a quarter turn exchanges the two directions; element and panel turns of
// force triples undo each other.
TEST(PlateTurns, RoundTripsAndQuarterTurn) {
  double sig[134], ref[134];
  for (int k = 0; k < 134; ++k) ref[k] = sig[k] = std::cos(0.37 * k + 1.0);
  VecRef<double> SIG(sig, 134, "SIG");
  TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(4, 33.0, SIG);
  TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(4, -33.0, SIG);
  for (int k = 0; k < 134; ++k) EXPECT_NEAR(sig[k], ref[k], 1e-13) << k;
  TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(4, 90.0, SIG);
  TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(4, 0.0009, SIG);  // below the threshold: nothing
  for (int p = 0; p < 5; ++p) {
    const int b = 24 + 8 * p, r = 64 + 14 * p;
    EXPECT_NEAR(sig[b] + sig[b + 2], ref[b + 1] - ref[b + 2], 1e-13);
    EXPECT_NEAR(sig[b + 7], ref[b + 6], 1e-13);  // xz' = yz
    EXPECT_NEAR(sig[r + 12], ref[r + 13], 1e-13);
  }
  const double c = std::cos(0.4), s = std::sin(0.4);
  double t[9] = {c, -s, 0, s * 0.6, c * 0.6, -0.8, s * 0.8, c * 0.8, 0.6};  // rows are axes
  MatRef<double> T(t, 3, 3, "T");
  double w[24];
  LOCPANEL(VecRef<double>(sig, 24, "SIG"), T, 4);
  LOCTOGLO_FOC(VecRef<double>(sig, 24, "FORCL"), VecRef<double>(w, 24, "FORC"), 24, T);
  GLOTOLOC_FOC(VecRef<double>(w, 24, "IN"), VecRef<double>(ref, 24, "OUT"), 24, T);
  for (int k = 0; k < 24; ++k) EXPECT_NEAR(ref[k], sig[k], 1e-14);  // the same turn as LOCPANEL
  LOCTOGLO_FORCE(T, VecRef<double>(ref, 24, "V"), 4);
  for (int k = 0; k < 24; ++k) EXPECT_NEAR(ref[k], w[k], 1e-14);
}

// A small rigid rotation about the origin seen at the nodes is the same
// rotation at the offset positions.
TEST(PlateTurns, OffsetsCarryRigidRotation) {
  const double th[3] = {1e-3, -2e-3, 0.5e-3}, a[3] = {0.1, 0.2, -0.3};
  const double node[3][3] = {{0, 0, 0}, {2, 0.5, 1}, {1, 3, -1}},
               off[3][3] = {{0.1, 0, 0.3}, {0, -0.2, 0.1}, {0.5, 0.5, 0}};
  auto motion = [&](const double* x, double* d) {
    d[0] = a[0] + th[1] * x[2] - th[2] * x[1];
    d[1] = a[1] + th[2] * x[0] - th[0] * x[2];
    d[2] = a[2] + th[0] * x[1] - th[1] * x[0];
    d[3] = th[0], d[4] = th[1], d[5] = th[2];
  };
  double disp[36], offset[25] = {2.0}, tr[9] = {};
  for (int s = 0; s < 2; ++s)
    for (int n = 0; n < 3; ++n) {
      motion(node[n], disp + 18 * s + 6 * n);
      for (int j = 0; j < 3; ++j) offset[3 * n + 1 + j] = off[n][j];
    }
  RECOV_DISP_OFFSET_TIME(MatRef<double>(disp, 18, 2, "DISP_NO"), 18, 2, 3,
                         MatRef<double>(tr, 3, 3, "TR"), VecRef<double>(offset, 25, "OFFSET"));
  for (int n = 0; n < 3; ++n) {
    double x[3], d[6];
    for (int j = 0; j < 3; ++j) x[j] = node[n][j] + off[n][j];
    motion(x, d);
    for (int c = 0; c < 6; ++c) EXPECT_NEAR(disp[18 + 6 * n + c], d[c], 1e-15);
  }
}

// The linear fit through four points reproduces a plane at the nodes; four
// coincident points give zeros.
TEST(PlateTurns, LeastSquareFit) {
  double xy[6] = {0, 0, 2, 0, 0.5, 1.5};
  double pts[8] = {0.2, 1.1, 0.7, 1.3, 0.1, 0.3, 0.9, 0.6}, val[7];
  for (int k = 0; k < 4; ++k) val[k] = 3 - 2 * pts[k] + 0.5 * pts[4 + k];
  LEAST_SQUARE(MatRef<double>(xy, 2, 3, "XY"), VecRef<double>(pts, 8, "PTS"),
               VecRef<double>(val, 7, "VAL"));
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(val[4 + i], 3 - 2 * xy[2 * i] + 0.5 * xy[2 * i + 1], 1e-12);
  double same[8] = {1, 1, 1, 1, 2, 2, 2, 2}, v2[7] = {1, 2, 3, 4, 9, 9, 9};
  LEAST_SQUARE(MatRef<double>(xy, 2, 3, "XY"), VecRef<double>(same, 8, "PTS"),
               VecRef<double>(v2, 7, "VAL"));
  for (int i = 4; i < 7; ++i) EXPECT_EQ(v2[i], 0.0);
}

}  // namespace
}  // namespace respcore
