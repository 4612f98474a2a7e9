// Six- and eight-node plane stress (ELEM_TYPE 5) and plane strain
// (ELEM_TYPE 6) histories. Nothing but the element block is stored: the
// stiffness, whose rows give the nodal forces, is rebuilt per element from
// the geometry and the material, and the stresses are formed per step at the
// integration points and carried to the centre and the nodes.
//
// Element record (section PSTH for ELEM_TYPE 5, PSRH for 6; serial 3, or 4
// when ELEM_FORM is 2), 83 doubles, integers stored as doubles:
//   1 .. NEQ   equation numbers, six per node (at most 48)
//   49 NEQ, 50 and 51 not read
//   52 .. 83   TEMP(1..32): 1 the node count (6 or 8), 2..9 the nodes,
//              10..20 PLATE_PROP(1..11) (10 the thickness), 21 E, 22 nu,
//              23 MAT_TYPE, 24..32 MAT_VALS
// Node coordinates come from section CORD (serial 3), a record per node.
//
// Rows: 1..24 global nodal forces, three per node. ELEM_TYPE 5: 25..51 the
// stress triples (xx, yy, xy, panel axes) of the centre and the nodes.
// ELEM_TYPE 6: 25..60 four stress rows a point (xx, yy, zz, xy), 61..96 four
// strain rows a point.
#include <algorithm>
#include <vector>

#include "nodal/disp_equation.hpp"
#include "numeric/blas.hpp"
#include "plane/plane_high_matrices.hpp"
#include "plane/plane_kit.hpp"
#include "recovery/stress_recovery.hpp"

namespace respcore {

namespace {

constexpr int32_t kRecWords = 83;
constexpr int32_t kMaxNode = 8;
constexpr int32_t kMaxEq = 48;
constexpr int32_t kStrsRows = 60;
constexpr int32_t kStrainRows = 36;

struct HighElement {
  int32_t NEQ = 0;   // what LM holds of the record's count
  int32_t NNOD = 0;  // at most 8
};

void decode_record(VecRef<double> SA, ElementMaterial& m, HighElement& E, Vec<int32_t>& LM,
                   Vec<int32_t>& IIA) {
  auto TEMP = [&](int32_t k) { return SA(51 + k); };
  E.NEQ = std::max(trunc_i32(SA(49)), 0);
  if (E.NEQ > kMaxEq) {
    report_bound_failure("LM", E.NEQ, 1, kMaxEq);
    E.NEQ = kMaxEq;
  }
  LM.fill(0);
  for (int32_t i = 1; i <= E.NEQ; ++i) LM(i) = trunc_i32(SA(i));
  E.NNOD = std::max(trunc_i32(TEMP(1)), 0);
  if (E.NNOD > kMaxNode) {
    report_bound_failure("XYZ", E.NNOD, 1, kMaxNode);
    E.NNOD = kMaxNode;
  }
  IIA.fill(0);
  for (int32_t k = 1; k <= 8; ++k) IIA(k) = trunc_i32(TEMP(1 + k));
  for (int32_t k = 1; k <= 11; ++k) m.PLATE_PROP[k - 1] = TEMP(9 + k);
  m.MAT_YOUNG = TEMP(21);
  m.MAT_POISSON = TEMP(22);
  m.MAT_TYPE = trunc_i32(TEMP(23));
  for (int32_t k = 1; k <= 9; ++k) m.MAT_VALS[k - 1] = TEMP(23 + k);
}

// The coordinates of nodes IIA(1..NNOD) (section CORD) into XYZ.
void read_node_coordinates(ArchiveReader A, Vec<int32_t>& IIA, int32_t NNOD, Mat<double>& XYZ) {
  XYZ.fill(0.0);
  const SectionRef cord = A.find(sections::CORD, 3);
  for (int32_t k = 1; k <= NNOD; ++k)
    A.read_f64(cord, IIA(k), VecRef<double>(XYZ.col(k), 3, "XYZ"), 3);
}

// The step's four stress and four strain rows of each point of a plane
// strain element, from its panel stress triples at SIG(25..).
struct StrainRows {
  ContinuumParts& C;
  int32_t AXIS_FLAG;
  bool tagged;  // "H.N.Q" and "J.W.U": the turn through the six components
  double STRESS_LOCAL[100], STRAIN_LOCAL[100], STRAIN_GLOBAL[100];
  double SRL[54], TMP[54];

