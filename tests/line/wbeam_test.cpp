// Wall beam histories through the whole request: the delivered rows against
// the wall beam's rules (sign changes, scale-word rows, warping stresses of
// both ends, corners), and the step's full result set as the kernel leaves it.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "run/kernel_state.hpp"
#include "support/archive_fixture.hpp"
#include "support/beam_sections.hpp"

namespace respcore::testing {
namespace {

using Set = std::array<double, 97>;   // result set rows 1..96
using Rows = std::array<double, 35>;  // delivered rows 1..34

// Column 1 of the product rows 1..18 holds primes; so do the factor words
// (rows 19..25 and 33..52 of column 1, rows 26..32 of column 4).
constexpr double kForcePrimes[18] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 41, 43, 47, 53, 59, 61};
constexpr double kFactorPrimes[34] = {67,  71,  73,  79,  83,  89,  97,  101, 103, 107, 109, 113,
                                      127, 131, 137, 139, 149, 151, 157, 163, 167, 173, 179, 181,
                                      191, 193, 197, 199, 211, 223, 227, 229, 233, 239};
constexpr double kA = 3.0, kB = 5.0;

std::vector<double> wall_matrix(double scale = 1.0) {
  std::vector<double> m(72 * 14);
  for (int j = 1; j <= 14; ++j) {
    for (int i = 1; i <= 72; ++i) {
      double v = 1000.0 + i + j;
      if (i <= 18) v = scale * (j == 1 ? kForcePrimes[i - 1] : double((7 * i + 3 * j) % 11 - 5));
      else if (i <= 25 && j == 1) v = kFactorPrimes[i - 19];
      else if (i >= 26 && i <= 32 && j == 4) v = kFactorPrimes[i - 19];
      else if (i >= 33 && i <= 52 && j == 1) v = kFactorPrimes[i - 19];
      m[static_cast<size_t>((j - 1) * 72 + i - 1)] = v;
    }
  }
  return m;
}

double disp(int e, int s) { return s == 1 ? (e == 1 ? 1.0 : 0.0) : double((5 * e + 3 * s) % 9 - 4); }

std::vector<double> step_disp(int s) {
  std::vector<double> d;
  for (int e = 1; e <= 14; ++e) d.push_back(disp(e, s));
  return d;
}

// The result set of one step, by the wall beam's rules.
Set expected_set(const std::vector<double>& strs, const std::vector<double>& d,
                 const double* init = nullptr) {
  auto S = [&](int r, int c) { return strs[static_cast<size_t>((c - 1) * 72 + r - 1)]; };
  double s[19] = {};
  for (int i = 1; i <= 18; ++i) {
    for (int j = 1; j <= 14; ++j) s[i] += S(i, j) * d[static_cast<size_t>(j - 1)];
  }
  double G[41] = {};
  G[19] = S(19, 1);
  G[20] = S(21, 1);
  G[21] = S(20, 1);
  for (int r = 22; r <= 25; ++r) G[r] = -S(r, 1);
  for (int r = 26; r <= 32; ++r) G[r] = S(r, 4);
  G[33] = S(34, 1);
  G[34] = S(33, 1);
  for (int r = 35; r <= 38; ++r) G[r] = -S(r, 1);
  G[39] = S(39, 1);
  G[40] = S(40, 1);

  Set R{};
  const double forces[19] = {0,     -s[1],  s[3],   -s[2],  -s[4],  -s[6],  -s[5],
                             s[7],  -s[9],  s[8],   s[10],  s[12],  s[11],  -s[13],
                             s[14], -kA * s[15], -kB * s[16], s[4] - kA * s[15], -s[10] - kB * s[16]};
  for (int k = 1; k <= 18; ++k) R[k] = forces[k] + (init && k <= 14 ? init[k - 1] : 0.0);
  R[19] = -R[1] * G[19];
  R[20] = -R[2] * G[20];
  R[21] = -R[3] * G[21];
  R[22] = -R[6] * G[22];
  R[23] = -R[6] * G[23];
  R[24] = R[5] * G[24];
  R[25] = R[5] * G[25];
  for (int i = 0; i < 4; ++i) R[26 + i] = -R[13] * G[33 + i];
  R[46] = R[7] * G[26];
  R[47] = R[8] * G[27];
  R[48] = R[9] * G[28];
  R[49] = R[12] * G[29];
  R[50] = R[12] * G[30];
  R[51] = -R[11] * G[31];
  R[52] = -R[11] * G[32];
  for (int i = 0; i < 4; ++i) R[53 + i] = R[14] * G[37 + i];
  R[73] = R[19] + R[23] + R[24] + R[26];
  R[74] = R[19] + R[22] + R[24] + R[27];
  R[75] = R[19] + R[22] + R[25] + R[28];
  R[76] = R[19] + R[23] + R[25] + R[29];
  R[85] = R[46] + R[50] + R[51] + R[53];
  R[86] = R[46] + R[49] + R[51] + R[54];
  R[87] = R[46] + R[49] + R[52] + R[55];
  R[88] = R[46] + R[50] + R[52] + R[56];
  return R;
}

Rows delivered(const Set& R) {
  Rows out{};
  for (int k = 1; k <= 12; ++k) out[k] = R[k];
  for (int k = 0; k < 7; ++k) out[13 + k] = R[19 + k];
  for (int k = 0; k < 7; ++k) out[20 + k] = R[46 + k];
  for (int k = 0; k < 4; ++k) out[27 + k] = R[73 + k];
  for (int k = 0; k < 4; ++k) out[31 + k] = R[85 + k];
  return out;
}

std::vector<Rows> all_rows(Kernel& k, Request r, int nsteps) {
  std::vector<Rows> out(static_cast<size_t>(nsteps));
  for (int c = 1; c <= 35; ++c) {
    r.result_comp = c;
    Result res = k.run(r);
    EXPECT_EQ(res.status, STATUS_DONE);
    EXPECT_EQ(res.values.size(), static_cast<size_t>(nsteps));
    for (int s = 0; s < nsteps && s < static_cast<int>(res.values.size()); ++s) {
      const double v = res.values[static_cast<size_t>(s)];
      if (c <= 34) out[static_cast<size_t>(s)][static_cast<size_t>(c)] = v;
      else EXPECT_EQ(v, 0.0) << "row 35 is not the wall beam's";
    }
  }
  return out;
}

void expect_rows(const Rows& got, const Rows& want, const char* what) {
  for (int k = 1; k <= 34; ++k) EXPECT_EQ(got[static_cast<size_t>(k)], want[static_cast<size_t>(k)]) << what << ", row " << k;
}

void wall_case(ArchiveFixture& a, int nsteps) {
  a.history_cases({{2, 1, nsteps, 0, 0}});
  std::vector<EquationHistory> eqs;
  for (int e = 1; e <= 14; ++e) {
    EquationHistory h;
    for (int s = 1; s <= nsteps; ++s) {
      h.disp.push_back(disp(e, s));
      h.vel.push_back(0.0);
      h.acc.push_back(0.0);
    }
    eqs.push_back(h);
  }
  a.direct_histories(1, eqs, nsteps);
}

WallBeamRecord full_record(double scale = 1.0) {
  WallBeamRecord rec;
  for (int e = 1; e <= 14; ++e) rec.lm.push_back(e);
  rec.strs = wall_matrix(scale);
  rec.node_i = 31;
  rec.node_j = 32;
  rec.a = kA;
  rec.b = kB;
  return rec;
}

TEST(WallBeamHistory, DeliveredRowsAndResultSet) {
  constexpr int kSteps = 3;
  ArchiveFixture a;
  wall_case(a, kSteps);
  const WallBeamRecord rec = full_record();
  wall_beam_section(a, {wall_beam_words(rec)});
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(14, 1, kSteps), kSteps);
  for (int s = 1; s <= kSteps; ++s) {
    expect_rows(got[static_cast<size_t>(s - 1)], delivered(expected_set(rec.strs, step_disp(s))), "step");
  }
  // Step 1 by hand: the unit displacement of equation 1 makes the product
  // rows the primes. The bimoment of end i (s13 = 41) is negated, that of
  // end j (s14 = 43) is not; both reach the corners through the warping
  // factors G(33) = STRS(34,1) = 139 and G(37) = -STRS(37,1) = -157.
  const Rows& r1 = got[0];
  EXPECT_EQ(r1[1], -2.0);
  EXPECT_EQ(r1[2], 5.0);
  EXPECT_EQ(r1[5], -13.0);
  EXPECT_EQ(r1[12], 31.0);
  const double R19 = 2.0 * 67.0, R23 = 11.0 * -83.0, R24 = -13.0 * -89.0, R26 = 41.0 * 139.0;
  EXPECT_EQ(r1[13], R19);
  EXPECT_EQ(r1[14], -5.0 * 73.0);  // the shear rows take each other's factor
  EXPECT_EQ(r1[17], R23);
  EXPECT_EQ(r1[18], R24);
  EXPECT_EQ(r1[27], R19 + R23 + R24 + R26);
  const double R46 = 17.0 * 101.0, R50 = 31.0 * 113.0, R51 = -37.0 * 127.0, R53 = 43.0 * -157.0;
  EXPECT_EQ(r1[20], R46);  // end j factors keep their stored order
  EXPECT_EQ(r1[21], -23.0 * 103.0);
  EXPECT_EQ(r1[31], R46 + R50 + R51 + R53);

