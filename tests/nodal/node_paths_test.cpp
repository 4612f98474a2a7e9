// The three node requests read the same motion by different roads: a history
// (one node over the steps), a snapshot (many nodes at one step) and an
// envelope (all components at the steps of the extremes). On one archive
// they must agree value for value: the snapshot at step 1 is step 1 of the
// history, and each envelope column is the history at the step of the
// extreme, which the history itself identifies.
#include <gtest/gtest.h>

#include <random>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

constexpr int kNodes = 4;
constexpr int kSteps = 9;
constexpr int kEqs = 30;

// A random upper triangle with a nonzero diagonal and some zero terms.
std::vector<double> random_upper(std::mt19937& g) {
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  std::vector<double> up;
  for (int i = 0; i < 6; ++i) {
    for (int j = i; j < 6; ++j) up.push_back(i == j ? 1.0 + u(g) * 0.1 : (g() % 3 ? u(g) : 0.0));
  }
  return up;
}

struct Store {
  bool modal = false;
  bool support = false;
  bool product_flag = false;
};

// Writes an archive of four nodes; node 1 and 3 have constrained dof when
// SUPPORT is set (with support rows for some of them), all nodes have a
// skew system except node 2.
void write_archive(ArchiveFixture& a, const Store& st, std::mt19937& g) {
  std::uniform_real_distribution<double> u(-10.0, 10.0);
  a.history_cases({{st.modal ? 1 : 2, st.modal ? 1 : 1, kSteps, st.modal ? 3 : 0, 0}});
  const int k = st.product_flag ? 7 : 6;
  std::vector<NodeRecord> nodes;
  int eq = 1;
  for (int n = 1; n <= kNodes; ++n) {
    NodeRecord r;
    for (int c = 1; c <= k; ++c) {
      const bool fixed = st.support && (n % 2 == 1) && c <= 3 && c != 2;
      r.eq.push_back(fixed ? 0.0 : (c == 5 && n == 2 ? -1.0 : eq++));
    }
    r.upper = random_upper(g);
    nodes.push_back(r);
  }
  a.node_records(nodes, st.product_flag);
  if (st.product_flag) a.writer().second().add("MTKM", 3, 2, 1);
  if (st.modal) {
    std::vector<std::vector<std::array<double, 3>>> coord(3);
    for (auto& m : coord) {
      for (int s = 0; s < kSteps; ++s) m.push_back({u(g), u(g), u(g)});
    }
    std::vector<std::vector<double>> shapes(kEqs);
    for (auto& e : shapes) e = {u(g), u(g), u(g)};
    a.modal(coord, shapes);
  } else {
    Section& d = a.writer().direct(1).add("DMED", 1, 2 * kSteps, 3 * kEqs);
    for (int x = 1; x <= 3 * kEqs; ++x) {
      for (int s = 1; s <= kSteps; ++s) d.set_f64(x, s, u(g));
    }
  }
  if (st.support) {
    // Support rows for node 1 x and node 3 z, and an unused one.
    Section& mses = a.writer().second().add("MSES", 1, 2, 3);
    mses.put_i32s(1, 0, std::vector<int32_t>{1, 1});
    mses.put_i32s(2, 0, std::vector<int32_t>{3, 3});
    mses.put_i32s(3, 0, std::vector<int32_t>{2, 1});
    Section& mser = a.writer().second().add("MSER", 1, 2 * kSteps, 9);
    for (int x = 1; x <= 9; ++x) {
      for (int s = 1; s <= kSteps; ++s) mser.set_f64(x, s, u(g));
    }
  }
  Section& nski = a.writer().second().add("NSKI", 3, 19, 3);
  const int skew_nodes[3] = {1, 3, 4};
  for (int r = 1; r <= 3; ++r) {
    nski.put_i32(r, 0, skew_nodes[r - 1]);
    for (int i = 0; i < 9; ++i) nski.put_f64(r, 1 + 2 * i, u(g) / 10.0);
  }
}

TEST(NodePaths, HistorySnapshotAndEnvelopeAgree) {
  std::mt19937 g(20240611);
  for (int variant = 0; variant < 8; ++variant) {
    Store st{(variant & 1) != 0, (variant & 2) != 0, (variant & 4) != 0};
    if (st.modal && st.support) st.support = false;  // support motion is a direct-store matter
    ArchiveFixture a;
    write_archive(a, st, g);
    a.write();
    const int k = st.product_flag ? 7 : 6;
    std::vector<double> in_skew[12];
    for (int axis = 0; axis <= 1; ++axis) {
      for (int32_t type = 9; type <= 11; ++type) {
        Kernel kern;
        // An envelope first: it loads the skew systems, which later history
        // requests of the same kernel use.
        auto env_q = a.request(type, 1, kSteps);
        env_q.request_mode = 3;
        env_q.num_items = kNodes;
        env_q.serials.assign(kNodes, 1);
        env_q.elements = {1, 2, 3, 4};
        env_q.axis_flag = axis;
        ASSERT_EQ(kern.run(env_q).status, 0);

        // Histories of every node and component.
        std::vector<std::vector<std::vector<double>>> hist(kNodes + 1,
                                                           std::vector<std::vector<double>>(k + 1));
        for (int32_t n = 1; n <= kNodes; ++n) {
          for (int32_t c = 1; c <= k; ++c) {
            auto q = a.request(type, c, kSteps);
            q.elements = {n};
            q.axis_flag = axis;
            hist[n][c] = kern.run(q).values;
          }
        }
        // The skew system of node 1 changes its translations; node 2 has none.
        EXPECT_NE(hist[1][1], std::vector<double>(kSteps, 0.0));
        if (axis == 0) in_skew[type] = hist[1][1];
        else EXPECT_NE(in_skew[type], hist[1][1]) << variant << " " << type;
        // Snapshot at step 1.
        for (int32_t c = 1; c <= k; ++c) {
          auto q = a.request(type, c, 1);
          q.request_mode = 2;
          q.num_items = kNodes;
          q.serials.assign(kNodes, 1);
          q.elements = {1, 2, 3, 4};
          q.axis_flag = axis;
          auto snap = kern.run(q).values;
          ASSERT_EQ(snap.size(), static_cast<size_t>(kNodes));
          for (int n = 1; n <= kNodes; ++n) {
            EXPECT_EQ(snap[n - 1], hist[n][c][0]) << variant << " " << type << " " << n << " " << c;
          }
        }
        // Envelopes of each component.
        for (int32_t c = 1; c <= k; ++c) {
          env_q.result_comp = c;
          auto env = kern.run(env_q).values;
          ASSERT_EQ(env.size(), static_cast<size_t>(12 * kNodes));
          for (int n = 1; n <= kNodes; ++n) {
            const auto& h = hist[n][c];
            size_t smax = 0, smin = 0;
            for (size_t s = 1; s < h.size(); ++s) {
              if (h[s] > h[smax]) smax = s;
              if (h[s] < h[smin]) smin = s;
            }
            for (int r = 1; r <= 6; ++r) {
              EXPECT_EQ(env[12 * (n - 1) + r - 1], hist[n][r][smax])
                  << variant << " " << type << " " << n << " " << c << " " << r;
              EXPECT_EQ(env[12 * (n - 1) + 6 + r - 1], hist[n][r][smin])
                  << variant << " " << type << " " << n << " " << c << " " << r;
            }
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace respcore::testing
