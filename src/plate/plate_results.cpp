#include "plate/plate_results.hpp"

#include <cmath>

#include "numeric/blas.hpp"
#include "numeric/dense.hpp"
#include "plate/constitutive.hpp"

namespace respcore {

void CONVERT(VecRef<double> S, VecRef<double> OUT, VecRef<double> T) {
  const double t1 = T(1), t2 = T(2);
  for (int c = 1; c <= 3; ++c) {
    OUT(c) = S(c) * t1;
    OUT(c + 3) = -(t2 * t2 * S(c + 3)) / 6.0;
  }
  // The shear pair changes order: forces are (xz, yz), stresses (yz, xz).
  OUT(7) = S(8) * t2;
  OUT(8) = S(7) * t2;
}

void CONVERT_GNRL(VecRef<double> S, VecRef<double> OUT, double T, VecRef<double> PAIR) {
  const double p1 = PAIR(1), p2 = PAIR(2);
  for (int c = 1; c <= 3; ++c) {
    OUT(c) = S(c) * T;
    double b, t;
    if (p1 == p2) {
      b = S(c + 3);
      t = T;
    } else {
      b = S(c + 3) * p2 / p1;
      t = p2;
    }
    OUT(c + 3) = -(t * t * b) / 6.0;
  }
  OUT(7) = S(8) * T;
  OUT(8) = S(7) * T;
}

namespace {

void fibres(VecRef<double> S, VecRef<double> R, double TOP, double BOT) {
  for (int c = 1; c <= 3; ++c) {
    R(c) = S(c) + 2.0 * TOP * S(c + 3);
    R(c + 3) = S(c) + 2.0 * BOT * S(c + 3);
  }
}

}  // namespace

void MIX_STRESS(VecRef<double> S, VecRef<double> R, int32_t NNODE, double TOP, double BOT,
                VecRef<double> THK) {
  // The force rule receives the fibre factor and the zero word behind it as
  // its thickness pair.
  double pair[2] = {TOP, 0.0};
  for (int p = 0; p <= NNODE; ++p) {
    VecRef<double> s = S.sub(S.lo() + 8 * p, 8);
    VecRef<double> r = R.sub(R.lo() + 14 * p, 14);
    fibres(s, r, TOP, BOT);
    CONVERT_GNRL(s, r.sub(7, 8), THK(p + 1), VecRef<double>(pair, 2, "PAIR"));
  }
}

void MIX_STRESS_STRAIN(VecRef<double> S, VecRef<double> R, VecRef<double> STRAIN, int32_t NNODE,
                       double TOP, double BOT, VecRef<double> THK, VecRef<double> PROP) {
  for (int p = 0; p <= NNODE; ++p) {
    VecRef<double> s = S.sub(S.lo() + 8 * p, 8);
    VecRef<double> r = R.sub(R.lo() + 14 * p, 14);
    VecRef<double> e = STRAIN.sub(STRAIN.lo() + 6 * p, 6);
    fibres(s, r, TOP, BOT);
    CONVERT_GNRL(s, r.sub(7, 8), THK(p + 1), PROP);
    for (int c = 1; c <= 3; ++c) {
      e(c) += 2.0 * TOP * e(c + 3);
      e(c + 3) = e(c) - 2.0 * (TOP - BOT) * e(c + 3);
    }
  }
}

void COMPUTE_PLATE_STRAIN(const PlateContext& C, PlateStrainSaved& SV, VecRef<double> STRAIN,
                          VecRef<double> S, MatRef<double> TR, VecRef<double> THK, int32_t NNODE,
                          int32_t ZERO1, int32_t STEP, int32_t NUM_STEPS, int32_t ZERO2) {
  (void)TR, (void)ZERO1, (void)NUM_STEPS, (void)ZERO2;
  const int32_t npts = NNODE + 1;
  if (npts < 1 || npts > 5) return;
  if (STEP == 1) {
    double d1[9], d2[9], ds[4], shearmod = 0.0, d2_mean = 0.0, ds_mean = 0.0;
    PLATE_MATER_STF(C, MatRef<double>(d1, 3, 3, "D1"), shearmod, MatRef<double>(d2, 3, 3, "D2"),
                    MatRef<double>(ds, 2, 2, "DS"), d2_mean, ds_mean, 6);
    SV.T = THK(1);
    const double tb = SV.T * SV.T * SV.T / 12.0;
    for (int k = 0; k < 9; ++k) {
      SV.DM[k] = d1[k] * SV.T;
      SV.DB[k] = d2[k] * tb;
    }
    // A matrix that is not positive definite keeps its partial factor.
    (void)DPOTRF('L', 3, SV.DM, 3);
    (void)DPOTRF('L', 3, SV.DB, 3);
  }
  const double t = SV.T, tb = t * t * t / 12.0;
  double bm[15], bb[15];
  for (int p = 0; p < npts; ++p)
    for (int c = 0; c < 3; ++c) {
      bm[3 * p + c] = S(S.lo() + 8 * p + c) * t;
      bb[3 * p + c] = S(S.lo() + 8 * p + 3 + c) * tb;
    }
  DTRSM('L', 'L', 'N', 'N', 3, npts, 1.0, SV.DM, 3, bm, 3);
  DTRSM('L', 'L', 'T', 'N', 3, npts, 1.0, SV.DM, 3, bm, 3);
  DTRSM('L', 'L', 'N', 'N', 3, npts, 1.0, SV.DB, 3, bb, 3);
  DTRSM('L', 'L', 'T', 'N', 3, npts, 1.0, SV.DB, 3, bb, 3);
  for (int p = 0; p < npts; ++p)
    for (int c = 0; c < 3; ++c) {
      STRAIN(STRAIN.lo() + 6 * p + c) = bm[3 * p + c];
      STRAIN(STRAIN.lo() + 6 * p + 3 + c) = bb[3 * p + c];
    }
}

void PRNSTR(VecRef<double> S, VecRef<double> P, int32_t PLANE_STRAIN, double NU) {
  const double sx = S(1), sy = S(2), txy = S(3);
  const double c = (sx + sy) / 2.0;
  const double d = (sx - sy) / 2.0;
  // The radius is tested before it is ever formed, so it stays 0 and both
  // principal values are the mean stress.
  double r = 0.0;
  if (r > 0.0) r = std::sqrt(d * d + txy * txy);
  const double p1 = c + r, p2 = c - r;
  P(1) = p1;
  P(2) = p2;
  P(3) = 0.0;
  if (d != 0.0) P(3) = 28.64789 * std::atan2(txy, d);
  double sum;
  if (PLANE_STRAIN == 1) {
    const double s3 = (sx + sy) * NU;
    sum = p1 * p1 + p2 * p2 + s3 * s3 - p1 * p2 - p2 * s3 - s3 * p1;
  } else {
    sum = p1 * p1 + p2 * p2 - p1 * p2;
  }
  P(4) = sum > 0.0 ? std::sqrt(sum) : 0.0;
}

void GLOTOLOC_FOC(VecRef<double> IN, VecRef<double> OUT, int32_t N, MatRef<double> TR) {
  double a[3][3];  // a[c][r] = TR(r, c)
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) a[c][r] = TR(r + 1, c + 1);
  for (int k = 0; k < N / 3; ++k) {
    const double v[3] = {IN(3 * k + 1), IN(3 * k + 2), IN(3 * k + 3)};
    for (int r = 0; r < 3; ++r)
      OUT(3 * k + r + 1) = a[0][r] * v[0] + a[1][r] * v[1] + a[2][r] * v[2];
  }
}

