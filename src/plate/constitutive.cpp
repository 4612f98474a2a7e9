#include "plate/constitutive.hpp"

#include <cmath>

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"

namespace respcore {

void TRANS_D_SKEW(MatRef<double> D_arg, MatRef<double> T_arg, int32_t N) {
  if (N <= 0 || N > 3) return;
  MatRef<double> D = as_shape(D_arg, N, N);
  MatRef<double> T = as_shape(T_arg, N, N);
  double d[3][3] = {}, t[3][3] = {}, w[3][3] = {};
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < N; ++j) {
      d[i][j] = D(i + 1, j + 1);
      t[i][j] = T(i + 1, j + 1);
    }
  // W = D T, then D = T' W.
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < N; ++j) {
      double v = 0.0;
      for (int k = 0; k < N; ++k) v += d[i][k] * t[k][j];
      w[i][j] = v;
    }
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < N; ++j) {
      double v = 0.0;
      for (int k = 0; k < N; ++k) v += t[k][i] * w[k][j];
      D(i + 1, j + 1) = v;
    }
}

void CHECK_PLATE_DMATRIX_TRANSFORM(const PlateContext& C, int32_t& ISCALE, int32_t& IROT) {
  PlateState& s = C.plate;
  s.SECT_ANGLE_COPY = s.SECT_ANGLE;
  if (s.SCALE_FLAG == 1) {
    ISCALE = 1;
    IROT = 0;
    return;
  }
  ISCALE = 0;
  const bool orthotropic = C.mat.MAT_TYPE == 1 || s.SECT_ORTHO == 1;
  IROT = (orthotropic && std::fabs(s.SECT_ANGLE) > 0.0) ? 1 : 0;
}

void TRANS_VECT_MATL_GNRL(MatRef<double> TRAN_INPL_UDC2, MatRef<double> TRAN_TRSH_UDC2,
                          double ANGLE) {
  MatRef<double> A = as_shape(TRAN_INPL_UDC2, 3, 3);
  MatRef<double> B = as_shape(TRAN_TRSH_UDC2, 2, 2);
  const double c = std::cos(ANGLE);
  const double s = std::sin(ANGLE);
  A(1, 1) = c * c;
  A(1, 2) = s * s;
  A(1, 3) = c * s;
  A(2, 1) = s * s;
  A(2, 2) = c * c;
  A(2, 3) = -c * s;
  A(3, 1) = -2.0 * c * s;
  A(3, 2) = 2.0 * c * s;
  A(3, 3) = c * c - s * s;
  B(1, 1) = c;
  B(1, 2) = s;
  B(2, 1) = -s;
  B(2, 2) = c;
}

void CALC_ROTATION_MATRIX(const PlateContext& C, int32_t& ISCALE, int32_t& IROT,
                          MatRef<double> T2_arg, MatRef<double> T3_arg) {
  MatRef<double> T2 = as_shape(T2_arg, 2, 2);
  MatRef<double> T3 = as_shape(T3_arg, 3, 3);
  CHECK_PLATE_DMATRIX_TRANSFORM(C, ISCALE, IROT);
  for (int j = 1; j <= 3; ++j)
    for (int i = 1; i <= 3; ++i) T3(i, j) = (i == j) ? 1.0 : 0.0;
  for (int j = 1; j <= 2; ++j)
    for (int i = 1; i <= 2; ++i) T2(i, j) = (i == j) ? 1.0 : 0.0;
  if (ISCALE != 1 && IROT != 1) return;

  const double angle = -C.plate.SECT_ANGLE;
  double inpl[9], trsh[4];
  MatRef<double> tran_inpl(inpl, 3, 3, "TRAN_INPL_UDC2");
  MatRef<double> tran_trsh(trsh, 2, 2, "TRAN_TRSH_UDC2");
  TRANS_VECT_MATL_GNRL(tran_inpl, tran_trsh, angle);
  INVERSE(C.diag, tran_inpl, T3, 3);
  INVERSE(C.diag, tran_trsh, T2, 2);
}

