// High-order solids (ELEM_TYPE 8) through whole requests: the kernel builds
// the element from its nodes and material. Oracles: rigid motion, a linear
// field reproduced at every result point with its forces in balance, an
// orthotropic material in the element axes, and the stop of a singular
// material.
#include <gtest/gtest.h>

#include <cmath>

#include "respcore/respcore.h"
#include "solid_support.hpp"

namespace respcore::testing::solid {
namespace {

int corners(int nn) { return nn == 10 ? 4 : nn == 13 ? 5 : nn == 15 ? 6 : 8; }
int rows_of(int nn) { return 186 + 6 * (nn + 1); }

struct HighModel {
  ArchiveFixture a;
  SolidModel model;
  SolidHighRecord record;
  std::vector<V3> coords;

  // MAT_VALS of the record; the material table may hold other values.
  HighModel(int nn, const Placement& pl, const Material& table, const std::array<double, 9>& vals) {
    model.materials = {table};
    model.element_material = {1};
    coords = model.nodes = place(natural_nodes(nn), corners(nn), pl);
    for (int node = 1; node <= nn; ++node) {
      record.nodes.push_back(node);
      for (int c = 1; c <= 3; ++c) record.equations.push_back(3 * (node - 1) + c);
    }
    record.mat_vals = vals;
  }
  void write(const Field& u, int nsteps) {
    model.write_common(a, u, nsteps);
    a.writer().solid_high_records(3, {record});
    std::vector<std::array<double, 3>> cord(model.nodes.begin(), model.nodes.end());
    a.writer().node_coordinates(cord);
    a.write();
  }
  std::vector<std::vector<double>> rows(int nrows, int32_t axis_flag = 1, int nsteps = 1) {
    Kernel k;
    Request r = a.request(8, 1, nsteps);
    r.axis_flag = axis_flag;
    return history_rows(k, r, nrows);
  }
};

class HighShapes : public ::testing::TestWithParam<int> {};

TEST_P(HighShapes, RigidMotionIsFreeAndALinearFieldGivesItsStressEverywhere) {
  const int nn = GetParam();
  const M3 G = sample_gradient();
  const V6 sigma = isotropic_stress(Material{}, strain_of(G)),
           eps = mul6(compliance(Material{}), sigma);
  for (int variant = 0; variant < 2; ++variant) {
    Placement pl = sample_placement(variant);
    pl.bump = 0.04;  // curved edges: the field is still reproduced
    HighModel rigid(nn, pl, Material{}, Material{}.vals);
    rigid.write(linear_field({0.3, -0.2, 0.5}, {{{0, -3e-3, -1e-3}, {3e-3, 0, -2e-3}, {1e-3, 2e-3, 0}}}), 1);
    for (const auto& row : rigid.rows(rows_of(nn)))
      for (double v : row) EXPECT_NEAR(v, 0.0, 1e-7);
    HighModel m(nn, pl, Material{}, Material{}.vals);
    m.write(linear_field({0.1, 0.2, -0.3}, G), 2);
    const auto rows = m.rows(rows_of(nn), 1, 2);
    for (int s = 1; s <= 2; ++s) {
      for (int p = 0; p <= nn; ++p) {
        EXPECT_V6_NEAR(point6(rows, 61 + 6 * p, s),
                       (V6{s * sigma[0], s * sigma[1], s * sigma[2], s * sigma[3], s * sigma[4],
                           s * sigma[5]}),
                       1e-9 * s * norm6(sigma))
            << p;
        EXPECT_V6_NEAR(point6(rows, 187 + 6 * p, s),
                       (V6{s * eps[0], s * eps[1], s * eps[2], s * eps[3], s * eps[4], s * eps[5]}),
                       1e-9 * s * norm6(eps))
            << p;
      }
      V3 fsum{}, msum{};
      for (int n = 0; n < nn; ++n) {
        const V3 f = point3(rows, 1 + 3 * n, s);
        fsum = add(fsum, f);
        msum = add(msum, cross(m.coords[static_cast<size_t>(n)], f));
      }
      EXPECT_V3_NEAR(fsum, (V3{0, 0, 0}), 1e-8);
      EXPECT_V3_NEAR(msum, (V3{0, 0, 0}), 1e-6);
      EXPECT_GT(std::fabs(point3(rows, 1, s)[0]), 1e-3);  // the element is loaded
    }
  }
}

// The material lies in the element axes, with the record's MAT_VALS (the
// material table holds others); element-axis results turn back to the
// global ones.
TEST_P(HighShapes, OrthotropicRecordMaterialTurnsWithTheElementAxes) {
  const int nn = GetParam();
  Material table = orthotropic();
  table.vals = {1e3, 0.1, 0, 1e3, 0.1, 0, 1e2, 1e2, 1e2};
  const Placement pl = sample_placement(2);
  const M3 G = sample_gradient();
  HighModel m(nn, pl, table, orthotropic().vals);
  m.write(linear_field({0, 0, 0}, G), 1);
  const auto g = m.rows(rows_of(nn)), l = m.rows(rows_of(nn), 0);
  // In element axes the stress is the material's for the strain of Q'GQ.
  const M3 QT = transpose(pl.Q);
  const M6 C = compliance(orthotropic());
  const V6 el = strain_of(matmul(QT, matmul(G, pl.Q)));
  for (int n = 0; n < nn; ++n)
    EXPECT_V3_NEAR(point3(l, 1 + 3 * n, 1), mul(QT, point3(g, 1 + 3 * n, 1)), 1e-8);
  for (int p = 0; p <= nn; ++p) {
    const V6 sl = point6(l, 61 + 6 * p, 1), sg = point6(g, 61 + 6 * p, 1), eps = mul6(C, sg);
    EXPECT_V6_NEAR(mul6(C, sl), el, 1e-9 * norm6(el)) << p;
    EXPECT_V6_NEAR(sg, rotate(pl.Q, sl), 1e-9 * norm6(sg)) << p;
    EXPECT_V6_NEAR(point6(g, 187 + 6 * p, 1), eps, 1e-9 * norm6(eps)) << p;
    EXPECT_V6_NEAR(point6(l, 187 + 6 * p, 1), rotate(QT, eps), 1e-9 * norm6(eps)) << p;
  }
}

std::string NodeCountName(const ::testing::TestParamInfo<int>& p) {
  return "nodes" + std::to_string(p.param);
}
INSTANTIATE_TEST_SUITE_P(HighOrder, HighShapes, ::testing::Values(10, 15, 20), NodeCountName);

// A material whose compliance has a determinant of zero or less cannot be
// inverted: the run stops. The status entries report it; the exported entry
// ends the process with status 0; the kernel is usable afterwards.
TEST(SolidHighDeathTest, SingularMaterialStopsTheRun) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  Material bad;
  bad.type = 1;
  bad.E = 1.0;
  bad.nu = 0.6;
  bad.vals = {1.0, 0.6, 0.0, 1.0, 0.6, 0.0, 1.0, 1.0, 1.0};
  HighModel m(20, sample_placement(0), bad, bad.vals);
  m.write(linear_field({0, 0, 0}, sample_gradient()), 1);
  Kernel k;
  ::testing::internal::CaptureStdout();
  const Request q = m.a.request(8, 1, 1);
  const Result r = k.run(q);
  const std::string out = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(r.status, STATUS_STOPPED);
  const std::string lines =
      "\n JACOBIAN DETERMINANT OF ELEMENT NO.       0 IS LITTLE THAN ZERO.\n"
      " PLEASE CHECK THE SHAPE OF ELEMENT NO.      0.\n";
  EXPECT_EQ(out, lines);
  EXPECT_EQ(k.messages(), lines);
  HighModel ok(20, sample_placement(0), Material{}, Material{}.vals);
  ok.write(linear_field({0, 0, 0}, sample_gradient()), 1);
  EXPECT_EQ(k.run(ok.a.request(8, 1, 1)).status, STATUS_DONE);

