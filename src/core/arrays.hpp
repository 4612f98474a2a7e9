// 1-based, column-major arrays with checked subscripts.
//
// Every subscript is checked against the declared bounds. A failure writes one
// line on standard error and the run goes on: an out-of-range read yields zero
// and an out-of-range write is dropped (it lands in a per-thread scratch cell
// that is cleared on every failure). Hot loops may take raw pointers with
// data() once their bounds were validated against the extents.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace respcore {

// Writes "array bound exceeded: NAME subscript VALUE bound LO:HI" to stderr.
void report_bound_failure(const char* name, int64_t value, int64_t lo, int64_t hi);

// Largest single array the library will make; beyond this an allocation is
// refused with std::bad_alloc instead of exhausting the machine.
inline constexpr int64_t kMaxArrayBytes = int64_t{1} << 30;

// Element count of an array of the given extents, clamped at 0 per extent;
// throws std::bad_alloc when the product overflows or exceeds kMaxArrayBytes.
int64_t checked_count(int64_t elem_size, int64_t n1, int64_t n2 = 1, int64_t n3 = 1);

// Allocator whose value-less construction leaves the element uninitialised,
// for buffers that are filled whole right after they are made.
template <class T>
struct DefaultInitAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = DefaultInitAllocator<U>;
  };
  DefaultInitAllocator() = default;
  template <class U>
  DefaultInitAllocator(const DefaultInitAllocator<U>&) noexcept {}
  template <class U>
  void construct(U* p) noexcept {
    ::new (static_cast<void*>(p)) U;
  }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
};

// A loop driven by a count read from a record, over the subscripts FIRST,
// FIRST + 1, ... of an array of extent LO:HI: how many of its COUNT steps the
// extent holds. A count past the extent reports the first subscript outside
// it once, as its access would; the loop stops there, since every later
// access would fail too (reading zero, dropping its write).
inline int64_t fit_extent(const char* name, int64_t lo, int64_t hi, int64_t first, int64_t count) {
  if (count <= 0) return 0;
  if (first < lo || first > hi) {
    report_bound_failure(name, first, lo, hi);
    return 0;
  }
  const int64_t room = hi - first + 1;
  if (count > room) {
    report_bound_failure(name, hi + 1, lo, hi);
    return room;
  }
  return count;
}

template <class T>
T& bound_scratch() {
  thread_local T scratch{};
  scratch = T{};
  return scratch;
}

template <class T>
inline T& bound_fail(const char* name, int64_t value, int64_t lo, int64_t hi) {
  report_bound_failure(name, value, lo, hi);
  return bound_scratch<T>();
}

// The storage of an array read and written without the subscript check, with
// the same 1-based (or LO-based) subscripts. For a loop whose subscripts were
// all validated against the extents before it runs: such a loop is written
// once, over either kind of view, and runs unchecked when it may.
template <class T>
class RawVec {
 public:
  RawVec(T* data, int64_t lo) : data_(data), lo_(lo) {}
  T& operator()(int64_t i) const { return data_[i - lo_]; }

 private:
  T* data_;
  int64_t lo_;
};

template <class T>
class RawMat {
 public:
  RawMat(T* data, int64_t rows) : data_(data), rows_(rows) {}
  T& operator()(int64_t i, int64_t j) const { return data_[(i - 1) + (j - 1) * rows_]; }

 private:
  T* data_;
  int64_t rows_;
};

// Non-owning view of a vector with its own declared extent LO:HI.
template <class T>
class VecRef {
 public:
  VecRef() = default;
  VecRef(T* data, int64_t n, const char* name, int64_t lo = 1)
      : data_(data), lo_(lo), hi_(lo + std::max<int64_t>(n, 0) - 1), name_(name) {}

  T& operator()(int64_t i) const {
    if (i < lo_ || i > hi_) return bound_fail<T>(name_, i, lo_, hi_);
    return data_[i - lo_];
  }
  int64_t size() const { return hi_ - lo_ + 1; }
  int64_t lo() const { return lo_; }
  int64_t hi() const { return hi_; }
  T* data() const { return data_; }
  const char* name() const { return name_; }

  // View of LEN entries starting at subscript START: the part of an array
  // that a routine is handed to work on as an array of its own. The extent is
  // cut to what the parent holds, so the view can never reach outside the
  // parent's storage.
  VecRef sub(int64_t start, int64_t len) const {
    if (start < lo_ || start > hi_) {
      report_bound_failure(name_, start, lo_, hi_);
      return VecRef(nullptr, 0, name_);
    }
    return VecRef(data_ + (start - lo_), std::min(len, hi_ - start + 1), name_);
  }

  void fill(T v) const { std::fill(data_, data_ + size(), v); }
  RawVec<T> raw() const { return RawVec<T>(data_, lo_); }
  // Whether subscripts FIRST..LAST all lie within the extent.
  bool holds(int64_t first, int64_t last) const { return last < first || (first >= lo_ && last <= hi_); }
  // Of COUNT subscripts from FIRST on, how many a loop may run (fit_extent).
  int64_t fit(int64_t first, int64_t count) const {
    return fit_extent(name_, lo_, hi_, first, count);
  }

