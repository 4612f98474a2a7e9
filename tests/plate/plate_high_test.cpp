// High-order plates (ELEM_TYPE 7) through whole requests: constant fields at
// all points, rigid motion and balanced forces, the same rows under the
// general product tag, and the condensed stiffness that the force rows give,
// assembled into a simply supported plate.
#include "plate_support.hpp"

namespace respcore::testing::plate {
namespace {

constexpr double kT1 = 0.2, kT2 = 0.25;

std::vector<std::array<double, 2>> high_nodes(int nnod) {
  std::vector<std::array<double, 2>> c = nnod == 8
      ? std::vector<std::array<double, 2>>{{-2, -1}, {2, -1}, {1, 1.5}, {-1, 1.5}}
      : std::vector<std::array<double, 2>>{{0, 0}, {3, 0}, {1, 2}};
  const size_t k = c.size();
  for (size_t i = 0; i < k; ++i)
    c.push_back({(c[i][0] + c[(i + 1) % k][0]) / 2, (c[i][1] + c[(i + 1) % k][1]) / 2});
  return c;
}

// One element of NNOD nodes in the tilted plane, with the motion of FIELDS.
void write_high(ArchiveFixture& f, int nnod, const std::vector<Field>& fields) {
  const auto xy = high_nodes(nnod);
  std::vector<std::array<double, 3>> cord;
  std::vector<std::vector<Dof6>> steps(fields.size());
  PlateHighRecord r;
  for (int n = 0; n < nnod; ++n) {
    cord.push_back(to_global({xy[n][0], xy[n][1], 0.0}));
    r.nodes.push_back(n + 1);
    for (int k = 1; k <= 6; ++k) r.lm.push_back(6.0 * n + k);
    for (size_t s = 0; s < fields.size(); ++s)
      steps[s].push_back(node_motion(fields[s], xy[n][0], xy[n][1], {}));
  }
  r.prop = {kT1, kT2};
  r.young = kE;
  r.poisson = kNu;
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
  const auto rows = history_rows(f, 7, 1, 174, 3);
  EXPECT_EQ(history_rows(g, 7, 6, 174, 3), rows);

  // The thick triangles' isotropic bending rows carry the plate modulus twice.
  const double q = nnod == 6 ? kE / (1 - kNu * kNu) : 1.0;
  for (int s = 0; s < 3; ++s) {
    const Block b = hand_block(s == 1 ? eps : Row3{}, s == 2 ? k : Row3{}, q * kT2 / 2, q * kT2 / 2,
                               kT1, q * kT2 * kT2 * kT2 / 12);
    for (int p = 0; p < 9; ++p)
      for (int i = 0; i < 14; ++i) {
        const double want = p <= nnod ? b[i] : 0.0;
        EXPECT_NEAR(rows[48 + 14 * p + i][s], want, 1e-7 * (1 + std::fabs(want)))
            << "step " << s + 1 << " point " << p + 1 << " row " << i + 1;
      }
    // The forces balance; rigid motion carries none.
    for (int a = 0; a < 3; ++a) {
      double total = 0.0;
      for (int n = 0; n < 8; ++n) total += rows[6 * n + a][s];
      EXPECT_NEAR(total, 0.0, 1e-8);
    }
    for (int i = 0; i < 48 && s == 0; ++i) EXPECT_NEAR(rows[i][0], 0.0, 1e-8) << "force " << i + 1;
  }

  // The many-items form reads the same rows; the envelope form six of them.
  Kernel kn;
  for (int C = 1; C <= 20; ++C) {
    Request r = f.request(7, C, 1);
    r.request_mode = 2;
    r.step_no = 3;
    const auto v = kn.run(r).values;
    ASSERT_EQ(v.size(), C < 7 ? 8u : 9u);
    for (size_t n = 0; n < v.size(); ++n)
      EXPECT_NEAR(v[n], rows[C < 7 ? C - 1 + 6 * n : C + 41 + 14 * n][2], 1e-15) << C;
  }
  Request r3 = f.request(7, 1, 1);
  r3.request_mode = 3;
  r3.step_no = 2;
  const auto v3 = kn.run(r3).values;
  ASSERT_EQ(v3.size(), 12u);
  for (int i = 0; i < 12; ++i) EXPECT_NEAR(v3[i], i < 6 ? rows[i][1] : 0.0, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(SixAndEightNodes, HighPlateFields, ::testing::Values(6, 8));

// The force rows reached with a unit displacement of each freedom in turn are
// the condensed stiffness of the eight-node plate: symmetric, and, assembled
// into a simply supported square plate under a uniform load, converging to
// the thin-plate deflection 0.00406235 q a^4 / D at its centre.
TEST(HighPlateStiffness, SymmetricAndConvergingToTheSimplySupportedPlate) {
  const double t = 0.01, D = kE * t * t * t / (12 * (1 - kNu * kNu));
  const std::vector<int> meshes = {4, 8};
  ArchiveFixture f;
  // Both elements read equations 1..48, each of them 1 at its own step.
  std::vector<std::vector<Dof6>> steps(48, std::vector<Dof6>(16, Dof6{}));
  for (int s = 0; s < 48; ++s) steps[s][s / 6][s % 6] = 1.0;
  write_motion(f, steps);
  std::vector<std::array<double, 3>> cord;
  std::vector<PlateHighRecord> recs;
  for (int n : meshes) {
    PlateHighRecord r;
    const double h = 1.0 / n;
    const double sq[8][2] = {{0, 0}, {h, 0}, {h, h}, {0, h}, {h / 2, 0}, {h, h / 2}, {h / 2, h}, {0, h / 2}};
    for (const auto& p : sq) {
      cord.push_back({p[0], p[1], 0.0});
      r.nodes.push_back(static_cast<double>(cord.size()));
    }
    for (int e = 1; e <= 48; ++e) r.lm.push_back(e);
    r.prop = {t, t};
    r.young = kE;
    r.poisson = kNu;
    recs.push_back(r);
  }
  f.writer().node_coordinates(cord);
  f.writer().plate_high_records(3, recs);
  f.write();

  double previous_error = 1.0;
  for (size_t m = 0; m < meshes.size(); ++m) {
    Kernel k;
    std::vector<std::vector<double>> K;
    for (int r = 1; r <= 48; ++r) {
      Request q = f.request(7, r, 48);
      q.serials = {static_cast<int32_t>(m + 1)};
      K.push_back(k.run(q).values);
    }
    double big = 0.0;
    for (const auto& row : K)
      for (double v : row) big = std::max(big, std::fabs(v));
    for (int i = 0; i < 48; ++i)
      for (int j = 0; j < i; ++j) EXPECT_NEAR(K[i][j], K[j][i], 1e-9 * big);

    // The mesh: grid nodes (i, j), 0..2n, without the element centres;
    // freedoms w, rx, ry; w = 0 on the edges, and the rotation along each edge.
    const int n = meshes[m], g = 2 * n + 1;
    std::vector<int> id(g * g * 3, -1);
    int N = 0;
    for (int j = 0; j < g; ++j)
      for (int i = 0; i < g; ++i) {
        if (i % 2 == 1 && j % 2 == 1) continue;
        const bool ex = i == 0 || i == g - 1, ey = j == 0 || j == g - 1;
        const bool fixed[3] = {ex || ey, ex, ey};
        for (int c = 0; c < 3; ++c)
          if (!fixed[c]) id[3 * (j * g + i) + c] = N++;
      }
    std::vector<double> A(static_cast<size_t>(N) * N, 0.0), F(N, 0.0);
    const int off[8][2] = {{0, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 0}, {2, 1}, {1, 2}, {0, 1}};
    const double h = 1.0 / n;
    for (int ey = 0; ey < n; ++ey)
      for (int ex = 0; ex < n; ++ex) {
        int dof[24];
        for (int a = 0; a < 8; ++a) {
          const int node = (2 * ey + off[a][1]) * g + 2 * ex + off[a][0];
          for (int c = 0; c < 3; ++c) dof[3 * a + c] = id[3 * node + c];
          // A quarter of each sub-quadrilateral's load to its corners, the
          // centre's share to the midsides.
          if (dof[3 * a] >= 0) F[dof[3 * a]] += h * h * (a < 4 ? 1.0 : 3.0) / 16;
        }
        for (int a = 0; a < 24; ++a)
          for (int b = 0; b < 24; ++b)
            if (dof[a] >= 0 && dof[b] >= 0)
              A[static_cast<size_t>(dof[a]) * N + dof[b]] += K[6 * (a / 3) + 2 + a % 3][6 * (b / 3) + 2 + b % 3];
      }
    for (int c = 0; c < N; ++c)  // Gauss elimination, symmetric positive definite
      for (int r = c + 1; r < N; ++r) {
        const double fct = A[static_cast<size_t>(r) * N + c] / A[static_cast<size_t>(c) * N + c];
        if (fct == 0.0) continue;
        for (int j = c; j < N; ++j) A[static_cast<size_t>(r) * N + j] -= fct * A[static_cast<size_t>(c) * N + j];
        F[r] -= fct * F[c];
      }
    for (int r = N - 1; r >= 0; --r) {
      for (int j = r + 1; j < N; ++j) F[r] -= A[static_cast<size_t>(r) * N + j] * F[j];
      F[r] /= A[static_cast<size_t>(r) * N + r];
    }
    const double w = F[id[3 * (n * g + n)]], exact = 0.00406235 / D;
    const double error = std::fabs(w - exact) / exact;
    EXPECT_LT(error, previous_error) << n;
    previous_error = error;
    std::printf("mesh %d x %d: w %.6g, thin plate %.6g, error %.3g%%\n", n, n, w, exact, 100 * error);
  }
  EXPECT_LT(previous_error, 0.01);
}

}  // namespace
}  // namespace respcore::testing::plate
