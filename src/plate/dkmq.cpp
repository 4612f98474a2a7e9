#include "plate/dkmq.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"
#include "plate/constitutive.hpp"
#include "plate/wilson.hpp"

namespace respcore {

namespace {

// Offsets of w, rx and ry among the six freedoms of a node.
constexpr int kW = 2, kRx = 3, kRy = 4;

// Natural coordinates of the stress points: the centre, then the 2x2 points.
void stress_point(int32_t p, double& xi, double& eta) {
  if (p == 1) {
    xi = eta = 0.0;
    return;
  }
  constexpr int32_t ixi[4] = {1, 2, 2, 1};
  constexpr int32_t ieta[4] = {1, 1, 2, 2};
  double w;
  INTPT4(2, ixi[p - 2], xi, w);
  INTPT4(2, ieta[p - 2], eta, w);
}

std::string e15_6(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%15.6E", v);
  return buf;
}

// Geometry and kinematics of a stress set-up: flat element, warp rows, mode
// condensation with the membrane matrix DMEMB and thickness TMEMB, side data,
// and the rows of the five points.
void stress_setup(DkmqSaved& SV, MatRef<double> XYZ_arg, MatRef<double> TR, double phi_coef,
                  int32_t memb_kind, int32_t thin, MatRef<double> DMEMB, double TMEMB,
                  bool general_condensation) {
  MatRef<double> XYZ = as_shape(XYZ_arg, 3, 4);
  SV.memb_kind = memb_kind;
  SV.thin = thin;
  double x[4], y[4], z[4];
  for (int n = 0; n < 4; ++n) {
    x[n] = XYZ(1, n + 1);
    y[n] = XYZ(2, n + 1);
    z[n] = XYZ(3, n + 1);
  }
  VecRef<double> ZCOOR(SV.ZCOOR, 4, "ZCOOR");
  MatRef<double> XY1 = SV.xy1();
  SV.warped = dkmq_flatten(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"),
                           VecRef<double>(z, 4, "Z"), TR, XY1, ZCOOR);

  std::fill(std::begin(SV.EST), std::end(SV.EST), 0.0);
  if (SV.warped) {
    JACQ3D_DKMQ(XY1, ZCOOR, SV.est(1));
    for (int32_t p = 2; p <= 5; ++p) std::copy(SV.EST, SV.EST + 72, SV.EST + 72 * (p - 1));
  }
  if (memb_kind == 0) {
    double s12[144];
    MatRef<double> S12(s12, 12, 12, "S");
    MatRef<double> WORK1(SV.WORK1, 4, 9, "WORK1");
    if (general_condensation)
      WILSON_GNRL(XY1, DMEMB, TMEMB, 12, 1, S12, WORK1);
    else
      WILSON(XY1, DMEMB, TMEMB, 12, 1, S12, WORK1);
  }
  const CentreJacobian J0 = quad_centre_jacobian(XY1);
  dkmq_sides(SV.geom, XY1, phi_coef);

  double dp[8], jinv[4];
  VecRef<double> DP(dp, 8, "DP");
  MatRef<double> JINV(jinv, 2, 2, "JINV");
  MatRef<double> A(SV.A, 4, 12, "A");
  for (int32_t p = 1; p <= 5; ++p) {
    double xi, eta, detj;
    stress_point(p, xi, eta);
    VecRef<double> DN(SV.DN + 8 * (p - 1), 8, "DN");
    SHP4L(xi, eta, DN, 1);
    DPN(xi, eta, DP);
    DKMQINV(4, XY1, DN, DP, detj, JINV);
    BMMAT(SV.geom, SV.est(p), A, DN, DP);
    incompatible_mode_rows(J0, 2.0 / detj, xi, eta,
                           MatRef<double>(SV.INC + 12 * (p - 1), 3, 4, "INC"));
    dkmq_shear_rows(SV.geom, xi, eta, JINV, MatRef<double>(SV.QS + 8 * (p - 1), 2, 4, "Q"));
  }
}

}  // namespace

void dkmq_stress_step(const DkmqSaved& SV, VecRef<double> DISP, MatRef<double> STRS_arg,
                      int32_t KEEP) {
  MatRef<double> STRS = as_shape(STRS_arg, 8, 5);
  double d[24];
  for (int i = 0; i < 24; ++i) d[i] = DISP(i + 1);

  // Side parameters A d, shared by the points.
  double ad[4] = {};
  for (int k = 0; k < 4; ++k)
    for (int n = 0; n < 4; ++n)
      for (int c = 0; c < 3; ++c) ad[k] += SV.A[k + 4 * (3 * n + c)] * d[6 * n + kW + c];
  double amp[4] = {};
  if (SV.memb_kind == 0) {
    const double um[8] = {d[0], d[1], d[6], d[7], d[12], d[13], d[18], d[19]};
    incompatible_mode_amplitudes(SV.WORK1, um, amp);
  }
  const int lo = SV.warped ? 0 : kW, hi = SV.warped ? 5 : kRy;

  for (int32_t p = 1; p <= 5; ++p) {
    const double* dn = SV.DN + 8 * (p - 1);
    const double* est = SV.EST + 72 * (p - 1);
    const double* inc = SV.INC + 12 * (p - 1);
    const double* q = SV.QS + 8 * (p - 1);
    double eps[3] = {}, kap[3] = {}, gam[2] = {};
    for (int n = 0; n < 4; ++n) {
      const double u = d[6 * n], v = d[6 * n + 1], nx = dn[2 * n], ny = dn[2 * n + 1];
      eps[0] += nx * u;
      eps[1] += ny * v;
      eps[2] += ny * u + nx * v;
      for (int f = lo; f <= hi; ++f)
        for (int r = 0; r < 3; ++r) kap[r] += est[r + 3 * (6 * n + f)] * d[6 * n + f];
    }
    for (int k = 0; k < 4; ++k)
      for (int r = 0; r < 3; ++r) eps[r] += inc[r + 3 * k] * amp[k];
    if (!SV.thin)
      for (int a = 0; a < 2; ++a)
        for (int k = 0; k < 4; ++k) gam[a] += 0.25 * q[a + 2 * k] * ad[k];
    double blk[8];
    SV.section.stress_block(eps, kap, gam, blk);
    if (SV.thin) blk[kShearRowYZ - 1] = blk[kShearRowXZ - 1] = 0.0;
    for (int r = 0; r < 8; ++r) STRS(r + 1, p) = blk[r];
  }

  if (KEEP == 1) {
    DISP.fill(0.0);
    for (int32_t p = 1; p <= 5; ++p)
      for (int32_t c = 1; c <= 3; ++c) DISP(3 * (p - 1) + c) = STRS(c, p);
    VecRef<double> flat = STRS.flat();
    for (int32_t i = 1; i <= 15; ++i) flat(i) = DISP(i);
  }
}

namespace {

// Set-up with the ordinary section, traced to the message sink.
void ordinary_setup(const PlateContext& C, DkmqSaved& SV, int32_t memb_kind, int32_t thin,
                    MatRef<double> XYZ, MatRef<double> TR) {
  double d[9], dbend[9], ds[4];
  MatRef<double> D(d, 3, 3, "D"), DBEND(dbend, 3, 3, "DB"), DS(ds, 2, 2, "DS");
  dkmq_material(C, 0, D, DBEND, DS);
  const double T1 = C.mat.PLATE_PROP[0], T2 = C.mat.PLATE_PROP[1], NU = C.mat.MAT_POISSON;

  PlateSection& sect = SV.section;
  sect = PlateSection{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) sect.Dbs[i][j] = 0.5 * T2 * DBEND(i + 1, j + 1);
  // The membrane rows use the direct terms and the in-plane shear only.
  sect.Dm[0][0] = D(1, 1);
  sect.Dm[0][1] = D(1, 2);
  sect.Dm[1][0] = D(2, 1);
  sect.Dm[1][1] = D(2, 2);
  sect.Dm[2][2] = D(3, 3);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) sect.Ds[i][j] = DS(i + 1, j + 1);
  sect.phi_coef = thin ? 0.0 : 2.4 * T2 * T2 / (1.0 - NU);

