// The caller's array from TDSP: the rows of every snapshot selector written
// out by hand; and, for every family through whole requests, a snapshot and
// an envelope hold the values of the histories at their steps.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "run/entry.hpp"
#include "run/kernel_state.hpp"
#include "solid/solid_support.hpp"

namespace respcore {
namespace {

// TDSP(r, c) = 1000 r + c, so that every copied value names its row.
std::vector<double> assemble(int32_t type, int32_t comp, int32_t mode, int32_t items,
                             int32_t steps = 1) {
  RunContext R;
  R.ELEM_TYPE = type;
  R.RESULT_COMP = comp;
  R.REQUEST_MODE = mode;
  R.NUM_ITEMS = items;
  R.NUM_STEPS = steps;
  const int64_t ncols = mode == 1 ? steps : mode == 3 ? 2 * items : items;
  Tdsp T("TDSP", ncols);
  for (int64_t r = 1; r <= 350; ++r)
    for (int64_t c = 1; c <= ncols; ++c) T(r, c) = 1000.0 * r + c;
  std::vector<double> out(static_cast<size_t>(history_size(type, comp, steps, items, mode)), -1.0);
  assemble_history(R, T, VecRef<double>(out.data(), static_cast<int64_t>(out.size()), "TDSP_COMP"));
  return out;
}

// The rows a snapshot selector reads of item 1.
std::vector<int> rows(int32_t type, int32_t comp) {
  std::vector<int> r;
  for (double v : assemble(type, comp, 2, 1)) r.push_back(static_cast<int>(v) / 1000);
  return r;
}

using V = std::vector<int>;

TEST(Assembly, SnapshotRowsOfEveryFamilyAndTheOtherModes) {
  EXPECT_EQ(rows(1, 3), (V{3, 6, 9, 12}));
  EXPECT_EQ(rows(1, 4), (V{13, 16, 19, 22, 25}));
  EXPECT_EQ(rows(3, 6), (V{6, 12, 18, 24}));
  EXPECT_EQ(rows(3, 7), (V{25, 39, 53, 67, 81}));
  EXPECT_EQ(rows(4, 3), (V{3, 6, 9, 12, 15, 18, 21, 24}));
  EXPECT_EQ(rows(4, 4), (V{25, 31, 37, 43, 49, 55, 61, 67, 73}));
  EXPECT_EQ(rows(5, 5), (V{26, 29, 32, 35, 38, 41, 44, 47, 50}));
  EXPECT_EQ(rows(6, 4), (V{25, 29, 33, 37, 41, 45, 49, 53, 57}));
  EXPECT_EQ(rows(7, 8), (V{50, 64, 78, 92, 106, 120, 134, 148, 162}));
  EXPECT_EQ(rows(8, 4).size(), 21u);
  EXPECT_EQ(rows(8, 4).back(), 181);
  EXPECT_EQ(rows(11, 7), (V{7}));
  EXPECT_EQ(rows(12, 1), (V{1, 2}));
  EXPECT_EQ(rows(12, 3), (V{4, 5}));
  EXPECT_EQ(rows(13, 6), (V{6, 12}));
  EXPECT_EQ(rows(14, 13), (V{19, 26}));
  EXPECT_EQ(rows(13, 14), (V{27, 31}));
  EXPECT_EQ(assemble(12, 2, 2, 3), (std::vector<double>{3001, 4001, 3002, 4002, 3003, 4003}));
  EXPECT_EQ(assemble(15, 1, 2, 2), std::vector<double>{});  // no family: nothing copied
  EXPECT_EQ(assemble(13, 5, 1, 1, 3), (std::vector<double>{5001, 5002, 5003}));
  // An envelope: six rows of each column, whatever the component says.
  const auto env = assemble(9, 3, 3, 2);
  ASSERT_EQ(env.size(), 24u);
  EXPECT_EQ(env[5], 6001);
  EXPECT_EQ(env[23], 6004);
}

// ---------------------------------------------------------------------------
// One archive holding two items of every family, turned element axes, and
// histories that differ at every step.

using namespace respcore::testing;
using namespace respcore::testing::solid;

double hashed(int a, int b) { return double((37 * a + 11 * b) % 23) - 11.0 + 0.01 * a; }

struct EveryFamily {
  ArchiveFixture a;
  std::map<std::tuple<int, int, int>, std::vector<double>> histories;  // (type, item, row)
  static constexpr int kSteps = 3;

