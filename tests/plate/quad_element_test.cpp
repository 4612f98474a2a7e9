// One plate quadrilateral at a time (constant fields through whole requests:
// plate_history_test): the side shear law, the warp rows, the general
// routines against the ordinary ones, the stiffness's null space and the
// membrane's condensations.
#include <gtest/gtest.h>

#include <cmath>

#include "plane/panel_axes.hpp"
#include "plate/dkmq.hpp"
#include "plate/quad_drilling.hpp"
#include "plate/wilson.hpp"
#include "run/kernel_state.hpp"

namespace respcore {
namespace {

constexpr double kE = 1000, kG = 400, kC = kE / (1 - 0.0625);  // nu = 0.25

// Nodal vector (six per node) of rigid motion mode M (translations x, y, z,
// rotations about x, y, z) of size A at positions P: t + w x r.
void rigid(const double (*P)[3], int m, double a, double* d) {
  double t[3] = {}, w[3] = {};
  (m < 3 ? t[m] : w[m - 3]) = a;
  for (int n = 0; n < 4; ++n)
    for (int i = 0; i < 3; ++i) {
      const double* r = P[n];
      d[6 * n + i] = t[i] + w[(i + 1) % 3] * r[(i + 2) % 3] - w[(i + 2) % 3] * r[(i + 1) % 3];
      d[6 * n + 3 + i] = w[i];
    }
}

struct Quad {
  KernelState K;
  PlateContext ctx{K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance};
  double xyz[12], tr[9] = {}, loc[4][3], st[40];  // loc: element axes, node 1 at the origin
  DkmqSaved sv;

