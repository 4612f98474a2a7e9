// The thick plate triangle: edge data, strain rows, stresses at a step, its
// variants and its stiffness.
#include "plate/dkmt.hpp"

#include <cmath>

namespace respcore {

void dkmt_edges(const TriGeometry& G, double PHI_COEF, DkmtEdges& E) {
  const double x1 = G.XY[0][0], y1 = G.XY[0][1], x2 = G.XY[1][0], y2 = G.XY[1][1];
  const double x3 = G.XY[2][0], y3 = G.XY[2][1];
  E.X[0] = x2 - x1, E.Y[0] = y2 - y1;
  E.X[1] = x3 - x2, E.Y[1] = y3 - y2;
  E.X[2] = x1 - x3, E.Y[2] = y1 - y3;
  for (int k = 0; k < 3; ++k) {
    E.L[k] = std::sqrt(E.X[k] * E.X[k] + E.Y[k] * E.Y[k]);
    E.C[k] = E.X[k] / E.L[k];
    E.S[k] = E.Y[k] / E.L[k];
  }
  const double *c = E.C, *s = E.S;
  E.W6 = c[0] * s[2] - c[2] * s[0];
  E.W5 = s[0] * c[1] - c[0] * s[1];
  E.W4 = c[2] * s[1] - c[1] * s[2];
  for (int k = 0; k < 3; ++k) {
    E.PHI[k] = PHI_COEF / (E.L[k] * E.L[k]);
    E.H[k] = (1.0 / E.L[k]) / (1.0 + E.PHI[k]);
  }
}

void DKMTINI(const TriGeometry& G, double T, double NU, DkmtEdges& E) {
  // 2.4 is 2 over the shear correction factor 5/6.
  dkmt_edges(G, (2.4 / (1.0 - NU)) * T * T, E);
}

void dkmt_edge_matrix(const DkmtEdges& E, double A[9][3]) {
  for (int c = 0; c < 9; ++c) A[c][0] = A[c][1] = A[c][2] = 0.0;
  for (int k = 0; k < 3; ++k) {
    const int start = k, end = (k + 1) % 3;
    const double h = E.H[k], x = E.X[k], y = E.Y[k];
    A[3 * start][k] = 1.5 * h;
    A[3 * start + 1][k] = 0.75 * y * h;
    A[3 * start + 2][k] = -0.75 * x * h;
    A[3 * end][k] = -1.5 * h;
    A[3 * end + 1][k] = 0.75 * y * h;
    A[3 * end + 2][k] = -0.75 * x * h;
  }
}

void MKBBC(const DkmtEdges& E, double BBC[9][3]) {
  for (int c = 0; c < 9; ++c) BBC[c][0] = BBC[c][1] = BBC[c][2] = 0.0;
  // Node n's rotations pair with the edge opposite to it: 5, 6, 4.
  const int opposite[3] = {1, 2, 0};
  for (int n = 0; n < 3; ++n) {
    const double x = E.X[opposite[n]], y = E.Y[opposite[n]];
    BBC[3 * n + 1][1] = -x;
    BBC[3 * n + 1][2] = y;
    BBC[3 * n + 2][0] = -y;
    BBC[3 * n + 2][2] = x;
  }
}

void MKBBM(const DkmtEdges& E, const double DN[12], double BBM[9][3]) {
  double e[3][3];  // e[k][row]: column k of the edge matrix
  for (int k = 0; k < 3; ++k) {
    const double a = DN[2 * (k + 3)], b = DN[2 * (k + 3) + 1];
    const double P = a * E.X[2] + b * E.X[0];
    const double Q = a * E.Y[2] + b * E.Y[0];
    e[k][0] = -Q * E.C[k];
    e[k][1] = P * E.S[k];
    e[k][2] = P * E.C[k] - Q * E.S[k];
  }
  double A[9][3];
  dkmt_edge_matrix(E, A);
  for (int c = 0; c < 9; ++c)
    for (int r = 0; r < 3; ++r) BBM[c][r] = e[0][r] * A[c][0] + e[1][r] * A[c][1] + e[2][r] * A[c][2];
}

void MKBBS(const DkmtEdges& E, const double L[3], double BBS[9][2]) {
  const double *c = E.C, *s = E.S, *phi = E.PHI;
  const double W4 = E.W4, W5 = E.W5, W6 = E.W6;
  const double L1 = L[0], L2 = L[1], L3 = L[2];
  const double g[3][2] = {
      {phi[0] * (-L1 * s[2] / W6 + L2 * s[1] / W5), phi[0] * (L1 * c[2] / W6 - L2 * c[1] / W5)},
      {phi[1] * (-L2 * s[0] / W5 + L3 * s[2] / W4), phi[1] * (L2 * c[0] / W5 - L3 * c[2] / W4)},
      {phi[2] * (-L3 * s[1] / W4 + L1 * s[0] / W6), phi[2] * (L3 * c[1] / W4 - L1 * c[0] / W6)}};
  double A[9][3];
  dkmt_edge_matrix(E, A);
  for (int col = 0; col < 9; ++col)
    for (int r = 0; r < 2; ++r)
      BBS[col][r] =
          kDkmtShearScale * (g[0][r] * A[col][0] + g[1][r] * A[col][1] + g[2][r] * A[col][2]);
}

namespace {

// Strain rows of the four stress points, once the edge table is made.
void dkmt_points(DkmtSaved& S) {
  double xy[6];
  for (int i = 0; i < 3; ++i) xy[2 * i] = S.geom.XY[i][0], xy[2 * i + 1] = S.geom.XY[i][1];
  MKBBC(S.edges, S.BBC);
  for (int p = 0; p < 4; ++p) {
    double xi, eta, det, d6[12], d3[6];
    STROUT3(4, p + 1, xi, eta);
    SHP3L(xi, eta, VecRef<double>(S.SHAP[p], 3, "SHAP"), 0);
    SHP6L(xi, eta, VecRef<double>(d6, 12, "DN6"), 1);
    SHP3L(xi, eta, VecRef<double>(d3, 6, "DN3"), 1);
    MKBBM(S.edges, d6, S.BBM[p]);
    MKBBS(S.edges, S.SHAP[p], S.BBS[p]);
    FORMBL(3, MatRef<double>(d3, 2, 3, "DN3"), MatRef<double>(xy, 2, 3, "XY"),
           MatRef<double>(d6, 2, 6, "DN6"), det, 2);
    double dn[6][2];
    for (int k = 0; k < 6; ++k) dn[k][0] = d6[2 * k], dn[k][1] = d6[2 * k + 1];
    membrane_rows(S.geom, dn, S.BM[p]);
  }
}

void dkmt_section_setup(DkmtSaved& S, MatRef<double> XYZ, MatRef<double> TR,
                        const PlateSection& section) {
  S.section = section;
  triangle_geometry(XYZ, TR, S.geom);
  dkmt_edges(S.geom, section.phi_coef, S.edges);
  dkmt_points(S);
}

// The stress block of point p with the saved section.
void dkmt_section_block(const DkmtSaved& S, int p, VecRef<double> CONST, double block[8]) {
  double eps[3] = {0, 0, 0}, e[3] = {0, 0, 0}, g[2] = {0, 0};
  for (int n = 0; n < 3; ++n) {
    const double u = CONST(6 * n + 1), v = CONST(6 * n + 2), w = CONST(6 * n + 3);
    const double rx = CONST(6 * n + 4), ry = CONST(6 * n + 5), rz = CONST(6 * n + 6);
    const double(*BM)[3] = S.BM[p];
    for (int r = 0; r < 3; ++r) {
      eps[r] += BM[3 * n][r] * u + BM[3 * n + 1][r] * v + BM[3 * n + 2][r] * rz;
      e[r] += (S.BBC[3 * n][r] + S.BBM[p][3 * n][r]) * w +
              (S.BBC[3 * n + 1][r] + S.BBM[p][3 * n + 1][r]) * rx +
              (S.BBC[3 * n + 2][r] + S.BBM[p][3 * n + 2][r]) * ry;
    }
    for (int r = 0; r < 2; ++r)
      g[r] += S.BBS[p][3 * n][r] * w + S.BBS[p][3 * n + 1][r] * rx + S.BBS[p][3 * n + 2][r] * ry;
  }
  const double two_area = 2.0 * S.geom.AREA;
  const double kappa[3] = {e[0] / two_area, e[1] / two_area, e[2] / two_area};
  S.section.stress_block(eps, kappa, g, block);
}

}  // namespace

void DKMTLMT_STR(const PlateContext& C, DkmtSaved& S, int32_t& NNODE, VecRef<double> CONST,
                 VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP) {
  if (STEP == 1) {
    const ElementMaterial& m = C.mat;
    const double E = m.MAT_YOUNG, nu = m.MAT_POISSON;
    S.D0 = E / (1.0 - nu * nu);
    S.Gs = E / (2.0 * (1.0 + nu)) / 1.2;
    S.t = m.PLATE_PROP[1];
    S.mat_type = m.MAT_TYPE;
    NNODE = 3;
    triangle_geometry(XYZ, TR, S.geom);
    if (m.MAT_TYPE == 1) {
      S.e8 = m.MAT_VALS[7];
      S.e9 = m.MAT_VALS[8];
    }
    // A scaled section takes its shear modulus from the plate modulus.
    triangle_material(C, S.DM, S.DB, (1.0 - nu * nu) * S.D0 / (2.0 * (1.0 + nu)), S.SC);
    if (C.plate.SCALE_FLAG == 1) S.e8 = S.e9 = 1.0;
    DKMTINI(S.geom, S.t, nu, S.edges);
    dkmt_points(S);
  }

  for (int k = 1; k <= 40; ++k) ST(k) = 0.0;
  // Only the centroid block reaches the result (copied to the other four).
  const double(*BM)[3] = S.BM[0];
  const double(*BBM)[3] = S.BBM[0];
  const double(*BBS)[2] = S.BBS[0];
  const double(*BBC)[3] = S.BBC;
  const double* DM = S.DM;
  double s1 = 0.0, s2 = 0.0, s3 = 0.0, ex = 0.0, ey = 0.0, exy = 0.0, g1 = 0.0, g2 = 0.0;
  membrane_centroid_stress(BM, DM, CONST, s1, s2, s3);
  for (int n = 0; n < 3; ++n) {
    const double w = CONST(6 * n + 3), rx = CONST(6 * n + 4), ry = CONST(6 * n + 5);
    const int a = 3 * n, b = 3 * n + 1, c = 3 * n + 2;
    ex += BBC[a][0] * w + BBC[b][0] * rx + BBC[c][0] * ry;
    ey += BBC[a][1] * w + BBC[b][1] * rx + BBC[c][1] * ry;
    exy += BBC[a][2] * w + BBC[b][2] * rx + BBC[c][2] * ry;
    ex += BBM[a][0] * w + BBM[b][0] * rx + BBM[c][0] * ry;
    ey += BBM[a][1] * w + BBM[b][1] * rx + BBM[c][1] * ry;
    exy += BBM[a][2] * w + BBM[b][2] * rx + BBM[c][2] * ry;
    g1 += BBS[a][0] * w + BBS[b][0] * rx + BBS[c][0] * ry;
    g2 += BBS[a][1] * w + BBS[b][1] * rx + BBS[c][1] * ry;
  }
  double block[8] = {s1, s2, s3, 0, 0, 0, 0, 0};
  const double* SC = S.SC;
  if (S.mat_type == 1) {
    const double K = S.t * 0.25 / S.geom.AREA;
    block[3] = (cm3(DM, 1, 1) * ex + cm3(DM, 1, 2) * ey) * K;
    block[4] = (cm3(DM, 2, 1) * ex + cm3(DM, 2, 2) * ey) * K;
    block[5] = cm3(DM, 3, 3) * exy * K;
    block[kShearRowYZ - 1] = g2 * S.e9 * cm2(SC, 1, 1);
    block[kShearRowXZ - 1] = g1 * S.e8 * cm2(SC, 2, 2);
  } else {
    // The isotropic bending rows carry D0 once more on top of the D0 that DB
    // holds; results were produced that way.
    const double* DB = S.DB;
    const double K = S.D0 * S.t * 0.25 / S.geom.AREA;
    block[3] = (cm3(DB, 1, 1) * ex + cm3(DB, 1, 2) * ey) * K;
    block[4] = (cm3(DB, 2, 1) * ex + cm3(DB, 2, 2) * ey) * K;
    block[5] = cm3(DB, 3, 3) * exy * K;
    block[kShearRowYZ - 1] = S.Gs * g2 * cm2(SC, 1, 1);
    block[kShearRowXZ - 1] = S.Gs * g1 * cm2(SC, 2, 2);
  }
  for (int p = 0; p < 5; ++p)
    for (int c = 0; c < 8; ++c) ST(8 * p + c + 1) = block[c];
}

void DKMTLMT_STR_GNRL(const PlateContext& C, DkmtSaved& S, int32_t& NNODE, VecRef<double> CONST,
                      VecRef<double> ST, MatRef<double> XYZ, MatRef<double> TR, int32_t STEP,
                      int32_t FLAG) {
  (void)FLAG;
  NNODE = 3;
  if (STEP == 1) dkmt_section_setup(S, XYZ, TR, general_plate_section(C));
  for (int p = 0; p < 4; ++p) {
    double block[8];
    dkmt_section_block(S, p, CONST, block);
    for (int c = 0; c < 8; ++c) ST(8 * p + c + 1) = block[c];
  }
  for (int k = 33; k <= 40; ++k) ST(k) = 0.0;
}

void DKMTLMT_STR_STIFFENED(const PlateContext& C, DkmtSaved& S, int32_t ZERO, int32_t& NNODE,
                           VecRef<double> D, VecRef<double> ST, MatRef<double> XYZ,
                           MatRef<double> TR, int32_t STEP) {
  (void)ZERO;
  NNODE = 3;
  if (STEP == 1) dkmt_section_setup(S, XYZ, TR, stiffened_plate_section(C));
  double block[8];
  dkmt_section_block(S, 0, D, block);
  for (int p = 0; p < 5; ++p)
    for (int c = 0; c < 8; ++c) ST(8 * p + c + 1) = block[c];
}

void DKMTLMT_STF(const PlateContext& C, MatRef<double> XYZ, MatRef<double> TR,
                 MatRef<double> STIF) {
  const ElementMaterial& m = C.mat;
  const double E = m.MAT_YOUNG, nu = m.MAT_POISSON;
  const double D0 = E / (1.0 - nu * nu);
  const double t1 = m.PLATE_PROP[0], t2 = m.PLATE_PROP[1];
  double DM[9], DB[9], SC[4];
  triangle_material(C, DM, DB, (1.0 - nu * nu) * D0 / (2.0 * (1.0 + nu)), SC);

  // Shear rigidity per unit thickness over (xz, yz), times the section
  // factors; the product is taken symmetric (the two factors commute unless
  // a scaled orthotropic section is turned).
  double ds[4] = {0, 0, 0, 0};
  if (m.MAT_TYPE == 1) {
    ds[0] = m.MAT_VALS[7] / 1.2;
    ds[3] = m.MAT_VALS[8] / 1.2;
  } else {
    ds[0] = ds[3] = E / (2.0 * (1.0 + nu)) / 1.2;
  }
  double dsc[2][2];
  for (int i = 1; i <= 2; ++i)
    for (int j = 1; j <= 2; ++j)
      dsc[i - 1][j - 1] = 0.5 * (cm2(ds, i, i) * cm2(SC, i, j) + cm2(SC, i, j) * cm2(ds, j, j)) * t2;
  double db[3][3];
  for (int i = 1; i <= 3; ++i)
    for (int j = 1; j <= 3; ++j) db[i - 1][j - 1] = t2 * t2 * t2 / 12.0 * cm3(DB, i, j);

  TriGeometry G;
  DkmtEdges Ed;
  triangle_geometry(XYZ, TR, G);
  for (int j = 1; j <= 18; ++j)
    for (int i = 1; i <= 18; ++i) STIF(i, j) = 0.0;
  BTDBLST(C, G, t1, STIF);

  // DKMTB and DKMTS: bending and shear over (w, rx, ry) of the three nodes.
  DKMTINI(G, t2, nu, Ed);
  double BBC[9][3];
  MKBBC(Ed, BBC);
  const double two_area = 2.0 * G.AREA;
  double k[9][9] = {};
  for (int ip = 1; ip <= 3; ++ip) {
    double xi, eta, w, L[3], d6[12];
    INT3PL(3, ip, xi, eta, w);
    SHP3L(xi, eta, VecRef<double>(L, 3, "SHAP"), 0);
    SHP6L(xi, eta, VecRef<double>(d6, 12, "DN6"), 1);
    double bb[9][3], bs[9][2];
    MKBBM(Ed, d6, bb);
    MKBBS(Ed, L, bs);
    for (int c = 0; c < 9; ++c)
      for (int r = 0; r < 3; ++r) bb[c][r] = (BBC[c][r] + bb[c][r]) / two_area;
    const double f = w * two_area;
    for (int a = 0; a < 9; ++a) {
      double dba[3], dsa[2];
      for (int r = 0; r < 3; ++r) dba[r] = db[r][0] * bb[a][0] + db[r][1] * bb[a][1] + db[r][2] * bb[a][2];
      for (int r = 0; r < 2; ++r) dsa[r] = dsc[r][0] * bs[a][0] + dsc[r][1] * bs[a][1];
      for (int b = 0; b < 9; ++b)
        k[b][a] += (bb[b][0] * dba[0] + bb[b][1] * dba[1] + bb[b][2] * dba[2] +
                    bs[b][0] * dsa[0] + bs[b][1] * dsa[1]) *
                   f;
    }
  }
  const int map[9] = {3, 4, 5, 9, 10, 11, 15, 16, 17};
  for (int a = 0; a < 9; ++a)
    for (int b = 0; b < 9; ++b) STIF(map[b], map[a]) += k[b][a];
}

}  // namespace respcore
