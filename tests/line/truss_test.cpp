// Truss histories: end forces and stresses of a bar from its axial
// stiffness, the initial state, the factor under its tag, late activation
// and its per-case switch, and the node lists of the extended record.
#include <gtest/gtest.h>

#include "support/archive_fixture.hpp"
#include "support/beam_sections.hpp"

namespace respcore::testing {
namespace {

constexpr double kE = 2.0e5, kA = 50.0, kL = 2000.0, kStiff = kE * kA / kL;

// A bar along x between the axial dof EQ1 and EQ2: row 1 the force at end 1
// (pushing it away), row 2 at end 2, rows 3 and 4 of column 1 hold 1/A.
TrussRecord bar(int eq1, int eq2, double scale = 1.0) {
  TrussRecord t;
  t.lm = {double(eq1), double(eq2)};
  t.strs = {kStiff, -kStiff, 1.0 / kA, 1.0 / kA, -kStiff, kStiff, 0, 0};
  t.scale = scale;
  return t;
}

// Equation e moves by e s / 1000 at step s.
std::vector<std::vector<double>> motion(int nsteps) {
  std::vector<std::vector<double>> d(4);
  for (int e = 1; e <= 4; ++e)
    for (int s = 1; s <= nsteps; ++s) d[e - 1].push_back(e * s / 1000.0);
  return d;
}
double tension(int eq1, int eq2, int s) { return kStiff * (eq2 - eq1) * s / 1000.0; }

// Row ROW of element SERIAL over NSTEPS steps.
std::vector<double> row(ArchiveFixture& a, int comp, int serial, int nsteps, int product_index = 1,
                        int hist_case = 1) {
  Kernel k;
  Request q = a.request(12, comp, nsteps);
  q.serials = q.elements = {serial};
  q.product_index = product_index;
  q.hist_case = hist_case;
  return k.run(q).values;
}

TEST(Truss, AxialForceAndStressAtBothEndsTensionPositive) {
  ArchiveFixture a;
  a.direct_case(motion(3));
  TrussRecord unbalanced = bar(1, 2);
  unbalanced.strs[0] = 3.0, unbalanced.strs[1] = 11.0;
  a.writer().truss_records(3, {bar(1, 3), bar(4, 2), unbalanced});
  a.write();
  for (int comp = 1; comp <= 4; ++comp) {
    const auto r = row(a, comp, 1, 3), c = row(a, comp, 2, 3);
    for (int s = 1; s <= 3; ++s) {
      EXPECT_NEAR(r[s - 1], comp <= 2 ? tension(1, 3, s) : tension(1, 3, s) / kA, 1e-9) << comp;
      EXPECT_NEAR(c[s - 1], comp <= 2 ? tension(4, 2, s) : tension(4, 2, s) / kA, 1e-9) << comp;
    }
  }
  // An unbalanced matrix: both ends carry the mean of the two end forces.
  const double u1 = 2 / 1000.0, u2 = 4 / 1000.0;
  const double f1 = 3.0 * u1 - kStiff * u2, f2 = 11.0 * u1 + kStiff * u2;
  EXPECT_DOUBLE_EQ(row(a, 1, 3, 2)[1], (f2 - f1) / 2);
  EXPECT_DOUBLE_EQ(row(a, 2, 3, 2)[1], (f2 - f1) / 2);
}

// The initial forces reach the stresses; the factor scales the forces alone,
// after the stresses were formed, and only under "H.N.Q", where an extended
// record carries its own.
TEST(Truss, InitialForcesAndTheFactorUnderItsTag) {
  ArchiveFixture a;
  a.direct_case(motion(2));
  a.writer().truss_records(3, {bar(1, 3), bar(1, 3, -4.0)});
  a.writer().initial_forces(sections::ITTR, 1, {{100.0, 200.0}, {0.0, 0.0}});
  a.write();
  EXPECT_NEAR(row(a, 2, 1, 2)[0], tension(1, 3, 1) + 200.0, 1e-9);
  EXPECT_NEAR(row(a, 3, 1, 2)[0], (tension(1, 3, 1) + 100.0) / kA, 1e-12);
  EXPECT_NEAR(row(a, 1, 2, 2)[1], tension(1, 3, 2), 1e-9);  // another tag: no factor

  ArchiveFixture h("H.N.Q");
  h.direct_case(motion(2));
  h.writer().truss_records(3, {bar(1, 3, 2.5), bar(1, 3, -4.0)});
  ExtendedTrussRecord ext;
  ext.truss = bar(1, 3);
  ext.nodes_a = {1};
  ext.nodes_b = {2};
  ext.factor = 3.0;
  h.writer().extended_truss_records(3, {ext, ext});
  h.write();
  EXPECT_NEAR(row(h, 1, 1, 2, 4)[1], 2.5 * tension(1, 3, 2), 1e-9);
  EXPECT_NEAR(row(h, 4, 1, 2, 4)[1], tension(1, 3, 2) / kA, 1e-12);
  EXPECT_NEAR(row(h, 1, 2, 2, 4)[1], 3.0 * tension(1, 3, 2), 1e-9);
}

// Truss 1 is activated during the case, truss 2 is listed as a beam. In a
// direct file other than 1 the late truss loses its displacements at
// activation; in direct file 1 it keeps its initial forces alone. Each case
// has its own switch, and a first switch of 0 turns the list off.
TEST(Truss, LateActivationAndItsPerCaseSwitch) {
  auto archive = [](ArchiveFixture& a, int file_no, std::vector<int32_t> flags) {
    a.direct_case(motion(3), file_no, flags.size());
    a.writer().truss_records(3, {bar(1, 3), bar(1, 3)});
    a.writer().inactive_elements(flags, {{0, 1, 1}, {0, 2, 2}});
    a.writer().activation_displacements({0.0005, 0.0, 0.002, 0.0});
    a.writer().initial_forces(sections::ITTR, 1, {{40.0, 40.0}, {0.0, 0.0}});
  };
  ArchiveFixture f2;
  archive(f2, 2, {1});
  f2.write();
  const auto late = row(f2, 1, 1, 3);
  for (int s = 1; s <= 3; ++s)
    EXPECT_NEAR(late[s - 1], 40.0 + kStiff * ((3 * s / 1000.0 - 0.002) - (s / 1000.0 - 0.0005)),
                1e-9);
  EXPECT_NEAR(row(f2, 1, 2, 3)[0], tension(1, 3, 1), 1e-9);

  for (const std::vector<int32_t>& flags :
       {std::vector<int32_t>{1, 0}, std::vector<int32_t>{0, 1}}) {
    ArchiveFixture f1;
    archive(f1, 1, flags);
    f1.write();
    for (int c = 1; c <= 2; ++c) {
      const bool inactive = flags[0] == 1 && flags[static_cast<size_t>(c - 1)] == 1;
      const auto r = row(f1, 1, 1, 3, 1, c);
      for (int s = 1; s <= 3; ++s)
        EXPECT_NEAR(r[s - 1], (c == 1 ? 40.0 : 0.0) + (inactive ? 0.0 : tension(1, 3, s)), 1e-9)
            << flags[0] << c;
    }
  }
}

// An extended record (tag "H.N.Q") between the nodes of its lists: a
// constrained end follows the support motion of its listed node.
TEST(Truss, ExtendedRecordNodesTakeTheirSupportMotion) {
  ArchiveFixture a("H.N.Q");
  const std::vector<double> u = {0.004, -0.002, 0.001}, h = {0.001, 0.003, -0.002};
  a.direct_case({u});
  a.writer().truss_records(3, {bar(1, 2, -1.0)});
  ExtendedTrussRecord ext;
  ext.truss.lm.assign(12, 0.0);
  ext.truss.lm[6] = 1;  // x of node 2; node 1 is held
  ext.truss.strs.assign(48, 0.0);
  const double col1[4] = {kStiff, -kStiff, 1.0 / kA, 1.0 / kA}, col7[4] = {-kStiff, kStiff, 0, 0};
  for (int i = 0; i < 4; ++i)
    ext.truss.strs[static_cast<size_t>(i)] = col1[i],
    ext.truss.strs[static_cast<size_t>(24 + i)] = col7[i];
  ext.nodes_a = {77};
  ext.nodes_b = {78};
  a.writer().extended_truss_records(3, {ext});
  support_motion(a, 1, {{99, 1}, {77, 1}}, {{9, 9, 9}, h}, 3);
  a.write();
  const auto r = row(a, 1, 1, 3, 4);
  for (int s = 0; s < 3; ++s)
    EXPECT_NEAR(r[static_cast<size_t>(s)], kStiff * (u[s] - h[s]), 1e-9) << s;
}

}  // namespace
}  // namespace respcore::testing