  write_message(C.diag, "D DB MATRIX");
  for (int i = 0; i < 3; ++i) {
    std::string line;
    for (int j = 1; j <= 3; ++j) line += e15_6(D(i + 1, j));
    for (int j = 0; j < 3; ++j) line += e15_6(sect.Dbs[i][j]);
    write_message(C.diag, line);
  }
  write_message(C.diag, "DS MATRIX");
  for (int i = 1; i <= 2; ++i) write_message(C.diag, e15_6(DS(i, 1)) + e15_6(DS(i, 2)));

  stress_setup(SV, XYZ, TR, sect.phi_coef, memb_kind, thin, D, T1, false);
}

}  // namespace

// --- element kit ---

void dkmq_sides(DkmqGeom& G, MatRef<double> XY1, double PHI_COEF) {
  for (int k = 0; k < 4; ++k) {
    const int i = k + 1, j = (k + 1) % 4 + 1;
    G.XK[k] = XY1(1, j) - XY1(1, i);
    G.YK[k] = XY1(2, j) - XY1(2, i);
    G.LK[k] = std::sqrt(G.XK[k] * G.XK[k] + G.YK[k] * G.YK[k]);
    G.CK[k] = G.XK[k] / G.LK[k];
    G.SK[k] = G.YK[k] / G.LK[k];
    G.PHI[k] = PHI_COEF / (G.LK[k] * G.LK[k]);
    G.RK[k] = 1.0 / (G.LK[k] * (1.0 + G.PHI[k]));
  }
}

