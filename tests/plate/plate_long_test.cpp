// Long one-row plate histories are combined from the displacement histories,
// short ones formed step by step: every row agrees between the two, in direct
// and in modal storage, and the last step leaves to a plate of no formulation
// what a request of that step alone leaves.
#include "plate_support.hpp"

namespace respcore::testing::plate {
namespace {

// N nodes (corners, then midsides) in the tilted plane, appended to CORD, and
// their equations to LM; returns their records.
std::vector<double> place(std::vector<std::array<double, 3>>& cord, std::vector<double>& lm,
                          int n) {
  std::vector<double> nodes;
  for (int i = 0, k = n > 4 ? n / 2 : n; i < n; ++i) {
    const double a = 6.283185307179586 * (i < k ? i : i - k + 0.5) / k;
    cord.push_back(to_global({2 * std::cos(a), 1.5 * std::sin(a) + 0.05 * i, 0}));
    nodes.push_back(static_cast<double>(cord.size()));
    for (int c = 1; c <= 6; ++c) lm.push_back(6.0 * (cord.size() - 1) + c);
  }
  return nodes;
}

TEST(LongPlateHistories, EveryRowAgreesWithTheStepByStepRoad) {
  for (const bool modal : {false, true}) {
    // A thick quad with offsets and a release, a thin triangle of the general
    // section, the quad again under a form no formulation serves; an
    // eight-node plate; a quad of the general form.
    ArchiveFixture f, high, general("J.W.U");
    std::vector<std::array<double, 3>> cord, hcord, gcord;
    std::vector<PlateRecord> plates(2);
    for (int e = 0; e < 2; ++e) {
      PlateRecord& r = plates[e];
      r.nodes = place(cord, r.lm, 4 - e);
      for (double nd : r.nodes) r.offset_xyz.push_back(cord[static_cast<size_t>(nd) - 1]);
      r.ns = static_cast<int32_t>(r.lm.size());
      for (int q = 0; q < r.ns * r.ns; ++q) r.forces.push_back(std::sin(0.37 * q + e));
      r.young = kE, r.poisson = kNu, r.form = e, r.angle = 20.0, r.prop = {0.2, 0.25};
    }
    plates[0].offset_xyz[1][2] += 0.1, plates[0].release_flag = 1, plates[0].release_codes[1] = 110;
    plates[1].prop[10] = 2.0;
    plates.push_back(plates[0]);
    plates[2].form = 5;
    f.writer().plate_records(3, plates);
    PlateHighRecord h{{}, {}, {0.2, 0.25}, kE, kNu};
    h.nodes = place(hcord, h.lm, 8);
    high.writer().plate_high_records(3, {h});
    GeneralPlateRecord g;
    g.nodes = place(gcord, g.lm, 4);
    g.thk = {0.375, 0.25, 0.5, 0.125, 0.75}, g.offset_switch = 1, g.form = 1, g.axes = axes();
    g.offsets = {0.1, -0.2, 0.3, 0.05};
    for (int i = 0; i < 24 * 64; ++i) (i < 576 ? g.forc : g.strs).push_back(std::sin(0.7 * i));
    general.writer().general_plate_records(3, {g});
    for (auto [a, c] : {std::pair{&f, &cord}, {&high, &hcord}, {&general, &gcord}}) {
      a->writer().node_coordinates(*c);
      a->smooth_motion(c->size(), 70, modal);
      a->write();
    }
    Kernel k;
    for (int32_t e = 1; e <= 2; ++e) {
      Request q = f.request(3, 1, 70);
      q.serials = q.elements = {e};
      expect_long_rows_agree(k, q, {24, 94}, 64);
    }
    expect_long_rows_agree(k, high.request(7, 1, 70), {48, 174}, 64);
    Request q = general.request(3, 1, 70);
    q.product_index = 6;
    expect_long_rows_agree(k, q, {24, 94}, 64);

    double after[2];
    for (const int mode : {1, 2}) {  // the long history, or its last step alone
      Kernel fresh;
      q = f.request(3, 30, 70), q.request_mode = mode, q.step_no = 70;
      fresh.run(q);
      q = f.request(3, 65, 1), q.serials = q.elements = {3};
      after[mode - 1] = fresh.run(q).values.at(0);
    }
    EXPECT_NE(after[0], 0.0);
    EXPECT_NEAR(after[0], after[1], 1e-12 * std::fabs(after[1]));
  }
}

}  // namespace
}  // namespace respcore::testing::plate
