// High-order plates (ELEM_TYPE 7) through whole requests: constant fields at
// all points, rigid motion and balanced forces, the same rows under the
// general product tag, and the condensed stiffness that the force rows give,
// assembled into a simply supported plate.
#include "plate_support.hpp"

namespace respcore::testing::plate {
namespace {

constexpr double kT1 = 0.2, kT2 = 0.25;

// One element of NNOD nodes (corners, then the midsides) in the tilted
// plane, with the motion of FIELDS, under the product tag TAG.
void write_high(ArchiveFixture& f, int nnod, const std::vector<Field>& fields) {
  std::vector<std::array<double, 2>> xy =
      nnod == 8 ? std::vector<std::array<double, 2>>{{-2, -1}, {2, -1}, {1, 1.5}, {-1, 1.5}}
                : std::vector<std::array<double, 2>>{{0, 0}, {3, 0}, {1, 2}};
  const size_t k = xy.size();
  for (size_t i = 0; i < k; ++i)
    xy.push_back({(xy[i][0] + xy[(i + 1) % k][0]) / 2, (xy[i][1] + xy[(i + 1) % k][1]) / 2});
  std::vector<std::array<double, 3>> cord;
  std::vector<std::vector<Dof6>> steps(fields.size());
  PlateHighRecord r;
  for (int n = 0; n < nnod; ++n) {
    cord.push_back(to_global({xy[n][0], xy[n][1], 0.0}));
    r.nodes.push_back(n + 1);
    for (int c = 1; c <= 6; ++c) r.lm.push_back(6.0 * n + c);
    for (size_t s = 0; s < fields.size(); ++s)
      steps[s].push_back(node_motion(fields[s], xy[n][0], xy[n][1], {}));
  }
  r.prop = {kT1, kT2}, r.young = kE, r.poisson = kNu;
  write_motion(f, steps);
  f.writer().node_coordinates(cord);
  f.writer().plate_high_records(3, {r});
  f.write();
}

class HighPlateFields : public ::testing::TestWithParam<int> {};

TEST_P(HighPlateFields, ConstantFieldsAtAllPointsAndTheSameRowsUnderEitherTag) {
  const int nnod = GetParam();
  const Row3 eps = {1e-3, -4e-4, 8e-4}, k = {2e-3, -1e-3, 1e-3};
  const std::vector<Field> fields = {rigid({1e-3, -2e-3, 3e-3, 4e-4, -5e-4, 0}),
                                     membrane(eps[0], eps[1], 6e-4, 2e-4),
                                     bending(k[0], k[1], k[2] / 2)};
  ArchiveFixture f, g("J.W.U");
  write_high(f, nnod, fields);
  write_high(g, nnod, fields);
  const Rows rows = history_rows(f, 7, 1, 174, 3);
  EXPECT_EQ(history_rows(g, 7, 6, 174, 3), rows);
  // The thick triangles' isotropic bending rows carry the plate modulus twice.
  const double q = nnod == 6 ? kE / (1 - kNu * kNu) : 1.0;
  for (int s = 0; s < 3; ++s) {
    const Block b = hand_block(s == 1 ? eps : Row3{}, s == 2 ? k : Row3{}, q * kT2 / 2, q * kT2 / 2,
                               kT1, q * kT2 * kT2 * kT2 / 12);
    for (int p = 0; p < 9; ++p)
      for (int i = 0; i < 14; ++i)
        EXPECT_NEAR(rows[48 + 14 * p + i][s], p <= nnod ? b[i] : 0.0, 1e-7 * (1 + std::fabs(b[i])))
            << "step " << s + 1 << " point " << p + 1 << " row " << i + 1;
  }
  for (int i = 0; i < 48; ++i)
    EXPECT_NEAR(rows[i][0], 0.0, 1e-8) << "rigid motion, force " << i + 1;
  expect_request_modes(f, 7, rows, 2);
}

INSTANTIATE_TEST_SUITE_P(SixAndEightNodes, HighPlateFields, ::testing::Values(6, 8));

// The force rows reached with a unit displacement of each freedom in turn are
// the condensed stiffness of the eight-node plate: symmetric, and, assembled
// into a simply supported square plate (w and the edge rotation held) under
// a uniform load, converging to the thin-plate deflection 0.00406235 q a^4 / D
// at its centre.
TEST(HighPlateStiffness, SymmetricAndConvergingToTheSimplySupportedPlate) {
  const double t = 0.01, D = kE * t * t * t / (12 * (1 - kNu * kNu));
  ArchiveFixture f;
  // Two square elements (sides 1/4, 1/8) on equations 1..48, each 1 at its step.
  std::vector<std::vector<Dof6>> steps(48, std::vector<Dof6>(16, Dof6{}));
  for (int s = 0; s < 48; ++s) steps[s][s / 6][s % 6] = 1.0;
  write_motion(f, steps);
  std::vector<std::array<double, 3>> cord;
  std::vector<PlateHighRecord> recs(2);
  const int off[8][2] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 0}, {2, 1}, {1, 2}, {0, 1}};
  for (int m = 0; m < 2; ++m) {
    for (const auto& o : off) {
      cord.push_back({o[0] / (8.0 + 8 * m), o[1] / (8.0 + 8 * m), 0.0});
      recs[m].nodes.push_back(static_cast<double>(cord.size()));
    }
    for (int e = 1; e <= 48; ++e) recs[m].lm.push_back(e);
    recs[m].prop = {t, t}, recs[m].young = kE, recs[m].poisson = kNu;
  }
  f.writer().node_coordinates(cord);
  f.writer().plate_high_records(3, recs);
  f.write();

