// Long one-row plane histories are combined from the displacement histories,
// short ones formed step by step: every row of every kind of plane element
// agrees between the two, in direct and in modal storage, under both axis
// rules.
#include "plane_support.hpp"

namespace respcore::testing::plane {
namespace {

constexpr int32_t kLong = 70, kShort = 64;

TEST(LongPlaneHistories, EveryRowAgreesWithTheStepByStepRoad) {
  for (const bool modal : {false, true}) {
    PlaneModel low, high;
    // Strain family: a drilling triangle, quads of kinds 0 and 1 (the
    // latter rebuilding from the panel displacements left to it), a plain
    // triangle of kind 1, and a quad of a kind of its own, storing nothing.
    const int nn[5] = {3, 4, 4, 3, 4}, option[5] = {101, 0, 1, 1, 2};
    std::vector<PlaneRecord> recs(5);
    for (size_t e = 0; e < 5; ++e) {
      low.place(nn[e], turn(0.3 * e, 0.9), {1.0 * e, 0, 2});
      PlaneRecord& r = recs[e];
      r.lm = low.equations();
      for (size_t v = 0; v < 27 * r.lm.size(); ++v) r.strs.push_back(std::sin(0.3 * v + e));
      r.nodes_count = nn[e];
      for (size_t k = 0; k < 4; ++k) {
        r.nodes[k] = low.elements.back()[std::min<size_t>(k, nn[e] - 1)];
        r.xyz[k] = low.nodes[static_cast<size_t>(r.nodes[k] - 1)];
      }
      r.material = Material{}.record(), r.option = option[e], r.angle = 25.0 * e;
    }
    low.a.writer().plane_records(sections::PSRN, 3, recs);
    high.place(6, turn(0.4, 0.2));
    std::vector<PlaneHighRecord> highs = {high.high_record(Material{})};
    high.place(8, turn(-0.7, 1.1), {0, 1, 0});
    highs.push_back(high.high_record(Material{}));
    high.a.writer().plane_high_records(sections::PSRH, 3, highs);
    for (PlaneModel* m : {&low, &high}) {
      m->a.writer().node_coordinates({m->nodes.begin(), m->nodes.end()});
      m->a.writer().element_table(std::vector<std::vector<int32_t>>(m->elements.size(), {1}));
      m->a.writer().materials({{1, 1.0, 0.0, 0, {}}});
      m->a.smooth_motion(m->nodes.size(), kLong, modal);
      m->a.write();
    }
    Kernel k;
    for (const int axis : {0, 1}) {
      SCOPED_TRACE(::testing::Message() << (modal ? "modal" : "direct") << " axes " << axis);
      for (int e = 1; e <= 5; ++e)
        expect_long_rows_agree(k, low.request(2, e, kLong, axis), {12, 32, 52}, kLong, kShort);
      for (int e = 1; e <= 2; ++e)
        expect_long_rows_agree(k, high.request(6, e, kLong, axis), {24, 60, 80}, kLong, kShort);
    }
  }
}

}  // namespace
}  // namespace respcore::testing::plane
