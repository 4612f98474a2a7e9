// Beam histories through the whole request: archives written with the
// writer, requests through the kernel, rows checked against the composition
// of the axis change and the sign pattern, hand-formed stress rows, and the physics of a prismatic
// member whose recovery matrix is its own local stiffness.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "support/archive_fixture.hpp"
#include "support/beam_sections.hpp"

namespace respcore::testing {
namespace {

constexpr int kRows = 34;
using Rows = std::array<double, kRows + 1>;  // rows 1..34, entry 0 unused

// Column 1 of the force rows holds distinct primes, so a unit displacement
// of the first equation makes the product rows s1..s12 those primes and any
// exchanged row shows. The section factors are primes as well.
constexpr double kPrimes[12] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37};
constexpr double kEndI[7] = {41, 43, 47, 53, 59, 61, 67};   // STRS(13..19, 1)
constexpr double kEndJ[7] = {71, 73, 79, 83, 89, 97, 101};  // STRS(20..26, 4)

// A NROW x NEQ recovery matrix of integers. Rows 13..26 outside the factor
// columns hold large values that must never reach a result.
std::vector<double> test_matrix(int nrow, int neq, double scale = 1.0) {
  std::vector<double> m(static_cast<size_t>(nrow * neq));
  for (int j = 1; j <= neq; ++j) {
    for (int i = 1; i <= nrow; ++i) {
      double v;
      if (i <= 12) v = scale * (j == 1 ? kPrimes[i - 1] : double((7 * i + 3 * j) % 11 - 5));
      else if (i <= 19 && j == 1) v = kEndI[i - 13];
      else if (i >= 20 && j == 4) v = kEndJ[i - 20];
      else v = 1000.0 + i + j;
      m[static_cast<size_t>((j - 1) * nrow + (i - 1))] = v;
    }
  }
  return m;
}

// Displacement of equation E at step S: step 1 moves equation 1 alone.
double disp(int e, int s) { return s == 1 ? (e == 1 ? 1.0 : 0.0) : double((5 * e + 3 * s) % 9 - 4); }

std::vector<EquationHistory> equation_histories(int neq, int nsteps) {
  std::vector<EquationHistory> eqs;
  for (int e = 1; e <= neq; ++e) {
    EquationHistory h;
    for (int s = 1; s <= nsteps; ++s) {
      h.disp.push_back(disp(e, s));
      h.vel.push_back(0.0);
      h.acc.push_back(0.0);
    }
    eqs.push_back(h);
  }
  return eqs;
}

// The expected rows of one step: the
// composition of the axis change and the sign pattern, the factors in terms
// of the stored matrix, and the stress and corner formulas.
Rows expected_rows(const std::vector<double>& strs, int nrow, int neq, const std::vector<double>& d,
                   const double* init = nullptr, double factor = 1.0) {
  auto S = [&](int r, int c) {
    return r <= nrow && c <= neq ? strs[static_cast<size_t>((c - 1) * nrow + r - 1)] : 0.0;
  };
  double s[13] = {};
  for (int i = 1; i <= std::min(nrow, 12); ++i) {
    for (int j = 1; j <= neq; ++j) s[i] += S(i, j) * d[static_cast<size_t>(j - 1)];
  }
  Rows F{};
  const double table[13] = {0,     -s[1], s[3],  -s[2], -s[4], -s[6], -s[5],
                            s[7],  -s[9], s[8],  s[10], s[12], s[11]};
  for (int k = 1; k <= 12; ++k) F[k] = (table[k] + (init ? init[k - 1] : 0.0)) * factor;
  double G[27] = {};
  G[13] = S(13, 1);
  G[14] = S(15, 1);
  G[15] = S(14, 1);
  for (int r = 16; r <= 19; ++r) G[r] = -S(r, 1);
  G[20] = S(20, 4);
  G[21] = S(22, 4);
  G[22] = S(21, 4);
  for (int r = 23; r <= 26; ++r) G[r] = -S(r, 4);
  F[13] = -F[1] * G[13];
  F[14] = -F[2] * G[14];
  F[15] = -F[3] * G[15];
  F[16] = -F[6] * G[16];
  F[17] = -F[6] * G[17];
  F[18] = F[5] * G[18];
  F[19] = F[5] * G[19];
  F[20] = F[7] * G[20];
  F[21] = F[8] * G[21];
  F[22] = F[9] * G[22];
  F[23] = F[12] * G[23];
  F[24] = F[12] * G[24];
  F[25] = -F[11] * G[25];
  F[26] = -F[11] * G[26];
  F[27] = F[13] + F[17] + F[18];
  F[28] = F[13] + F[16] + F[18];
  F[29] = F[13] + F[16] + F[19];
  F[30] = F[13] + F[17] + F[19];
  F[31] = F[20] + F[24] + F[25];
  F[32] = F[20] + F[23] + F[25];
  F[33] = F[20] + F[23] + F[26];
  F[34] = F[20] + F[24] + F[26];
  return F;
}

std::vector<double> step_disp(int neq, int s) {
  std::vector<double> d;
  for (int e = 1; e <= neq; ++e) d.push_back(disp(e, s));
  return d;
}

std::vector<double> equations(int n) {
  std::vector<double> lm;
  for (int e = 1; e <= n; ++e) lm.push_back(e);
  return lm;
}

// Rows 1..35 of every step, one mode-1 request per row.
std::vector<Rows> all_rows(Kernel& k, Request r, int nsteps, std::array<double, 36>* row35 = nullptr) {
  std::vector<Rows> out(static_cast<size_t>(nsteps));
  for (int c = 1; c <= kRows + 1; ++c) {
    r.result_comp = c;
    Result res = k.run(r);
    EXPECT_EQ(res.status, STATUS_DONE);
    EXPECT_EQ(res.values.size(), static_cast<size_t>(nsteps));
    for (int s = 0; s < nsteps && s < static_cast<int>(res.values.size()); ++s) {
      if (c <= kRows) out[static_cast<size_t>(s)][static_cast<size_t>(c)] = res.values[static_cast<size_t>(s)];
      else if (row35 != nullptr) (*row35)[static_cast<size_t>(s)] = res.values[static_cast<size_t>(s)];
    }
  }
  return out;
}

void expect_rows(const Rows& got, const Rows& want, const char* what) {
  for (int k = 1; k <= kRows; ++k) EXPECT_EQ(got[k], want[k]) << what << ", row " << k;
}

// Case 1 keeps its histories in direct file FILE_NO, for NEQ equations.
void direct_case(ArchiveFixture& a, int neq, int nsteps, int32_t file_no = 1) {
  a.history_cases({{2, file_no, nsteps, 0, 0}});
  a.direct_histories(file_no, equation_histories(neq, nsteps), nsteps);
}

TEST(BeamHistory, CompositionStressRowsAndCorners) {
  constexpr int kSteps = 3;
  ArchiveFixture a;
  direct_case(a, 12, kSteps);
  BeamRecord rec;
  rec.lm = equations(12);
  rec.strs = test_matrix(26, 12);
  beam_section(a, {beam_words(rec)});
  a.write();

  Kernel k;
  std::array<double, 36> row35{};
  row35.fill(-1.0);
  auto got = all_rows(k, a.request(13, 1, kSteps), kSteps, &row35);
  // Step 1 is the unit displacement of equation 1: the product rows are the
  // primes, and the table reads directly.
  const Rows& r1 = got[0];
  EXPECT_EQ(r1[1], -2.0);
  EXPECT_EQ(r1[2], 5.0);
  EXPECT_EQ(r1[3], -3.0);
  EXPECT_EQ(r1[4], -7.0);
  EXPECT_EQ(r1[5], -13.0);
  EXPECT_EQ(r1[6], -11.0);
  EXPECT_EQ(r1[7], 17.0);
  EXPECT_EQ(r1[8], -23.0);
  EXPECT_EQ(r1[9], 19.0);
  EXPECT_EQ(r1[10], 29.0);
  EXPECT_EQ(r1[11], 37.0);
  EXPECT_EQ(r1[12], 31.0);
  // Axial stress of end i: -F(1) * STRS(13,1); a shear row takes the factor
  // of the other shear row; a bending row of end j is negated by the axis
  // change and then by its own formula.
  EXPECT_EQ(r1[13], 2.0 * 41.0);
  EXPECT_EQ(r1[14], -5.0 * 47.0);
  EXPECT_EQ(r1[15], 3.0 * 43.0);
  EXPECT_EQ(r1[25], -37.0 * -97.0);
  EXPECT_EQ(r1[27], r1[13] + r1[17] + r1[18]);
  for (int s = 1; s <= kSteps; ++s) {
    expect_rows(got[static_cast<size_t>(s - 1)], expected_rows(rec.strs, 26, 12, step_disp(12, s)),
                "step");
    EXPECT_EQ(row35[static_cast<size_t>(s - 1)], 0.0) << "rows behind 34 stay untouched";
  }
}

TEST(BeamHistory, TwelveRowsGiveNoStresses) {
  ArchiveFixture a;
  direct_case(a, 12, 2);
  BeamRecord rec;
  rec.nrow = 12;
  rec.lm = equations(12);
  rec.strs = test_matrix(12, 12);
  beam_section(a, {beam_words(rec)});
  a.write();
  Kernel k;
  auto got = all_rows(k, a.request(13, 1, 2), 2);
  for (int s = 1; s <= 2; ++s) {
    const Rows want = expected_rows(rec.strs, 12, 12, step_disp(12, s));
    for (int r = 1; r <= 12; ++r) EXPECT_EQ(got[static_cast<size_t>(s - 1)][r], want[r]);
    for (int r = 13; r <= 34; ++r) EXPECT_EQ(got[static_cast<size_t>(s - 1)][r], 0.0) << r;
    EXPECT_NE(want[1], 0.0);
  }
}

// Support motion makes the node pair observable: the constrained first dof
// of end i follows the support row of its node.
std::vector<double> support_history(int nsteps) {
  std::vector<double> h;
  for (int s = 1; s <= nsteps; ++s) h.push_back(100.0 + 7.0 * s);
  return h;
}

TEST(BeamHistory, FewerEquationsPutTheNodePairBehindTheMatrix) {
  constexpr int kSteps = 2;
  ArchiveFixture a;
  direct_case(a, 6, kSteps);
  BeamRecord rec;
  rec.neq = 6;
  rec.lm = {0, 2, 3, 4, 5, 6};
  rec.strs = test_matrix(26, 6);
  rec.node_i = 77;
  rec.node_j = 78;
  std::vector<double> w = beam_words(rec);
  // Integer parts of the count words play no role here.
  w[324] = 555.06;
  w[325] = 444.26;
  beam_section(a, {w});
  support_motion(a, 1, {{5, 1}, {77, 1}, {77, 4}}, {{1, 1}, support_history(kSteps), {9, 9}}, kSteps);
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(13, 1, kSteps), kSteps);
  for (int s = 1; s <= kSteps; ++s) {
    std::vector<double> d = step_disp(6, s);
    d[0] = support_history(kSteps)[static_cast<size_t>(s - 1)];
    expect_rows(got[static_cast<size_t>(s - 1)], expected_rows(rec.strs, 26, 6, d), "six equations");
  }
}

