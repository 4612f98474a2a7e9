// The last step of a request: TDSP to the caller's flat array. A copy that
// computes nothing.
#include <algorithm>

#include "run/entry.hpp"

namespace respcore {

namespace {

// Points per item (m) and the TDSP row of point n, for REQUEST_MODE 2. A
// family's component selector C picks either a block of point values or the
// block of element values behind it. Returns false for a family outside 1..14.
// (In 64 bits: C is the caller's, and any value of it must give a row.)
bool snapshot_layout(int32_t type, int64_t C, int64_t& m, int64_t& base, int64_t& stride) {
  // row = base + stride * (n - 1)
  switch (type) {
    case 1: case 2:
      if (C < 4) { m = 4; base = C; stride = 3; } else { m = 5; base = C + 9; stride = 3; }
      return true;
    case 3:
      if (C < 7) { m = 4; base = C; stride = 6; } else { m = 5; base = C + 18; stride = 14; }
      return true;
    case 4:
      if (C < 4) { m = 8; base = C; stride = 3; } else { m = 9; base = C + 21; stride = 6; }
      return true;
    case 5:
      if (C < 4) { m = 8; base = C; stride = 3; } else { m = 9; base = C + 21; stride = 3; }
      return true;
    case 6:
      if (C < 4) { m = 8; base = C; stride = 3; } else { m = 9; base = C + 21; stride = 4; }
      return true;
    case 7:
      if (C < 7) { m = 8; base = C; stride = 6; } else { m = 9; base = C + 42; stride = 14; }
      return true;
    case 8:
      if (C < 4) { m = 20; base = C; stride = 3; } else { m = 21; base = C + 57; stride = 6; }
      return true;
    case 9: case 10: case 11:
      m = 1; base = C; stride = 0;
      return true;
    case 12:
      // C 1: rows 1, 2 (the two end forces); otherwise C + 1, C + 2.
      m = 2; base = C == 1 ? 1 : C + 1; stride = 1;
      return true;
    case 13: case 14:
      m = 2;
      if (C < 7) { base = C; stride = 6; }
      else if (C <= 13) { base = C + 6; stride = 7; }
      else { base = C + 13; stride = 4; }
      return true;
    default:
      return false;
  }
}

}  // namespace

int64_t history_size(int32_t elem_type, int32_t result_comp, int32_t num_steps,
                     int32_t num_items, int32_t request_mode) {
  if (request_mode == 1) return std::max(num_steps, 0);
  if (request_mode == 3) return 12 * int64_t{std::max(num_items, 0)};
  int64_t m = 0, base = 0, stride = 0;
  if (!snapshot_layout(elem_type, result_comp, m, base, stride)) return 0;
  return m * std::max(num_items, 0);
}

void assemble_history(const RunContext& R, const Tdsp& TDSP, VecRef<double> TDSP_COMP) {
  if (R.REQUEST_MODE == 1) {
    if (TDSP.delivered()) return;
    const int64_t n = R.NUM_STEPS;
    const int64_t C = R.RESULT_COMP;
    if (TDSP.allocated() && C >= 1 && C <= Tdsp::kRows && n <= TDSP.cols() &&
        n <= TDSP_COMP.size() && TDSP_COMP.lo() == 1 && n > 0) {
      const auto& row = TDSP.row_values(C);
      if (row.empty()) std::fill(TDSP_COMP.data(), TDSP_COMP.data() + n, 0.0);
      else std::copy(row.begin(), row.begin() + n, TDSP_COMP.data());
      return;
    }
    for (int64_t s = 1; s <= n; ++s) TDSP_COMP(s) = TDSP.get(C, s);
    return;
  }
  if (R.REQUEST_MODE == 3) {
    const int64_t ncols = 2 * int64_t{R.NUM_ITEMS};
    if (TDSP.allocated() && ncols > 0 && ncols <= TDSP.cols() && TDSP_COMP.lo() == 1 &&
        6 * ncols <= TDSP_COMP.size()) {
      // Every entry lies within the store and the caller's array: the rows
      // are copied as they lie, a row never touched as zeros.
      double* out = TDSP_COMP.data();
      for (int64_t r = 1; r <= 6; ++r) {
        const auto& row = TDSP.row_values(r);
        if (row.empty()) {
          for (int64_t c = 0; c < ncols; ++c) out[6 * c + r - 1] = 0.0;
        } else {
          for (int64_t c = 0; c < ncols; ++c) out[6 * c + r - 1] = row[static_cast<size_t>(c)];
        }
      }
      return;
    }
    for (int64_t c = 1; c <= ncols; ++c) {
      for (int64_t r = 1; r <= 6; ++r) TDSP_COMP(6 * (c - 1) + r) = TDSP.get(r, c);
    }
    return;
  }
  int64_t m = 0, base = 0, stride = 0;
  if (!snapshot_layout(R.ELEM_TYPE, R.RESULT_COMP, m, base, stride)) return;
  for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
    for (int64_t n = 1; n <= m; ++n) {
      TDSP_COMP(m * (k - 1) + n) = TDSP.get(base + stride * (n - 1), k);
    }
  }
}

}  // namespace respcore
