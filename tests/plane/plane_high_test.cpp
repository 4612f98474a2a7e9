// Six- and eight-node plane elements: unit displacements give a symmetric
// stiffness that rigid motion does not load, and the element routine's stress
// rows at the centre give D eps of a linear field.
#include "plane/plane_high_matrices.hpp"
#include "plane_support.hpp"
#include "run/kernel_state.hpp"

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
  const auto K = rows_of(k, m.request(family, 1, 6 * nn), 3 * nn);  // K[row][equation]
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

TEST(PlaneHighMatrices, CentreStressRowsGiveDEps) {
  for (const int nn : {6, 8}) {
    KernelState K;
    ContinuumParts C{K.diag, K.ELEM_MATERIAL, K.continuum, K.plane, K.plate};
    C.material.MAT_YOUNG = 2.0e5, C.material.MAT_POISSON = 0.3;
    const M3 Q = turn(0.3, 0.6);
    Mat<double> XYZ("XYZ", 3, 8), STR("STR", 60, 16), TRAN("TRAN", 3, 3);
    const auto xy = local_nodes(nn);
    for (int i = 0; i < 3 * nn; ++i)
      XYZ(i % 3 + 1, i / 3 + 1) = mul(Q, {xy[i / 3][0], xy[i / 3][1], 0})[i % 3];
    for (int i = 0; i < 9; ++i) TRAN(i / 3 + 1, i % 3 + 1) = Q[i % 3][i / 3];
    PLANE_QUAD8_STR_BUB(C, 1, STR.ref(), nn, XYZ.ref(), TRAN.ref());
    const V3 e = {1e-3, -4e-4, 6e-4}, sg = stress_of(Material{}, e, 0);
    for (int i = 1; i <= 3; ++i) {
      double v = 0.0;  // at u = (ex x + gxy y / 2, gxy x / 2 + ey y)
      for (int n = 0; n < nn; ++n)
        v += STR(24 + i, 2 * n + 1) * (e[0] * xy[n][0] + e[2] * xy[n][1] / 2) +
             STR(24 + i, 2 * n + 2) * (e[2] * xy[n][0] / 2 + e[1] * xy[n][1]);
      EXPECT_NEAR(v, sg[i - 1], 1e-9) << nn;
    }
  }
}

}  // namespace
}  // namespace respcore::testing::plane
