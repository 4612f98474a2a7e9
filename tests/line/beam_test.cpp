// Beam and wall beam histories through whole requests. Oracles: the rows of
// a unit displacement of one equation, worked out by hand from prime-valued
// matrices; the end forces of a prismatic member whose matrix is its own
// stiffness; and runs that must equal other runs (the element factor, a late
// activation, support motion in place of an equation's history).
#include <gtest/gtest.h>

#include <cmath>

#include "support/archive_fixture.hpp"
#include "support/beam_sections.hpp"

namespace respcore::testing {
namespace {

using Rows = std::vector<std::vector<double>>;    // rows[r-1][s-1]
using Motion = std::vector<std::vector<double>>;  // motion[e-1][s-1]

std::vector<double> primes(size_t n) {
  std::vector<double> p;
  for (int k = 2; p.size() < n; ++k) {
    bool prime = true;
    for (double q : p) prime = prime && k % static_cast<int>(q) != 0;
    if (prime) p.push_back(k);
  }
  return p;
}

// Step 1 moves equation 1 alone by one; later steps move every equation.
Motion motion(int neq, int nsteps) {
  Motion d(static_cast<size_t>(neq), std::vector<double>(static_cast<size_t>(nsteps)));
  for (int e = 1; e <= neq; ++e)
    for (int s = 1; s <= nsteps; ++s)
      d[e - 1][s - 1] = s == 1 ? (e == 1) : double((5 * e + 3 * s) % 9 - 4);
  return d;
}

// NROW x NEQ: column 1 of the force rows and each block of factor words
// (first, last, column) hold consecutive primes, so that an exchanged row
// shows; rows that must never reach a result hold large values.
struct Block {
  int first, last, column;
};
std::vector<double> matrix(int nrow, int neq, int nforce, std::initializer_list<Block> blocks) {
  const std::vector<double> p = primes(60);
  std::vector<double> m(static_cast<size_t>(nrow * neq));
  for (int j = 1; j <= neq; ++j)
    for (int i = 1; i <= nrow; ++i)
      m[static_cast<size_t>((j - 1) * nrow + i - 1)] =
          i <= nforce ? (j == 1 ? p[static_cast<size_t>(i - 1)] : double((7 * i + 3 * j) % 11 - 5))
                      : 1000.0 + i + j;
  size_t next = static_cast<size_t>(nforce);
  for (const Block& b : blocks)
    for (int i = b.first; i <= b.last; ++i)
      m[static_cast<size_t>((b.column - 1) * nrow + i - 1)] = p[next++];
  return m;
}

std::vector<double> equations(int n) {
  std::vector<double> lm;
  for (int e = 1; e <= n; ++e) lm.push_back(e);
  return lm;
}

BeamRecord beam() {
  return {.lm = equations(12), .strs = matrix(26, 12, 12, {{13, 19, 1}, {20, 26, 4}})};
}
WallBeamRecord wall_beam() {
  return {.lm = equations(14),
          .strs = matrix(72, 14, 18, {{19, 25, 1}, {26, 32, 4}, {33, 52, 1}}),
          .node_i = 31,
          .node_j = 32,
          .a = 3.0,
          .b = 5.0};
}

// Rows 1..35 of item SERIAL of family TYPE (13 beam, 14 wall beam).
Rows line_rows(ArchiveFixture& a, int type, int nsteps, int serial = 1, int product_index = 1) {
  Kernel k;
  Request r = a.request(type, 1, nsteps);
  r.serials = r.elements = {serial};
  r.product_index = product_index;
  return history_rows(k, r, 35);
}

void expect_rows(const Rows& got, const Rows& want, const std::string& what, double rel = 0.0) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t r = 0; r < got.size(); ++r)
    for (size_t s = 0; s < got[r].size(); ++s)
      EXPECT_NEAR(got[r][s], want[r][s], rel * std::fabs(want[r][s])) << what << r << s;
}

TEST(LineHistory, UnitDisplacementRowsByHand) {
  ArchiveFixture a;
  a.direct_case(motion(14, 2));
  a.writer().beam_records(3, {beam()});
  a.writer().wall_beam_records(3, {wall_beam()});
  a.write();
  Rows b = line_rows(a, 13, 2);
  auto r = [&](int row) { return b[static_cast<size_t>(row - 1)][0]; };
  // The axis change and the sign pattern of the end forces.
  const double forces[12] = {-2, 5, -3, -7, -13, -11, 17, -23, 19, 29, 37, 31};
  for (int k = 1; k <= 12; ++k) EXPECT_EQ(r(k), forces[k - 1]) << k;
  // Axial stress of end i: -F(1) STRS(13,1); a shear row takes the factor of
  // the other; a bending row of end j is negated by the axis change and by
  // its own formula; corners add axial and both bending stresses.
  const std::pair<int, double> hand[] = {{13, 2.0 * 41},  {14, -5.0 * 47},   {15, 3.0 * 43},
                                         {20, 17.0 * 71}, {25, -37.0 * -97}, {35, 0.0}};
  for (auto [row, v] : hand) EXPECT_EQ(r(row), v) << row;
  EXPECT_EQ(r(27), r(13) + r(17) + r(18));
  EXPECT_EQ(r(31), r(20) + r(24) + r(25));

  // The wall beam: the bimoment of end i (41) is negated, that of end j
  // (43) is not; both reach the corners through their warping factors.
  const Rows w = line_rows(a, 14, 2);
  auto q = [&](int row) { return w[static_cast<size_t>(row - 1)][0]; };
  const double R19 = 2.0 * 67, R23 = 11.0 * -83, R24 = -13.0 * -89, R26 = 41.0 * 139;
  const double R46 = 17.0 * 101, R50 = 31.0 * 113, R51 = -37.0 * 127, R53 = 43.0 * -157;
  const std::pair<int, double> wall[] = {{1, -2.0},
                                         {5, -13.0},
                                         {12, 31.0},
                                         {13, R19},
                                         {14, -5.0 * 73},
                                         {17, R23},
                                         {27, R19 + R23 + R24 + R26},
                                         {20, R46},
                                         {21, -23.0 * 103},
                                         {31, R46 + R50 + R51 + R53},
                                         {35, 0.0}};
  for (auto [row, v] : wall) EXPECT_EQ(q(row), v) << row;
}

