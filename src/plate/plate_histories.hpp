// What the plate histories share: the data they keep in the kernel state, the
// delivery of an item's rows to TDSP, the node coordinates, the result block
// of the ordinary section, and the routines written for them (the recovery of
// released freedoms, the shear forces from the moment gradient, the
// extrapolation inside a sub-quadrilateral).
#pragma once

#include <cstdint>
#include <vector>

#include "archive/section_access.hpp"
#include "core/arrays.hpp"
#include "nodal/disp_equation.hpp"
#include "plate/dkmq.hpp"
#include "plate/dkmt.hpp"
#include "plate/dkt.hpp"
#include "plate/plate_context.hpp"
#include "plate/plate_results.hpp"
#include "plate/plate_section.hpp"
#include "plate/plate_state.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"

namespace respcore {

// The formulations keep one set-up per element slot: one for the three- and
// four-node plates, four for the sub-elements of a high-order plate.
struct PlateSaved {
  double ST[50] = {};  // the stress blocks the last formulation returned
  DkmqSaved quad[4];
  DkmtSaved thick[4];
  DktSaved thin;
  PlateStrainSaved strain;
  PlateSection general;  // the general section of the current element

  VecRef<double> st() { return VecRef<double>(ST, 50, "ST"); }
};

// The plate state's saved data, made on first use.
PlateSaved& plate_saved(PlateState& S);

// Where the rows of one item go. Row r of a step is SIG(r) up to row LAST,
// SIG(r + GAP) behind it. Under REQUEST_MODE 1 only the row that the request
// returns is ever read, so step s of that row goes to column s; under any
// other mode the first step's rows go to the item's column.
class ItemRows {
 public:
  ItemRows(Tdsp& TDSP, const RunContext& R, int32_t nrows, int32_t last, int32_t gap, int64_t item);
  // The rows of step S from SIG(1..), which holds nrows + gap values.
  void put(int64_t s, const double* SIG);
  // Whether the row of a long REQUEST_MODE 1 history, every step of which
  // fits TDSP, may be combined from the displacement histories.
  bool combinable() const { return long_ && row_ != nullptr; }
  // The same before any item, for rows 1..NROWS.
  static bool combinable(const RunContext& R, const Tdsp& TDSP, int32_t nrows);
  // Where a step's SIG holds that row (from 0), and the row made afresh.
  int32_t offset() const { return source(comp_) - 1; }
  double* fresh_row() { return TDSP_.fresh_row(comp_); }

 private:
  int32_t source(int32_t r) const { return r <= last_ ? r : r + gap_; }

