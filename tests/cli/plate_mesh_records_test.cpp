// Plate element nodes as the tool reads them from records written by the
// archive writer: the plate record (a triangle repeating its third node),
// the record of the general form, and the high-order plate record.
#include <gtest/gtest.h>

#include "mesh_records.hpp"
#include "respcore/archive_writer.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {
namespace {

// Element R's nodes in the family named NAME.
std::vector<int32_t> nodes_of(const cli::MeshRecords& m, const std::string& name, size_t r) {
  for (const auto& e : m.families)
    if (e.family->name == name) {
      const auto* p = e.nodes.data() + r * static_cast<size_t>(e.max_nodes);
      return {p, p + e.counts[r]};
    }
  return {};
}

TEST(PlateMeshRecords, NodesOfThePlateRecords) {
  for (const std::string tag : {"P.R.W", "J.W.U"}) {
    TempDir dir;
    ArchiveWriter w(dir.file("model"), tag);
    w.first();
    w.history_cases({{2, 1, 1, 0, 0}});
    w.direct_histories(1, std::vector<EquationHistory>(1), 1);
    w.node_coordinates(std::vector<std::array<double, 3>>(12, {0.0, 0.0, 0.0}));
    if (tag == "J.W.U") {
      GeneralPlateRecord quad, tri;
      quad.nodes = {4, 2, 9, 7}, tri.nodes = {5, 6, 1};
      w.general_plate_records(3, {quad, tri});
    } else {
      PlateRecord quad, tri;
      quad.nodes = {4, 2, 9, 7}, tri.nodes = {5, 6, 1, 1};  // a fourth node repeating the third
      w.plate_records(3, {quad, tri});
    }
    PlateHighRecord six, eight;
    six.nodes = {1, 2, 3, 4, 5, 6}, eight.nodes = {12, 11, 10, 9, 8, 7, 6, 5};
    w.plate_high_records(3, {six, eight});
    w.write();

    const cli::ArchiveView a = cli::open_archive_view(dir.file("model"), "");
    const cli::MeshRecords m = cli::read_mesh_records(a, cli::case_info(a, 1));
    EXPECT_EQ(nodes_of(m, "plate", 0), (std::vector<int32_t>{4, 2, 9, 7})) << tag;
    EXPECT_EQ(nodes_of(m, "plate", 1), (std::vector<int32_t>{5, 6, 1})) << tag;
    EXPECT_EQ(nodes_of(m, "plate-high", 0), (std::vector<int32_t>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(nodes_of(m, "plate-high", 1), (std::vector<int32_t>{12, 11, 10, 9, 8, 7, 6, 5}));
  }
}

}  // namespace
}  // namespace respcore::testing
