// Three- and four-node plane stress and plane strain history (ELEM_TYPE 1
// and 2): nodal forces from the recovery matrix the analysis stored, stresses
// rebuilt per step by the membrane formulations (four-node elements, and
// triangles with drilling freedoms) or taken from the matrix (other
// triangles), and for strain-state elements the strains and the out-of-plane
// stress.
//
// Element record (section PSTR for ELEM_TYPE 1, PSRN for 2; serial 3, or 4
// when ELEM_FORM is 2), 725 doubles, integers stored as doubles:
//   1 .. NEQ              equation numbers, six per node (at most 24)
//   NEQ+1 .. NEQ+NROW*NEQ STRS(NROW, NEQ) by columns (at most 27 rows)
//   673 NEQ, 674 NROW, 675 not read
//   676 .. 725            TEMP(1..50): 1 the node count, 2..5 the nodes,
//                         6..17 XYZ(3,4), 18..28 PLATE_PROP(1..11) (1 the
//                         thickness), 29 E, 30 nu, 31 MAT_TYPE,
//                         32..40 MAT_VALS, 41 the option (PLANE_KIND, plus
//                         100 with drilling freedoms), 42 the material angle
//                         in degrees; 43..50 not read.
//
// Step vector SIG: 1..12 nodal forces (a triple per node), 13..15 the stress
// triple at the centre, 16..27 those of the nodes. SSIG of a strain-state
// element holds four stress rows a point from row 13 (to row 32). ELEM_TYPE 2
// delivers 32 rows and from row 33 four strain rows a point.
#include <algorithm>
#include <cmath>
#include <vector>

#include "nodal/disp_equation.hpp"
#include "numeric/blas.hpp"
#include "plane/panel_axes.hpp"
#include "plane/panel_turns.hpp"
#include "plane/plane_kit.hpp"
#include "plate/plate_section.hpp"
#include "recovery/point_extrapolation.hpp"

