// The triangle kit shared by the thin and the thick plate triangles.
#include <bit>
#include <cmath>
#include <cstdint>

#include "plate/dkt.hpp"

namespace respcore {

void STROUT3(int32_t N, int32_t I, double& XI, double& ETA) {
  const double third = 1.0 / 3.0, sixth = 1.0 / 6.0, two_thirds = 2.0 / 3.0;
  XI = third;
  ETA = third;
  if (N != 4) return;
  if (I == 2) {
    XI = sixth;
    ETA = sixth;
  } else if (I == 3) {
    XI = two_thirds;
    ETA = sixth;
  } else if (I == 4) {
    XI = sixth;
    ETA = two_thirds;
  }
}

void SHP3L(double XI, double ETA, VecRef<double> OUT, int32_t MODE) {
  if (MODE == 1) {
    OUT(1) = -1.0;
    OUT(2) = -1.0;
    OUT(3) = 1.0;
    OUT(4) = 0.0;
    OUT(5) = 0.0;
    OUT(6) = 1.0;
    return;
  }
  OUT(1) = 1.0 - XI - ETA;
  OUT(2) = XI;
  OUT(3) = ETA;
}

void SHP6L(double XI, double ETA, VecRef<double> OUT, int32_t MODE) {
  const double L = 1.0 - XI - ETA;
  if (MODE == 1) {
    const double d[12] = {1.0 - 4.0 * L, 1.0 - 4.0 * L, 4.0 * XI - 1.0, 0.0,
                          0.0,           4.0 * ETA - 1.0, 4.0 * (L - XI), -4.0 * XI,
                          4.0 * ETA,     4.0 * XI,        -4.0 * ETA,     4.0 * (L - ETA)};
    for (int k = 0; k < 12; ++k) OUT(k + 1) = d[k];
    return;
  }
  OUT(1) = -(1.0 - 2.0 * L) * L;
  OUT(2) = -(1.0 - 2.0 * XI) * XI;
  OUT(3) = -(1.0 - 2.0 * ETA) * ETA;
  OUT(4) = 4.0 * XI * L;
  OUT(5) = 4.0 * XI * ETA;
  OUT(6) = 4.0 * ETA * L;
}

void FORMBL(int32_t N, MatRef<double> DG, MatRef<double> XY, MatRef<double> DF, double& DET,
            int32_t MODE) {
  double j11 = 0.0, j12 = 0.0, j21 = 0.0, j22 = 0.0;
  for (int32_t i = 1; i <= N; ++i) {
    j11 += DG(1, i) * XY(1, i);
    j12 += DG(1, i) * XY(2, i);
    j21 += DG(2, i) * XY(1, i);
    j22 += DG(2, i) * XY(2, i);
  }
  DET = j11 * j22 - j12 * j21;
  if (MODE == 1) return;
  const double r = 1.0 / DET;
  for (int32_t i = 1; i <= 2 * N; ++i) {
    const double dxi = DF(1, i), deta = DF(2, i);
    DF(1, i) = (j22 * dxi - j12 * deta) * r;
    DF(2, i) = (-j21 * dxi + j11 * deta) * r;
  }
}

void INT3PL(int32_t N, int32_t I, double& XI, double& ETA, double& W) {
  if (N < 2) {
    // The stored third lies a few units below the nearest double.
    XI = std::bit_cast<double>(uint64_t{0x3FD555555555554F});
    ETA = XI;
    W = 0.5;
    return;
  }
  W = std::bit_cast<double>(uint64_t{0x3FC5555555555561});
  if (I < 2) {
    XI = 0.5;
    ETA = 0.5;
  } else if (I == 2) {
    XI = 0.5;
    ETA = 0.0;
  } else {
    XI = 0.0;
    ETA = 0.5;
  }
}

void LEAST_SQUARE(MatRef<double> XY, VecRef<double> PTS, VecRef<double> VAL) {
  double sx = 0, sy = 0, sxx = 0, sxy = 0, syy = 0, sv = 0, sxv = 0, syv = 0;
  for (int k = 1; k <= 4; ++k) {
    const double x = PTS(k), y = PTS(k + 4), v = VAL(k);
    sx += x;
    sy += y;
    sxx += x * x;
    sxy += x * y;
    syy += y * y;
    sv += v;
    sxv += x * v;
    syv += y * v;
  }
  // Normal equations of the four points, every sum doubled.
  const double a11 = 8.0;
  const double m[3][3] = {{a11, 2 * sx, 2 * sy}, {2 * sx, 2 * sxx, 2 * sxy}, {2 * sy, 2 * sxy, 2 * syy}};
  const double f[3] = {2 * sv, 2 * sxv, 2 * syv};
  auto det3 = [](const double a[3][3]) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
  };
  const double det = det3(m);
  double coef[3] = {0.0, 0.0, 0.0};
  if (det != 0.0) {
    for (int k = 0; k < 3; ++k) {
      double mk[3][3];
      for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) mk[i][j] = (j == k) ? f[i] : m[i][j];
      coef[k] = det3(mk) / det;
    }
  }
  for (int i = 1; i <= 3; ++i) VAL(4 + i) = coef[0] + coef[1] * XY(1, i) + coef[2] * XY(2, i);
}