void PLATE_STIFF_SCALE_MOD(const PlateContext& C, int32_t N, double E1, double E2, double G,
                           double NU, int32_t USEMAT, MatRef<double> T, MatRef<double> DD_arg,
                           int32_t ITYPE, int32_t TRANS) {
  PlateState& st = C.plate;
  if (st.SCALE_FLAG != 1) return;
  const ElementMaterial& m = C.mat;
  VecRef<double> SF = st.scale_factor();
  MatRef<double> DD = as_shape(DD_arg, N, N);

  for (int64_t j = 1; j <= DD.cols(); ++j)
    for (int64_t i = 1; i <= DD.rows(); ++i) DD(i, j) = 0.0;
  double dd1_store[9] = {};
  MatRef<double> DD1(dd1_store, 3, 3, "DD1");

  if (ITYPE == 1)
    st.SCALE_INDEX = 1;
  else if (ITYPE == 2)
    st.SCALE_INDEX = 4;
  else if (ITYPE == 3)
    st.SCALE_INDEX = 7;
  const int32_t k = st.SCALE_INDEX;

  double EX = 0.0, EY = 0.0, NUXY = 0.0, NUYX = 0.0, GXY = 0.0, GXZ = 0.0, GYZ = 0.0;
  if (USEMAT & 1) {
    EX = m.MAT_YOUNG;
    EY = m.MAT_VALS[0];
    NUXY = m.MAT_POISSON;
    NUYX = m.MAT_VALS[0] / m.MAT_YOUNG * m.MAT_POISSON;
    GXY = m.MAT_VALS[6];
    GXZ = m.MAT_VALS[7];
    GYZ = m.MAT_VALS[8];
    if (m.MAT_TYPE == 0) {
      EX = m.MAT_YOUNG;
      EY = m.MAT_YOUNG;
      NUXY = m.MAT_POISSON;
      NUYX = m.MAT_POISSON;
      const double g = m.MAT_YOUNG / (2.0 * (1.0 + m.MAT_POISSON));
      GXY = g;
      GXZ = g;
      GYZ = g;
    }
  } else {
    EX = E1;
    EY = E2;
    GXY = G;
    NUXY = NU;
    NUYX = NU;
    // The shear pair is scaled from one modulus, the first.
    if (ITYPE == 3) {
      GXZ = E1;
      GYZ = E1;
    }
  }

  if (ITYPE < 3) {
    const double f1 = SF(k);
    const double f2 = SF(k + 1);
    if (f1 * f2 > 0.0) {
      const double EXS = EX * f1;
      const double EYS = EY * f2;
      // The ratio of the stiffer direction stands and the other follows, so
      // that the matrix stays symmetric.
      if (EXS >= EYS)
        NUYX = EYS / EXS * NUXY;
      else
        NUXY = EXS / EYS * NUYX;
      const double S11 = 1.0 / EXS;
      const double S22 = 1.0 / EYS;
      const double S12 = -NUYX / EYS;
      const double S21 = -NUXY / EXS;
      const double det = S11 * S22 - S12 * S21;
      DD1(1, 1) = S22 / det;
      DD1(1, 2) = -S12 / det;
      DD1(2, 1) = -S21 / det;
      DD1(2, 2) = S11 / det;
      DD1(3, 3) = GXY * SF(k + 2);
    } else {
      // A zero or negative factor: the direct stiffnesses only.
      DD1(1, 1) = EX * f1;
      DD1(2, 2) = EY * f2;
      DD1(3, 3) = 0.0;
    }
  } else if (ITYPE == 3) {
    DD1(1, 1) = GXZ * SF(k);
    DD1(2, 2) = GYZ * SF(k + 1);
  }

  for (int64_t j = 1; j <= DD.cols(); ++j)
    for (int64_t i = 1; i <= DD.rows(); ++i) DD(i, j) = DD1(i, j);
  if (TRANS & 1) TRANS_D_SKEW(DD, T, N);
}

