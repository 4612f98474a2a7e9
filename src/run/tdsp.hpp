// TDSP, the common result store of the history routines: 350 rows by NCOLS
// columns, every entry zero when made.
//
// Only the assembled array is ever observable, and a family writes a few of
// the 350 rows, so a row's storage is made when the row is first touched.
// A long history of one node therefore costs its handful of rows, not 350.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "core/arrays.hpp"

namespace respcore {

class Tdsp {
 public:
  static constexpr int64_t kRows = 350;
  using Row = std::vector<double, DefaultInitAllocator<double>>;

  Tdsp() = default;
  Tdsp(const char* name, int64_t ncols) : name_(name) { reset(ncols); }

  // Makes the store anew with NCOLS columns, all zero. Rows of a small
  // earlier store keep their memory for reuse.
  void reset(int64_t ncols) {
    ncols_ = std::max<int64_t>(ncols, 0);
    checked_count(sizeof(double), ncols_);
    zero();
    rows_.resize(kRows);
    allocated_ = true;
  }
  // Frees the store; only small rows keep their memory.
  void clear() {
    zero();
    ncols_ = 0;
    allocated_ = false;
    caller_row_ = nullptr;
    delivered_ = false;
  }

  // The caller's array, where the call's one returned row (REQUEST_MODE 1)
  // ends up: NCOLS values, set by the entry when the row will be copied
  // there whole. A routine that forms the row there itself, as the last
  // thing the call does, says so with row_delivered(); the copy is then
  // left out. The row of the store itself stays as it was.
  void set_caller_row(double* dst) { caller_row_ = dst; }
  double* caller_row() const { return caller_row_; }
  void row_delivered() { delivered_ = caller_row_ != nullptr; }
  bool delivered() const { return delivered_; }
  bool allocated() const { return allocated_; }
  int64_t cols() const { return ncols_; }

  // Checked element access; touching a row makes its storage.
  double& operator()(int64_t r, int64_t c) {
    if (!allocated_) return bound_fail<double>(name_, c, 1, 0);
    if (r < 1 || r > kRows) return bound_fail<double>(name_, r, 1, kRows);
    if (c < 1 || c > ncols_) return bound_fail<double>(name_, c, 1, ncols_);
    return row(r)[c - 1];
  }

  // Checked read that makes no storage.
  double get(int64_t r, int64_t c) const {
    if (!allocated_) return bound_fail<double>(name_, c, 1, 0);
    if (r < 1 || r > kRows) return bound_fail<double>(name_, r, 1, kRows);
    if (c < 1 || c > ncols_) return bound_fail<double>(name_, c, 1, ncols_);
    const auto& v = rows_[static_cast<size_t>(r - 1)];
    return v.empty() ? 0.0 : v[static_cast<size_t>(c - 1)];
  }

  // Row R as a contiguous array of NCOLS values (made if needed); R must be
  // within 1..350.
  double* row(int64_t r) {
    auto& v = rows_[static_cast<size_t>(r - 1)];
    if (v.empty() && ncols_ > 0) {
      hold(v, r);
      v.assign(static_cast<size_t>(ncols_), 0.0);
    }
    return v.data();
  }
  // Row R (within 1..350) made afresh with unspecified contents, for a
  // caller that writes all NCOLS values.
  double* fresh_row(int64_t r) {
    auto& v = rows_[static_cast<size_t>(r - 1)];
    hold(v, r);
    v.resize(static_cast<size_t>(ncols_));
    return v.data();
  }
  const Row& row_values(int64_t r) const { return rows_[static_cast<size_t>(r - 1)]; }

  // Row R, columns 1..N := SRC[(c - 1) * LD]: straight into the row when R and
  // the columns lie within the store, through the checked subscripts (with
  // their reports) otherwise.
  void put_row(int64_t r, const double* src, int64_t ld, int64_t n) {
    if (allocated_ && r >= 1 && r <= kRows && n <= ncols_) {
      if (n <= 0) return;
      double* dst = row(r);
      for (int64_t c = 0; c < n; ++c) dst[c] = src[c * ld];
      return;
    }
    for (int64_t c = 1; c <= n; ++c) (*this)(r, c) = src[(c - 1) * ld];
  }

  bool row_made(int64_t r) const { return !rows_[static_cast<size_t>(r - 1)].empty(); }

  // Sets every entry to zero.
  // Only the rows that hold memory are visited (in row order), so a call
  // that touched a few rows pays for those, not for all 350.
  void zero() {
    std::sort(held_.begin(), held_.end());
    int64_t kept = 0;
    for (const int32_t i : held_) {
      auto& v = rows_[static_cast<size_t>(i)];
      kept += static_cast<int64_t>(v.capacity());
      v.clear();
      if (kept * 8 > kKeepBytes) v.shrink_to_fit();
    }
    std::erase_if(held_, [&](int32_t i) { return rows_[static_cast<size_t>(i)].capacity() == 0; });
  }

 private:
  static constexpr int64_t kKeepBytes = int64_t{8} << 20;
  // Notes row R as holding memory once V, its storage, gets some.
  void hold(const Row& v, int64_t r) {
    if (v.capacity() == 0 && ncols_ > 0) held_.push_back(static_cast<int32_t>(r - 1));
  }

  std::vector<Row> rows_;
  std::vector<int32_t> held_;  // indices of the rows with memory
  int64_t ncols_ = 0;
  bool allocated_ = false;
  const char* name_ = "TDSP";
  double* caller_row_ = nullptr;
  bool delivered_ = false;
};

// Rows 1..NROWS of one item's results SSIG (a column per step) into TDSP by
// the column rule of the request: under REQUEST_MODE 1 step s to column s,
// otherwise the first step's rows to column ITEM.
inline void deliver_rows(Tdsp& TDSP, int32_t REQUEST_MODE, Mat<double>& SSIG, int64_t nrows,
                         int64_t item) {
  if (REQUEST_MODE == 1) {
    if (SSIG.cols() <= 0) return;
    for (int64_t k = 1; k <= nrows; ++k) {
      TDSP.put_row(k, SSIG.data() + (k - 1), SSIG.rows(), SSIG.cols());
    }
  } else {
    for (int64_t k = 1; k <= nrows; ++k) TDSP(k, item) = SSIG(k, 1);
  }
}

}  // namespace respcore