void triangle_geometry(MatRef<double> XYZ, MatRef<double> TR, TriGeometry& G) {
  double p[3][3];  // p[i][k]: node i+1, global axis k+1
  for (int i = 0; i < 3; ++i)
    for (int k = 0; k < 3; ++k) p[i][k] = XYZ(k + 1, i + 1);
  for (int r = 0; r < 2; ++r) {
    const double t1 = TR(r + 1, 1), t2 = TR(r + 1, 2), t3 = TR(r + 1, 3);
    const double o = t1 * p[0][0] + t2 * p[0][1] + t3 * p[0][2];
    for (int i = 0; i < 3; ++i) G.XY[i][r] = (t1 * p[i][0] + t2 * p[i][1] + t3 * p[i][2]) - o;
  }
  auto dist = [&](int i, int j) {
    const double dx = p[j][0] - p[i][0], dy = p[j][1] - p[i][1], dz = p[j][2] - p[i][2];
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  };
  const double l12 = dist(0, 1), l23 = dist(1, 2), l31 = dist(2, 0);
  const double s = (l12 + l23 + l31) / 2.0;
  G.AREA = std::sqrt(s * (s - l12) * (s - l23) * (s - l31));
}

void PT3INI(const TriGeometry& G, Pt3Coef& P) {
  const double x2 = G.XY[1][0], y2 = G.XY[1][1], x3 = G.XY[2][0], y3 = G.XY[2][1];
  P.a = x2;
  P.b = x3;
  P.d = y3;
  P.e = x2 - x3;
  const double f = y2 - y3;
  const double g1 = 1.0 / (P.e * P.e + f * f);
  const double g2 = 1.0 / (P.b * P.b + P.d * P.d);
  const double g3 = 1.0 / (x2 * x2 + y2 * y2);
  P.P4 = -6.0 * P.e * g1;
  P.P5 = -6.0 * P.b * g2;
  P.P6 = 6.0 * P.a * g3;
  P.T4 = -6.0 * f * g1;
  P.T5 = -6.0 * P.d * g2;
  P.Q4 = 3.0 * P.e * f * g1;
  P.Q5 = 3.0 * P.b * P.d * g2;
  P.R4 = 3.0 * f * f * g1;
  P.R5 = 3.0 * P.d * P.d * g2;
}

void PT3ALP(const Pt3Coef& P, int32_t I, int32_t J, double A[3][3]) {
  const double a = P.a, b = P.b, d = P.d, e = P.e;
  const double P4 = P.P4, P5 = P.P5, P6 = P.P6, T4 = P.T4, T5 = P.T5;
  const double Q4 = P.Q4, Q5 = P.Q5, R4 = P.R4, R5 = P.R5;
  // Columns w, rx, ry; each lists the factors of L1, L2, L3.
  double w[3] = {0, 0, 0}, rx[3] = {0, 0, 0}, ry[3] = {0, 0, 0};
  auto set = [](double v[3], double v1, double v2, double v3) {
    v[0] = v1;
    v[1] = v2;
    v[2] = v3;
  };
  switch (I * 10 + J) {
    case 11:
      set(w, d * P6, -d * P6, d * P5);
      set(rx, 0, 0, -d * Q5);
      set(ry, -4 * d, 2 * d, (2 - R5) * d);
      break;
    case 12:
      set(w, -d * P6, d * P6, d * P4);
      set(rx, 0, 0, d * Q4);
      set(ry, -2 * d, 4 * d, (R4 - 2) * d);
      break;
    case 13:
      set(w, 0, 0, -(P4 + P5) * d);
      set(rx, 0, 0, (Q4 - Q5) * d);
      set(ry, 0, 0, (R4 - R5) * d);
      break;
    case 21:
      set(w, -a * T5, 0, e * T5);
      set(rx, a * R5 + e, e, (1 - R5) * e);
      set(ry, -a * Q5, 0, e * Q5);
      break;
    case 22:
      set(w, 0, a * T4, -b * T4);
      set(rx, b, a * R4 + b, (1 - R4) * b);
      set(ry, 0, -a * Q4, b * Q4);
      break;
    case 23:
      set(w, a * T5, -a * T4, -e * T5 + b * T4);
      set(rx, (R5 - 1) * a, (R4 - 1) * a, -e * R5 - b * R4 - a);
      set(ry, -a * Q5, -a * Q4, b * Q4 + e * Q5);
      break;
    case 31:
      set(w, -b * P6 - a * P5, -e * P6, e * P5 + d * T5);
      set(rx, a * Q5 + d, d, -e * Q5 + (1 - R5) * d);
      set(ry, -4 * e + a * R5, 2 * e, (2 - R5) * e + d * Q5);
      break;
    case 32:
      set(w, b * P6, a * P4 + e * P6, -b * P4 + d * T4);
      set(rx, -d, -d + a * Q4, (R4 - 1) * d - b * Q4);
      set(ry, 2 * b, -4 * b + a * R4, (2 - R4) * b - d * Q4);
      break;
    case 33:
      set(w, a * P5, -a * P4, -e * P5 + b * P4 - (T4 + T5) * d);
      set(rx, a * Q5, a * Q4, -e * Q5 - b * Q4 + (R4 - R5) * d);
      set(ry, (R5 - 2) * a, (R4 - 2) * a, -e * R5 - b * R4 + 4 * a + (Q5 - Q4) * d);
      break;
    default:
      break;
  }
  for (int r = 0; r < 3; ++r) {
    A[r][0] = w[r];
    A[r][1] = rx[r];
    A[r][2] = ry[r];
  }
}

