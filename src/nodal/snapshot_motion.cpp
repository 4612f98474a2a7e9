#include "nodal/snapshot_motion.hpp"

namespace respcore {

bool SnapshotMotion::applies(const RunContext& R) {
  return R.REQUEST_MODE == 2 && R.NUM_STEPS == 1 && R.STEP_NO >= 1 && R.HIST_STORE == 2 &&
         R.HAS_SUPPORT_MOTION == 0;
}

SnapshotMotion::SnapshotMotion(const RunContext& R, const PinnedSection& dmed)
    : dmed_(dmed), step_(R.STEP_NO) {}

}  // namespace respcore
