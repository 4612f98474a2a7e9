// Assembled meshes of the plate triangles and quadrilaterals against known
// solutions: square plates under uniform load converging to the thin and
// thick plate solutions (the eight-node plate with the stiffness its force
// rows give), Cook's tapered membrane.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "plane/panel_axes.hpp"
#include "plate/dkmq.hpp"
#include "plate/dkmt.hpp"
#include "plate_support.hpp"
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

// The force rows of an eight-node plate (ELEM_TYPE 7) reached with a unit
// displacement of each freedom in turn are its condensed stiffness:
// symmetric, and, assembled into a simply supported square plate under a
// uniform load, converging to the thin-plate deflection at its centre.
TEST(PlateSolution, EightNodePlateForceRowsConvergeToTheSimplySupportedPlate) {
  using namespace testing;
  using namespace testing::plate;
  const double t = 0.01, D = kE * t * t * t / (12 * (1 - kNu * kNu));
  ArchiveFixture f;
  // Two square elements (sides 1/4, 1/8) on equations 1..48, each 1 at its step.
  std::vector<std::vector<Dof6>> steps(48, std::vector<Dof6>(16, Dof6{}));
  for (int s = 0; s < 48; ++s) steps[s][s / 6][s % 6] = 1.0;
  write_motion(f, steps);
  std::vector<std::array<double, 3>> cord;
  std::vector<PlateHighRecord> recs(2);
  const int off[8][2] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 0}, {2, 1}, {1, 2}, {0, 1}};
  for (int m = 0; m < 2; ++m) {
    for (const auto& o : off) {
      cord.push_back({o[0] / (8.0 + 8 * m), o[1] / (8.0 + 8 * m), 0.0});
      recs[m].nodes.push_back(static_cast<double>(cord.size()));
    }
    for (int e = 1; e <= 48; ++e) recs[m].lm.push_back(e);
    recs[m].prop = {t, t}, recs[m].young = kE, recs[m].poisson = kNu;
  }
  f.writer().node_coordinates(cord);
  f.writer().plate_high_records(3, recs);
  f.write();
  double previous = 1.0;
  for (int m = 0; m < 2; ++m) {
    const Rows K = history_rows(f, 7, 1, 48, 48, m + 1);
    for (int i = 0; i < 48; ++i)
      for (int j = 0; j < i; ++j) EXPECT_NEAR(K[i][j], K[j][i], 1e-9 * std::fabs(K[i][i]));
    // Grid nodes (i, j) of spacing h/2 but the element centres; w, rx, ry.
    const int n = 4 << m, g = 2 * n + 1;
    Mesh mesh;
    std::vector<int> at(g * g, -1);
    for (int j = 0; j < g; ++j)
      for (int i = 0; i < g; ++i)
        if (!(i % 2 && j % 2)) at[j * g + i] = int(mesh.xy.size()), mesh.xy.push_back({double(i), double(j)});
    for (int e = 0; e < n * n; ++e) {
      mesh.cells.emplace_back();
      for (const auto& o : off) mesh.cells.back().push_back(at[(2 * (e / n) + o[1]) * g + 2 * (e % n) + o[0]]);
    }
    const auto u = solve(
        mesh, 3,
        [&](const std::vector<Point>&, std::vector<double>& k) {
          k.resize(576);
          for (int a = 0; a < 576; ++a)
            k[a] = K[6 * (a % 24 / 3) + 2 + a % 3][6 * (a / 24 / 3) + 2 + a / 24 % 3];
        },
        [&](const Point& p, bool* fix, double*, double* load) {
          const bool ex = p[0] == 0 || p[0] == g - 1, ey = p[1] == 0 || p[1] == g - 1;
          fix[0] = ex || ey, fix[1] = ex, fix[2] = ey;
          // Each element's consistent load: 1/16 of its own to a corner, 3/16 to a midside.
          load[0] = (int(p[0]) % 2 || int(p[1]) % 2 ? 6.0 : 4.0) / (16.0 * n * n);
        });
    const double exact = 0.00406235 / D, error = std::fabs(u[3 * at[n * g + n]] - exact) / exact;
    std::printf("%d x %d eight-node plates: centre deflection off by %.3g%%\n", n, n, 100 * error);
    EXPECT_LT(error, previous);
    previous = error;
  }
  EXPECT_LT(previous, 0.01);
}

// Cook's tapered panel, clamped at x = 0, unit shear on x = 48: deflection
// of the middle of the loaded edge (48, 52), N even; E = 1, nu = 1/3.
// Kind 1 the incompatible modes, 2 the drilling membrane.
double cook(int N, int kind) {
  Material m;
  m.isotropic(1.0, 1.0 / 3.0, 1.0, 0.5);
  const Mesh mesh = grid(N, [](double a, double b) {
    return Point{48 * a, 44 * a + (44 - 28 * a) * b};
  });
  const int M = kind == 2 ? 3 : 2;
  const ElementFn el =
      element(m, 0, kind - 1, kind == 2 ? std::vector<int>{1, 2, 6} : std::vector<int>{1, 2});
  return solve(mesh, M, el, [&](const Point& p, bool* fix, double*, double* f) {
    fix[0] = fix[1] = p[0] == 0.0;
    if (p[0] == 48.0) f[1] = (p[1] == 44.0 || p[1] == 60.0 ? 0.5 : 1.0) / N;
  })[M * (N + (N + 1) * (N / 2)) + 1];
}

TEST(PlateSolution, CookMembraneWithModesAndWithDrillingConverges) {
  // The published coarse-mesh values of the incompatible modes, and the
  // converged 23.96.
  EXPECT_NEAR(cook(2, 1), 21.05, 0.01);
  EXPECT_NEAR(cook(4, 1), 23.02, 0.01);
  const double converged = cook(64, 1);
  EXPECT_NEAR(converged, 23.96, 0.01);
  EXPECT_NEAR(cook(16, 2), converged, 0.01 * converged);
}

}  // namespace
}  // namespace respcore
