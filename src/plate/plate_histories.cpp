// The pieces the plate histories share.
#include "plate/plate_histories.hpp"

#include "recovery/point_extrapolation.hpp"

namespace respcore {

PlateState::PlateState() = default;
PlateState::~PlateState() = default;

PlateSaved& plate_saved(PlateState& S) {
  if (!S.saved) S.saved = std::make_unique<PlateSaved>();
  return *S.saved;
}

ItemRows::ItemRows(Tdsp& TDSP, const RunContext& R, int32_t nrows, int32_t last, int32_t gap,
                   int64_t item)
    : TDSP_(TDSP),
      nrows_(nrows),
      last_(last),
      gap_(gap),
      item_(item),
      history_(R.REQUEST_MODE == 1) {
  if (!history_) return;
  // A row the family does not deliver stays zero.
  if (R.RESULT_COMP >= 1 && R.RESULT_COMP <= nrows) comp_ = R.RESULT_COMP;
  if (comp_ > 0 && TDSP.allocated() && R.NUM_STEPS <= TDSP.cols()) row_ = TDSP.row(comp_);
  long_ = R.NUM_STEPS > kCombinedSteps;
}

bool ItemRows::combinable(const RunContext& R, const Tdsp& TDSP, int32_t nrows) {
  return R.REQUEST_MODE == 1 && R.RESULT_COMP >= 1 && R.RESULT_COMP <= nrows &&
         TDSP.allocated() && R.NUM_STEPS <= TDSP.cols() && R.NUM_STEPS > kCombinedSteps;
}

StepProbe::StepProbe(int32_t ndof, int32_t force_rows)
    : DISP_EQ("DISP_EQ", ndof, ndof + 1),
      DISP_NO("DISP_NO", ndof, ndof + 1),
      FORCE("FORCE", force_rows, ndof + 1) {
  for (int32_t k = 1; k <= ndof; ++k) DISP_EQ(k, k + 1) = 1.0;
}

void ItemRows::put(int64_t s, const double* SIG) {
  if (history_) {
    if (comp_ == 0) return;
    if (row_ != nullptr && s >= 1)
      row_[s - 1] = SIG[source(comp_) - 1];
    else
      TDSP_(comp_, s) = SIG[source(comp_) - 1];
    return;
  }
  if (s != 1) return;
  for (int32_t r = 1; r <= nrows_; ++r) TDSP_(r, item_) = SIG[source(r) - 1];
}

void read_node_coordinates(ArchiveReader A, VecRef<int32_t> IIA, int32_t N, MatRef<double> XYZ) {
  const SectionRef cord = A.find(sections::CORD, 3);
  for (int32_t i = 1; i <= N; ++i) {
    double xyz[3];
    if (!A.read(cord, IIA(i), xyz, sizeof xyz)) continue;
    for (int j = 1; j <= 3; ++j) XYZ(j, i) = xyz[j - 1];
  }
}

void plate_result_block(VecRef<double> S, VecRef<double> R, VecRef<double> T) {
  for (int c = 1; c <= 3; ++c) {
    R(c) = S(c) + S(c + 3);
    R(c + 3) = S(c) - S(c + 3);
  }
  CONVERT(S, R.sub(R.lo() + 6, 8), T);
}

void TRTONO_TOT(VecRef<double> V) { TRTONO(V, 0, 8); }

}  // namespace respcore
