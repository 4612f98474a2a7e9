#include "solid/solid_high_matrices.hpp"

#include <cmath>
#include <complex>

#include "continuum/integration_rules.hpp"
#include "continuum/interpolation.hpp"
#include "continuum/material_matrix.hpp"
#include "core/diagnostics.hpp"
#include "numeric/dense.hpp"

namespace respcore {

int32_t SOLID_HIGH_NGP(int32_t NN) {
  if (NN == 10) return 4;
  if (NN == 15) return 9;
  return 27;
}

void CALC_CN_3D(MatRef<double> XL_arg, MatRef<double> XYZ_arg, MatRef<double> T_arg, int32_t NN) {
  if (NN <= 0) return;
  MatRef<double> XL = as_shape(XL_arg, 3, NN);
  MatRef<double> XYZ = as_shape(XYZ_arg, 3, NN);
  MatRef<double> T = as_shape(T_arg, 3, 3);
  double p1[3];
  for (int32_t i = 1; i <= 3; ++i)
    p1[i - 1] = T(i, 1) * XYZ(1, 1) + T(i, 2) * XYZ(2, 1) + T(i, 3) * XYZ(3, 1);
  for (int32_t k = 1; k <= NN; ++k) {
    for (int32_t i = 1; i <= 3; ++i) {
      const double p = T(i, 1) * XYZ(1, k) + T(i, 2) * XYZ(2, k) + T(i, 3) * XYZ(3, k);
      XL(i, k) = p - p1[i - 1];
    }
  }
}

namespace {

// S(i, j) += W * sum over k of B(k, i) (D B)(k, j), column by column.
template <class Stiff, class Strain>
void add_btdb(Stiff S, MatRef<double> D, Strain B, double W, int32_t NDOF) {
  double d[6][6];
  for (int32_t r = 0; r < 6; ++r)
    for (int32_t k = 0; k < 6; ++k) d[r][k] = D(r + 1, k + 1);
  for (int32_t j = 1; j <= NDOF; ++j) {
    double db[6];
    for (int32_t r = 1; r <= 6; ++r) {
      double x = 0.0;
      for (int32_t k = 1; k <= 6; ++k) x += d[r - 1][k - 1] * B(k, j);
      db[r - 1] = x;
    }
    for (int32_t i = 1; i <= NDOF; ++i) {
      double x = 0.0;
      for (int32_t k = 1; k <= 6; ++k) x += B(k, i) * db[k - 1];
      S(i, j) = S(i, j) + W * x;
    }
  }
}

}  // namespace

void SOL_STIFF_MAT(MatRef<double> S_arg, MatRef<double> D_arg, MatRef<double> B_arg, double W,
                   int32_t NDOF) {
  if (NDOF <= 0) return;
  // S keeps its own leading dimension: the caller's stiffness is larger than
  // the element's NDOF for all but the largest element.
  MatRef<double> S = S_arg;
  MatRef<double> D = as_shape(D_arg, 6, 6);
  MatRef<double> B = as_shape(B_arg, 6, NDOF);
  if (S.holds(NDOF, NDOF) && B.holds(6, NDOF))
    add_btdb(S.raw(), D, B.raw(), W, NDOF);
  else
    add_btdb(S, D, B, W, NDOF);
}

namespace {

// The rows of SOL_STRESS_HIGH, through accessors Dm, Bm, Tm and STRm of
// D(6,6), B(6,NDOF), T(3,3) and STR.
template <class DA, class BA, class TA, class SA>
void stress_rows(SA STRm, DA Dm, BA Bm, TA Tm, int32_t IROW, int32_t NDOF) {
  for (int32_t jb = 1; jb <= NDOF; jb += 3) {
    double db[6][3];
    for (int32_t c = 0; c < 3; ++c) {
      for (int32_t r = 1; r <= 6; ++r) {
        double x = 0.0;
        for (int32_t k = 1; k <= 6; ++k) x += Dm(r, k) * Bm(k, jb + c);
        db[r - 1][c] = x;
      }
    }
    for (int32_t r = 1; r <= 6; ++r) {
      for (int32_t c = 1; c <= 3; ++c) {
        STRm(IROW + r, jb + c - 1) =
            db[r - 1][0] * Tm(1, c) + db[r - 1][1] * Tm(2, c) + db[r - 1][2] * Tm(3, c);
      }
    }
  }
}

}  // namespace

void SOL_STRESS_HIGH(MatRef<double> STR, MatRef<double> D_arg, MatRef<double> B_arg,
                     MatRef<double> T_arg, int32_t IROW, int32_t NDOF) {
  if (NDOF <= 0) return;
  MatRef<double> D = as_shape(D_arg, 6, 6);
  MatRef<double> B = as_shape(B_arg, 6, NDOF);
  MatRef<double> T = as_shape(T_arg, 3, 3);
  // Columns run in blocks of three: the last block reaches column
  // 3 ceil(NDOF / 3).
  const int32_t last = NDOF + (3 - NDOF % 3) % 3;
  if (D.holds(6, 6) && B.holds(6, last) && T.holds(3, 3) && IROW >= 0 &&
      STR.holds(int64_t{IROW} + 6, last)) {
    double d[6][6], t[3][3];
    for (int32_t r = 0; r < 6; ++r)
      for (int32_t k = 0; k < 6; ++k) d[r][k] = D(r + 1, k + 1);
    for (int32_t r = 0; r < 3; ++r)
      for (int32_t c = 0; c < 3; ++c) t[r][c] = T(r + 1, c + 1);
    stress_rows(STR.raw(), [&](int32_t r, int32_t k) { return d[r - 1][k - 1]; }, B.raw(),
                [&](int32_t r, int32_t c) { return t[r - 1][c - 1]; }, IROW, NDOF);
    return;
  }
  stress_rows(STR, D, B, T, IROW, NDOF);
}

namespace {

// Work arrays of one integration point.
struct PointWork {
  double b[6 * 3 * (SOLID_HIGH_MAX_NODE + 3)] = {};
  double cartd[3 * (SOLID_HIGH_MAX_NODE + 3)] = {};
  double shape[SOLID_HIGH_MAX_NODE + 3] = {};
  double gpcod[3] = {};
  MatRef<double> B() { return MatRef<double>(b, 6, 3 * (SOLID_HIGH_MAX_NODE + 3), "B"); }
  MatRef<double> CARTD() { return MatRef<double>(cartd, 3, SOLID_HIGH_MAX_NODE + 3, "CARTD"); }
  VecRef<double> SHAPE() { return VecRef<double>(shape, SOLID_HIGH_MAX_NODE + 3, "SHAPE"); }
  VecRef<double> GPCOD() { return VecRef<double>(gpcod, 3, "GPCOD"); }
};

int32_t clamp_nodes(int32_t NN) {
  return NN < 0 ? 0 : (NN > SOLID_HIGH_MAX_NODE ? SOLID_HIGH_MAX_NODE : NN);
}

// The element-axis coordinates XL of the NN nodes and the element's elastic
// matrix D.
void element_setup(SolidContext& C, int32_t nn, MatRef<double> XYZ, MatRef<double> T,
                   MatRef<double> XL, MatRef<double> D) {
  CALC_CN_3D(XL, XYZ, T, nn);
  CALC_DMATX(C.diag, C.material, C.continuum, D, C.material.MAT_YOUNG, C.material.MAT_POISSON,
             C.continuum.PLANE_TYPE, 6);
}

}  // namespace

void SOL_STF(SolidContext& C, int32_t ELEM_NO, MatRef<double> S_arg, MatRef<double> WORK,
             int32_t N, int32_t NN, MatRef<double> XYZ, MatRef<double> T, bool integrate) {
  // No nodeless modes: the condensation of the nine bubble freedoms is
  // never reached.
  constexpr int32_t kBubble = 0;
  const int32_t nn = clamp_nodes(NN);
  const int32_t NDOF = 3 * nn;
  MatRef<double> S = as_shape(S_arg, N, N);

  double xl[3 * SOLID_HIGH_MAX_NODE] = {};
  MatRef<double> XL(xl, 3, SOLID_HIGH_MAX_NODE, "XL");
  double d[36];
  MatRef<double> D(d, 6, 6, "D");
  element_setup(C, nn, XYZ, T, XL, D);

  for (int32_t j = 1; j <= N; ++j)
    for (int32_t i = 1; i <= N; ++i) S(i, j) = 0.0;

  const int32_t ngp = SOLID_HIGH_NGP(nn);
  // The tetrahedron rules of 4 and 5 points hold weights summing to 1.
  const bool tet_factor = (nn == 4 || nn == 10) && (ngp == 4 || ngp == 5);
  PointWork pw;
  for (int32_t ip = 1; ip <= ngp; ++ip) {
    double s = 0.0, t = 0.0, u = 0.0, w = 0.0, det = 0.0;
    T_GP_COORD(s, t, u, w, ip, ngp, nn, 6);
    // Without the integration only the determinant is formed, for the
    // element-shape message of a point where it vanishes.
    B_BUB(C.diag, ELEM_NO, C.continuum.PLANE_TYPE, pw.B(), det, pw.CARTD(), pw.SHAPE(),
          pw.GPCOD(), s, t, u, XL, nn, 3, 6, kBubble, integrate ? 0 : 1);
    if (!integrate) continue;
    if (tet_factor) w = w / 6.0;
    SOL_STIFF_MAT(S, D, pw.B(), det * w, NDOF);
  }
  if (integrate) LOCTOGLO(S, N, WORK, N, T, NDOF);
}

void SOL_STR(SolidContext& C, int32_t ELEM_NO, MatRef<double> STR_arg, int32_t NROW, int32_t N,
             int32_t NN, MatRef<double> XYZ, MatRef<double> T) {
  const int32_t nn = clamp_nodes(NN);
  const int32_t NDOF = 3 * nn;
  MatRef<double> STR = as_shape(STR_arg, NROW, N);

  double xl[3 * SOLID_HIGH_MAX_NODE] = {};
  MatRef<double> XL(xl, 3, SOLID_HIGH_MAX_NODE, "XL");
  double d[36];
  MatRef<double> D(d, 6, 6, "D");
  element_setup(C, nn, XYZ, T, XL, D);

  const int32_t ngp = SOLID_HIGH_NGP(nn);
  PointWork pw;
  // Point 1 is the centre (the one-point rule of the family), then the
  // integration points.
  for (int32_t ip = 1; ip <= ngp + 1; ++ip) {
    double s = 0.0, t = 0.0, u = 0.0, w = 0.0, det = 0.0;
    if (ip == 1)
      T_GP_COORD(s, t, u, w, 1, 1, nn, 6);
    else
      T_GP_COORD(s, t, u, w, ip - 1, ngp, nn, 6);
    B_BUB(C.diag, ELEM_NO, C.continuum.PLANE_TYPE, pw.B(), det, pw.CARTD(), pw.SHAPE(),
          pw.GPCOD(), s, t, u, XL, nn, 3, 6, 0, 0);
    SOL_STRESS_HIGH(STR, D, pw.B(), T, N + 6 * (ip - 1), NDOF);
  }
}

void SOLID_HIGH_STRS(SolidContext& C, int32_t ELEM_NO, int32_t NN, MatRef<double> ASA_arg,
                     MatRef<double> XYZ, MatRef<double> T, bool forces) {
  constexpr int32_t N = SOLID_HIGH_MAX_DOF;
  constexpr int32_t NROW = SOLID_HIGH_NROW;
  MatRef<double> ASA = as_shape(ASA_arg, NROW, N);
  Mat<double> S("S", N, N);
  Mat<double> WORK("WORK", N, N);
  Mat<double> STR("STR", NROW, N);
  SOL_STF(C, ELEM_NO, S.ref(), WORK.ref(), N, NN, XYZ, T, forces);
  SOL_STR(C, ELEM_NO, STR.ref(), NROW, N, NN, XYZ, T);

  const int32_t ndof = 3 * clamp_nodes(NN);
  auto copy = [&](auto to) {
    const auto s = S.raw();
    const auto str = STR.raw();
    for (int32_t j = 1; j <= N; ++j) {
      for (int32_t i = 1; i <= N; ++i) to(i, j) = (i <= ndof) ? s(i, j) : 0.0;
      for (int32_t i = N + 1; i <= NROW; ++i) to(i, j) = str(i, j);
    }
  };
  if (ASA.holds(NROW, N))
    copy(ASA.raw());
  else
    copy(ASA);
}

// ---------------------------------------------------------------------------
// The family's own shape functions. Values are written once, as functions of
// a scalar type; derivatives come from the same code evaluated at a complex
// step, which is exact to rounding for these polynomials.

namespace {

constexpr double kHexX[20] = {-1, 1, 1, -1, -1, 1, 1, -1, 0, 1, 0, -1, 0, 1, 0, -1, -1, 1, 1, -1};
constexpr double kHexY[20] = {-1, -1, 1, 1, -1, -1, 1, 1, -1, 0, 1, 0, -1, 0, 1, 0, -1, -1, 1, 1};
constexpr double kHexZ[20] = {-1, -1, -1, -1, 1, 1, 1, 1, -1, -1, -1, -1, 1, 1, 1, 1, 0, 0, 0, 0};
// Triangle vertices of the wedge's midside nodes (bottom, top) and vertical
// midside nodes.
constexpr int kTriEdgeA[3] = {0, 1, 2};
constexpr int kTriEdgeB[3] = {1, 2, 0};
constexpr int kTetEdgeA[6] = {0, 1, 2, 0, 1, 2};
constexpr int kTetEdgeB[6] = {1, 2, 0, 3, 3, 3};

template <class R>
bool shape_values(R s, R t, R u, int32_t nn, R* N) {
  switch (nn) {
    case 4: {
      N[0] = 1.0 - s - t - u;
      N[1] = s;
      N[2] = t;
      N[3] = u;
      return true;
    }
    case 10: {
      const R L[4] = {1.0 - s - t - u, s, t, u};
      for (int i = 0; i < 4; ++i) N[i] = L[i] * (2.0 * L[i] - 1.0);
      for (int e = 0; e < 6; ++e) N[4 + e] = 4.0 * L[kTetEdgeA[e]] * L[kTetEdgeB[e]];
      return true;
    }
    case 6:
    case 15: {
      const R L[3] = {1.0 - s - t, s, t};
      for (int i = 0; i < 6; ++i) {
        const double zi = i < 3 ? -1.0 : 1.0;
        const R Li = L[i % 3];
        if (nn == 6)
          N[i] = Li * (1.0 + zi * u) * 0.5;
        else
          N[i] = 0.5 * Li * ((2.0 * Li - 1.0) * (1.0 + zi * u) - (1.0 - u * u));
      }
      if (nn == 15) {
        for (int m = 0; m < 6; ++m) {
          const double zi = m < 3 ? -1.0 : 1.0;
          N[6 + m] = 2.0 * L[kTriEdgeA[m % 3]] * L[kTriEdgeB[m % 3]] * (1.0 + zi * u);
        }
        for (int v = 0; v < 3; ++v) N[12 + v] = L[v] * (1.0 - u * u);
      }
      return true;
    }
    case 8:
    case 20: {
      for (int i = 0; i < nn; ++i) {
        const double xi = kHexX[i], yi = kHexY[i], zi = kHexZ[i];
        if (nn == 8) {
          N[i] = 0.125 * (1.0 + xi * s) * (1.0 + yi * t) * (1.0 + zi * u);
        } else if (i < 8) {
          N[i] = 0.125 * (1.0 + xi * s) * (1.0 + yi * t) * (1.0 + zi * u) *
                 (xi * s + yi * t + zi * u - 2.0);
        } else if (xi == 0.0) {
          N[i] = 0.25 * (1.0 - s * s) * (1.0 + yi * t) * (1.0 + zi * u);
        } else if (yi == 0.0) {
          N[i] = 0.25 * (1.0 + xi * s) * (1.0 - t * t) * (1.0 + zi * u);
        } else {
          N[i] = 0.25 * (1.0 + xi * s) * (1.0 + yi * t) * (1.0 - u * u);
        }
      }
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

void SOL_SHAPE_FUNCT(VecRef<double> SHAPE, VecRef<double> DN_S, VecRef<double> DN_T,
                     VecRef<double> DN_U, double S, double T, double U, int32_t NN) {
  const int32_t nn = clamp_nodes(NN);
  for (int32_t k = 1; k <= nn; ++k) SHAPE(k) = DN_S(k) = DN_T(k) = DN_U(k) = 0.0;
  double n[SOLID_HIGH_MAX_NODE];
  if (!shape_values<double>(S, T, U, nn, n)) return;
  using C = std::complex<double>;
  constexpr double h = 1e-30;
  C cn[SOLID_HIGH_MAX_NODE];
  for (int32_t k = 1; k <= nn; ++k) SHAPE(k) = n[k - 1];
  shape_values<C>(C(S, h), C(T), C(U), nn, cn);
  for (int32_t k = 1; k <= nn; ++k) DN_S(k) = cn[k - 1].imag() / h;
  shape_values<C>(C(S), C(T, h), C(U), nn, cn);
  for (int32_t k = 1; k <= nn; ++k) DN_T(k) = cn[k - 1].imag() / h;
  shape_values<C>(C(S), C(T), C(U, h), nn, cn);
  for (int32_t k = 1; k <= nn; ++k) DN_U(k) = cn[k - 1].imag() / h;
}

void SOL_B_MAT_HIGH(Diagnostics& D, MatRef<double> B_arg, MatRef<double> CARTD_arg, double& DETJ,
                    double S, double T, double U, MatRef<double> XL_arg, int32_t NN) {
  const int32_t nn = clamp_nodes(NN);
  double shape[SOLID_HIGH_MAX_NODE], ds[SOLID_HIGH_MAX_NODE], dt[SOLID_HIGH_MAX_NODE],
      du[SOLID_HIGH_MAX_NODE];
  SOL_SHAPE_FUNCT(VecRef<double>(shape, SOLID_HIGH_MAX_NODE, "SHAPE"),
                  VecRef<double>(ds, SOLID_HIGH_MAX_NODE, "DN_S"),
                  VecRef<double>(dt, SOLID_HIGH_MAX_NODE, "DN_T"),
                  VecRef<double>(du, SOLID_HIGH_MAX_NODE, "DN_U"), S, T, U, nn);
  const double* DN[3] = {ds, dt, du};
  MatRef<double> XL = as_shape(XL_arg, 3, nn);

  // DJ(i,j) = sum over k of DN_i(k) XL(j,k).
  double DJ[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double x = 0.0;
      for (int32_t k = 1; k <= nn; ++k) x += DN[i][k - 1] * XL(j + 1, k);
      DJ[i][j] = x;
    }
  }
  DETJ = DJ[0][0] * (DJ[1][1] * DJ[2][2] - DJ[1][2] * DJ[2][1]) -
         DJ[0][1] * (DJ[1][0] * DJ[2][2] - DJ[1][2] * DJ[2][0]) +
         DJ[0][2] * (DJ[1][0] * DJ[2][1] - DJ[1][1] * DJ[2][0]);
  // At or below zero only: a NaN determinant compares false and passes.
  if (DETJ <= 0.0) {
    write_message(D, "     JACOBIAN DETERMINENT IS NEGATIVE");
    write_message(D, "     PLEASE CHECK YOUR DATA FILE ");
  }

  // DJ_INV by cofactors.
  const double r = 1.0 / DETJ;
  double DJ_INV[3][3];
  DJ_INV[0][0] = (DJ[1][1] * DJ[2][2] - DJ[1][2] * DJ[2][1]) * r;
  DJ_INV[0][1] = (DJ[0][2] * DJ[2][1] - DJ[0][1] * DJ[2][2]) * r;
  DJ_INV[0][2] = (DJ[0][1] * DJ[1][2] - DJ[0][2] * DJ[1][1]) * r;
  DJ_INV[1][0] = (DJ[1][2] * DJ[2][0] - DJ[1][0] * DJ[2][2]) * r;
  DJ_INV[1][1] = (DJ[0][0] * DJ[2][2] - DJ[0][2] * DJ[2][0]) * r;
  DJ_INV[1][2] = (DJ[0][2] * DJ[1][0] - DJ[0][0] * DJ[1][2]) * r;
  DJ_INV[2][0] = (DJ[1][0] * DJ[2][1] - DJ[1][1] * DJ[2][0]) * r;
  DJ_INV[2][1] = (DJ[0][1] * DJ[2][0] - DJ[0][0] * DJ[2][1]) * r;
  DJ_INV[2][2] = (DJ[0][0] * DJ[1][1] - DJ[0][1] * DJ[1][0]) * r;

  MatRef<double> CARTD = as_shape(CARTD_arg, 3, nn);
  MatRef<double> B = as_shape(B_arg, 6, 3 * nn);
  for (int32_t k = 1; k <= nn; ++k) {
    double c[3];
    for (int i = 0; i < 3; ++i) {
      c[i] = DJ_INV[i][0] * ds[k - 1] + DJ_INV[i][1] * dt[k - 1] + DJ_INV[i][2] * du[k - 1];
      CARTD(i + 1, k) = c[i];
    }
    const int32_t col = 3 * k - 2;
    for (int32_t r6 = 1; r6 <= 6; ++r6)
      for (int32_t j = 0; j < 3; ++j) B(r6, col + j) = 0.0;
    B(1, col) = c[0];
    B(2, col + 1) = c[1];
    B(3, col + 2) = c[2];
    B(4, col) = c[1];
    B(4, col + 1) = c[0];
    B(5, col + 1) = c[2];
    B(5, col + 2) = c[1];
    B(6, col) = c[2];
    B(6, col + 2) = c[0];
  }
}

}  // namespace respcore
