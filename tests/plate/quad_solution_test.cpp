// Assembled meshes of the plate and membrane quadrilaterals against known
// solutions: plates under uniform load, the distorted membrane patch, and
// Cook's tapered cantilever.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "run/kernel_state.hpp"
#include "plate/dkmq.hpp"
#include "plate/wilson.hpp"

extern "C" void dpbsv_(const char* uplo, const int* n, const int* kd, const int* nrhs, double* ab,
                       const int* ldab, double* b, const int* ldb, int* info, size_t uplo_len);

namespace respcore {
namespace {

using Point = std::array<double, 2>;
struct Mesh {
  std::vector<Point> xy;
  std::vector<std::array<int, 4>> quads;
};

// N x N quadrilaterals, node (i, j) at place(i/N, j/N).
Mesh grid(int N, const std::function<Point(double, double)>& place) {
  Mesh m;
  for (int j = 0; j <= N; ++j)
    for (int i = 0; i <= N; ++i) m.xy.push_back(place(double(i) / N, double(j) / N));
  for (int a = 0; a < (N + 1) * N; ++a)
    if (a % (N + 1) < N) m.quads.push_back({a, a + 1, a + N + 2, a + N + 1});
  return m;
}

// Element matrix (4M x 4M, node by node) of the flat quadrilateral XY(2,4).
using ElementFn = std::function<void(MatRef<double> XY, std::vector<double>& K)>;
// The M freedoms of a node: fixed ones with their value in u, loads in f.
using NodeFn = std::function<void(const Point& p, bool* fixed, double* u, double* f)>;

// Solves K u = f by a banded Cholesky solve; returns u, M per node.
std::vector<double> solve(const Mesh& m, int M, const ElementFn& element, const NodeFn& node) {
  const int nd = int(m.xy.size()) * M;
  std::vector<int> eq(nd, -1);
  std::vector<double> u(nd, 0.0), f(nd, 0.0), K;
  int n = 0, kd = 0;
  for (size_t p = 0; p < m.xy.size(); ++p) {
    bool fx[3] = {};
    double up[3] = {}, fp[3] = {};
    node(m.xy[p], fx, up, fp);
    for (int c = 0; c < M; ++c) {
      eq[M * p + c] = fx[c] ? -1 : n++;
      u[M * p + c] = up[c];
      f[M * p + c] = fp[c];
    }
  }
  for (const auto& q : m.quads)
    for (int a = 0; a < 4 * M; ++a)
      for (int b = 0; b < 4 * M; ++b)
        if (eq[q[a / M] * M + a % M] >= 0 && eq[q[b / M] * M + b % M] >= 0)
          kd = std::max(kd, eq[q[b / M] * M + b % M] - eq[q[a / M] * M + a % M]);
  std::vector<double> ab(size_t(kd + 1) * n, 0.0), rhs(n, 0.0);
  for (int i = 0; i < nd; ++i)
    if (eq[i] >= 0) rhs[eq[i]] = f[i];
  for (const auto& q : m.quads) {
    double xy[8];
    for (int k = 0; k < 8; ++k) xy[k] = m.xy[q[k / 2]][k % 2];
    element(MatRef<double>(xy, 2, 4, "XY"), K);
    for (int a = 0; a < 4 * M; ++a)
      for (int b = 0; b < 4 * M; ++b) {
        const int ga = q[a / M] * M + a % M, gb = q[b / M] * M + b % M, ea = eq[ga], eb = eq[gb];
        const double k = K[a + 4 * M * b];
        if (ea >= 0 && eb < 0) rhs[ea] -= k * u[gb];
        if (ea >= 0 && ea <= eb) ab[kd + ea - eb + size_t(kd + 1) * eb] += k;
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
  // Membrane thickness T1, bending thickness T2, E = 1.
  Plate(double t1, double t2, double nu) {
    K.ELEM_MATERIAL.MAT_YOUNG = 1.0;
    K.ELEM_MATERIAL.MAT_POISSON = nu;
    K.ELEM_MATERIAL.PLATE_PROP[0] = t1;
    K.ELEM_MATERIAL.PLATE_PROP[1] = t2;
  }
};

// The freedoms PICK (1..6 of each node) of a flat element in the xy plane.
ElementFn plate_element(Plate& P, bool thin, int32_t memb_kind, std::vector<int> pick) {
  return [&P, thin, memb_kind, pick](MatRef<double> XY, std::vector<double>& K) {
    double s[576], w[576], x[4], y[4], z[4] = {}, t[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    for (int k = 0; k < 4; ++k) x[k] = XY(1, k + 1), y[k] = XY(2, k + 1);
    (thin ? SHL3DS : DKMQ_STF_WARP)(P.ctx, memb_kind, MatRef<double>(s, 24, 24, "S"),
                                    MatRef<double>(w, 24, 24, "W"), 24, VecRef<double>(x, 4, "X"),
                                    VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
                                    MatRef<double>(t, 3, 3, "T"), 0);
    const int M = int(pick.size()), ne = 4 * M;
    K.assign(size_t(ne * ne), 0.0);
    for (int a = 0; a < ne * ne; ++a) {
      const int i = a % ne, j = a / ne;
      K[a] = s[6 * (i / M) + pick[i % M] - 1 + 24 * (6 * (j / M) + pick[j % M] - 1)];
    }
  };
}

struct PlateCase {
  bool thin;
  double t;
  bool clamped;
  int N;
  double expected, rel_tol;
};

class PlateDeflection : public ::testing::TestWithParam<PlateCase> {};

// Centre deflection of the unit square plate (N x N, uniform unit load,
// lumped) in units of q a^4 / D; hard support holds w and the rotation
// along the edge, clamping all three.
TEST_P(PlateDeflection, CentreDeflectionMatchesTheReferenceSolution) {
  const PlateCase c = GetParam();
  Plate P(10 * c.t, c.t, 0.3);
  const Mesh m = grid(c.N, [](double a, double b) { return Point{a, b}; });
  const std::vector<double> u = solve(m, 3, plate_element(P, c.thin, 0, {3, 4, 5}),
                                      [&](const Point& p, bool* fix, double*, double* f) {
                                        const bool ex = p[0] == 0.0 || p[0] == 1.0,
                                                   ey = p[1] == 0.0 || p[1] == 1.0;
                                        f[0] = (ex ? 0.5 : 1.0) * (ey ? 0.5 : 1.0) / (c.N * c.N);
                                        fix[0] = ex || ey;
                                        fix[1] = ex || (c.clamped && ey);
                                        fix[2] = ey || (c.clamped && ex);
                                      });
  const double w = u[3 * (m.xy.size() / 2)] * c.t * c.t * c.t / (12.0 * 0.91);
  EXPECT_NEAR(w, c.expected, c.rel_tol * c.expected) << "N " << c.N;
}

// Kirchhoff: 0.00406235 simply supported, 0.00126532 clamped; Mindlin at
// t/a = 0.1 (hard support, shear factor 5/6): 0.0042728. The thin
// quadrilateral at N = 2, 4, 8 gives the known discrete Kirchhoff values.
INSTANTIATE_TEST_SUITE_P(Quad, PlateDeflection,
                         ::testing::Values(PlateCase{false, 0.001, false, 16, 0.00406235, 0.002},
                                           PlateCase{false, 0.001, true, 16, 0.00126532, 0.015},
                                           PlateCase{false, 0.1, false, 16, 0.0042728, 0.005},
                                           PlateCase{true, 0.1, false, 2, 0.0037847, 1e-4},
                                           PlateCase{true, 0.1, false, 4, 0.0040456, 1e-4},
                                           PlateCase{true, 0.1, false, 8, 0.0040600, 1e-4},
                                           PlateCase{true, 0.1, false, 16, 0.00406235, 0.0005}));

// Cook's tapered panel, clamped at x = 0, unit shear on x = 48: deflection
// of the middle of the loaded edge (48, 52), N even; E = 1, nu = 1/3.
// Kind 0 the bilinear element (the nodal block of the element with modes
// before their condensation), 1 the incompatible modes, 2 the drilling
// membrane.
double cook(int N, int kind) {
  Plate P(1.0, 0.5, 1.0 / 3.0);
  const Mesh m = grid(N, [](double a, double b) {
    return Point{48 * a, 44 * a + (44 - 28 * a) * b};
  });
  ElementFn el = plate_element(P, false, kind - 1,
                               kind == 2 ? std::vector<int>{1, 2, 6} : std::vector<int>{1, 2});
  if (kind == 0)
    el = [&P](MatRef<double> XY, std::vector<double>& K) {
      double d[9], db[9], ds[4], s[144], w1[36];
      dkmq_material(P.ctx, 0, MatRef<double>(d, 3, 3, "D"), MatRef<double>(db, 3, 3, "DB"),
                    MatRef<double>(ds, 2, 2, "DS"));
      WILSON(XY, MatRef<double>(d, 3, 3, "D"), 1.0, 12, 1, MatRef<double>(s, 12, 12, "S"),
             MatRef<double>(w1, 4, 9, "WORK1"));
      K.resize(64);
      for (int i = 0; i < 64; ++i) K[i] = s[i % 8 + 12 * (i / 8)];
    };
  const int M = kind == 2 ? 3 : 2;
  return solve(m, M, el, [&](const Point& p, bool* fix, double*, double* f) {
    fix[0] = fix[1] = p[0] == 0.0;
    if (p[0] == 48.0) f[1] = (p[1] == 44.0 || p[1] == 60.0 ? 0.5 : 1.0) / N;
  })[M * (N + (N + 1) * (N / 2)) + 1];
}

TEST(CookMembrane, ModesAndDrillingConvergeFasterThanTheBilinearElement) {
  // The published coarse-mesh values of the bilinear element and of the
  // incompatible modes, and the converged 23.96.
  const double published[2][2] = {{11.85, 18.30}, {21.05, 23.02}};
  for (int kind : {0, 1})
    for (int i : {0, 1}) EXPECT_NEAR(cook(2 << i, kind), published[kind][i], 0.01) << kind << i;
  const double converged = cook(64, 1);
  EXPECT_NEAR(converged, 23.96, 0.01);
  for (int kind : {1, 2}) {
    EXPECT_NEAR(cook(16, kind), converged, 0.01 * converged) << kind;
    for (int N : {2, 4}) EXPECT_GT(cook(N, kind), cook(N, 0)) << kind << " N " << N;
  }
}

// The distorted patch of five elements in a 0.24 x 0.12 rectangle: with a
// linear field on the outer corners the inner nodes and the drilling
// rotations follow the field exactly.
TEST(MembranePatch, LinearFieldIsReproducedOnTheDistortedPatch) {
  Mesh m;
  m.xy = {{0, 0},       {0.24, 0},    {0.24, 0.12}, {0, 0.12},
          {0.04, 0.02}, {0.18, 0.03}, {0.16, 0.08}, {0.08, 0.08}};
  m.quads = {{0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}, {4, 5, 6, 7}};
  auto field = [](const Point& p, double* u) {
    u[0] = 1e-3 * p[0] + 2e-3 * p[1];
    u[1] = -1e-3 * p[0] + 0.5e-3 * p[1];
    u[2] = -1.5e-3;  // the spin
  };
  Plate P(0.01, 0.5, 1.0 / 3.0);
  for (int drill : {0, 1}) {
    const int M = 2 + drill;
    const std::vector<double> u = solve(
        m, M,
        plate_element(P, false, drill, drill ? std::vector<int>{1, 2, 6} : std::vector<int>{1, 2}),
        [&](const Point& p, bool* fix, double* u0, double*) {
          fix[0] = fix[1] = fix[2] = p[0] == 0.0 || p[0] == 0.24;
          if (fix[0]) field(p, u0);
        });
    for (int n = 4; n < 8; ++n) {
      double want[3];
      field(m.xy[n], want);
      for (int c = 0; c < M; ++c) EXPECT_NEAR(u[M * n + c], want[c], 1e-15) << n << " " << c;
    }
  }
}

}  // namespace
}  // namespace respcore