TEST(BeamHistory, PackedWordsShareNodeAndCount) {
  constexpr int kSteps = 2;
  ArchiveFixture a;
  direct_case(a, 12, kSteps);
  BeamRecord rec;
  rec.lm = equations(12);
  rec.lm[0] = 0;  // end i, x: support motion of node 1234
  rec.lm[6] = 0;  // end j, x: the same node
  rec.strs = test_matrix(26, 12);
  std::vector<double> w = beam_words(rec);
  w[324] = 1234.12;
  w[325] = 1234.26;
  beam_section(a, {w});
  support_motion(a, 1, {{1234, 1}}, {support_history(kSteps)}, kSteps);
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(13, 1, kSteps), kSteps);
  for (int s = 1; s <= kSteps; ++s) {
    std::vector<double> d = step_disp(12, s);
    d[0] = d[6] = support_history(kSteps)[static_cast<size_t>(s - 1)];
    expect_rows(got[static_cast<size_t>(s - 1)], expected_rows(rec.strs, 26, 12, d), "packed");
  }
}

const std::vector<double> kInitial = {1.5, -2.5, 3.5, -4.5, 5.5, -6.5, 7.5, -8.5, 9.5, -10.5, 11.5, -12.5};

TEST(BeamHistory, ElementFactorScalesForcesAfterInitialForcesUnderItsTagOnly) {
  constexpr int kSteps = 2;
  for (const bool hnq : {true, false}) {
    ArchiveFixture a(hnq ? "H.N.Q" : "P.R.W");
    direct_case(a, 12, kSteps);
    BeamRecord rec;
    rec.lm = equations(12);
    rec.strs = test_matrix(26, 12);
    rec.factor = 2.5;
    beam_section(a, {beam_words(rec)});
    beam_initial_forces(a, 1, {kInitial});
    a.write();
    Kernel k;
    Request r = a.request(13, 1, kSteps);
    r.product_index = hnq ? 4 : 1;
    auto got = all_rows(k, r, kSteps);
    for (int s = 1; s <= kSteps; ++s) {
      const Rows want =
          expected_rows(rec.strs, 26, 12, step_disp(12, s), kInitial.data(), hnq ? 2.5 : 1.0);
      expect_rows(got[static_cast<size_t>(s - 1)], want, hnq ? "H.N.Q" : "P.R.W");
    }
  }
}

