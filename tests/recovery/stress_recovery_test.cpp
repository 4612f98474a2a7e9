#include "recovery/stress_recovery.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "run/kernel_state.hpp"
#include "solid/solid_support.hpp"

namespace respcore {
namespace {

struct Case {
  int32_t ngp, npts;
};

// Runs the recovery of NC components whose Gauss values are given by
// value(component, gauss point).
template <class F>
std::vector<double> run(bool solid, int32_t nc, int32_t ngp, int32_t npts, int32_t withcentre,
                        F value) {
  std::vector<double> gauss(static_cast<size_t>(nc * ngp));
  for (int32_t g = 1; g <= ngp; ++g)
    for (int32_t c = 1; c <= nc; ++c) gauss[(c - 1) + nc * (g - 1)] = value(c, g);
  std::vector<double> nodal(static_cast<size_t>(nc * npts), -7.0);
  VecRef<double> out(nodal.data(), nc * npts, "VALUE_NODAL");
  VecRef<double> in(gauss.data(), nc * ngp, "VALUE_GAUSS");
  if (solid)
    STRESS_RECOVERY_SOLID(out, in, nc, ngp, npts, withcentre);
  else
    STRESS_RECOVERY_PLANE(out, in, nc, ngp, npts, withcentre);
  return nodal;
}

// A constant Gauss field comes back at the centre and every node, for every
// shape both selectors know, with and without the centre.
TEST(StressRecovery, ConstantFieldComesBackEverywhere) {
  const double comp[3] = {12.5, -3.0, 1.0e5};
  auto value = [&](int32_t c, int32_t) { return comp[c - 1]; };
  const std::vector<Case> solid = {{1, 5}, {4, 11}, {6, 7},   {8, 9},
                                   {8, 6}, {9, 16}, {27, 21}, {27, 14}};
  const std::vector<Case> plane = {{1, 4}, {3, 7}, {4, 5}, {9, 9}};
  for (bool is_solid : {true, false}) {
    for (const Case& k : is_solid ? solid : plane) {
      for (int32_t withcentre : {1, 0}) {
        const int32_t npts = k.npts - (withcentre == 1 ? 0 : 1);
        // Hexahedra without the centre take the pyramid branch (tested below).
        if (is_solid && (k.npts == 9 || k.npts == 21) && withcentre == 0) continue;
        SCOPED_TRACE((is_solid ? "solid NGP " : "plane NGP ") + std::to_string(k.ngp) + " NPTS " +
                     std::to_string(npts));
        const std::vector<double> r = run(is_solid, 3, k.ngp, npts, withcentre, value);
        for (int32_t p = 0; p < npts; ++p)
          for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(r[c + 3 * p], comp[c], 1e-10 * std::fabs(comp[c]));
      }
    }
  }
}

// The 20-node hexahedron's Gauss values of a trilinear field give the field
// at the centre and the nodes.
TEST(StressRecovery, HexahedronNodesOfTrilinearField) {
  const double x3[3] = {-std::sqrt(0.6), 0.0, std::sqrt(0.6)};
  auto f = [](double x, double y, double z) { return 2.0 + x - 3.0 * y + 0.5 * z + x * y * z; };
  auto value = [&](int32_t c, int32_t g) {
    const int i = (g - 1) % 3, j = ((g - 1) / 3) % 3, l = (g - 1) / 9;
    return c * f(x3[i], x3[j], x3[l]);
  };
  const std::vector<double> r = run(true, 2, 27, 21, 1, value);
  const auto nodes = testing::solid::natural_nodes(20);
  EXPECT_NEAR(r[0], f(0, 0, 0), 1e-12);
  for (int n = 0; n < 20; ++n) {
    const double e = f(nodes[n][0], nodes[n][1], nodes[n][2]);
    EXPECT_NEAR(r[2 * (n + 1)], e, 1e-12);
    EXPECT_NEAR(r[2 * (n + 1) + 1], 2.0 * e, 1e-12);
  }
}

// The least-squares fit is exact for a linear field, at any point.
TEST(StressRecovery, LeastSquaresIsExactForLinearFields) {
  KernelState K;
  for (int32_t ndim : {2, 3}) {
    const int32_t ngp = 7, nn = 5;
    std::vector<double> cg(3 * ngp), cn(3 * nn), vg(ngp), vn(nn, 0.0);
    auto f = [&](const double* x) {
      return 4.0 - x[0] + 2.5 * x[1] + (ndim == 3 ? -0.5 * x[2] : 0.0);
    };
    for (int g = 0; g < ngp; ++g) {
      for (int d = 0; d < ndim; ++d)
        cg[d + ndim * g] = std::sin((1.3 + 0.45 * d) * g + 0.2) * (1.0 + d);
      vg[g] = f(&cg[ndim * g]);
    }
    for (int p = 0; p < nn; ++p)
      for (int d = 0; d < ndim; ++d) cn[d + ndim * p] = 3.0 * std::cos(0.9 * p + d);
    STRESS_RECOVERY(K.diag, VecRef<double>(vn.data(), nn, "VALUE_NODAL"),
                    VecRef<double>(vg.data(), ngp, "VALUE_GAUSS"),
                    MatRef<double>(cg.data(), ndim, ngp, "COORD_GAUSS"),
                    MatRef<double>(cn.data(), ndim, nn, "COORD_NODAL"), nn, ngp, ndim);
    for (int p = 0; p < nn; ++p) EXPECT_NEAR(vn[p], f(&cn[ndim * p]), 1e-10) << "NDIM " << ndim;
  }
}

// A 10-node tetrahedron with four points goes the direct way: the Gauss
// coordinates are not looked at, and a linear field is exact at the nodes.
TEST(StressRecovery, TetrahedronGoesTheDirectWay) {
  KernelState K;
  const double a = 0.1381966, b = 0.5854102;
  const double gp[4][3] = {{a, a, a}, {b, a, a}, {a, b, a}, {a, a, b}};
  auto f = [](double x, double y, double z) { return 1.0 + 2.0 * x - y + 4.0 * z; };
  double vg[4];
  for (int g = 0; g < 4; ++g) vg[g] = f(gp[g][0], gp[g][1], gp[g][2]);
  std::vector<double> garbage(3 * 4, std::nan(""));
  std::vector<double> cn(3 * 10, 0.0);
  double vn[10];
  STRESS_RECOVERY(K.diag, VecRef<double>(vn, 10, "VALUE_NODAL"),
                  VecRef<double>(vg, 4, "VALUE_GAUSS"),
                  MatRef<double>(garbage.data(), 3, 4, "COORD_GAUSS"),
                  MatRef<double>(cn.data(), 3, 10, "COORD_NODAL"), 10, 4, 3);
  const auto nodes = testing::solid::natural_nodes(10);
  for (int n = 0; n < 10; ++n) EXPECT_NEAR(vn[n], f(nodes[n][0], nodes[n][1], nodes[n][2]), 1e-12);
}

// The point tables of the two look-up routines integrate over their
// reference elements what their rules should.
TEST(StressRecovery, GaussPointLookUpsIntegrateExactly) {
  struct Rule {
    bool high;
    int32_t kind, ngp;
    double (*f)(double, double, double);
    double exact;
  };
  const std::vector<Rule> rules = {
      {false, 1, 2, [](double x, double, double) { return x * x * x + x * x; }, 2.0 / 3.0},
      {false, 2, 4, [](double x, double y, double) { return x * x * y * y + x * y * y * y; },
       4.0 / 9.0},
      {false, 3, 6, [](double x, double y, double z) { return x * y * z * z + z * z * z; },
       1.0 / 24.0 * 2.0 / 3.0},
      {false, 3, 8, [](double x, double y, double z) { return x * x * y * y * z * z; }, 8.0 / 27.0},
      {true, 2, 4, [](double x, double y, double) { return x * x + y * y * y; }, 4.0 / 3.0},
      {true, 2, 3, [](double x, double y, double) { return x * x + x * y; },
       1.0 / 12.0 + 1.0 / 24.0},
      {true, 2, 9, [](double x, double y, double) { return x * x * x * x * y * y; },
       2.0 / 5.0 * 2.0 / 3.0},
      {true, 3, 4, [](double x, double y, double z) { return x * x + y * z; },
       1.0 / 60.0 + 1.0 / 120.0},
      {true, 3, 9, [](double x, double, double z) { return x * z * z * z * z; },
       1.0 / 6.0 * 2.0 / 5.0},
      {true, 3, 27,
       [](double x, double y, double z) { return x * x * x * x * y * y * z * z * z * z; },
       2.0 / 5.0 * 2.0 / 3.0 * 2.0 / 5.0},
  };
  for (const Rule& r : rules) {
    double s = 0.0;
    for (int32_t i = 1; i <= r.ngp; ++i) {
      double x, y, z, w;
      if (r.high)
        GP_COORD_HIGH(x, y, z, w, i, r.ngp, r.kind);
      else
        GP_COORD(x, y, z, w, i, r.ngp, r.kind);
      s += w * r.f(x, y, z);
    }
    EXPECT_NEAR(s, r.exact, 1e-14) << (r.high ? "high " : "") << r.kind << "/" << r.ngp;
  }
  double x = 1, y = 1, z = 1, w = 1;
  GP_COORD(x, y, z, w, 1, 5, 2);
  EXPECT_EQ(x + y + z + w, 0.0);
}

}  // namespace
}  // namespace respcore
