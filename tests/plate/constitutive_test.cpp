#include "plate/constitutive.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "run/kernel_state.hpp"

namespace respcore {
namespace {

PlateContext plate_context(KernelState& K) {
  return {K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance};
}

using M3 = std::array<double, 9>;  // column-major 3x3
using M2 = std::array<double, 4>;

MatRef<double> ref(M3& m, const char* name = "D") { return MatRef<double>(m.data(), 3, 3, name); }
MatRef<double> ref(M2& m, const char* name = "DS") { return MatRef<double>(m.data(), 2, 2, name); }
double at(const M3& m, int i, int j) { return m[static_cast<size_t>((i - 1) + 3 * (j - 1))]; }
double at(const M2& m, int i, int j) { return m[static_cast<size_t>((i - 1) + 2 * (j - 1))]; }

M3 mul(const M3& a, const M3& b) {
  M3 c{};
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) {
      double s = 0.0;
      for (int k = 1; k <= 3; ++k) s += at(a, i, k) * at(b, k, j);
      c[static_cast<size_t>((i - 1) + 3 * (j - 1))] = s;
    }
  return c;
}

void expect_identity(const M3& m, double tol) {
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) EXPECT_NEAR(at(m, i, j), i == j ? 1.0 : 0.0, tol) << i << "," << j;
}

void set_isotropic(KernelState& K, double e, double nu) {
  K.ELEM_MATERIAL = ElementMaterial{};
  K.ELEM_MATERIAL.MAT_YOUNG = e;
  K.ELEM_MATERIAL.MAT_POISSON = nu;
  K.ELEM_MATERIAL.MAT_TYPE = 0;
}

// E1, NU12, E2, NU13, E3, NU23, G12, G13, G23.
void set_orthotropic(KernelState& K, double e1, double nu12, double e2, double nu13, double e3,
                     double nu23, double g12, double g13, double g23) {
  K.ELEM_MATERIAL = ElementMaterial{};
  K.ELEM_MATERIAL.MAT_YOUNG = e1;
  K.ELEM_MATERIAL.MAT_POISSON = nu12;
  K.ELEM_MATERIAL.MAT_TYPE = 1;
  double* v = K.ELEM_MATERIAL.MAT_VALS;
  v[0] = e2;
  v[1] = nu13;
  v[3] = e3;
  v[4] = nu23;
  v[6] = g12;
  v[7] = g13;
  v[8] = g23;
}

// Laminate-theory rotation of an orthotropic in-plane stiffness whose
// material axis 1 lies at angle theta from the element x axis (engineering
// shear strain), written out term by term.
M3 rotated_stiffness(double q11, double q12, double q22, double q66, double theta) {
  const double c = std::cos(theta), s = std::sin(theta);
  const double c2 = c * c, s2 = s * s, c4 = c2 * c2, s4 = s2 * s2;
  M3 r{};
  auto put = [&](int i, int j, double v) { r[static_cast<size_t>((i - 1) + 3 * (j - 1))] = v; };
  const double b11 = q11 * c4 + 2.0 * (q12 + 2.0 * q66) * s2 * c2 + q22 * s4;
  const double b22 = q11 * s4 + 2.0 * (q12 + 2.0 * q66) * s2 * c2 + q22 * c4;
  const double b12 = (q11 + q22 - 4.0 * q66) * s2 * c2 + q12 * (s4 + c4);
  const double b66 = (q11 + q22 - 2.0 * q12 - 2.0 * q66) * s2 * c2 + q66 * (s4 + c4);
  const double b16 = (q11 - q12 - 2.0 * q66) * s * c * c2 + (q12 - q22 + 2.0 * q66) * s * s2 * c;
  const double b26 = (q11 - q12 - 2.0 * q66) * s * s2 * c + (q12 - q22 + 2.0 * q66) * s * c * c2;
  put(1, 1, b11);
  put(2, 2, b22);
  put(1, 2, b12);
  put(2, 1, b12);
  put(3, 3, b66);
  put(1, 3, b16);
  put(3, 1, b16);
  put(2, 3, b26);
  put(3, 2, b26);
  return r;
}

// Transverse shear moduli (xz, yz) of material axes at angle theta.
M2 rotated_shear(double g13, double g23, double theta) {
  const double c = std::cos(theta), s = std::sin(theta);
  return {c * c * g13 + s * s * g23, c * s * (g13 - g23), c * s * (g13 - g23),
          s * s * g13 + c * c * g23};
}

