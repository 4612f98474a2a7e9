// High-order plate history (six- and eight-node plates). Each element is
// four low-order plates of the thick family: a six-node triangle is four
// three-node triangles on its corner and midside nodes, an eight-node
// quadrilateral four quadrilaterals about a ninth node at its centre, which is
// condensed out of the stiffness and recovered at every step. The archive
// holds no recovery matrix: the element's stiffness, in global axes, gives
// the forces.
//
// Element record (section PLTH, serial 3, or 4 under element form 2), 83
// doubles: LM(1..NEQ); word 49 NEQ; words 52..83 TEMP(1..32): NNOD, the node
// records (8), PLATE_PROP(1..11), Young's modulus, Poisson's ratio, the
// material type, MAT_VALS(1..9).
//
// Rows of a step (174): 1..48 nodal forces in panel axes, six per node;
// 49..174 nine result blocks of 14, the centre and then the nodes.
#include <algorithm>

#include "nodal/disp_equation.hpp"
#include "numeric/blas.hpp"
#include "numeric/dense.hpp"
#include "plane/panel_axes.hpp"
#include "plane/panel_turns.hpp"
#include "plate/plate_histories.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

constexpr int32_t kWords = 83;
constexpr int32_t kRows = 174;
constexpr int32_t kDof = 48;
// Corner m of sub-element j: ID[m-1][j-1].
constexpr int32_t ID_TRI[3][4] = {{1, 2, 3, 4}, {4, 5, 6, 5}, {6, 4, 5, 6}};
constexpr int32_t ID_QUAD[4][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 9, 9, 9}, {8, 5, 6, 7}};

// The four sub-elements of an element: their corners, axes and the turns
// between their axes and the panel's.
struct SubElements {
  int32_t nnod = 0;           // 6 or 8
  int32_t corners = 0;        // 3 or 4
  int32_t node[4][4] = {};    // node[j][m]: corner m of sub j
  double XYZ[4][12] = {};     // XYZ(3, corners) of sub j
  double T[4][9] = {};        // T(3,3) of sub j, column-major
  double TURN[4][3][3] = {};  // T_j PANEL_T': panel to sub axes
  double Q[4][2][2] = {};     // in-plane part of PANEL_T T_j': sub to panel axes

  MatRef<double> xyz(int j) { return MatRef<double>(XYZ[j], 3, corners, "XYZ"); }
  MatRef<double> t(int j) { return MatRef<double>(T[j], 3, 3, "T"); }
};

// Corners, coordinates (XYZ(3,9) with node 9 the centre) and axes of the
// four sub-elements, and their turns against PANEL_T.
void sub_elements(SubElements& E, int32_t nnod, MatRef<double> XYZ, const double PT[3][3]) {
  E.nnod = nnod;
  E.corners = nnod == 8 ? 4 : 3;
  for (int j = 0; j < 4; ++j) {
    double x[4] = {}, y[4] = {}, z[4] = {};
    for (int m = 0; m < E.corners; ++m) {
      const int32_t n = nnod == 8 ? ID_QUAD[m][j] : ID_TRI[m][j];
      E.node[j][m] = n;
      for (int c = 0; c < 3; ++c) E.XYZ[j][3 * m + c] = XYZ(c + 1, n);
      x[m] = XYZ(1, n), y[m] = XYZ(2, n), z[m] = XYZ(3, n);
    }
    QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"), E.t(j),
          E.corners == 4 ? 4 : 1);
    MatRef<double> T = E.t(j);
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) {
        double v = 0.0;
        for (int k = 0; k < 3; ++k) v += T(r + 1, k + 1) * PT[c][k];
        E.TURN[j][r][c] = v;
      }
    for (int r = 0; r < 2; ++r)
      for (int c = 0; c < 2; ++c) E.Q[j][r][c] = E.TURN[j][c][r];
  }
}

