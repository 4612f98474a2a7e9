// The material matrices of the solid, axisymmetric, plane and plate
// elements: isotropic ones by hand, orthotropic ones as the inverse of the
// compliance written from the engineering constants.
#include "continuum/material_matrix.hpp"

#include <gtest/gtest.h>

#include "run/kernel_state.hpp"

namespace respcore {
namespace {

constexpr double kE = 2.0e5, kNu = 0.3;
constexpr double kLam = kE * kNu / 0.52, kD11 = kE * 0.7 / 0.52, kG = kE / 2.6, kPs = kE / 0.91;

// E1 1.4e5, E2 9e4, E3 6e4, nu12 0.25, nu13 0.2, nu23 0.35, G12 4e4, G23 3e4,
// G31 2.5e4.
const double kO[3][3] = {{1 / 1.4e5, -0.25 / 1.4e5, -0.2 / 1.4e5},
                         {-0.25 / 1.4e5, 1 / 9.0e4, -0.35 / 9.0e4},
                         {-0.2 / 1.4e5, -0.35 / 9.0e4, 1 / 6.0e4}};
void material(KernelState& K, int type) {
  ElementMaterial& m = K.ELEM_MATERIAL;
  m.MAT_TYPE = type;
  m.MAT_YOUNG = type == 1 ? 1.4e5 : kE;
  m.MAT_POISSON = type == 1 ? 0.25 : kNu;
  const double vals[9] = {9.0e4, 0.2, 0.0, 6.0e4, 0.35, 0.0, 4.0e4, 3.0e4, 2.5e4};
  for (int i = 0; i < 9; ++i) m.MAT_VALS[i] = type == 1 ? vals[i] : 0.0;
}

// D(N x N, leading dimension LD) times compliance C (n x n) is the identity.
void expect_inverse(const double* d, int ld, const double (*c)[3], int n) {
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      double p = 0.0;
      for (int k = 0; k < n; ++k) p += d[i + ld * k] * c[k][j];
      EXPECT_NEAR(p, i == j ? 1.0 : 0.0, 1e-12) << i << j;
    }
}

TEST(MaterialMatrix, SolidAndAxisymmetric) {
  KernelState K;
  material(K, 0);
  double d[36], d4[16];
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(d, 6, 6, "D"));
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 6; ++j)
      EXPECT_NEAR(d[i + 6 * j],
                  i < 3 && j < 3 ? (i == j ? kD11 : kLam)
                  : i == j       ? kG
                                 : 0.0,
                  1e-9)
          << i << j;
  // Axisymmetric, through the element's rows: xx, yy, xy, hoop.
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d4, 4, 4, "D"), kE, kNu, 2, 4);
  const double axy[4][4] = {
      {kD11, kLam, 0, kLam}, {kLam, kD11, 0, kLam}, {0, 0, kG, 0}, {kLam, kLam, 0, kD11}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_NEAR(d4[i + 4 * j], axy[i][j], 1e-9) << i << j;
  material(K, 1);
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(d, 6, 6, "D"));
  STRESS_STRAIN_MATRIX_AXY(K.ELEM_MATERIAL, MatRef<double>(d4, 4, 4, "D"));
  expect_inverse(d, 6, kO, 3);
  expect_inverse(d4, 4, kO, 3);
  EXPECT_EQ(d[21] + d[28] + d[35], 4.0e4 + 3.0e4 + 2.5e4);
  EXPECT_EQ(d4[15], 4.0e4);
}

// Plane stress and plane strain: through the plane elements' routine with
// the moduli passed, and the plate's routine with the material's; plane
// strain is the normal compliance with the third strain held at zero.
TEST(MaterialMatrix, PlaneStressAndPlaneStrain) {
  KernelState K;
  material(K, 0);
  double d[16], p[9];
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 0, 4);
  const double ps[3] = {kPs, kNu * kPs, kG};
  EXPECT_NEAR(d[0], ps[0], 1e-9);
  EXPECT_NEAR(d[4], ps[1], 1e-9);
  EXPECT_NEAR(d[10], ps[2], 1e-9);
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 1, 4);
  EXPECT_NEAR(d[0], kD11, 1e-9);
  EXPECT_NEAR(d[4], kLam, 1e-9);
  K.ELEM_MATERIAL.MAT_VALS[1] = kNu,
  K.ELEM_MATERIAL.MAT_VALS[3] = kE;  // third direction as the others
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0,
                           MatRef<double>(p, 3, 3, "D"));
  EXPECT_NEAR(p[0], ps[0], 1e-9);
  EXPECT_NEAR(p[3], ps[1], 1e-9);
  EXPECT_NEAR(p[8], ps[2], 1e-9);
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 1,
                           MatRef<double>(p, 3, 3, "D"));
  EXPECT_NEAR(p[0], kD11, 1e-9);
  EXPECT_NEAR(p[1], kLam, 1e-9);

  material(K, 1);
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 0, 4);
  expect_inverse(d, 4, kO, 2);
  EXPECT_EQ(d[10], 4.0e4);
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 0,
                           MatRef<double>(p, 3, 3, "D"));
  expect_inverse(p, 3, kO, 2);
  STRESS_STRAIN_MATRIX_PLT(K.ELEM_MATERIAL, K.continuum.compliance, 1,
                           MatRef<double>(p, 3, 3, "D"));
  double strain[3][3] = {};
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) strain[i][j] = kO[i][j] - kO[i][2] * kO[2][j] / kO[2][2];
  expect_inverse(p, 3, strain, 2);
}

}  // namespace
}  // namespace respcore
