// High-order plates (ELEM_TYPE 7) through whole requests: constant fields at
// all points, rigid motion and no forces, the same rows under the general
// product tag (their stiffness: plate_solution_test).
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

}  // namespace
}  // namespace respcore::testing::plate
