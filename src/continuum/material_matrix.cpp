#include "continuum/material_matrix.hpp"

#include "core/kernel_state.hpp"
#include "numeric/dense.hpp"
#include "plate/constitutive.hpp"

namespace respcore {

namespace {

// Orthotropic compliance of the normal components, as stored: the upper
// off-diagonals are formed from the lower ratios through the moduli.
void orthotropic_compliance(const ElementMaterial& m, double C[3][3]) {
  const double E1 = m.MAT_YOUNG;
  const double E2 = m.MAT_VALS[0];
  const double E3 = m.MAT_VALS[3];
  const double NU12 = m.MAT_POISSON;
  const double NU13 = m.MAT_VALS[1];
  const double NU23 = m.MAT_VALS[4];
  C[0][0] = 1.0 / E1;
  C[1][1] = 1.0 / E2;
  C[2][2] = 1.0 / E3;
  C[1][0] = -NU12 / E1;
  C[2][0] = -NU13 / E1;
  C[2][1] = -NU23 / E2;
  C[0][1] = -(E2 / E1) * NU12 / E2;
  C[0][2] = -(E3 / E1) * NU13 / E3;
  C[1][2] = -(E3 / E2) * NU23 / E3;
}

// Isotropic normal block and shear modulus of the current material.
void isotropic_3d(const ElementMaterial& m, double& d11, double& d12, double& g) {
  const double E = m.MAT_YOUNG;
  const double nu = m.MAT_POISSON;
  const double k = E / ((1.0 + nu) * (1.0 - 2.0 * nu));
  d11 = (1.0 - nu) * k;
  d12 = nu * k;
  g = k * (1.0 - 2.0 * nu) / 2.0;
}

}  // namespace

void STRESS_STRAIN_MATRIX(KernelState& K, MatRef<double> D6_arg) {
  const ElementMaterial& m = K.ELEM_MATERIAL;
  if (m.MAT_TYPE != 0 && m.MAT_TYPE != 1) return;
  MatRef<double> D = as_shape(D6_arg, 6, 6);
  for (int32_t j = 1; j <= 6; ++j)
    for (int32_t i = 1; i <= 6; ++i) D(i, j) = 0.0;

  if (m.MAT_TYPE == 0) {
    double d11, d12, g;
    isotropic_3d(m, d11, d12, g);
    for (int32_t i = 1; i <= 3; ++i)
      for (int32_t j = 1; j <= 3; ++j) D(i, j) = (i == j) ? d11 : d12;
    for (int32_t i = 4; i <= 6; ++i) D(i, i) = g;
    return;
  }

  double c[3][3];
  orthotropic_compliance(m, c);
  double cm[9], ci[9];
  MatRef<double> C(cm, 3, 3, "C");
  MatRef<double> CI(ci, 3, 3, "D");
  for (int32_t j = 1; j <= 3; ++j)
    for (int32_t i = 1; i <= 3; ++i) C(i, j) = c[i - 1][j - 1];
  INVERSE(K, C, CI, 3);
  for (int32_t j = 1; j <= 3; ++j)
    for (int32_t i = 1; i <= 3; ++i) D(i, j) = CI(i, j);
  D(4, 4) = m.MAT_VALS[6];
  D(5, 5) = m.MAT_VALS[7];
  D(6, 6) = m.MAT_VALS[8];
}

void STRESS_STRAIN_MATRIX_AXY(KernelState& K, MatRef<double> D4_arg) {
  const ElementMaterial& m = K.ELEM_MATERIAL;
  MatRef<double> D = as_shape(D4_arg, 4, 4);
  for (int32_t j = 1; j <= 4; ++j)
    for (int32_t i = 1; i <= 4; ++i) D(i, j) = 0.0;

  if (m.MAT_TYPE != 1) {
    const double E = m.MAT_YOUNG;
    const double nu = m.MAT_POISSON;
    const double k = E / ((1.0 + nu) * (1.0 - 2.0 * nu));
    for (int32_t i = 1; i <= 3; ++i)
      for (int32_t j = 1; j <= 3; ++j) D(i, j) = (i == j) ? (1.0 - nu) * k : nu * k;
    D(4, 4) = 0.5 * k * (1.0 - 2.0 * nu);
    return;
  }

  double c[3][3];
  orthotropic_compliance(m, c);
  const double det = c[0][0] * (c[1][1] * c[2][2] - c[1][2] * c[2][1]) -
                     c[0][1] * (c[1][0] * c[2][2] - c[1][2] * c[2][0]) +
                     c[0][2] * (c[1][0] * c[2][1] - c[1][1] * c[2][0]);
  D(1, 1) = (c[1][1] * c[2][2] - c[1][2] * c[2][1]) / det;
  D(1, 2) = -(c[0][1] * c[2][2] - c[0][2] * c[2][1]) / det;
  D(1, 3) = (c[0][1] * c[1][2] - c[0][2] * c[1][1]) / det;
  D(2, 1) = -(c[1][0] * c[2][2] - c[1][2] * c[2][0]) / det;
  D(2, 2) = (c[0][0] * c[2][2] - c[0][2] * c[2][0]) / det;
  D(2, 3) = -(c[0][0] * c[1][2] - c[0][2] * c[1][0]) / det;
  D(3, 1) = (c[1][0] * c[2][1] - c[1][1] * c[2][0]) / det;
  D(3, 2) = -(c[0][0] * c[2][1] - c[0][1] * c[2][0]) / det;
  D(3, 3) = (c[0][0] * c[1][1] - c[0][1] * c[1][0]) / det;
  D(4, 4) = m.MAT_VALS[6];
}

void CALC_DMATX(KernelState& K, MatRef<double> D_arg, double YOUNG, double POISSON,
                int32_t PLANE_TYPE, int32_t NSTRS) {
  MatRef<double> D = as_shape(D_arg, NSTRS, NSTRS);
  for (int32_t j = 1; j <= NSTRS; ++j)
    for (int32_t i = 1; i <= NSTRS; ++i) D(i, j) = 0.0;

  if (NSTRS == 6) {
    STRESS_STRAIN_MATRIX(K, D);
    return;
  }
  if (NSTRS != 4) return;

  if (PLANE_TYPE == 2) {
    // The axisymmetric matrix orders hoop before shear; the element rows put
    // the shear third and the hoop strain fourth.
    constexpr int32_t kMap[4] = {1, 2, 4, 3};
    double w[16];
    MatRef<double> W(w, 4, 4, "D4");
    STRESS_STRAIN_MATRIX_AXY(K, W);
    for (int32_t j = 1; j <= 4; ++j)
      for (int32_t i = 1; i <= 4; ++i) D(kMap[i - 1], kMap[j - 1]) = W(i, j);
    return;
  }

  if (K.ELEM_MATERIAL.MAT_TYPE == 1) {
    double w[9];
    MatRef<double> W(w, 3, 3, "D3");
    STRESS_STRAIN_MATRIX_PLT(K, PLANE_TYPE, W);
    for (int32_t j = 1; j <= 3; ++j)
      for (int32_t i = 1; i <= 3; ++i) D(i, j) = W(i, j);
    return;
  }

  ContinuumState& s = K.continuum;
  const double E = YOUNG;
  const double nu = POISSON;
  if (PLANE_TYPE == 0) {
    const double k = E / (1.0 - nu * nu);
    s.DMATX_D11 = k;
    s.DMATX_D12 = nu * k;
    s.DMATX_D33 = k * (1.0 - nu) / 2.0;
  } else if (PLANE_TYPE == 1) {
    const double k = E / ((1.0 + nu) * (1.0 - 2.0 * nu));
    s.DMATX_D11 = (1.0 - nu) * k;
    s.DMATX_D12 = nu * k;
    s.DMATX_D33 = k * (1.0 - 2.0 * nu) / 2.0;
  }
  D(1, 1) = s.DMATX_D11;
  D(2, 2) = s.DMATX_D11;
  D(1, 2) = s.DMATX_D12;
  D(2, 1) = s.DMATX_D12;
  D(3, 3) = s.DMATX_D33;
}

}  // namespace respcore