void expect_near(const M3& a, const M3& b, double rel) {
  double scale = 0.0;
  for (double v : b) scale = std::max(scale, std::fabs(v));
  for (size_t i = 0; i < 9; ++i) EXPECT_NEAR(a[i], b[i], rel * scale) << "entry " << i;
}

TEST(MaterialMatrix, IsotropicPlaneStressByHand) {
  KernelState K;
  set_isotropic(K, 2.0E5, 0.3);
  M3 d;
  d.fill(-1.0);
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0, ref(d));
  const double d11 = 2.0E5 / (1.0 - 0.09);
  EXPECT_DOUBLE_EQ(at(d, 1, 1), d11);
  EXPECT_DOUBLE_EQ(at(d, 2, 2), d11);
  EXPECT_DOUBLE_EQ(at(d, 1, 2), 0.3 * d11);
  EXPECT_DOUBLE_EQ(at(d, 2, 1), 0.3 * d11);
  EXPECT_DOUBLE_EQ(at(d, 3, 3), 2.0E5 / 2.6);
  for (int k = 1; k <= 2; ++k) {
    EXPECT_EQ(at(d, k, 3), 0.0);
    EXPECT_EQ(at(d, 3, k), 0.0);
  }
}

TEST(MaterialMatrix, IsotropicPlaneStrainFollowsTheStoredThirdDirection) {
  const double e = 2.0E5, nu = 0.3;
  KernelState K;
  // Stored third-direction values that agree with isotropy: the textbook
  // plane-strain matrix.
  set_isotropic(K, e, nu);
  K.ELEM_MATERIAL.MAT_VALS[1] = nu;  // NU13
  K.ELEM_MATERIAL.MAT_VALS[3] = e;   // E3
  M3 d{};
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 1, ref(d));
  const double k = e / ((1.0 + nu) * (1.0 - 2.0 * nu));
  EXPECT_NEAR(at(d, 1, 1), (1.0 - nu) * k, 1e-9);
  EXPECT_NEAR(at(d, 1, 2), nu * k, 1e-9);
  EXPECT_NEAR(at(d, 2, 1), nu * k, 1e-9);
  EXPECT_NEAR(at(d, 2, 2), (1.0 - nu) * k, 1e-9);
  EXPECT_DOUBLE_EQ(at(d, 3, 3), e / 2.6);

  // Nothing stored for the third direction: NU31 is 0 while every other
  // ratio is NU12, which gives S11 = 1/E, S12 = -nu/E, S21 = -(nu^2+nu)/E,
  // S22 = (1-nu^2)/E and a non-symmetric matrix.
  KernelState Q;
  set_isotropic(Q, e, nu);
  STRESS_STRAIN_MATRIX_PLT(Q.ELEM_MATERIAL, Q.continuum.compliance, 1, ref(d));
  const double den = 1.0 - 2.0 * nu * nu - nu * nu * nu;  // 0.793
  EXPECT_NEAR(at(d, 1, 1), (1.0 - nu * nu) * e / den, 1e-9);
  EXPECT_NEAR(at(d, 1, 2), nu * e / den, 1e-9);
  EXPECT_NEAR(at(d, 2, 1), (nu + nu * nu) * e / den, 1e-9);
  EXPECT_NEAR(at(d, 2, 2), e / den, 1e-9);
}

TEST(MaterialMatrix, OrthotropicTimesComplianceIsIdentity) {
  const double e1 = 1.4E5, nu12 = 0.28, e2 = 9.0E3, nu13 = 0.3, e3 = 8.0E3, nu23 = 0.45;
  const double g12 = 5.0E3;
  KernelState K;
  set_orthotropic(K, e1, nu12, e2, nu13, e3, nu23, g12, 4.0E3, 3.0E3);

  M3 d{};
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0, ref(d));
  const M3 c = {1.0 / e1, -nu12 / e1, 0.0, -nu12 / e1, 1.0 / e2, 0.0, 0.0, 0.0, 1.0 / g12};
  expect_identity(mul(d, c), 1e-13);
  expect_identity(mul(c, d), 1e-13);

  // Plane strain: the normal compliance with the third strain held at zero,
  // S_ij - S_i3 S_3j / S_33.
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 1, ref(d));
  const double s[3][3] = {{1.0 / e1, -nu12 / e1, -nu13 / e1},
                          {-nu12 / e1, 1.0 / e2, -nu23 / e2},
                          {-nu13 / e1, -nu23 / e2, 1.0 / e3}};
  M3 cr{};
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j)
      cr[static_cast<size_t>(i + 3 * j)] = s[i][j] - s[i][2] * s[2][j] / s[2][2];
  cr[8] = 1.0 / g12;
  expect_identity(mul(d, cr), 1e-12);
}