  EveryFamily() {
    const M3 Q = rotation(0.4, -0.7, 1.1);
    std::vector<std::vector<double>> disp(120);
    for (int e = 1; e <= 120; ++e)
      for (int s = 1; s <= kSteps; ++s) disp[e - 1].push_back(1e-3 * hashed(e, s));
    a.direct_case(disp);
    a.node_records({{{1, 2, 3, 4, 5, 6}, {}}, {{7, 8, 9, 10, 11, 12}, {}}});
    auto matrix = [](size_t n, int seed) {
      std::vector<double> m;
      for (size_t i = 0; i < n; ++i) m.push_back(hashed(static_cast<int>(i), seed));
      return m;
    };
    auto lm = [](int first, int n) {
      std::vector<double> v;
      for (int e = first; e < first + n; ++e) v.push_back(e);
      return v;
    };
    ArchiveWriter& w = a.writer();
    w.truss_records(3, {{lm(1, 2), 4, matrix(8, 1)}, {lm(3, 2), 4, matrix(8, 2)}});
    w.beam_records(
        3, {{.lm = lm(1, 12), .strs = matrix(312, 0)}, {.lm = lm(1, 12), .strs = matrix(312, 1)}});
    w.wall_beam_records(3, {{.lm = lm(1, 14), .strs = matrix(1008, 0)},
                            {.lm = lm(1, 14), .strs = matrix(1008, 1)}});
    std::vector<SolidRecord> solids;
    for (int nn : {8, 6})
      solids.push_back({.lm = lm(1, 3 * nn),
                        .nr = 24 + 6 * (nn + 1),
                        .strs = matrix(size_t(18 * nn * (nn + 5)), nn),
                        .nn = nn,
                        .axes = Q});
    w.solid_records(3, solids);
    // A 20-node brick and a 10-node tetrahedron over the nodes 1..30.
    std::vector<std::array<double, 3>> xyz;
    std::vector<SolidHighRecord> high;
    for (int nn : {20, 10}) {
      SolidHighRecord r;
      for (const V3& x : place(natural_nodes(nn), nn == 20 ? 8 : 4, sample_placement(nn))) {
        xyz.push_back(x);
        const double node = static_cast<double>(xyz.size());
        r.nodes.push_back(node);
        for (int c = 1; c <= 3; ++c) r.equations.push_back(3 * (node - 1) + c);
      }
      high.push_back(r);
    }
    w.solid_high_records(3, high);
    w.node_coordinates(xyz);
    w.element_table({{1}, {1}});
    w.materials({{1, 1000.0, 0.3, 0, {}}});  // strains of the size of the stresses
    a.write();
  }

  Request request(int type, int comp) const {
    Request r = a.request(type, comp, kSteps);
    r.axis_flag = 0;
    return r;
  }
  const std::vector<double>& history(int type, int item, int row) {
    auto& h = histories[{type, item, row}];
    if (h.empty()) {
      Kernel k;
      Request r = request(type, row);
      r.serials = r.elements = {item};
      h = k.run(r).values;
    }
    return h;
  }
};

TEST(Assembly, SnapshotsAndEnvelopesHoldTheHistoriesAtTheirSteps) {
  EveryFamily f;
  const std::map<int, std::vector<int>> selectors = {
      {4, {1, 2, 3, 4, 9, 58, 63}},
      {8, {1, 3, 4, 9, 130, 135}},
      {9, {1, 2, 3, 4, 5, 6}},
      {10, {2, 5}},
      {11, {3, 6}},
      {12, {1, 2}},
      {13, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17}},
      {14, {1, 6, 7, 12, 13, 14, 17}}};
  Kernel k;
  for (const auto& [type, comps] : selectors) {
    const bool node = type >= 9 && type <= 11;
    const int step = node ? 1 : 2;  // a node snapshot holds its first step only
    for (int c : comps) {
      SCOPED_TRACE("type " + std::to_string(type) + " selector " + std::to_string(c));
      Request r = f.request(type, c);
      r.request_mode = 2;
      r.num_items = 2;
      r.step_no = step;
      r.serials = r.elements = {1, 2};
      const std::vector<double> snap = k.run(r).values;
      const std::vector<int> picked = rows(type, c);
      ASSERT_EQ(snap.size(), 2 * picked.size());
      for (size_t item = 0; item < 2; ++item)
        for (size_t n = 0; n < picked.size(); ++n) {
          const double want = f.history(type, static_cast<int>(item + 1), picked[n])[step - 1];
          EXPECT_NEAR(snap[item * picked.size() + n], want, 1e-9 * (1 + std::fabs(want))) << n;
        }
      if (c > 6) continue;
      // The envelope: for nodes the six rows at the first steps of the
      // extremes of the component, item by item; for elements rows 1..6 of
      // each item at STEP_NO, and zero columns behind.
      r.request_mode = 3;
      r.num_steps = EveryFamily::kSteps;
      const std::vector<double> env = k.run(r).values;
      ASSERT_EQ(env.size(), 24u);
      for (int item = 1; item <= 2; ++item) {
        const auto& h = f.history(type, item, c);
        const long smax = node ? std::max_element(h.begin(), h.end()) - h.begin() : step - 1;
        const long smin = std::min_element(h.begin(), h.end()) - h.begin();
        for (int row = 1; row <= 6; ++row) {
          const size_t at = static_cast<size_t>((node ? 12 : 6) * (item - 1) + row - 1);
          EXPECT_EQ(env[at], f.history(type, item, row)[static_cast<size_t>(smax)]) << item << row;
          EXPECT_EQ(env[at + (node ? 6 : 12)],
                    node ? f.history(type, item, row)[static_cast<size_t>(smin)] : 0.0);
        }
      }
    }
  }
  // A history lists one item: the first.
  for (int type : {12, 13, 14, 4, 8}) {
    Request r = f.request(type, 2);
    r.num_items = 2;
    r.serials = r.elements = {2, 1};
    EXPECT_EQ(k.run(r).values, f.history(type, 2, 2)) << type;
  }
}

}  // namespace
}  // namespace respcore