void DKMQINI(DkmqGeom& G, MatRef<double> XY1, double T, double NU) {
  dkmq_sides(G, XY1, 2.4 * T * T / (1.0 - NU));
}

void DPN(double XI, double ETA, VecRef<double> P) {
  P(1) = -XI * (1.0 - ETA);
  P(2) = -0.5 * (1.0 - XI * XI);
  P(3) = 0.5 * (1.0 - ETA * ETA);
  P(4) = -(1.0 + XI) * ETA;
  P(5) = -XI * (1.0 + ETA);
  P(6) = 0.5 * (1.0 - XI * XI);
  P(7) = -0.5 * (1.0 - ETA * ETA);
  P(8) = -(1.0 - XI) * ETA;
}

void DKMQINV(int32_t NN, MatRef<double> XY1, VecRef<double> DN, VecRef<double> DP, double& DETJ,
             MatRef<double> JINV) {
  double j11 = 0.0, j12 = 0.0, j21 = 0.0, j22 = 0.0;
  for (int32_t i = 1; i <= NN; ++i) {
    j11 += DN(2 * i - 1) * XY1(1, i);
    j12 += DN(2 * i - 1) * XY1(2, i);
    j21 += DN(2 * i) * XY1(1, i);
    j22 += DN(2 * i) * XY1(2, i);
  }
  DETJ = j11 * j22 - j12 * j21;
  JINV(1, 1) = j22 / DETJ;
  JINV(1, 2) = -j12 / DETJ;
  JINV(2, 1) = -j21 / DETJ;
  JINV(2, 2) = j11 / DETJ;
  for (int32_t i = 1; i <= 4; ++i) {
    for (VecRef<double>* V : {&DN, &DP}) {
      const double a = (*V)(2 * i - 1), b = (*V)(2 * i);
      (*V)(2 * i - 1) = JINV(1, 1) * a + JINV(1, 2) * b;
      (*V)(2 * i) = JINV(2, 1) * a + JINV(2, 2) * b;
    }
  }
}

void dkmq_side_matrix(const DkmqGeom& G, MatRef<double> A) {
  for (int32_t j = 1; j <= 12; ++j)
    for (int32_t k = 1; k <= 4; ++k) A(k, j) = 0.0;
  for (int k = 0; k < 4; ++k) {
    const int32_t ci = 3 * k + 1, cj = 3 * ((k + 1) % 4) + 1;
    const double r = G.RK[k];
    A(k + 1, ci) = r;
    A(k + 1, ci + 1) = G.YK[k] * r / 2.0;
    A(k + 1, ci + 2) = -G.XK[k] * r / 2.0;
    A(k + 1, cj) = -r;
    A(k + 1, cj + 1) = G.YK[k] * r / 2.0;
    A(k + 1, cj + 2) = -G.XK[k] * r / 2.0;
  }
}