TEST(BeamHistory, InactiveBeamUnderFirstDirectFileKeepsOnlyItsInitialForces) {
  constexpr int kSteps = 3;
  ArchiveFixture a;
  direct_case(a, 12, kSteps);
  BeamRecord rec;
  rec.lm = equations(12);
  rec.strs = test_matrix(26, 12);
  beam_section(a, {beam_words(rec), beam_words(rec)});
  beam_initial_forces(a, 1, {kInitial, kInitial});
  // Element 1 is a late-activated beam; element 2 is listed as a truss only.
  inactive_elements(a, {1}, {{0, 2, 1}, {0, 1, 2}});
  a.write();

  Kernel k;
  Request r = a.request(13, 1, kSteps);
  auto inactive = all_rows(k, r, kSteps);
  r.serials = {2};
  auto active = all_rows(k, r, kSteps);
  const std::vector<double> still(12, 0.0);
  for (int s = 1; s <= kSteps; ++s) {
    const Rows want = expected_rows(rec.strs, 26, 12, still, kInitial.data());
    expect_rows(inactive[static_cast<size_t>(s - 1)], want, "inactive");
    EXPECT_EQ(inactive[static_cast<size_t>(s - 1)][1], 1.5);
    EXPECT_NE(inactive[static_cast<size_t>(s - 1)][13], 0.0);
    expect_rows(active[static_cast<size_t>(s - 1)],
                expected_rows(rec.strs, 26, 12, step_disp(12, s), kInitial.data()), "active");
  }
}

