#include "recovery/shape_library.hpp"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace respcore {
namespace {

using P3 = std::array<double, 3>;
using Pts = std::vector<P3>;

const double kG2 = 1.0 / std::sqrt(3.0);
const double kG3 = std::sqrt(0.6);
constexpr double kSr3Single = 1.7320507764816284;

// Gauss point positions of each rule, worked out here from the rules
// themselves rather than taken from the library.
Pts quad_2x2() { return {{-kG2, -kG2, 0}, {kG2, -kG2, 0}, {kG2, kG2, 0}, {-kG2, kG2, 0}}; }
Pts quad_3x3() {
  const double x[3] = {-kG3, 0.0, kG3};
  Pts p;
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) p.push_back({x[i], x[j], 0});
  return p;
}
Pts hex_2x2x2() {
  Pts p;
  for (double z : {-kG2, kG2})
    for (auto [x, y] : {std::pair{-kG2, -kG2}, {kG2, -kG2}, {kG2, kG2}, {-kG2, kG2}})
      p.push_back({x, y, z});
  return p;
}
Pts hex_3x3x3() {
  const double x[3] = {-kG3, 0.0, kG3};
  Pts p;
  for (int l = 0; l < 3; ++l)
    for (int j = 0; j < 3; ++j)
      for (int i = 0; i < 3; ++i) p.push_back({x[i], x[j], x[l]});
  return p;
}
const double kTri[3][2] = {{1.0 / 6, 1.0 / 6}, {2.0 / 3, 1.0 / 6}, {1.0 / 6, 2.0 / 3}};
Pts tri_3() { return {{kTri[0][0], kTri[0][1], 0}, {kTri[1][0], kTri[1][1], 0}, {kTri[2][0], kTri[2][1], 0}}; }
Pts wedge(std::initializer_list<double> zs) {
  Pts p;
  for (double z : zs)
    for (auto& t : kTri) p.push_back({t[0], t[1], z});
  return p;
}
Pts tet_4() {
  const double a = 0.1381966, b = 0.5854102;
  return {{a, a, a}, {b, a, a}, {a, b, a}, {a, a, b}};
}
// Pyramid rules: cell coordinates (a, b, c) map to z = G + H c and
// x = a (1 - z) / sqrt(3), the rule's collapsed square.
P3 pyramid_point(double a, double b, double c) {
  const double A = 0.8774851560592651, B = 0.45584815740585327;
  const double G = 1.0 - (A + B) / 2.0, H = (A - B) / 2.0;
  const double z = G + H * c;
  return {a * (1.0 - z) / kSr3Single, b * (1.0 - z) / kSr3Single, z};
}
Pts pyramid_8() {
  Pts p;
  for (double c : {-1.0, 1.0})
    for (auto [a, b] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}})
      p.push_back(pyramid_point(a, b, c));
  return p;
}
Pts pyramid_27() {
  const double q[3] = {-1.3416407864998738, 0.0, 1.3416407864998738};  // quadratic grid in cell units
  Pts p;
  for (int l = 0; l < 3; ++l)
    for (int j = 0; j < 3; ++j)
      for (int i = 0; i < 3; ++i) p.push_back(pyramid_point(q[i], q[j], q[l]));
  return p;
}

