#include "plate/plate_geometry.hpp"

#include <cmath>
#include <string>

#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "numeric/dense.hpp"

namespace respcore {

namespace {

constexpr char kErrorBorder[] = "---------------------------------------------";
static_assert(sizeof(kErrorBorder) - 1 == 45);

void internal_error(const PlateContext& C, const char* text) {
  print_line(C.diag, "");
  print_line(C.diag, kErrorBorder);
  print_line(C.diag, "INTERNAL ERROR ENCOUNTERED.");
  print_line(C.diag, text);
  print_line(C.diag, kErrorBorder);
}

}  // namespace

void NORM(const PlateContext& C, VecRef<double> V, double& LEN) {
  LEN = std::sqrt(V(1) * V(1) + V(2) * V(2) + V(3) * V(3));
  if (std::isnan(LEN))
    internal_error(C, "SUBROUTINE NORM - DIVIDE BY NON NUMERIC VALUE");
  else if (LEN == 0.0)
    internal_error(C, "SUBROUTINE NORM - DIVIDE BY ZERO");
  const double r = 1.0 / LEN;
  for (int i = 1; i <= 3; ++i) V(i) = V(i) * r;
}

void GET_LINEAR_PROJECTION(const PlateContext& C, VecRef<double> XY, double H, int32_t NDOF,
                           MatRef<double> P_arg) {
  MatRef<double> P = as_shape(P_arg, NDOF, NDOF);
  P.fill(0.0);
  for (int32_t i = 1; i <= 24; ++i) P(i, i) = 1.0;

  static constexpr int kPrev[4] = {4, 1, 2, 3};
  static constexpr int kNext[4] = {2, 3, 4, 1};
  // A warped quadrilateral has alternating heights.
  static constexpr double kSign[4] = {1.0, -1.0, 1.0, -1.0};
  double e1[3], e2[3];
  VecRef<double> E1(e1, 3, "E1"), E2(e2, 3, "E2");
  double LENG[2];

  for (int n = 1; n <= 4; ++n) {
    const int I = n, J = kPrev[n - 1], L = kNext[n - 1];
    e1[0] = XY(2 * I - 1) - XY(2 * J - 1);
    e1[1] = XY(2 * I) - XY(2 * J);
    e1[2] = 0.0;
    NORM(C, E1, LENG[0]);
    e2[0] = XY(2 * L - 1) - XY(2 * I - 1);
    e2[1] = XY(2 * L) - XY(2 * I);
    e2[2] = 0.0;
    NORM(C, E2, LENG[1]);
    const double L1 = LENG[0], L2 = LENG[1];
    const double a1 = -e2[1], a2 = e2[0];
    const double b1 = -e1[1], b2 = e1[0];
    const double D1 = e1[0] * a1 + e1[1] * a2;
    const double D2 = e2[0] * b1 + e2[1] * b2;
    const double HS = H * kSign[n - 1];

    // Freedoms of a node: u v w rx ry rz.
    const int iu = 6 * (I - 1) + 1, iv = iu + 1, iw = iu + 2, irx = iu + 3, iry = iu + 4,
              irz = iu + 5;
    const int ju = 6 * (J - 1) + 1, jv = ju + 1, jw = ju + 2;
    const int lu = 6 * (L - 1) + 1, lv = lu + 1, lw = lu + 2;

    P(iw, iu) += HS * a1 / (D1 * L1);
    P(iw, iv) += HS * a2 / (D1 * L1);
    P(jw, iu) -= HS * a1 / (D1 * L1);
    P(jw, iv) -= HS * a2 / (D1 * L1);
    P(iw, iu) -= HS * b1 / (D2 * L2);
    P(iw, iv) -= HS * b2 / (D2 * L2);
    P(lw, iu) += HS * b1 / (D2 * L2);
    P(lw, iv) += HS * b2 / (D2 * L2);

    const double q1 = D1 * L1 * L1;
    P(iu, irx) -= 2.0 * HS * a1 * b1 / q1;
    P(iv, irx) -= 2.0 * HS * a1 * b2 / q1;
    P(iu, iry) -= 2.0 * HS * a2 * b1 / q1;
    P(iv, iry) -= 2.0 * HS * a2 * b2 / q1;
    P(ju, irx) += 2.0 * HS * a1 * b1 / q1;
    P(jv, irx) += 2.0 * HS * a1 * b2 / q1;
    P(ju, iry) += 2.0 * HS * a2 * b1 / q1;
    P(jv, iry) += 2.0 * HS * a2 * b2 / q1;

    const double q2 = D2 * L2 * L2;
    P(iu, irx) -= 2.0 * HS * b1 * a1 / q2;
    P(iv, irx) -= 2.0 * HS * b1 * a2 / q2;
    P(iu, iry) -= 2.0 * HS * b2 * a1 / q2;
    P(iv, iry) -= 2.0 * HS * b2 * a2 / q2;
    P(lu, irx) += 2.0 * HS * b1 * a1 / q2;
    P(lv, irx) += 2.0 * HS * b1 * a2 / q2;
    P(lu, iry) += 2.0 * HS * b2 * a1 / q2;
    P(lv, iry) += 2.0 * HS * b2 * a2 / q2;

    P(irz, irx) += 2.0 * HS * a1 / (D1 * L1);
    P(irz, iry) += 2.0 * HS * a2 / (D1 * L1);
    P(irz, irx) -= 2.0 * HS * b1 / (D2 * L2);
    P(irz, iry) -= 2.0 * HS * b2 / (D2 * L2);
  }
}

void GET_COORD(const PlateContext& C, MatRef<double> COORDS_arg, int32_t FLAG) {
  MatRef<double> COORDS = as_shape(COORDS_arg, 3, 3);
  const PlateState& s = C.plate;
  if (FLAG == 0) {
    COORDS.fill(0.0);
  } else if (trunc_i32(s.COORD_TYPE) < 2) {
    for (int i = 1; i <= 3; ++i)
      for (int j = 1; j <= 3; ++j) COORDS(i, j) = s.COORD_VALS[3 * (i - 1) + (j - 1)];
  } else {
    print_line(C.diag, "UNKNOWN COORDINATE TYPE");
  }
  if (s.COORD_ASSIGNED == 0) print_line(C.diag, "NO COORDINATE IS ASSIGNED");
}

void COMPUTE_BETA(const PlateContext& C, MatRef<double> A_arg, MatRef<double> B_arg, double& BETA) {
  MatRef<double> A = as_shape(A_arg, 3, 3);
  MatRef<double> B = as_shape(B_arg, 3, 3);
  const double p = B(1, 1) * A(1, 1) + B(2, 1) * A(2, 1) + B(3, 1) * A(3, 1);
  const double q = B(1, 1) * A(1, 2) + B(2, 1) * A(2, 2) + B(3, 1) * A(3, 2);
  const double r = std::sqrt(p * p + q * q);
  if (r < 1.0E-8)
    print_line(C.diag, "ERROR : X AXIS OF MATERIAL COORDINATE IS PERPENDICULAR TO ELEMENT");
  BETA = std::acos(p / r);
  if (q < 0.0) BETA = -BETA;
}

}  // namespace respcore