// A prismatic member: the recovery matrix is its local stiffness (dof u, v,
// w, rx, ry, rz of end i, then end j).
TEST(LineHistory, PrismaticMemberRigidBodyStretchAndCantilever) {
  const double E = 210000.0, G = 80000.0, A = 0.02, Iy = 3.0e-4, Iz = 5.0e-4, J = 1.0e-4, L = 4.0;
  std::vector<double> k(26 * 12, 0.0);
  auto add = [&](int i, int j, double v) { k[static_cast<size_t>((j - 1) * 26 + i - 1)] += v; };
  auto pair = [&](int i, int j, double c) {
    add(i, i, c), add(j, j, c), add(i, j, -c), add(j, i, -c);
  };
  pair(1, 7, E * A / L);
  pair(4, 10, G * J / L);
  auto bending = [&](const int(&d)[4], double c, double s) {  // s: sign of the rotation terms
    const double t[4][4] = {{12, s * 6 * L, -12, s * 6 * L},
                            {s * 6 * L, 4 * L * L, -s * 6 * L, 2 * L * L},
                            {-12, -s * 6 * L, 12, -s * 6 * L},
                            {s * 6 * L, 2 * L * L, -s * 6 * L, 4 * L * L}};
    for (int a = 0; a < 4; ++a)
      for (int b = 0; b < 4; ++b) add(d[a], d[b], c * t[a][b]);
  };
  bending({2, 6, 8, 12}, E * Iz / (L * L * L), 1.0);
  bending({3, 5, 9, 11}, E * Iy / (L * L * L), -1.0);
  add(13, 1, -1.0 / A);  // end stresses F/A, tension positive
  add(20, 4, 1.0 / A);
  // Steps: rigid translation and rotation; axial stretch; tip deflections
  // with their free-end slopes in x-y and x-z.
  const double delta = 1.0e-3, t[3] = {0.01, -0.02, 0.03}, w[3] = {0.002, -0.003, 0.004};
  Motion d(12, std::vector<double>(4, 0.0));
  for (int c = 0; c < 3; ++c) d[c][0] = t[c], d[3 + c][0] = d[9 + c][0] = w[c];
  d[6][0] = t[0], d[7][0] = t[1] + w[2] * L, d[8][0] = t[2] - w[1] * L;
  d[6][1] = delta;
  d[7][2] = delta, d[11][2] = 1.5 * delta / L;
  d[8][3] = delta, d[10][3] = -1.5 * delta / L;
  ArchiveFixture arch;
  arch.direct_case(d);
  BeamRecord rec;
  rec.lm = equations(12);
  rec.strs = k;
  arch.writer().beam_records(3, {rec});
  arch.write();
  const Rows r = line_rows(arch, 13, 4);
  const double N = E * A * delta / L, Pz = 3 * E * Iz * delta / (L * L * L),
               Py = 3 * E * Iy * delta / (L * L * L);
  // Rows 1..12 of each step: nothing; tension at both ends; the cantilever
  // with its root moment P L and no tip moment, in x-y, then in x-z with
  // the rotation about y opposite to the slope.
  const double want[4][12] = {{},
                              {N, 0, 0, 0, 0, 0, N},
                              {0, 0, Pz, 0, Pz * L, 0, 0, 0, Pz},
                              {0, -Py, 0, 0, 0, -Py * L, 0, -Py}};
  for (int s = 0; s < 4; ++s)
    for (int row = 0; row < 12; ++row)
      EXPECT_NEAR(r[row][s], want[s][row], 1e-9 * N) << s << " " << row + 1;
  for (int row = 12; row < 34; ++row)
    EXPECT_NEAR(r[row][0], 0.0, 1e-9 * N) << "rigid, row " << row + 1;
  EXPECT_NEAR(r[12][1], E * delta / L, 1e-9);
  EXPECT_NEAR(r[19][1], E * delta / L, 1e-9);
}

