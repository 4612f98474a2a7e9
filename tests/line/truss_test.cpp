// Truss histories: end forces from a real axial stiffness, the initial
// state, staged activation, the product factor and the extended record.
#include <gtest/gtest.h>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

constexpr double kE = 2.0e5, kA = 50.0, kL = 2000.0;
constexpr double kStiff = kE * kA / kL;

// A bar along x with its axial dof at equations EQ1 and EQ2. Row 1 gives
// the force at end 1 (pushing end 1 away), row 2 the force at end 2; rows 3
// and 4 of column 1 hold 1/A.
std::vector<double> truss_record(int eq1, int eq2, double scale = 1.0) {
  std::vector<double> sa(63, 0.0);
  sa[0] = eq1;
  sa[1] = eq2;
  // STRS(4, 2) in column order behind the two equation numbers.
  const double strs[8] = {kStiff, -kStiff, 1.0 / kA, 1.0 / kA, -kStiff, kStiff, 0, 0};
  for (int v = 0; v < 8; ++v) sa[2 + v] = strs[v];
  sa[60] = 2;
  sa[61] = 4;
  sa[62] = scale;
  return sa;
}

// Displacement of equation e at step s: e * s / 1000.
void bar_archive(ArchiveFixture& a, const std::vector<std::vector<double>>& records,
                 int32_t nsteps, int32_t file_no = 1) {
  a.history_cases({{2, file_no, nsteps, 0, 0}});
  std::vector<EquationHistory> eqs(4);
  for (int e = 1; e <= 4; ++e) {
    for (int s = 1; s <= nsteps; ++s) {
      eqs[e - 1].disp.push_back(e * s / 1000.0);
      eqs[e - 1].vel.push_back(0);
      eqs[e - 1].acc.push_back(0);
    }
  }
  a.direct_histories(file_no, eqs, nsteps);
  a.writer().second().add_f64_rows(sections::TRUS, 3, records);
}

double tension(int eq1, int eq2, int s) { return kStiff * (eq2 - eq1) * s / 1000.0; }

TEST(Truss, AxialForceAndStressAtBothEnds) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3), truss_record(4, 2)}, 3);
  a.write();
  Kernel k;
  for (int32_t comp = 1; comp <= 4; ++comp) {
    auto q = a.request(12, comp, 3);
    q.serials = {1};
    auto r = k.run(q).values;
    for (int s = 1; s <= 3; ++s) {
      const double f = tension(1, 3, s);
      EXPECT_NEAR(r[s - 1], comp <= 2 ? f : f / kA, 1e-9) << comp;
    }
  }
  // A compressed bar: negative force at both ends.
  auto q = a.request(12, 1, 3);
  q.serials = {2};
  EXPECT_NEAR(k.run(q).values[1], tension(4, 2, 2), 1e-9);
  EXPECT_LT(k.run(q).values[1], 0.0);
}

TEST(Truss, BothEndsCarryTheMeanForce) {
  ArchiveFixture a;
  auto rec = truss_record(1, 2);
  rec[2] = 3.0;   // STRS(1,1): an unbalanced matrix
  rec[3] = 11.0;  // STRS(2,1)
  bar_archive(a, {rec}, 2);
  a.write();
  Kernel k;
  auto q = a.request(12, 1, 2);
  q.request_mode = 2;
  q.step_no = 2;
  auto r = k.run(q).values;
  ASSERT_EQ(r.size(), 2u);
  const double u1 = 2 / 1000.0, u2 = 4 / 1000.0;
  const double f1 = 3.0 * u1 - kStiff * u2, f2 = 11.0 * u1 + kStiff * u2;
  EXPECT_DOUBLE_EQ(r[0], (f2 - f1) * 0.5);
  EXPECT_DOUBLE_EQ(r[1], r[0]);
}

TEST(Truss, InitialStateReachesTheStresses) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3), truss_record(1, 3)}, 2);
  a.writer().second().add_f64_rows(sections::ITTR, 1, {{100.0, 200.0}, {-5.0, -6.0}});
  a.write();
  Kernel k;
  auto q = a.request(12, 2, 2);
  q.serials = {1};
  EXPECT_NEAR(k.run(q).values[0], tension(1, 3, 1) + 200.0, 1e-9);
  q.result_comp = 3;
  EXPECT_NEAR(k.run(q).values[0], (tension(1, 3, 1) + 100.0) / kA, 1e-12);
  // Snapshot of two elements: the initial forces of each item's own record.
  q.request_mode = 2;
  q.num_items = 2;
  q.serials = {1, 2};
  q.step_no = 1;
  q.result_comp = 1;
  auto r = k.run(q).values;
  EXPECT_NEAR(r[0], tension(1, 3, 1) + 100.0, 1e-9);
  EXPECT_NEAR(r[3], tension(1, 3, 1) - 6.0, 1e-9);
}

