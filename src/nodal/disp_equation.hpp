// The nodal motion of an element: the displacement of each of its equations
// for every requested step, from modal or direct storage with support motion,
// and optionally turned into the nodes' own axes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "core/arrays.hpp"
#include "nodal/nodal_motion.hpp"

namespace respcore {

// DISP_EQ(NDOF, NUM_STEPS) := displacement of element dof i at step column j.
// Unless NO_TRANSFORM is 1, DISP_NO gets the same in node axes (rows grouped
// six per node). DIRECT, when given, receives the direct-file section the
// fetch looked up (one not found when it made no such look-up).
void DISP_EQUATION(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                   int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                   int32_t NO_TRANSFORM, SectionRef* DIRECT = nullptr);

// DISP_NO := DISP_EQUATION's node-axis copy of columns 1..NCOLS of DISP_EQ.
void turn_to_node_axes(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                       VecRef<int32_t> IIA, int32_t NNODE, int64_t NCOLS);

// One element over many steps, where only one row of its results is wanted
// and the element's step is affine in its displacements: the history
// BASE + the sum over i of COEF(i) DISP_EQ(i, s), s = 1..NUM_STEPS, with
// DISP_EQ as DISP_EQUATION (NO_TRANSFORM 1) fetches it, but without forming
// it: each history is added as it is read, and in modal storage the
// coefficients are folded into the mode shapes first (MotionFetch's
// combined road). start() takes DISP_EQUATION's place in the element's
// reading (the look-ups and the reads of mode values happen there);
// combine() follows once the coefficients are known.
class DispRow {
 public:
  // False, doing nothing, where the road does not apply (REQUEST_MODE other
  // than 1, a case with other storage or more steps than stored, rows that
  // do not fit NDOF); the caller then takes DISP_EQUATION.
  bool start(NodalMotion& M, int32_t NDOF, int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA,
             int32_t NNODE);
  // OUT(1..NUM_STEPS) := the history, for COEF(1..NDOF); with LAST,
  // LAST(1..NDOF) := the displacements of the last step, as DISP_EQ's last
  // column would hold them.
  void combine(const double* COEF, double BASE, double* OUT, double* LAST = nullptr);

 private:
  std::optional<MotionFetch> fetch_;
  int64_t nsteps_ = 0;
  int32_t ndof_ = 0;
};

// Histories longer than this, of one row, take the combined road.
inline constexpr int64_t kCombinedSteps = 64;

// The affine map of a step: VALUE(x) is the step's value on the input column
// X(0..N-1). Returns the value at zero and puts the value at each unit vector
// less it into COEF(0..N-1); X is left zero. The step must be affine in X
// and have no effect that its repetition would change.
template <class Value>
double affine_probe(int32_t n, Value value, double* x, double* coef) {
  std::fill(x, x + n, 0.0);
  const double base = value(x);
  for (int32_t k = 0; k < n; ++k) {
    x[k] = 1.0;
    coef[k] = value(x) - base;
    x[k] = 0.0;
  }
  return base;
}

}  // namespace respcore