// The element stiffness K(54,54) in global axes (six freedoms per node, node 9
// last): each sub-element matrix turned to global axes by its own axes and
// added by its corner numbers. The thick family serves (DKMT, DKMQ).
void PLATE_STF(const PlateContext& P, SubElements& E, MatRef<double> K) {
  K.fill(0.0);
  double s[24 * 24], w[24 * 24];
  const int32_t n = 6 * E.corners;
  MatRef<double> S(s, n, n, "S"), W(w, n, n, "WORK");
  for (int j = 0; j < 4; ++j) {
    if (E.corners == 4) {
      double x[4], y[4], z[4];
      for (int m = 0; m < 4; ++m)
        x[m] = E.XYZ[j][3 * m], y[m] = E.XYZ[j][3 * m + 1], z[m] = E.XYZ[j][3 * m + 2];
      DKMQ_STF_WARP(P, 0, S, W, 24, VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"),
                    VecRef<double>(z, 4, "Z"), E.t(j), 1);
    } else {
      DKMTLMT_STF(P, E.xyz(j), E.t(j), S);
      LOCTOGLO(S, n, W, n, E.t(j), n);
    }
    for (int a = 0; a < E.corners; ++a)
      for (int b = 0; b < E.corners; ++b)
        for (int r = 1; r <= 6; ++r)
          for (int c = 1; c <= 6; ++c)
            K(6 * (E.node[j][a] - 1) + r, 6 * (E.node[j][b] - 1) + c) += S(6 * a + r, 6 * b + c);
  }
}

// Condenses node 9 (rows and columns 49..54) out of K(54,54): KC(48,48) =
// K_rr - K_r9 inv(K_99) K_9r, and C9(6,48) = inv(K_99) K_9r, which gives
// node 9 from the others (no load acts on it). Without WITH_KC only C9.
void STCOND_STF_LOD(Diagnostics& D, MatRef<double> K, MatRef<double> KC, MatRef<double> C9,
                    bool with_kc) {
  double a[36], ainv[36];
  MatRef<double> A(a, 6, 6, "K99"), AINV(ainv, 6, 6, "K99");
  for (int j = 1; j <= 6; ++j)
    for (int i = 1; i <= 6; ++i) A(i, j) = K(kDof + i, kDof + j);
  INVERSE(D, A, AINV, 6);
  for (int c = 1; c <= kDof; ++c)
    for (int i = 1; i <= 6; ++i) {
      double v = 0.0;
      for (int k = 1; k <= 6; ++k) v += AINV(i, k) * K(kDof + k, c);
      C9(i, c) = v;
    }
  if (!with_kc) return;
  for (int c = 1; c <= kDof; ++c)
    for (int r = 1; r <= kDof; ++r) {
      double v = K(r, c);
      for (int k = 1; k <= 6; ++k) v -= K(r, kDof + k) * C9(k, c);
      KC(r, c) = v;
    }
}

// Sub-element blocks (8 values) from sub axes to panel axes: the in-plane
// tensors q s q', the shear vector (xz, yz) by q.
void turn_block(const double q[2][2], double* b) {
  for (int k = 0; k < 6; k += 3) {
    const double s[2][2] = {{b[k], b[k + 2]}, {b[k + 2], b[k + 1]}};
    double qs[2][2], o[2][2];
    for (int r = 0; r < 2; ++r)
      for (int c = 0; c < 2; ++c) qs[r][c] = q[r][0] * s[0][c] + q[r][1] * s[1][c];
    for (int r = 0; r < 2; ++r)
      for (int c = 0; c < 2; ++c) o[r][c] = qs[r][0] * q[c][0] + qs[r][1] * q[c][1];
    b[k] = o[0][0], b[k + 1] = o[1][1], b[k + 2] = o[0][1];
  }
  const double xz = b[7], yz = b[6];
  b[7] = q[0][0] * xz + q[0][1] * yz;
  b[6] = q[1][0] * xz + q[1][1] * yz;
}

