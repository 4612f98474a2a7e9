// Element nodes read back from records written by the archive writer: node
// lists, beam ends and nodes found through their equations.
#include "mesh_records.hpp"

#include <gtest/gtest.h>

#include <map>

#include "respcore/archive_writer.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {
namespace {

std::vector<int32_t> nodes_of(const cli::ElementNodes& e, size_t r) {
  const auto* p = e.nodes.data() + r * static_cast<size_t>(e.max_nodes);
  return {p, p + e.counts[r]};
}

TEST(MeshRecords, ElementNodesRoundTripThroughTheWriter) {
  TempDir dir;
  const std::string base = dir.file("model");
  ArchiveWriter w(base, "P.R.W");
  w.element_forms({1});
  w.history_cases({{2, 1, 3, 0, 0}});
  // Nodes 1..20 have equations 3n-2..3n (translations only); node 21 none.
  std::vector<NodeTransform> nodes;
  for (int n = 1; n <= 21; ++n) {
    const double e = n <= 20 ? 3.0 * n - 2 : 0.0;
    nodes.push_back({{e, e > 0 ? e + 1 : 0, e > 0 ? e + 2 : 0, 0, 0, 0}, {}});
  }
  w.node_transforms(nodes);
  w.direct_histories(1, std::vector<EquationHistory>(60), 3);
  std::vector<std::array<double, 3>> xyz;
  for (int n = 1; n <= 21; ++n) xyz.push_back({double(n), 0.0, 0.0});
  w.node_coordinates(xyz);

  auto equations = [](std::vector<int> ns) {
    std::vector<double> lm;
    for (int n : ns) {
      for (int c = 0; c < 3; ++c) lm.push_back(n <= 20 ? 3.0 * n - 2 + c : 0.0);
    }
    return lm;
  };
  // A truss end without equations cannot be told.
  w.truss_records(3,
                  {{.lm = equations({4, 9}), .strs = {}}, {.lm = equations({21, 9}), .strs = {}}});
  w.beam_records(3, {{.lm = {}, .strs = {}, .node_i = 7, .node_j = 3}});
  w.wall_beam_records(3, {{.lm = {}, .strs = {}, .node_i = 11, .node_j = 12}});
  w.solid_records(3, {{.lm = equations({5, 6, 7, 15, 16, 17}), .strs = {}, .nn = 6}});
  SolidHighRecord hex;
  for (int n = 1; n <= 20; ++n) hex.nodes.push_back(21 - n);
  w.solid_high_records(3, {hex});
  w.write();

  const cli::ArchiveView a = cli::open_archive_view(base, "");
  const cli::MeshRecords m = cli::read_mesh_records(a, cli::case_info(a, 1));
  ASSERT_EQ(m.xyz.size(), 63u);
  EXPECT_EQ(m.xyz[3 * 20], 21.0);
  std::map<std::string, const cli::ElementNodes*> by;
  for (const auto& e : m.families) by[e.family->name] = &e;
  ASSERT_EQ(by.size(), 5u);
  EXPECT_EQ(nodes_of(*by["truss"], 0), (std::vector<int32_t>{4, 9}));
  EXPECT_EQ(by["truss"]->counts[1], 0);
  EXPECT_EQ(nodes_of(*by["beam"], 0), (std::vector<int32_t>{7, 3}));
  EXPECT_EQ(nodes_of(*by["wall-beam"], 0), (std::vector<int32_t>{11, 12}));
  EXPECT_EQ(nodes_of(*by["solid"], 0), (std::vector<int32_t>{5, 6, 7, 15, 16, 17}));
  std::vector<int32_t> hex_nodes;
  for (double n : hex.nodes) hex_nodes.push_back(static_cast<int32_t>(n));
  EXPECT_EQ(nodes_of(*by["solid-high"], 0), hex_nodes);
}

}  // namespace
}  // namespace respcore::testing
