// One plate quadrilateral at a time: stresses of fields whose answer is known
// (rigid motion, constant strain and curvature, the side shear law, the warp
// rows), the stiffness's null space, the two membrane condensations and the
// message trace.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>
#include <tuple>
#include <vector>

#include "core/kernel_state.hpp"
#include "plane/panel_axes.hpp"
#include "plate/dkmq.hpp"
#include "plate/quad_drilling.hpp"
#include "plate/wilson.hpp"

namespace respcore {
namespace {

struct Quad {
  KernelState K;
  PlateContext ctx{K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance};
  double xyz[12], tr[9] = {}, loc[4][3];  // loc: element axes, node 1 at the origin
  DkmqSaved sv;
  double st[40];

  Quad(const double g[12], bool axes_from_nodes = true) {
    K.ELEM_MATERIAL.MAT_YOUNG = 1000.0;
    K.ELEM_MATERIAL.MAT_POISSON = 0.25;
    K.ELEM_MATERIAL.PLATE_PROP[0] = K.ELEM_MATERIAL.PLATE_PROP[1] = 0.1;
    std::copy(g, g + 12, xyz);
    double x[4], y[4], z[4];
    for (int n = 0; n < 4; ++n) x[n] = g[3 * n], y[n] = g[3 * n + 1], z[n] = g[3 * n + 2];
    if (axes_from_nodes)
      QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
            MatRef<double>(tr, 3, 3, "TR"), 4);
    else
      tr[0] = tr[4] = tr[8] = 1.0;
    for (int n = 0; n < 4; ++n)
      for (int i = 0; i < 3; ++i)
        loc[n][i] = tr[i] * (x[n] - x[0]) + tr[i + 3] * (y[n] - y[0]) + tr[i + 6] * (z[n] - z[0]);
  }
  // Routine 0 DKMQ, 1 thin, 2 DKMQ general section, 3 thin general section.
  void stress(int routine, int memb, double* d, int newelem = 1, int keep = 0,
              const PlateSection& s = PlateSection{}) {
    VecRef<double> D(d, 24, "D");
    MatRef<double> ST(st, 8, 5, "ST"), X(xyz, 3, 4, "XYZ"), T(tr, 3, 3, "TR");
    if (routine == 0) DKMQ_STR_WARP(ctx, sv, memb, 4, D, ST, X, T, newelem, keep);
    if (routine == 1) SHL3DS_STR(ctx, sv, memb, 4, D, ST, X, T, newelem, keep);
    if (routine == 2) DKMQ_STR_WARP_GNRL(s, sv, memb, 4, D, ST, X, T, newelem, keep);
    if (routine == 3) SHL3DS_STR_GNRL(s, sv, memb, 4, D, ST, X, T, newelem, keep);
  }
  // Nodal vector (element axes) of rigid motion t + w x r.
  void rigid(const double t[3], const double w[3], double* d) const {
    for (int n = 0; n < 4; ++n) {
      const double* r = loc[n];
      const double c[3] = {w[1] * r[2] - w[2] * r[1], w[2] * r[0] - w[0] * r[2], w[0] * r[1] - w[1] * r[0]};
      for (int i = 0; i < 3; ++i) d[6 * n + i] = t[i] + c[i], d[6 * n + 3 + i] = w[i];
    }
  }
};

// A distorted flat element, (0,0), (2,0.3), (1.6,1.9), (-0.2,1.2) in the
// plane through (0.3, 0.1, 0.2) spanned by (2,2,1)/3 and (-2,1,2)/3.
const double* tilted() {
  static double g[12];
  const double xy[8] = {0, 0, 2.0, 0.3, 1.6, 1.9, -0.2, 1.2}, e1[3] = {2, 2, 1}, e2[3] = {-2, 1, 2}, o[3] = {0.3, 0.1, 0.2};
  for (int n = 0; n < 4; ++n)
    for (int i = 0; i < 3; ++i) g[3 * n + i] = o[i] + (xy[2 * n] * e1[i] + xy[2 * n + 1] * e2[i]) / 3.0;
  return g;
}
const double* const kTilted = tilted();
constexpr double kWarped[12] = {0.0, 0.0, 0.2, 2.0, 0.3, 0.9, 1.8, 1.9, 1.3, 0.1, 1.6, 0.0};

// A general section with couplings everywhere.
PlateSection hand_section() {
  PlateSection s;
  const double dm[3][3] = {{900, 200, 40}, {200, 700, -30}, {40, -30, 300}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) s.Dm[i][j] = dm[i][j], s.Dbs[i][j] = 0.05 * dm[i][j];
  s.Ds[0][0] = 300, s.Ds[1][1] = 250, s.Ds[0][1] = s.Ds[1][0] = 20;
  s.phi_coef = 0.03;
  return s;
}

class QuadFields : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(QuadFields, RigidMotionIsFreeAndConstantFieldsAreExact) {
  const auto [routine, memb] = GetParam();
  Quad q(kTilted);
  const PlateSection gs = hand_section();
  double d[24];
  for (int m = 0; m < 6; ++m) {
    double t[3] = {}, w[3] = {};
    (m < 3 ? t : w)[m % 3] = 1.0;
    q.rigid(t, w, d);
    q.stress(routine, memb, d, m == 0 ? 1 : 0, 0, gs);
    for (double v : q.st) EXPECT_NEAR(v, 0.0, 1e-10) << "mode " << m;
  }
  // Linear in-plane field with its spin; quadratic Kirchhoff deflection.
  const double k[3] = {0.02, -0.03, 0.015};
  for (int n = 0; n < 4; ++n) {
    const double x = q.loc[n][0], y = q.loc[n][1];
    const double wx = k[0] * x + k[2] * y + 0.1, wy = k[1] * y + k[2] * x - 0.2;
    const double v[6] = {0.1 + 1e-3 * x + 2e-3 * y, -1e-3 * x + 3e-3 * y, 0.5 * (k[0] * x * x + k[1] * y * y) + k[2] * x * y + 0.1 * x - 0.2 * y, wy, -wx, -1.5e-3};
    std::copy(v, v + 6, d + 6 * n);
  }
  q.stress(routine, memb, d, 1, 0, gs);
  PlateSection expect = gs;
  if (routine < 2) {  // the ordinary isotropic section
    const double c = 1000.0 / (1 - 0.0625), dm[3][3] = {{c, 0.25 * c, 0}, {0.25 * c, c, 0}, {0, 0, 400}};
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) expect.Dm[i][j] = dm[i][j], expect.Dbs[i][j] = 0.05 * dm[i][j];
  }
  const double eps[3] = {1e-3, 3e-3, 1e-3}, kap[3] = {-k[0], -k[1], -2 * k[2]}, g0[2] = {};
  double blk[8];
  expect.stress_block(eps, kap, g0, blk);
  for (int p = 0; p < 5; ++p)
    for (int r = 0; r < 8; ++r) EXPECT_NEAR(q.st[8 * p + r], blk[r], 1e-9) << "point " << p + 1 << " row " << r + 1;
  // Repacked: the membrane triples of the five points lead DISP and STRS.
  q.stress(routine, memb, d, 0, 1, gs);
  for (int i = 0; i < 24; ++i) EXPECT_NEAR(d[i], i < 15 ? blk[i % 3] : 0.0, 1e-9);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(q.st[i], d[i]);
  EXPECT_NEAR(q.st[15], blk[7], 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Quad, QuadFields, ::testing::Combine(::testing::Values(0, 1, 2, 3), ::testing::Values(0, 1)));

// Heights h (1, -1, 1, -1) on the square of side a: H = (-4h, 4h, 0),
// W = 4 a^2, so the warp curvature of a uniform rz is (4h, -4h, 0) rz / a^2.
TEST(WarpedQuad, RigidMotionLeavesNoCurvatureAndDrillingRotationBendsByTheWarp) {
  const double a = 2.0, h = 0.05;
  const double g[12] = {0, 0, h, a, 0, -h, a, a, h, 0, a, -h};
  for (int routine : {0, 1}) {
    Quad q(g, false);
    for (int n = 0; n < 4; ++n) q.loc[n][2] = g[3 * n + 2];
    double d[24], t[3] = {}, w[3] = {};
    for (int m = 0; m < 6; ++m) {
      std::fill(t, t + 3, 0.0), std::fill(w, w + 3, 0.0);
      (m < 3 ? t : w)[m % 3] = 1e-3;
      q.rigid(t, w, d);
      q.stress(routine, 0, d, m == 0 ? 1 : 0);
      const bool tilt = m == 3 || m == 4;  // in-plane axis: hourglass u, v at the nodes
      for (int p = 0; p < 5; ++p)
        for (int r = 0; r < 8; ++r) {
          if (tilt && p > 0 && r < 3) continue;
          EXPECT_NEAR(q.st[8 * p + r], 0.0, 1e-12) << "mode " << m << " point " << p + 1 << " row " << r + 1;
        }
      if (tilt) {
        EXPECT_GT(std::fabs(q.st[8 * 1 + (m == 3 ? 1 : 0)]), 1e-3) << "mode " << m;
      }
    }
    std::fill(d, d + 24, 0.0);
    for (int n = 0; n < 4; ++n) d[6 * n + 5] = 1e-3;
    q.stress(routine, 0, d);
    const double c = 1000.0 / (1 - 0.0625), kx = 4 * h / (a * a) * 1e-3;
    for (int p = 0; p < 5; ++p) {
      EXPECT_NEAR(q.st[8 * p + 3], 0.05 * c * (kx - 0.25 * kx), 1e-12);
      EXPECT_NEAR(q.st[8 * p + 4], 0.05 * c * (0.25 * kx - kx), 1e-12);
      EXPECT_NEAR(q.st[8 * p + 5], 0.0, 1e-12);
    }
  }
}

// On an a x b rectangle, w = x + 2y with no rotation: each side carries
// the shear phi/(1+phi) of its slope, phi = 2.4 t^2 / ((1-nu) L^2); the xz
// stress lands in row 8, the yz stress in row 7.
TEST(DkmqShear, SideShearFollowsPhiOverOnePlusPhi) {
  const double a = 0.4, b = 0.25;
  const double g[12] = {0, 0, 0, a, 0, 0, a, b, 0, 0, b, 0};
  Quad q(g);
  double d[24] = {};
  for (int n = 0; n < 4; ++n) d[6 * n + 2] = q.loc[n][0] + 2 * q.loc[n][1];
  q.stress(0, 0, d);
  const double gs = 400.0 / 1.2, pa = 2.4 * 0.01 / (0.75 * a * a), pb = 2.4 * 0.01 / (0.75 * b * b);
  for (int p = 0; p < 5; ++p) {
    EXPECT_NEAR(q.st[8 * p + 7], gs * pa / (1 + pa), 1e-10);
    EXPECT_NEAR(q.st[8 * p + 6], gs * 2 * pb / (1 + pb), 1e-10);
  }
  q.stress(1, 0, d);  // the thin quadrilateral has none
  for (int p = 0; p < 5; ++p) {
    EXPECT_EQ(q.st[8 * p + 6], 0.0);
    EXPECT_EQ(q.st[8 * p + 7], 0.0);
  }
}

// Global stiffness of a tilted flat and a warped element: symmetric, and
// rigid motions (translations, rotations about the origin) cost nothing but
// the fictitious drilling term of the incompatible-mode membrane.
TEST(QuadStiffness, SymmetricWithRigidMotionsInItsNullSpace) {
  for (const double* g : {kTilted, kWarped})
    for (bool thin : {false, true})
      for (int memb : {0, 1}) {
        Quad q(g);
        double s[576], w[576], x[4], y[4], z[4];
        for (int n = 0; n < 4; ++n) x[n] = g[3 * n], y[n] = g[3 * n + 1], z[n] = g[3 * n + 2];
        (thin ? SHL3DS : DKMQ_STF_WARP)(q.ctx, memb, MatRef<double>(s, 24, 24, "S"), MatRef<double>(w, 24, 24, "W"), 24,
                                        VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
                                        MatRef<double>(q.tr, 3, 3, "T"), 1);
        double smax = 0.0;
        for (int i = 0; i < 24; ++i)
          for (int j = 0; j < 24; ++j) {
            EXPECT_NEAR(s[i + 24 * j], s[j + 24 * i], 1e-9 * std::fabs(s[i + 24 * j]));
            smax = std::max(smax, std::fabs(s[i + 24 * j]));
          }
        for (int m = 0; m < 6; ++m) {
          double r[24];
          for (int n = 0; n < 4; ++n) {
            const double p[3] = {x[n], y[n], z[n]};
            double t[3] = {}, om[3] = {};
            (m < 3 ? t : om)[m % 3] = 1.0;
            const double c[3] = {om[1] * p[2] - om[2] * p[1], om[2] * p[0] - om[0] * p[2], om[0] * p[1] - om[1] * p[0]};
            for (int i = 0; i < 3; ++i) r[6 * n + i] = t[i] + c[i], r[6 * n + 3 + i] = om[i];
          }
          for (int i = 0; i < 24; ++i) {
            double f = 0.0;
            for (int j = 0; j < 24; ++j) f += s[i + 24 * j] * r[j];
            EXPECT_NEAR(f, 0.0, (memb == 0 ? 2e-5 : 1e-11) * smax) << thin << memb << " mode " << m << " row " << i;
          }
        }
      }
}

TEST(MembraneCondensation, CholeskyFormsMatchTheOrdinaryOnes) {
  double xy[8] = {0, 0, 2.0, 0.3, 1.6, 1.9, -0.2, 1.2}, d[9] = {900, 200, 40, 200, 700, -30, 40, -30, 300};
  MatRef<double> XY(xy, 2, 4, "XY"), D(d, 3, 3, "D");
  for (int opt : {0, 1}) {
    double s1[144], s2[144], w1[36], w2[36];
    WILSON(XY, D, 0.1, 12, opt, MatRef<double>(s1, 12, 12, "S"), MatRef<double>(w1, 4, 9, "W"));
    WILSON_GNRL(XY, D, 0.1, 12, opt, MatRef<double>(s2, 12, 12, "S"), MatRef<double>(w2, 4, 9, "W"));
    for (int i = 0; i < 36; ++i) EXPECT_NEAR(w1[i], w2[i], 1e-12);
    for (int i = 0; i < 8; ++i)
      for (int j = 0; j < 8; ++j) EXPECT_NEAR(s1[i + 12 * j], s2[i + 12 * j], 1e-9);
  }
  // Isotropic D: the general drilling membrane is the ordinary one, up to the
  // single-precision penalty factor.
  Quad q(kTilted);
  const double E = 1000, nu = 0.25, c = E / (1 - nu * nu);
  double di[9] = {c, nu * c, 0, nu * c, c, 0, 0, 0, 400}, s1[576] = {}, s2[576] = {};
  QUAD_WITH_DRILLING(q.ctx, XY, E, c, nu, 0.1, MatRef<double>(s1, 24, 24, "S"), 0);
  QUAD_WITH_DRILLING_GNRL(XY, MatRef<double>(di, 3, 3, "D1"), 400, 0.1, MatRef<double>(s2, 24, 24, "S"));
  for (int i = 0; i < 576; ++i) EXPECT_NEAR(s1[i], s2[i], 1e-6 * std::fabs(s1[i]) + 1e-10);
  // A uniform drilling rotation is held by the spin penalty alone:
  // energy 0.001 E T AREA / (1 + nu) rz^2, the hourglass term taking none.
  double area = 0.0, e = 0.0;
  for (int k = 0; k < 4; ++k) area += 0.5 * (xy[2 * k] * xy[(2 * k + 3) % 8] - xy[(2 * k + 2) % 8] * xy[2 * k + 1]);
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) e += s1[6 * i + 5 + 24 * (6 * j + 5)];
  EXPECT_NEAR(e, 0.001 * E * 0.1 * area / (1 + nu), 1e-7 * e);
}