  std::vector<double> v(1, 0.0);
  auto call = [&](auto entry) {
    return entry(q.base.c_str(), static_cast<int32_t>(q.base.size()), q.elem_type, q.result_comp,
                 q.hist_case, q.num_steps, 1, 1, 1, q.product_index, 0, v.data(), q.serials.data(),
                 q.elements.data(), q.axis_flag);
  };
  EXPECT_EXIT(call(respcore_entry_RESPCORE), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(call(respcore_request), 1);
}

// A pyramid has no shape functions here: the run goes on with the shape line.
TEST(SolidHigh, PyramidWithoutShapeFunctionsRunsOn) {
  HighModel pyr(13, sample_placement(0), Material{}, Material{}.vals);
  pyr.write(linear_field({0.1, 0.2, -0.3}, sample_gradient()), 2);
  Kernel k;
  EXPECT_EQ(k.run(pyr.a.request(8, 70, 2)).status, STATUS_DONE);
  EXPECT_NE(k.messages().find("JACOBIAN"), std::string::npos);
}

// A long history of one row is combined from the displacement histories, a
// short one formed step by step: every row agrees, and an element of bad
// shape reports the same lines on both roads.
TEST(SolidHigh, LongRowsAgreeWithTheStepByStepRoad) {
  const Field wave = [](const V3& x, int s) {
    return V3{1e-3 * std::sin(0.2 * s + x[0]), 1e-3 * std::cos(0.3 * s - x[1]),
              1e-3 * std::sin(0.1 * s * x[2])};
  };
  Kernel k;
  HighModel m(20, sample_placement(1), Material{}, Material{}.vals);
  m.write(wave, 70);
  expect_long_rows_agree(k, m.a.request(8, 1, 70), {60, 186, rows_of(20)}, 64);
  HighModel pyr(13, sample_placement(0), Material{}, Material{}.vals);
  pyr.write(wave, 70);
  auto lines_of = [](const Request& r) {
    Kernel fresh;
    fresh.run(r);
    return fresh.messages();
  };
  for (const int comp : {5, 61}) {
    Request r = pyr.a.request(8, comp, 70);
    const std::string lines = lines_of(r);
    EXPECT_NE(lines.find("JACOBIAN"), std::string::npos);
    r.num_steps = 64;
    EXPECT_EQ(lines_of(r), lines) << comp;
  }
}

}  // namespace
}  // namespace respcore::testing::solid