  // The full result set of the last step, as the kernel leaves it.
  const Set want = expected_set(rec.strs, step_disp(kSteps));
  KernelState& st = k.state();
  for (int r = 1; r <= 96; ++r) {
    const bool formed = r <= 29 || (r >= 46 && r <= 56) || (r >= 73 && r <= 76) || (r >= 85 && r <= 88);
    EXPECT_EQ(st.line.wall_beam.SIG_OUT(r), formed ? want[static_cast<size_t>(r)] : 0.0) << "set row " << r;
  }
  // Rows 15..18 of the step vector carry the scale words a and b.
  const std::vector<double> d = step_disp(kSteps);
  double s4 = 0, s10 = 0, s15 = 0, s16 = 0;
  for (int j = 1; j <= 14; ++j) {
    const double dj = d[static_cast<size_t>(j - 1)];
    s4 += rec.strs[static_cast<size_t>((j - 1) * 72 + 3)] * dj;
    s10 += rec.strs[static_cast<size_t>((j - 1) * 72 + 9)] * dj;
    s15 += rec.strs[static_cast<size_t>((j - 1) * 72 + 14)] * dj;
    s16 += rec.strs[static_cast<size_t>((j - 1) * 72 + 15)] * dj;
  }
  EXPECT_EQ(st.line.wall_beam.SIG(15), kA * s15);
  EXPECT_EQ(st.line.wall_beam.SIG(16), -kB * s16);
  EXPECT_EQ(st.line.wall_beam.SIG(17), -s4 + kA * s15);
  EXPECT_EQ(st.line.wall_beam.SIG(18), -s10 - kB * s16);
  EXPECT_NE(s15, 0.0);
  EXPECT_NE(s16, 0.0);
}