TEST(BeamHistory, InactiveBeamUnderOtherDirectFileLosesItsActivationDisplacement) {
  constexpr int kSteps = 2;
  ArchiveFixture a;
  direct_case(a, 12, kSteps, 2);
  BeamRecord rec;
  rec.lm = equations(12);
  rec.lm[11] = 0;  // a constrained dof takes no initial displacement
  rec.strs = test_matrix(26, 12);
  beam_section(a, {beam_words(rec)});
  inactive_elements(a, {1}, {{0, 2, 1}});
  std::vector<double> at_activation;
  for (int e = 1; e <= 12; ++e) at_activation.push_back(0.25 * e);
  activation_displacements(a, at_activation);
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(13, 1, kSteps), kSteps);
  for (int s = 1; s <= kSteps; ++s) {
    std::vector<double> d = step_disp(12, s);
    for (int e = 1; e <= 11; ++e) d[static_cast<size_t>(e - 1)] -= 0.25 * e;
    d[11] = 0.0;
    expect_rows(got[static_cast<size_t>(s - 1)], expected_rows(rec.strs, 26, 12, d), "activated");
  }
}

TEST(BeamHistory, ColumnRulesOfTheRequestModes) {
  constexpr int kSteps = 3;
  ArchiveFixture a;
  direct_case(a, 12, kSteps);
  BeamRecord one, two;
  one.lm = two.lm = equations(12);
  one.strs = test_matrix(26, 12, 1.0);
  two.strs = test_matrix(26, 12, 3.0);
  beam_section(a, {beam_words(one), beam_words(two)});
  a.write();
  const Rows one2 = expected_rows(one.strs, 26, 12, step_disp(12, 2));
  const Rows two2 = expected_rows(two.strs, 26, 12, step_disp(12, 2));

  Kernel k;
  Request r = a.request(13, 1, 1);
  r.request_mode = 2;
  r.num_items = 2;
  r.step_no = 2;
  r.serials = {1, 2};
  r.elements = {1, 2};
  // C 1: force row 1 of both ends of each item; C 8: row 14 and 21; C 14:
  // corner rows 27 and 31.
  const std::array<std::array<int, 3>, 3> picks = {{{1, 1, 7}, {8, 14, 21}, {14, 27, 31}}};
  for (const auto& [c, ra, rb] : picks) {
    r.result_comp = c;
    Result res = k.run(r);
    ASSERT_EQ(res.values.size(), 4u);
    EXPECT_EQ(res.values[0], one2[static_cast<size_t>(ra)]) << c;
    EXPECT_EQ(res.values[1], one2[static_cast<size_t>(rb)]) << c;
    EXPECT_EQ(res.values[2], two2[static_cast<size_t>(ra)]) << c;
    EXPECT_EQ(res.values[3], two2[static_cast<size_t>(rb)]) << c;
  }

  // Mode 3: the step's rows 1..6 in the column of each item, zeros behind.
  r.request_mode = 3;
  r.num_steps = kSteps;
  r.result_comp = 1;
  Result res = k.run(r);
  ASSERT_EQ(res.values.size(), 24u);
  for (int row = 1; row <= 6; ++row) {
    EXPECT_EQ(res.values[static_cast<size_t>(row - 1)], one2[static_cast<size_t>(row)]);
    EXPECT_EQ(res.values[static_cast<size_t>(6 + row - 1)], two2[static_cast<size_t>(row)]);
    EXPECT_EQ(res.values[static_cast<size_t>(12 + row - 1)], 0.0);
    EXPECT_EQ(res.values[static_cast<size_t>(18 + row - 1)], 0.0);
  }

  // Mode 1 lists one item: the first.
  Request h = a.request(13, 9, kSteps);
  h.serials = {1, 2};
  h.elements = {1, 2};
  h.num_items = 2;
  Result hist = k.run(h);
  ASSERT_EQ(hist.values.size(), static_cast<size_t>(kSteps));
  EXPECT_EQ(hist.values[1], one2[9]);
}

