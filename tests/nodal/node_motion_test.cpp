// Node motion from every store: modal sums, direct histories, support
// motion, node and skew axes, relative and absolute motion, envelopes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

// Direct file 1 whose section record x holds 1000 x + s at step s, so that
// a value names the record it came from.
void numbered_direct(ArchiveFixture& a, int32_t nrec, int32_t nsteps) {
  Section& s = a.writer().direct(1).add(sections::DMED, 1, 2 * nsteps, nrec);
  for (int32_t x = 1; x <= nrec; ++x)
    for (int32_t t = 1; t <= nsteps; ++t) s.set_f64(x, t, 1000.0 * x + t);
}

std::vector<double> expect_record(int x, int nsteps) {
  std::vector<double> v;
  for (int t = 1; t <= nsteps; ++t) v.push_back(1000.0 * x + t);
  return v;
}

TEST(NodeMotion, SupportMotionAddressesTheDirectFileDifferently) {
  ArchiveFixture a;
  a.history_cases({{2, 1, 3, 0, 0}});
  numbered_direct(a, 30, 3);
  // Node 1: x constrained (0), y and z equations 4 and 5. Node 2: no zero.
  a.node_records({{{0, 4, 5, 0, 0, 0}, {}}, {{4, 5, 6, 7, 8, 9}, {}}});
  // Support rows: (node 3, x), (node 1, y), (node 1, x).
  Section& mses = a.writer().second().add(sections::MSES, 1, 2, 3);
  mses.put_i32s(1, 0, std::vector<int32_t>{3, 1});
  mses.put_i32s(2, 0, std::vector<int32_t>{1, 2});
  mses.put_i32s(3, 0, std::vector<int32_t>{1, 1});
  Section& mser = a.writer().second().add(sections::MSER, 1, 6, 9);
  for (int x = 1; x <= 9; ++x)
    for (int t = 1; t <= 3; ++t) mser.set_f64(x, t, -(1000.0 * x + t));
  a.write();
  Kernel k;
  auto node = [&](int32_t type, int32_t comp, int32_t n) {
    auto q = a.request(type, comp, 3);
    q.elements = {n};
    return k.run(q).values;
  };
  auto neg = [](std::vector<double> v) {
    for (double& x : v) x = -x;
    return v;
  };
  // Support row 3 of MSER: records 7, 8, 9 hold acceleration, velocity, displacement.
  EXPECT_EQ(node(9, 1, 1), neg(expect_record(9, 3)));
  EXPECT_EQ(node(10, 1, 1), neg(expect_record(8, 3)));
  EXPECT_EQ(node(11, 1, 1), neg(expect_record(7, 3)));
  // Equation 4 of that node: 3e - 1, 2e - 1, e - 1 behind the first record.
  EXPECT_EQ(node(9, 2, 1), expect_record(12, 3));
  EXPECT_EQ(node(10, 2, 1), expect_record(8, 3));
  EXPECT_EQ(node(11, 2, 1), expect_record(4, 3));
  // Node 2 has no zero among its first three: the plain addressing.
  EXPECT_EQ(node(10, 1, 2), expect_record(11, 3));
  EXPECT_EQ(node(11, 1, 2), expect_record(10, 3));
}

