#include "nodal/snapshot_motion.hpp"

namespace respcore {

bool SnapshotMotion::applies(const RunContext& R) {
  // With no step at all, an envelope request's delivery of column 1 is
  // itself a bound failure: such a request goes the usual way.
  const bool one_step = (R.REQUEST_MODE == 2 && R.NUM_STEPS == 1) ||
                        (R.REQUEST_MODE == 3 && R.NUM_STEPS >= 1);
  return one_step && R.STEP_NO >= 1 && R.HIST_STORE == 2 && R.HAS_SUPPORT_MOTION == 0;
}

SnapshotMotion::SnapshotMotion(const RunContext& R, const PinnedSection& dmed)
    : dmed_(dmed), step_(R.STEP_NO) {}

}  // namespace respcore