 private:
  T* data_ = nullptr;
  int64_t lo_ = 1;
  int64_t hi_ = 0;
  const char* name_ = "";
};

// Non-owning column-major matrix view, subscripts 1..rows, 1..cols.
template <class T>
class MatRef {
 public:
  MatRef() = default;
  MatRef(T* data, int64_t rows, int64_t cols, const char* name)
      : data_(data), rows_(std::max<int64_t>(rows, 0)), cols_(std::max<int64_t>(cols, 0)),
        name_(name) {}

  T& operator()(int64_t i, int64_t j) const {
    if (i < 1 || i > rows_) return bound_fail<T>(name_, i, 1, rows_);
    if (j < 1 || j > cols_) return bound_fail<T>(name_, j, 1, cols_);
    return data_[(i - 1) + (j - 1) * rows_];
  }
  int64_t rows() const { return rows_; }
  int64_t cols() const { return cols_; }
  T* data() const { return data_; }
  T* col(int64_t j) const { return data_ + (j - 1) * rows_; }
  const char* name() const { return name_; }
  void fill(T v) const { std::fill(data_, data_ + rows_ * cols_, v); }
  // The whole storage as one vector (a matrix handed to a vector dummy).
  VecRef<T> flat() const { return VecRef<T>(data_, rows_ * cols_, name_); }
  RawMat<T> raw() const { return RawMat<T>(data_, rows_); }
  // Whether rows 1..R and columns 1..C lie within the extents.
  bool holds(int64_t r, int64_t c) const { return r <= rows_ && c <= cols_; }
  // Of COUNT rows (columns) from 1 on, how many a loop may run (fit_extent).
  int64_t fit_rows(int64_t count) const { return fit_extent(name_, 1, rows_, 1, count); }
  int64_t fit_cols(int64_t count) const { return fit_extent(name_, 1, cols_, 1, count); }

 private:
  T* data_ = nullptr;
  int64_t rows_ = 0;
  int64_t cols_ = 0;
  const char* name_ = "";
};

// Owning vector, zero when made.
template <class T>
class Vec {
 public:
  Vec() = default;
  explicit Vec(const char* name, int64_t n = 0, int64_t lo = 1) : name_(name) { resize(n, lo); }

  void resize(int64_t n, int64_t lo = 1) {
    v_.assign(static_cast<size_t>(checked_count(sizeof(T), n)), T{});
    lo_ = lo;
  }
  void clear() { v_.clear(); v_.shrink_to_fit(); }
  bool allocated() const { return !v_.empty(); }

  T& operator()(int64_t i) {
    const int64_t hi = lo_ + static_cast<int64_t>(v_.size()) - 1;
    if (i < lo_ || i > hi) return bound_fail<T>(name_, i, lo_, hi);
    return v_[static_cast<size_t>(i - lo_)];
  }
  const T& operator()(int64_t i) const { return const_cast<Vec&>(*this)(i); }
  int64_t size() const { return static_cast<int64_t>(v_.size()); }
  T* data() { return v_.data(); }
  const T* data() const { return v_.data(); }
  void fill(T v) { std::fill(v_.begin(), v_.end(), v); }
  VecRef<T> ref() { return VecRef<T>(v_.data(), size(), name_, lo_); }
  VecRef<T> sub(int64_t start, int64_t len) { return ref().sub(start, len); }
  int64_t fit(int64_t first, int64_t count) { return ref().fit(first, count); }
  RawVec<T> raw() { return RawVec<T>(v_.data(), lo_); }
  const char* name() const { return name_; }

 private:
  std::vector<T> v_;
  int64_t lo_ = 1;
  const char* name_ = "";
};

// Owning column-major matrix, zero when made.
template <class T>
class Mat {
 public:
  Mat() = default;
  Mat(const char* name, int64_t rows, int64_t cols) : name_(name) { resize(rows, cols); }

  void resize(int64_t rows, int64_t cols) {
    rows_ = std::max<int64_t>(rows, 0);
    cols_ = std::max<int64_t>(cols, 0);
    v_.assign(static_cast<size_t>(checked_count(sizeof(T), rows_, cols_)), T{});
  }
  void clear() {
    v_.clear();
    v_.shrink_to_fit();
    rows_ = cols_ = 0;
  }
  bool allocated() const { return !v_.empty(); }

