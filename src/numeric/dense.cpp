#include "numeric/dense.hpp"

#include <algorithm>
#include <string>

#include "core/diagnostics.hpp"

namespace respcore {

namespace {

// The element number of the inverse routines' message. It sits in storage of
// their own that nothing ever writes, so the message always shows 0.
constexpr int32_t kInverseElementNo = 0;

[[noreturn]] void negative_jacobian_stop(Diagnostics& D) {
  const std::string no = format_int(kInverseElementNo, 7);
  const std::string line1 = " JACOBIAN DETERMINANT OF ELEMENT NO. " + no + " IS LITTLE THAN ZERO.";
  const std::string line2 = " PLEASE CHECK THE SHAPE OF ELEMENT NO." + no + ".";
  write_message(D, "");
  write_message(D, line1);
  write_message(D, line2);
  print_line(D, "");
  print_line(D, line1);
  print_line(D, line2);
  stop_run();
}

}  // namespace

void INVERSE(Diagnostics& D, MatRef<double> A_arg, MatRef<double> A_INV_arg, int32_t N) {
  if (N <= 0) return;
  MatRef<double> A = as_shape(A_arg, N, N);
  MatRef<double> A_INV = as_shape(A_INV_arg, N, N);
  double det = 0.0;
  if (N == 2 || N == 3) {
    for (int32_t j = 1; j <= N; ++j)
      for (int32_t i = 1; i <= N; ++i) A_INV(i, j) = A(i, j);
    if (N == 2)
      INVERSE2X2(D, A_INV, det);
    else
      INVERSE3X3(D, A_INV, det);
    return;
  }

  // Gauss-Jordan elimination without row exchange or scaling. An exact zero
  // pivot is replaced by 1.0: elements with a stiffness-free direction must
  // pass through with a finite result.
  for (int32_t j = 1; j <= N; ++j)
    for (int32_t i = 1; i <= N; ++i) A_INV(i, j) = (i == j) ? 1.0 : 0.0;

  for (int32_t k = 1; k <= N - 1; ++k) {
    if (A(k, k) == 0.0) A(k, k) = 1.0;
    for (int32_t i = k + 1; i <= N; ++i) {
      const double f = A(i, k) / A(k, k);
      for (int32_t j = 1; j <= N; ++j) {
        A(i, j) = A(i, j) - f * A(k, j);
        A_INV(i, j) = A_INV(i, j) - f * A_INV(k, j);
      }
    }
  }
  if (A(N, N) == 0.0) A(N, N) = 1.0;

  for (int32_t i = 1; i <= N; ++i) {
    const double d = A(i, i);
    for (int32_t j = 1; j <= N; ++j) {
      A(i, j) = A(i, j) / d;
      A_INV(i, j) = A_INV(i, j) / d;
    }
  }

  for (int32_t k = N; k >= 2; --k) {
    for (int32_t i = k - 1; i >= 1; --i) {
      const double f = A(i, k) / A(k, k);
      for (int32_t j = 1; j <= N; ++j) {
        A(i, j) = A(i, j) - f * A(k, j);
        A_INV(i, j) = A_INV(i, j) - f * A_INV(k, j);
      }
    }
  }
}

void INVERSE2X2(Diagnostics& D, MatRef<double> A_INV_arg, double& DET) {
  MatRef<double> A_INV = as_shape(A_INV_arg, 2, 2);
  const double a11 = A_INV(1, 1), a21 = A_INV(2, 1);
  const double a12 = A_INV(1, 2), a22 = A_INV(2, 2);
  DET = a11 * a22 - a12 * a21;
  // A NaN determinant is not caught here, as it never was.
  if (DET <= 0.0) negative_jacobian_stop(D);
  const double r = 1.0 / DET;
  A_INV(1, 1) = a22 * r;
  A_INV(2, 1) = -a21 * r;
  A_INV(1, 2) = -a12 * r;
  A_INV(2, 2) = a11 * r;
}

void INVERSE3X3(Diagnostics& D, MatRef<double> A_INV_arg, double& DET) {
  MatRef<double> A_INV = as_shape(A_INV_arg, 3, 3);
  double a[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) a[i][j] = A_INV(i + 1, j + 1);

  // Cofactors c[i][j] of entry (i, j).
  double c[3][3];
  c[0][0] = a[1][1] * a[2][2] - a[1][2] * a[2][1];
  c[0][1] = -(a[1][0] * a[2][2] - a[1][2] * a[2][0]);
  c[0][2] = a[1][0] * a[2][1] - a[1][1] * a[2][0];
  c[1][0] = -(a[0][1] * a[2][2] - a[0][2] * a[2][1]);
  c[1][1] = a[0][0] * a[2][2] - a[0][2] * a[2][0];
  c[1][2] = -(a[0][0] * a[2][1] - a[0][1] * a[2][0]);
  c[2][0] = a[0][1] * a[1][2] - a[0][2] * a[1][1];
  c[2][1] = -(a[0][0] * a[1][2] - a[0][2] * a[1][0]);
  c[2][2] = a[0][0] * a[1][1] - a[0][1] * a[1][0];

  // Expansion along the first row.
  DET = a[0][0] * c[0][0] + a[0][1] * c[0][1] + a[0][2] * c[0][2];
  if (DET <= 0.0) negative_jacobian_stop(D);
  const double r = 1.0 / DET;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) A_INV(i + 1, j + 1) = c[j][i] * r;
}