// The set-up writes D, DB and DS to the message sink, once per element. A
// scaled section rebuilds them from the factors: membrane without Poisson
// coupling, bending with it, shear from one modulus (the first) for both.
TEST(DkmqTrace, MatricesParseBackFromTheMessages) {
  for (bool scaled : {false, true}) {
    Quad q(kTilted);
    const double E = 1000, G = 400, c = E / (1 - 0.0625);
    double D[9] = {c, 0.25 * c, 0, 0.25 * c, c, 0, 0, 0, G}, DB[9], DS[4] = {G / 1.2, 0, 0, G / 1.2};
    for (int i = 0; i < 9; ++i) DB[i] = 0.05 * D[i];
    if (scaled) {
      const double f[8] = {2, 3, 0.5, 1, 1, 2, 1, 4}, Ds[9] = {2 * E, 0, 0, 0, 3 * E, 0, 0, 0, 0.5 * G};
      q.K.plate.SCALE_FLAG = 1;
      std::copy(f, f + 8, q.K.plate.SCALE_FACTOR);
      q.K.ELEM_MATERIAL.MAT_TYPE = 1;
      q.K.ELEM_MATERIAL.MAT_VALS[7] = 300, q.K.ELEM_MATERIAL.MAT_VALS[8] = 200;
      std::copy(Ds, Ds + 9, D);
      DB[8] = 0.05 * 2 * G;
      DS[0] = 250, DS[3] = 4 * 250;
    }
    double d[24] = {};
    q.stress(0, 0, d);
    q.stress(0, 0, d, 0);
    std::istringstream in(q.K.diag.messages);
    std::string line;
    auto values = [&](size_t n) {
      std::getline(in, line);
      EXPECT_EQ(line.size(), 15 * n);
      std::vector<double> v;
      for (size_t j = 0; j < n && 15 * j < line.size(); ++j) v.push_back(std::stod(line.substr(15 * j, 15)));
      v.resize(n);
      return v;
    };
    std::getline(in, line);
    EXPECT_EQ(line, "D DB MATRIX");
    for (int i = 0; i < 3; ++i) {
      const std::vector<double> v = values(6);
      for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(v[j], D[i + 3 * j], 1e-6 * std::fabs(D[i + 3 * j]));
        EXPECT_NEAR(v[3 + j], DB[i + 3 * j], 1e-6 * std::fabs(DB[i + 3 * j]));
      }
    }
    std::getline(in, line);
    EXPECT_EQ(line, "DS MATRIX");
    for (int i = 0; i < 2; ++i) {
      const std::vector<double> v = values(2);
      for (int j = 0; j < 2; ++j) EXPECT_NEAR(v[j], DS[i + 2 * j], 1e-6 * DS[i + 2 * j]);
    }
    EXPECT_FALSE(std::getline(in, line)) << "one trace per set-up";
  }
}

}  // namespace
}  // namespace respcore
