// Six- and eight-node plane elements: unit displacements give a symmetric
// stiffness that rigid motion does not load.
#include "plane_support.hpp"

namespace respcore::testing::plane {
namespace {

class HighShapes : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(HighShapes, UnitDisplacementsGiveASymmetricStiffnessThatRigidMotionDoesNotLoad) {
  const auto [family, nn] = GetParam();
  const Material mt;
  PlaneModel m;
  m.place(nn, turn(0.4, 0.9));
  m.a.writer().plane_high_records(family == 5 ? sections::PSTH : sections::PSRH, 3,
                                  {m.high_record(mt)});
  m.write([](int e, int s) { return e == s ? 1.0 : 0.0; }, 6 * nn);  // step j: equation j moves
  Kernel k;
  const auto K = history_rows(k, m.request(family, 1, 6 * nn), 3 * nn);  // K[row][equation]
  const double tol = 1e-10 * mt.E * mt.t;
  for (size_t a = 0; a < 3 * size_t(nn); ++a)
    for (size_t b = 0; b < 6 * size_t(nn); ++b) {
      // Symmetric on the translations; the rotations do not enter.
      if (b % 6 < 3)
        EXPECT_NEAR(K[a][b], K[3 * (b / 6) + b % 6][6 * (a / 3) + a % 3], tol);
      else
        EXPECT_EQ(K[a][b], 0.0);
    }
  for (int mode = 0; mode < 6; ++mode) {  // three translations, three rotations
    V3 v{};
    v[mode % 3] = 1.0;
    const Field rot = rigid(v);
    for (size_t a = 0; a < K.size(); ++a) {
      double f = 0.0;
      for (size_t q = 0; q < 6 * size_t(nn); ++q)
        f += K[a][q] * (mode < 3 ? (q % 6 < 3 ? v[q % 6] : 0.0) : rot(m.nodes[q / 6], 1)[q % 6]);
      EXPECT_NEAR(f, 0.0, 10 * tol) << "rigid mode " << mode << " row " << a + 1;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Plane, HighShapes,
                         ::testing::Combine(::testing::Values(5, 6), ::testing::Values(6, 8)));

}  // namespace
}  // namespace respcore::testing::plane
