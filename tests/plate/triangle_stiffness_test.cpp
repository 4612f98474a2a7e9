// Stiffness of the plate triangles: symmetry, zero-energy modes, and square
// plates under uniform load against the thin and thick plate solutions.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "plane/panel_axes.hpp"
#include "plate/dkmt.hpp"
#include "tri_fixture.hpp"

extern "C" {
void dpbsv_(const char*, const int*, const int*, const int*, double*, const int*, double*, const int*,
            int*, size_t);
void dsyev_(const char*, const char*, const int*, double*, const int*, double*, double*, const int*,
            int*, size_t, size_t);
}

namespace respcore {
namespace {

using tri_test::Material;

// 18x18 stiffness in element axes of the triangle with nodes P (global).
void stiffness(bool thick, Material& m, const double P[9], double K[324]) {
  double p[9], X[3], Y[3], Z[3], tr[9];
  for (int k = 0; k < 9; ++k) p[k] = P[k];
  for (int n = 0; n < 3; ++n) X[n] = P[3 * n], Y[n] = P[3 * n + 1], Z[n] = P[3 * n + 2];
  MatRef<double> TR(tr, 3, 3, "TR");
  QDCOS(VecRef<double>(X, 3, "X"), VecRef<double>(Y, 3, "Y"), VecRef<double>(Z, 3, "Z"), TR, 1);
  MatRef<double> XYZ(p, 3, 3, "XYZ"), S(K, 18, 18, "STIF");
  if (thick)
    DKMTLMT_STF(m.ctx(), XYZ, TR, S);
  else
    DKTLMT_STF(m.ctx(), XYZ, TR, S);
}

// Symmetric and positive semi-definite, with seven zero-energy modes: the
// six rigid motions and the uniform drilling rotation of the membrane, which
// strains nothing.
TEST(TriangleStiffness, SymmetricWithRigidNullSpace) {
  Material m;
  m.isotropic(1.0e4, 0.3, 0.12, 0.1);
  const double P[9] = {0.1, 0.2, 0.3, 2.0, 0.3, 0.5, 0.5, 1.7, -0.2};
  for (bool thick : {false, true}) {
    double K[324];
    stiffness(thick, m, P, K);
    for (int i = 0; i < 18; ++i)
      for (int j = 0; j < i; ++j) EXPECT_NEAR(K[i + 18 * j], K[j + 18 * i], 1e-9 * K[0]);
    double ev[18], work[256];
    int n = 18, lw = 256, info = 0;
    dsyev_("N", "U", &n, K, &n, ev, work, &lw, &info, 1, 1);
    int zero = 0;
    for (double e : ev) zero += std::fabs(e) < 1e-10 * ev[17];
    EXPECT_EQ(zero, 7);
    EXPECT_GT(ev[0], -1e-10 * ev[17]);
  }
}

// Centre deflection of a square plate a = 1 under unit load, N x N cells
// of two triangles, in units of q a^4 / D. Simply supported edges hold w
// and the rotation along the edge; clamped edges hold all three.
double square_plate(bool thick, bool clamped, double t, int N) {
  Material m;
  const double E = 1.0e4, nu = 0.3;
  m.isotropic(E, nu, t, t);
  const int nn = N + 1, ndof = 3 * nn * nn, kd = 3 * nn + 5, ld = kd + 1;
  std::vector<double> AB(static_cast<size_t>(ld) * ndof, 0.0), F(ndof, 0.0);
  auto dof = [&](int i, int j) { return 3 * (j * nn + i); };
  const double h = 1.0 / N;
  for (int j = 0; j < N; ++j)
    for (int i = 0; i < N; ++i) {
      const int tri[2][3][2] = {{{i, j}, {i + 1, j}, {i, j + 1}}, {{i + 1, j + 1}, {i, j + 1}, {i + 1, j}}};
      for (const auto& c : tri) {
        double P[9] = {}, K[324];
        for (int n = 0; n < 3; ++n) P[3 * n] = c[n][0] * h, P[3 * n + 1] = c[n][1] * h;
        stiffness(thick, m, P, K);
        // The first side runs along +x or -x: the element's rx, ry are
        // the global ones or their opposites.
        const double sgn = c[1][0] > c[0][0] ? 1.0 : -1.0;
        int g[9];
        double f[9];
        for (int n = 0; n < 3; ++n)
          for (int k = 0; k < 3; ++k) g[3 * n + k] = dof(c[n][0], c[n][1]) + k, f[3 * n + k] = k ? sgn : 1.0;
        const int loc[9] = {2, 3, 4, 8, 9, 10, 14, 15, 16};
        for (int p = 0; p < 9; ++p)
          for (int q = 0; q < 9; ++q)
            if (g[p] <= g[q])
              AB[static_cast<size_t>(kd + g[p] - g[q]) + static_cast<size_t>(ld) * g[q]] +=
                  f[p] * f[q] * K[loc[p] + 18 * loc[q]];
        for (int n = 0; n < 3; ++n) F[g[3 * n]] += h * h / 6;
      }
    }
  // Supports by a stiff spring on the diagonal.
  auto fix = [&](int d) { AB[static_cast<size_t>(kd) + static_cast<size_t>(ld) * d] += 1e20; };
  for (int j = 0; j < nn; ++j)
    for (int i = 0; i < nn; ++i) {
      const bool xe = i == 0 || i == N, ye = j == 0 || j == N;
      if (xe || ye) fix(dof(i, j));
      if (xe || (clamped && ye)) fix(dof(i, j) + 1);
      if (ye || (clamped && xe)) fix(dof(i, j) + 2);
    }
  int nrhs = 1, info = 0;
  dpbsv_("U", &ndof, &kd, &nrhs, AB.data(), &ld, F.data(), &ndof, &info, 1);
  EXPECT_EQ(info, 0);
  return F[dof(N / 2, N / 2)] * E * t * t * t / (12 * (1 - nu * nu));
}

// The thick simply supported plate by its double sine series (shear
// correction 5/6).
double navier_mindlin(double t, double nu) {
  const double pi = 3.141592653589793, kGt = 5.0 / 6.0 * t / (2 * (1 + nu));
  const double D = t * t * t / (12 * (1 - nu * nu));
  double w = 0;
  for (int m = 1; m < 400; m += 2)
    for (int n = 1; n < 400; n += 2) {
      const double a2 = (m * m + n * n) * pi * pi;
      const double sign = ((m + n) / 2 % 2) ? 1.0 : -1.0;  // sin(m pi/2) sin(n pi/2)
      w += sign * 16 / (pi * pi * m * n) / (a2 * a2) * (1 + D * a2 / kGt);
    }
  return w;
}

TEST(TriangleStiffness, SquarePlatesReachThinAndThickSolutions) {
  EXPECT_NEAR(navier_mindlin(0.1, 0.3), 0.0042728, 1e-7);
  struct Case {
    bool thick, clamped;
    double t, exact;
  } cases[] = {{false, false, 0.01, 0.00406235}, {false, true, 0.01, 0.00126532},
               {true, false, 0.001, 0.00406235}, {true, true, 0.001, 0.00126532},
               {true, false, 0.1, navier_mindlin(0.1, 0.3)}};
  for (const Case& c : cases) {
    const double w8 = square_plate(c.thick, c.clamped, c.t, 8), w24 = square_plate(c.thick, c.clamped, c.t, 24);
    EXPECT_NEAR(w24, c.exact, 0.005 * c.exact) << c.thick << c.clamped << c.t;
    EXPECT_LT(std::fabs(w24 - c.exact), std::fabs(w8 - c.exact)) << c.thick << c.clamped << c.t;
  }
}

}  // namespace
}  // namespace respcore
