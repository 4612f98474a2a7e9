// Element nodes read back from records written by the archive writer: node
// lists, beam ends, nodes found through their equations, a four-node plane
// or plate record whose fourth node repeats the third (a triangle), and the
// plate record of the general form under its product tag.
#include "mesh_records.hpp"

#include <gtest/gtest.h>

#include <map>

#include "respcore/archive_writer.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {
namespace {

using N = std::vector<std::vector<int32_t>>;

TEST(MeshRecords, ElementNodesRoundTripThroughTheWriter) {
  for (const std::string tag : {"P.R.W", "J.W.U"}) {
    TempDir dir;
    const std::string base = dir.file("model");
    ArchiveWriter w(base, tag);
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
      for (int n : ns)
        for (int c = 0; c < 3; ++c) lm.push_back(n <= 20 ? 3.0 * n - 2 + c : 0.0);
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
    PlaneRecord tri, quad;
    tri.nodes = {4, 9, 2, 2}, quad.nodes = {1, 2, 3, 4};
    w.plane_records(sections::PSTR, 3, {tri, quad});
    w.plane_records(sections::PSRN, 3, {quad});
    w.plane_high_records(sections::PSTH, 3, {{{}, {1, 2, 3, 4, 5, 6}, {}}});
    w.plane_high_records(sections::PSRH, 3, {{{}, {12, 11, 10, 9, 8, 7, 6, 5}, {}}});
    if (tag == "J.W.U") {
      GeneralPlateRecord pq, pt;
      pq.nodes = {4, 2, 9, 7}, pt.nodes = {5, 6, 1};
      w.general_plate_records(3, {pq, pt});
    } else {
      PlateRecord pq, pt;
      pq.nodes = {4, 2, 9, 7}, pt.nodes = {5, 6, 1, 1};
      w.plate_records(3, {pq, pt});
    }
    PlateHighRecord six, eight;
    six.nodes = {1, 2, 3, 4, 5, 6}, eight.nodes = {12, 11, 10, 9, 8, 7, 6, 5};
    w.plate_high_records(3, {six, eight});
    w.write();

    const cli::ArchiveView a = cli::open_archive_view(base, "");
    const cli::MeshRecords m = cli::read_mesh_records(a, cli::case_info(a, 1));
    ASSERT_EQ(m.xyz.size(), 63u);
    EXPECT_EQ(m.xyz[3 * 20], 21.0);
    std::map<std::string, N> by;
    for (const auto& e : m.families)
      for (size_t r = 0; r < e.counts.size(); ++r) {
        const int32_t* p = e.nodes.data() + r * static_cast<size_t>(e.max_nodes);
        by[e.family->name].push_back({p, p + e.counts[r]});
      }
    N hex_nodes(1);
    for (double n : hex.nodes) hex_nodes[0].push_back(static_cast<int32_t>(n));
    const std::map<std::string, N> want = {
        {"truss", {{4, 9}, {}}},
        {"beam", {{7, 3}}},
        {"wall-beam", {{11, 12}}},
        {"solid", {{5, 6, 7, 15, 16, 17}}},
        {"solid-high", hex_nodes},
        {"plane-stress", {{4, 9, 2}, {1, 2, 3, 4}}},
        {"plane-strain", {{1, 2, 3, 4}}},
        {"plane-stress-high", {{1, 2, 3, 4, 5, 6}}},
        {"plane-strain-high", {{12, 11, 10, 9, 8, 7, 6, 5}}},
        {"plate", {{4, 2, 9, 7}, {5, 6, 1}}},
        {"plate-high", {{1, 2, 3, 4, 5, 6}, {12, 11, 10, 9, 8, 7, 6, 5}}}};
    EXPECT_EQ(by, want) << tag;
  }
}

}  // namespace
}  // namespace respcore::testing
