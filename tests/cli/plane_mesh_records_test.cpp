// Element nodes of the plane records read back by the tool: a four-node
// record whose fourth node repeats the third is a triangle; the six- and
// eight-node records list their nodes.
#include <gtest/gtest.h>

#include <map>

#include "mesh_records.hpp"
#include "respcore/archive_writer.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {
namespace {

TEST(MeshRecords, PlaneElementNodesRoundTripThroughTheWriter) {
  TempDir dir;
  const std::string base = dir.file("model");
  ArchiveWriter w(base, "P.R.W");
  w.element_forms({1});
  w.history_cases({{2, 1, 1, 0, 0}});
  w.direct_histories(1, {}, 1);
  w.node_coordinates(std::vector<std::array<double, 3>>(12, {0.0, 0.0, 0.0}));
  PlaneRecord tri, quad;
  tri.nodes = {4, 9, 2, 2};
  quad.nodes = {1, 2, 3, 4};
  w.plane_records(sections::PSTR, 3, {tri, quad});
  w.plane_records(sections::PSRN, 3, {quad});
  w.plane_high_records(sections::PSTH, 3, {{{}, {1, 2, 3, 4, 5, 6}, {}}});
  w.plane_high_records(sections::PSRH, 3, {{{}, {12, 11, 10, 9, 8, 7, 6, 5}, {}}});
  w.write();

  const cli::ArchiveView a = cli::open_archive_view(base, "");
  const cli::MeshRecords m = cli::read_mesh_records(a, cli::case_info(a, 1));
  std::map<std::string, std::vector<std::vector<int32_t>>> by;
  for (const auto& e : m.families)
    for (size_t r = 0; r < e.counts.size(); ++r) {
      const int32_t* p = e.nodes.data() + r * static_cast<size_t>(e.max_nodes);
      by[e.family->name].push_back({p, p + e.counts[r]});
    }
  using N = std::vector<std::vector<int32_t>>;
  EXPECT_EQ(by["plane-stress"], (N{{4, 9, 2}, {1, 2, 3, 4}}));
  EXPECT_EQ(by["plane-strain"], (N{{1, 2, 3, 4}}));
  EXPECT_EQ(by["plane-stress-high"], (N{{1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(by["plane-strain-high"], (N{{12, 11, 10, 9, 8, 7, 6, 5}}));
}

}  // namespace
}  // namespace respcore::testing