TEST(MaterialMatrix, NonPositiveModulusReusesThePreviousElementsValues) {
  KernelState K;
  set_isotropic(K, 2.0E5, 0.3);
  M3 first{}, second{};
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0, ref(first));
  set_isotropic(K, 0.0, 0.3);
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0, ref(second));
  for (int i = 1; i <= 2; ++i)
    for (int j = 1; j <= 2; ++j) EXPECT_EQ(at(second, i, j), at(first, i, j));
  EXPECT_EQ(at(second, 3, 3), 0.0);

  // A fresh kernel has nothing to reuse: the determinant is zero and only
  // the shear term is set.
  KernelState F;
  set_orthotropic(F, 0.0, 0.3, 0.0, 0.0, 0.0, 0.0, 7.0, 0.0, 0.0);
  STRESS_STRAIN_MATRIX_PLT(F.ELEM_MATERIAL, F.continuum.compliance, 0, ref(second));
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) EXPECT_EQ(at(second, i, j), (i == 3 && j == 3) ? 7.0 : 0.0);
}

TEST(Rotation, SkewTransformMatchesLaminateFormulas) {
  const double q11 = 140.0, q12 = 3.0, q22 = 10.0, q66 = 5.0;
  for (double theta : {0.3, -1.1, M_PI / 2.0}) {
    const double c = std::cos(theta), s = std::sin(theta);
    // Strain transformation from element into material axes.
    M3 t = {c * c, s * s, -2.0 * c * s, s * s, c * c, 2.0 * c * s, c * s, -c * s, c * c - s * s};
    M3 d = {q11, q12, 0.0, q12, q22, 0.0, 0.0, 0.0, q66};
    TRANS_D_SKEW(ref(d), ref(t, "T"), 3);
    expect_near(d, rotated_stiffness(q11, q12, q22, q66, theta), 1e-14);
  }
  // A quarter turn swaps the two directions.
  M3 d = {140.0, 3.0, 0.0, 3.0, 10.0, 0.0, 0.0, 0.0, 5.0};
  M3 t = {0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, -1.0};
  TRANS_D_SKEW(ref(d), ref(t, "T"), 3);
  EXPECT_EQ(at(d, 1, 1), 10.0);
  EXPECT_EQ(at(d, 2, 2), 140.0);
}

TEST(Rotation, TransformFlagsAreExclusive) {
  KernelState K;
  int32_t iscale = -1, irot = -1;
  set_isotropic(K, 1.0, 0.2);
  K.plate.SECT_ANGLE = 0.5;
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(iscale, 0);
  EXPECT_EQ(irot, 0);  // isotropic material, isotropic section
  EXPECT_EQ(K.plate.SECT_ANGLE_COPY, 0.5);

  K.plate.SECT_ORTHO = 1;
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(irot, 1);
  K.plate.SECT_ORTHO = 0;
  K.ELEM_MATERIAL.MAT_TYPE = 2;  // orthotropic elsewhere, but this test wants exactly 1
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(irot, 0);
  K.ELEM_MATERIAL.MAT_TYPE = 1;
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(irot, 1);
  K.plate.SECT_ANGLE = 0.0;
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(irot, 0);  // no angle, no rotation

  K.plate.SECT_ANGLE = -0.5;
  K.plate.SCALE_FLAG = 1;
  CHECK_PLATE_DMATRIX_TRANSFORM(plate_context(K), iscale, irot);
  EXPECT_EQ(iscale, 1);
  EXPECT_EQ(irot, 0);
  EXPECT_EQ(K.plate.SECT_ANGLE_COPY, -0.5);
}