void PLATE_STIFF_SCALE(const PlateContext& C, MatRef<double> D_arg, int32_t N, int32_t ITYPE) {
  VecRef<double> SF = C.plate.scale_factor();
  if (ITYPE == 1 || ITYPE == 2) {
    MatRef<double> D = as_shape(D_arg, N, 3);
    const int32_t k = ITYPE == 1 ? 1 : 4;
    const double f1 = SF(k), f2 = SF(k + 1), f3 = SF(k + 2);
    const double mean = (f1 + f2) / 2.0;
    D(1, 1) = D(1, 1) * f1;
    D(1, 2) = D(1, 2) * mean;
    D(2, 1) = D(2, 1) * mean;
    D(2, 2) = D(2, 2) * f2;
    D(3, 3) = D(3, 3) * f3;
    D(1, 3) = 0.0;
    D(2, 3) = 0.0;
    D(3, 1) = 0.0;
    D(3, 2) = 0.0;
  } else if (ITYPE == 3) {
    MatRef<double> D = as_shape(D_arg, N, 2);
    D(1, 1) = D(1, 1) * SF(7);
    D(2, 2) = D(2, 2) * SF(8);
    D(1, 2) = 0.0;
    D(2, 1) = 0.0;
  }
}

void PLATE_MATER_STF(const PlateContext& C, MatRef<double> D1_arg, double& D1_SHEARMOD,
                     MatRef<double> D2_arg, MatRef<double> DS_arg, double& D2_MEAN, double& DS_MEAN,
                     int32_t MASK) {
  const ElementMaterial& m = C.mat;
  MatRef<double> D1 = as_shape(D1_arg, 3, 3);
  MatRef<double> D2 = as_shape(D2_arg, 3, 3);
  MatRef<double> DS = as_shape(DS_arg, 2, 2);

  int32_t iscale = 0, irot = 0;
  double t2_store[4], t3_store[9];
  MatRef<double> T2(t2_store, 2, 2, "T2");
  MatRef<double> T3(t3_store, 3, 3, "T3");
  CALC_ROTATION_MATRIX(C, iscale, irot, T2, T3);
  D1.fill(0.0);
  D2.fill(0.0);
  DS.fill(0.0);

  // Moduli handed to the scaling: the material's two in-plane moduli.
  const double E1 = m.MAT_YOUNG;
  const double E2 = m.MAT_TYPE == 1 ? m.MAT_VALS[0] : m.MAT_YOUNG;

  if (MASK & 2) {
    STRESS_STRAIN_MATRIX_PLT(C.mat, C.compliance, 0, D1);
    D1_SHEARMOD = D1(3, 3);
    if (irot == 1) {
      TRANS_D_SKEW(D1, T3, 3);
    } else if (iscale == 1) {
      // The membrane matrix of a scaled section is rebuilt without Poisson
      // coupling.
      const double G = E1 / 2.0;
      PLATE_STIFF_SCALE_MOD(C, 3, E1, E2, G, 0.0, 0, T3, D1, 1, 0);
      D1_SHEARMOD = D1(3, 3);
      TRANS_D_SKEW(D1, T3, 3);
    }
  }

  if (MASK & 4) {
    STRESS_STRAIN_MATRIX_PLT(C.mat, C.compliance, 0, D2);
    D2_MEAN = (D2(1, 1) + D2(2, 2)) / 2.0;
    if (irot == 1) {
      TRANS_D_SKEW(D2, T3, 3);
    } else if (iscale == 1) {
      const double G = E1 / 2.0;
      PLATE_STIFF_SCALE_MOD(C, 3, E1, E2, G, m.MAT_POISSON, 0, T3, D2, 2, 0);
      D2_MEAN = (D2(1, 1) + D2(2, 2)) / 2.0;
      TRANS_D_SKEW(D2, T3, 3);
    }
  }

  if (MASK & 8) {
    if (m.MAT_TYPE == 1) {
      DS(1, 1) = m.MAT_VALS[7];
      DS(2, 2) = m.MAT_VALS[8];
    } else {
      const double g = 0.5 * m.MAT_YOUNG / (1.0 + m.MAT_POISSON);
      DS(1, 1) = g;
      DS(2, 2) = g;
    }
    DS_MEAN = (DS(1, 1) + DS(2, 2)) / 2.0;
    if (iscale == 1 && irot != 1) {
      const double gxz = DS(1, 1), gyz = DS(2, 2);
      PLATE_STIFF_SCALE_MOD(C, 2, gxz, gyz, 0.0, 0.0, 0, T2, DS, 3, 0);
      DS_MEAN = (DS(1, 1) + DS(2, 2)) / 2.0;
    }
    if (iscale == 1 || irot == 1) TRANS_D_SKEW(DS, T2, 2);
  }
}

}  // namespace respcore
