// The recovery weights of every solid shape: from the values at the Gauss points
// (worked out here from each rule) to the centre and the nodes, they sum to
// one and carry the fields of their interpolation spaces exactly.
#include "recovery/shape_library.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "solid/solid_support.hpp"

namespace respcore {
namespace {

using testing::solid::natural_nodes;
using P3 = std::array<double, 3>;
using Pts = std::vector<P3>;

const double kG2 = 1.0 / std::sqrt(3.0), kG3 = std::sqrt(0.6);

Pts scaled_nodes(double f) {
  Pts p = natural_nodes(8);
  for (P3& x : p)
    for (double& v : x) v *= f;
  return p;
}
// The n-point Gauss grid over one to three directions, x fastest.
Pts grid(int n, int dims) {
  const std::vector<double> x =
      n == 2 ? std::vector<double>{-kG2, kG2} : std::vector<double>{-kG3, 0.0, kG3};
  Pts p;
  for (int l = 0; l < (dims > 2 ? n : 1); ++l)
    for (int j = 0; j < (dims > 1 ? n : 1); ++j)
      for (int i = 0; i < n; ++i) p.push_back({x[i], dims > 1 ? x[j] : 0.0, dims > 2 ? x[l] : 0.0});
  return p;
}
// The 2 x 2 x 2 points in corner order.
Pts corners() { return scaled_nodes(kG2); }
Pts wedge(std::vector<double> zs) {
  Pts p;
  for (double z : zs)
    for (const auto& t :
         {P3{1.0 / 6, 1.0 / 6, z}, P3{2.0 / 3, 1.0 / 6, z}, P3{1.0 / 6, 2.0 / 3, z}})
      p.push_back(t);
  return p;
}
// Pyramid rules: cell coordinates (a, b, c) map to z = G + H c and
// x = a (1 - z) / sqrt(3), the rule's collapsed square.
Pts pyramid(const Pts& cells) {
  const double A = 0.8774851560592651, B = 0.45584815740585327, r3 = 1.7320507764816284;
  Pts p;
  for (const P3& c : cells) {
    const double z = 1.0 - (A + B) / 2.0 + (A - B) / 2.0 * c[2];
    p.push_back({c[0] * (1.0 - z) / r3, c[1] * (1.0 - z) / r3, z});
  }
  return p;
}
Pts scaled(Pts p, double f) {
  for (P3& x : p)
    for (double& v : x) v *= f;
  return p;
}
// Result points: the centre, then the nodes in element order.
Pts with_centre(P3 centre, const Pts& nodes) {
  Pts p = {centre};
  p.insert(p.end(), nodes.begin(), nodes.end());
  return p;
}

struct Family {
  std::string name;
  std::function<void(VecRef<double>, int32_t)> fn;
  Pts gauss, rows;
};

std::vector<Family> families() {
  const P3 o = {0, 0, 0};
  const double a = 0.1381966, b = 0.5854102;
  return {
      {"SOLID_SHAPE_8NODES", SOLID_SHAPE_8NODES, corners(), with_centre(o, natural_nodes(8))},
      {"SOLID_SHAPE_10NODES",
       SOLID_SHAPE_10NODES,
       {{a, a, a}, {b, a, a}, {a, b, a}, {a, a, b}},
       with_centre({.25, .25, .25}, natural_nodes(10))},
      {"SOLID_SHAPE_6NODES", SOLID_SHAPE_6NODES, wedge({-kG2, kG2}),
       with_centre({1. / 3, 1. / 3, 0}, natural_nodes(6))},
      {"SOLID_SHAPE_5NODES", SOLID_SHAPE_5NODES, pyramid(natural_nodes(8)),
       with_centre({0, 0, .25}, natural_nodes(5))},
      {"SOLID_SHAPE_15NODES_LINEAR", SOLID_SHAPE_15NODES_LINEAR, wedge({-kG3, 0, kG3}),
       with_centre({1. / 3, 1. / 3, 0}, natural_nodes(15))},
      {"SOLID_SHAPE_15NODES", SOLID_SHAPE_15NODES, wedge({-kG3, 0, kG3}),
       with_centre({1. / 3, 1. / 3, 0}, natural_nodes(15))},
      {"SOLID_SHAPE_20NODES_LINEAR", SOLID_SHAPE_20NODES_LINEAR, grid(3, 3),
       with_centre(o, natural_nodes(20))},
      {"SOLID_SHAPE_20NODES", SOLID_SHAPE_20NODES, grid(3, 3), with_centre(o, natural_nodes(20))},
      {"SOLID_SHAPE_13NODES", SOLID_SHAPE_13NODES,
       pyramid(scaled(grid(3, 3), 1.3416407864998738 / kG3)),
       with_centre({0, 0, .25}, natural_nodes(13))},
  };
}

double apply(const Family& f, int32_t row, const std::function<double(const P3&)>& field) {
  std::vector<double> w(f.gauss.size(), -99.0);
  f.fn(VecRef<double>(w.data(), static_cast<int64_t>(w.size()), "N"), row);
  double s = 0.0;
  for (size_t g = 0; g < w.size(); ++g) s += w[g] * field(f.gauss[g]);
  return s;
}

// Every form sums to one and carries linear fields; the quadratic forms also
// carry their spaces: the two-stage forms the multilinear fields, the plain
// forms the serendipity fields.
TEST(ShapeLibrary, WeightsReproduceTheFieldsOfTheirSpaces) {
  const std::map<std::string, std::function<double(const P3&)>> higher = {
      {"SOLID_SHAPE_20NODES_LINEAR",
       [](const P3& p) { return 1.0 + p[0] * p[1] - p[1] * p[2] + 2.0 * p[0] * p[1] * p[2]; }},
      {"SOLID_SHAPE_20NODES",
       [](const P3& p) {
         return p[0] * p[0] - p[1] * p[2] + 3.0 * p[2] * p[2] + p[0] * p[0] * p[2] -
                p[0] * p[1] * p[2];
       }},
      {"SOLID_SHAPE_15NODES",
       [](const P3& p) { return 1.0 + p[0] - p[1] + p[2] * p[2] + p[0] * p[2] * p[2]; }}};
  auto one = [](const P3&) { return 1.0; };
  auto linear = [](const P3& p) { return 1.5 - 2.0 * p[0] + 0.75 * p[1] + 3.25 * p[2]; };
  for (const Family& f : families())
    for (int32_t row = 1; row <= static_cast<int32_t>(f.rows.size()); ++row) {
      SCOPED_TRACE(f.name + " row " + std::to_string(row));
      const P3& x = f.rows[static_cast<size_t>(row - 1)];
      EXPECT_NEAR(apply(f, row, one), 1.0, 1e-13);
      EXPECT_NEAR(apply(f, row, linear), linear(x), 1e-12);
      if (higher.count(f.name)) {
        EXPECT_NEAR(apply(f, row, higher.at(f.name)), higher.at(f.name)(x), 1e-12);
      }
    }
}

}  // namespace
}  // namespace respcore
