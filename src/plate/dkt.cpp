// The thin plate triangle: stresses at a step, its variants and its stiffness.
#include "plate/dkt.hpp"

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "plate/constitutive.hpp"

namespace respcore {

void triangle_material(const PlateContext& C, double DM[9], double DB[9], double G, double* SC) {
  const ElementMaterial& m = C.mat;
  const double nu = m.MAT_POISSON;
  const double D0 = m.MAT_YOUNG / (1.0 - nu * nu);
  MatRef<double> dm(DM, 3, 3, "DM");
  MatRef<double> db(DB, 3, 3, "DB");
  dm.fill(0.0);
  if (m.MAT_TYPE == 1) {
    STRESS_STRAIN_MATRIX_PLT(m, C.compliance, 0, dm);
  } else {
    dm(1, 1) = D0;
    dm(2, 2) = D0;
    dm(1, 2) = D0 * nu;
    dm(2, 1) = D0 * nu;
    dm(3, 3) = D0 * (1.0 - nu) / 2.0;
  }
  for (int k = 0; k < 9; ++k) DB[k] = DM[k];
  if (SC) {
    SC[0] = 1.0, SC[1] = 0.0, SC[2] = 0.0, SC[3] = 1.0;
  }
  if (C.plate.SCALE_FLAG != 1) return;

  // The section factors act in the material axes: rebuild there, then turn
  // by the section angle.
  double ti[9], ts[4], t3[9], t2[4];
  MatRef<double> TI(ti, 3, 3, "TRAN_INPL_UDC2"), TS(ts, 2, 2, "TRAN_TRSH_UDC2");
  MatRef<double> T3(t3, 3, 3, "T3"), T2(t2, 2, 2, "T2");
  TRANS_VECT_MATL_GNRL(TI, TS, C.plate.SECT_ANGLE);
  INVERSE(C.diag, TI, T3, 3);
  const double e = (1.0 - nu * nu) * D0;
  PLATE_STIFF_SCALE_MOD(C, 3, e, e, G, nu, 0, T3, dm, 1, 1);
  PLATE_STIFF_SCALE_MOD(C, 3, e, e, G, nu, 0, T3, db, 2, 1);
  if (SC) {
    INVERSE(C.diag, TS, T2, 2);
    PLATE_STIFF_SCALE_MOD(C, 2, 1.0, 1.0, 0.0, 0.0, 0, T2, MatRef<double>(SC, 2, 2, "SC"), 3, 1);
  }
}

namespace {

void dkt_geometry(DktSaved& S, MatRef<double> XYZ, MatRef<double> TR) {
  triangle_geometry(XYZ, TR, S.geom);
  PT3INI(S.geom, S.pt3);
  triangle_points(S.geom, S.pt3, S.pts);
}

// Membrane strain and 2*AREA times the curvature at point p.
void dkt_strains(const DktSaved& S, int p, VecRef<double> CONST, double eps[3], double e[3]) {
  const double(*BM)[3] = S.pts.BM[p];
  const double(*KB)[3] = S.pts.KB[p];
  for (int r = 0; r < 3; ++r) eps[r] = e[r] = 0.0;
  for (int n = 0; n < 3; ++n) {
    const double u = CONST(6 * n + 1), v = CONST(6 * n + 2), w = CONST(6 * n + 3);
    const double rx = CONST(6 * n + 4), ry = CONST(6 * n + 5), rz = CONST(6 * n + 6);
    for (int r = 0; r < 3; ++r) {
      eps[r] += BM[3 * n][r] * u + BM[3 * n + 1][r] * v + BM[3 * n + 2][r] * rz;
      e[r] += w * KB[3 * n][r];
      e[r] += rx * KB[3 * n + 1][r];
      e[r] += ry * KB[3 * n + 2][r];
    }
  }
}

}  // namespace

void DKTLMT_STR(const PlateContext& C, DktSaved& S, int32_t& NNODE, VecRef<double> CONST,
                VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                int32_t FLAG) {
  NNODE = 3;
  if ((FLAG == 1 && STEP == 1) || FLAG == 2) {
    const double E = C.mat.MAT_YOUNG, nu = C.mat.MAT_POISSON;
    S.t = C.mat.PLATE_PROP[1];
    dkt_geometry(S, XYZ, TR);
    triangle_material(C, S.DM, S.DB, E / (2.0 * (1.0 + nu)), nullptr);
  }

  for (int k = 1; k <= 40; ++k) ST(k) = 0.0;
  const double K = S.t * 0.25 / S.geom.AREA;
  // Only the centroid block reaches the result: the element reports one
  // constant stress, copied to the four other blocks.
  const double(*BM)[3] = S.pts.BM[0];
  const double(*KB)[3] = S.pts.KB[0];
  const double* DM = S.DM;
  double s1 = 0.0, s2 = 0.0, s3 = 0.0, ex = 0.0, ey = 0.0, exy = 0.0;
  membrane_centroid_stress(BM, DM, CONST, s1, s2, s3);
  for (int n = 0; n < 3; ++n) {
    const double w = CONST(6 * n + 3), rx = CONST(6 * n + 4), ry = CONST(6 * n + 5);
    const double d[3] = {w, rx, ry};
    for (int c = 0; c < 3; ++c) ex += d[c] * KB[3 * n + c][0];
    for (int c = 0; c < 3; ++c) ey += d[c] * KB[3 * n + c][1];
    for (int c = 0; c < 3; ++c) exy += d[c] * KB[3 * n + c][2];
  }
  const double* DB = S.DB;
  const double block[8] = {s1,
                           s2,
                           s3,
                           (cm3(DB, 1, 1) * ex + cm3(DB, 1, 2) * ey) * K,
                           (cm3(DB, 2, 1) * ex + cm3(DB, 2, 2) * ey) * K,
                           cm3(DB, 3, 3) * exy * K,
                           0.0,
                           0.0};
  for (int p = 0; p < 5; ++p)
    for (int c = 0; c < 8; ++c) ST(8 * p + c + 1) = block[c];
}

void DKTLMT_STR_GNRL(const PlateContext& C, DktSaved& S, int32_t& NNODE, VecRef<double> CONST,
                     VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                     int32_t FLAG) {
  (void)FLAG;
  NNODE = 3;
  if (STEP == 1) {
    dkt_geometry(S, XYZ, TR);
    S.section = general_plate_section(C);
  }
  const double two_area = 2.0 * S.geom.AREA;
  const double shear[2] = {0.0, 0.0};
  for (int p = 0; p < 4; ++p) {
    double eps[3], e[3], block[8];
    dkt_strains(S, p, CONST, eps, e);
    const double kappa[3] = {e[0] / two_area, e[1] / two_area, e[2] / two_area};
    S.section.stress_block(eps, kappa, shear, block);
    for (int c = 0; c < 8; ++c) ST(8 * p + c + 1) = block[c];
  }
  for (int k = 33; k <= 40; ++k) ST(k) = 0.0;
}

void DKTLMT_PLANE_STR_DRILL(const PlateContext& C, DktSaved& S, int32_t PLANE_KIND,
                            double MAT_ANGLE, int32_t NNOD, VecRef<double> DISP_LOCAL,
                            VecRef<double> OUT, MatRef<double> XYZ, MatRef<double> PANEL_T,
                            int32_t STEP) {
  (void)NNOD;
  if (STEP == 1) {
    dkt_geometry(S, XYZ, PANEL_T);
    S.section = plane_section(C, PLANE_KIND, MAT_ANGLE);
  }
  // The membrane triples of the centroid and the three points, packed; the
  // fifth point and everything behind it are zero.
  for (int p = 0; p < 4; ++p) {
    double eps[3], e[3];
    dkt_strains(S, p, DISP_LOCAL, eps, e);
    for (int r = 0; r < 3; ++r)
      OUT(3 * p + r + 1) = S.section.Dm[r][0] * eps[0] + S.section.Dm[r][1] * eps[1] +
                           S.section.Dm[r][2] * eps[2];
  }
  for (int k = 13; k <= 40; ++k) OUT(k) = 0.0;
}

void BTDBLST(const PlateContext& C, const TriGeometry& G, double T, MatRef<double> STIF) {
  const double nu = C.mat.MAT_POISSON;
  double D[9], unused[9];
  triangle_material(C, D, unused, C.mat.MAT_YOUNG / (2.0 * (1.0 + nu)), nullptr);
  double xy[6];
  for (int i = 0; i < 3; ++i) xy[2 * i] = G.XY[i][0], xy[2 * i + 1] = G.XY[i][1];
  double k[9][9] = {};
  for (int ip = 1; ip <= 3; ++ip) {
    double xi, eta, w, det, d6[12], d3[6];
    INT3PL(3, ip, xi, eta, w);
    SHP6L(xi, eta, VecRef<double>(d6, 12, "DN6"), 1);
    SHP3L(xi, eta, VecRef<double>(d3, 6, "DN3"), 1);
    FORMBL(3, MatRef<double>(d3, 2, 3, "DN3"), MatRef<double>(xy, 2, 3, "XY"),
           MatRef<double>(d6, 2, 6, "DN6"), det, 2);
    double dn[6][2], bm[9][3];
    for (int q = 0; q < 6; ++q) dn[q][0] = d6[2 * q], dn[q][1] = d6[2 * q + 1];
    membrane_rows(G, dn, bm);
    const double f = w * (det < 0 ? -det : det) * T;
    for (int a = 0; a < 9; ++a) {
      double db[3];  // D * BM(:, a)
      for (int r = 1; r <= 3; ++r)
        db[r - 1] = cm3(D, r, 1) * bm[a][0] + cm3(D, r, 2) * bm[a][1] + cm3(D, r, 3) * bm[a][2];
      for (int b = 0; b < 9; ++b)
        k[b][a] += (bm[b][0] * db[0] + bm[b][1] * db[1] + bm[b][2] * db[2]) * f;
    }
  }
  // Freedoms u, v, rz of each node.
  const int map[9] = {1, 2, 6, 7, 8, 12, 13, 14, 18};
  for (int a = 0; a < 9; ++a)
    for (int b = 0; b < 9; ++b) STIF(map[b], map[a]) += k[b][a];
}

namespace {

// Adds C times the exact integral of the product of curvature I of node i
// and curvature J of node j into the bending block (w, rx, ry) of the pair.
void PT3DKT_M(const Pt3Coef& P, double Cf, int32_t I, int32_t i, int32_t J, int32_t j,
              MatRef<double> STIF) {
  double A1[3][3], A2[3][3];
  PT3ALP(P, I, i, A1);
  PT3ALP(P, J, j, A2);
  // The integral of Lr Ls over the triangle is AREA/12 (1 + delta_rs).
  for (int c = 0; c < 3; ++c) {
    const double col = A2[0][c] + A2[1][c] + A2[2][c];
    for (int r = 0; r < 3; ++r) A2[r][c] += col;
  }
  for (int c1 = 0; c1 < 3; ++c1)
    for (int c2 = 0; c2 < 3; ++c2)
      STIF(6 * i - 3 + c1, 6 * j - 3 + c2) +=
          Cf * (A1[0][c1] * A2[0][c2] + A1[1][c1] * A2[1][c2] + A1[2][c1] * A2[2][c2]);
}

void PT3EST_M(const Pt3Coef& P, const double Cf[5], int32_t i, int32_t j, MatRef<double> STIF) {
  PT3DKT_M(P, Cf[0], 1, i, 1, j, STIF);
  PT3DKT_M(P, Cf[1], 1, i, 2, j, STIF);
  PT3DKT_M(P, Cf[2], 2, i, 1, j, STIF);
  PT3DKT_M(P, Cf[3], 2, i, 2, j, STIF);
  PT3DKT_M(P, Cf[4], 3, i, 3, j, STIF);
}

}  // namespace

void DKTLMT_STF(const PlateContext& C, MatRef<double> XYZ, MatRef<double> TR, MatRef<double> STIF) {
  const double nu = C.mat.MAT_POISSON;
  TriGeometry G;
  Pt3Coef P;
  triangle_geometry(XYZ, TR, G);
  PT3INI(G, P);
  double DM[9], DB[9];
  triangle_material(C, DM, DB, C.mat.MAT_YOUNG / (2.0 * (1.0 + nu)), nullptr);

  for (int j = 1; j <= 18; ++j)
    for (int i = 1; i <= 18; ++i) STIF(i, j) = 0.0;
  BTDBLST(C, G, C.mat.PLATE_PROP[0], STIF);

  const double t = C.mat.PLATE_PROP[1];
  auto coef = [&](int i, int j) { return t * t * t * cm3(DB, i, j) / 12.0 / G.AREA / 48.0; };
  double Cf[5] = {coef(1, 1), coef(1, 2), coef(2, 1), coef(2, 2), coef(3, 3)};
  if (C.mat.MAT_TYPE != 1) Cf[2] = Cf[1];
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) PT3EST_M(P, Cf, i, j, STIF);
}

}  // namespace respcore
