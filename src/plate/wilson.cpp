#include "plate/wilson.hpp"

#include <algorithm>

#include "numeric/blas.hpp"
#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"

namespace respcore {

namespace {

constexpr double kNodeXi[4] = {-1.0, 1.0, 1.0, -1.0};
constexpr double kNodeEta[4] = {-1.0, -1.0, 1.0, 1.0};

// K(12,12) over the nodal and mode freedoms, summed over the 2x2 points.
void wilson_matrix(MatRef<double> XY1, MatRef<double> D_arg, double T, MatRef<double> K) {
  MatRef<double> D = as_shape(D_arg, 3, 3);
  double d[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) d[i][j] = D(i + 1, j + 1);
  const CentreJacobian J0 = quad_centre_jacobian(XY1);
  for (int j = 1; j <= 12; ++j)
    for (int i = 1; i <= 12; ++i) K(i, j) = 0.0;

  double dn_store[8], rows_store[12];
  VecRef<double> DN(dn_store, 8, "DN");
  MatRef<double> ROWS(rows_store, 3, 4, "ROWS");
  for (int32_t ix = 1; ix <= 2; ++ix) {
    for (int32_t iy = 1; iy <= 2; ++iy) {
      double xi, eta, w1, w2, detj;
      INTPT4(2, ix, xi, w1);
      INTPT4(2, iy, eta, w2);
      SHP4L(xi, eta, DN, 1);
      FORMB(4, DN, XY1, detj);
      incompatible_mode_rows(J0, 2.0 / detj, xi, eta, ROWS);
      double b[3][12] = {};
      for (int n = 0; n < 4; ++n) {
        const double nx = DN(2 * n + 1), ny = DN(2 * n + 2);
        b[0][2 * n] = nx;
        b[2][2 * n] = ny;
        b[1][2 * n + 1] = ny;
        b[2][2 * n + 1] = nx;
      }
      for (int k = 0; k < 4; ++k)
        for (int r = 0; r < 3; ++r) b[r][8 + k] = ROWS(r + 1, k + 1);
      const double wt = detj * w1 * w2 * T;
      double db[3][12];
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 12; ++c)
          db[r][c] = d[r][0] * b[0][c] + d[r][1] * b[1][c] + d[r][2] * b[2][c];
      for (int i = 0; i < 12; ++i)
        for (int j = 0; j < 12; ++j)
          K(i + 1, j + 1) += (b[0][i] * db[0][j] + b[1][i] * db[1][j] + b[2][i] * db[2][j]) * wt;
    }
  }
}

}  // namespace

void SHP4L(double XI, double ETA, VecRef<double> N, int32_t MODE) {
  for (int i = 0; i < 4; ++i) {
    const double a = 1.0 + kNodeXi[i] * XI, b = 1.0 + kNodeEta[i] * ETA;
    if (MODE == 1) {
      N(2 * i + 1) = 0.25 * kNodeXi[i] * b;
      N(2 * i + 2) = 0.25 * kNodeEta[i] * a;
    } else {
      N(i + 1) = 0.25 * a * b;
    }
  }
}

void FORMB(int32_t N, VecRef<double> DN, MatRef<double> XY, double& DET) {
  double j11 = 0.0, j12 = 0.0, j21 = 0.0, j22 = 0.0;
  for (int32_t i = 1; i <= N; ++i) {
    j11 += DN(2 * i - 1) * XY(1, i);
    j12 += DN(2 * i - 1) * XY(2, i);
    j21 += DN(2 * i) * XY(1, i);
    j22 += DN(2 * i) * XY(2, i);
  }
  DET = j11 * j22 - j12 * j21;
  for (int32_t i = 1; i <= N; ++i) {
    const double dxi = DN(2 * i - 1), deta = DN(2 * i);
    DN(2 * i - 1) = (j22 * dxi - j12 * deta) / DET;
    DN(2 * i) = (-j21 * dxi + j11 * deta) / DET;
  }
}

CentreJacobian quad_centre_jacobian(MatRef<double> XY1) {
  CentreJacobian J;
  J.XXI = (-XY1(1, 1) + XY1(1, 2) + XY1(1, 3) - XY1(1, 4)) / 4.0;
  J.YXI = (-XY1(2, 1) + XY1(2, 2) + XY1(2, 3) - XY1(2, 4)) / 4.0;
  J.XETA = (-XY1(1, 1) - XY1(1, 2) + XY1(1, 3) + XY1(1, 4)) / 4.0;
  J.YETA = (-XY1(2, 1) - XY1(2, 2) + XY1(2, 3) + XY1(2, 4)) / 4.0;
  return J;
}

