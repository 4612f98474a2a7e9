// Assembled meshes of the plate triangles and quadrilaterals against known
// solutions: square plates under uniform load converging to the thin and
// thick plate solutions, Cook's tapered membrane, the distorted membrane
// patch.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "plane/panel_axes.hpp"
#include "plate/dkmq.hpp"
#include "plate/dkmt.hpp"
#include "plate/wilson.hpp"
#include "tri_fixture.hpp"

extern "C" {
void dpbsv_(const char*, const int*, const int*, const int*, double*, const int*, double*,
            const int*, int*, size_t);
}

namespace respcore {
namespace {

using tri_test::Material;
using Point = std::array<double, 2>;
struct Mesh {
  std::vector<Point> xy;
  std::vector<std::vector<int>> cells;
};

// N x N cells, node (i, j) at place(i/N, j/N); quadrilaterals, or two
// triangles each whose first side runs along x (forwards, then backwards).
Mesh grid(int N, const std::function<Point(double, double)>& place, bool triangles = false) {
  Mesh m;
  for (int j = 0; j <= N; ++j)
    for (int i = 0; i <= N; ++i) m.xy.push_back(place(double(i) / N, double(j) / N));
  for (int j = 0; j < N; ++j)
    for (int i = 0; i < N; ++i) {
      const int a = j * (N + 1) + i, b = a + 1, c = a + N + 2, d = a + N + 1;
      if (triangles)
        m.cells.insert(m.cells.end(), {{a, b, d}, {c, d, b}});
      else
        m.cells.push_back({a, b, c, d});
    }
  return m;
}

// Element matrix over the M freedoms of each node of the cell (global axes).
using ElementFn = std::function<void(const std::vector<Point>& p, std::vector<double>& K)>;
// The M freedoms of a node: fixed ones with their value in u, loads in f.
using NodeFn = std::function<void(const Point& p, bool* fixed, double* u, double* f)>;

// Solves K u = f (banded Cholesky); the first freedom of each node also
// takes LOAD times its share of the area of the cells around it.
std::vector<double> solve(const Mesh& m, int M, const ElementFn& element, const NodeFn& node,
                          double load = 0.0) {
  const int nd = int(m.xy.size()) * M;
  std::vector<int> eq(nd, -1);
  std::vector<double> u(nd, 0.0), f(nd, 0.0), K;
  int n = 0, kd = 0;
  for (size_t p = 0; p < m.xy.size(); ++p) {
    bool fx[3] = {};
    double up[3] = {}, fp[3] = {};
    node(m.xy[p], fx, up, fp);
    for (int c = 0; c < M; ++c)
      eq[M * p + c] = fx[c] ? -1 : n++, u[M * p + c] = up[c], f[M * p + c] = fp[c];
  }
  for (const auto& q : m.cells)
    for (int a : q)
      for (int b : q) kd = std::max(kd, std::abs(M * (b - a)) + M);
  std::vector<double> ab(size_t(kd + 1) * n, 0.0), rhs(n, 0.0);
  for (const auto& q : m.cells) {
    std::vector<Point> p;
    for (int a : q) p.push_back(m.xy[a]);
    const double area = 0.5 *
                        std::fabs((p[1][0] - p[0][0]) * (p[2][1] - p[0][1]) -
                                  (p[2][0] - p[0][0]) * (p[1][1] - p[0][1])) *
                        (q.size() == 4 ? 2 : 1);
    for (int a : q) f[M * a] += load * area / q.size();
    element(p, K);
    const int ne = int(q.size()) * M;
    for (int a = 0; a < ne; ++a)
      for (int b = 0; b < ne; ++b) {
        const int ga = q[a / M] * M + a % M, gb = q[b / M] * M + b % M, ea = eq[ga], eb = eq[gb];
        const double k = K[a + ne * b];
        if (ea >= 0 && eb < 0) rhs[ea] -= k * u[gb];
        if (ea >= 0 && ea <= eb) ab[kd + ea - eb + size_t(kd + 1) * eb] += k;
      }
  }
  for (int i = 0; i < nd; ++i)
    if (eq[i] >= 0) rhs[eq[i]] += f[i];
  int one = 1, ldab = kd + 1, info = 0;
  dpbsv_("U", &n, &kd, &one, ab.data(), &ldab, rhs.data(), &n, &info, 1);
  EXPECT_EQ(info, 0);
  for (int i = 0; i < nd; ++i)
    if (eq[i] >= 0) u[i] = rhs[eq[i]];
  return u;
}

// Freedoms PICK (1..6 of each node) of a flat element in the xy plane, in
// global axes: quadrilaterals (thin or thick) or triangles, whose axes are
// the global ones or turned half a turn about z.
ElementFn element(Material& m, int kind, int32_t memb_kind, std::vector<int> pick) {
  return [&m, kind, memb_kind, pick](const std::vector<Point>& p, std::vector<double>& K) {
    const int nn = int(p.size()), M = int(pick.size()), ne = nn * M, nf = 6 * nn;
    std::vector<double> s(size_t(nf * nf)), sign(size_t(nf), 1.0);
    if (nn == 4) {
      double w[576], x[4], y[4], z[4] = {}, t[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
      for (int k = 0; k < 4; ++k) x[k] = p[k][0], y[k] = p[k][1];
      (kind == 1 ? SHL3DS : DKMQ_STF_WARP)(
          m.ctx(), memb_kind, MatRef<double>(s.data(), 24, 24, "S"), MatRef<double>(w, 24, 24, "W"),
          24, VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
          MatRef<double>(t, 3, 3, "T"), 0);
    } else {
      double P[9] = {p[0][0], p[0][1], 0, p[1][0], p[1][1], 0, p[2][0], p[2][1], 0};
      double X[3] = {P[0], P[3], P[6]}, Y[3] = {P[1], P[4], P[7]}, Z[3] = {}, tr[9];
      QDCOS(VecRef<double>(X, 3, "X"), VecRef<double>(Y, 3, "Y"), VecRef<double>(Z, 3, "Z"),
            MatRef<double>(tr, 3, 3, "TR"), 1);
      (kind == 3 ? DKMTLMT_STF : DKTLMT_STF)(m.ctx(), MatRef<double>(P, 3, 3, "XYZ"),
                                             MatRef<double>(tr, 3, 3, "TR"),
                                             MatRef<double>(s.data(), 18, 18, "STIF"));
      if (p[1][0] < p[0][0])
        for (int k = 0; k < nf; ++k) sign[k] = k % 6 == 2 || k % 6 == 5 ? 1.0 : -1.0;
    }
    K.assign(size_t(ne * ne), 0.0);
    for (int a = 0; a < ne * ne; ++a) {
      const int i = 6 * (a % ne / M) + pick[a % ne % M] - 1,
                j = 6 * (a / ne / M) + pick[a / ne % M] - 1;
      K[a] = sign[i] * sign[j] * s[i + nf * j];
    }
  };
}

// The thick simply supported plate by its double sine series (shear
// correction 5/6), in units of q a^4 / D.
double navier_mindlin(double t, double nu) {
  const double pi = 3.141592653589793, kGt = 5.0 / 6.0 * t / (2 * (1 + nu)),
               D = t * t * t / (12 * (1 - nu * nu));
  double w = 0;
  for (int m = 1; m < 400; m += 2)
    for (int n = 1; n < 400; n += 2) {
      const double a2 = (m * m + n * n) * pi * pi;
      w += (((m + n) / 2 % 2) ? 1.0 : -1.0) * 16 / (pi * pi * m * n) / (a2 * a2) *
           (1 + D * a2 / kGt);
    }
  return w;
}

// Centre deflection of the unit square plate (N x N, uniform unit load, E =
// 1, nu = 0.3) in units of q a^4 / D; hard support holds w and the rotation
// along the edge, clamping all three. Kinds: 0 thick and 1 thin
// quadrilateral, 2 thin and 3 thick triangle.
double square_plate(int kind, double t, bool clamped, int N) {
  Material m;
  m.isotropic(1.0, 0.3, 10 * t, t);
  const Mesh mesh = grid(
      N,
      [](double a, double b) {
        return Point{a, b};
      },
      kind >= 2);
  const auto u = solve(
      mesh, 3, element(m, kind, 0, {3, 4, 5}),
      [&](const Point& p, bool* fix, double*, double*) {
        const bool ex = p[0] == 0.0 || p[0] == 1.0, ey = p[1] == 0.0 || p[1] == 1.0;
        fix[0] = ex || ey;
        fix[1] = ex || (clamped && ey);
        fix[2] = ey || (clamped && ex);
      },
      1.0);
  return u[3 * (mesh.xy.size() / 2)] * t * t * t / (12.0 * 0.91);
}

TEST(PlateSolution, SquarePlatesConvergeToTheThinAndThickSolutions) {
  // Kirchhoff: 0.00406235 simply supported, 0.00126532 clamped; Mindlin at
  // t/a = 0.1 by the series.
  const double ss = 0.00406235, cl = 0.00126532, thick = navier_mindlin(0.1, 0.3);
  EXPECT_NEAR(thick, 0.0042728, 1e-7);
  EXPECT_NEAR(square_plate(0, 0.001, false, 16), ss, 0.002 * ss);
  EXPECT_NEAR(square_plate(0, 0.001, true, 16), cl, 0.015 * cl);
  EXPECT_NEAR(square_plate(0, 0.1, false, 16), thick, 0.005 * thick);
  // The thin quadrilateral gives the known discrete Kirchhoff values.
  const double dk[3] = {0.0037847, 0.0040456, 0.0040600};
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(square_plate(1, 0.1, false, 2 << i), dk[i], 1e-4 * dk[i]) << i;
  // The triangles come closer with the mesh and within 0.5 % at N = 24.
  for (const auto& [kind, t, clamped, exact] : {std::tuple{2, 0.01, false, ss},
                                                {2, 0.01, true, cl},
                                                {3, 0.001, false, ss},
                                                {3, 0.001, true, cl},
                                                {3, 0.1, false, thick}}) {
    const double w8 = square_plate(kind, t, clamped, 8), w24 = square_plate(kind, t, clamped, 24);
    EXPECT_NEAR(w24, exact, 0.005 * exact) << kind << clamped << t;
    EXPECT_LT(std::fabs(w24 - exact), std::fabs(w8 - exact)) << kind << clamped << t;
  }
}

// Cook's tapered panel, clamped at x = 0, unit shear on x = 48: deflection
// of the middle of the loaded edge (48, 52), N even; E = 1, nu = 1/3.
// Kind 0 the bilinear element (the element with modes before their
// condensation), 1 the incompatible modes, 2 the drilling membrane.
double cook(int N, int kind) {
  Material m;
  m.isotropic(1.0, 1.0 / 3.0, 1.0, 0.5);
  const Mesh mesh = grid(N, [](double a, double b) {
    return Point{48 * a, 44 * a + (44 - 28 * a) * b};
  });
  ElementFn el =
      element(m, 0, kind - 1, kind == 2 ? std::vector<int>{1, 2, 6} : std::vector<int>{1, 2});
  if (kind == 0)
    el = [&m](const std::vector<Point>& p, std::vector<double>& K) {
      double d[9], db[9], ds[4], s[144], w1[36], xy[8];
      for (int k = 0; k < 8; ++k) xy[k] = p[k / 2][k % 2];
      dkmq_material(m.ctx(), 0, MatRef<double>(d, 3, 3, "D"), MatRef<double>(db, 3, 3, "DB"),
                    MatRef<double>(ds, 2, 2, "DS"));
      WILSON(MatRef<double>(xy, 2, 4, "XY"), MatRef<double>(d, 3, 3, "D"), 1.0, 12, 1,
             MatRef<double>(s, 12, 12, "S"), MatRef<double>(w1, 4, 9, "WORK1"));
      K.resize(64);
      for (int i = 0; i < 64; ++i) K[i] = s[i % 8 + 12 * (i / 8)];
    };
  const int M = kind == 2 ? 3 : 2;
  return solve(mesh, M, el, [&](const Point& p, bool* fix, double*, double* f) {
    fix[0] = fix[1] = p[0] == 0.0;
    if (p[0] == 48.0) f[1] = (p[1] == 44.0 || p[1] == 60.0 ? 0.5 : 1.0) / N;
  })[M * (N + (N + 1) * (N / 2)) + 1];
}

TEST(PlateSolution, CookMembraneModesAndDrillingConvergeFasterThanTheBilinearElement) {
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
TEST(PlateSolution, MembranePatchReproducesALinearField) {
  Mesh m;
  m.xy = {{0, 0},       {0.24, 0},    {0.24, 0.12}, {0, 0.12},
          {0.04, 0.02}, {0.18, 0.03}, {0.16, 0.08}, {0.08, 0.08}};
  m.cells = {{0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}, {4, 5, 6, 7}};
  auto field = [](const Point& p, double* u) {
    u[0] = 1e-3 * p[0] + 2e-3 * p[1];
    u[1] = -1e-3 * p[0] + 0.5e-3 * p[1];
    u[2] = -1.5e-3;  // the spin
  };
  Material mat;
  mat.isotropic(1.0, 1.0 / 3.0, 0.01, 0.5);
  for (int drill : {0, 1}) {
    const int M = 2 + drill;
    const auto u = solve(
        m, M, element(mat, 0, drill, drill ? std::vector<int>{1, 2, 6} : std::vector<int>{1, 2}),
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
