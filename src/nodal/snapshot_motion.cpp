#include "nodal/snapshot_motion.hpp"

namespace respcore {

bool SnapshotMotion::applies(const RunContext& R) {
  return R.REQUEST_MODE == 2 && R.NUM_STEPS == 1 && R.STEP_NO >= 1 && R.HIST_STORE == 2 &&
         R.HAS_SUPPORT_MOTION == 0;
}

SnapshotMotion::SnapshotMotion(const RunContext& R, const PinnedSection& dmed)
    : dmed_(dmed), step_(R.STEP_NO) {}

void SnapshotMotion::displacements(const int32_t* LM, int64_t n, double* out) {
  // An equation's displacement history is the third of its three records.
  double last = 0.0;
  for (int64_t i = 0; i < n; ++i) {
    out[i] = 0.0;
    if (LM[i] <= 0) continue;
    double v = 0.0;
    if (dmed_.value(3 * int64_t{LM[i]}, step_ * 8, (step_ - 1) * 8, v)) last = v;
    out[i] = last;
  }
}

}  // namespace respcore
