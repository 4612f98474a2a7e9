#include "recovery/shape_library.hpp"

#include <cmath>
#include <cstddef>

namespace respcore {

using namespace shape_const;
using namespace shape_table;

namespace {

// Row IPT of a result-point table, checked like any array subscript.
template <size_t R>
double row(const double (&table)[R], int32_t ipt, const char* name) {
  return table_entry(table, ipt, name);
}

// The natural coordinates of row IPT of a solid's three tables.
struct Point3 {
  double x, y, z;
};
template <size_t R>
Point3 point(const double (&X)[R], const double (&Y)[R], const double (&Z)[R], int32_t ipt) {
  return Point3{row(X, ipt, "XII"), row(Y, ipt, "ETA"), row(Z, ipt, "ZETA")};
}

// Corner signs of the unit cell, in element order.
constexpr const auto& kQuadSx = gauss::CORNER_S;
constexpr const auto& kQuadSy = gauss::CORNER_T;
constexpr const auto& kHexSx = gauss::CORNER_S;
constexpr const auto& kHexSy = gauss::CORNER_T;
constexpr const auto& kHexSz = gauss::CORNER_U;

// Quadratic Lagrange functions through the cell coordinates -1, 0, +1.
inline void lagrange3(double t, double p[3]) {
  p[0] = t * (t - 1.0) / 2.0;
  p[1] = -(t + 1.0) * (t - 1.0);
  p[2] = t * (t + 1.0) / 2.0;
}

inline void bilinear(double a, double b, double w[4]) {
  w[0] = (1.0 - a) * (1.0 - b) / 4.0;
  w[1] = (1.0 + a) * (1.0 - b) / 4.0;
  w[2] = (1.0 + a) * (1.0 + b) / 4.0;
  w[3] = (1.0 - a) * (1.0 + b) / 4.0;
}

inline void trilinear(double a, double b, double c, double w[8]) {
  w[0] = (1.0 - a) * (1.0 - b) * (1.0 - c) / 8.0;
  w[1] = (1.0 + a) * (1.0 - b) * (1.0 - c) / 8.0;
  w[2] = (1.0 + a) * (1.0 + b) * (1.0 - c) / 8.0;
  w[3] = (1.0 - a) * (1.0 + b) * (1.0 - c) / 8.0;
  w[4] = (1.0 - a) * (1.0 - b) * (1.0 + c) / 8.0;
  w[5] = (1.0 + a) * (1.0 - b) * (1.0 + c) / 8.0;
  w[6] = (1.0 + a) * (1.0 + b) * (1.0 + c) / 8.0;
  w[7] = (1.0 - a) * (1.0 + b) * (1.0 + c) / 8.0;
}

// Cell coordinates of a pyramid point for the 8-point rule. At the apex the
// in-plane coordinates are 0 whatever the table holds.
inline void pyramid_cell(double x, double y, double z, double& a, double& b, double& c) {
  const double g = 1.0 - (PYR_A + PYR_B) / 2.0;
  const double h = (PYR_A - PYR_B) / 2.0;
  if (std::fabs(1.0 - z) < 1.0e-8) {
    a = 0.0;
    b = 0.0;
  } else {
    a = x * PYR_R3 / (1.0 - z);
    b = y * PYR_R3 / (1.0 - z);
  }
  c = (z - g) / h;
}

// Second stage of the 27-point forms: the eight trilinear weights W, which
// belong to the inner points of the 2-point rule, are spread over the 3 by 3
// by 3 grid by quadratic interpolation (S fastest).
void quadratic_stage_3d(const double w[8], VecRef<double> N) {
  for (int32_t i = 1; i <= 27; ++i) N(i) = 0.0;
  for (int k = 0; k < 8; ++k) {
    double p1[3], p2[3], p3[3];
    lagrange3(kHexSx[k] * C5, p1);
    lagrange3(kHexSy[k] * C5, p2);
    lagrange3(kHexSz[k] * C5, p3);
    for (int l = 0; l < 3; ++l)
      for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) N(1 + i + 3 * j + 9 * l) += p1[i] * p2[j] * p3[l] * w[k];
  }
}

}  // namespace

void LINE_SHAPE_1NODE(VecRef<double> N) { N(1) = 1.0; }
void PLANE_SHAPE_3NODES(VecRef<double> N) { N(1) = 1.0; }
void SOLID_SHAPE_4NODES(VecRef<double> N) { N(1) = 1.0; }

void LINE_SHAPE_2NODE(VecRef<double> N, int32_t IPT) {
  const double a = R3 * row(LINE2_XII, IPT, "XII");
  N(1) = (1.0 - a) / 2.0;
  N(2) = (1.0 + a) / 2.0;
}

namespace {

// The bilinear weights of the 2 by 2 rule at row IPT of a quadrilateral's
// result-point tables.
template <size_t R>
void quad_shape_2x2(VecRef<double> N, const double (&xii)[R], const double (&eta)[R],
                    int32_t IPT) {
  const double a = R3 * row(xii, IPT, "XII");
  const double b = R3 * row(eta, IPT, "ETA");
  double w[4];
  bilinear(a, b, w);
  for (int32_t k = 1; k <= 4; ++k) N(k) = w[k - 1];
}

}  // namespace