TEST(BeamHistory, ShortOrCorruptRecordsGiveZerosWithoutFailing) {
  ArchiveFixture a;
  direct_case(a, 12, 2);
  // A section whose records are too short for a beam record.
  Section& s = a.writer().second().add(sections::BEAM, 3, 200, 2);
  s.put_f64s(1, 0, std::vector<double>(100, 1.12));
  a.write();
  Kernel k;
  for (int c : {1, 7, 13, 27, 34}) {
    Result res = k.run(a.request(13, c, 2));
    ASSERT_EQ(res.status, STATUS_DONE);
    ASSERT_EQ(res.values.size(), 2u);
    EXPECT_EQ(res.values[0], 0.0);
    EXPECT_EQ(res.values[1], 0.0);
  }

  // Counts far beyond the declared arrays, and an element number past the
  // section's end: the run goes on and stays inside its arrays.
  ArchiveFixture b;
  direct_case(b, 12, 2);
  std::vector<double> w(327, 1.0);
  w[324] = 7.20;
  w[325] = 7.40;
  beam_section(b, {w});
  b.write();
  Kernel k2;
  Request r = b.request(13, 27, 2);
  EXPECT_EQ(k2.run(r).status, STATUS_DONE);
  r.serials = {1000};
  EXPECT_EQ(k2.run(r).status, STATUS_DONE);
}