void LOCTOGLO_FORCE(MatRef<double> A, VecRef<double> V, int32_t NN) {
  double a[3][3];
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) a[r][c] = A(r + 1, c + 1);
  for (int k = 0; k < 2 * NN; ++k) {
    const double v[3] = {V(3 * k + 1), V(3 * k + 2), V(3 * k + 3)};
    for (int c = 0; c < 3; ++c) V(3 * k + c + 1) = a[0][c] * v[0] + a[1][c] * v[1] + a[2][c] * v[2];
  }
}

void RECOV_DISP_OFFSET_TIME(MatRef<double> DISP_NO_arg, int32_t ROWS, int32_t NUM_STEPS,
                            int32_t NNODE, MatRef<double> TR, VecRef<double> OFFSET) {
  (void)TR;
  if (NUM_STEPS <= 0) return;
  MatRef<double> DISP_NO = as_shape(DISP_NO_arg, ROWS, NUM_STEPS);
  for (int n = 1; n <= NNODE; ++n) {
    const double X = OFFSET(3 * n - 1), Y = OFFSET(3 * n), Z = OFFSET(3 * n + 1);
    const int r0 = 6 * (n - 1);
    for (int s = 1; s <= NUM_STEPS; ++s) {
      double d[6];
      for (int c = 0; c < 6; ++c) d[c] = DISP_NO(r0 + c + 1, s);
      d[1] -= d[3] * Z;
      d[2] += d[3] * Y;
      d[0] += d[4] * Z;
      d[2] -= d[4] * X;
      d[0] -= d[5] * Y;
      d[1] += d[5] * X;
      for (int c = 0; c < 6; ++c) DISP_NO(r0 + c + 1, s) = d[c];
    }
  }
}

void TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(int32_t NNODE, double ANGLE, VecRef<double> SIG) {
  // The threshold is the four-byte real 0.001.
  if (std::fabs(ANGLE) <= 1.0000000474974513E-3) return;
  const double theta = ANGLE / 180.0 * 3.141592653589793;
  const double c = std::cos(theta), s = std::sin(theta);
  auto vec = [&](int64_t k) {
    const double x = SIG(k), y = SIG(k + 1);
    SIG(k) = c * x + s * y;
    SIG(k + 1) = -s * x + c * y;
  };
  auto tensor = [&](int64_t k) {
    const double sx = SIG(k), sy = SIG(k + 1), t = SIG(k + 2);
    SIG(k) = c * c * sx + s * s * sy + 2 * c * s * t;
    SIG(k + 1) = s * s * sx + c * c * sy - 2 * c * s * t;
    SIG(k + 2) = -c * s * sx + c * s * sy + (c * c - s * s) * t;
  };
  for (int n = 0; n < NNODE; ++n) {
    vec(6 * n + 1);
    vec(6 * n + 4);
  }
  for (int p = 0; p <= NNODE; ++p) {
    const int64_t b = 25 + 8 * p;
    tensor(b);
    tensor(b + 3);
    // Row 7 is the yz member of the shear pair, row 8 the xz member.
    const double yz = SIG(b + 6), xz = SIG(b + 7);
    SIG(b + 6) = c * yz - s * xz;
    SIG(b + 7) = s * yz + c * xz;
    const int64_t r = 65 + 14 * p;
    tensor(r);
    tensor(r + 3);
    tensor(r + 6);
    tensor(r + 9);
    vec(r + 12);
  }
}

}  // namespace respcore