void PT3EB(double& E, const double A[3][3], const double L[3], double d1, double d2, double d3) {
  const double d[3] = {d1, d2, d3};
  for (int c = 0; c < 3; ++c) E += d[c] * (A[0][c] * L[0] + A[1][c] * L[1] + A[2][c] * L[2]);
}

void membrane_rows(const TriGeometry& G, const double N[6][2], double BM[9][3]) {
  const double x1 = G.XY[0][0], y1 = G.XY[0][1], x2 = G.XY[1][0], y2 = G.XY[1][1];
  const double x3 = G.XY[2][0], y3 = G.XY[2][1];
  const double k = 0.125;
  const double cx1 = (x3 - x2) * k, cx2 = (x1 - x3) * k, cx3 = (x2 - x1) * k;
  const double cy1 = (y2 - y3) * k, cy2 = (y3 - y1) * k, cy3 = (y1 - y2) * k;
  // Corner functions with half of each neighbouring midside function.
  double M[3][2];
  for (int q = 0; q < 2; ++q) {
    M[0][q] = (N[3][q] + N[5][q]) / 2.0 + N[0][q];
    M[1][q] = (N[3][q] + N[4][q]) / 2.0 + N[1][q];
    M[2][q] = (N[4][q] + N[5][q]) / 2.0 + N[2][q];
  }
  for (int n = 0; n < 3; ++n) {
    double* u = BM[3 * n];
    double* v = BM[3 * n + 1];
    u[0] = M[n][0], u[1] = 0.0, u[2] = M[n][1];
    v[0] = 0.0, v[1] = M[n][1], v[2] = M[n][0];
  }
  const double N4x = N[3][0], N4y = N[3][1], N5x = N[4][0], N5y = N[4][1];
  const double N6x = N[5][0], N6y = N[5][1];
  double* r1 = BM[2];
  double* r2 = BM[5];
  double* r3 = BM[8];
  r1[0] = cy3 * N4x - cy2 * N6x;
  r1[1] = cx3 * N4y - cx2 * N6y;
  r1[2] = cy3 * N4y + cx3 * N4x - cy2 * N6y - cx2 * N6x;
  r2[0] = -cy3 * N4x + cy1 * N5x;
  r2[1] = -cx3 * N4y + cx1 * N5y;
  r2[2] = -cy3 * N4y - cx3 * N4x + cy1 * N5y + cx1 * N5x;
  r3[0] = -cy1 * N5x + cy2 * N6x;
  r3[1] = -cx1 * N5y + cx2 * N6y;
  r3[2] = -cy1 * N5y - cx1 * N5x + cy2 * N6y + cx2 * N6x;
}

void triangle_points(const TriGeometry& G, const Pt3Coef& P, TriPoints& T) {
  double xy[6];
  for (int i = 0; i < 3; ++i) xy[2 * i] = G.XY[i][0], xy[2 * i + 1] = G.XY[i][1];
  MatRef<double> XY(xy, 2, 3, "XY");
  for (int p = 1; p <= 4; ++p) {
    double xi, eta, det;
    STROUT3(4, p, xi, eta);
    double* L = T.SHAP[p - 1];
    SHP3L(xi, eta, VecRef<double>(L, 3, "SHAP"), 0);
    double d6[12], d3[6];
    SHP6L(xi, eta, VecRef<double>(d6, 12, "DN6"), 1);
    SHP3L(xi, eta, VecRef<double>(d3, 6, "DN3"), 1);
    FORMBL(3, MatRef<double>(d3, 2, 3, "DN3"), XY, MatRef<double>(d6, 2, 6, "DN6"), det, 2);
    double dn[6][2];
    for (int k = 0; k < 6; ++k) dn[k][0] = d6[2 * k], dn[k][1] = d6[2 * k + 1];
    membrane_rows(G, dn, T.BM[p - 1]);

    // Curvature rows at the point: the inner sums of PT3EB, formed once.
    for (int I = 1; I <= 3; ++I)
      for (int n = 1; n <= 3; ++n) {
        double A[3][3];
        PT3ALP(P, I, n, A);
        for (int c = 0; c < 3; ++c) {
          double& kb = T.KB[p - 1][3 * (n - 1) + c][I - 1];
          kb = 0.0;
          PT3EB(kb, A, L, c == 0, c == 1, c == 2);
        }
      }
  }
}

}  // namespace respcore