  // SRL from the triples at SRC by the axis rule; with STRESS the
  // out-of-plane stress nu (a + b) is placed as well.
  void rows_of(const double* src, int32_t NNOD, MatRef<double> TRAN, bool stress) {
    PlaneState& S = C.plane;
    const double nu = C.material.MAT_POISSON;
    const int32_t npts = NNOD + 1;
    std::fill(std::begin(SRL), std::end(SRL), 0.0);
    if (AXIS_FLAG == 1 && !tagged) {
      for (int32_t k = 0; k < npts; ++k) {
        const double* t = src + 3 * k;
        turn_in_plane(S.SINE_PANEL, S.COSINE_PANEL, t[0], t[1], t[2], SRL + 4 * k);
        if (stress) SRL[4 * k + 2] = nu * (t[0] + t[1]);
      }
      return;
    }
    for (int32_t k = 0; k < npts; ++k) {
      const double* t = src + 3 * k;
      SRL[4 * k] = t[0], SRL[4 * k + 1] = t[1], SRL[4 * k + 3] = t[2];
      SRL[4 * k + 2] = (stress && AXIS_FLAG != 1) ? nu * (t[0] + t[1]) : 0.0;
    }
    if (AXIS_FLAG != 1) return;
    VecRef<double> A(SRL, 54, "SRL"), B(TMP, 54, "TMP");
    ARRANGE_COMP_PLANE_STRAIN(A, B, npts, S.PANEL_PLANE, 1);
    turn_panel_tensors(B, TRAN, NNOD);
    ARRANGE_COMP_PLANE_STRAIN(A, B, npts, S.PANEL_PLANE, 2);
    if (!stress) return;
    // The out-of-plane stress of the plane replaces that row of the point.
    for (int32_t k = 0; k < npts; ++k) {
      double rows[4];
      if (!plane_rows_of(S.PANEL_PLANE, nu, TMP + 6 * k, rows)) continue;
      const int32_t out = S.PANEL_PLANE == 1 ? 2 : S.PANEL_PLANE == 2 ? 1 : 0;
      SRL[4 * k + out] = rows[out];
    }
  }

  // The rows of step S into the columns SSIG (from row 25) and STRAIN.
  void step(double* SIG, int32_t NNOD, int32_t s, MatRef<double> TRAN, double* SSIG,
            double* STRAIN) {
    const int32_t npts = NNOD + 1;
    std::copy(SIG + 24, SIG + 24 + 3 * npts, STRESS_LOCAL);
    std::fill(std::begin(STRAIN_LOCAL), std::end(STRAIN_LOCAL), 0.0);
    std::fill(std::begin(STRAIN_GLOBAL), std::end(STRAIN_GLOBAL), 0.0);
    PLANE_STRAIN_STRAIN_TIME(C, NNOD, s, VecRef<double>(STRESS_LOCAL, 100, "STRESS_LOCAL"),
                             VecRef<double>(STRAIN_LOCAL, 100, "STRAIN_LOCAL"));
    if (AXIS_FLAG == 1)
      find_panel_plane(TRAN, C.plane.PANEL_PLANE, C.plane.SINE_PANEL, C.plane.COSINE_PANEL);
    if (AXIS_FLAG == 0 || AXIS_FLAG == 1) {
      rows_of(STRAIN_LOCAL, NNOD, TRAN, false);
      std::copy(SRL, SRL + kStrainRows, STRAIN);
    }
    rows_of(STRESS_LOCAL, NNOD, TRAN, true);
    std::copy(SRL, SRL + kStrainRows, SSIG + 24);
  }
};

void plane_high_history(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                        Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT, bool strain,
                        int32_t AXIS_FLAG) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  const SectionName& section = strain ? sections::PSRH : sections::PSTH;
  const int32_t nrows = strain ? 60 : 51;

  Vec<double> SA("SA", kRecWords);
  Vec<int32_t> LM("LM", kMaxEq);
  Vec<int32_t> IIA("IIA", 20);
  Mat<double> XYZ("XYZ", 3, kMaxNode);
  Mat<double> STRS("STRS", kStrsRows, kMaxEq);
  // One row of a long history (REQUEST_MODE 1) is combined from the
  // displacement histories when TDSP holds its steps; the step tables are
  // then made only for an element off that road.
  const int32_t c = R.RESULT_COMP;
  const bool strain_row = strain && c > nrows && c <= nrows + kStrainRows;
  const bool long_row = R.REQUEST_MODE == 1 && nsteps > kCombinedSteps && TDSP.allocated() &&
                        TDSP.cols() >= nsteps && ((c >= 1 && c <= nrows) || strain_row);
  const int32_t ncols = long_row ? 0 : nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kMaxEq, ncols);
  Mat<double> DISP_NO("DISP_NO", kMaxEq, ncols);
  Mat<double> SSIG("SSIG", nrows, ncols);
  Mat<double> STRAIN_GLOBAL_TIME("STRAIN_GLOBAL_TIME", kStrainRows, strain ? ncols : 0);
  double tran[9] = {}, SIG[200], DISP_LOCAL[48] = {}, STRS_GAUSS[27];
  MatRef<double> TRAN(tran, 3, 3, "TRAN");
  StrainRows rows{C,  AXIS_FLAG, product_is(A.state, "H.N.Q") || product_is(A.state, "J.W.U"),
                  {}, {},        {},
                  {}, {}};

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    const int32_t element = INUM_ELEMNT(p);
    HighElement E;
    A.read_f64(A.find(section, ID), INUM_SERIAL(p), SA.ref(), kRecWords);
    READING_ELEMENT_MATERIAL_DATA(A, C.material, element);
    decode_record(SA.ref(), C.material, E, LM, IIA);
    C.continuum.PLANE_TYPE = strain ? 1 : 0;
    read_node_coordinates(A, IIA, E.NNOD, XYZ);
    DispRow row;
    const bool combined = long_row && row.start(M, kMaxEq, E.NEQ, LM.ref(), IIA.ref(), E.NNOD);
    if (!combined) {
      if (DISP_EQ.cols() != nsteps) {
        DISP_EQ.resize(kMaxEq, nsteps);
        DISP_NO.resize(kMaxEq, nsteps);
        SSIG.resize(nrows, nsteps);
        if (strain) STRAIN_GLOBAL_TIME.resize(kStrainRows, nsteps);
      }
      DISP_EQUATION(M, kMaxEq, DISP_EQ.ref(), DISP_NO.ref(), E.NEQ, LM.ref(), IIA.ref(), E.NNOD, 0);
    }
    STRS.fill(0.0);
    if (strain) {
      PLANE_STRAIN_HIGH_STRS(C, element, E.NNOD, STRS.ref(), XYZ.ref(), TRAN);
    } else {
      PLANE_STRESS_HIGH_STRS(C, element, E.NNOD, STRS.ref(), XYZ.ref());
      plane_high_axes(XYZ.ref(), E.NNOD, TRAN);
    }