// Two modal sets of two modes, the second case keeping set 2; a mode's
// coordinates at step s: displacement m + s/10 (plus 5 in set 2), velocity
// 10 (m + s), acceleration 100 m s. Equation e has the shape (e, -e).
TEST(NodeMotion, ModalSumsOfEachSetAndASingleMode) {
  ArchiveFixture a;
  const int nss = 4;
  a.history_cases({{1, 1, nss, 2, 0}, {1, 2, nss, 2, 0}});
  Section& mdsp = a.writer().second().add(sections::MDSP, 3, 6, 2 * 2 * nss);
  auto coord = [](int set, int m, int s) {
    return std::array<double, 3>{m + s / 10.0 + 5 * (set - 1), 10.0 * (m + s), 100.0 * m * s};
  };
  for (int set = 1; set <= 2; ++set)
    for (int m = 1; m <= 2; ++m)
      for (int s = 1; s <= nss; ++s) {
        const auto c = coord(set, m, s);
        mdsp.put_f64s(((set - 1) * 2 + m - 1) * nss + s, 0,
                      std::vector<double>(c.begin(), c.end()));
      }
  std::vector<std::vector<double>> shapes;
  for (int e = 1; e <= 6; ++e) shapes.push_back({double(e), -double(e)});
  a.writer().second().add_f64_rows(sections::MSHP, 3, shapes);
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}});
  a.write();
  Kernel k;
  for (int32_t type : {9, 10, 11})
    for (int32_t set : {1, 2})
      for (int32_t mode_no : {0, 1, 2, 3}) {
        auto q = a.request(type, 3, nss);
        q.mode_no = mode_no;
        q.hist_case = set;
        auto r = k.run(q).values;
        for (int s = 1; s <= nss; ++s) {
          double expect = 0.0;
          for (int m = 1; m <= 2; ++m)
            if (mode_no < 1 || mode_no > 2 || m == mode_no)
              expect += shapes[2][m - 1] * coord(set, m, s)[type - 9];
          EXPECT_DOUBLE_EQ(r[s - 1], expect) << type << " " << set << " " << mode_no << " " << s;
        }
      }
  // The envelope of the velocity: its extremes and the rows at their steps.
  auto q = a.request(10, 3, nss);
  const auto h = k.run(q).values;
  q.request_mode = 3;
  const auto env = k.run(q).values;
  EXPECT_EQ(env[2], *std::max_element(h.begin(), h.end()));
  EXPECT_EQ(env[8], *std::min_element(h.begin(), h.end()));
  EXPECT_DOUBLE_EQ(env[3], 4 * env[2] / 3);  // row 4 at that step: shapes (4, -4) against (3, -3)
}

// T = upper triangle with T(1,1) = 2, T(1,2) = 3, the identity elsewhere:
// row 1 is 2 u1 + 3 u2, row 2 is u2 alone. The seventh dof is read under the
// tags that know it, where the archive says so.
TEST(NodeMotion, NodeTransformAndTheSeventhDof) {
  std::vector<double> up = identity_upper();
  up[0] = 2.0, up[1] = 3.0;
  for (const auto& [tag, index, knows] :
       {std::tuple{"P.R.W", 1, true}, {"Q.L.D", 7, true}, {"U.K.Y", 3, false}})
    for (bool flag : {false, true}) {
      if (!knows && !flag) continue;
      ArchiveFixture a(tag);
      a.history_cases({{2, 1, 2, 0, 0}});
      numbered_direct(a, 30, 2);
      a.node_records({{{1, 2, 3, 4, 5, 6, 7}, up}}, flag);
      a.write();
      Kernel k;
      auto q = a.request(9, 7, 2);
      q.product_index = index;
      EXPECT_EQ(k.run(q).values, flag && knows ? expect_record(21, 2) : std::vector<double>({0, 0}))
          << tag;
      if (!knows) continue;
      q.result_comp = 1;
      EXPECT_EQ(k.run(q).values, (std::vector<double>{2 * 3001 + 3 * 6001, 2 * 3002 + 3 * 6002}))
          << tag;
      q.result_comp = 2;
      EXPECT_EQ(k.run(q).values, expect_record(6, 2)) << tag;
    }
}

TEST(NodeMotion, RelativeAndAbsoluteMotion) {
  ArchiveFixture a;
  a.history_cases({{2, 1, 3, 0, 0}, {2, 1, 3, 0, 0}});
  numbered_direct(a, 40, 3);
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}, {{7, 8, 9, 10, 11, 12}, {}}});
  std::array<std::array<std::vector<double>, 3>, 3> g1, g2;
  for (int d = 0; d < 3; ++d)
    for (int q = 0; q < 3; ++q)
      g1[d][q] = {1.0 * (d + 1) * (q + 1), 0.5, 0.25}, g2[d][q] = {-7, -7, -7};
  a.ground_motion({g1, g2});
  a.write();
  Kernel k;
  auto q = a.request(9, 2, 3);
  q.step_no = 3, q.elements = {1, 2}, q.serials = {1, 1};  // relative to the second listed node
  auto rel = k.run(q).values;
  for (int s = 1; s <= 3; ++s) EXPECT_EQ(rel[s - 1], (6000.0 + s) - (24000.0 + s));
  // Absolute: ground displacement (q = 3) of direction 2 added to row 2.
  q.step_no = 2;
  auto abs = k.run(q).values;
  EXPECT_EQ(std::tuple(abs[0], abs[1]), std::tuple(6001 + 2.0 * 3, 6002 + 0.5));
  // Acceleration takes q = 1; rows above 3 are not touched.
  q.elem_type = 11;
  EXPECT_EQ(k.run(q).values[2], 4003 + 0.25);
  q.result_comp = 4;
  EXPECT_EQ(k.run(q).values[0], 10001);
  // Other step numbers give the plain history.
  q.step_no = 7, q.result_comp = 2, q.elem_type = 9;
  EXPECT_EQ(k.run(q).values, expect_record(6, 3));
}