// A prismatic member: the recovery matrix is its local stiffness in the dof
// order u, v, w, rx, ry, rz of end i and then end j.
struct Member {
  double E = 210000.0, G = 80000.0, A = 0.02, Iy = 3.0e-4, Iz = 5.0e-4, J = 1.0e-4, L = 4.0;
};

std::vector<double> local_stiffness(const Member& m) {
  std::vector<double> k(144, 0.0);
  auto add = [&](int i, int j, double v) { k[static_cast<size_t>((j - 1) * 12 + (i - 1))] += v; };
  auto block = [&](const int (&dof)[4], double c, const double (&t)[4][4]) {
    for (int a = 0; a < 4; ++a) {
      for (int b = 0; b < 4; ++b) add(dof[a], dof[b], c * t[a][b]);
    }
  };
  const double L = m.L;
  const double ea = m.E * m.A / L, gj = m.G * m.J / L;
  add(1, 1, ea); add(7, 7, ea); add(1, 7, -ea); add(7, 1, -ea);
  add(4, 4, gj); add(10, 10, gj); add(4, 10, -gj); add(10, 4, -gj);
  const double xy[4][4] = {{12, 6 * L, -12, 6 * L},
                           {6 * L, 4 * L * L, -6 * L, 2 * L * L},
                           {-12, -6 * L, 12, -6 * L},
                           {6 * L, 2 * L * L, -6 * L, 4 * L * L}};
  const double xz[4][4] = {{12, -6 * L, -12, -6 * L},
                           {-6 * L, 4 * L * L, 6 * L, 2 * L * L},
                           {-12, 6 * L, 12, 6 * L},
                           {-6 * L, 2 * L * L, 6 * L, 4 * L * L}};
  block({2, 6, 8, 12}, m.E * m.Iz / (L * L * L), xy);
  block({3, 5, 9, 11}, m.E * m.Iy / (L * L * L), xz);
  return k;
}