TEST(WallBeamHistory, InitialForcesOfAnInactiveWallBeamReachTheCorners) {
  constexpr int kSteps = 2;
  ArchiveFixture a;
  wall_case(a, kSteps);
  const WallBeamRecord rec = full_record();
  wall_beam_section(a, {wall_beam_words(rec), wall_beam_words(rec)});
  std::vector<double> init;
  for (int k = 1; k <= 14; ++k) init.push_back(0.5 * k - 4.0);
  wall_beam_initial_forces(a, 1, {init, init});
  // Element 1 is a late-activated wall beam; element 2 is listed as a beam,
  // which does not make a wall beam inactive.
  inactive_elements(a, {1}, {{0, 41, 1}, {0, 2, 2}});
  a.write();

  Kernel k;
  Request r = a.request(14, 1, kSteps);
  auto inactive = all_rows(k, r, kSteps);
  r.serials = {2};
  auto active = all_rows(k, r, kSteps);
  const std::vector<double> still(14, 0.0);
  for (int s = 1; s <= kSteps; ++s) {
    const Rows want = delivered(expected_set(rec.strs, still, init.data()));
    expect_rows(inactive[static_cast<size_t>(s - 1)], want, "inactive");
    EXPECT_EQ(inactive[static_cast<size_t>(s - 1)][1], init[0]);
    expect_rows(active[static_cast<size_t>(s - 1)],
                delivered(expected_set(rec.strs, step_disp(s), init.data())), "active");
  }
}

TEST(WallBeamHistory, SupportMotionKeepsTheWarpingRows) {
  constexpr int kSteps = 2;
  ArchiveFixture a;
  wall_case(a, kSteps);
  WallBeamRecord rec = full_record();
  rec.lm[0] = 0;  // end i, x: follows the support row of node 31
  wall_beam_section(a, {wall_beam_words(rec)});
  const std::vector<double> ground = {0.75, -1.25};
  support_motion(a, 1, {{32, 1}, {31, 1}}, {{9.0, 9.0}, ground}, kSteps);
  a.write();

  Kernel k;
  auto got = all_rows(k, a.request(14, 1, kSteps), kSteps);
  for (int s = 1; s <= kSteps; ++s) {
    std::vector<double> d = step_disp(s);
    d[0] = ground[static_cast<size_t>(s - 1)];
    expect_rows(got[static_cast<size_t>(s - 1)], delivered(expected_set(rec.strs, d)), "support");
  }
}

TEST(WallBeamHistory, ShortRecordGivesZeros) {
  ArchiveFixture a;
  wall_case(a, 2);
  Section& s = a.writer().second().add(sections::WBMM, 3, 2 * 1000, 1);
  s.put_f64s(1, 0, std::vector<double>(1000, 1.14));
  a.write();
  Kernel k;
  for (int c : {1, 13, 27, 34}) {
    Result res = k.run(a.request(14, c, 2));
    ASSERT_EQ(res.status, STATUS_DONE);
    EXPECT_EQ(res.values, std::vector<double>(2, 0.0));
  }
}

}  // namespace
}  // namespace respcore::testing