  Tdsp& TDSP_;
  int32_t nrows_, last_, gap_;
  int64_t item_;
  int32_t comp_ = 0;       // the row of REQUEST_MODE 1, 0 when none is delivered
  double* row_ = nullptr;  // its storage, when all steps fit
  bool history_;
  bool long_ = false;  // more steps than kCombinedSteps
};

// The probe of an element's step: NDOF + 1 columns of displacements, zero and
// then each unit vector, their node-axis copy and FORCE_ROWS rows of room
// for what the step forms from them.
struct StepProbe {
  StepProbe(int32_t ndof, int32_t force_rows);
  Mat<double> DISP_EQ, DISP_NO, FORCE;
};

// One row of a long history combined from the displacement histories (see
// DispRow) in place of the element's steps. PREPARE(DISP_EQ, DISP_NO, FORCE,
// NCOLS) readies columns 1..NCOLS of the displacements by equation, DISP_EQ,
// and of their node-axis copy, DISP_NO, for the steps (and the element for
// its first step): FORCE is room for NCOLS columns of what it forms.
// STEP(k, DNO, FRC) then runs step K on one column of each and returns its
// SIG. Both must be affine in DISP_EQ, the element set up at step 1 only,
// and no step may read what another left: they are run on the probe, which
// gives the row's affine map. With LAST_AS_IS the last step runs once more
// as it is, on the last step's columns, for what it leaves behind, and gives
// the row's last value. False, having done nothing, where the road does not
// apply.
template <class Prepare, class Step>
bool combined_row(NodalMotion& M, ItemRows& rows, StepProbe& probe, int32_t NEQ, VecRef<int32_t> LM,
                  VecRef<int32_t> IIA, int32_t NNODE, bool last_as_is, Prepare prepare, Step step) {
  const auto ndof = static_cast<int32_t>(probe.DISP_EQ.rows());
  if (!rows.combinable()) return false;
  DispRow row;
  if (!row.start(M, ndof, NEQ, LM, IIA, NNODE)) return false;
  Mat<double>& NO = probe.DISP_NO;
  Mat<double>& F = probe.FORCE;
  turn_to_node_axes(M, ndof, probe.DISP_EQ.ref(), NO.ref(), IIA, NNODE, ndof + 1);
  prepare(probe.DISP_EQ, NO, F, ndof + 1);
  const auto n = static_cast<size_t>(ndof);
  std::vector<double> v(n + 1), last(n);
  const int32_t at = rows.offset();
  for (int32_t k = 1; k <= ndof + 1; ++k)
    v[static_cast<size_t>(k - 1)] = step(k, NO.col(k), F.col(k))[at];
  for (size_t k = 1; k <= n; ++k) v[k] -= v[0];
  double* out = rows.fresh_row();
  row.combine(v.data() + 1, v[0], out, last_as_is ? last.data() : nullptr);
  const int32_t nsteps = M.run.NUM_STEPS;
  if (!last_as_is || nsteps < 1) return true;
  // The last step's columns: the preparation is linear in DISP_EQ, so they
  // combine from the probe's.
  std::vector<double> dn(n, 0.0), frc(static_cast<size_t>(F.rows()), 0.0);
  for (size_t k = 0; k < n; ++k) {
    const double* a = NO.col(static_cast<int64_t>(k) + 2);
    const double* b = F.col(static_cast<int64_t>(k) + 2);
    for (size_t r = 0; r < dn.size(); ++r) dn[r] += a[r] * last[k];
    for (size_t r = 0; r < frc.size(); ++r) frc[r] += b[r] * last[k];
  }
  out[nsteps - 1] = step(nsteps, dn.data(), frc.data())[at];
  return true;
}

// XYZ(1..3, i) := coordinates of node record IIA(i), i = 1..N (section CORD).
// A record that cannot be read leaves its column as it was.
void read_node_coordinates(ArchiveReader A, VecRef<int32_t> IIA, int32_t N, MatRef<double> XYZ);

// Result block R(1..14) of the stress block S(1..8) of the ordinary section:
// top fibre membrane + bending, bottom fibre membrane - bending, then N, M, V
// by CONVERT with the thicknesses T(1), T(2).
void plate_result_block(VecRef<double> S, VecRef<double> R, VecRef<double> T);

// The four Gauss blocks of a sub-quadrilateral's stress blocks V(1..40)
// (centre first) become their bilinear extrapolation to its corners.
void TRTONO_TOT(VecRef<double> V);

// Overwrites the shear forces (rows 13, 14) of the NNODE+1 result blocks of R
// with those of the moment gradient: V = -(dMx/dx + dMxy/dy, dMy/dy + dMxy/dx),
// the moments of the nodes (blocks 2..NNODE+1) interpolated over the element
// XYZ(3,NNODE) in the axes TR.
void COMPUTE_SHEAR_FORCE(VecRef<double> R, MatRef<double> XYZ, MatRef<double> TR, int32_t NNODE);

// The local components (u, v, w, rx, ry, rz) a release code frees, as bits
// 0..5: the code's whole part, modulo 1,000,000, read as six decimal digits
// from the left, a non-zero digit releasing its component.
int32_t released_components(double code);

// Recovers the released freedoms of a plate in DISP_NO(ROWS, NUM_STEPS)
// (global, six rows per node): the element, with its ordinary stiffness of
// (NNODE, PLATE_KIND) at XYZ in the axes TR and membrane MEMB_KIND, carries
// no force on its released freedoms, so their element-axis values are
// -inv(K_RR) K_RC times the kept ones. Nodes with a release get both triples
// back in global axes. No release: nothing changes.
void RECOV_RLS_PLATE(const PlateContext& C, int32_t PLATE_KIND, int32_t MEMB_KIND,
                     MatRef<double> DISP_NO, int32_t ROWS, MatRef<double> XYZ, int32_t NUM_STEPS,
                     int32_t NNODE, MatRef<double> TR, VecRef<double> RLS_CODE);

}  // namespace respcore
