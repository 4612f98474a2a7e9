// Node results through the whole request: a real archive written with the
// writer, a request through the kernel, values checked against the motion
// the test wrote.
#include <gtest/gtest.h>

#include <cmath>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

// Direct storage, case 1 in direct file 1, a node whose six dof are
// equations 1..6 with their own histories.
void direct_node_archive(ArchiveFixture& a, int32_t nsteps) {
  a.history_cases({{2, 1, nsteps, 0, 0}});
  std::vector<EquationHistory> eqs;
  for (int e = 1; e <= 6; ++e) {
    EquationHistory h;
    for (int s = 1; s <= nsteps; ++s) {
      h.disp.push_back(100.0 * e + s);
      h.vel.push_back(-10.0 * e - s);
      h.acc.push_back(0.5 * e * s);
    }
    eqs.push_back(h);
  }
  a.direct_histories(1, eqs, nsteps);
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}});
  a.write();
}

TEST(NodeResults, DirectDisplacementVelocityAcceleration) {
  ArchiveFixture a;
  direct_node_archive(a, 5);
  Kernel k;
  for (int32_t comp = 1; comp <= 6; ++comp) {
    auto d = k.run(a.request(9, comp, 5));
    auto v = k.run(a.request(10, comp, 5));
    auto acc = k.run(a.request(11, comp, 5));
    ASSERT_EQ(d.values.size(), 5u);
    for (int s = 1; s <= 5; ++s) {
      EXPECT_EQ(d.values[s - 1], 100.0 * comp + s);
      EXPECT_EQ(v.values[s - 1], -10.0 * comp - s);
      EXPECT_EQ(acc.values[s - 1], 0.5 * comp * s);
    }
    EXPECT_TRUE(d.output_lines.empty());
  }
}

}  // namespace
}  // namespace respcore::testing