TEST(Rotation, RotationMatricesInvertTheMaterialTransform) {
  KernelState K;
  set_orthotropic(K, 100.0, 0.25, 20.0, 0.25, 20.0, 0.3, 8.0, 6.0, 4.0);
  M2 t2;
  M3 t3;
  t2.fill(9.0);
  t3.fill(9.0);
  int32_t iscale = -1, irot = -1;
  CALC_ROTATION_MATRIX(plate_context(K), iscale, irot, ref(t2, "T2"), ref(t3, "T3"));
  EXPECT_EQ(irot, 0);
  EXPECT_EQ(t3, (M3{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_EQ(t2, (M2{1, 0, 0, 1}));

  const double theta = 0.4;
  K.plate.SECT_ANGLE = theta;
  CALC_ROTATION_MATRIX(plate_context(K), iscale, irot, ref(t2, "T2"), ref(t3, "T3"));
  EXPECT_EQ(irot, 1);
  // Element strains into material axes at +theta.
  const double c = std::cos(theta), s = std::sin(theta);
  const M3 expected = {c * c,     s * s, -2 * c * s, s * s,        c * c,
                       2 * c * s, c * s, -c * s,     c * c - s * s};
  for (size_t i = 0; i < 9; ++i) EXPECT_NEAR(t3[i], expected[i], 1e-15);
  EXPECT_NEAR(t2[0], c, 1e-15);
  EXPECT_NEAR(t2[1], -s, 1e-15);
  EXPECT_NEAR(t2[2], s, 1e-15);
  EXPECT_NEAR(t2[3], c, 1e-15);
  EXPECT_TRUE(K.diag.messages.empty());
}

void set_factors(KernelState& K, std::array<double, 8> f) {
  K.plate.SCALE_FLAG = 1;
  for (int i = 0; i < 8; ++i) K.plate.SCALE_FACTOR[i] = f[static_cast<size_t>(i)];
}

TEST(StiffnessScale, NothingHappensWithoutScaleFlag) {
  KernelState K;
  M3 dd;
  dd.fill(4.5);
  M3 t = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 100.0, 40.0, 0.25, 0, ref(t, "T"),
                        ref(dd, "DD"), 1, 0);
  for (double v : dd) EXPECT_EQ(v, 4.5);
}

TEST(StiffnessScale, PositivePairKeepsTheStifferRatioAndSymmetry) {
  const double e = 1000.0, nu = 0.3, g = 400.0;
  M3 t = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (bool x_stiffer : {true, false}) {
    KernelState K;
    const double fx = x_stiffer ? 2.0 : 0.5, fy = x_stiffer ? 0.5 : 2.0;
    set_factors(K, {fx, fy, 3.0, 0, 0, 0, 0, 0});
    M3 dd{};
    PLATE_STIFF_SCALE_MOD(plate_context(K), 3, e, e, g, nu, 0, ref(t, "T"), ref(dd, "DD"), 1, 0);
    const double ex = e * fx, ey = e * fy;
    // The stiffer direction keeps nu as its major ratio.
    const double coupling = x_stiffer ? -nu / ex : -nu / ey;
    const M3 c = {1.0 / ex, coupling, 0.0, coupling, 1.0 / ey, 0.0, 0.0, 0.0, 1.0 / (3.0 * g)};
    expect_identity(mul(dd, c), 1e-14);
    EXPECT_DOUBLE_EQ(at(dd, 1, 2), at(dd, 2, 1));
    EXPECT_EQ(at(dd, 3, 3), 3.0 * g);
  }
}

TEST(StiffnessScale, ZeroOrNegativeFactorDropsCouplingAndShear) {
  KernelState K;
  set_factors(K, {0.0, 2.0, 3.0, -1.0, 2.0, 3.0, 0, 0});
  M3 t = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  M3 dd;
  dd.fill(1.0);
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 50.0, 30.0, 0.3, 0, ref(t, "T"), ref(dd, "DD"),
                        1, 0);
  EXPECT_EQ(dd, (M3{0.0, 0, 0, 0, 100.0, 0, 0, 0, 0.0}));
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 50.0, 30.0, 0.3, 0, ref(t, "T"), ref(dd, "DD"),
                        2, 0);
  EXPECT_EQ(dd, (M3{-100.0, 0, 0, 0, 100.0, 0, 0, 0, 0.0}));
}

TEST(StiffnessScale, ShearUsesTheFirstModulusForBothDirections) {
  KernelState K;
  set_factors(K, {0, 0, 0, 0, 0, 0, 2.0, 3.0});
  M2 t = {1, 0, 0, 1};
  M2 ds{};
  PLATE_STIFF_SCALE_MOD(plate_context(K), 2, 10.0, 99.0, 0.0, 0.0, 0, ref(t, "T"), ref(ds), 3, 0);
  EXPECT_EQ(ds, (M2{20.0, 0.0, 0.0, 30.0}));
}