// Stress blocks of the element at step STEP from the panel-axis nodal values
// DISP_LOCAL(54) (node 9 last): each sub-element's blocks in its own axes,
// carried to its corners, turned to panel axes and merged by node (the mean
// over the sub-elements that share it) into ST(8(p-1)+c), p = 1 the centre,
// p = 1+n node n. SUB(40,4) holds the sub-elements' blocks.
void PLATE_STRESS_HIGH(const PlateContext& P, PlateSaved& V, SubElements& E,
                       const double* DISP_LOCAL, double* ST, double SUB[4][40], int32_t STEP) {
  for (int j = 0; j < 4; ++j) {
    double d[24] = {};
    for (int m = 0; m < E.corners; ++m) {
      const double* g = DISP_LOCAL + 6 * (E.node[j][m] - 1);
      for (int h = 0; h < 6; h += 3)
        for (int r = 0; r < 3; ++r)
          d[6 * m + h + r] =
              E.TURN[j][r][0] * g[h] + E.TURN[j][r][1] * g[h + 1] + E.TURN[j][r][2] * g[h + 2];
    }
    VecRef<double> D(d, 6 * E.corners, "DISP_LOCAL"), B(SUB[j], 40, "ST");
    if (E.corners == 4) {
      DKMQ_STR_WARP(P, V.quad[j], 0, 4, D, MatRef<double>(SUB[j], 8, 5, "ST"), E.xyz(j), E.t(j),
                    STEP, 0);
      TRTONO_TOT(B);
    } else {
      int32_t nn = 3;
      DKMTLMT_STR(P, V.thick[j], nn, D, B, E.xyz(j), E.t(j), STEP);
    }
    for (int b = 0; b < 5; ++b) turn_block(E.Q[j], SUB[j] + 8 * b);
  }
  std::fill(ST, ST + 72, 0.0);
  // Block m+1 of a sub-element holds its value at its corner m.
  auto merge = [&](int32_t node, double* out) {
    int count = 0;
    for (int j = 0; j < 4; ++j)
      for (int m = 0; m < E.corners; ++m)
        if (E.node[j][m] == node) {
          for (int c = 0; c < 8; ++c) out[c] += SUB[j][8 * (m + 1) + c];
          ++count;
        }
    for (int c = 0; c < 8 && count > 0; ++c) out[c] /= count;
  };
  for (int32_t n = 1; n <= E.nnod; ++n) merge(n, ST + 8 * n);
  if (E.corners == 4)
    merge(9, ST);
  else
    std::copy(SUB[3], SUB[3] + 8, ST);
}

}  // namespace