void BMMAT(const DkmqGeom& G, MatRef<double> EST, MatRef<double> A, VecRef<double> DN,
           VecRef<double> DP) {
  double bb[3][4];
  for (int k = 0; k < 4; ++k) {
    const double px = DP(2 * k + 1), py = DP(2 * k + 2);
    bb[0][k] = G.CK[k] * px;
    bb[1][k] = G.SK[k] * py;
    bb[2][k] = G.SK[k] * px + G.CK[k] * py;
  }
  dkmq_side_matrix(G, A);
  for (int32_t n = 0; n < 4; ++n) {
    const double nx = DN(2 * n + 1), ny = DN(2 * n + 2);
    const int32_t rx = 6 * n + kRx + 1, ry = 6 * n + kRy + 1;
    EST(1, ry) += nx;
    EST(2, rx) += -ny;
    EST(3, ry) += ny;
    EST(3, rx) += -nx;
    for (int c = 0; c < 3; ++c) {
      const int32_t col = 6 * n + kW + 1 + c;
      for (int r = 0; r < 3; ++r) {
        double s = 0.0;
        for (int k = 0; k < 4; ++k) s += bb[r][k] * kSideIncrementFactor * A(k + 1, 3 * n + c + 1);
        EST(r + 1, col) += s;
      }
    }
  }
}

void dkmq_shear_rows(const DkmqGeom& G, double XI, double ETA, MatRef<double> JINV,
                     MatRef<double> Q) {
  for (int32_t a = 1; a <= 2; ++a) {
    Q(a, 1) = -(1.0 - ETA) * JINV(a, 1) * G.LK[0] * G.PHI[0];
    Q(a, 2) = -(1.0 + XI) * JINV(a, 2) * G.LK[1] * G.PHI[1];
    Q(a, 3) = (1.0 + ETA) * JINV(a, 1) * G.LK[2] * G.PHI[2];
    Q(a, 4) = (1.0 - XI) * JINV(a, 2) * G.LK[3] * G.PHI[3];
  }
}

void DKMQSHR(const DkmqGeom& G, MatRef<double> S_arg, MatRef<double> Q, MatRef<double> DS,
             double WT) {
  MatRef<double> S = as_shape(S_arg, 24, 24);
  double beta[48], bs[2][12];
  MatRef<double> BETA(beta, 4, 12, "BETA");
  dkmq_side_matrix(G, BETA);
  for (int a = 0; a < 2; ++a)
    for (int j = 0; j < 12; ++j) {
      double s = 0.0;
      for (int k = 1; k <= 4; ++k) s += Q(a + 1, k) * BETA(k, j + 1);
      bs[a][j] = s;
    }
  for (int i = 0; i < 12; ++i) {
    const double ti0 = bs[0][i] * DS(1, 1) + bs[1][i] * DS(2, 1);
    const double ti1 = bs[0][i] * DS(1, 2) + bs[1][i] * DS(2, 2);
    const int32_t ri = 6 * (i / 3) + kW + 1 + i % 3;
    for (int j = 0; j < 12; ++j) {
      const int32_t cj = 6 * (j / 3) + kW + 1 + j % 3;
      S(ri, cj) += (ti0 * bs[0][j] + ti1 * bs[1][j]) * WT;
    }
  }
}

void DKMQBND_MOD(MatRef<double> S_arg, MatRef<double> EST, MatRef<double> D, double WT,
                 int32_t WARPED) {
  MatRef<double> S = as_shape(S_arg, 24, 24);
  const int lo = WARPED ? 1 : kW + 1, hi = WARPED ? 6 : kRy + 1;
  int32_t cols[24];
  int nc = 0;
  for (int n = 0; n < 4; ++n)
    for (int f = lo; f <= hi; ++f) cols[nc++] = 6 * n + f;
  double db[3][24];
  for (int j = 0; j < nc; ++j)
    for (int r = 1; r <= 3; ++r)
      db[r - 1][j] =
          (D(r, 1) * EST(1, cols[j]) + D(r, 2) * EST(2, cols[j]) + D(r, 3) * EST(3, cols[j])) * WT;
  for (int i = 0; i < nc; ++i)
    for (int j = 0; j < nc; ++j)
      S(cols[i], cols[j]) +=
          EST(1, cols[i]) * db[0][j] + EST(2, cols[i]) * db[1][j] + EST(3, cols[i]) * db[2][j];
}