    // Step S from the displacements DISP into the columns SSIG and STRAIN.
    const int32_t NPT = plane_high_points(E.NNOD);
    auto run = [&](int32_t s, const double* disp, double* ssig, double* strain_col) {
      std::fill(std::begin(SIG), std::end(SIG), 0.0);
      panel_displacements(tran, RawVec<const double>(disp, 1), RawVec<double>(DISP_LOCAL, 1),
                          E.NNOD);
      // The integration-point stresses, staged behind row 27, carried to the
      // centre and the nodes from row 25.
      VecRef<double> sig(SIG, 200, "SIG");
      PLANE_STRESS_HO(C, element, sig.sub(28, 27), XYZ.ref(), TRAN,
                      VecRef<double>(DISP_LOCAL, 48, "DISP_LOCAL"), s, E.NNOD);
      for (int32_t k = 1; k <= 3 * NPT; ++k) STRS_GAUSS[k - 1] = SIG[26 + k];
      STRESS_RECOVERY_PLANE(sig.sub(25, 176), VecRef<double>(STRS_GAUSS, 27, "STRS_GAUSS"), 3, NPT,
                            E.NNOD + 1, 1);
      if (strain)
        rows.step(SIG, E.NNOD, s, TRAN, ssig, strain_col);
      else
        std::copy(SIG + 24, SIG + 51, ssig + 24);
    };
    if (combined) {
      // One row over many steps: the forces are a product with the element's
      // matrix, the other rows, past the element's set-up at step 1, affine
      // in the panel displacements; nothing of a step is read by the next.
      double ssig[60], strain_col[kStrainRows];
      auto value = [&](int32_t s, const double* eq, const double* no) {
        std::fill(ssig, ssig + 60, 0.0);
        for (int32_t k = 0; k < E.NEQ; ++k)
          for (int32_t r = 0; r < 24; ++r) ssig[r] += STRS(r + 1, k + 1) * eq[k];
        run(s, no, ssig, strain_col);
        return strain_row ? strain_col[c - nrows - 1] : ssig[c - 1];
      };
      combine_row(row, M, TDSP, c, kMaxEq, IIA.ref(), E.NNOD, false, value);
      continue;
    }
    // The force rows of every step in one product.
    SSIG.fill(0.0);
    if (E.NEQ > 0 && nsteps > 0)
      DGEMM('N', 'N', 24, nsteps, E.NEQ, 1.0, STRS.data(), kStrsRows, DISP_EQ.data(), kMaxEq, 0.0,
            SSIG.data(), nrows);
    for (int32_t s = 1; s <= nsteps; ++s)
      run(s, DISP_NO.col(s), SSIG.col(s), strain ? STRAIN_GLOBAL_TIME.col(s) : nullptr);
    deliver_plane_rows(R, TDSP, p, SSIG.ref(), nrows, STRAIN_GLOBAL_TIME.ref(), 60,
                       strain ? kStrainRows : 0);
  }
}
}  // namespace

void PLANE_STRESS_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                       Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT) {
  plane_high_history(R, A, M, C, TDSP, INUM_SERIAL, INUM_ELEMNT, false, 0);
}

void PLANE_STRAIN_HIGH(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C,
                       Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT, int32_t AXIS_FLAG) {
  plane_high_history(R, A, M, C, TDSP, INUM_SERIAL, INUM_ELEMNT, true, AXIS_FLAG);
}

}  // namespace respcore