void PLANE_SHAPE_4NODES(VecRef<double> N, int32_t IPT) {
  quad_shape_2x2(N, QUAD4_XII, QUAD4_ETA, IPT);
}

void PLANE_SHAPE_8NODES_REDUCED(VecRef<double> N, int32_t IPT) {
  quad_shape_2x2(N, QUAD8_XII, QUAD8_ETA, IPT);
}

void PLANE_SHAPE_6NODES(VecRef<double> N, int32_t IPT) {
  const double x = row(TRI6_XII, IPT, "XII");
  const double y = row(TRI6_ETA, IPT, "ETA");
  const double a = 2.0 * (x - Q);
  const double b = 2.0 * (y - Q);
  const double c = 2.0 * (1.0 - x - y - Q);
  N(1) = c;
  N(2) = a;
  N(3) = b;
}

void PLANE_SHAPE_8NODES_LINEAR(VecRef<double> N, int32_t IPT) {
  const double a = R3 * row(QUAD8_XII, IPT, "XII");
  const double b = R3 * row(QUAD8_ETA, IPT, "ETA");
  double w[4];
  bilinear(a, b, w);
  for (int32_t i = 1; i <= 9; ++i) N(i) = 0.0;
  for (int k = 0; k < 4; ++k) {
    double p1[3], p2[3];
    lagrange3(kQuadSx[k] * C5, p1);
    lagrange3(kQuadSy[k] * C5, p2);
    for (int j = 0; j < 3; ++j)
      for (int i = 0; i < 3; ++i) N(1 + i + 3 * j) += p1[i] * p2[j] * w[k];
  }
}

// Direct quadratic extrapolation: the 8-node serendipity functions through
// the eight outer points of the 3 by 3 rule; the centre point gets no weight.
void PLANE_SHAPE_8NODES(VecRef<double> N, int32_t IPT) {
  const double a = row(QUAD8_XII, IPT, "XII") / G3;
  const double b = row(QUAD8_ETA, IPT, "ETA") / G3;
  for (int32_t i = 1; i <= 9; ++i) N(i) = 0.0;
  for (int j = -1; j <= 1; ++j) {
    for (int i = -1; i <= 1; ++i) {
      const double si = i, sj = j;
      double w = 0.0;
      if (i != 0 && j != 0) {
        w = (1.0 + si * a) * (1.0 + sj * b) * (si * a + sj * b - 1.0) / 4.0;
      } else if (i == 0 && j != 0) {
        w = (1.0 - a * a) * (1.0 + sj * b) / 2.0;
      } else if (i != 0 && j == 0) {
        w = (1.0 + si * a) * (1.0 - b * b) / 2.0;
      } else {
        continue;
      }
      N(1 + (i + 1) + 3 * (j + 1)) = w;
    }
  }
}

void SOLID_SHAPE_8NODES(VecRef<double> N, int32_t IPT) {
  const double a = R3 * row(HEX8_XII, IPT, "XII");
  const double b = R3 * row(HEX8_ETA, IPT, "ETA");
  const double c = R3 * row(HEX8_ZETA, IPT, "ZETA");
  double w[8];
  trilinear(a, b, c, w);
  for (int32_t k = 1; k <= 8; ++k) N(k) = w[k - 1];
}

void SOLID_SHAPE_10NODES(VecRef<double> N, int32_t IPT) {
  const auto [x, y, z] = point(TET10_XII, TET10_ETA, TET10_ZETA, IPT);
  const double a = S5 * (x - A4);
  const double b = S5 * (y - A4);
  const double c = S5 * (z - A4);
  const double d = S5 * (1.0 - x - y - z - A4);
  N(1) = d;
  N(2) = a;
  N(3) = b;
  N(4) = c;
}

void SOLID_SHAPE_6NODES(VecRef<double> N, int32_t IPT) {
  const auto [x, y, z] = point(WEDGE6_XII, WEDGE6_ETA, WEDGE6_ZETA, IPT);
  const double a = 2.0 * (x - Q);
  const double b = 2.0 * (y - Q);
  const double d = 2.0 * (1.0 - x - y - Q);
  const double c = R3 * z;
  N(1) = (1.0 - c) * d / 2.0;
  N(2) = (1.0 - c) * a / 2.0;
  N(3) = (1.0 - c) * b / 2.0;
  N(4) = (1.0 + c) * d / 2.0;
  N(5) = (1.0 + c) * a / 2.0;
  N(6) = (1.0 + c) * b / 2.0;
}

void SOLID_SHAPE_5NODES(VecRef<double> N, int32_t IPT) {
  double a, b, c;
  pyramid_cell(row(PYR5_XII, IPT, "XII"), row(PYR5_ETA, IPT, "ETA"), row(PYR5_ZETA, IPT, "ZETA"),
               a, b, c);
  double w[8];
  trilinear(a, b, c, w);
  for (int32_t k = 1; k <= 8; ++k) N(k) = w[k - 1];
}

