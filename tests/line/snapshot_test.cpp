// Snapshots of many line elements at one step: the whole list in one
// request gives what its items give one request each, values and lines,
// with records that cannot be read, odd records and steps past the stored
// ones among them. So do envelope requests, which give each item's six
// first rows at the step, with the second column of every item zero.
#include <gtest/gtest.h>

#include <cmath>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

constexpr int kElements = 30, kSteps = 4;

void expect_snapshot_is_its_items(const ArchiveFixture& a, int type, int comp, int step,
                                  int mode = 2, int steps = 1) {
  Request q = a.request(type, comp, steps);
  q.request_mode = mode;
  q.step_no = step;
  q.serials = {1, 2, 3, 4, 5, 6, 7, 8, 0, 9, 10, 99, 11, 12, 13, 14, 15, 16, 17, 18, 30};
  q.elements = q.serials;
  q.num_items = static_cast<int32_t>(q.serials.size());
  Kernel whole, each;
  whole.set_quiet(true);
  each.set_quiet(true);
  const Result all = whole.run(q);
  std::vector<double> values;
  std::vector<std::string> lines;
  for (const int32_t serial : q.serials) {
    Request one = q;
    one.serials = one.elements = {serial};
    one.num_items = 1;
    const Result r = each.run(one);
    ASSERT_EQ(r.values.size() * q.serials.size(), all.values.size());
    // An envelope item: its first column here, the second (zero) below.
    const size_t first = mode == 3 ? r.values.size() / 2 : r.values.size();
    values.insert(values.end(), r.values.begin(), r.values.begin() + first);
    lines.insert(lines.end(), r.diagnostic_lines.begin(), r.diagnostic_lines.end());
  }
  values.resize(all.values.size(), 0.0);
  EXPECT_EQ(all.values, values) << type << " " << comp << " " << step;
  EXPECT_EQ(all.diagnostic_lines, lines) << type << " " << comp << " " << step;
}

TEST(LineSnapshot, ManyItemsAreTheirItemsOneByOne) {
  ArchiveFixture a;
  std::vector<std::vector<double>> disp(6 * (kElements + 1));
  for (size_t e = 0; e < disp.size(); ++e)
    for (int s = 1; s <= kSteps; ++s) disp[e].push_back(std::sin(0.1 * s * (e + 1)));
  a.direct_case(disp);
  std::vector<TrussRecord> trusses(kElements);
  std::vector<BeamRecord> beams(kElements);
  for (int e = 0; e < kElements; ++e) {
    for (int i = 1; i <= 6; ++i) trusses[e].lm.push_back(3 * e + i);
    for (int q = 0; q < 24; ++q) trusses[e].strs.push_back(std::cos(q + e));
    for (int i = 1; i <= 12; ++i) beams[e].lm.push_back(6 * e + i);
    for (int q = 0; q < 26 * 12; ++q) beams[e].strs.push_back(std::cos(0.3 * q + e));
  }
  trusses[4].lm[2] = beams[4].lm[7] = 0;      // a dof without an equation
  trusses[8].lm[3] = beams[8].lm[5] = 99999;  // past the file: repeats the last value
  trusses[6].nstr = 2;                        // rows 3 and 4 missing: reported
  beams[6].nrow = 20;
  beams[6].strs.resize(20 * 12);
  a.writer().truss_records(3, trusses);
  a.writer().beam_records(3, beams);
  a.write();
  for (const int step : {3, kSteps + 1}) {
    expect_snapshot_is_its_items(a, 12, 1, step);
    expect_snapshot_is_its_items(a, 12, 3, step);
    expect_snapshot_is_its_items(a, 13, 27, step);
    for (const int steps : {1, kSteps + 2}) {
      expect_snapshot_is_its_items(a, 12, 1, step, 3, steps);
      expect_snapshot_is_its_items(a, 13, 1, step, 3, steps);
    }
  }
}

}  // namespace
}  // namespace respcore::testing
