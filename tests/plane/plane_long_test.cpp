// Long one-row plane histories are combined from the displacement histories
// (the other plane tests run them on direct storage against their own
// oracles), short ones formed step by step: in modal storage every row agrees
// between the two, under both axis rules.
#include "plane_support.hpp"

namespace respcore::testing::plane {
namespace {

TEST(LongPlaneHistories, ModalRowsAgreeWithTheStepByStepRoad) {
  // A drilling triangle, quads of kinds 0 and 1 (the latter rebuilding from
  // the panel displacements left to it), and an eight-node element.
  PlaneModel low, high;
  std::vector<PlaneRecord> recs(3);
  for (size_t e = 0; e < 3; ++e) {
    low.place(e ? 4 : 3, turn(0.3 * e, 0.9), {1.0 * e, 0, 2});
    PlaneRecord& r = recs[e];
    r.lm = low.equations(), r.nodes_count = e ? 4 : 3, r.option = e ? e - 1 : 101;
    for (size_t v = 0; v < 27 * r.lm.size(); ++v) r.strs.push_back(std::sin(0.3 * v + e));
    for (size_t k = 0; k < 4; ++k) r.nodes[k] = low.elements.back()[std::min<size_t>(k, e ? 3 : 2)];
    for (size_t k = 0; k < 4; ++k) r.xyz[k] = low.nodes[static_cast<size_t>(r.nodes[k] - 1)];
    r.material = Material{}.record(), r.angle = 25.0 * e;
  }
  low.a.writer().plane_records(sections::PSRN, 3, recs);
  high.place(8, turn(-0.7, 1.1));
  high.a.writer().plane_high_records(sections::PSRH, 3, {high.high_record(Material{})});
  for (PlaneModel* m : {&low, &high}) {
    m->a.writer().node_coordinates({m->nodes.begin(), m->nodes.end()});
    m->a.smooth_motion(m->nodes.size(), 70, true);
    m->a.write();
  }
  Kernel k;
  for (const int axis : {0, 1}) {
    for (int e = 1; e <= 3; ++e)
      expect_long_rows_agree(k, low.request(2, e, 70, axis), {12, 32, 52}, 64);
    expect_long_rows_agree(k, high.request(6, 1, 70, axis), {24, 60, 80}, 64);
  }
}

}  // namespace
}  // namespace respcore::testing::plane
