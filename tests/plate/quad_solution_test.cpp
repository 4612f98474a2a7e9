// Assembled meshes of the plate and membrane quadrilaterals against known
// solutions: plates under uniform load, the distorted membrane patch, and
// Cook's tapered cantilever.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "core/kernel_state.hpp"
#include "plate/dkmq.hpp"
#include "plate/quad_drilling.hpp"
#include "plate/wilson.hpp"

extern "C" void dpbsv_(const char* uplo, const int* n, const int* kd, const int* nrhs, double* ab,
                       const int* ldab, double* b, const int* ldb, int* info, size_t uplo_len);

namespace respcore {
namespace {

struct Mesh {
  std::vector<std::array<double, 2>> xy;
  std::vector<std::array<int, 4>> quads;
};

// N x N quadrilaterals, node (i, j) at place(i/N, j/N).
Mesh grid(int N, const std::function<std::array<double, 2>(double, double)>& place) {
  Mesh m;
  for (int j = 0; j <= N; ++j)
    for (int i = 0; i <= N; ++i) m.xy.push_back(place(double(i) / N, double(j) / N));
  for (int j = 0; j < N; ++j)
    for (int i = 0; i < N; ++i) {
      const int a = i + (N + 1) * j;
      m.quads.push_back({a, a + 1, a + N + 2, a + N + 1});
    }
  return m;
}

// Element matrix (4M x 4M, node by node) of the flat quadrilateral XY(2,4).
using ElementFn = std::function<void(MatRef<double> XY, std::vector<double>& K)>;

// Solves K u = f with u given on the FIXED freedoms (M per node), by a
// banded Cholesky solve; returns u.
std::vector<double> solve(const Mesh& m, int M, const ElementFn& element,
                          const std::vector<bool>& fixed, std::vector<double> u,
                          const std::vector<double>& f) {
  const int nd = int(m.xy.size()) * M;
  std::vector<int> eq(nd, -1);
  int n = 0;
  for (int i = 0; i < nd; ++i)
    if (!fixed[i]) eq[i] = n++;
  int kd = 0;
  for (const auto& q : m.quads)
    for (int a = 0; a < 4 * M; ++a)
      for (int b = 0; b < 4 * M; ++b) {
        const int ea = eq[q[a / M] * M + a % M], eb = eq[q[b / M] * M + b % M];
        if (ea >= 0 && eb >= 0) kd = std::max(kd, eb - ea);
      }
  std::vector<double> ab(size_t(kd + 1) * n, 0.0), rhs(n, 0.0), K;
  for (int i = 0; i < nd; ++i)
    if (eq[i] >= 0) rhs[eq[i]] += f[i];
  for (const auto& q : m.quads) {
    double xy[8];
    for (int k = 0; k < 4; ++k) {
      xy[2 * k] = m.xy[q[k]][0];
      xy[2 * k + 1] = m.xy[q[k]][1];
    }
    element(MatRef<double>(xy, 2, 4, "XY"), K);
    const int ne = 4 * M;
    for (int a = 0; a < ne; ++a)
      for (int b = 0; b < ne; ++b) {
        const int ga = q[a / M] * M + a % M, gb = q[b / M] * M + b % M;
        const double k = K[a + ne * b];
        if (eq[ga] < 0) continue;
        if (eq[gb] < 0)
          rhs[eq[ga]] -= k * u[gb];
        else if (eq[ga] <= eq[gb])
          ab[kd + eq[ga] - eq[gb] + size_t(kd + 1) * eq[gb]] += k;
      }
  }
  int one = 1, ldab = kd + 1, info = 0;
  dpbsv_("U", &n, &kd, &one, ab.data(), &ldab, rhs.data(), &n, &info, 1);
  EXPECT_EQ(info, 0);
  for (int i = 0; i < nd; ++i)
    if (eq[i] >= 0) u[i] = rhs[eq[i]];
  return u;
}

struct Plate {
  KernelState K;
  PlateContext ctx{K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance};
  Plate(double t, double nu = 0.3) {
    K.ELEM_MATERIAL.MAT_YOUNG = 1.0;
    K.ELEM_MATERIAL.MAT_POISSON = nu;
    K.ELEM_MATERIAL.PLATE_PROP[0] = K.ELEM_MATERIAL.PLATE_PROP[1] = t;
  }
};

// Freedoms (ofs within the 24 of a node, count M) of a flat element in the
// xy plane.
ElementFn plate_element(Plate& P, bool thin, int32_t memb_kind, std::vector<int> pick) {
  return [&P, thin, memb_kind, pick](MatRef<double> XY, std::vector<double>& K) {
    double s[576], w[576], x[4], y[4], z[4] = {}, t[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    for (int k = 0; k < 4; ++k) {
      x[k] = XY(1, k + 1);
      y[k] = XY(2, k + 1);
    }
    auto fn = thin ? SHL3DS : DKMQ_STF_WARP;
    fn(P.ctx, memb_kind, MatRef<double>(s, 24, 24, "S"), MatRef<double>(w, 24, 24, "W"), 24,
       VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
       MatRef<double>(t, 3, 3, "T"), 0);
    const int M = int(pick.size()), ne = 4 * M;
    K.assign(size_t(ne * ne), 0.0);
    for (int a = 0; a < ne; ++a)
      for (int b = 0; b < ne; ++b)
        K[a + ne * b] = s[6 * (a / M) + pick[a % M] - 1 + 24 * (6 * (b / M) + pick[b % M] - 1)];
  };
}

// Centre deflection of the unit square plate (N x N, uniform unit load,
// lumped) in units of q a^4 / D.
double plate_centre(bool thin, double t, bool clamped, int N) {
  Plate P(t);
  const Mesh m = grid(N, [](double a, double b) { return std::array<double, 2>{a, b}; });
  const int nn = int(m.xy.size());
  std::vector<bool> fixed(3 * nn, false);
  std::vector<double> u(3 * nn, 0.0), f(3 * nn, 0.0);
  for (int n = 0; n < nn; ++n) {
    const double x = m.xy[n][0], y = m.xy[n][1];
    const bool ex = x == 0.0 || x == 1.0, ey = y == 0.0 || y == 1.0;
    f[3 * n] = (ex ? 0.5 : 1.0) * (ey ? 0.5 : 1.0) / (N * N);
    // Hard support: w and the rotation along the edge; clamped: all three.
    fixed[3 * n] = ex || ey;
    fixed[3 * n + 1] = ex || (clamped && ey);
    fixed[3 * n + 2] = ey || (clamped && ex);
  }
  u = solve(m, 3, plate_element(P, thin, 0, {3, 4, 5}), fixed, u, f);
  const double D = t * t * t / (12.0 * (1.0 - 0.09));
  return u[3 * (nn / 2)] * D;
}

struct PlateCase {
  bool thin;
  double t;
  bool clamped;
  int N;
  double expected, rel_tol;
};

class PlateDeflection : public ::testing::TestWithParam<PlateCase> {};

TEST_P(PlateDeflection, CentreDeflectionMatchesTheReferenceSolution) {
  const PlateCase c = GetParam();
  const double w = plate_centre(c.thin, c.t, c.clamped, c.N);
  EXPECT_NEAR(w, c.expected, c.rel_tol * c.expected) << "N " << c.N;
}

// Kirchhoff: 0.00406235 simply supported, 0.00126532 clamped; Mindlin at
// t/a = 0.1 (hard support, shear factor 5/6): 0.0042728. The thin
// quadrilateral at N = 2, 4, 8 gives the known discrete Kirchhoff values.
INSTANTIATE_TEST_SUITE_P(
    Quad, PlateDeflection,
    ::testing::Values(PlateCase{false, 0.001, false, 16, 0.00406235, 0.002},
                      PlateCase{false, 0.001, true, 16, 0.00126532, 0.015},
                      PlateCase{false, 0.1, false, 16, 0.0042728, 0.005},
                      PlateCase{true, 0.1, false, 2, 0.0037847, 1e-4},
                      PlateCase{true, 0.1, false, 4, 0.0040456, 1e-4},
                      PlateCase{true, 0.1, false, 8, 0.0040600, 1e-4},
                      PlateCase{true, 0.1, false, 16, 0.00406235, 0.0005}));

// Membrane elements over (u, v) or (u, v, rz).
ElementFn qm6(bool condensed) {
  return [condensed](MatRef<double> XY, std::vector<double>& K) {
    double d[9] = {1.0 / (1 - 1.0 / 9), 1.0 / 3 / (1 - 1.0 / 9), 0, 1.0 / 3 / (1 - 1.0 / 9),
                   1.0 / (1 - 1.0 / 9), 0, 0, 0, 0.375};
    double s[144], w1[36];
    MatRef<double> S(s, 12, 12, "S");
    WILSON(XY, MatRef<double>(d, 3, 3, "D"), 1.0, 12, condensed ? 0 : 1, S,
           MatRef<double>(w1, 4, 9, "WORK1"));
    K.assign(64, 0.0);
    for (int a = 0; a < 8; ++a)
      for (int b = 0; b < 8; ++b) K[a + 8 * b] = S(a + 1, b + 1);
  };
}

// Cook's tapered panel, clamped at x = 0, unit shear on x = 48: deflection
// of the middle of the loaded edge (48, 52), N even. E = 1, nu = 1/3. Kind 0 the bilinear element, 1
// the incompatible modes, 2 the drilling membrane.
double cook(int N, int kind) {
  Plate P(1.0, 1.0 / 3.0);
  const Mesh m = grid(N, [](double a, double b) {
    const double x = 48.0 * a, lo = 44.0 * a, hi = 44.0 + 16.0 * a;
    return std::array<double, 2>{x, lo + (hi - lo) * b};
  });
  const int M = kind == 2 ? 3 : 2, nn = int(m.xy.size());
  std::vector<bool> fixed(M * nn, false);
  std::vector<double> u(M * nn, 0.0), f(M * nn, 0.0);
  for (int n = 0; n < nn; ++n) {
    if (m.xy[n][0] == 0.0) fixed[M * n] = fixed[M * n + 1] = true;
    if (m.xy[n][0] == 48.0) f[M * n + 1] = (n == N || n == nn - 1 ? 0.5 : 1.0) / N;
  }
  ElementFn el = kind == 2 ? plate_element(P, false, 1, {1, 2, 6}) : qm6(kind == 1);
  return solve(m, M, el, fixed, u, f)[M * (N + (N + 1) * (N / 2)) + 1];
}

TEST(CookMembrane, ModesAndDrillingConvergeFasterThanTheBilinearElement) {
  // The fine-mesh value (the known 23.96); the bilinear element, slower,
  // comes to it too.
  const double converged = cook(64, 1);
  EXPECT_NEAR(converged, 23.96, 0.01);
  EXPECT_NEAR(cook(64, 0), converged, 0.003 * converged);
  for (int kind : {1, 2}) {
    EXPECT_NEAR(cook(16, kind), converged, 0.01 * converged) << kind;
    for (int N : {2, 4}) EXPECT_GT(cook(N, kind), cook(N, 0)) << kind << " N " << N;
  }
}

// The distorted patch of five elements in a 0.24 x 0.12 rectangle: with a
// linear field on the outer corners the inner nodes, the drilling rotations
// and the stresses of every element follow the field exactly.
TEST(MembranePatch, LinearFieldIsReproducedOnTheDistortedPatch) {
  Mesh m;
  m.xy = {{0, 0}, {0.24, 0}, {0.24, 0.12}, {0, 0.12}, {0.04, 0.02}, {0.18, 0.03}, {0.16, 0.08}, {0.08, 0.08}};
  m.quads = {{0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}, {4, 5, 6, 7}};
  const double a1 = 1e-3, a2 = 2e-3, a3 = -1e-3, a4 = 0.5e-3, spin = (a3 - a2) / 2;
  Plate P(0.01, 1.0 / 3.0);
  for (bool drilling : {false, true}) {
    const int M = drilling ? 3 : 2;
    std::vector<bool> fixed(8 * M, false);
    std::vector<double> u(8 * M, 0.0), f(8 * M, 0.0);
    for (int n = 0; n < 4; ++n) {
      fixed[M * n] = fixed[M * n + 1] = true;
      u[M * n] = a1 * m.xy[n][0] + a2 * m.xy[n][1];
      u[M * n + 1] = a3 * m.xy[n][0] + a4 * m.xy[n][1];
      if (drilling) {
        fixed[M * n + 2] = true;
        u[M * n + 2] = spin;
      }
    }
    u = solve(m, M, drilling ? plate_element(P, false, 1, {1, 2, 6}) : qm6(true), fixed, u, f);
    for (int n = 4; n < 8; ++n) {
      EXPECT_NEAR(u[M * n], a1 * m.xy[n][0] + a2 * m.xy[n][1], 1e-15);
      EXPECT_NEAR(u[M * n + 1], a3 * m.xy[n][0] + a4 * m.xy[n][1], 1e-15);
      if (drilling) {
        EXPECT_NEAR(u[M * n + 2], spin, 1e-14);
      }
    }
    // Stresses of the incompatible-mode membrane from the solved nodes.
    const double c = 1.0 / (1.0 - 1.0 / 9.0);
    const double sx = c * (a1 + a4 / 3), sy = c * (a4 + a1 / 3), sxy = 0.375 * (a2 + a3);
    for (const auto& q : m.quads) {
      double xyz[12] = {}, d[24] = {}, st[40], tr[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
      for (int k = 0; k < 4; ++k) {
        xyz[3 * k] = m.xy[q[k]][0];
        xyz[3 * k + 1] = m.xy[q[k]][1];
        d[6 * k] = u[M * q[k]];
        d[6 * k + 1] = u[M * q[k] + 1];
      }
      DkmqSaved sv;
      DKMQ_STR_WARP(P.ctx, sv, 0, 4, VecRef<double>(d, 24, "D"), MatRef<double>(st, 8, 5, "ST"),
                    MatRef<double>(xyz, 3, 4, "XYZ"), MatRef<double>(tr, 3, 3, "TR"), 1, 0);
      for (int p = 0; p < 5; ++p) {
        EXPECT_NEAR(st[8 * p], sx, 1e-13);
        EXPECT_NEAR(st[8 * p + 1], sy, 1e-13);
        EXPECT_NEAR(st[8 * p + 2], sxy, 1e-13);
      }
    }
  }
}

}  // namespace
}  // namespace respcore