void JACQ3D_DKMQ(MatRef<double> XY1, VecRef<double> ZCOOR, MatRef<double> EST) {
  double h[3] = {};
  for (int32_t i = 1; i <= 4; ++i) {
    const int32_t j = i % 4 + 1;
    const double dx = XY1(1, j) - XY1(1, i), dy = XY1(2, j) - XY1(2, i);
    const double dz = ZCOOR(j) - ZCOOR(i), q = dx * dx + dy * dy;
    h[0] += dx * dx * dz / q;
    h[1] += dy * dy * dz / q;
    h[2] += 2.0 * dz * dx * dy / q;
  }
  const double ax = XY1(1, 3) - XY1(1, 1), ay = XY1(2, 3) - XY1(2, 1);
  const double bx = XY1(1, 4) - XY1(1, 2), by = XY1(2, 4) - XY1(2, 2);
  const double w = 2.0 * (ax * by - bx * ay), w2 = w * w / 4.0;
  // 4/W times the spin of the bilinear field at the centre, node by node.
  const double cu[4] = {-bx / w2, ax / w2, bx / w2, -ax / w2};
  const double cv[4] = {-by / w2, ay / w2, by / w2, -ay / w2};
  for (int32_t n = 0; n < 4; ++n)
    for (int32_t r = 1; r <= 3; ++r) {
      EST(r, 6 * n + 1) = h[r - 1] * cu[n];
      EST(r, 6 * n + 2) = h[r - 1] * cv[n];
      EST(r, 6 * n + 6) = h[r - 1] * (-1.0 / w);
    }
}

void PROJ3D_MOD(MatRef<double> S, int32_t I, int32_t J, double ZROW, double ZCOL) {
  const int32_t r0 = 6 * (I - 1), c0 = 6 * (J - 1);
  for (int32_t k = 1; k <= 6; ++k) {
    S(r0 + k, c0 + 4) += ZCOL * S(r0 + k, c0 + 2);
    S(r0 + k, c0 + 5) -= ZCOL * S(r0 + k, c0 + 1);
  }
  for (int32_t l = 1; l <= 6; ++l) {
    S(r0 + 4, c0 + l) += ZROW * S(r0 + 2, c0 + l);
    S(r0 + 5, c0 + l) -= ZROW * S(r0 + 1, c0 + l);
  }
}

int32_t dkmq_flatten(VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> T,
                     MatRef<double> XY1, VecRef<double> ZCOOR) {
  double c0[3] = {};
  for (int32_t k = 1; k <= 4; ++k) {
    c0[0] += 0.25 * X(k);
    c0[1] += 0.25 * Y(k);
    c0[2] += 0.25 * Z(k);
  }
  double tol = 0.0;
  for (int32_t k = 1; k <= 4; ++k) {
    for (int32_t i = 1; i <= 2; ++i) {
      XY1(i, k) = T(i, 1) * X(k) + T(i, 2) * Y(k) + T(i, 3) * Z(k) -
                  (T(i, 1) * X(1) + T(i, 2) * Y(1) + T(i, 3) * Z(1));
      tol = std::max(tol, std::fabs(XY1(i, k)));
    }
    ZCOOR(k) = (X(k) - c0[0]) * T(3, 1) + (Y(k) - c0[1]) * T(3, 2) + (Z(k) - c0[2]) * T(3, 3);
  }
  tol *= 1.0e-5;
  for (int32_t k = 1; k <= 4; ++k)
    if (std::fabs(ZCOOR(k)) <= tol) ZCOOR(k) = 0.0;
  return ZCOOR(1) != 0.0 ? 1 : 0;
}

