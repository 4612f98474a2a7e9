#include "plane/plane_high_matrices.hpp"

#include <algorithm>

#include "continuum/integration_rules.hpp"
#include "continuum/interpolation.hpp"
#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "plane/panel_axes.hpp"

namespace respcore {

namespace {

constexpr int32_t kMaxNode = 8;
constexpr int32_t kNstrs = 4;  // rows of B and D; the fourth (hoop) stays zero here

// The work of the strain-displacement routine at one point.
struct PointWork {
  double b[4 * 20], cartd[2 * 10], shape[10], gpcod[3];
  double DET = 0.0;
  MatRef<double> B() { return MatRef<double>(b, 4, 20, "B"); }
};

void b_at(ContinuumParts& C, int32_t ELEM_NO, PointWork& P, double XI, double ETA, double ZETA,
          MatRef<double> CN, int32_t NNODE) {
  B_BUB(C.diag, ELEM_NO, C.continuum.PLANE_TYPE, P.B(), P.DET,
        MatRef<double>(P.cartd, 2, 10, "CARTD"), VecRef<double>(P.shape, 10, "SHAPE"),
        VecRef<double>(P.gpcod, 3, "GPCOD"), XI, ETA, ZETA, CN, NNODE, 2, kNstrs, 0, 0);
}

// Panel coordinates CN(2,8) and the material matrix D(4,4) of the element.
void element_setup(ContinuumParts& C, MatRef<double> XYZ, MatRef<double> TRAN, int32_t NNODE,
                   MatRef<double> CN, MatRef<double> D) {
  CALC_CN_2D(CN, XYZ, TRAN, NNODE);
  CALC_DMATX(C.diag, C.material, C.continuum, D, C.material.MAT_YOUNG, C.material.MAT_POISSON,
             C.continuum.PLANE_TYPE, kNstrs);
}

}  // namespace

int32_t plane_high_points(int32_t NNODE) { return NNODE == 6 ? 3 : 9; }

void PLX_STIFF_MAT(MatRef<double> SK, MatRef<double> D, MatRef<double> B, double W, int32_t NDOF,
                   int32_t NSTRS) {
  for (int32_t j = 1; j <= NDOF; ++j) {
    double db[4] = {};
    for (int32_t i = 1; i <= NSTRS && i <= 4; ++i)
      for (int32_t k = 1; k <= NSTRS; ++k) db[i - 1] += D(i, k) * B(k, j);
    for (int32_t i = 1; i <= NDOF; ++i) {
      double s = 0.0;
      for (int32_t k = 1; k <= NSTRS && k <= 4; ++k) s += B(k, i) * db[k - 1];
      SK(i, j) += s * W;
    }
  }
}

void PLX_STRESS_HIGH(MatRef<double> STR, MatRef<double> D, MatRef<double> B, int32_t IROW,
                     int32_t NDOF, int32_t NSTRS) {
  for (int32_t j = 1; j <= NDOF; ++j)
    for (int32_t i = 1; i <= NSTRS; ++i) {
      double s = 0.0;
      for (int32_t k = 1; k <= NSTRS; ++k) s += D(i, k) * B(k, j);
      STR(IROW + i, j) = s;
    }
}

// The plane families set PLANE_TYPE to 0 or 1: the axisymmetric coordinates
// and radius factor of PLANE_TYPE 2 have no caller here.
void QUAD8_STF(ContinuumParts& C, int32_t ELEM_NO, MatRef<double> SK, MatRef<double> WORK,
               int32_t NNODE, MatRef<double> XYZ, MatRef<double> TRAN, int32_t TOGLOBAL) {
  const double thickness = C.material.PLATE_PROP[0];
  const int32_t NDOF = 2 * NNODE;
  const int32_t NPT = plane_high_points(NNODE);
  double cn[16], d[16], k[20 * 20] = {};
  MatRef<double> CN(cn, 2, 8, "CN"), D(d, 4, 4, "D"), K(k, 20, 20, "SK");
  element_setup(C, XYZ, TRAN, NNODE, CN, D);
  PointWork P;
  for (int32_t g = 1; g <= NPT; ++g) {
    double s, t, u, w;
    T_GP_COORD(s, t, u, w, g, NPT, NNODE, kNstrs);
    b_at(C, ELEM_NO, P, s, t, u, CN, NNODE);
    PLX_STIFF_MAT(K, D, P.B(), P.DET * w * thickness, NDOF, kNstrs);
  }
  // Freedom i of the pairs to its place among three per node.
  SK.fill(0.0);
  auto at = [](int32_t i) { return 3 * ((i - 1) / 2) + (i - 1) % 2 + 1; };
  for (int32_t j = 1; j <= NDOF; ++j)
    for (int32_t i = 1; i <= j; ++i) {
      SK(at(i), at(j)) = K(i, j);
      SK(at(j), at(i)) = K(i, j);
    }
  if (TOGLOBAL == 1) LOCTOGLO(SK, 24, WORK, 24, TRAN, 3 * NNODE);
}

void PLANE_QUAD8_STR_BUB(ContinuumParts& C, int32_t ELEM_NO, MatRef<double> STR, int32_t NNODE,
                         MatRef<double> XYZ, MatRef<double> TRAN) {
  const int32_t nstrs = C.continuum.PLANE_TYPE == 2 ? 4 : 3;
  const bool triangle = NNODE == 3 || NNODE == 6;
  const int32_t npts = triangle ? 4 : NNODE == 4 ? 5 : NNODE == 8 ? 10 : 0;
  const int32_t offset = (NNODE == 3 || NNODE == 4) ? 12 : 24;
  double cn[16], d[16];
  MatRef<double> CN(cn, 2, 8, "CN"), D(d, 4, 4, "D");
  element_setup(C, XYZ, TRAN, NNODE, CN, D);
  PointWork P;
  for (int32_t p = 1; p <= npts; ++p) {
    double s = triangle ? 1.0 / 3.0 : 0.0, t = s, u = 0.0, w;
    if (p > 1) T_GP_COORD(s, t, u, w, p - 1, npts - 1, NNODE, kNstrs);
    b_at(C, ELEM_NO, P, s, t, u, CN, NNODE);
    PLX_STRESS_HIGH(STR, D, P.B(), offset + nstrs * (p - 1), 2 * NNODE, nstrs);
  }
}

void plane_high_axes(MatRef<double> XYZ, int32_t NNOD, MatRef<double> TRAN) {
  double X[4], Y[4], Z[4];
  for (int32_t k = 1; k <= 4; ++k) X[k - 1] = XYZ(1, k), Y[k - 1] = XYZ(2, k), Z[k - 1] = XYZ(3, k);
  TRAN.fill(0.0);
  QDCOS(VecRef<double>(X, 4, "X"), VecRef<double>(Y, 4, "Y"), VecRef<double>(Z, 4, "Z"), TRAN,
        NNOD == 8 ? 4 : 1);
}

void PLANE_STRAIN_HIGH_STRS(ContinuumParts& C, int32_t ELEM_NO, int32_t NNOD, MatRef<double> STRS,
                            MatRef<double> XYZ, MatRef<double> TRAN) {
  plane_high_axes(XYZ, NNOD, TRAN);
  double sk[24 * 24], work[24 * 24], str[60 * 2 * kMaxNode] = {};
  MatRef<double> SK(sk, 24, 24, "SK"), STR(str, 60, 2 * kMaxNode, "STR");
  QUAD8_STF(C, ELEM_NO, SK, MatRef<double>(work, 24, 24, "WORK"), NNOD, XYZ, TRAN, 1);
  PLANE_QUAD8_STR_BUB(C, ELEM_NO, STR, NNOD, XYZ, TRAN);

  // The three-per-node stiffness onto the six-per-node equations.
  for (int32_t a = 1; a <= NNOD; ++a)
    for (int32_t i = 1; i <= 3; ++i)
      for (int32_t b = 1; b <= NNOD; ++b)
        for (int32_t j = 1; j <= 3; ++j)
          STRS(3 * (a - 1) + i, 6 * (b - 1) + j) = SK(3 * (a - 1) + i, 3 * (b - 1) + j);
  for (int32_t r = 25; r <= 60; ++r)
    for (int32_t b = 1; b <= NNOD; ++b)
      for (int32_t j = 1; j <= 2; ++j) STRS(r, 6 * (b - 1) + j) = STR(r, 2 * (b - 1) + j);
}

void PLANE_STRESS_HIGH_STRS(ContinuumParts& C, int32_t ELEM_NO, int32_t NNOD, MatRef<double> STRS,
                            MatRef<double> XYZ) {
  double tran[9];
  PLANE_STRAIN_HIGH_STRS(C, ELEM_NO, NNOD, STRS, XYZ, MatRef<double>(tran, 3, 3, "TRAN"));
}

void PLANE_STRESS_HO(ContinuumParts& C, int32_t ELEM_NO, VecRef<double> OUT, MatRef<double> XYZ,
                     MatRef<double> TRAN, VecRef<double> DISP_LOCAL, int32_t STEP, int32_t NNOD) {
  const int32_t NPT = plane_high_points(NNOD);
  double* SB = C.plane.SB;  // SB(3, 16, 9)
  if (STEP == 1) {
    std::fill(SB, SB + 3 * 16 * 9, 0.0);
    double cn[16], d[16];
    MatRef<double> CN(cn, 2, 8, "CN"), D(d, 4, 4, "D");
    element_setup(C, XYZ, TRAN, NNOD, CN, D);
    PointWork P;
    for (int32_t g = 1; g <= NPT; ++g) {
      double s, t, u, w;
      T_GP_COORD(s, t, u, w, g, NPT, NNOD, kNstrs);
      b_at(C, ELEM_NO, P, s, t, u, CN, NNOD);
      MatRef<double> B = P.B();
      for (int32_t j = 1; j <= 2 * NNOD; ++j)
        for (int32_t i = 1; i <= 3; ++i) {
          double v = 0.0;
          for (int32_t k = 1; k <= 3; ++k) v += D(i, k) * B(k, j);
          SB[(i - 1) + 3 * (j - 1) + 48 * (g - 1)] = v;
        }
    }
  }
  double U[16];
  for (int32_t n = 1; n <= NNOD; ++n) {
    U[2 * n - 2] = DISP_LOCAL(6 * n - 5);
    U[2 * n - 1] = DISP_LOCAL(6 * n - 4);
  }
  for (int32_t k = 1; k <= 27; ++k) OUT(k) = 0.0;
  for (int32_t g = 1; g <= NPT; ++g) {
    const double* sb = SB + 48 * (g - 1);
    for (int32_t i = 0; i < 3; ++i) {
      double v = 0.0;
      for (int32_t j = 0; j < 2 * NNOD; ++j) v += sb[i + 3 * j] * U[j];
      OUT(3 * (g - 1) + i + 1) = v;
    }
  }
}

}  // namespace respcore