namespace respcore {

namespace {

constexpr int32_t kRecWords = 725;
constexpr int32_t kSslWords = 800;
constexpr int32_t kMaxEq = 24;
constexpr int32_t kMaxRow = 27;
constexpr int32_t kSsigRows = 32;
constexpr int32_t kStrainRows = 20;
constexpr int32_t kSigWords = 200;

// One element as its record and geometry give it.
struct PlaneElement {
  int32_t NEQ = 0, NROW = 0;  // as stored (the matrix's offset and stride)
  int32_t neq = 0, nrow = 0;  // what the arrays hold of them
  int32_t nnod_read = 0;      // the node count of the record, for the motion
  int32_t NNOD = 0;           // 3 or 4 after the triangle test
  int32_t DRILL_FLAG = 0, PLANE_KIND = 0;
  double MAT_ANGLE = 0.0;
  double ANGLE = 0.0;  // EL_ANGLE of the item
};

// Decodes SSL into the element, LM, IIA, XYZ, the material and STRS.
void decode_record(VecRef<double> SSL, ElementMaterial& m, PlaneElement& E, Vec<int32_t>& LM,
                   Vec<int32_t>& IIA, Mat<double>& XYZ, Mat<double>& STRS) {
  auto TEMP = [&](int32_t k) { return SSL(675 + k); };
  E.NEQ = trunc_i32(SSL(673));
  E.NROW = trunc_i32(SSL(674));
  E.neq = std::max(E.NEQ, 0);
  E.nrow = std::max(E.NROW, 0);
  if (E.neq > kMaxEq) {
    report_bound_failure("LM", E.neq, 1, kMaxEq);
    E.neq = kMaxEq;
  }
  if (E.nrow > kMaxRow) {
    report_bound_failure("STRS", E.nrow, 1, kMaxRow);
    E.nrow = kMaxRow;
  }
  LM.fill(0);
  for (int32_t i = 1; i <= E.neq; ++i) LM(i) = trunc_i32(SSL(i));

  E.nnod_read = trunc_i32(TEMP(1));
  if (E.nnod_read > 4) {
    report_bound_failure("IIA", E.nnod_read, 1, 4);
    E.nnod_read = 4;
  }
  for (int32_t k = 1; k <= 4; ++k) IIA(k) = trunc_i32(TEMP(1 + k));
  for (int32_t k = 1; k <= 4; ++k)
    for (int32_t i = 1; i <= 3; ++i) XYZ(i, k) = TEMP(5 + 3 * (k - 1) + i);
  for (int32_t k = 1; k <= 11; ++k) m.PLATE_PROP[k - 1] = TEMP(17 + k);
  m.MAT_YOUNG = TEMP(29);
  m.MAT_POISSON = TEMP(30);
  m.MAT_TYPE = trunc_i32(TEMP(31));
  for (int32_t k = 1; k <= 9; ++k) m.MAT_VALS[k - 1] = TEMP(31 + k);
  int32_t option = trunc_i32(TEMP(41));
  E.DRILL_FLAG = 0;
  if (option >= 100) {
    E.DRILL_FLAG = 1;
    option -= 100;
  }
  E.PLANE_KIND = option;
  E.MAT_ANGLE = TEMP(42) * (3.141592653589793 / 180.0);

  // A fourth node of 0, or the third once more, makes a triangle.
  E.NNOD = (IIA(4) == 0 || IIA(4) == IIA(3)) ? 3 : 4;

  // Column c lies at SSL(NEQ + (c - 1) NROW + 1 ...), NROW values apart: once
  // a column runs past SSL, every later one starts past it. The first
  // subscript past SSL is reported, and the rest of the matrix stays zero.
  STRS.fill(0.0);
  for (int64_t c = 1; c <= E.neq; ++c) {
    const int64_t start = int64_t{E.NEQ} + (c - 1) * E.NROW + 1;
    const int64_t n = SSL.fit(start, E.nrow);
    for (int64_t r = 1; r <= n; ++r) STRS(r, c) = SSL(start + r - 1);
    if (n < E.nrow) break;
  }
}

bool tagged(const ArchiveState& A) { return product_is(A, "H.N.Q") || product_is(A, "J.W.U"); }

// What the steps of one call share.
struct PstrCall {
  ContinuumParts& C;
  PlateContext P;
  int32_t AXIS_FLAG;
  bool hnq_jwu;       // the tags "H.N.Q" and "J.W.U"
  bool second_extra;  // the tags of the second extrapolation of four-node elements
};

// The work of one element: its axes, coordinates and the section of its
// four-node formulation.
struct PstrWork {
  double SIG[kSigWords];
  double SIG_R_MOD[24], SIG_R_GLO[24];
  double STRESS_OUT[40];
  double STRESS_LOCAL[100], STRAIN_LOCAL[100], STRAIN_GLOBAL[100];
  double TMP[30];
  double FORCE_SAVE[12];
  double PANEL_T[9];
  double XYZ[12];
  PlateSection section;
};

// The columns of one step: the step vector's 32 rows (the force product's
// rows on entry), the 24 displacements of DISP_NO and the 20 strain rows.
struct StepColumns {
  double* ssig;
  const double* disp;
  double* strain;
};

// The strain-state block of step S: strains, and with global results the
// turned stresses.
void strain_block(PstrCall& K, const PlaneElement& E, PstrWork& W, int32_t s,
                  const StepColumns& io) {
  PlaneState& PS = K.C.plane;
  VecRef<double> SIG(W.SIG, kSigWords, "SIG");
  MatRef<double> PANEL_T(W.PANEL_T, 3, 3, "PANEL_T");
  const int32_t NNOD = E.NNOD;
  const int32_t npts = NNOD + 1;
  const double nu = K.C.material.MAT_POISSON;

  if (NNOD == 4 && K.second_extra) TRTONO(SIG, 3, 3);
  find_panel_plane(PANEL_T, PS.PANEL_PLANE, PS.SINE_PANEL, PS.COSINE_PANEL);

  std::copy(W.SIG + 12, W.SIG + 12 + 3 * npts, W.STRESS_LOCAL);
  std::fill(std::begin(W.STRAIN_LOCAL), std::end(W.STRAIN_LOCAL), 0.0);
  std::fill(std::begin(W.STRAIN_GLOBAL), std::end(W.STRAIN_GLOBAL), 0.0);
  VecRef<double> STRAIN_LOCAL(W.STRAIN_LOCAL, 100, "STRAIN_LOCAL");
  PLANE_STRAIN_STRAIN_TIME(K.C, NNOD, s, VecRef<double>(W.STRESS_LOCAL, 100, "STRESS_LOCAL"),
                           STRAIN_LOCAL);

  auto store_strains = [&] {
    for (int32_t k = 1; k <= 4 * npts; ++k) io.strain[k - 1] = W.STRAIN_GLOBAL[k - 1];
  };
  // The five triples from SIG row R0 as panel tensors in TMP, turned to global.
  VecRef<double> TMP(W.TMP, 30, "TMP");
  auto turn_triples = [&](const double* src) {
    std::fill(std::begin(W.TMP), std::end(W.TMP), 0.0);
    for (int32_t n = 0; n < 5; ++n) {
      W.TMP[6 * n] = src[3 * n];
      W.TMP[6 * n + 1] = src[3 * n + 1];
      W.TMP[6 * n + 3] = src[3 * n + 2];
    }
    turn_panel_tensors(TMP, PANEL_T, NNOD);
  };

  if (K.AXIS_FLAG == 0) {
    for (int32_t p = 0; p < npts; ++p) {
      const double* e = W.STRAIN_LOCAL + 3 * p;
      double* g = W.STRAIN_GLOBAL + 4 * p;
      g[0] = e[0], g[1] = e[1], g[2] = 0.0, g[3] = e[2];
    }
    store_strains();
    return;
  }
  if (K.AXIS_FLAG != 1) return;

  // Strains to the global plane of the panel.
  if (!K.hnq_jwu) {
    for (int32_t p = 0; p < npts; ++p) {
      const double* e = W.STRAIN_LOCAL + 3 * p;
      turn_in_plane(PS.SINE_PANEL, PS.COSINE_PANEL, e[0], e[1], e[2], W.STRAIN_GLOBAL + 4 * p);
    }
  } else {
    turn_triples(W.STRAIN_LOCAL);
    for (int32_t p = 0; p < npts; ++p)
      plane_rows_of(PS.PANEL_PLANE, nu, W.TMP + 6 * p, W.STRAIN_GLOBAL + 4 * p);
  }
  store_strains();

  // Stresses to global axes.
  turn_triples(W.SIG + 12);
  if (!K.hnq_jwu) {
    // The (xx, zz, zx) of the turned tensor: a panel in the global xz plane.
    for (int32_t n = 0; n < 5; ++n) {
      W.SIG[12 + 3 * n] = W.TMP[6 * n];
      W.SIG[13 + 3 * n] = W.TMP[6 * n + 2];
      W.SIG[14 + 3 * n] = W.TMP[6 * n + 5];
    }
  } else {
    double rows[4];
    for (int32_t n = 0; n < 5; ++n) {
      if (!plane_rows_of(PS.PANEL_PLANE, nu, W.TMP + 6 * n, rows)) continue;
      for (int32_t i = 0; i < 4; ++i) io.ssig[12 + 4 * n + i] = rows[i];
    }
  }
}

// Step S of the element, on its columns: IO.SSIG holds the rows of the force
// product on entry.
void pstr_step(PstrCall& K, const PlaneElement& E, PstrWork& W, int32_t s, const StepColumns& io) {
  PlaneState& PS = K.C.plane;
  VecRef<double> SIG(W.SIG, kSigWords, "SIG");
  MatRef<double> PANEL_T(W.PANEL_T, 3, 3, "PANEL_T");
  MatRef<double> XYZ(W.XYZ, 3, 4, "XYZ");
  VecRef<double> DISP_LOCAL = PS.disp_local();
  const int32_t NNOD = E.NNOD;
  const int32_t kind = E.PLANE_KIND;

  // 1. The product's rows, and the column cleared for what this step stores.
  std::fill(std::begin(W.SIG), std::end(W.SIG), 0.0);
  std::copy(io.ssig, io.ssig + E.nrow, W.SIG);
  std::fill(io.ssig, io.ssig + kSsigRows, 0.0);

  // 2. Global forces: the third value of a node acts as a moment about the
  // panel normal, and is dropped after the turn.
  if (kind == 0) {
    std::fill(std::begin(W.SIG_R_MOD), std::end(W.SIG_R_MOD), 0.0);
    for (int32_t n = 0; n < NNOD; ++n) {
      W.SIG_R_MOD[6 * n] = W.SIG[3 * n];
      W.SIG_R_MOD[6 * n + 1] = W.SIG[3 * n + 1];
      W.SIG_R_MOD[6 * n + 5] = W.SIG[3 * n + 2];
    }
    LOCTOGLO_FOC(VecRef<double>(W.SIG_R_MOD, 24, "SIG_R_MOD"),
                 VecRef<double>(W.SIG_R_GLO, 24, "SIG_R_GLO"), 24, PANEL_T);
    for (int32_t n = 0; n < NNOD; ++n)
      for (int32_t i = 0; i < 3; ++i) W.SIG[3 * n + i] = W.SIG_R_GLO[6 * n + i];
  }

  // 3. Panel displacements, refreshed only by these elements.
  // (An element of another kind than 0 and 1 refreshes nothing.)
  const bool refresh =
      (NNOD == 4 && kind == 0) || (NNOD == 3 && E.DRILL_FLAG == 1 && (kind == 0 || kind == 1));
  // DISP_NO has 24 rows, six for each of at most four nodes.
  if (refresh)
    panel_displacements(W.PANEL_T, RawVec<const double>(io.disp, 1), DISP_LOCAL.raw(), NNOD);

  // 4. Stresses rebuilt from the panel displacements.
  VecRef<double> OUT(W.STRESS_OUT, 40, "STRESS_OUT");
  if (NNOD == 3 && E.DRILL_FLAG == 1) {
    DKTLMT_PLANE_STR_DRILL(K.P, PS.dkt, kind, E.MAT_ANGLE, NNOD, DISP_LOCAL, OUT, XYZ, PANEL_T, s);
    std::copy(W.STRESS_OUT, W.STRESS_OUT + 15, W.SIG + 12);
    TRTONO_3NODE_STRES(SIG, 3);
  } else if (NNOD == 4) {
    if (s == 1) W.section = plane_section(K.P, kind, E.MAT_ANGLE);
    DKMQ_STR_WARP_GNRL(W.section, PS.dkmq, 1, NNOD, DISP_LOCAL,
                       MatRef<double>(W.STRESS_OUT, 8, 5, "STRESS_OUT"), XYZ, PANEL_T, s, 0);
    for (int32_t p = 0; p < 5; ++p)
      for (int32_t c = 0; c < 3; ++c) W.SIG[12 + 3 * p + c] = W.STRESS_OUT[8 * p + c];
    TRTONO(SIG, 3, 3);
  }

  // 5. The strain state.
  if (kind == 1) strain_block(K, E, W, s, io);

  // 6. Storing.
  if (kind == 0) {
    if (std::fabs(E.ANGLE) <= 1.0e-5) {
      if (K.AXIS_FLAG == 0) LOCPANEL(SIG, PANEL_T, 2);
      std::copy(W.SIG, W.SIG + 27, io.ssig);
    } else {
      // Global forces beside stresses in the user's axes.
      std::copy(W.SIG, W.SIG + 12, W.FORCE_SAVE);
      LOCPANEL(SIG, PANEL_T, 2);
      TRANSFORM_PLANE_RESULT_TO_USER_LOCAL_AXIS(NNOD, E.ANGLE, SIG);
      std::copy(W.SIG, W.SIG + 27, io.ssig);
      if (K.AXIS_FLAG == 1) std::copy(W.FORCE_SAVE, W.FORCE_SAVE + 12, io.ssig);
    }
  } else if (kind == 1) {
    if (K.AXIS_FLAG == 0) LOCPANEL(SIG, PANEL_T, 2);
    std::copy(W.SIG, W.SIG + 12, io.ssig);
    if (!K.hnq_jwu) {
      for (int32_t p = 0; p < 5; ++p) {
        const double a = W.SIG[12 + 3 * p], b = W.SIG[13 + 3 * p], c = W.SIG[14 + 3 * p];
        double* out = io.ssig + 12 + 4 * p;
        out[0] = a, out[1] = b, out[2] = c, out[3] = K.C.material.MAT_POISSON * (a + b);
      }
    }
  }
}

}  // namespace

void PSTR_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
               ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG,
               VecRef<double> EL_ANGLE) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  const bool strain_family = R.ELEM_TYPE == 2;
  const SectionName& section = strain_family ? sections::PSRN : sections::PSTR;

  PstrCall K{C, PlateContext{C.diag, C.material, C.plate, C.continuum.compliance}, AXIS_FLAG,
             tagged(A.state),
             product_is(A.state, "H.N.Q") || product_is(A.state, "K.4.V") ||
                 product_is(A.state, "Z.B.T") || product_is(A.state, "J.W.U")};

  const int32_t nrows = strain_family ? kSsigRows : 27;
  // One row of a long history (REQUEST_MODE 1) is combined from the
  // displacement histories when TDSP holds its steps; the step tables are
  // then made only for an element off that road.
  const int32_t c = R.RESULT_COMP;
  const bool long_row = R.REQUEST_MODE == 1 && nsteps > kCombinedSteps && TDSP.allocated() &&
                        TDSP.cols() >= nsteps && c >= 1;
  const int32_t ncols = long_row ? 0 : nsteps;
  Vec<double> SSL("SSL", kSslWords);
  Vec<int32_t> LM("LM", kMaxEq);
  Vec<int32_t> IIA("IIA", 4);
  Mat<double> XYZ("XYZ", 3, 4);
  Mat<double> STRS("STRS", kMaxRow, kMaxEq);
  Mat<double> DISP_EQ("DISP_EQ", kMaxEq, ncols);
  Mat<double> DISP_NO("DISP_NO", kMaxEq, ncols);
  Mat<double> SSIG("SSIG", kSsigRows, ncols);
  Mat<double> STRAIN_GLOBAL_TIME("STRAIN_GLOBAL_TIME", kStrainRows, ncols);
  PstrWork W;

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    PlaneElement E;
    E.ANGLE = EL_ANGLE(p);
    READING_ELEMENT_MATERIAL_DATA(A, C.material, INUM_ELEMNT(p));
    A.read_f64(A.find(section, ID), INUM_SERIAL(p), SSL.ref(), kRecWords);
    decode_record(SSL.ref(), C.material, E, LM, IIA, XYZ, STRS);

    double X[4], Y[4], Z[4];
    for (int32_t k = 1; k <= 4; ++k)
      X[k - 1] = XYZ(1, k), Y[k - 1] = XYZ(2, k), Z[k - 1] = XYZ(3, k);
    std::fill(std::begin(W.PANEL_T), std::end(W.PANEL_T), 0.0);
    QDCOS(VecRef<double>(X, 4, "X"), VecRef<double>(Y, 4, "Y"), VecRef<double>(Z, 4, "Z"),
          MatRef<double>(W.PANEL_T, 3, 3, "PANEL_T"), E.NNOD == 3 ? 1 : 4);
    std::copy(XYZ.data(), XYZ.data() + 12, W.XYZ);

    // One row over many steps. Every step is affine in the element's
    // displacements once the element is set up at step 1; what a step
    // leaves behind (the panel displacements, which an element that does
    // not refresh them reads) is left by running the last step as it is.
    // An element that stores no strains (another kind, another axis rule)
    // delivers the zeros of a fresh column, as one item per call does.
    const bool strain_row = strain_family && c > kSsigRows && c <= kSsigRows + 4 * (E.NNOD + 1);
    DispRow row;
    if (long_row && (c <= nrows || strain_row) &&
        row.start(M, kMaxEq, E.neq, LM.ref(), IIA.ref(), std::max(E.nnod_read, 0))) {
      double ssig[kSsigRows] = {}, strain[kStrainRows] = {};
      auto value = [&](int32_t s, const double* eq, const double* no) {
        std::fill(ssig, ssig + kSsigRows, 0.0);
        for (int32_t k = 0; k < E.neq; ++k)
          for (int32_t r = 0; r < E.nrow; ++r) ssig[r] += STRS.col(k + 1)[r] * eq[k];
        pstr_step(K, E, W, s, {ssig, no, strain});
        return strain_row ? strain[c - kSsigRows - 1] : ssig[c - 1];
      };
      combine_row(row, M, TDSP, c, kMaxEq, IIA.ref(), std::max(E.nnod_read, 0), true, value);
      continue;
    }
    if (DISP_EQ.cols() != nsteps) {
      DISP_EQ.resize(kMaxEq, nsteps);
      DISP_NO.resize(kMaxEq, nsteps);
      SSIG.resize(kSsigRows, nsteps);
      STRAIN_GLOBAL_TIME.resize(kStrainRows, nsteps);
    }
    DISP_EQUATION(M, kMaxEq, DISP_EQ.ref(), DISP_NO.ref(), E.neq, LM.ref(), IIA.ref(),
                  std::max(E.nnod_read, 0), 0);
    // The force rows of every step in one product, into SSIG's columns.
    SSIG.fill(0.0);
    if (E.nrow > 0 && E.neq > 0 && nsteps > 0)
      DGEMM('N', 'N', E.nrow, nsteps, E.neq, 1.0, STRS.data(), kMaxRow, DISP_EQ.data(), kMaxEq, 0.0,
            SSIG.data(), kSsigRows);
    for (int32_t s = 1; s <= nsteps; ++s)
      pstr_step(K, E, W, s, {SSIG.col(s), DISP_NO.col(s), STRAIN_GLOBAL_TIME.col(s)});
    deliver_plane_rows(R, TDSP, p, SSIG.ref(), nrows, STRAIN_GLOBAL_TIME.ref(), kSsigRows,
                       strain_family ? 4 * (E.NNOD + 1) : 0);
  }
}

}  // namespace respcore