  T& operator()(int64_t i, int64_t j) {
    if (i < 1 || i > rows_) return bound_fail<T>(name_, i, 1, rows_);
    if (j < 1 || j > cols_) return bound_fail<T>(name_, j, 1, cols_);
    return v_[static_cast<size_t>((i - 1) + (j - 1) * rows_)];
  }
  const T& operator()(int64_t i, int64_t j) const { return const_cast<Mat&>(*this)(i, j); }
  int64_t rows() const { return rows_; }
  int64_t cols() const { return cols_; }
  T* data() { return v_.data(); }
  const T* data() const { return v_.data(); }
  T* col(int64_t j) { return v_.data() + (j - 1) * rows_; }
  void fill(T v) { std::fill(v_.begin(), v_.end(), v); }
  MatRef<T> ref() { return MatRef<T>(v_.data(), rows_, cols_, name_); }
  VecRef<T> flat() { return VecRef<T>(v_.data(), rows_ * cols_, name_); }
  RawMat<T> raw() { return RawMat<T>(v_.data(), rows_); }
  int64_t fit_rows(int64_t count) { return ref().fit_rows(count); }
  int64_t fit_cols(int64_t count) { return ref().fit_cols(count); }
  const char* name() const { return name_; }

 private:
  std::vector<T> v_;
  int64_t rows_ = 0;
  int64_t cols_ = 0;
  const char* name_ = "";
};

// Owning three-dimensional column-major array, zero when made.
template <class T>
class Arr3 {
 public:
  Arr3() = default;
  Arr3(const char* name, int64_t n1, int64_t n2, int64_t n3) : name_(name) { resize(n1, n2, n3); }

  void resize(int64_t n1, int64_t n2, int64_t n3) {
    n1_ = std::max<int64_t>(n1, 0);
    n2_ = std::max<int64_t>(n2, 0);
    n3_ = std::max<int64_t>(n3, 0);
    v_.assign(static_cast<size_t>(checked_count(sizeof(T), n1_, n2_, n3_)), T{});
  }
  void clear() {
    v_.clear();
    v_.shrink_to_fit();
    n1_ = n2_ = n3_ = 0;
  }
  bool allocated() const { return !v_.empty(); }

  T& operator()(int64_t i, int64_t j, int64_t k) {
    if (i < 1 || i > n1_) return bound_fail<T>(name_, i, 1, n1_);
    if (j < 1 || j > n2_) return bound_fail<T>(name_, j, 1, n2_);
    if (k < 1 || k > n3_) return bound_fail<T>(name_, k, 1, n3_);
    return v_[static_cast<size_t>((i - 1) + n1_ * ((j - 1) + n2_ * (k - 1)))];
  }
  int64_t extent(int d) const { return d == 1 ? n1_ : d == 2 ? n2_ : n3_; }
  const char* name() const { return name_; }
  T* data() { return v_.data(); }
  void fill(T v) { std::fill(v_.begin(), v_.end(), v); }
  // The plane of third subscript K (within 1..N3) as a matrix under the
  // array's name: its checks report the first two subscripts as the array's.
  MatRef<T> plane(int64_t k) { return MatRef<T>(v_.data() + n1_ * n2_ * (k - 1), n1_, n2_, name_); }

 private:
  std::vector<T> v_;
  int64_t n1_ = 0, n2_ = 0, n3_ = 0;
  const char* name_ = "";
};

// Entry I (from 1) of a constant table, checked like an array subscript: an
// entry outside the table reports the bound failure under NAME and reads as
// OUTSIDE.
template <class T>
T table_entry(std::span<const T> table, int64_t i, const char* name, T outside = T{}) {
  const auto n = static_cast<int64_t>(table.size());
  if (i < 1 || i > n) {
    report_bound_failure(name, i, 1, n);
    return outside;
  }
  return table[static_cast<size_t>(i - 1)];
}
template <class T, size_t N>
std::remove_cv_t<T> table_entry(const T (&table)[N], int64_t i, const char* name,
                                std::remove_cv_t<T> outside = {}) {
  return table_entry<std::remove_cv_t<T>>(std::span<const std::remove_cv_t<T>>(table, N), i, name,
                                          outside);
}
template <class T, size_t N>
T table_entry(const std::array<T, N>& table, int64_t i, const char* name, T outside = T{}) {
  return table_entry<T>(std::span<const T>(table), i, name, outside);
}

// Element-record integers are stored as doubles and truncated toward zero.
// Values outside the int32 range saturate instead of invoking undefined
// behaviour; they can only come from a corrupt record.
inline int32_t trunc_i32(double x) {
  if (!(x == x)) return 0;
  if (x >= 2147483647.0) return 2147483647;
  if (x <= -2147483648.0) return -2147483647 - 1;
  return static_cast<int32_t>(x);
}

// A packed word holds an integer and, as two digits behind the decimal point,
// a count: the truncation of (x + 0.0001) * 100 - trunc(x) * 100. The integer
// part is taken whole (not cut to 32 bits), so that the count is the two
// digits whatever the magnitude of the word; a result outside 0..99 (a
// negative word, a fraction of .9999 and more, a word too large for its
// fraction to survive, not a number) is held to 0..99.
inline int32_t packed_count(double x) {
  const double v = (x + 0.0001) * 100.0 - std::trunc(x) * 100.0;
  if (!(v > 0.0)) return 0;
  if (v >= 99.0) return 99;
  return static_cast<int32_t>(v);
}

}  // namespace respcore