TEST(StiffnessScale, UnknownTypeReusesTheLastFactorRow) {
  KernelState K;
  set_factors(K, {1.0, 1.0, 1.0, 2.0, 4.0, 0.5, 0, 0});
  M3 t = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  M3 bending{}, again{}, beyond{};
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 100.0, 40.0, 0.2, 0, ref(t, "T"),
                        ref(bending, "DD"), 2, 0);
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 100.0, 40.0, 0.2, 0, ref(t, "T"),
                        ref(again, "DD"), 0, 0);
  EXPECT_EQ(again, bending);
  EXPECT_EQ(at(bending, 3, 3), 20.0);
  beyond.fill(1.0);
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 100.0, 100.0, 40.0, 0.2, 0, ref(t, "T"),
                        ref(beyond, "DD"), 4, 0);
  for (double v : beyond) EXPECT_EQ(v, 0.0);
}

TEST(StiffnessScale, MaterialConstantsAndRotation) {
  KernelState K;
  set_isotropic(K, 1000.0, 0.25);
  set_factors(K, {1.0, 1.0, 1.0, 0, 0, 0, 0, 0});
  const double theta = 0.7;
  const double c = std::cos(theta), s = std::sin(theta);
  M3 t = {c * c, s * s, -2.0 * c * s, s * s, c * c, 2.0 * c * s, c * s, -c * s, c * c - s * s};
  M3 dd{};
  // Unit factors on isotropic material give the isotropic plane-stress
  // matrix, which no rotation changes.
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 0.0, 0.0, 0.0, 0.0, 1, ref(t, "T"), ref(dd, "DD"), 1,
                        1);
  const double d11 = 1000.0 / (1.0 - 0.0625);
  const M3 iso = {d11, 0.25 * d11, 0, 0.25 * d11, d11, 0, 0, 0, 1000.0 / 2.5};
  expect_near(dd, iso, 1e-14);

  // With a stiff x direction the rotation acts.
  set_factors(K, {4.0, 1.0, 1.0, 0, 0, 0, 0, 0});
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 0.0, 0.0, 0.0, 0.0, 1, ref(t, "T"), ref(dd, "DD"), 1,
                        1);
  M3 bare{};
  PLATE_STIFF_SCALE_MOD(plate_context(K), 3, 0.0, 0.0, 0.0, 0.0, 1, ref(t, "T"), ref(bare, "DD"), 1,
                        0);
  expect_near(
      dd, rotated_stiffness(at(bare, 1, 1), at(bare, 1, 2), at(bare, 2, 2), at(bare, 3, 3), theta),
      1e-14);
}

TEST(StiffnessScale, OlderFormScalesInPlace) {
  KernelState K;
  set_factors(K, {2.0, 4.0, 0.5, 1.0, 1.0, 1.0, 3.0, 5.0});
  M3 d = {10.0, 1.0, 7.0, 1.0, 20.0, 7.0, 7.0, 7.0, 8.0};
  PLATE_STIFF_SCALE(plate_context(K), ref(d), 3, 1);
  EXPECT_EQ(d, (M3{20.0, 3.0, 0.0, 3.0, 80.0, 0.0, 0.0, 0.0, 4.0}));
  M2 ds = {6.0, 1.0, 1.0, 2.0};
  PLATE_STIFF_SCALE(plate_context(K), ref(ds), 2, 3);
  EXPECT_EQ(ds, (M2{18.0, 0.0, 0.0, 10.0}));
}

struct MaterStf {
  M3 d1, d2;
  M2 ds;
  double shearmod = -1.0, d2_mean = -1.0, ds_mean = -1.0;
};

MaterStf mater_stf(KernelState& K, int32_t mask) {
  MaterStf r;
  r.d1.fill(-7.0);
  r.d2.fill(-7.0);
  r.ds.fill(-7.0);
  PLATE_MATER_STF(plate_context(K), ref(r.d1, "D1"), r.shearmod, ref(r.d2, "D2"), ref(r.ds),
                  r.d2_mean, r.ds_mean, mask);
  return r;
}