  double previous = 1.0;
  for (int m = 0; m < 2; ++m) {
    const Rows K = history_rows(f, 7, 1, 48, 48, m + 1);
    for (int i = 0; i < 48; ++i)
      for (int j = 0; j < i; ++j) EXPECT_NEAR(K[i][j], K[j][i], 1e-9 * std::fabs(K[i][i]));
    // Grid nodes (i, j) of spacing h/2 without the element centres; freedoms
    // w, rx, ry of each, -1 where held.
    const int n = 4 << m, g = 2 * n + 1;
    std::vector<int> id(3 * g * g, -1);
    int N = 0;
    for (int j = 0; j < g; ++j)
      for (int i = 0; i < g; ++i) {
        const bool ex = i == 0 || i == g - 1, ey = j == 0 || j == g - 1;
        for (int c = 0; c < 3 && !(i % 2 && j % 2); ++c)
          if (!(c == 0 ? ex || ey : c == 1 ? ex : ey)) id[3 * (j * g + i) + c] = N++;
      }
    std::vector<double> A(static_cast<size_t>(N) * N), F(N);
    auto a = [&](int r, int c) -> double& { return A[static_cast<size_t>(r) * N + c]; };
    for (int e = 0; e < n * n; ++e) {
      int dof[24];
      for (int k = 0; k < 8; ++k) {
        const int node = (2 * (e / n) + off[k][1]) * g + 2 * (e % n) + off[k][0];
        for (int c = 0; c < 3; ++c) dof[3 * k + c] = id[3 * node + c];
        // A quarter of each sub-quadrilateral's load to its corners, the
        // centre's share to the midsides.
        if (dof[3 * k] >= 0) F[dof[3 * k]] += (k < 4 ? 1.0 : 3.0) / (16.0 * n * n);
      }
      for (int p = 0; p < 24; ++p)
        for (int q = 0; q < 24; ++q)
          if (dof[p] >= 0 && dof[q] >= 0)
            a(dof[p], dof[q]) += K[6 * (p / 3) + 2 + p % 3][6 * (q / 3) + 2 + q % 3];
    }
    for (int c = 0; c < N; ++c)
      for (int r = c + 1; r < N; ++r) {
        const double fct = a(r, c) / a(c, c);
        for (int j = c; j < N && fct != 0.0; ++j) a(r, j) -= fct * a(c, j);
        F[r] -= fct * F[c];
      }
    for (int r = N - 1; r >= 0; --r) {
      for (int j = r + 1; j < N; ++j) F[r] -= a(r, j) * F[j];
      F[r] /= a(r, r);
    }
    const double exact = 0.00406235 / D, error = std::fabs(F[id[3 * (n * g + n)]] - exact) / exact;
    std::printf("%d x %d eight-node plates: centre deflection off by %.3g%%\n", n, n, 100 * error);
    EXPECT_LT(error, previous);
    previous = error;
  }
  EXPECT_LT(previous, 0.01);
}

}  // namespace
}  // namespace respcore::testing::plate
