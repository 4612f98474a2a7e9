#include "continuum/material_matrix.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "run/kernel_state.hpp"

namespace respcore {
namespace {

constexpr double kE = 2.0e5;
constexpr double kNu = 0.3;
// By hand: k = E / ((1 + nu)(1 - 2 nu)) = 2e5 / 0.52.
constexpr double kLam = 2.0e5 * 0.3 / 0.52;  // nu k
constexpr double kD11 = 2.0e5 * 0.7 / 0.52;  // (1 - nu) k
constexpr double kG = 2.0e5 / 2.6;           // E / (2 (1 + nu))
constexpr double kPs11 = 2.0e5 / 0.91;       // E / (1 - nu^2)

void isotropic(KernelState& K, double e = kE, double nu = kNu) {
  K.ELEM_MATERIAL.MAT_TYPE = 0;
  K.ELEM_MATERIAL.MAT_YOUNG = e;
  K.ELEM_MATERIAL.MAT_POISSON = nu;
}

// E1 = 1.4e5, E2 = 9.0e4, E3 = 6.0e4, nu12 0.25, nu13 0.2, nu23 0.35,
// G12 4e4, G13 3e4, G23 2.5e4.
void orthotropic(KernelState& K) {
  ElementMaterial& m = K.ELEM_MATERIAL;
  m.MAT_TYPE = 1;
  m.MAT_YOUNG = 1.4e5;
  m.MAT_POISSON = 0.25;
  const double vals[9] = {9.0e4, 0.2, 0.0, 6.0e4, 0.35, 0.0, 4.0e4, 3.0e4, 2.5e4};
  for (int i = 0; i < 9; ++i) m.MAT_VALS[i] = vals[i];
}

// The physical compliance of the orthotropic material above, written out.
void compliance(double S[3][3]) {
  const double E1 = 1.4e5, E2 = 9.0e4, E3 = 6.0e4, n12 = 0.25, n13 = 0.2, n23 = 0.35;
  const double s[3][3] = {{1 / E1, -n12 / E1, -n13 / E1},
                          {-n12 / E1, 1 / E2, -n23 / E2},
                          {-n13 / E1, -n23 / E2, 1 / E3}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) S[i][j] = s[i][j];
}

TEST(MaterialMatrix, IsotropicSolidByHand) {
  KernelState K;
  isotropic(K);
  double d[36];
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(d, 6, 6, "D"));
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      double e = 0.0;
      if (i < 3 && j < 3) e = (i == j) ? kD11 : kLam;
      if (i >= 3 && i == j) e = kG;
      EXPECT_NEAR(d[i + 6 * j], e, 1e-9) << i + 1 << "," << j + 1;
    }
  }
  // Any other material type leaves D as it is.
  K.ELEM_MATERIAL.MAT_TYPE = 2;
  for (double& x : d) x = -3.0;
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(d, 6, 6, "D"));
  for (double x : d) EXPECT_EQ(x, -3.0);
}

// D times the material's compliance is the identity, in the solid and in the
// axisymmetric form; shear entries are the stored moduli.
TEST(MaterialMatrix, OrthotropicTimesComplianceIsIdentity) {
  KernelState K;
  orthotropic(K);
  double S[3][3];
  compliance(S);
  double d6[36], d4[16];
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(d6, 6, 6, "D"));
  STRESS_STRAIN_MATRIX_AXY(K.ELEM_MATERIAL, MatRef<double>(d4, 4, 4, "D"));
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double p6 = 0.0, p4 = 0.0;
      for (int k = 0; k < 3; ++k) {
        p6 += d6[i + 6 * k] * S[k][j];
        p4 += d4[i + 4 * k] * S[k][j];
      }
      EXPECT_NEAR(p6, i == j ? 1.0 : 0.0, 1e-12);
      EXPECT_NEAR(p4, i == j ? 1.0 : 0.0, 1e-12);
    }
  }
  EXPECT_EQ(d6[3 + 6 * 3], 4.0e4);
  EXPECT_EQ(d6[4 + 6 * 4], 3.0e4);
  EXPECT_EQ(d6[5 + 6 * 5], 2.5e4);
  EXPECT_EQ(d4[3 + 4 * 3], 4.0e4);
  for (int i = 0; i < 6; ++i)
    for (int j = 3; j < 6; ++j) {
      if (i != j) {
        EXPECT_EQ(d6[i + 6 * j], 0.0);
      }
    }
}

