// The plate section matrices: the turn of an in-plane stiffness against the
// laminate formulas, the material-to-element rotations, and the matrices of
// an orthotropic section turned into element axes.
#include "plate/constitutive.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;
using M3 = std::array<double, 9>;  // column-major 3x3
using M2 = std::array<double, 4>;

MatRef<double> ref(M3& m, const char* name = "D") { return MatRef<double>(m.data(), 3, 3, name); }
MatRef<double> ref(M2& m, const char* name = "DS") { return MatRef<double>(m.data(), 2, 2, name); }

// The strain transformation from element into material axes at angle theta.
M3 strain_turn(double theta) {
  const double c = std::cos(theta), s = std::sin(theta);
  return {c * c, s * s, -2.0 * c * s, s * s, c * c, 2.0 * c * s, c * s, -c * s, c * c - s * s};
}

// Laminate-theory stiffness of orthotropic Q at angle theta, term by term.
M3 rotated(double q11, double q12, double q22, double q66, double theta) {
  const double c = std::cos(theta), s = std::sin(theta), c2 = c * c, s2 = s * s;
  const double b11 = q11 * c2 * c2 + 2.0 * (q12 + 2.0 * q66) * s2 * c2 + q22 * s2 * s2;
  const double b22 = q11 * s2 * s2 + 2.0 * (q12 + 2.0 * q66) * s2 * c2 + q22 * c2 * c2;
  const double b12 = (q11 + q22 - 4.0 * q66) * s2 * c2 + q12 * (s2 * s2 + c2 * c2);
  const double b66 = (q11 + q22 - 2.0 * q12 - 2.0 * q66) * s2 * c2 + q66 * (s2 * s2 + c2 * c2);
  const double b16 = (q11 - q12 - 2.0 * q66) * s * c * c2 + (q12 - q22 + 2.0 * q66) * s * s2 * c;
  const double b26 = (q11 - q12 - 2.0 * q66) * s * s2 * c + (q12 - q22 + 2.0 * q66) * s * c * c2;
  return {b11, b12, b16, b12, b22, b26, b16, b26, b66};
}
// Transverse shear moduli (xz, yz) of material axes at angle theta.
M2 rotated_shear(double g13, double g23, double theta) {
  const double c = std::cos(theta), s = std::sin(theta);
  return {c * c * g13 + s * s * g23, c * s * (g13 - g23), c * s * (g13 - g23),
          s * s * g13 + c * c * g23};
}

template <class M>
void expect_near(const M& a, const M& b, double rel) {
  double scale = 0.0;
  for (double v : b) scale = std::max(scale, std::fabs(v));
  for (size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], rel * scale) << "entry " << i;
}

TEST(PlateConstitutive, TurnedStiffnessMatchesTheLaminateFormulas) {
  for (double theta : {0.3, -1.1, M_PI / 2.0}) {
    M3 t = strain_turn(theta), d = {140.0, 3.0, 0.0, 3.0, 10.0, 0.0, 0.0, 0.0, 5.0};
    TRANS_D_SKEW(ref(d), ref(t, "T"), 3);
    expect_near(d, rotated(140.0, 3.0, 10.0, 5.0, theta), 1e-14);
  }
  // The rotations from material into element axes: the inverse of the
  // material turn at the section angle, and none without a reason to turn.
  Material m;
  m.orthotropic(100.0, 0.25, 20.0, 8.0, 6.0, 4.0, 1.0, 1.0);
  M2 t2;
  M3 t3;
  int32_t iscale = -1, irot = -1;
  CALC_ROTATION_MATRIX(m.ctx(), iscale, irot, ref(t2, "T2"), ref(t3, "T3"));
  EXPECT_EQ(t3, (M3{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  m.K.plate.SECT_ANGLE = 0.4;
  CALC_ROTATION_MATRIX(m.ctx(), iscale, irot, ref(t2, "T2"), ref(t3, "T3"));
  EXPECT_EQ(irot, 1);
  expect_near(t3, strain_turn(0.4), 1e-15);
  expect_near(t2, M2{std::cos(0.4), -std::sin(0.4), std::sin(0.4), std::cos(0.4)}, 1e-15);
  // An isotropic material in an isotropic section has no reason to turn; a
  // scaled section is rebuilt instead of turned.
  m.isotropic(1.0, 0.2, 1.0, 1.0);
  m.K.plate.SECT_ANGLE = 0.5;
  CHECK_PLATE_DMATRIX_TRANSFORM(m.ctx(), iscale, irot);
  EXPECT_EQ(iscale + irot, 0);
  m.K.plate.SCALE_FLAG = 1;
  CHECK_PLATE_DMATRIX_TRANSFORM(m.ctx(), iscale, irot);
  EXPECT_EQ(iscale * 10 + irot, 10);
}

struct MaterStf {
  M3 d1, d2;
  M2 ds;
  double shearmod = -1.0, d2_mean = -1.0, ds_mean = -1.0;
};
MaterStf mater_stf(Material& m, int32_t mask = 14) {
  MaterStf r;
  PLATE_MATER_STF(m.ctx(), ref(r.d1, "D1"), r.shearmod, ref(r.d2, "D2"), ref(r.ds), r.d2_mean,
                  r.ds_mean, mask);
  return r;
}

// An orthotropic section at an angle: membrane and bending matrices are the
// material's plane-stress matrix turned, the shear moduli turned; the
// reported values are taken before the turn.
TEST(PlateConstitutive, OrthotropicSectionTurnsIntoElementAxes) {
  const double e1 = 1.4e5, nu12 = 0.28, e2 = 9.0e3, g12 = 5.0e3, g13 = 4.0e3, g23 = 3.0e3,
               theta = 0.5;
  Material m;
  m.orthotropic(e1, nu12, e2, g12, g13, g23, 1.0, 1.0);
  m.K.plate.SECT_ANGLE = theta;
  const MaterStf r = mater_stf(m);
  const double den = 1.0 - nu12 * nu12 * e2 / e1, q11 = e1 / den, q22 = e2 / den,
               q12 = nu12 * e2 / den;
  expect_near(r.d1, rotated(q11, q12, q22, g12, theta), 1e-13);
  expect_near(r.d2, r.d1, 0.0);
  expect_near(r.ds, rotated_shear(g13, g23, theta), 1e-14);
  EXPECT_EQ(r.shearmod, g12);
  EXPECT_NEAR(r.d2_mean, (q11 + q22) / 2.0, 1e-9);
  EXPECT_EQ(r.ds_mean, (g13 + g23) / 2.0);
}

}  // namespace
}  // namespace respcore
