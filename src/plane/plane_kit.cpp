#include "plane/plane_kit.hpp"

#include <cmath>

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "solid/solid_tensors.hpp"

namespace respcore {

void PLANE_STRAIN_STRAIN_TIME(ContinuumParts& C, int32_t NNOD, int32_t STEP, VecRef<double> STRESS,
                              VecRef<double> STRAIN) {
  PlaneState& S = C.plane;
  MatRef<double> DD(S.DD, 3, 3, "DD");
  if (STEP == 1) {
    const ElementMaterial& m = C.material;
    if (m.MAT_TYPE != 1) {
      isotropic_plane_strain(m, DD);
    } else {
      STRESS_STRAIN_MATRIX_PLT(m, C.continuum.compliance, 1, DD);
    }
    INVERSE(C.diag, DD, MatRef<double>(S.DD_INV, 3, 3, "DD_INV"), 3);
  }
  const double* d = S.DD_INV;
  for (int32_t p = 0; p <= NNOD; ++p) {
    const double s1 = STRESS(3 * p + 1), s2 = STRESS(3 * p + 2), s3 = STRESS(3 * p + 3);
    for (int32_t i = 0; i < 3; ++i)
      STRAIN(3 * p + 1 + i) = d[i] * s1 + d[i + 3] * s2 + d[i + 6] * s3;
  }
}

void ARRANGE_COMP_PLANE_STRAIN(VecRef<double> A, VecRef<double> B, int32_t NPT, int32_t PANEL_PLANE,
                               int32_t DIRECTION) {
  if (DIRECTION == 1) {
    for (int64_t i = 1; i <= 6 * int64_t{NPT}; ++i) B(i) = 0.0;
    for (int32_t k = 1; k <= NPT; ++k)
      for (int32_t c = 0; c < 4; ++c) B(6 * k - 5 + c) = A(4 * k - 3 + c);
    return;
  }
  for (int32_t k = 1; k <= NPT; ++k) {
    A(4 * k - 3) = B(6 * k - 5);
    A(4 * k - 2) = B(6 * k - 4);
    A(4 * k - 1) = B(6 * k - 3);
    if (PANEL_PLANE == 1)
      A(4 * k) = B(6 * k - 2);
    else if (PANEL_PLANE == 2)
      A(4 * k) = B(6 * k);
    else if (PANEL_PLANE == 3)
      A(4 * k) = B(6 * k - 1);
  }
}

void TRANSFORM_PLANE_RESULT_TO_USER_LOCAL_AXIS(int32_t NNOD, double ANGLE, VecRef<double> SIG) {
  const double a = ANGLE / 180.0 * 3.141592653589793;
  const double c = std::cos(a), s = std::sin(a);
  for (int32_t n = 0; n < NNOD; ++n) {
    const double fx = SIG(3 * n + 1), fy = SIG(3 * n + 2);
    SIG(3 * n + 1) = c * fx + s * fy;
    SIG(3 * n + 2) = -s * fx + c * fy;
  }
  for (int32_t p = 0; p <= NNOD; ++p) {
    const int32_t r = 13 + 3 * p;
    const double xx = SIG(r), yy = SIG(r + 1), xy = SIG(r + 2);
    SIG(r) = c * c * xx + s * s * yy + 2.0 * c * s * xy;
    SIG(r + 1) = s * s * xx + c * c * yy - 2.0 * c * s * xy;
    SIG(r + 2) = -c * s * xx + c * s * yy + (c * c - s * s) * xy;
  }
}

void find_panel_plane(MatRef<double> PANEL_T, int32_t& PANEL_PLANE, double& SINE, double& COSINE) {
  // The bounds are the single-precision constants 0.99999 and 1.00001.
  constexpr double kLow = 0.9999899864196777;
  constexpr double kHigh = 1.0000100135803223;
  auto unit = [](double x) { return kLow < std::fabs(x) && std::fabs(x) < kHigh; };
  if (unit(PANEL_T(3, 3))) {
    PANEL_PLANE = 1;
    SINE = PANEL_T(1, 2);
    COSINE = PANEL_T(1, 1);
  } else if (unit(PANEL_T(3, 2))) {
    PANEL_PLANE = 2;
    SINE = PANEL_T(1, 3);
    COSINE = PANEL_T(1, 1);
  } else if (unit(PANEL_T(3, 1))) {
    PANEL_PLANE = 3;
    SINE = PANEL_T(1, 3);
    COSINE = PANEL_T(1, 2);
  }
}

void turn_in_plane(double SINE, double COSINE, double a, double b, double c, double OUT[4]) {
  const double S = SINE, C = COSINE;
  const double mean = (a + b) / 2.0, half = (a - b) / 2.0;
  OUT[0] = mean - half * (S * S - C * C) - 2.0 * S * C * c;
  OUT[1] = mean + half * (S * S - C * C) + 2.0 * S * C * c;
  OUT[2] = 0.0;
  OUT[3] = half * 2.0 * S * C - (S * S - C * C) * c;
}

bool plane_rows_of(int32_t PANEL_PLANE, double NU, const double T[6], double OUT[4]) {
  switch (PANEL_PLANE) {
    case 1:
      OUT[0] = T[0], OUT[1] = T[1], OUT[2] = NU * (T[0] + T[1]), OUT[3] = T[3];
      return true;
    case 2:
      OUT[0] = T[0], OUT[1] = NU * (T[0] + T[2]), OUT[2] = T[2], OUT[3] = T[5];
      return true;
    case 3:
      // The sum is t1 + t3 here as well, not t2 + t3.
      OUT[0] = NU * (T[0] + T[2]), OUT[1] = T[1], OUT[2] = T[2], OUT[3] = T[4];
      return true;
    default:
      return false;
  }
}

void turn_panel_tensors(VecRef<double> TMP, MatRef<double> PANEL_T, int32_t NNOD) {
  double cols[9];
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) cols[(i - 1) + 3 * (j - 1)] = PANEL_T(j, i);
  CHANGE_L_G(TMP, MatRef<double>(cols, 3, 3, "PANEL_T"), NNOD);
}

void deliver_plane_rows(const RunContext& R, Tdsp& TDSP, int64_t ITEM, MatRef<double> SSIG,
                        int32_t NROWS, MatRef<double> STRAIN, int32_t STRAIN_ROW0,
                        int32_t NSTRAIN) {
  // A request of no steps has no columns, and nothing to deliver.
  if (SSIG.cols() < 1) return;
  if (R.REQUEST_MODE == 1) {
    // Only row RESULT_COMP of TDSP reaches the caller in this mode.
    const int32_t c = R.RESULT_COMP;
    if (c >= 1 && c <= NROWS && c <= SSIG.rows())
      TDSP.put_row(c, SSIG.data() + (c - 1), SSIG.rows(), SSIG.cols());
    const int64_t k = int64_t{c} - STRAIN_ROW0;
    if (k >= 1 && k <= NSTRAIN && k <= STRAIN.rows())
      TDSP.put_row(c, STRAIN.data() + (k - 1), STRAIN.rows(), STRAIN.cols());
    return;
  }
  for (int32_t r = 1; r <= NROWS; ++r) TDSP(r, ITEM) = SSIG(r, 1);
  for (int32_t k = 1; k <= NSTRAIN; ++k) TDSP(STRAIN_ROW0 + k, ITEM) = STRAIN(k, 1);
}

}  // namespace respcore