// Result points: the element centre, then the nodes in element order.
const Pts kQuad4 = {{0, 0, 0}, {-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
Pts quad8() {
  Pts p = kQuad4;
  for (P3 m : {P3{0, -1, 0}, P3{1, 0, 0}, P3{0, 1, 0}, P3{-1, 0, 0}}) p.push_back(m);
  return p;
}
const Pts kTri6 = {{1.0 / 3, 1.0 / 3, 0}, {0, 0, 0},     {1, 0, 0},    {0, 1, 0},
                   {0.5, 0, 0},           {0.5, 0.5, 0}, {0, 0.5, 0}};
Pts hex8() {
  Pts p = {{0, 0, 0}};
  for (double z : {-1.0, 1.0})
    for (auto [x, y] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}})
      p.push_back({x, y, z});
  return p;
}
Pts hex20() {
  Pts p = hex8();
  for (double z : {-1.0, 1.0})
    for (auto [x, y] : {std::pair{0.0, -1.0}, {1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}}) p.push_back({x, y, z});
  for (auto [x, y] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}}) p.push_back({x, y, 0});
  return p;
}
const Pts kPyr5 = {{0, 0, 0.25}, {-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {0, 0, 1}};
Pts pyr13() {
  Pts p = kPyr5;
  for (P3 m : {P3{0, -1, 0}, P3{1, 0, 0}, P3{0, 1, 0}, P3{-1, 0, 0}, P3{-0.5, -0.5, 0.5},
               P3{0.5, -0.5, 0.5}, P3{0.5, 0.5, 0.5}, P3{-0.5, 0.5, 0.5}})
    p.push_back(m);
  return p;
}
const Pts kWedge6 = {{1.0 / 3, 1.0 / 3, 0}, {0, 0, -1}, {1, 0, -1}, {0, 1, -1},
                     {0, 0, 1},             {1, 0, 1},  {0, 1, 1}};
Pts wedge15() {
  Pts p = kWedge6;
  for (P3 m : {P3{0.5, 0, -1}, P3{0.5, 0.5, -1}, P3{0, 0.5, -1}, P3{0.5, 0, 1}, P3{0.5, 0.5, 1},
               P3{0, 0.5, 1}, P3{0, 0, 0}, P3{1, 0, 0}, P3{0, 1, 0}})
    p.push_back(m);
  return p;
}
const Pts kTet10 = {{0.25, 0.25, 0.25}, {0, 0, 0},     {1, 0, 0},   {0, 1, 0},
                    {0, 0, 1},          {0.5, 0, 0},   {0.5, 0.5, 0}, {0, 0.5, 0},
                    {0, 0, 0.5},        {0.5, 0, 0.5}, {0, 0.5, 0.5}};

struct Family {
  std::string name;
  std::function<void(VecRef<double>, int32_t)> fn;
  Pts gauss;
  Pts rows;
};

std::vector<Family> families() {
  return {
      {"LINE_SHAPE_2NODE", LINE_SHAPE_2NODE, {{-kG2, 0, 0}, {kG2, 0, 0}}, {{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}},
      {"PLANE_SHAPE_4NODES", PLANE_SHAPE_4NODES, quad_2x2(), kQuad4},
      {"PLANE_SHAPE_8NODES_REDUCED", PLANE_SHAPE_8NODES_REDUCED, quad_2x2(), quad8()},
      {"PLANE_SHAPE_6NODES", PLANE_SHAPE_6NODES, tri_3(), kTri6},
      {"PLANE_SHAPE_8NODES_LINEAR", PLANE_SHAPE_8NODES_LINEAR, quad_3x3(), quad8()},
      {"PLANE_SHAPE_8NODES", PLANE_SHAPE_8NODES, quad_3x3(), quad8()},
      {"SOLID_SHAPE_8NODES", SOLID_SHAPE_8NODES, hex_2x2x2(), hex8()},
      {"SOLID_SHAPE_10NODES", SOLID_SHAPE_10NODES, tet_4(), kTet10},
      {"SOLID_SHAPE_6NODES", SOLID_SHAPE_6NODES, wedge({-kG2, kG2}), kWedge6},
      {"SOLID_SHAPE_5NODES", SOLID_SHAPE_5NODES, pyramid_8(), kPyr5},
      {"SOLID_SHAPE_15NODES_LINEAR", SOLID_SHAPE_15NODES_LINEAR, wedge({-kG3, 0.0, kG3}), wedge15()},
      {"SOLID_SHAPE_15NODES", SOLID_SHAPE_15NODES, wedge({-kG3, 0.0, kG3}), wedge15()},
      {"SOLID_SHAPE_20NODES_LINEAR", SOLID_SHAPE_20NODES_LINEAR, hex_3x3x3(), hex20()},
      {"SOLID_SHAPE_20NODES", SOLID_SHAPE_20NODES, hex_3x3x3(), hex20()},
      {"SOLID_SHAPE_13NODES", SOLID_SHAPE_13NODES, pyramid_27(), pyr13()},
  };
}

double linear(const P3& p) { return 1.5 - 2.0 * p[0] + 0.75 * p[1] + 3.25 * p[2]; }

std::vector<double> weights(const Family& f, int32_t ipt) {
  std::vector<double> w(f.gauss.size(), -99.0);
  f.fn(VecRef<double>(w.data(), static_cast<int64_t>(w.size()), "N"), ipt);
  return w;
}

double apply(const std::vector<double>& w, const Pts& pts, double (*field)(const P3&)) {
  double s = 0.0;
  for (size_t g = 0; g < pts.size(); ++g) s += w[g] * field(pts[g]);
  return s;
}

TEST(ShapeLibrary, OddConstantsKeepTheirStoredBits) {
  using namespace shape_const;
  EXPECT_EQ(std::bit_cast<uint64_t>(R3), 0x3ffbb67ae8584caaull);
  EXPECT_EQ(std::bit_cast<uint64_t>(S5), 0x4001e3779892dab7ull);      // not sqrt(5)
  EXPECT_EQ(std::bit_cast<uint64_t>(A4), 0x3fc1b06d1ab58decull);      // 0.1381966
  EXPECT_EQ(std::bit_cast<uint64_t>(Q), 0x3fc5555555555555ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(C5), 0x3fe7d9f4cf754635ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(C5_INV), 0x3ff5775c544ff263ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(PYR_A), 0x3fec145bc0000000ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(PYR_B), 0x3fdd2c9dc0000000ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(PYR_R3), 0x3ffbb67ae0000000ull);  // sqrt(3) as a float
  EXPECT_EQ(PYR_R3, static_cast<double>(std::sqrt(3.0f)));
  EXPECT_NE(S5, std::sqrt(5.0));
  // The quirks of the stored tables.
  EXPECT_EQ(shape_table::PYR13_XII[5], 1.0);  // apex x of the 13-node pyramid
  EXPECT_EQ(shape_table::LINE2_XII[1], 1.0);
  EXPECT_EQ(shape_table::LINE2_XII[2], 0.0);
}

// The weights at every result point sum to one, and they carry any linear
// field from the Gauss points to the result point exactly.
TEST(ShapeLibrary, WeightsArePartitionOfUnityAndReproduceLinearFields) {
  for (const Family& f : families()) {
    for (int32_t ipt = 1; ipt <= static_cast<int32_t>(f.rows.size()); ++ipt) {
      SCOPED_TRACE(f.name + " row " + std::to_string(ipt));
      const std::vector<double> w = weights(f, ipt);
      double sum = 0.0;
      for (double x : w) sum += x;
      EXPECT_NEAR(sum, 1.0, 1e-13);
      EXPECT_NEAR(apply(w, f.gauss, linear), linear(f.rows[ipt - 1]), 1e-12);
    }
  }
}

// The quadratic forms also reproduce what their interpolation spaces hold:
// the two-stage forms every multilinear field, the plain forms the
// serendipity fields.
TEST(ShapeLibrary, HigherFormsReproduceTheirPolynomialSpaces) {
  auto bilinear = [](const P3& p) { return 1.0 + p[0] - 2.0 * p[1] + 0.5 * p[0] * p[1]; };
  auto trilinear = [](const P3& p) {
    return 1.0 + p[0] * p[1] - p[1] * p[2] + 2.0 * p[0] * p[1] * p[2];
  };
  auto quad_seren = [](const P3& p) {
    return p[0] * p[0] - p[0] * p[1] + 2.0 * p[1] * p[1] + p[0] * p[0] * p[1] - p[0] * p[1] * p[1];
  };
  auto hex_seren = [](const P3& p) {
    return p[0] * p[0] - p[1] * p[2] + 3.0 * p[2] * p[2] + p[0] * p[0] * p[2] - p[0] * p[1] * p[2];
  };
  auto wedge_plain = [](const P3& p) { return 1.0 + p[0] - p[1] + p[2] * p[2] + p[0] * p[2] * p[2]; };
  struct Check {
    std::string name;
    double (*field)(const P3&);
  };
  const std::vector<Check> checks = {
      {"PLANE_SHAPE_8NODES_LINEAR", +bilinear}, {"SOLID_SHAPE_20NODES_LINEAR", +trilinear},
      {"PLANE_SHAPE_8NODES", +quad_seren},      {"SOLID_SHAPE_20NODES", +hex_seren},
      {"SOLID_SHAPE_15NODES", +wedge_plain},
  };
  for (const Family& f : families()) {
    for (const Check& c : checks) {
      if (c.name != f.name) continue;
      for (int32_t ipt = 1; ipt <= static_cast<int32_t>(f.rows.size()); ++ipt) {
        SCOPED_TRACE(f.name + " row " + std::to_string(ipt));
        EXPECT_NEAR(apply(weights(f, ipt), f.gauss, c.field), c.field(f.rows[ipt - 1]), 1e-12);
      }
    }
  }
}

TEST(ShapeLibrary, CentresGiveEqualWeights) {
  double w[8];
  SOLID_SHAPE_8NODES(VecRef<double>(w, 8, "N"), 1);
  for (double x : w) EXPECT_DOUBLE_EQ(x, 0.125);
  PLANE_SHAPE_6NODES(VecRef<double>(w, 3, "N"), 1);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(w[i], 1.0 / 3.0, 1e-15);
  SOLID_SHAPE_10NODES(VecRef<double>(w, 4, "N"), 1);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(w[i], 0.25, 1e-15);
  double one[1] = {0.0};
  LINE_SHAPE_1NODE(VecRef<double>(one, 1, "N"));
  EXPECT_EQ(one[0], 1.0);
  one[0] = 0.0;
  PLANE_SHAPE_3NODES(VecRef<double>(one, 1, "N"));
  EXPECT_EQ(one[0], 1.0);
  one[0] = 0.0;
  SOLID_SHAPE_4NODES(VecRef<double>(one, 1, "N"));
  EXPECT_EQ(one[0], 1.0);
}

// At the apex the in-plane cell coordinates are 0: the four points of each
// level share the weight, whatever x the table holds there.
TEST(ShapeLibrary, PyramidApexIgnoresInPlaneCoordinates) {
  double w[8];
  SOLID_SHAPE_5NODES(VecRef<double>(w, 8, "N"), 6);
  for (int k = 1; k < 4; ++k) {
    EXPECT_EQ(w[k], w[0]);
    EXPECT_EQ(w[4 + k], w[4]);
  }
  // The 13-node table holds x = 1 at the apex; the result is the same as at
  // x = 0, i.e. symmetric over the four corners of each level of the grid.
  double n[27];
  SOLID_SHAPE_13NODES(VecRef<double>(n, 27, "N"), 6);
  for (int l = 0; l < 3; ++l) {
    const double c = n[9 * l + 0];
    EXPECT_NEAR(n[9 * l + 2], c, 1e-15);
    EXPECT_NEAR(n[9 * l + 6], c, 1e-15);
    EXPECT_NEAR(n[9 * l + 8], c, 1e-15);
    EXPECT_NEAR(n[9 * l + 1], n[9 * l + 3], 1e-15);
    EXPECT_NEAR(n[9 * l + 5], n[9 * l + 7], 1e-15);
    EXPECT_NEAR(n[9 * l + 1], n[9 * l + 5], 1e-15);
  }
}

TEST(ShapeLibrary, RowOutsideTableIsReportedAndReadsZero) {
  double w[8] = {};
  ::testing::internal::CaptureStderr();
  SOLID_SHAPE_8NODES(VecRef<double>(w, 8, "N"), 10);
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(err,
            "array bound exceeded: XII subscript 10 bound 1:9\n"
            "array bound exceeded: ETA subscript 10 bound 1:9\n"
            "array bound exceeded: ZETA subscript 10 bound 1:9\n");
  for (double x : w) EXPECT_DOUBLE_EQ(x, 0.125);  // read as the origin
}

}  // namespace
}  // namespace respcore
