// The recovery of the solids from their Gauss points to the centre and the
// nodes: a constant field everywhere, a trilinear one at the nodes.
#include "recovery/stress_recovery.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

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

}  // namespace
}  // namespace respcore