TEST(NodeMotion, SnapshotTakesColumnStepNoOfAOneColumnArray) {
  ArchiveFixture a;
  a.history_cases({{2, 1, 5, 0, 0}});
  numbered_direct(a, 30, 5);
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}, {{7, 8, 9, 10, 11, 12}, {}}});
  a.write();
  Kernel k;
  auto q = a.request(9, 1, 1);
  q.request_mode = 2, q.num_items = 2, q.elements = {1, 2}, q.serials = {1, 1}, q.step_no = 1;
  EXPECT_EQ(k.run(q).values, (std::vector<double>{3001, 21001}));
  q.step_no = 4;
  ::testing::internal::CaptureStderr();
  auto r = k.run(q).values;
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(r, (std::vector<double>{0, 0}));
  EXPECT_NE(err.find("array bound exceeded: DISP_NO subscript 4 bound 1:1"), std::string::npos);
}

TEST(NodeMotion, EnvelopesWithTiesAndSkewSystems) {
  ArchiveFixture a;
  a.history_cases({{2, 1, 5, 0, 0}});
  Section& s = a.writer().direct(1).add(sections::DMED, 1, 10, 36);
  // Node 1, x (eq 1, record 3): 1 4 4 -2 -2 ; y (eq 2, record 6): 5 5 5 5 5.
  s.put_f64s(3, 0, std::vector<double>{1, 4, 4, -2, -2});
  s.put_f64s(6, 0, std::vector<double>{5, 5, 5, 5, 5});
  s.put_f64s(9, 0, std::vector<double>{0, 1, 2, 3, 4});
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}});
  a.writer().skew_systems({{1, {0, 1, 0, -1, 0, 0, 0, 0, 1}}});  // x' = y, y' = -x, z' = z
  a.write();
  Kernel k;
  auto q = a.request(9, 1, 5);
  q.request_mode = 3;
  auto env = k.run(q).values;
  ASSERT_EQ(env.size(), 12u);
  // Maximum of x first reached at step 2, minimum at step 4: all rows there.
  EXPECT_EQ(std::tuple(env[0], env[1], env[2], env[6], env[8]), std::tuple(4, 5, 1, -2, 3));
  // A constant component: step 1 for both, two equal columns.
  q.result_comp = 2;
  env = k.run(q).values;
  EXPECT_EQ(std::tuple(env[2], env[8]), std::tuple(0, 0));
  // In node axes with the skew system: x' = y, y' = -x.
  q.result_comp = 1, q.axis_flag = 0;
  env = k.run(q).values;
  EXPECT_EQ(std::tuple(env[0], env[1], env[6]), std::tuple(5, -1, 5));
  // The skew systems survive into a later history request.
  auto h = a.request(9, 2, 5);
  h.axis_flag = 0;
  EXPECT_EQ(k.run(h).values, (std::vector<double>{-1, -4, -4, 2, 2}));
  h.axis_flag = 1;
  EXPECT_EQ(k.run(h).values, (std::vector<double>{5, 5, 5, 5, 5}));
  // A fresh kernel has none.
  Kernel fresh;
  h.axis_flag = 0;
  EXPECT_EQ(fresh.run(h).values, (std::vector<double>{5, 5, 5, 5, 5}));
}

}  // namespace
}  // namespace respcore::testing