  explicit Quad(const double* g, bool axes_from_nodes = true) {
    ElementMaterial& M = K.ELEM_MATERIAL;
    M.MAT_YOUNG = kE, M.MAT_POISSON = 0.25, M.PLATE_PROP[0] = 0.3, M.PLATE_PROP[1] = 0.1;
    std::copy(g, g + 12, xyz);
    double x[4], y[4], z[4];
    for (int n = 0; n < 4; ++n) x[n] = g[3 * n], y[n] = g[3 * n + 1], z[n] = g[3 * n + 2];
    tr[0] = tr[4] = tr[8] = 1.0;
    if (axes_from_nodes)
      QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
            MatRef<double>(tr, 3, 3, "TR"), 4);
    for (int n = 0; n < 4; ++n)
      for (int i = 0; i < 3; ++i)
        loc[n][i] = tr[i] * (x[n] - x[0]) + tr[i + 3] * (y[n] - y[0]) + tr[i + 6] * (z[n] - z[0]);
  }
  // Routine 0 DKMQ, 1 thin, 2 DKMQ general section, 3 thin general, 4 stiffened.
  void stress(int routine, int memb, double* d, int newelem = 1,
              const PlateSection& s = PlateSection{}) {
    VecRef<double> D(d, 24, "D");
    MatRef<double> ST(st, 8, 5, "ST"), X(xyz, 3, 4, "XYZ"), T(tr, 3, 3, "TR");
    if (routine == 0) DKMQ_STR_WARP(ctx, sv, memb, 4, D, ST, X, T, newelem, 0);
    if (routine == 1) SHL3DS_STR(ctx, sv, memb, 4, D, ST, X, T, newelem, 0);
    if (routine == 2) DKMQ_STR_WARP_GNRL(s, sv, memb, 4, D, ST, X, T, newelem, 0);
    if (routine == 3) SHL3DS_STR_GNRL(s, sv, memb, 4, D, ST, X, T, newelem, 0);
    if (routine == 4) DKMQ_STR_STIF(ctx, sv, memb, 4, D, ST, X, T, newelem);
  }
};

// A distorted flat element, (0,0), (2,0.3), (1.6,1.9), (-0.2,1.2) in the
// plane through (0.3, 0.1, 0.2) spanned by (2,2,1)/3 and (-2,1,2)/3.
const double* tilted() {
  static double g[12];
  const double xy[8] = {0, 0, 2.0, 0.3, 1.6, 1.9, -0.2, 1.2};
  const double e1[3] = {2, 2, 1}, e2[3] = {-2, 1, 2}, o[3] = {0.3, 0.1, 0.2};
  for (int n = 0; n < 4; ++n)
    for (int i = 0; i < 3; ++i)
      g[3 * n + i] = o[i] + (xy[2 * n] * e1[i] + xy[2 * n + 1] * e2[i]) / 3;
  return g;
}
const double kWarped[12] = {0.0, 0.0, 0.2, 2.0, 0.3, 0.9, 1.8, 1.9, 1.3, 0.1, 1.6, 0.0};

// The ordinary isotropic section of Quad: D, (t2/2) D for the bending,
// G/1.2 for the shear.
PlateSection ordinary_section() {
  PlateSection s;
  const double dm[3][3] = {{kC, 0.25 * kC, 0}, {0.25 * kC, kC, 0}, {0, 0, kG}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) s.Dm[i][j] = dm[i][j], s.Dbs[i][j] = 0.05 * dm[i][j];
  s.Ds[0][0] = s.Ds[1][1] = kG / 1.2;
  s.phi_coef = 2.4 * 0.01 / 0.75;
  return s;
}

// Kinds 0-3: with the ordinary section the general routines are the
// ordinary ones (thick or thin, either membrane), flat or warped. Kind 4:
// with equal thicknesses and ribs the stiffened section is the plain plate,
// per unit width forces t s, moments t^2/6 s_b, shear forces t s.
TEST(QuadGeneral, GeneralAndStiffenedRoutinesAgreeWithTheOrdinaryOnes) {
  const PlateSection os = ordinary_section();
  for (const double* g : {tilted(), kWarped})
    for (int kind = 0; kind < 5; ++kind) {
      Quad q(g), r(g);
      if (kind == 4) {
        q.K.ELEM_MATERIAL.PLATE_PROP[0] = 0.1;
        for (int i = 0; i < 5; ++i) r.K.ELEM_MATERIAL.PLATE_PROP[i] = 0.1;
      }
      double d[24], e[24];
      for (int i = 0; i < 24; ++i) d[i] = e[i] = std::sin(1.3 * i + 0.2) * 1e-3;
      q.stress(kind & 1, (kind >> 1) & 1, d);
      r.stress(kind == 4 ? 4 : 2 + (kind & 1), (kind >> 1) & 1, e, 1, os);
      for (int i = 0; i < 40; ++i) {
        const double f = kind < 4 ? 1.0 : (i % 8 >= 3 && i % 8 < 6 ? 0.01 / 6 : 0.1);
        EXPECT_NEAR(r.st[i], f * q.st[i], 1e-9 * kE) << kind << " " << i;
      }
    }
}

// Heights h (1, -1, 1, -1) on the square of side a: H = (-4h, 4h, 0),
// W = 4 a^2, so the warp curvature of a uniform rz is (4h, -4h, 0) rz / a^2.
TEST(WarpedQuad, RigidMotionLeavesNoCurvatureAndDrillingRotationBendsByTheWarp) {
  const double a = 2.0, h = 0.05;
  const double g[12] = {0, 0, h, a, 0, -h, a, a, h, 0, a, -h};
  for (int routine : {0, 1}) {
    Quad q(g, false);
    double d[24];
    for (int m = 0; m < 6; ++m) {
      rigid(q.loc, m, 1e-3, d);
      q.stress(routine, 0, d, m == 0 ? 1 : 0);
      const bool tilt = m == 3 || m == 4;  // in-plane axis: hourglass u, v at the nodes
      for (int i = 0; i < 40; ++i) {
        const bool free = tilt && i >= 8 && i % 8 < 3;
        EXPECT_NEAR(free ? 0.0 : q.st[i], 0.0, 1e-12) << m << " " << i;
      }
      if (tilt) {
        EXPECT_GT(std::fabs(q.st[8 + (m == 3 ? 1 : 0)]), 1e-3) << "mode " << m;
      }
    }
    std::fill(d, d + 24, 0.0);
    for (int n = 0; n < 4; ++n) d[6 * n + 5] = 1e-3;
    q.stress(routine, 0, d);
    const double kx = 4 * h / (a * a) * 1e-3;
    for (int p = 0; p < 5; ++p) {
      EXPECT_NEAR(q.st[8 * p + 3], 0.05 * kC * 0.75 * kx, 1e-12);
      EXPECT_NEAR(q.st[8 * p + 4], -0.05 * kC * 0.75 * kx, 1e-12);
      EXPECT_NEAR(q.st[8 * p + 5], 0.0, 1e-12);
    }
  }
}

// On an a x b rectangle, w = x + 2y with no rotation: each side carries
// the shear phi/(1+phi) of its slope, phi = 2.4 t^2 / ((1-nu) L^2); the xz
// stress lands in row 8, the yz stress in row 7. The thin element has none.
TEST(DkmqShear, SideShearFollowsPhiOverOnePlusPhi) {
  const double a = 0.4, b = 0.25;
  const double g[12] = {0, 0, 0, a, 0, 0, a, b, 0, 0, b, 0};
  Quad q(g);
  double d[24] = {};
  for (int n = 0; n < 4; ++n) d[6 * n + 2] = q.loc[n][0] + 2 * q.loc[n][1];
  const double pa = 2.4 * 0.01 / (0.75 * a * a), pb = 2.4 * 0.01 / (0.75 * b * b);
  for (int routine : {0, 1}) {
    q.stress(routine, 0, d);
    for (int p = 0; p < 5; ++p) {
      EXPECT_NEAR(q.st[8 * p + 7], routine ? 0.0 : kG / 1.2 * pa / (1 + pa), 1e-10);
      EXPECT_NEAR(q.st[8 * p + 6], routine ? 0.0 : kG / 1.2 * 2 * pb / (1 + pb), 1e-10);
    }
  }
}

// Global stiffness of a tilted flat and a warped element: rigid motions cost
// nothing but the fictitious drilling term of the incompatible-mode membrane.
TEST(QuadStiffness, RigidMotionsAreInItsNullSpace) {
  for (const double* g : {tilted(), kWarped})
    for (int kind = 0; kind < 4; ++kind) {
      const bool thin = kind & 1;
      const int memb = kind >> 1;
      Quad q(g);
      double s[576], w[576], x[4], y[4], z[4], pos[4][3], r[24];
      for (int n = 0; n < 4; ++n) x[n] = g[3 * n], y[n] = g[3 * n + 1], z[n] = g[3 * n + 2];
      std::copy(g, g + 12, &pos[0][0]);
      (thin ? SHL3DS : DKMQ_STF_WARP)(q.ctx, memb, MatRef<double>(s, 24, 24, "S"),
                                      MatRef<double>(w, 24, 24, "W"), 24, VecRef<double>(x, 4, "X"),
                                      VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
                                      MatRef<double>(q.tr, 3, 3, "T"), 1);
      double smax = 0.0;
      for (double v : s) smax = std::max(smax, std::fabs(v));
      for (int m = 0; m < 6; ++m) {
        rigid(pos, m, 1.0, r);
        for (int i = 0; i < 24; ++i) {
          double f = 0.0;
          for (int j = 0; j < 24; ++j) f += s[i + 24 * j] * r[j];
          EXPECT_NEAR(f, 0.0, (memb == 0 ? 2e-5 : 1e-11) * smax) << kind << " " << m << " " << i;
        }
      }
    }
}

// The Cholesky form of the mode condensation is the ordinary one, and an
// isotropic element's condensed stiffness turns with the element; the
// general drilling membrane with an isotropic D is the ordinary one (up to
// its single-precision penalty factor), whose uniform drilling rotation is
// held by the spin penalty alone: energy 0.001 E T AREA / (1 + nu) rz^2.
TEST(MembraneCondensation, GeneralFormsAreTheOrdinaryOnes) {
  double xy[8] = {0, 0, 2.0, 0.3, 1.6, 1.9, -0.2, 1.2}, s[2][144], w[2][36];
  double d[9] = {900, 200, 40, 200, 700, -30, 40, -30, 300};
  double di[9] = {kC, 0.25 * kC, 0, 0.25 * kC, kC, 0, 0, 0, kG};
  MatRef<double> XY(xy, 2, 4, "XY"), D(d, 3, 3, "D");
  WILSON(XY, D, 0.1, 12, 0, MatRef<double>(s[0], 12, 12, "S"), MatRef<double>(w[0], 4, 9, "W"));
  WILSON_GNRL(XY, D, 0.1, 12, 0, MatRef<double>(s[1], 12, 12, "S"),
              MatRef<double>(w[1], 4, 9, "W"));
  for (int i = 0; i < 36; ++i) EXPECT_NEAR(w[0][i], w[1][i], 1e-12);
  for (int i = 0; i < 64; ++i)
    EXPECT_NEAR(s[0][i % 8 + 12 * (i / 8)], s[1][i % 8 + 12 * (i / 8)], 1e-9);
  // Isotropic: the condensed stiffness turns with the element, K' = R K R'.
  double xr[8], sr[144];
  const double c = std::cos(0.7), sn = std::sin(0.7), r[2][2] = {{c, -sn}, {sn, c}};
  for (int k = 0; k < 8; ++k) xr[k] = r[k % 2][0] * xy[k - k % 2] + r[k % 2][1] * xy[k - k % 2 + 1];
  WILSON(XY, MatRef<double>(di, 3, 3, "D"), 0.1, 12, 0, MatRef<double>(s[0], 12, 12, "S"),
         MatRef<double>(w[0], 4, 9, "W"));
  WILSON(MatRef<double>(xr, 2, 4, "XY"), MatRef<double>(di, 3, 3, "D"), 0.1, 12, 0,
         MatRef<double>(sr, 12, 12, "S"), MatRef<double>(w[1], 4, 9, "W"));
  for (int i = 0; i < 64; ++i) {
    double v = 0.0;
    for (int a = 0; a < 4; ++a)
      v += r[i % 2][a / 2] * s[0][i % 8 - i % 2 + a / 2 + 12 * (i / 8 - i / 8 % 2 + a % 2)] *
           r[i / 8 % 2][a % 2];
    EXPECT_NEAR(sr[i % 8 + 12 * (i / 8)], v, 1e-9 * kE) << i;
  }
  Quad q(tilted());
  double s1[576] = {}, s2[576] = {};
  QUAD_WITH_DRILLING(q.ctx, XY, kE, kC, 0.25, 0.1, MatRef<double>(s1, 24, 24, "S"), 0);
  QUAD_WITH_DRILLING_GNRL(XY, MatRef<double>(di, 3, 3, "D1"), kG, 0.1,
                          MatRef<double>(s2, 24, 24, "S"));
  for (int i = 0; i < 576; ++i) EXPECT_NEAR(s1[i], s2[i], 1e-6 * std::fabs(s1[i]) + 1e-10);
  double area = 0.0, e = 0.0;
  for (int k = 0; k < 4; ++k)
    area += 0.5 * (xy[2 * k] * xy[(2 * k + 3) % 8] - xy[(2 * k + 2) % 8] * xy[2 * k + 1]);
  for (int i = 0; i < 16; ++i) e += s1[6 * (i % 4) + 5 + 24 * (6 * (i / 4) + 5)];
  EXPECT_NEAR(e, 0.001 * kE * 0.1 * area / 1.25, 1e-7 * e);
}

}  // namespace
}  // namespace respcore