void PLATE_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
                ItemList INUM_SERIAL, ItemList INUM_ELEMNT) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  ElementMaterial& MAT = C.material;
  PlateContext P{C.diag, C.material, C.plate, C.continuum.compliance};
  PlateSaved& V = plate_saved(C.plate);

  Vec<double> SA("SA", kWords);
  Vec<int32_t> LM("LM", kDof), IIA("IIA", 8);
  Mat<double> XYZ("XYZ", 3, 9), K("SK", 54, 54), STRS("STRS", kDof, kDof), C9("C9", 6, kDof);
  // A long history of one row needs only the probe's columns. FORCE holds
  // the forces in rows 1..48 and the motion of node 9 behind them.
  const int32_t table = ItemRows::combinable(R, TDSP, kRows) ? 0 : nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kDof, table), DISP_NO("DISP_NO", kDof, table);
  Mat<double> FORCE("FORCE", kDof + 6, table);
  StepProbe probe(kDof, kDof + 6);
  // Under REQUEST_MODE 1 only row RESULT_COMP is delivered: a row behind the
  // forces needs neither the condensed stiffness nor the forces.
  const bool forces = R.REQUEST_MODE != 1 || R.RESULT_COMP <= kDof;
  double sig[300];
  VecRef<double> SIG(sig, 300, "SIG");
  double DISP_LOCAL[54], ST[72], SUB[4][40];
  SubElements E;

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    READING_ELEMENT_MATERIAL_DATA(A, MAT, INUM_ELEMNT(p));
    // An element whose record cannot be read, or that is neither a six- nor
    // an eight-node plate, keeps its rows at zero.
    if (!A.read(A.find(sections::PLTH, ID), INUM_SERIAL(p), SA.data(), int64_t{kWords} * 8))
      continue;
    int32_t neq = std::max(trunc_i32(SA(49)), 0);
    if (neq > kDof) {
      report_bound_failure("LM", neq, 1, kDof);
      neq = kDof;
    }
    LM.fill(0);
    for (int32_t i = 1; i <= neq; ++i) LM(i) = trunc_i32(SA(i));
    auto TEMP = [&](int32_t r) { return SA(51 + r); };
    const int32_t nnod = trunc_i32(TEMP(1));
    if (nnod != 6 && nnod != 8) continue;
    for (int32_t i = 1; i <= 8; ++i) IIA(i) = trunc_i32(TEMP(1 + i));
    for (int k = 0; k < 11; ++k) MAT.PLATE_PROP[k] = TEMP(10 + k);
    MAT.MAT_YOUNG = TEMP(21);
    MAT.MAT_POISSON = TEMP(22);
    MAT.MAT_TYPE = trunc_i32(TEMP(23));
    for (int k = 0; k < 9; ++k) MAT.MAT_VALS[k] = TEMP(24 + k);
    // The sub-elements have the plain section in their own axes.
    C.plate.SCALE_FLAG = 0;
    C.plate.SECT_ANGLE = 0.0;
    C.plate.SECT_ORTHO = 0;

    XYZ.fill(0.0);
    read_node_coordinates(A, IIA.ref(), nnod, XYZ.ref());
    for (int c = 1; c <= 3; ++c) XYZ(c, 9) = 0.5 * (XYZ(c, 5) + XYZ(c, 7));
    double pt[9] = {}, PT[3][3];
    MatRef<double> PANEL_T(pt, 3, 3, "PANEL_T");
    {
      double x[4], y[4], z[4];
      for (int i = 0; i < 4; ++i) x[i] = XYZ(1, i + 1), y[i] = XYZ(2, i + 1), z[i] = XYZ(3, i + 1);
      QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
            PANEL_T, nnod == 8 ? 4 : 1);
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) PT[r][c] = PANEL_T(r + 1, c + 1);
    }

    // The steps on the columns of DISP_EQ and DISP_NO, each affine in them:
    // the forces and node 9 (rows 49..54 of FORCE) are products with the
    // element's condensed stiffness, the stresses those of the sub-elements
    // set up at step 1.
    ItemRows rows(TDSP, R, kRows, kDof, 72, p);
    auto prepare = [&](Mat<double>& DEQ, Mat<double>& DNO, Mat<double>& FRC, int32_t ncols) {
      // Stiffness, condensation and the recovery of node 9, once per element.
      sub_elements(E, nnod, XYZ.ref(), PT);
      PLATE_STF(P, E, K.ref());
      STRS.fill(0.0);
      C9.fill(0.0);
      if (nnod == 8) {
        STCOND_STF_LOD(C.diag, K.ref(), STRS.ref(), C9.ref(), forces);
      } else {
        for (int c = 1; c <= 36; ++c)
          for (int r = 1; r <= 36; ++r) STRS(r, c) = K(r, c);
      }
      FRC.fill(0.0);
      if (ncols > 0) {
        if (neq > 0 && forces)
          DGEMM('N', 'N', kDof, ncols, neq, 1.0, STRS.data(), kDof, DEQ.data(), kDof, 0.0,
                FRC.data(), kDof + 6);
        if (nnod == 8)
          DGEMM('N', 'N', 6, ncols, kDof, -1.0, C9.data(), 6, DNO.data(), kDof, 0.0,
                FRC.data() + kDof, kDof + 6);
      }
    };

    auto step = [&](int32_t s, const double* dn, double* frc) {
      std::fill(sig, sig + 300, 0.0);
      std::copy(frc, frc + kDof, sig);
      const double* d9 = frc + kDof;
      for (int32_t q = 0; q < 18; ++q) {
        const double* g = q < 16 ? dn + 3 * q : d9 + 3 * (q - 16);
        for (int r = 0; r < 3; ++r)
          DISP_LOCAL[3 * q + r] = PT[r][0] * g[0] + PT[r][1] * g[1] + PT[r][2] * g[2];
      }
      PLATE_STRESS_HIGH(P, V, E, DISP_LOCAL, ST, SUB, s);
      std::copy(ST, ST + 72, sig + kDof);
      VecRef<double> T(MAT.PLATE_PROP, 2, "PLATE_PROP");
      for (int32_t b = 0; b <= nnod; ++b)
        plate_result_block(SIG.sub(kDof + 1 + 8 * b, 8), SIG.sub(121 + 14 * b, 14), T);
      if (forces) LOCPANEL(SIG.sub(1, kDof), PANEL_T, nnod);
      return static_cast<const double*>(sig);
    };
    if (combined_row(M, rows, probe, neq, LM.ref(), IIA.ref(), nnod, false, prepare, step))
      continue;
    if (DISP_EQ.cols() != nsteps) {
      DISP_EQ.resize(kDof, nsteps);
      DISP_NO.resize(kDof, nsteps);
      FORCE.resize(kDof + 6, nsteps);
    }
    DISP_EQUATION(M, kDof, DISP_EQ.ref(), DISP_NO.ref(), neq, LM.ref(), IIA.ref(), nnod, 0);
    prepare(DISP_EQ, DISP_NO, FORCE, nsteps);
    for (int32_t s = 1; s <= nsteps; ++s) rows.put(s, step(s, DISP_NO.col(s), FORCE.col(s)));
  }
}

// The general form has the same record and the same rows.
void PLATE_HIGH_GNRL(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                     Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT) {
  PLATE_HIGH(R, A, M, C, TDSP, INUM_SERIAL, INUM_ELEMNT);
}

}  // namespace respcore