TEST(BeamHistory, PrismaticMemberRigidBodyStretchAndCantilever) {
  const Member m;
  const double delta = 1.0e-3;
  // Step 1: rigid-body translation and rotation; 2: axial stretch;
  // 3: cantilever tip deflection in the x-y plane with its free-end slope;
  // 4: the same in the x-z plane.
  std::vector<std::array<double, 12>> d(4);
  const double t[3] = {0.01, -0.02, 0.03}, w[3] = {0.002, -0.003, 0.004};
  for (int c = 0; c < 3; ++c) {
    d[0][static_cast<size_t>(c)] = t[c];
    d[0][static_cast<size_t>(3 + c)] = d[0][static_cast<size_t>(9 + c)] = w[c];
  }
  d[0][6] = t[0];
  d[0][7] = t[1] + w[2] * m.L;
  d[0][8] = t[2] - w[1] * m.L;
  d[1][6] = delta;
  d[2][7] = delta;
  d[2][11] = 1.5 * delta / m.L;
  d[3][8] = delta;
  d[3][10] = -1.5 * delta / m.L;

  ArchiveFixture a;
  a.history_cases({{2, 1, 4, 0, 0}});
  std::vector<EquationHistory> eqs(12);
  for (int e = 0; e < 12; ++e) {
    for (int s = 0; s < 4; ++s) {
      eqs[static_cast<size_t>(e)].disp.push_back(d[static_cast<size_t>(s)][static_cast<size_t>(e)]);
      eqs[static_cast<size_t>(e)].vel.push_back(0.0);
      eqs[static_cast<size_t>(e)].acc.push_back(0.0);
    }
  }
  a.direct_histories(1, eqs, 4);
  BeamRecord rec;
  rec.lm = equations(12);
  std::vector<double> kmat = local_stiffness(m);
  rec.strs.assign(26 * 12, 0.0);
  for (int j = 1; j <= 12; ++j) {
    for (int i = 1; i <= 12; ++i) {
      rec.strs[static_cast<size_t>((j - 1) * 26 + i - 1)] = kmat[static_cast<size_t>((j - 1) * 12 + i - 1)];
    }
  }
  // Axial stress factors that turn the end forces into F/A, tension positive.
  rec.strs[static_cast<size_t>(12)] = -1.0 / m.A;               // STRS(13, 1)
  rec.strs[static_cast<size_t>(3 * 26 + 19)] = 1.0 / m.A;       // STRS(20, 4)
  beam_section(a, {beam_words(rec)});
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(13, 1, 4), 4);
  const double force_scale = m.E * m.A * delta / m.L;
  for (int r = 1; r <= 34; ++r) EXPECT_NEAR(got[0][r], 0.0, 1e-9 * force_scale) << "rigid, row " << r;

  // Axial stretch: EA delta / L at both ends, tension positive, and the
  // axial stress E delta / L.
  const double N = m.E * m.A * delta / m.L;
  for (int r = 1; r <= 12; ++r) {
    const double want = (r == 1 || r == 7) ? N : 0.0;
    EXPECT_NEAR(got[1][r], want, 1e-12 * N) << "axial, row " << r;
  }
  EXPECT_NEAR(got[1][13], m.E * delta / m.L, 1e-9);
  EXPECT_NEAR(got[1][20], m.E * delta / m.L, 1e-9);

  // Cantilever in x-y: tip load P = 3 E Iz delta / L^3, root moment P L, no
  // moment at the tip.
  const double Pz = 3.0 * m.E * m.Iz * delta / (m.L * m.L * m.L);
  const Rows& xy = got[2];
  EXPECT_NEAR(xy[3], Pz, 1e-9 * Pz);
  EXPECT_NEAR(xy[9], Pz, 1e-9 * Pz);
  EXPECT_NEAR(xy[5], Pz * m.L, 1e-9 * Pz * m.L);
  EXPECT_NEAR(xy[11], 0.0, 1e-9 * Pz * m.L);
  for (int r : {1, 2, 4, 6, 7, 8, 10, 12}) EXPECT_NEAR(xy[r], 0.0, 1e-9 * Pz * m.L) << r;

  // Cantilever in x-z, with the rotation about y opposite to the slope.
  const double Py = 3.0 * m.E * m.Iy * delta / (m.L * m.L * m.L);
  const Rows& xz = got[3];
  EXPECT_NEAR(xz[2], -Py, 1e-9 * Py);
  EXPECT_NEAR(xz[8], -Py, 1e-9 * Py);
  EXPECT_NEAR(xz[6], -Py * m.L, 1e-9 * Py * m.L);
  EXPECT_NEAR(xz[12], 0.0, 1e-9 * Py * m.L);
  for (int r : {1, 3, 4, 5, 7, 9, 10, 11}) EXPECT_NEAR(xz[r], 0.0, 1e-9 * Py * m.L) << r;
}

}  // namespace
}  // namespace respcore::testing
