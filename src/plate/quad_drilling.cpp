#include "plate/quad_drilling.hpp"

#include "continuum/material_matrix.hpp"
#include "numeric/blas.hpp"
#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"
#include "plate/constitutive.hpp"

namespace respcore {

namespace {

constexpr double kNodeXi[4] = {-1.0, 1.0, 1.0, -1.0};
constexpr double kNodeEta[4] = {-1.0, -1.0, 1.0, 1.0};

// The penalty factor as the element has always had it: the single-precision
// 0.001.
constexpr double kDrillPenalty = static_cast<double>(0.001f);

// The element freedom (1..24) of row K (1..12) of the membrane matrix: u, v
// and rotation z of each node.
int32_t drill_dof(int32_t K) {
  constexpr int32_t comp[3] = {1, 2, 6};
  return 6 * ((K - 1) / 3) + comp[(K - 1) % 3];
}

// The membrane over (u, v, rz) of the four nodes into SM(12,12), 2x2
// points, mirrored from the upper triangle; BLAS_PRODUCTS forms D B and
// B' (D B) through DGEMM. P receives the spin vector of the centre
// (P . d = mean rotation less the spin of the field), AT the area times T.
void drilling_membrane(MatRef<double> XY, const double d[9], double T, bool blas_products,
                       MatRef<double> SM, double p[12], double& at) {
  double sides_store[8], b_store[36], db_store[36];
  MatRef<double> SIDES(sides_store, 2, 4, "SIDES");
  MatRef<double> B(b_store, 3, 12, "B");
  for (int k = 1; k <= 4; ++k) {
    const int prev = k == 1 ? 4 : k - 1;
    SIDES(1, k) = XY(1, k) - XY(1, prev);
    SIDES(2, k) = XY(2, k) - XY(2, prev);
  }
  SM.fill(0.0);
  double area = 0.0;

  double n4[4], dn4[8], dn8[16], dpn[8], jinv[4];
  VecRef<double> N4(n4, 4, "N");
  VecRef<double> DN4(dn4, 8, "DN4");
  VecRef<double> DN8(dn8, 16, "DN8");
  VecRef<double> DPN(dpn, 8, "DPN");
  MatRef<double> JINV(jinv, 2, 2, "JINV");
  double detj = 0.0;
  auto shapes_at = [&](double xi, double eta) {
    N4SHAPE(xi, eta, N4);
    DN4SHAPE(xi, eta, DN4);
    DN8SHAPE(xi, eta, DN8);
    DN4SHAPE(xi, eta, DPN);
    JACOB(XY, DN4, DN8, DPN, JINV, detj);
  };

  for (int32_t ix = 1; ix <= 2; ++ix) {
    for (int32_t iy = 1; iy <= 2; ++iy) {
      double xi, eta, w1, w2;
      INTPT4(2, ix, xi, w1);
      INTPT4(2, iy, eta, w2);
      shapes_at(xi, eta);
      const double w = detj * w1 * w2;
      area += w;
      MEMB(DN8, SIDES, B);
      if (blas_products) {
        DGEMM('N', 'N', 3, 12, 3, 1.0, d, 3, b_store, 3, 0.0, db_store, 3);
        DGEMM('T', 'N', 12, 12, 3, w * T, b_store, 3, db_store, 3, 1.0, SM.data(), 12);
        continue;
      }
      for (int c = 0; c < 12; ++c)
        for (int r = 0; r < 3; ++r)
          db_store[r + 3 * c] =
              d[r] * b_store[3 * c] + d[r + 3] * b_store[1 + 3 * c] + d[r + 6] * b_store[2 + 3 * c];
      for (int j = 1; j <= 12; ++j)
        for (int i = 1; i <= j; ++i)
          SM(i, j) += w * T *
                      (B(1, i) * db_store[3 * (j - 1)] + B(2, i) * db_store[1 + 3 * (j - 1)] +
                       B(3, i) * db_store[2 + 3 * (j - 1)]);
    }
  }
  for (int j = 1; j <= 12; ++j)
    for (int i = 1; i < j; ++i) SM(j, i) = SM(i, j);

  shapes_at(0.0, 0.0);
  for (int n = 0; n < 4; ++n) {
    p[3 * n] = 0.5 * DPN(n + 5);
    p[3 * n + 1] = -0.5 * DPN(n + 1);
    p[3 * n + 2] = 0.25;
  }
  at = area * T;
}

// The hourglass pattern (+1, -1, +1, -1) of the rotations, which leaves a
// uniform rotation alone.
void hourglass_vector(double p[12]) {
  for (int n = 0; n < 4; ++n) {
    p[3 * n] = 0.0;
    p[3 * n + 1] = 0.0;
    p[3 * n + 2] = (n % 2 == 0) ? 0.25 : -0.25;
  }
}

void scatter_drilling(MatRef<double> SM, MatRef<double> S_arg) {
  MatRef<double> S = as_shape(S_arg, 24, 24);
  for (int32_t j = 1; j <= 12; ++j)
    for (int32_t i = 1; i <= 12; ++i) S(drill_dof(i), drill_dof(j)) += SM(i, j);
}

}  // namespace

void N4SHAPE(double XI, double ETA, VecRef<double> N) {
  for (int i = 0; i < 4; ++i) N(i + 1) = 0.25 * (1.0 + kNodeXi[i] * XI) * (1.0 + kNodeEta[i] * ETA);
}

void DN4SHAPE(double XI, double ETA, VecRef<double> DN) {
  for (int i = 0; i < 4; ++i) {
    DN(i + 1) = 0.25 * kNodeXi[i] * (1.0 + kNodeEta[i] * ETA);
    DN(i + 5) = 0.25 * kNodeEta[i] * (1.0 + kNodeXi[i] * XI);
  }
}

void DN8SHAPE(double XI, double ETA, VecRef<double> DN8) {
  for (int i = 0; i < 4; ++i) {
    const double a = kNodeXi[i], b = kNodeEta[i];
    DN8(i + 1) = 0.25 * a * (1.0 + b * ETA) * (2.0 * a * XI + b * ETA);
    DN8(i + 9) = 0.25 * b * (1.0 + a * XI) * (a * XI + 2.0 * b * ETA);
  }
  DN8(5) = -XI * (1.0 - ETA);
  DN8(13) = -0.5 * (1.0 - XI * XI);
  DN8(6) = 0.5 * (1.0 - ETA * ETA);
  DN8(14) = -(1.0 + XI) * ETA;
  DN8(7) = -XI * (1.0 + ETA);
  DN8(15) = 0.5 * (1.0 - XI * XI);
  DN8(8) = -0.5 * (1.0 - ETA * ETA);
  DN8(16) = -(1.0 - XI) * ETA;
}

void JACOB(MatRef<double> XY, VecRef<double> DN4, VecRef<double> DN8, VecRef<double> DPN,
           MatRef<double> JINV, double& DETJ) {
  double j11 = 0.0, j12 = 0.0, j21 = 0.0, j22 = 0.0;
  for (int i = 1; i <= 4; ++i) {
    j11 += DN4(i) * XY(1, i);
    j12 += DN4(i) * XY(2, i);
    j21 += DN4(i + 4) * XY(1, i);
    j22 += DN4(i + 4) * XY(2, i);
  }
  DETJ = j11 * j22 - j12 * j21;
  JINV(1, 1) = j22 / DETJ;
  JINV(1, 2) = -j12 / DETJ;
  JINV(2, 1) = -j21 / DETJ;
  JINV(2, 2) = j11 / DETJ;
  auto turn = [&](VecRef<double> V, int n) {
    for (int i = 1; i <= n; ++i) {
      const double dxi = V(i), deta = V(i + n);
      V(i) = JINV(1, 1) * dxi + JINV(1, 2) * deta;
      V(i + n) = JINV(2, 1) * dxi + JINV(2, 2) * deta;
    }
  };
  turn(DN8, 8);
  turn(DPN, 4);
}

void MEMB(VecRef<double> DN8, MatRef<double> SIDES, MatRef<double> B) {
  for (int32_t j = 1; j <= 12; ++j)
    for (int32_t r = 1; r <= 3; ++r) B(r, j) = 0.0;
  for (int32_t I = 1; I <= 4; ++I) {
    const int32_t next = I == 4 ? 1 : I + 1;  // side I -> next carries mid-side 4+I
    const int32_t mn = 4 + I;                 // mid-side after node I
    const int32_t mp = I == 1 ? 8 : 3 + I;    // mid-side before node I
    const double nx = DN8(I) + 0.5 * (DN8(mn) + DN8(mp));
    const double ny = DN8(I + 8) + 0.5 * (DN8(mn + 8) + DN8(mp + 8));
    // Rotation terms: the node is the start of side I -> next and the end of
    // the side before it.
    const double cux = -0.125 * SIDES(2, next) * DN8(mn) + 0.125 * SIDES(2, I) * DN8(mp);
    const double cuy = -0.125 * SIDES(2, next) * DN8(mn + 8) + 0.125 * SIDES(2, I) * DN8(mp + 8);
    const double cvx = 0.125 * SIDES(1, next) * DN8(mn) - 0.125 * SIDES(1, I) * DN8(mp);
    const double cvy = 0.125 * SIDES(1, next) * DN8(mn + 8) - 0.125 * SIDES(1, I) * DN8(mp + 8);
    const int32_t c = 3 * (I - 1);
    B(1, c + 1) = nx;
    B(3, c + 1) = ny;
    B(2, c + 2) = ny;
    B(3, c + 2) = nx;
    B(1, c + 3) = cux;
    B(2, c + 3) = cvy;
    B(3, c + 3) = cuy + cvx;
  }
}

void QUAD_WITH_DRILLING(const PlateContext& PC, MatRef<double> XY, double E, double C, double NU,
                        double T, MatRef<double> S, int32_t PLANE_MODE) {
  double d[9] = {};
  MatRef<double> D(d, 3, 3, "D");
  if (PC.plate.SCALE_FLAG != 1) {
    if (PLANE_MODE == 1) {
      D(1, 1) = D(2, 2) = (1.0 - NU) * C;
      D(1, 2) = D(2, 1) = NU * C;
      D(3, 3) = (1.0 - 2.0 * NU) * C / 2.0;
    } else {
      D(1, 1) = D(2, 2) = C;
      D(1, 2) = D(2, 1) = C * NU;
      D(3, 3) = C * (1.0 - NU) / 2.0;
    }
  } else {
    STRESS_STRAIN_MATRIX_PLT(PC.mat, PC.compliance, 0, D);
    int32_t iscale = 0, irot = 0;
    double t2[4], t3[9];
    MatRef<double> T2(t2, 2, 2, "T2"), T3(t3, 3, 3, "T3");
    CALC_ROTATION_MATRIX(PC, iscale, irot, T2, T3);
    const double e1 = (1.0 - NU * NU) * C;
    PLATE_STIFF_SCALE_MOD(PC, 3, e1, e1, e1 / (2.0 * (1.0 + NU)), NU, 0, T3, D, 1, 1);
  }
  double sm[144], p[12], at = 0.0;
  MatRef<double> SM(sm, 12, 12, "S");
  drilling_membrane(XY, d, T, false, SM, p, at);
  for (int32_t j = 1; j <= 12; ++j)
    for (int32_t i = 1; i <= 12; ++i)
      SM(i, j) += p[i - 1] * p[j - 1] * kDrillPenalty * E * at / (1.0 + NU);
  hourglass_vector(p);
  for (int32_t j = 1; j <= 12; ++j)
    for (int32_t i = 1; i <= 12; ++i)
      SM(i, j) += p[i - 1] * p[j - 1] * kDrillPenalty * at * E / (1.0 + NU);
  scatter_drilling(SM, S);
}

void QUAD_WITH_DRILLING_GNRL(MatRef<double> XY, MatRef<double> D1_arg, double D1_SHEARMOD, double T,
                             MatRef<double> S) {
  MatRef<double> D1 = as_shape(D1_arg, 3, 3);
  double d[9];
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) d[i + 3 * j] = D1(i + 1, j + 1);
  double sm[144], p[12], at = 0.0;
  MatRef<double> SM(sm, 12, 12, "S");
  drilling_membrane(XY, d, T, true, SM, p, at);
  const double pen = 0.002 * D1_SHEARMOD * at;
  for (int pass = 0; pass < 2; ++pass) {
    if (pass == 1) hourglass_vector(p);
    for (int32_t j = 1; j <= 12; ++j)
      for (int32_t i = 1; i <= 12; ++i) SM(i, j) += p[i - 1] * p[j - 1] * pen;
  }
  scatter_drilling(SM, S);
}

}  // namespace respcore