// Under "H.N.Q" the element factor scales every row, initial forces
// included; under any other tag it does nothing.
TEST(LineHistory, ElementFactorScalesEveryRowUnderItsTagOnly) {
  auto run = [](const char* tag, double factor) {
    ArchiveFixture a(tag);
    a.direct_case(motion(12, 3));
    BeamRecord rec = beam();
    rec.factor = factor;
    a.writer().beam_records(3, {rec});
    a.writer().initial_forces(sections::ITBM, 1,
                        {{1.5, -2.5, 3.5, -4.5, 5.5, -6.5, 7.5, -8.5, 9.5, -10.5, 11.5, -12.5}});
    a.write();
    return line_rows(a, 13, 3, 1, std::string(tag) == "H.N.Q" ? 4 : 1);
  };
  const Rows plain = run("P.R.W", 1.0);
  expect_rows(run("P.R.W", 2.5), plain, "other tag");
  Rows scaled = plain;
  for (auto& row : scaled)
    for (double& v : row) v *= 2.5;
  expect_rows(run("H.N.Q", 2.5), scaled, "H.N.Q", 1e-14);
}

// A late-activated element of a case kept in direct file 1 shows only its
// initial forces (the run with no motion); in another direct file it moves
// by its displacements less those at its activation. An element listed under
// another kind is active.
TEST(LineHistory, LateActivationIsTheRunWithTheMotionItHadSince) {
  for (const int type : {13, 14}) {
    const int neq = type == 13 ? 12 : 14, other_kind = type == 13 ? 1 : 2;
    std::vector<double> init(static_cast<size_t>(neq)), dspl;
    for (int e = 1; e <= neq; ++e) init[e - 1] = 0.5 * e - 4.0, dspl.push_back(0.25 * e);
    auto run = [&](const Motion& d, int file_no, bool tables, int serial) {
      ArchiveFixture a;
      a.direct_case(d, file_no);
      if (type == 13) {
        BeamRecord rec = beam();
        rec.lm[11] = 0;  // a constrained dof takes no activation displacement
        a.writer().beam_records(3, {rec, rec});
        a.writer().initial_forces(sections::ITBM, 1, {init, init});
      } else {
        a.writer().wall_beam_records(3, {wall_beam(), wall_beam()});
        a.writer().initial_forces(sections::ITBW, 1, {init, init});
      }
      if (tables) {
        a.writer().inactive_elements({1}, {{0, type == 13 ? 2 : 41, 1}, {0, other_kind, 2}});
        a.writer().activation_displacements(dspl);
      }
      a.write();
      return line_rows(a, type, 3, serial);
    };
    const Motion d = motion(neq, 3);
    Motion still(d.size(), std::vector<double>(3, 0.0)), since = d;
    for (int e = 1; e <= neq; ++e)
      for (double& v : since[e - 1]) v -= dspl[e - 1];
    const std::string what = type == 13 ? "beam" : "wall beam";
    expect_rows(run(d, 1, true, 1), run(still, 1, false, 1), what + ", direct file 1");
    expect_rows(run(d, 1, true, 2), run(d, 1, false, 2), what + ", listed as another kind");
    expect_rows(run(d, 2, true, 1), run(since, 2, false, 1), what + ", direct file 2", 1e-14);
  }
}

// A constrained translation takes the support motion of its node (the node
// pair behind the matrix, or in the packed count words): the same rows as an
// equation whose history is that support motion.
TEST(LineHistory, SupportMotionActsAsAnEquationWithThatHistory) {
  struct Variant {
    int type, neq, node;
    std::vector<int> fixed;  // dof (from 0) constrained, all at NODE
  };
  for (const Variant& v :
       {Variant{13, 6, 77, {0}}, Variant{13, 12, 1234, {0, 6}}, Variant{14, 14, 31, {0}}}) {
    auto run = [&](bool support) {
      ArchiveFixture a;
      Motion d = motion(v.neq + 1, 2);
      d.back() = {100.0 + 7.0, 100.0 + 14.0};
      a.direct_case(d);
      std::vector<double> lm = equations(v.neq);
      for (int f : v.fixed) lm[static_cast<size_t>(f)] = support ? 0 : v.neq + 1;
      if (v.type == 13) {
        BeamRecord rec;
        rec.neq = v.neq;
        rec.lm = lm;
        rec.strs = matrix(26, v.neq, 12, {{13, 19, 1}, {20, 26, 4}});
        rec.node_i = v.node;
        rec.node_j = v.neq == 12 ? v.node : 78;
        a.writer().beam_records(3, {rec});
      } else {
        WallBeamRecord rec = wall_beam();
        rec.lm = lm;
        a.writer().wall_beam_records(3, {rec});
      }
      if (support)
        support_motion(a, 1, {{5, 1}, {v.node, 1}, {v.node, 4}}, {{1, 1}, d.back(), {9, 9}}, 2);
      a.write();
      return line_rows(a, v.type, 2);
    };
    expect_rows(run(true), run(false),
                "type " + std::to_string(v.type) + " NEQ " + std::to_string(v.neq));
  }
}

}  // namespace
}  // namespace respcore::testing