TEST(Truss, ProductFactorScalesForcesOnly) {
  // Under "H.N.Q" the forces are scaled after the stresses were formed.
  ArchiveFixture a("H.N.Q");
  bar_archive(a, {truss_record(1, 3, 2.5), truss_record(1, 3, -4.0)}, 2);
  std::vector<double> ext(1245, 0.0);
  auto base = truss_record(1, 3);
  std::copy(base.begin(), base.begin() + 10, ext.begin());
  ext[62] = -3.0;  // the factor, read with its sign turned
  ext[1242] = 2;   // NDOF
  ext[1243] = 4;   // NSTR
  ext[1200] = 1;   // NA
  ext[1201] = 1;   // NB
  ext[1203] = 1;   // IIA(1)
  ext[1222] = 2;   // IIA(2)
  ext[1244] = 9.0;
  Section& embt = a.writer().second().add(sections::EMBT, 3, 2 * 1245, 2);
  embt.put_f64s(2, 0, ext);
  a.write();
  Kernel k;
  auto q = a.request(12, 1, 2);
  q.product_index = 4;
  q.serials = {1};
  EXPECT_NEAR(k.run(q).values[1], 2.5 * tension(1, 3, 2), 1e-9);
  q.result_comp = 4;
  EXPECT_NEAR(k.run(q).values[1], tension(1, 3, 2) / kA, 1e-12);
  // The extended record: its own word 63 gives the factor.
  q.serials = {2};
  q.result_comp = 1;
  EXPECT_NEAR(k.run(q).values[1], 3.0 * tension(1, 3, 2), 1e-9);
}

TEST(Truss, NegativeFactorUnderAnotherTagChangesNothing) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3, -4.0)}, 2);
  a.write();
  Kernel k;
  EXPECT_NEAR(k.run(a.request(12, 1, 2)).values[1], tension(1, 3, 2), 1e-9);
}

// Staged activation: truss 1 is listed as inactive for case 1.
void inactive_tables(ArchiveFixture& a, std::vector<double> initial_disp) {
  a.writer().first().add(sections::IASI, 4, 2, 1).put_i32s(1, 0, std::vector<int32_t>{1, 0});
  Section& iase = a.writer().first().add(sections::IASE, 4, 3, 2);
  iase.put_i32s(1, 0, std::vector<int32_t>{0, 1, 1});
  iase.put_i32s(2, 0, std::vector<int32_t>{0, 2, 2});
  a.writer().direct(1).add_f64_rows(sections::DSPL, 1, {initial_disp});
}

TEST(Truss, LateActivatedElementLosesItsInitialDisplacement) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3), truss_record(1, 3)}, 3, 2);
  inactive_tables(a, {0.0005, 0.0, 0.002, 0.0});
  a.write();
  Kernel k;
  auto q = a.request(12, 1, 3);
  auto r = k.run(q).values;
  for (int s = 1; s <= 3; ++s) {
    EXPECT_NEAR(r[s - 1], kStiff * ((3 * s / 1000.0 - 0.002) - (s / 1000.0 - 0.0005)), 1e-9);
  }
  // Element 2 is listed as a beam, not a truss: active.
  q.serials = {2};
  EXPECT_NEAR(k.run(q).values[0], tension(1, 3, 1), 1e-9);
}

TEST(Truss, LateActivatedElementInDirectFileOneKeepsOnlyItsInitialForces) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3)}, 2, 1);
  inactive_tables(a, {0.0005, 0.0, 0.002, 0.0});
  a.writer().second().add_f64_rows(sections::ITTR, 1, {{40.0, 40.0}});
  a.write();
  Kernel k;
  auto r = k.run(a.request(12, 1, 2)).values;
  EXPECT_EQ(r, (std::vector<double>{40.0, 40.0}));
}

TEST(Truss, EnvelopeModeLeavesLaterColumnsAtZero) {
  ArchiveFixture a;
  bar_archive(a, {truss_record(1, 3)}, 2);
  a.write();
  Kernel k;
  auto q = a.request(12, 1, 2);
  q.request_mode = 3;
  q.step_no = 2;
  auto r = k.run(q).values;
  ASSERT_EQ(r.size(), 12u);
  EXPECT_NEAR(r[0], tension(1, 3, 2), 1e-9);
  EXPECT_NEAR(r[3], tension(1, 3, 2) / kA, 1e-12);
  EXPECT_EQ(r[4], 0.0);
  for (int i = 6; i < 12; ++i) EXPECT_EQ(r[i], 0.0);
}

}  // namespace
}  // namespace respcore::testing
