#include "recovery/stress_recovery.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "run/kernel_state.hpp"
#include "recovery/shape_library.hpp"

namespace respcore {
namespace {

struct Case {
  int32_t ngp;
  int32_t npts;
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

TEST(StressRecovery, OnePointRepeatsTheValueAndHexCentreIsTheMean) {
  const std::vector<double> one = run(true, 2, 1, 5, 1, [](int32_t c, int32_t) { return c * 4.0; });
  for (int p = 0; p < 5; ++p) {
    EXPECT_EQ(one[2 * p], 4.0);
    EXPECT_EQ(one[2 * p + 1], 8.0);
  }
  const double v[8] = {1, 7, -2, 4, 10, 3, 3, 6};
  const std::vector<double> hex =
      run(true, 1, 8, 9, 1, [&](int32_t, int32_t g) { return v[g - 1]; });
  EXPECT_NEAR(hex[0], 32.0 / 8.0, 1e-14);
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
  const double nodes[20][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1},
                               {1, -1, 1},   {1, 1, 1},   {-1, 1, 1}, {0, -1, -1}, {1, 0, -1},
                               {0, 1, -1},   {-1, 0, -1}, {0, -1, 1}, {1, 0, 1},   {0, 1, 1},
                               {-1, 0, 1},   {-1, -1, 0}, {1, -1, 0}, {1, 1, 0},   {-1, 1, 0}};
  EXPECT_NEAR(r[0], f(0, 0, 0), 1e-12);
  for (int n = 0; n < 20; ++n) {
    const double e = f(nodes[n][0], nodes[n][1], nodes[n][2]);
    EXPECT_NEAR(r[2 * (n + 1)], e, 1e-12);
    EXPECT_NEAR(r[2 * (n + 1) + 1], 2.0 * e, 1e-12);
  }
}

// Without the centre the results move up one place: point 1 is node 1.
TEST(StressRecovery, WithoutCentreStartsAtTheFirstNode) {
  const double x3[3] = {-std::sqrt(0.6), 0.0, std::sqrt(0.6)};
  auto f = [](double x, double y) { return 1.0 - 2.0 * x + 0.25 * y + 3.0 * x * y; };
  auto value = [&](int32_t, int32_t g) { return f(x3[(g - 1) % 3], x3[(g - 1) / 3]); };
  const std::vector<double> with = run(false, 1, 9, 9, 1, value);
  const std::vector<double> without = run(false, 1, 9, 8, 0, value);
  const double nodes[8][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {0, -1}, {1, 0}, {0, 1}, {-1, 0}};
  EXPECT_NEAR(with[0], f(0, 0), 1e-12);
  for (int n = 0; n < 8; ++n) {
    EXPECT_NEAR(without[n], f(nodes[n][0], nodes[n][1]), 1e-12);
    EXPECT_EQ(without[n], with[n + 1]);
  }
}

// The solid selector tests NPTS exactly: a hexahedron asked without its
// centre (NPTS 8) takes the pyramid branch, whose table has six rows.
TEST(StressRecovery, HexahedronWithoutCentreTakesThePyramidBranch) {
  double shape[8 * 8] = {};
  ::testing::internal::CaptureStderr();
  STRESS_RECOVERY_SHAPE_SOLID(MatRef<double>(shape, 8, 8, "SHAPE"), 8, 8, 1);
  const std::string err = ::testing::internal::GetCapturedStderr();
  for (int32_t p = 1; p <= 5; ++p) {
    double w[8];
    SOLID_SHAPE_5NODES(VecRef<double>(w, 8, "N"), p + 1);
    for (int g = 0; g < 8; ++g) EXPECT_EQ(shape[g + 8 * (p - 1)], w[g]);
  }
  EXPECT_NE(err.find("array bound exceeded: XII subscript 7 bound 1:6"), std::string::npos);
  EXPECT_NE(err.find("array bound exceeded: ZETA subscript 9 bound 1:6"), std::string::npos);

  // With the centre the same NGP is the hexahedron.
  double hex[8 * 9] = {};
  STRESS_RECOVERY_SHAPE_SOLID(MatRef<double>(hex, 8, 9, "SHAPE"), 8, 9, 0);
  for (int g = 0; g < 8; ++g) EXPECT_DOUBLE_EQ(hex[g], 0.125);
}

TEST(StressRecovery, SelectorsAndUnknownRules) {
  // Unknown NGP: the product of an untouched (zero) SHAPE.
  const std::vector<double> r = run(true, 2, 5, 3, 1, [](int32_t, int32_t) { return 9.0; });
  for (double x : r) EXPECT_EQ(x, 0.0);
  const std::vector<double> q = run(false, 2, 8, 3, 1, [](int32_t, int32_t) { return 9.0; });
  for (double x : q) EXPECT_EQ(x, 0.0);

  // The shell selector keeps the 4-node quadrilateral for NPTS 4 only.
  double a[4 * 9] = {}, b[4 * 9] = {};
  STRESS_RECOVERY_SHAPE_SHELL(MatRef<double>(a, 4, 4, "SHAPE"), 4, 4, 1);
  STRESS_RECOVERY_SHAPE_PLANE(MatRef<double>(b, 4, 4, "SHAPE"), 4, 4, 1);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(a[i], b[i]);
  STRESS_RECOVERY_SHAPE_SHELL(MatRef<double>(a, 4, 9, "SHAPE"), 4, 9, 0);
  for (int32_t p = 1; p <= 9; ++p) {
    double w[4];
    PLANE_SHAPE_8NODES_REDUCED(VecRef<double>(w, 4, "N"), p);
    for (int g = 0; g < 4; ++g) EXPECT_EQ(a[g + 4 * (p - 1)], w[g]);
  }
  // The axial selector: one point, weight 1 everywhere.
  double ax[3] = {};
  STRESS_RECOVERY_SHAPE_AXIAL(MatRef<double>(ax, 1, 3, "SHAPE"), 1, 3);
  for (double x : ax) EXPECT_EQ(x, 1.0);
}

TEST(StressRecovery, ShortArgumentsAreReportedNotOverrun) {
  std::vector<double> gauss(12, 1.0);
  std::vector<double> nodal(10, -1.0);  // 3 components by 5 points would need 15
  ::testing::internal::CaptureStderr();
  STRESS_RECOVERY_PLANE(VecRef<double>(nodal.data(), 8, "VALUE_NODAL"),
                        VecRef<double>(gauss.data(), 12, "VALUE_GAUSS"), 3, 4, 5, 1);
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("VALUE_NODAL subscript 9 bound 1:8"), std::string::npos);
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(nodal[i], 1.0, 1e-14);
  EXPECT_EQ(nodal[8], -1.0);
  EXPECT_EQ(nodal[9], -1.0);
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
  const double nodes[10][3] = {{0, 0, 0},     {1, 0, 0},     {0, 1, 0},   {0, 0, 1},
                               {0.5, 0, 0},   {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5},
                               {0.5, 0, 0.5}, {0, 0.5, 0.5}};
  for (int n = 0; n < 10; ++n) EXPECT_NEAR(vn[n], f(nodes[n][0], nodes[n][1], nodes[n][2]), 1e-12);
}

TEST(StressRecovery, DirectSolidFormsForWedgeAndHexahedron) {
  const double g3 = std::sqrt(0.6);
  const double tri[3][2] = {{1.0 / 6, 1.0 / 6}, {2.0 / 3, 1.0 / 6}, {1.0 / 6, 2.0 / 3}};
  auto f = [](double x, double y, double z) { return -1.0 + 3.0 * x + y - 2.0 * z; };
  double vg[27], vn[20];
  for (int l = 0; l < 3; ++l)
    for (int i = 0; i < 3; ++i) vg[3 * l + i] = f(tri[i][0], tri[i][1], (l - 1) * g3);
  STRESS_RECOVERY_ISOLIDH(VecRef<double>(vn, 15, "VALUE_NODAL"),
                          VecRef<double>(vg, 9, "VALUE_GAUSS"), 15, 9);
  const double wedge[15][3] = {{0, 0, -1},   {1, 0, -1},  {0, 1, -1},    {0, 0, 1},
                               {1, 0, 1},    {0, 1, 1},   {0.5, 0, -1},  {0.5, 0.5, -1},
                               {0, 0.5, -1}, {0.5, 0, 1}, {0.5, 0.5, 1}, {0, 0.5, 1},
                               {0, 0, 0},    {1, 0, 0},   {0, 1, 0}};
  for (int n = 0; n < 15; ++n) EXPECT_NEAR(vn[n], f(wedge[n][0], wedge[n][1], wedge[n][2]), 1e-12);

  for (int g = 0; g < 27; ++g)
    vg[g] = f((g % 3 - 1) * g3, ((g / 3) % 3 - 1) * g3, (g / 9 - 1) * g3);
  STRESS_RECOVERY_ISOLIDH(VecRef<double>(vn, 20, "VALUE_NODAL"),
                          VecRef<double>(vg, 27, "VALUE_GAUSS"), 20, 27);
  EXPECT_NEAR(vn[0], f(-1, -1, -1), 1e-12);
  EXPECT_NEAR(vn[6], f(1, 1, 1), 1e-12);
  EXPECT_NEAR(vn[9], f(1, 0, -1), 1e-12);
  EXPECT_NEAR(vn[19], f(-1, 1, 0), 1e-12);

  // Any other rule leaves the nodal values alone.
  vn[0] = 42.0;
  STRESS_RECOVERY_ISOLIDH(VecRef<double>(vn, 20, "VALUE_NODAL"),
                          VecRef<double>(vg, 27, "VALUE_GAUSS"), 20, 8);
  EXPECT_EQ(vn[0], 42.0);
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