void incompatible_mode_rows(const CentreJacobian& J0, double R, double XI, double ETA,
                            MatRef<double> ROWS) {
  // d(1-xi^2) = -2 xi dxi and dxi/dx = Y-ETA/det J0, dxi/dy = -X-ETA/det J0;
  // the factor det J0 / det J of the point turns 2/det J0 into R.
  ROWS(1, 1) = -R * XI * J0.YETA;
  ROWS(2, 1) = 0.0;
  ROWS(3, 1) = R * XI * J0.XETA;
  ROWS(1, 2) = 0.0;
  ROWS(2, 2) = R * XI * J0.XETA;
  ROWS(3, 2) = -R * XI * J0.YETA;
  ROWS(1, 3) = R * ETA * J0.YXI;
  ROWS(2, 3) = 0.0;
  ROWS(3, 3) = -R * ETA * J0.XXI;
  ROWS(1, 4) = 0.0;
  ROWS(2, 4) = -R * ETA * J0.XXI;
  ROWS(3, 4) = R * ETA * J0.YXI;
}

void incompatible_mode_amplitudes(const double WORK1[36], const double UM[8], double A[4]) {
  for (int k = 0; k < 4; ++k) {
    double s = WORK1[k + 32];
    for (int j = 0; j < 8; ++j) s -= WORK1[k + 4 * j] * UM[j];
    A[k] = s;
  }
}

void WILSON(MatRef<double> XY1, MatRef<double> D, double T, int32_t NDOF, int32_t OPTION,
            MatRef<double> S_arg, MatRef<double> WORK1_arg) {
  (void)NDOF;
  MatRef<double> S = as_shape(S_arg, 12, 12);
  MatRef<double> WORK1 = as_shape(WORK1_arg, 4, 9);
  wilson_matrix(XY1, D, T, S);
  double f_store[12] = {}, work_store[16];
  VecRef<double> F(f_store, 12, "F");
  MatRef<double> WORK(work_store, 4, 4, "WORK");
  STCOND(12, 4, S, F, WORK, WORK1, OPTION);
}

void WILSON_GNRL(MatRef<double> XY1, MatRef<double> D, double T, int32_t NDOF, int32_t OPTION,
                 MatRef<double> S_arg, MatRef<double> WORK1_arg) {
  (void)NDOF;
  MatRef<double> S = as_shape(S_arg, 12, 12);
  MatRef<double> WORK1 = as_shape(WORK1_arg, 4, 9);
  wilson_matrix(XY1, D, T, S);
  // Kmm = L L'; X = inv(L) Kmn; WORK1 = inv(L') X = inv(Kmm) Kmn;
  // condensed Knn - X' X.
  double l[16], x[32];
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) l[i + 4 * j] = S(9 + i, 9 + j);
  for (int j = 0; j < 8; ++j)
    for (int i = 0; i < 4; ++i) x[i + 4 * j] = S(9 + i, 1 + j);
  DPOTRF('L', 4, l, 4);
  DTRSM('L', 'L', 'N', 'N', 4, 8, 1.0, l, 4, x, 4);
  if (OPTION != 1) {
    double kc[64];
    for (int j = 0; j < 8; ++j)
      for (int i = 0; i < 8; ++i) kc[i + 8 * j] = S(1 + i, 1 + j);
    DSYRK('L', 'T', 8, 4, -1.0, x, 4, 1.0, kc, 8);
    for (int j = 0; j < 8; ++j)
      for (int i = j; i < 8; ++i) {
        S(1 + i, 1 + j) = kc[i + 8 * j];
        S(1 + j, 1 + i) = kc[i + 8 * j];
      }
  }
  DTRSM('L', 'L', 'T', 'N', 4, 8, 1.0, l, 4, x, 4);
  for (int j = 0; j < 8; ++j)
    for (int i = 0; i < 4; ++i) WORK1(1 + i, 1 + j) = x[i + 4 * j];
  for (int i = 1; i <= 4; ++i) WORK1(i, 9) = 0.0;
}

}  // namespace respcore
