#include "continuum/material_matrix.hpp"

#include "numeric/dense.hpp"

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

void STRESS_STRAIN_MATRIX(Diagnostics& DG, const ElementMaterial& m, MatRef<double> D6_arg) {
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
  INVERSE(DG, C, CI, 3);
  for (int32_t j = 1; j <= 3; ++j)
    for (int32_t i = 1; i <= 3; ++i) D(i, j) = CI(i, j);
  D(4, 4) = m.MAT_VALS[6];
  D(5, 5) = m.MAT_VALS[7];
  D(6, 6) = m.MAT_VALS[8];
}

void isotropic_plane_strain(const ElementMaterial& m, MatRef<double> D) {
  const double nu = m.MAT_POISSON;
  const double k = m.MAT_YOUNG / ((1.0 + nu) * (1.0 - 2.0 * nu));
  D(1, 1) = (1.0 - nu) * k;
  D(2, 2) = (1.0 - nu) * k;
  D(1, 2) = nu * k;
  D(2, 1) = nu * k;
  D(3, 3) = k * (1.0 - 2.0 * nu) / 2.0;
}

void STRESS_STRAIN_MATRIX_AXY(const ElementMaterial& m, MatRef<double> D4_arg) {
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

void STRESS_STRAIN_MATRIX_PLT(const ElementMaterial& m, PlaneCompliance& s, int32_t MODE,
                              MatRef<double> D_arg) {
  MatRef<double> D = as_shape(D_arg, 3, 3);

  double E1 = m.MAT_YOUNG;
  double E2 = m.MAT_VALS[0];
  const double E3 = m.MAT_VALS[3];
  double NU12 = m.MAT_POISSON;
  double NU13 = m.MAT_VALS[1];
  double NU23 = m.MAT_VALS[4];
  // A guard that fails keeps the ratio of the previous element.
  if (E1 > 0.0) {
    s.NU21 = E2 / E1 * NU12;
    s.NU31 = E3 / E1 * NU13;
  }
  if (E2 > 0.0) s.NU32 = E3 / E2 * NU23;

  double G = 0.0;
  if (m.MAT_TYPE != 0) {
    G = m.MAT_VALS[6];
  } else {
    // Isotropic: everything follows E1 and NU12, except NU31, which keeps
    // the value formed from the stored E3 and NU13. The plane-strain matrix
    // of an isotropic material therefore depends on those stored values;
    // results were produced that way.
    E2 = E1;
    NU13 = NU12;
    NU23 = NU12;
    s.NU21 = NU12;
    s.NU32 = NU12;
    G = E1 / (2.0 * (1.0 + NU12));
  }

  // Compliance entries; one whose divisor is not positive keeps its old value.
  if (MODE == 0) {
    if (E1 > 0.0) s.S11 = 1.0 / E1;
    if (E2 > 0.0) s.S12 = -s.NU21 / E2;
    if (E1 > 0.0) s.S21 = -NU12 / E1;
    if (E2 > 0.0) s.S22 = 1.0 / E2;
  } else if (MODE == 1) {
    if (E1 > 0.0) s.S11 = (1.0 - s.NU31 * NU13) / E1;
    if (E2 > 0.0) s.S12 = -(s.NU31 * NU23 + s.NU21) / E2;
    if (E1 > 0.0) s.S21 = -(s.NU32 * NU13 + NU12) / E1;
    if (E1 > 0.0) s.S22 = (1.0 - s.NU32 * NU23) / E2;
  }

  const double det = s.S11 * s.S22 - s.S12 * s.S21;
  for (int j = 1; j <= 3; ++j)
    for (int i = 1; i <= 3; ++i) D(i, j) = 0.0;
  if (det > 0.0) {
    D(1, 1) = s.S22 / det;
    D(1, 2) = -s.S12 / det;
    D(2, 1) = -s.S21 / det;
    D(2, 2) = s.S11 / det;
  }
  D(3, 3) = G;
}

void CALC_DMATX(Diagnostics& DG, const ElementMaterial& m, ContinuumState& s, MatRef<double> D_arg,
                double YOUNG, double POISSON, int32_t PLANE_TYPE, int32_t NSTRS) {
  MatRef<double> D = as_shape(D_arg, NSTRS, NSTRS);
  for (int32_t j = 1; j <= NSTRS; ++j)
    for (int32_t i = 1; i <= NSTRS; ++i) D(i, j) = 0.0;

  if (NSTRS == 6) {
    STRESS_STRAIN_MATRIX(DG, m, D);
    return;
  }
  if (NSTRS != 4) return;

  if (PLANE_TYPE == 2) {
    // The axisymmetric matrix orders hoop before shear; the element rows put
    // the shear third and the hoop strain fourth.
    constexpr int32_t kMap[4] = {1, 2, 4, 3};
    double w[16];
    MatRef<double> W(w, 4, 4, "D4");
    STRESS_STRAIN_MATRIX_AXY(m, W);
    for (int32_t j = 1; j <= 4; ++j)
      for (int32_t i = 1; i <= 4; ++i) D(kMap[i - 1], kMap[j - 1]) = W(i, j);
    return;
  }

  if (m.MAT_TYPE == 1) {
    double w[9];
    MatRef<double> W(w, 3, 3, "D3");
    STRESS_STRAIN_MATRIX_PLT(m, s.compliance, PLANE_TYPE, W);
    for (int32_t j = 1; j <= 3; ++j)
      for (int32_t i = 1; i <= 3; ++i) D(i, j) = W(i, j);
    return;
  }

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
