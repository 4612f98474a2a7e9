// What the plane histories share: strains from stresses, the panel's global
// plane and the turns of panel results into it, the user's axes, and the
// delivery of an element's rows.
//
// Stress and strain triples are (xx, yy, xy) in panel axes, the centre first
// and then the nodes. Six-component points are (xx, yy, zz, xy, yz, zx).
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "core/arrays.hpp"
#include "nodal/disp_equation.hpp"
#include "run/histories.hpp"

namespace respcore {

// STRAIN := DD_INV * STRESS for the NNOD + 1 triples. At STEP 1 the element's
// plane-strain matrix DD is formed (isotropic, or the orthotropic in-plane
// matrix of MAT_TYPE 1) and inverted; the later steps reuse the inverse.
void PLANE_STRAIN_STRAIN_TIME(ContinuumParts& C, int32_t NNOD, int32_t STEP, VecRef<double> STRESS,
                              VecRef<double> STRAIN);

// Four-component points A(4, NPT) and six-component points B(6, NPT).
// DIRECTION 1: B is cleared and takes A as (xx, yy, zz, xy). Otherwise A
// takes (xx, yy, zz) back and, as its fourth, the shear of PANEL_PLANE's
// plane: xy (1), zx (2), yz (3); another plane leaves A's fourth.
void ARRANGE_COMP_PLANE_STRAIN(VecRef<double> A, VecRef<double> B, int32_t NPT, int32_t PANEL_PLANE,
                               int32_t DIRECTION);

// Turns the NNOD force triples (from row 1) and the NNOD + 1 stress triples
// (from row 13) of SIG into the user's axes at ANGLE degrees to panel axis 1.
void TRANSFORM_PLANE_RESULT_TO_USER_LOCAL_AXIS(int32_t NNOD, double ANGLE, VecRef<double> SIG);

// The global plane the panel PANEL_T lies in: its normal along z (1), y (2)
// or x (3), tested in that order within the single-precision tolerance of
// 1. A match sets the plane and the sine and cosine of panel axis 1 in it;
// without a match they keep their values.
void find_panel_plane(MatRef<double> PANEL_T, int32_t& PANEL_PLANE, double& SINE, double& COSINE);

// The in-plane turn of a triple (a, b, c) by the panel direction (SINE,
// COSINE), as stresses are turned: OUT = (first, second, 0, fourth).
void turn_in_plane(double SINE, double COSINE, double a, double b, double c, double OUT[4]);

// The four rows of a point from its six global components T(1..6) by the
// panel's plane, the out-of-plane normal component NU times the sum of two
// others (plane 1: (t1, t2, nu(t1+t2), t4); plane 2: (t1, nu(t1+t3), t3, t6);
// plane 3: (nu(t1+t3), t2, t3, t5)). Returns false, writing nothing, for
// another plane.
bool plane_rows_of(int32_t PANEL_PLANE, double NU, const double T[6], double OUT[4]);

// Six-component panel tensors TMP (the first NNOD + 1 of them) to global
// axes: CHANGE_L_G with the panel axes as columns.
void turn_panel_tensors(VecRef<double> TMP, MatRef<double> PANEL_T, int32_t NNOD);

// Both triples (translations, rotations) of each of NNOD nodes of DISP (six
// per node, global) turned by PANEL_T into LOCAL.
template <class In, class Out>
void panel_displacements(const double* T, In DISP, Out LOCAL, int32_t NNOD) {
  for (int32_t n = 1; n <= NNOD; ++n) {
    for (int32_t h = 0; h < 2; ++h) {
      const int32_t r = 6 * (n - 1) + 3 * h;
      const double v1 = DISP(r + 1), v2 = DISP(r + 2), v3 = DISP(r + 3);
      for (int32_t i = 0; i < 3; ++i) LOCAL(r + 1 + i) = T[i] * v1 + T[i + 3] * v2 + T[i + 6] * v3;
    }
  }
}

// One row C of a long history combined into TDSP from the displacement
// histories that ROW (started in DISP_EQUATION's place, NDOF rows) fetches.
// STEP(s, EQ, NO) runs step S of the element on a column of displacements by
// equation, EQ(1..NDOF), and its node-axis copy NO, and returns the row. Past
// the element's set-up at step 1 the step must be affine in them: it is run
// at step 1 on zero, then at step 2 on zero and on each unit displacement,
// which gives the row's affine map. With LAST_AS_IS the last step runs once
// more as it is, on the last step's displacements, for what it leaves
// behind, and gives the row's last value. The caller has made sure that
// TDSP holds the steps and that C is a row of the element.
template <class Step>
void combine_row(DispRow& row, NodalMotion& M, Tdsp& TDSP, int32_t C, int32_t NDOF,
                 VecRef<int32_t> IIA, int32_t NNODE, bool last_as_is, Step step) {
  const auto n = static_cast<size_t>(NDOF);
  // Columns: zero, the unit displacements, and room for the last step.
  Mat<double> EQ("DISP_EQ", NDOF, NDOF + 2), NO("DISP_NO", NDOF, NDOF + 2);
  for (int32_t k = 1; k <= NDOF; ++k) EQ(k, k + 1) = 1.0;
  turn_to_node_axes(M, NDOF, EQ.ref(), NO.ref(), IIA, NNODE, NDOF + 1);
  (void)step(1, EQ.col(1), NO.col(1));
  const double base = step(2, EQ.col(1), NO.col(1));
  std::vector<double> coef(n), last(n);
  for (int32_t k = 1; k <= NDOF; ++k)
    coef[static_cast<size_t>(k - 1)] = step(2, EQ.col(k + 1), NO.col(k + 1)) - base;
  double* out = TDSP.fresh_row(C);
  row.combine(coef.data(), base, out, last_as_is ? last.data() : nullptr);
  const int64_t nsteps = M.run.NUM_STEPS;
  if (!last_as_is || nsteps < 1) return;
  // The last step's node-axis copy by the turn the probe went through.
  double* eq = EQ.col(NDOF + 2);
  double* no = NO.col(NDOF + 2);
  std::copy(last.begin(), last.end(), eq);
  for (int32_t k = 1; k <= NDOF; ++k) {
    const double* t = NO.col(k + 1);
    for (size_t r = 0; r < n; ++r) no[r] += t[r] * eq[k - 1];
  }
  out[nsteps - 1] = step(static_cast<int32_t>(nsteps), eq, no);
}

// An element's rows into TDSP: under REQUEST_MODE 1 only the row the caller
// returns, RESULT_COMP, over the steps (rows 1..NROWS of SSIG, then rows
// 1..NSTRAIN of STRAIN as TDSP rows STRAIN_ROW0 + k); otherwise all of them,
// of the first step, into column ITEM.
void deliver_plane_rows(const RunContext& R, Tdsp& TDSP, int64_t ITEM, MatRef<double> SSIG,
                        int32_t NROWS, MatRef<double> STRAIN, int32_t STRAIN_ROW0, int32_t NSTRAIN);

}  // namespace respcore