TEST(PlateMaterial, BareIsotropicMatrices) {
  KernelState K;
  set_isotropic(K, 2.0E5, 0.3);
  K.plate.SCALE_FLAG = 2;  // anything but 1 means unscaled
  const MaterStf r = mater_stf(K, 2 | 4 | 8);
  const double d11 = 2.0E5 / 0.91, g = 2.0E5 / 2.6;
  const M3 iso = {d11, 0.3 * d11, 0, 0.3 * d11, d11, 0, 0, 0, g};
  expect_near(r.d1, iso, 1e-15);
  expect_near(r.d2, iso, 1e-15);
  EXPECT_NEAR(at(r.ds, 1, 1), g, 1e-10);
  EXPECT_NEAR(at(r.ds, 2, 2), g, 1e-10);
  EXPECT_EQ(at(r.ds, 1, 2), 0.0);
  EXPECT_NEAR(r.shearmod, g, 1e-10);
  EXPECT_NEAR(r.d2_mean, d11, 1e-9);
  EXPECT_NEAR(r.ds_mean, g, 1e-10);
}

TEST(PlateMaterial, MaskSelectsAndEverythingIsZeroedFirst) {
  KernelState K;
  set_isotropic(K, 100.0, 0.0);
  const MaterStf r = mater_stf(K, 2);
  EXPECT_EQ(r.d1, (M3{100.0, 0, 0, 0, 100.0, 0, 0, 0, 50.0}));
  for (double v : r.d2) EXPECT_EQ(v, 0.0);
  for (double v : r.ds) EXPECT_EQ(v, 0.0);
  EXPECT_EQ(r.d2_mean, -1.0);
  EXPECT_EQ(r.ds_mean, -1.0);
}

TEST(PlateMaterial, OrthotropicAtAnAngleIsRotatedIntoElementAxes) {
  const double e1 = 1.4E5, nu12 = 0.28, e2 = 9.0E3, g12 = 5.0E3, g13 = 4.0E3, g23 = 3.0E3;
  KernelState K;
  set_orthotropic(K, e1, nu12, e2, 0.3, 8.0E3, 0.45, g12, g13, g23);
  const MaterStf flat = mater_stf(K, 14);  // angle 0: no rotation
  M3 d{};
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0, ref(d));
  EXPECT_EQ(flat.d1, d);
  EXPECT_EQ(flat.ds, (M2{g13, 0.0, 0.0, g23}));

  const double theta = 0.5;
  K.plate.SECT_ANGLE = theta;
  const MaterStf r = mater_stf(K, 14);
  const M3 expected = rotated_stiffness(at(d, 1, 1), at(d, 1, 2), at(d, 2, 2), at(d, 3, 3), theta);
  expect_near(r.d1, expected, 1e-14);
  expect_near(r.d2, expected, 1e-14);
  const M2 shear = rotated_shear(g13, g23, theta);
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(r.ds[i], shear[i], 1e-11);
  // The reported values are taken before the rotation.
  EXPECT_EQ(r.shearmod, g12);
  EXPECT_EQ(r.d2_mean, (at(d, 1, 1) + at(d, 2, 2)) / 2.0);
  EXPECT_EQ(r.ds_mean, (g13 + g23) / 2.0);
}

TEST(PlateMaterial, ScaledSectionIsRebuiltThenRotated) {
  const double e = 1000.0, nu = 0.25, g13 = 300.0, g23 = 200.0;
  KernelState K;
  set_orthotropic(K, e, nu, e, nu, e, nu, 350.0, g13, g23);
  set_factors(K, {2.0, 1.0, 1.5, 1.0, 1.0, 1.0, 0.5, 2.0});
  const double theta = 0.3;
  K.plate.SECT_ANGLE = theta;
  const MaterStf r = mater_stf(K, 14);

  // Membrane: no Poisson coupling, shear modulus E/2 times its factor.
  expect_near(r.d1, rotated_stiffness(2.0 * e, 0.0, e, 0.5 * e * 1.5, theta), 1e-14);
  EXPECT_EQ(r.shearmod, 0.5 * e * 1.5);
  // Bending: unit factors with the material's Poisson ratio and G = E/2.
  const double d11 = e / (1.0 - nu * nu);
  expect_near(r.d2, rotated_stiffness(d11, nu * d11, d11, 0.5 * e, theta), 1e-14);
  EXPECT_DOUBLE_EQ(r.d2_mean, d11);
  // Shear: both directions are scaled from the first modulus (G13).
  const M2 shear = rotated_shear(0.5 * g13, 2.0 * g13, theta);
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(r.ds[i], shear[i], 1e-12);
  EXPECT_EQ(r.ds_mean, (0.5 * g13 + 2.0 * g13) / 2.0);
}

}  // namespace
}  // namespace respcore
