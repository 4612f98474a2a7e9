// Long one-row plate histories are combined from the displacement histories,
// short ones formed step by step: every row of every kind of plate agrees
// between the two, in direct and in modal storage.
#include "plate_support.hpp"

namespace respcore::testing::plate {
namespace {

constexpr int32_t kLong = 70, kShort = 64;

// N nodes of element E in the tilted plane (the corners, then the midsides
// of an element of more than four), their coordinates appended to CORD;
// returns their records.
std::vector<double> place(std::vector<std::array<double, 3>>& cord, size_t n, size_t e) {
  const size_t corners = n > 4 ? n / 2 : n;
  std::vector<double> nodes;
  for (size_t i = 0; i < n; ++i) {
    const double a = 6.283185307179586 * (i < corners ? i : i - corners + 0.5) / corners;
    const Row3 g = to_global({2 * std::cos(a) + 0.1 * e, 1.5 * std::sin(a) + 0.05 * i, 0.0});
    cord.push_back({g[0], g[1], g[2]});
    nodes.push_back(static_cast<double>(cord.size()));
  }
  return nodes;
}

TEST(LongPlateHistories, EveryRowAgreesWithTheStepByStepRoad) {
  for (const bool modal : {false, true}) {
    // Four plates: thick quad with offsets, a release and user axes; thin
    // quad of the general section; thick stiffened and thin general triangles.
    ArchiveFixture f, high, general("J.W.U");
    std::vector<std::array<double, 3>> cord, hcord, gcord;
    std::vector<PlateRecord> plates(4);
    for (size_t e = 0; e < 4; ++e) {
      PlateRecord& r = plates[e];
      r.nodes = place(cord, e < 2 ? 4 : 3, e);
      for (double nd : r.nodes) {
        r.offset_xyz.push_back(cord[static_cast<size_t>(nd) - 1]);
        if (e == 0) r.offset_xyz.back()[2] += 0.1 * nd;
        for (int c = 1; c <= 6; ++c) r.lm.push_back(6 * (nd - 1) + c);
      }
      r.ns = static_cast<int32_t>(r.lm.size());
      for (int q = 0; q < r.ns * r.ns; ++q) r.forces.push_back(std::sin(0.37 * q + e));
      r.young = kE, r.poisson = kNu, r.form = static_cast<int>(e % 2);
      r.prop = {0.2, 0.25, 0.5, 0.5, 0.5, 0.3, 0.2, 0.3, 0.2, 0.0, e == 2 ? 1.0 : e % 2 ? 2.0 : 0.0};
      if (e == 0) r.release_flag = 1, r.release_codes = {0, 110, 0, 0}, r.angle = 20.0;
    }
    plates.push_back(plates[0]);
    plates[4].form = 5, plates[4].release_flag = 0;
    f.writer().plate_records(3, plates);
    std::vector<std::vector<double>> elim(5, std::vector<double>(14, 0.0));
    elim[0][12] = 35.0;
    f.writer().first().add_f64_rows(sections::ELIM, 1, elim, 14);
    // Six- and eight-node plates.
    std::vector<PlateHighRecord> highs(2);
    for (size_t e = 0; e < 2; ++e) {
      highs[e].nodes = place(hcord, e == 0 ? 8 : 6, e);
      for (size_t i = 0; i < 6 * highs[e].nodes.size(); ++i)
        highs[e].lm.push_back(6 * (highs[e].nodes[0] - 1) + i + 1);
      highs[e].prop = {0.2, 0.25}, highs[e].young = kE, highs[e].poisson = kNu;
    }
    high.writer().plate_high_records(3, highs);
    // The general form: a quad with offsets and shear from the moment
    // gradient, and a triangle.
    std::vector<GeneralPlateRecord> gens(2);
    for (size_t e = 0; e < 2; ++e) {
      GeneralPlateRecord& g = gens[e];
      g.nodes = place(gcord, 4 - e, e);
      const size_t neq = 6 * g.nodes.size();
      for (size_t i = 0; i < neq; ++i) g.lm.push_back(6 * (g.nodes[0] - 1) + i + 1);
      g.thk = {0.375, 0.25, 0.5, 0.125, 0.75}, g.offset_switch = e == 0;
      g.offsets = {0.1, -0.2, 0.3, 0.05}, g.axes = axes(), g.form = e == 0;
      for (size_t i = 0; i < neq * neq; ++i) g.forc.push_back(std::cos(0.3 * i));
      for (size_t i = 0; i < neq * (8 * g.nodes.size() + 8); ++i) g.strs.push_back(std::sin(0.7 * i));
    }
    general.writer().general_plate_records(3, gens);
    for (auto [a, c] : {std::pair{&f, &cord}, {&high, &hcord}, {&general, &gcord}}) {
      a->writer().node_coordinates(*c);
      a->smooth_motion(c->size(), kLong, modal);
      a->write();
    }
    // A plate of no formulation (form 5) rebuilds its results from the
    // stress blocks the last formulation left: after a long history, those
    // of its last step, as a request of that step alone leaves them.
    std::vector<double> after;
    for (const int mode : {1, 2}) {
      Kernel fresh;
      Request q = f.request(3, 30, kLong);
      q.request_mode = mode, q.step_no = kLong;
      fresh.run(q);
      q = f.request(3, 65, 1);
      q.serials = q.elements = {5};
      after.push_back(fresh.run(q).values.at(0));
    }
    EXPECT_NE(after[0], 0.0);
    EXPECT_NEAR(after[0], after[1], 1e-12 * std::fabs(after[1]));
    Kernel k;
    for (int32_t e = 1; e <= 4; ++e) {
      SCOPED_TRACE(::testing::Message() << (modal ? "modal" : "direct") << " element " << e);
      Request q = f.request(3, 1, kLong);
      q.serials = {e}, q.elements = {e};
      expect_long_rows_agree(k, q, {24, 94}, kLong, kShort);
      if (e > 2) continue;
      Request h = high.request(7, 1, kLong), g = general.request(3, 1, kLong);
      h.serials = g.serials = {e};
      g.product_index = 6;
      expect_long_rows_agree(k, h, {48, 174}, kLong, kShort);
      expect_long_rows_agree(k, g, {24, 94}, kLong, kShort);
    }
  }
}

}  // namespace
}  // namespace respcore::testing::plate
