// TDSP, the common result store of the history routines: 350 rows by NCOLS
// columns, every entry zero when made.
//
// Only the assembled array is ever observable, and a family writes a few of
// the 350 rows, so a row's storage is made when the row is first touched.
// A long history of one node therefore costs its handful of rows, not 350.
#pragma once

#include <cstdint>
#include <vector>

#include "core/arrays.hpp"

namespace respcore {

class Tdsp {
 public:
  static constexpr int64_t kRows = 350;

  Tdsp() = default;
  Tdsp(const char* name, int64_t ncols) : name_(name) { reset(ncols); }

  void reset(int64_t ncols) {
    ncols_ = std::max<int64_t>(ncols, 0);
    checked_count(sizeof(double), kRows, ncols_);
    rows_.assign(kRows, {});
  }
  void clear() {
    rows_.clear();
    ncols_ = 0;
  }
  bool allocated() const { return !rows_.empty(); }
  int64_t cols() const { return ncols_; }

  // Checked element access; touching a row makes its storage.
  double& operator()(int64_t r, int64_t c) {
    if (rows_.empty()) return bound_fail<double>(name_, c, 1, 0);
    if (r < 1 || r > kRows) return bound_fail<double>(name_, r, 1, kRows);
    if (c < 1 || c > ncols_) return bound_fail<double>(name_, c, 1, ncols_);
    return row(r)[c - 1];
  }

  // Checked read that makes no storage.
  double get(int64_t r, int64_t c) const {
    if (rows_.empty()) return bound_fail<double>(name_, c, 1, 0);
    if (r < 1 || r > kRows) return bound_fail<double>(name_, r, 1, kRows);
    if (c < 1 || c > ncols_) return bound_fail<double>(name_, c, 1, ncols_);
    const auto& v = rows_[static_cast<size_t>(r - 1)];
    return v.empty() ? 0.0 : v[static_cast<size_t>(c - 1)];
  }

  // Row R as a contiguous array of NCOLS values (made if needed); R must be
  // within 1..350.
  double* row(int64_t r) {
    auto& v = rows_[static_cast<size_t>(r - 1)];
    if (v.empty() && ncols_ > 0) v.assign(static_cast<size_t>(ncols_), 0.0);
    return v.data();
  }
  bool row_made(int64_t r) const { return !rows_[static_cast<size_t>(r - 1)].empty(); }

  // Sets every entry to zero.
  void zero() {
    for (auto& v : rows_) {
      v.clear();
      v.shrink_to_fit();
    }
  }

 private:
  std::vector<std::vector<double>> rows_;
  int64_t ncols_ = 0;
  const char* name_ = "TDSP";
};

}  // namespace respcore