void SYMDF(int32_t N, MatRef<double> ST_arg) {
  if (N < 2) return;
  MatRef<double> ST = as_shape(ST_arg, N, N);
  for (int32_t j = 2; j <= N; ++j) {
    for (int32_t i = 2; i <= j - 1; ++i) {
      double s = 0.0;
      for (int32_t k = 1; k <= i - 1; ++k) s += ST(k, j) * ST(k, i);
      ST(i, j) = ST(i, j) - s;
    }
    double s = 0.0;
    for (int32_t i = 1; i <= j - 1; ++i) {
      const double u = ST(i, j);
      s += u * u / ST(i, i);
      ST(i, j) = u / ST(i, i);
      ST(j, i) = ST(i, j);
    }
    ST(j, j) = ST(j, j) - s;
  }
}

void SUBSTF(int32_t N, int32_t NRHS, MatRef<double> ST_arg, MatRef<double> WORK_arg) {
  if (N <= 0 || NRHS <= 0) return;
  MatRef<double> ST = as_shape(ST_arg, N, N);
  MatRef<double> WORK = as_shape(WORK_arg, N, NRHS);
  for (int32_t l = 1; l <= NRHS; ++l) {
    for (int32_t j = 2; j <= N; ++j) {
      double s = 0.0;
      for (int32_t k = 1; k <= j - 1; ++k) s += ST(j, k) * WORK(k, l);
      WORK(j, l) = WORK(j, l) - s;
    }
  }
  for (int32_t l = 1; l <= NRHS; ++l)
    for (int32_t i = 1; i <= N; ++i) WORK(i, l) = WORK(i, l) / ST(i, i);
  for (int32_t l = 1; l <= NRHS; ++l) {
    for (int32_t i = N - 1; i >= 1; --i) {
      double s = 0.0;
      for (int32_t k = i + 1; k <= N; ++k) s += ST(i, k) * WORK(k, l);
      WORK(i, l) = WORK(i, l) - s;
    }
  }
}

void STCOND(int32_t NT, int32_t NC, MatRef<double> ST_arg, VecRef<double> FORC,
            MatRef<double> WORK_arg, MatRef<double> WORK1_arg, int32_t FLAG) {
  const int32_t nr = NT - NC;
  const int32_t nc = std::max(NC, 0);
  MatRef<double> ST = as_shape(ST_arg, std::max(NT, 0), std::max(NT, 0));
  MatRef<double> WORK = as_shape(WORK_arg, nc, nc);
  MatRef<double> WORK1 = as_shape(WORK1_arg, nc, std::max(nr + 1, 0));

  if (NC > 0) {
    for (int32_t i = 1; i <= NC; ++i)
      for (int32_t j = 1; j <= NC; ++j) WORK(j, i) = ST(nr + j, nr + i);
    for (int32_t j = 1; j <= NC; ++j) WORK1(j, nr + 1) = FORC(nr + j);
  }
  SYMDF(NC, WORK);
  for (int32_t i = 1; i <= nr; ++i)
    for (int32_t j = 1; j <= NC; ++j) WORK1(j, i) = ST(i, nr + j);
  SUBSTF(NC, nr + 1, WORK, WORK1);
  if (FLAG == 1) return;

  for (int32_t j = 1; j <= nr; ++j) {
    for (int32_t i = j; i <= nr; ++i) {
      double s = 0.0;
      for (int32_t k = 1; k <= NC; ++k) s += ST(j, nr + k) * WORK1(k, i);
      ST(j, i) = ST(j, i) - s;
      ST(i, j) = ST(j, i);
    }
    double s = 0.0;
    for (int32_t k = 1; k <= NC; ++k) s += ST(j, nr + k) * WORK1(k, nr + 1);
    FORC(j) = FORC(j) - s;
  }
}

void LOCTOGLO(MatRef<double> S1_arg, int32_t N1, MatRef<double> S2_arg, int32_t N2,
              MatRef<double> T_arg, int32_t NDOF) {
  MatRef<double> S1 = as_shape(S1_arg, std::max(N1, 0), std::max(N1, 0));
  MatRef<double> S2 = as_shape(S2_arg, std::max(N2, 0), std::max(N2, 0));
  MatRef<double> T = as_shape(T_arg, 3, 3);
  double t[3][3];
  for (int k = 0; k < 3; ++k)
    for (int r = 0; r < 3; ++r) t[k][r] = T(k + 1, r + 1);

  // S2 := S1 B, block by block.
  for (int32_t ib = 1; ib <= NDOF; ib += 3) {
    for (int32_t jb = 1; jb <= NDOF; jb += 3) {
      for (int32_t c = ib; c <= ib + 2; ++c) {
        const double s0 = S1(c, jb), s1 = S1(c, jb + 1), s2 = S1(c, jb + 2);
        for (int r = 0; r < 3; ++r) S2(c, jb + r) = s0 * t[0][r] + s1 * t[1][r] + s2 * t[2][r];
      }
    }
  }
  // S1 := B' S2.
  for (int32_t ib = 1; ib <= NDOF; ib += 3) {
    for (int32_t jb = 1; jb <= NDOF; jb += 3) {
      for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3; ++b) {
          S1(ib + a, jb + b) = t[0][a] * S2(ib, jb + b) + t[1][a] * S2(ib + 1, jb + b) +
                               t[2][a] * S2(ib + 2, jb + b);
        }
      }
    }
  }
}

}  // namespace respcore
