#include "solid/solid_tensors.hpp"

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "recovery/shape_library.hpp"

namespace respcore {

namespace {

void read_t(MatRef<double> T_arg, double t[3][3]) {
  MatRef<double> T = as_shape(T_arg, 3, 3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) t[i][j] = T(i + 1, j + 1);
}

// R := A S A' for the symmetric S given by its six values.
void rotate6(const double a[3][3], double v[6]) {
  const double s[3][3] = {{v[0], v[3], v[5]}, {v[3], v[1], v[4]}, {v[5], v[4], v[2]}};
  double m[3][3];
  // m := A S
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m[i][j] = a[i][0] * s[0][j] + a[i][1] * s[1][j] + a[i][2] * s[2][j];
  // r := m A'
  double r[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r[i][j] = m[i][0] * a[j][0] + m[i][1] * a[j][1] + m[i][2] * a[j][2];
  v[0] = r[0][0];
  v[1] = r[1][1];
  v[2] = r[2][2];
  v[3] = r[0][1];
  v[4] = r[1][2];
  v[5] = r[2][0];
}

// The NPTS tensors of six values from subscript LO on, each turned by A.
template <class Values>
void rotate_points(Values V, int64_t lo, int64_t npts, const double a[3][3]) {
  for (int64_t p = 1; p <= npts; ++p) {
    const int64_t base = lo + 6 * (p - 1);
    double v[6];
    for (int i = 0; i < 6; ++i) v[i] = V(base + i);
    rotate6(a, v);
    for (int i = 0; i < 6; ++i) V(base + i) = v[i];
  }
}

void rotate_tensors(VecRef<double> VALUES, MatRef<double> T, int32_t NN, bool transpose) {
  if (NN < 0) return;
  double t[3][3];
  read_t(T, t);
  // A := T to leave element axes (T S T'), T' to reach them (T' S T).
  double a[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) a[i][j] = transpose ? t[j][i] : t[i][j];
  const int64_t npts = int64_t{NN} + 1;
  const int64_t lo = VALUES.lo();
  if (VALUES.holds(lo, lo + 6 * npts - 1))
    rotate_points(VALUES.raw(), lo, npts, a);
  else
    rotate_points(VALUES, lo, npts, a);
}

// The NN force triples from subscript LO on, each turned by T or T'.
template <class Forces>
void rotate_triples(Forces F, int64_t lo, int64_t NN, const double t[3][3], bool transpose) {
  for (int64_t n = 1; n <= NN; ++n) {
    const int64_t base = lo + 3 * (n - 1);
    double f[3];
    for (int i = 0; i < 3; ++i) f[i] = F(base + i);
    double g[3];
    for (int i = 0; i < 3; ++i) {
      g[i] = transpose ? t[0][i] * f[0] + t[1][i] * f[1] + t[2][i] * f[2]
                       : t[i][0] * f[0] + t[i][1] * f[1] + t[i][2] * f[2];
    }
    for (int i = 0; i < 3; ++i) F(base + i) = g[i];
  }
}

void rotate_forces(VecRef<double> F, MatRef<double> T, int32_t NN, bool transpose) {
  if (NN <= 0) return;
  double t[3][3];
  read_t(T, t);
  const int64_t lo = F.lo();
  if (F.holds(lo, lo + 3 * int64_t{NN} - 1))
    rotate_triples(F.raw(), lo, NN, t, transpose);
  else
    rotate_triples(F, lo, NN, t, transpose);
}

// STRAIN := C STRESS at NPTS points of six values, C the 6 by 6 compliance.
template <class In, class Out>
void strains_of(In STRESS, int64_t lo_in, Out STRAIN, int64_t lo_out, int64_t npts,
                const double* c) {
  for (int64_t p = 1; p <= npts; ++p) {
    double sig[6], eps[6];
    for (int i = 0; i < 6; ++i) sig[i] = STRESS(lo_in + 6 * (p - 1) + i);
    for (int i = 0; i < 6; ++i) {
      double e = 0.0;
      for (int j = 0; j < 6; ++j) e += c[i + 6 * j] * sig[j];
      eps[i] = e;
    }
    for (int i = 0; i < 6; ++i) STRAIN(lo_out + 6 * (p - 1) + i) = eps[i];
  }
}

}  // namespace

void CHANGE_L_G(VecRef<double> VALUES, MatRef<double> T, int32_t NN) {
  rotate_tensors(VALUES, T, NN, false);
}

void CHANGE_G_L(VecRef<double> VALUES, MatRef<double> T, int32_t NN) {
  rotate_tensors(VALUES, T, NN, true);
}

void CHANGE_L_G_FORC(VecRef<double> F, MatRef<double> T, int32_t NN) {
  rotate_forces(F, T, NN, false);
}

void CHANGE_G_L_FORC(VecRef<double> F, MatRef<double> T, int32_t NN) {
  rotate_forces(F, T, NN, true);
}

void SOL_RECV_H(VecRef<double> SIG, int32_t NN) {
  // Point slot P (1 the centre) holds SIG(6(P-1)+1 .. 6P).
  auto at = [&](int32_t p, int32_t c) -> double& { return SIG(SIG.lo() + 6 * (p - 1) + (c - 1)); };
  switch (NN) {
    case 4: {
      for (int32_t k = 1; k <= 4; ++k)
        for (int32_t c = 1; c <= 6; ++c) at(k + 1, c) = at(1, c);
      return;
    }
    case 6:
    case 8: {
      const int32_t ngp = NN;
      double result[8][6] = {};
      double w[8];
      for (int32_t k = 1; k <= NN; ++k) {
        VecRef<double> N(w, ngp, "N");
        if (NN == 8)
          SOLID_SHAPE_8NODES(N, k + 1);
        else
          SOLID_SHAPE_6NODES(N, k + 1);
        for (int32_t c = 1; c <= 6; ++c) {
          double s = 0.0;
          for (int32_t g = 1; g <= ngp; ++g) s += w[g - 1] * at(g + 1, c);
          result[k - 1][c - 1] = s;
        }
      }
      for (int32_t k = 1; k <= NN; ++k)
        for (int32_t c = 1; c <= 6; ++c) at(k + 1, c) = result[k - 1][c - 1];
      return;
    }
    case 5: {
      double pts[8][6];
      for (int32_t g = 1; g <= 8; ++g)
        for (int32_t c = 1; c <= 6; ++c) pts[g - 1][c - 1] = at(g + 1, c);
      for (int32_t g = 1; g <= 8; ++g)
        for (int32_t c = 1; c <= 6; ++c) at(g + 1, c) = 0.0;
      double w[8];
      for (int32_t k = 1; k <= 5; ++k) {
        SOLID_SHAPE_5NODES(VecRef<double>(w, 8, "N"), k + 1);
        for (int32_t c = 1; c <= 6; ++c) {
          double s = 0.0;
          for (int32_t g = 1; g <= 8; ++g) s += w[g - 1] * pts[g - 1][c - 1];
          at(k + 1, c) = s;
        }
      }
      return;
    }
    default:
      return;
  }
}

void SOLID_STRAIN_TIME(SolidContext& C, int32_t NN, int32_t& FIRST, VecRef<double> STRESS,
                       VecRef<double> STRAIN) {
  SolidState& S = C.solid;
  if (FIRST == 1) {
    STRESS_STRAIN_MATRIX(C.diag, C.material, S.DD.ref());
    INVERSE(C.diag, S.DD.ref(), S.DD_INV.ref(), 6);
    FIRST = 0;
  }
  if (NN < 0) return;
  const int64_t npts = int64_t{NN} + 1;
  const int64_t in = STRESS.lo(), out = STRAIN.lo();
  const double* c = S.DD_INV.data();
  if (STRESS.holds(in, in + 6 * npts - 1) && STRAIN.holds(out, out + 6 * npts - 1))
    strains_of(STRESS.raw(), in, STRAIN.raw(), out, npts, c);
  else
    strains_of(STRESS, in, STRAIN, out, npts, c);
}

}  // namespace respcore