TEST(MaterialMatrix, PlaneStressAndPlaneStrainByHand) {
  KernelState K;
  isotropic(K, 1.0, 0.1);  // the plane form takes YOUNG and POISSON as passed
  double d[16];
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 0, 4);
  EXPECT_NEAR(d[0], kPs11, 1e-9);
  EXPECT_NEAR(d[5], kPs11, 1e-9);
  EXPECT_NEAR(d[4], 0.3 * kPs11, 1e-9);
  EXPECT_NEAR(d[1], 0.3 * kPs11, 1e-9);
  EXPECT_NEAR(d[10], kG, 1e-9);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(d[i + 12], 0.0);
    EXPECT_EQ(d[3 + 4 * i], 0.0);
  }
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 1, 4);
  EXPECT_NEAR(d[0], kD11, 1e-9);
  EXPECT_NEAR(d[4], kLam, 1e-9);
  EXPECT_NEAR(d[10], kG, 1e-9);

  // Another plane type repeats the values of the previous call.
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 0, 4);
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), 7.0, 0.45, 5, 4);
  EXPECT_NEAR(d[0], kPs11, 1e-9);
  EXPECT_NEAR(d[10], kG, 1e-9);
}

// Axisymmetric: rows xx, yy, xy, hoop. The shear modulus stands third, the
// hoop row couples with the normal rows.
TEST(MaterialMatrix, AxisymmetricPlacement) {
  KernelState K;
  isotropic(K);
  double d[16];
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 2, 4);
  const double expect[4][4] = {
      {kD11, kLam, 0, kLam}, {kLam, kD11, 0, kLam}, {0, 0, kG, 0}, {kLam, kLam, 0, kD11}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      EXPECT_NEAR(d[i + 4 * j], expect[i][j], 1e-9) << i + 1 << "," << j + 1;
}

TEST(MaterialMatrix, SolidAndOtherSizes) {
  KernelState K;
  isotropic(K);
  double d[36], ref[36];
  for (double& x : d) x = 5.0;
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 6, 6, "D"), 1.0, 0.0, 0, 6);
  STRESS_STRAIN_MATRIX(K.diag, K.ELEM_MATERIAL, MatRef<double>(ref, 6, 6, "D"));
  for (int i = 0; i < 36; ++i) EXPECT_EQ(d[i], ref[i]);
  // Any other size: zero.
  for (double& x : d) x = 5.0;
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 3, 3, "D"), kE, kNu, 0, 3);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(d[i], 0.0);
  // The solid path with an unknown material type stays zero.
  K.ELEM_MATERIAL.MAT_TYPE = 4;
  for (double& x : d) x = 5.0;
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 6, 6, "D"), kE, kNu, 0, 6);
  for (int i = 0; i < 36; ++i) EXPECT_EQ(d[i], 0.0);
}

// An orthotropic plane-stress element takes the plate matrix: the inverse of
// the in-plane compliance, and G12 for shear.
TEST(MaterialMatrix, OrthotropicPlaneStress) {
  KernelState K;
  orthotropic(K);
  double d[16];
  CALC_DMATX(K.diag, K.ELEM_MATERIAL, K.continuum, MatRef<double>(d, 4, 4, "D"), kE, kNu, 0, 4);
  const double E1 = 1.4e5, E2 = 9.0e4, n12 = 0.25;
  const double S[2][2] = {{1 / E1, -n12 / E1}, {-n12 / E1, 1 / E2}};
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) {
      const double p = d[i] * S[0][j] + d[i + 4] * S[1][j];
      EXPECT_NEAR(p, i == j ? 1.0 : 0.0, 1e-12);
    }
  EXPECT_EQ(d[10], 4.0e4);
  EXPECT_EQ(d[15], 0.0);
}

}  // namespace
}  // namespace respcore
