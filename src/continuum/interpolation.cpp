#include "continuum/interpolation.hpp"

#include <cmath>
#include <string>

#include "core/diagnostics.hpp"
#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"

namespace respcore {

namespace {

constexpr int kMaxNode = 20;
constexpr int kMaxCol = kMaxNode + 3;

// Shape values and natural derivatives of one point, column k-1 for entry k.
struct ShapeEval {
  double n[kMaxCol];
  double d[3][kMaxCol];
};

void clear(ShapeEval& s) {
  for (int k = 0; k < kMaxCol; ++k) {
    s.n[k] = 0.0;
    s.d[0][k] = s.d[1][k] = s.d[2][k] = 0.0;
  }
}

// Corner signs of quadrilaterals and bricks in element order.
constexpr const auto& kSx = gauss::CORNER_S;
constexpr const auto& kSy = gauss::CORNER_T;
constexpr const auto& kSz = gauss::CORNER_U;

// Mid-side nodes of the 8-node quadrilateral and the 20-node brick.
constexpr double kQ8x[4] = {0.0, 1.0, 0.0, -1.0};
constexpr double kQ8y[4] = {-1.0, 0.0, 1.0, 0.0};
constexpr double kH20x[12] = {0.0, 1.0, 0.0, -1.0, 0.0, 1.0, 0.0, -1.0, -1.0, 1.0, 1.0, -1.0};
constexpr double kH20y[12] = {-1.0, 0.0, 1.0, 0.0, -1.0, 0.0, 1.0, 0.0, -1.0, -1.0, 1.0, 1.0};
constexpr double kH20z[12] = {-1.0, -1.0, -1.0, -1.0, 1.0, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, 0.0};

// Edges of the quadratic triangle and tetrahedron (vertex indices from 0).
constexpr int kTriEdge[3][2] = {{0, 1}, {1, 2}, {2, 0}};
constexpr int kTetEdge[6][2] = {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}};

void line(ShapeEval& s, double xi, int nnode) {
  if (nnode == 2) {
    s.n[0] = (1.0 - xi) / 2.0;
    s.n[1] = (1.0 + xi) / 2.0;
    s.d[0][0] = -0.5;
    s.d[0][1] = 0.5;
  } else if (nnode == 3) {
    s.n[0] = xi * (xi - 1.0) / 2.0;
    s.n[1] = 1.0 - xi * xi;
    s.n[2] = xi * (xi + 1.0) / 2.0;
    s.d[0][0] = xi - 0.5;
    s.d[0][1] = -2.0 * xi;
    s.d[0][2] = xi + 0.5;
  }
}

// Area coordinates of the triangle and their derivatives by (xi, eta).
void area(double xi, double eta, double L[3], double dL[3][2]) {
  L[0] = 1.0 - xi - eta;
  L[1] = xi;
  L[2] = eta;
  dL[0][0] = -1.0;
  dL[0][1] = -1.0;
  dL[1][0] = 1.0;
  dL[1][1] = 0.0;
  dL[2][0] = 0.0;
  dL[2][1] = 1.0;
}

void plane(ShapeEval& s, double xi, double eta, int nnode) {
  switch (nnode) {
    case 3: {
      double L[3], dL[3][2];
      area(xi, eta, L, dL);
      for (int i = 0; i < 3; ++i) {
        s.n[i] = L[i];
        s.d[0][i] = dL[i][0];
        s.d[1][i] = dL[i][1];
      }
      break;
    }
    case 6: {
      double L[3], dL[3][2];
      area(xi, eta, L, dL);
      for (int i = 0; i < 3; ++i) {
        s.n[i] = L[i] * (2.0 * L[i] - 1.0);
        s.d[0][i] = (4.0 * L[i] - 1.0) * dL[i][0];
        s.d[1][i] = (4.0 * L[i] - 1.0) * dL[i][1];
      }
      for (int e = 0; e < 3; ++e) {
        const int a = kTriEdge[e][0], b = kTriEdge[e][1];
        s.n[3 + e] = 4.0 * L[a] * L[b];
        s.d[0][3 + e] = 4.0 * (dL[a][0] * L[b] + L[a] * dL[b][0]);
        s.d[1][3 + e] = 4.0 * (dL[a][1] * L[b] + L[a] * dL[b][1]);
      }
      break;
    }
    case 4: {
      for (int i = 0; i < 4; ++i) {
        const double sx = kSx[i], sy = kSy[i];
        s.n[i] = (1.0 + sx * xi) * (1.0 + sy * eta) / 4.0;
        s.d[0][i] = sx * (1.0 + sy * eta) / 4.0;
        s.d[1][i] = sy * (1.0 + sx * xi) / 4.0;
      }
      break;
    }
    case 8: {
      for (int i = 0; i < 4; ++i) {
        const double sx = kSx[i], sy = kSy[i];
        const double u = 1.0 + sx * xi, v = 1.0 + sy * eta;
        s.n[i] = u * v * (sx * xi + sy * eta - 1.0) / 4.0;
        s.d[0][i] = sx * v * (2.0 * sx * xi + sy * eta) / 4.0;
        s.d[1][i] = sy * u * (sx * xi + 2.0 * sy * eta) / 4.0;
      }
      for (int m = 0; m < 4; ++m) {
        const double sx = kQ8x[m], sy = kQ8y[m];
        const int k = 4 + m;
        if (sx == 0.0) {
          s.n[k] = (1.0 - xi * xi) * (1.0 + sy * eta) / 2.0;
          s.d[0][k] = -xi * (1.0 + sy * eta);
          s.d[1][k] = sy * (1.0 - xi * xi) / 2.0;
        } else {
          s.n[k] = (1.0 + sx * xi) * (1.0 - eta * eta) / 2.0;
          s.d[0][k] = sx * (1.0 - eta * eta) / 2.0;
          s.d[1][k] = -eta * (1.0 + sx * xi);
        }
      }
      break;
    }
    default:
      return;
  }
  if (nnode == 4 || nnode == 8) {
    s.n[nnode] = 1.0 - xi * xi;
    s.n[nnode + 1] = 1.0 - eta * eta;
    s.d[0][nnode] = -2.0 * xi;
    s.d[1][nnode + 1] = -2.0 * eta;
  }
}

void solid(ShapeEval& s, double xi, double eta, double zeta, int nnode) {
  switch (nnode) {
    case 4:
    case 10: {
      const double L[4] = {1.0 - xi - eta - zeta, xi, eta, zeta};
      constexpr double dL[4][3] = {
          {-1.0, -1.0, -1.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
      if (nnode == 4) {
        for (int i = 0; i < 4; ++i) {
          s.n[i] = L[i];
          for (int c = 0; c < 3; ++c) s.d[c][i] = dL[i][c];
        }
        break;
      }
      for (int i = 0; i < 4; ++i) {
        s.n[i] = L[i] * (2.0 * L[i] - 1.0);
        for (int c = 0; c < 3; ++c) s.d[c][i] = (4.0 * L[i] - 1.0) * dL[i][c];
      }
      for (int e = 0; e < 6; ++e) {
        const int a = kTetEdge[e][0], b = kTetEdge[e][1];
        s.n[4 + e] = 4.0 * L[a] * L[b];
        for (int c = 0; c < 3; ++c) s.d[c][4 + e] = 4.0 * (dL[a][c] * L[b] + L[a] * dL[b][c]);
      }
      break;
    }
    case 6:
    case 15: {
      double L[3], dL[3][2];
      area(xi, eta, L, dL);
      for (int i = 0; i < 6; ++i) {
        const int t = i % 3;
        const double sz = (i < 3) ? -1.0 : 1.0;
        const double h = (1.0 + sz * zeta) / 2.0;
        if (nnode == 6) {
          s.n[i] = L[t] * h;
          s.d[0][i] = dL[t][0] * h;
          s.d[1][i] = dL[t][1] * h;
          s.d[2][i] = L[t] * sz / 2.0;
        } else {
          const double bz = (1.0 - zeta * zeta) / 2.0;
          s.n[i] = L[t] * (2.0 * L[t] - 1.0) * h - L[t] * bz;
          const double g = (4.0 * L[t] - 1.0) * h - bz;
          s.d[0][i] = dL[t][0] * g;
          s.d[1][i] = dL[t][1] * g;
          s.d[2][i] = L[t] * (2.0 * L[t] - 1.0) * sz / 2.0 + L[t] * zeta;
        }
      }
      if (nnode == 15) {
        for (int m = 0; m < 6; ++m) {
          const int a = kTriEdge[m % 3][0], b = kTriEdge[m % 3][1];
          const double sz = (m < 3) ? -1.0 : 1.0;
          const double h = 1.0 + sz * zeta;
          const int k = 6 + m;
          s.n[k] = 2.0 * L[a] * L[b] * h;
          s.d[0][k] = 2.0 * (dL[a][0] * L[b] + L[a] * dL[b][0]) * h;
          s.d[1][k] = 2.0 * (dL[a][1] * L[b] + L[a] * dL[b][1]) * h;
          s.d[2][k] = 2.0 * L[a] * L[b] * sz;
        }
        for (int t = 0; t < 3; ++t) {
          const int k = 12 + t;
          s.n[k] = L[t] * (1.0 - zeta * zeta);
          s.d[0][k] = dL[t][0] * (1.0 - zeta * zeta);
          s.d[1][k] = dL[t][1] * (1.0 - zeta * zeta);
          s.d[2][k] = -2.0 * zeta * L[t];
        }
      }
      break;
    }
    case 8: {
      for (int i = 0; i < 8; ++i) {
        const double u = 1.0 + kSx[i] * xi, v = 1.0 + kSy[i] * eta, w = 1.0 + kSz[i] * zeta;
        s.n[i] = u * v * w / 8.0;
        s.d[0][i] = kSx[i] * v * w / 8.0;
        s.d[1][i] = kSy[i] * u * w / 8.0;
        s.d[2][i] = kSz[i] * u * v / 8.0;
      }
      break;
    }
    case 20: {
      for (int i = 0; i < 8; ++i) {
        const double sx = kSx[i], sy = kSy[i], sz = kSz[i];
        const double u = 1.0 + sx * xi, v = 1.0 + sy * eta, w = 1.0 + sz * zeta;
        const double g = sx * xi + sy * eta + sz * zeta;
        s.n[i] = u * v * w * (g - 2.0) / 8.0;
        s.d[0][i] = sx * v * w * (g + sx * xi - 1.0) / 8.0;
        s.d[1][i] = sy * u * w * (g + sy * eta - 1.0) / 8.0;
        s.d[2][i] = sz * u * v * (g + sz * zeta - 1.0) / 8.0;
      }
      for (int m = 0; m < 12; ++m) {
        const double sx = kH20x[m], sy = kH20y[m], sz = kH20z[m];
        const int k = 8 + m;
        if (sx == 0.0) {
          const double v = 1.0 + sy * eta, w = 1.0 + sz * zeta, b = 1.0 - xi * xi;
          s.n[k] = b * v * w / 4.0;
          s.d[0][k] = -2.0 * xi * v * w / 4.0;
          s.d[1][k] = sy * b * w / 4.0;
          s.d[2][k] = sz * b * v / 4.0;
        } else if (sy == 0.0) {
          const double u = 1.0 + sx * xi, w = 1.0 + sz * zeta, b = 1.0 - eta * eta;
          s.n[k] = u * b * w / 4.0;
          s.d[0][k] = sx * b * w / 4.0;
          s.d[1][k] = -2.0 * eta * u * w / 4.0;
          s.d[2][k] = sz * u * b / 4.0;
        } else {
          const double u = 1.0 + sx * xi, v = 1.0 + sy * eta, b = 1.0 - zeta * zeta;
          s.n[k] = u * v * b / 4.0;
          s.d[0][k] = sx * v * b / 4.0;
          s.d[1][k] = sy * u * b / 4.0;
          s.d[2][k] = -2.0 * zeta * u * v / 4.0;
        }
      }
      break;
    }
    default:
      return;
  }
  if (nnode == 8 || nnode == 20) {
    s.n[nnode] = 1.0 - xi * xi;
    s.n[nnode + 1] = 1.0 - eta * eta;
    s.n[nnode + 2] = 1.0 - zeta * zeta;
    s.d[0][nnode] = -2.0 * xi;
    s.d[1][nnode + 1] = -2.0 * eta;
    s.d[2][nnode + 2] = -2.0 * zeta;
  }
}

void evaluate(ShapeEval& s, double xi, double eta, double zeta, int32_t nnode, int32_t ndim) {
  clear(s);
  if (ndim == 1)
    line(s, xi, nnode);
  else if (ndim == 2)
    plane(s, xi, eta, nnode);
  else if (ndim == 3 && nnode >= 4 && nnode <= 20)
    solid(s, xi, eta, zeta, nnode);
}

// Determinant and inverse of the NDIM by NDIM Jacobian J (row i by natural
// coordinate i). The determinant is taken by absolute value in 2 and 3
// dimensions, and the inverse is formed by cofactors with its reciprocal.
double jacobian_det(const double J[3][3], int ndim) {
  switch (ndim) {
    case 1:
      return J[0][0];
    case 2:
      return std::fabs(J[0][0] * J[1][1] - J[0][1] * J[1][0]);
    case 3:
      return std::fabs(J[0][0] * (J[1][1] * J[2][2] - J[1][2] * J[2][1]) -
                       J[0][1] * (J[1][0] * J[2][2] - J[1][2] * J[2][0]) +
                       J[0][2] * (J[1][0] * J[2][1] - J[1][1] * J[2][0]));
    default:
      return 0.0;
  }
}

void jacobian_inverse(const double J[3][3], double det, int ndim, double Ji[3][3]) {
  const double r = 1.0 / det;
  if (ndim == 1) {
    Ji[0][0] = r;
  } else if (ndim == 2) {
    Ji[0][0] = J[1][1] * r;
    Ji[0][1] = -J[0][1] * r;
    Ji[1][0] = -J[1][0] * r;
    Ji[1][1] = J[0][0] * r;
  } else {
    Ji[0][0] = (J[1][1] * J[2][2] - J[1][2] * J[2][1]) * r;
    Ji[0][1] = -(J[0][1] * J[2][2] - J[0][2] * J[2][1]) * r;
    Ji[0][2] = (J[0][1] * J[1][2] - J[0][2] * J[1][1]) * r;
    Ji[1][0] = -(J[1][0] * J[2][2] - J[1][2] * J[2][0]) * r;
    Ji[1][1] = (J[0][0] * J[2][2] - J[0][2] * J[2][0]) * r;
    Ji[1][2] = -(J[0][0] * J[1][2] - J[0][2] * J[1][0]) * r;
    Ji[2][0] = (J[1][0] * J[2][1] - J[1][1] * J[2][0]) * r;
    Ji[2][1] = -(J[0][0] * J[2][1] - J[0][1] * J[2][0]) * r;
    Ji[2][2] = (J[0][0] * J[1][1] - J[0][1] * J[1][0]) * r;
  }
}

// Centre Jacobian from the corner coordinates; c(j, k) is coordinate j of
// node k. Returns false for a family without closed formulas.
template <class Coord>
bool centre_jacobian(Coord c, int32_t nnode, int32_t ndim, double J[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) J[i][j] = 0.0;
  if (ndim == 1) {
    if (nnode == 2)
      J[0][0] = (c(1, 2) - c(1, 1)) / 2.0;
    else if (nnode == 3)
      J[0][0] = (c(1, 3) - c(1, 1)) / 2.0;
    else
      return false;
    return true;
  }
  if (ndim == 2) {
    if (nnode == 4 || nnode == 8) {
      for (int j = 1; j <= 2; ++j) {
        J[0][j - 1] = (-c(j, 1) + c(j, 2) + c(j, 3) - c(j, 4)) / 4.0;
        J[1][j - 1] = (-c(j, 1) - c(j, 2) + c(j, 3) + c(j, 4)) / 4.0;
      }
    } else if (nnode == 3 || nnode == 6) {
      for (int j = 1; j <= 2; ++j) {
        J[0][j - 1] = c(j, 2) - c(j, 1);
        J[1][j - 1] = c(j, 3) - c(j, 1);
      }
    } else {
      return false;
    }
    return true;
  }
  if (ndim == 3) {
    if (nnode == 8 || nnode == 20) {
      for (int j = 1; j <= 3; ++j) {
        J[0][j - 1] =
            (-c(j, 1) + c(j, 2) + c(j, 3) - c(j, 4) - c(j, 5) + c(j, 6) + c(j, 7) - c(j, 8)) / 8.0;
        J[1][j - 1] =
            (-c(j, 1) - c(j, 2) + c(j, 3) + c(j, 4) - c(j, 5) - c(j, 6) + c(j, 7) + c(j, 8)) / 8.0;
        J[2][j - 1] =
            (-c(j, 1) - c(j, 2) - c(j, 3) - c(j, 4) + c(j, 5) + c(j, 6) + c(j, 7) + c(j, 8)) / 8.0;
      }
    } else if (nnode == 4 || nnode == 10) {
      for (int j = 1; j <= 3; ++j) {
        J[0][j - 1] = c(j, 2) - c(j, 1);
        J[1][j - 1] = c(j, 3) - c(j, 1);
        J[2][j - 1] = c(j, 4) - c(j, 1);
      }
    } else if (nnode == 6 || nnode == 15) {
      // Linear wedge at (1/3, 1/3, 0).
      for (int j = 1; j <= 3; ++j) {
        J[0][j - 1] = (-c(j, 1) + c(j, 2) - c(j, 4) + c(j, 5)) / 2.0;
        J[1][j - 1] = (-c(j, 1) + c(j, 3) - c(j, 4) + c(j, 6)) / 2.0;
        J[2][j - 1] = (-c(j, 1) - c(j, 2) - c(j, 3) + c(j, 4) + c(j, 5) + c(j, 6)) / 6.0;
      }
    } else {
      return false;
    }
    return true;
  }
  return false;
}

}  // namespace

void SHAPE_FUN_BUB(VecRef<double> SHAPE, double XI, double ETA, double ZETA, int32_t NNODE,
                   int32_t NDIM) {
  const int32_t ncol = NNODE + NDIM;
  for (int32_t k = 1; k <= ncol; ++k) SHAPE(k) = 0.0;
  if (NDIM < 1 || NDIM > 3 || NNODE < 1 || NNODE > kMaxNode) return;
  ShapeEval s;
  evaluate(s, XI, ETA, ZETA, NNODE, NDIM);
  for (int32_t k = 1; k <= ncol; ++k) SHAPE(k) = s.n[k - 1];
}

void SHAPE_DER_BUB(MatRef<double> DERIV_arg, double XI, double ETA, double ZETA, int32_t NNODE,
                   int32_t NDIM) {
  const int32_t ncol = NNODE + NDIM;
  MatRef<double> DERIV = as_shape(DERIV_arg, NDIM, ncol);
  for (int32_t k = 1; k <= ncol; ++k)
    for (int32_t i = 1; i <= NDIM; ++i) DERIV(i, k) = 0.0;
  if (NDIM < 1 || NDIM > 3 || NNODE < 1 || NNODE > kMaxNode) return;
  ShapeEval s;
  evaluate(s, XI, ETA, ZETA, NNODE, NDIM);
  for (int32_t k = 1; k <= ncol; ++k)
    for (int32_t i = 1; i <= NDIM; ++i) DERIV(i, k) = s.d[i - 1][k - 1];
}

namespace {

// Steps 2 to 9 of B_BUB, through accessors of CN(NDIM,NNODE), SHAPE, GPCOD,
// CARTD(NDIM,NNODE+NDIM) and B(NSTRS,NDIM (NNODE+NDIM)): checked ones, or
// plain ones when all of them hold their extents.
template <class CnA, class ShA, class GpA, class CdA, class BA>
void b_bub_steps(Diagnostics& DG, int32_t ELEM_NO, int32_t PLANE_TYPE, BA B, double& DET,
                 CdA CARTD, ShA SHAPE, GpA GPCOD, CnA CN, const ShapeEval& s, bool known_size,
                 int32_t NNODE, int32_t NDIM, int32_t NSTRS, int32_t BUBBLE, int32_t DET_ONLY) {
  const int32_t ncol = NNODE + NDIM;
  double J[3][3] = {};
  if (known_size) {
    // 2. Coordinates of the point.
    for (int32_t i = 1; i <= NDIM; ++i) {
      double x = 0.0;
      for (int32_t k = 1; k <= NNODE; ++k) x += CN(i, k) * SHAPE(k);
      GPCOD(i) = x;
    }
    // 3. Jacobian, DJ(i,j) = sum of DERIV(i,k) * CN(j,k).
    for (int32_t i = 0; i < NDIM; ++i) {
      for (int32_t j = 1; j <= NDIM; ++j) {
        double x = 0.0;
        for (int32_t k = 1; k <= NNODE; ++k) x += s.d[i][k - 1] * CN(j, k);
        J[i][j - 1] = x;
      }
    }
  }

  // 4. Determinant; an exact zero is reported and the work goes on.
  DET = known_size ? jacobian_det(J, NDIM) : 0.0;
  if (std::fabs(DET) == 0.0) {
    const std::string no = format_int(ELEM_NO, 7);
    write_message(DG, " JACOBIAN DETERMINANT OF ELEMENT NO. " + no + " IS LITTLE THAN ZERO.");
    write_message(DG, " PLEASE CHECK THE SHAPE OF ELEMENT NO." + no);
  }
  // 5.
  if (DET_ONLY == 1 || !known_size) return;

  // 6, 7. Cartesian derivatives of the nodal functions.
  double Ji[3][3] = {};
  jacobian_inverse(J, DET, NDIM, Ji);
  for (int32_t k = 1; k <= NNODE; ++k) {
    for (int32_t i = 1; i <= NDIM; ++i) {
      double x = 0.0;
      for (int32_t j = 0; j < NDIM; ++j) x += Ji[i - 1][j] * s.d[j][k - 1];
      CARTD(i, k) = x;
    }
  }

  // 8. Nodeless modes, mapped with the Jacobian of the element centre.
  const int32_t nb = (BUBBLE == 1) ? NDIM : 0;
  if (BUBBLE == 1) {
    double J0[3][3];
    centre_jacobian([&](int32_t j, int32_t k) { return CN(j, k); }, NNODE, NDIM, J0);
    double J0i[3][3] = {};
    jacobian_inverse(J0, jacobian_det(J0, NDIM), NDIM, J0i);
    for (int32_t k = NNODE + 1; k <= ncol; ++k) {
      for (int32_t i = 1; i <= NDIM; ++i) {
        double x = 0.0;
        for (int32_t j = 0; j < NDIM; ++j) x += J0i[i - 1][j] * s.d[j][k - 1];
        CARTD(i, k) = x;
      }
    }
  }

  // 9. Strain-displacement matrix.
  const int32_t nk = NNODE + nb;
  for (int64_t j = 1; j <= int64_t{NDIM} * nk; ++j)
    for (int32_t i = 1; i <= NSTRS; ++i) B(i, j) = 0.0;
  for (int32_t k = 1; k <= nk; ++k) {
    if (NDIM == 1) {
      B(1, k) = CARTD(1, k);
    } else if (NDIM == 2) {
      B(1, 2 * k - 1) = CARTD(1, k);
      B(2, 2 * k) = CARTD(2, k);
      B(3, 2 * k - 1) = CARTD(2, k);
      B(3, 2 * k) = CARTD(1, k);
      if (PLANE_TYPE == 2) B(4, 2 * k - 1) = SHAPE(k) / GPCOD(1);
    } else {
      const int32_t c = 3 * k - 2;
      B(1, c) = CARTD(1, k);
      B(2, c + 1) = CARTD(2, k);
      B(3, c + 2) = CARTD(3, k);
      B(4, c) = CARTD(2, k);
      B(4, c + 1) = CARTD(1, k);
      B(5, c + 1) = CARTD(3, k);
      B(5, c + 2) = CARTD(2, k);
      B(6, c) = CARTD(3, k);
      B(6, c + 2) = CARTD(1, k);
    }
  }
}

}  // namespace

void B_BUB(Diagnostics& DG, int32_t ELEM_NO, int32_t PLANE_TYPE, MatRef<double> B_arg, double& DET,
           MatRef<double> CARTD_arg, VecRef<double> SHAPE, VecRef<double> GPCOD, double XI,
           double ETA, double ZETA, MatRef<double> CN_arg, int32_t NNODE, int32_t NDIM,
           int32_t NSTRS, int32_t BUBBLE, int32_t DET_ONLY) {
  const bool known_size = NDIM >= 1 && NDIM <= 3 && NNODE >= 1 && NNODE <= kMaxNode;
  const int32_t ncol = NNODE + NDIM;

  // 1. Shape functions and natural derivatives at the point.
  SHAPE_FUN_BUB(SHAPE, XI, ETA, ZETA, NNODE, NDIM);
  ShapeEval s;
  clear(s);
  if (known_size) evaluate(s, XI, ETA, ZETA, NNODE, NDIM);

  MatRef<double> CN = as_shape(CN_arg, NDIM, NNODE);
  MatRef<double> CARTD = as_shape(CARTD_arg, NDIM, ncol);
  const int32_t nk = NNODE + (BUBBLE == 1 ? NDIM : 0);
  MatRef<double> B = as_shape(B_arg, NSTRS, int64_t{NDIM} * nk);
  // The rows of B that step 9 writes.
  const int32_t b_rows = NDIM == 3 ? 6 : NDIM == 2 ? (PLANE_TYPE == 2 ? 4 : 3) : 1;
  if (known_size && CN.holds(NDIM, NNODE) && SHAPE.holds(1, nk) && GPCOD.holds(1, NDIM) &&
      CARTD.holds(NDIM, ncol) && B.holds(NSTRS, int64_t{NDIM} * nk) && NSTRS >= b_rows) {
    b_bub_steps(DG, ELEM_NO, PLANE_TYPE, B.raw(), DET, CARTD.raw(), SHAPE.raw(), GPCOD.raw(),
                CN.raw(), s, known_size, NNODE, NDIM, NSTRS, BUBBLE, DET_ONLY);
    return;
  }
  b_bub_steps(DG, ELEM_NO, PLANE_TYPE, B, DET, CARTD, SHAPE, GPCOD, CN, s, known_size, NNODE, NDIM,
              NSTRS, BUBBLE, DET_ONLY);
}

void CALC_CN_2D(MatRef<double> CN_arg, MatRef<double> XYZ_arg, MatRef<double> TRAN_arg,
                int32_t NNODE) {
  MatRef<double> CN = as_shape(CN_arg, 2, 8);
  MatRef<double> XYZ = as_shape(XYZ_arg, 3, NNODE);
  MatRef<double> TRAN = as_shape(TRAN_arg, 3, 3);
  for (int32_t k = 1; k <= 8; ++k) CN(1, k) = CN(2, k) = 0.0;
  for (int32_t k = 1; k <= NNODE; ++k) {
    for (int32_t i = 1; i <= 2; ++i) {
      double x = 0.0;
      for (int32_t j = 1; j <= 3; ++j) x += TRAN(i, j) * (XYZ(j, k) - XYZ(j, 1));
      CN(i, k) = x;
    }
  }
}

void CALC_J0(MatRef<double> DJ0_arg, MatRef<double> CN_arg, int32_t NNODE, int32_t NDIM) {
  if (NDIM < 1 || NDIM > 3) return;
  MatRef<double> DJ0 = as_shape(DJ0_arg, NDIM, NDIM);
  MatRef<double> CN = as_shape(CN_arg, NDIM, NNODE);
  double J[3][3];
  centre_jacobian([&](int32_t j, int32_t k) { return CN(j, k); }, NNODE, NDIM, J);
  for (int32_t j = 1; j <= NDIM; ++j)
    for (int32_t i = 1; i <= NDIM; ++i) DJ0(i, j) = J[i - 1][j - 1];
}

}  // namespace respcore