void dkmq_material(const PlateContext& C, int32_t STORED_ANGLE, MatRef<double> D_arg,
                   MatRef<double> DBEND_arg, MatRef<double> DS_arg) {
  MatRef<double> D = as_shape(D_arg, 3, 3), DB = as_shape(DBEND_arg, 3, 3);
  MatRef<double> DS = as_shape(DS_arg, 2, 2);
  const ElementMaterial& m = C.mat;
  const double E = m.MAT_YOUNG, NU = m.MAT_POISSON, G = E / (2.0 * (1.0 + NU));
  D.fill(0.0);
  DS.fill(0.0);
  if (m.MAT_TYPE == 1) {
    STRESS_STRAIN_MATRIX_PLT(m, C.compliance, 0, D);
    DS(1, 1) = m.MAT_VALS[7] / 1.2;
    DS(2, 2) = m.MAT_VALS[8] / 1.2;
  } else {
    D(1, 1) = D(2, 2) = E / (1.0 - NU * NU);
    D(1, 2) = D(2, 1) = NU * D(1, 1);
    D(3, 3) = G;
    DS(1, 1) = DS(2, 2) = G / 1.2;
  }

  int32_t iscale = 0, irot = 0;
  double t2[4], t3[9];
  MatRef<double> T2(t2, 2, 2, "T2"), T3(t3, 3, 3, "T3");
  CALC_ROTATION_MATRIX(C, iscale, irot, T2, T3);
  if (irot == 1) {
    TRANS_D_SKEW(D, T3, 3);
    TRANS_D_SKEW(DS, T2, 2);
  }
  for (int j = 1; j <= 3; ++j)
    for (int i = 1; i <= 3; ++i) DB(i, j) = D(i, j);
  if (iscale != 1) return;

  if (STORED_ANGLE == 1) {
    double inpl[9], trsh[4];
    MatRef<double> TI(inpl, 3, 3, "TRAN_INPL_UDC2"), TT(trsh, 2, 2, "TRAN_TRSH_UDC2");
    TRANS_VECT_MATL_GNRL(TI, TT, C.plate.SECT_ANGLE);
    INVERSE(C.diag, TI, T3, 3);
    INVERSE(C.diag, TT, T2, 2);
  }
  PLATE_STIFF_SCALE_MOD(C, 3, E, E, G, 0.0, 0, T3, D, 1, 1);
  PLATE_STIFF_SCALE_MOD(C, 3, E, E, G, NU, 0, T3, DB, 2, 1);
  const double ds11 = DS(1, 1), ds22 = DS(2, 2);
  PLATE_STIFF_SCALE_MOD(C, 2, ds11, ds22, 0.0, 0.0, 0, T2, DS, 3, 1);
}

// --- stress routines ---

void dkmq_section_setup(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t THIN,
                        int32_t GENERAL_CONDENSATION, MatRef<double> XYZ, MatRef<double> TR) {
  SV.section = SECT;
  if (THIN) SV.section.phi_coef = 0.0;
  double dm[9];
  MatRef<double> DM(dm, 3, 3, "D1");
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) DM(i + 1, j + 1) = SECT.Dm[i][j];
  stress_setup(SV, XYZ, TR, SV.section.phi_coef, MEMB_KIND, THIN, DM, 1.0,
               GENERAL_CONDENSATION == 1);
}

void DKMQ_STR_WARP(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                   VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                   MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP) {
  (void)NN;
  if (NEWELEM == 1) ordinary_setup(C, SV, MEMB_KIND, 0, XYZ, TRANS);
  dkmq_stress_step(SV, DISP, STRS, KEEP);
}

void SHL3DS_STR(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ, MatRef<double> TRANS,
                int32_t NEWELEM, int32_t KEEP) {
  (void)NN;
  if (NEWELEM == 1) ordinary_setup(C, SV, MEMB_KIND, 1, XYZ, TRANS);
  dkmq_stress_step(SV, DISP, STRS, KEEP);
}

void DKMQ_STR_WARP_GNRL(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                        VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                        MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP) {
  (void)NN;
  if (NEWELEM == 1) dkmq_section_setup(SECT, SV, MEMB_KIND, 0, 1, XYZ, TRANS);
  dkmq_stress_step(SV, DISP, STRS, KEEP);
}

void SHL3DS_STR_GNRL(const PlateSection& SECT, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                     VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                     MatRef<double> TRANS, int32_t NEWELEM, int32_t KEEP) {
  (void)NN;
  if (NEWELEM == 1) dkmq_section_setup(SECT, SV, MEMB_KIND, 1, 1, XYZ, TRANS);
  dkmq_stress_step(SV, DISP, STRS, KEEP);
}

}  // namespace respcore
