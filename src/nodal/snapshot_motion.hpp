// The displacements of many elements at the one step of a snapshot, from
// a direct file looked up once for them all. DISP_EQUATION makes a fetch per
// element, with its look-up; a snapshot of many elements of a case stored by
// equation (direct storage without support motion) instead looks the file up
// with its first element and then takes every element's displacements from
// here, each read as the element's own fetch would have read it.
//
// An envelope request (REQUEST_MODE 3) of elements is such a snapshot too:
// its fetch reads the one step STEP_NO into column 1 as a snapshot's does,
// leaves the other NUM_STEPS - 1 columns zero, and the element delivers the
// rows of column 1 to its item's column.
#pragma once

#include <cstdint>

#include "archive/section_window.hpp"
#include "run/run_context.hpp"

namespace respcore {

// Snapshots of fewer elements read each the usual way: they would gain
// too little to make the windows.
inline constexpr int64_t kSnapshotItems = 16;

class SnapshotMotion {
 public:
  // Whether the request and the case allow it: a snapshot (REQUEST_MODE 2)
  // or an envelope request of at least one step (REQUEST_MODE 3), of a step
  // STEP_NO from 1 on, direct storage, no support motion.
  static bool applies(const RunContext& R);

  SnapshotMotion() = default;
  // DMED as the fetch of an element of the request found it.
  SnapshotMotion(const RunContext& R, const PinnedSection& dmed);

  // OUT(1..N) := the displacements of equations LM(1..N) at the step, as
  // DISP_EQUATION's single-step fetch puts them in column 1: zero for an
  // equation below 1, and for a record that cannot be read the value last
  // read for the element (zero before any).
  void displacements(const int32_t* LM, int64_t n, double* out) {
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

 private:
  SectionWindow dmed_;
  int64_t step_ = 0;
};

}  // namespace respcore