void SOLID_SHAPE_15NODES_LINEAR(VecRef<double> N, int32_t IPT) {
  const auto [x, y, z] = point(WEDGE15_XII, WEDGE15_ETA, WEDGE15_ZETA, IPT);
  const double a = 2.0 * (x - Q);
  const double b = 2.0 * (y - Q);
  const double d = 1.0 - a - b;
  const double c = R3 * z;
  const double w[6] = {d * (1.0 - c) / 2.0, a * (1.0 - c) / 2.0, b * (1.0 - c) / 2.0,
                       d * (1.0 + c) / 2.0, a * (1.0 + c) / 2.0, b * (1.0 + c) / 2.0};
  // Positions of the six inner points in the cell of the 9-point rule: the
  // triangle points coincide, the thickness points sit inside +-1.
  constexpr double kU[6] = {0.0, 1.0, 0.0, 0.0, 1.0, 0.0};
  constexpr double kV[6] = {0.0, 0.0, 1.0, 0.0, 0.0, 1.0};
  constexpr double kSign[6] = {-1.0, -1.0, -1.0, 1.0, 1.0, 1.0};
  for (int32_t i = 1; i <= 9; ++i) N(i) = 0.0;
  for (int m = 0; m < 6; ++m) {
    const double u = kU[m];
    const double v = kV[m];
    const double tw = 1.0 - u - v;
    const double t = kSign[m] / C5_INV;
    const double tri[3] = {tw, u, v};
    double p[3];
    lagrange3(t, p);
    for (int l = 0; l < 3; ++l)
      for (int i = 0; i < 3; ++i) N(1 + 3 * l + i) += w[m] * tri[i] * p[l];
  }
}

// Direct form: linear over the triangle of the 3-point rule, quadratic
// through the three thickness points.
void SOLID_SHAPE_15NODES(VecRef<double> N, int32_t IPT) {
  const auto [x, y, z] = point(WEDGE15_XII, WEDGE15_ETA, WEDGE15_ZETA, IPT);
  const double a = 2.0 * (x - Q);
  const double b = 2.0 * (y - Q);
  const double d = 1.0 - a - b;
  const double tri[3] = {d, a, b};
  double p[3];
  lagrange3(z / G3, p);
  for (int l = 0; l < 3; ++l)
    for (int i = 0; i < 3; ++i) N(1 + 3 * l + i) = tri[i] * p[l];
}

void SOLID_SHAPE_20NODES_LINEAR(VecRef<double> N, int32_t IPT) {
  const double a = R3 * row(HEX20_XII, IPT, "XII");
  const double b = R3 * row(HEX20_ETA, IPT, "ETA");
  const double c = R3 * row(HEX20_ZETA, IPT, "ZETA");
  double w[8];
  trilinear(a, b, c, w);
  quadratic_stage_3d(w, N);
}

// Direct quadratic extrapolation: the 20-node serendipity functions through
// the corner and edge points of the 3 by 3 by 3 rule; face and body centres
// get no weight.
void SOLID_SHAPE_20NODES(VecRef<double> N, int32_t IPT) {
  const double a = row(HEX20_XII, IPT, "XII") / G3;
  const double b = row(HEX20_ETA, IPT, "ETA") / G3;
  const double c = row(HEX20_ZETA, IPT, "ZETA") / G3;
  for (int32_t i = 1; i <= 27; ++i) N(i) = 0.0;
  for (int l = -1; l <= 1; ++l) {
    for (int j = -1; j <= 1; ++j) {
      for (int i = -1; i <= 1; ++i) {
        const int zeros = (i == 0) + (j == 0) + (l == 0);
        if (zeros > 1) continue;
        const double si = i, sj = j, sl = l;
        double w;
        if (zeros == 0) {
          w = (1.0 + si * a) * (1.0 + sj * b) * (1.0 + sl * c) * (si * a + sj * b + sl * c - 2.0) /
              8.0;
        } else if (i == 0) {
          w = (1.0 - a * a) * (1.0 + sj * b) * (1.0 + sl * c) / 4.0;
        } else if (j == 0) {
          w = (1.0 + si * a) * (1.0 - b * b) * (1.0 + sl * c) / 4.0;
        } else {
          w = (1.0 + si * a) * (1.0 + sj * b) * (1.0 - c * c) / 4.0;
        }
        N(1 + (i + 1) + 3 * (j + 1) + 9 * (l + 1)) = w;
      }
    }
  }
}

void SOLID_SHAPE_13NODES(VecRef<double> N, int32_t IPT) {
  double a, b, c;
  pyramid_cell(row(PYR13_XII, IPT, "XII"), row(PYR13_ETA, IPT, "ETA"),
               row(PYR13_ZETA, IPT, "ZETA"), a, b, c);
  double w[8];
  trilinear(a, b, c, w);
  quadratic_stage_3d(w, N);
}

}  // namespace respcore
