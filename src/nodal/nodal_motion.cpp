#include "nodal/nodal_motion.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "numeric/combine.hpp"

namespace respcore {

namespace {

// Index, in its section, of the record of quantity Q of equation E. An
// equation's three records hold its acceleration, velocity and displacement,
// so the quantity picks record 3E + 1 - Q. With support motion the direct
// file is addressed by another rule: 3E, 2E and E for the three quantities.
int64_t record_index(Quantity q, bool support, int64_t e) {
  const auto k = static_cast<int64_t>(q);
  return support ? (4 - k) * e : 3 * e + 1 - k;
}

// Whether mode M takes part: a MODE_NO within 1..NUM_MODES selects that mode
// alone; any other value selects all.
bool mode_selected(const RunContext& R, int64_t m) {
  if (R.MODE_NO >= 1 && R.MODE_NO <= R.NUM_MODES) return m == R.MODE_NO;
  return true;
}

// Where the modal coordinates of a fetch lie: mode m's steps FIRST_STEP, ...
// are the records from index(m) = ((MODAL_SET - 1) NUM_MODES + m - 1)
// NUM_STORED_STEPS + FIRST_STEP of MDSP. Only the part of them that a request
// can touch is kept, and only what the file can supply:
//   steps  1..min(NUM_STORED_STEPS, max(NUM_STEPS, 1)), the columns any step
//          of the request reaches (a step past the stored ones is a bound
//          failure either way);
//   modes  FIRST_MODE + 1 ..FIRST_MODE + MODES, the ones with a record within
//          the file; every other mode has zero coordinates, and a zero term
//          in every modal sum.
struct ModalRange {
  int64_t first_mode = 0;
  int64_t modes = 0;
  int64_t steps = 0;
  int64_t count = 0;       // records of a mode read (steps 1..count)
  int64_t wanted = 0;      // steps the request reads from each mode's first record
  int64_t first_step = 1;  // of the record index
};

int64_t mode_index(const RunContext& R, const ModalRange& r, int64_t m) {
  return block_index(block_index(R.MODAL_SET, R.NUM_MODES, m), R.NUM_STORED_STEPS, r.first_step);
}

__extension__ using Wide = __int128;

ModalRange modal_range(NodalMotion& M, const SectionRef& mdsp, bool all_steps) {
  const RunContext& R = M.run;
  ModalRange r;
  const int64_t nm = std::max<int64_t>(R.NUM_MODES, 0);
  const int64_t nss = std::max<int64_t>(R.NUM_STORED_STEPS, 0);
  r.first_step = all_steps ? 1 : R.STEP_NO;
  r.wanted = all_steps ? std::max<int64_t>(R.NUM_STEPS, 0) : 1;
  r.steps = std::min(nss, std::max<int64_t>(R.NUM_STEPS, 1));
  r.count = std::min(r.wanted, r.steps);
  if (nm == 0 || nss == 0) return r;
  // The indices whose records lie within the file.
  const auto [lo, hi] = M.archive.readable_indices(mdsp, 24);
  const int64_t i1 = mode_index(R, r, 1);
  if (lo > hi || i1 == kNoIndex) return r;
  // index(m) = I1 + (m - 1) NSS; mode m has a record within the file when
  // index(m) <= HI and index(m) + COUNT - 1 >= LO.
  const Wide top = (Wide{hi} - i1) < 0 ? Wide{0} : (Wide{hi} - i1) / nss + 1;
  const Wide need = Wide{lo} - (std::max<int64_t>(r.count, 1) - 1) - i1;
  const Wide bottom = need <= 0 ? Wide{1} : (need + nss - 1) / nss + 1;
  const int64_t m_hi = static_cast<int64_t>(std::min<Wide>(top, nm));
  if (bottom > m_hi) return r;
  r.first_mode = static_cast<int64_t>(bottom) - 1;
  r.modes = m_hi - r.first_mode;
  return r;
}

// The modal coordinates of the selected modes of RANGE from MDSP into COORDS
// (mode, step, quantity): with ALL_STEPS steps 1..NUM_STEPS, otherwise the
// record of STEP_NO into step 1. The records of a mode are read in one go and
// kept for the call.
void read_modal_coordinates(NodalMotion& M, const SectionRef& mdsp, const ModalRange& range,
                            Arr3<double>& coords) {
  const RunContext& R = M.run;
  coords.fill(0.0);
  if (range.steps == 0) {
    // No stored step: nothing read could be kept.
    if (range.wanted > 0 && R.NUM_MODES > 0) report_bound_failure(coords.name(), 1, 1, 0);
    return;
  }
  const auto [lo, hi] = M.archive.readable_indices(mdsp, 24);
  const RawMat<double> C1(coords.plane(1).data(), range.modes);
  const RawMat<double> C2(coords.plane(2).data(), range.modes);
  const RawMat<double> C3(coords.plane(3).data(), range.modes);
  bool told = false;
  for (int64_t k = 1; k <= range.modes; ++k) {
    const int64_t m = range.first_mode + k;
    if (!mode_selected(R, m)) continue;
    const int64_t index = mode_index(R, range, m);
    // The same block of records serves every element of the call.
    auto& block = M.state.modal_blocks[{index, range.count}];
    if (block.ok.empty() && range.count > 0) {
      block.values.assign(static_cast<size_t>(3 * range.count), 0.0);
      M.archive.read_run(mdsp, index, range.count, 24, block.values.data(), block.ok);
    }
    for (int64_t s = 1; s <= range.count; ++s) {
      if (!block.ok[static_cast<size_t>(s - 1)]) continue;
      const double* v = block.values.data() + 3 * (s - 1);
      C1(k, s) = v[0];
      C2(k, s) = v[1];
      C3(k, s) = v[2];
    }
    // More steps wanted than are stored: the first step past them is a step
    // that cannot be kept, when the file holds its record.
    if (!told && range.wanted > range.steps) {
      const Wide past = Wide{index} + range.steps;
      if (past >= lo && past <= hi) {
        report_bound_failure(coords.name(), range.steps + 1, 1, range.steps);
        told = true;
      }
    }
  }
}

// OUT(i, j) := sum over m = 1..NM of MODE(i, m) * C(m, j), for i = 1..NROWS and
// j = 1..NCOLS, summed from zero in mode order.
template <class Out, class Mode, class Coord>
void modal_sum(Out OUT, Mode MODE, Coord C, int64_t nrows, int64_t ncols, int64_t nm) {
  for (int64_t j = 1; j <= ncols; ++j) {
    for (int64_t i = 1; i <= nrows; ++i) {
      double sum = 0.0;
      for (int64_t m = 1; m <= nm; ++m) sum += MODE(i, m) * C(m, j);
      OUT(i, j) = sum;
    }
  }
}

// The same, unchecked when every subscript lies within the arrays.
void modal_sum(MatRef<double> OUT, Mat<double>& MODE, MatRef<double> C, int64_t nrows,
               int64_t ncols) {
  const int64_t nm = MODE.cols();
  if (OUT.holds(nrows, ncols) && MODE.ref().holds(nrows, nm) && C.holds(nm, ncols))
    modal_sum(OUT.raw(), MODE.raw(), C.raw(), nrows, ncols, nm);
  else
    modal_sum(OUT, MODE.ref(), C, nrows, ncols, nm);
}

// The support-motion index of the case (MSES) into ISER, made on its first
// use in a call: the rows the file holds, FIRST..LAST, as columns from 1 (a
// row outside the file would be zero, which no node and component match).
// Returns the rows it holds; ISER_first is FIRST - 1.
int64_t read_support_index(NodalMotion& M) {
  const SectionRef mses = M.archive.find(sections::MSES, M.run.HIST_CASE);
  const auto [first, last] = M.archive.readable_among(mses, 8, mses.nrec);
  Mat<int32_t>& ISER = M.state.ISER;
  if (!M.state.ISER_made) {
    ISER.resize(2, last - first + 1);
    M.state.ISER_first = first - 1;
    M.state.ISER_made = true;
  }
  const int64_t nrows = std::min(last - M.state.ISER_first, ISER.cols());
  for (int64_t r = 1; r <= nrows; ++r) {
    int32_t pair[2];
    if (!M.archive.read(mses, M.state.ISER_first + r, pair, 8)) continue;
    ISER(1, r) = pair[0];
    ISER(2, r) = pair[1];
  }
  return nrows;
}

// The first row of the support-motion index with NODE and component C, or 0.
int64_t find_support_row(NodalState& S, int64_t nrows, int32_t node, int32_t c) {
  const RawMat<int32_t> I = S.ISER.raw();
  for (int64_t r = 1; r <= nrows; ++r) {
    if (I(1, r) == node && I(2, r) == c) return S.ISER_first + r;
  }
  return 0;
}

}  // namespace

NodeRecord NodalMotion::node_transform(const SectionRef& ndsp, int64_t node, int32_t K) {
  Vec<double>& TEMP = state.TEMP;
  archive.read_f64(ndsp, node, TEMP.ref(), K + 21);
  NodeRecord rec;
  auto decode = [&](auto V) {
    for (int32_t i = 1; i <= K; ++i) rec.LM[i - 1] = trunc_i32(V(i));
    int32_t next = K + 1;
    for (int i = 0; i < 6; ++i) {
      for (int j = i; j < 6; ++j) rec.T[i][j] = V(next++);
    }
  };
  if (K >= 0 && K + 21 <= TEMP.size())
    decode(TEMP.raw());
  else
    decode(TEMP.ref());
  return rec;
}

MotionFetch::MotionFetch(NodalMotion& M, Quantity q, StepColumns cols, bool support, StepWork& work,
                         MatRef<double> OUT, int64_t mode_rows, int64_t sum_rows)
    : M_(M),
      R_(M.run),
      q_(q),
      cols_(cols),
      support_(support),
      work_(&work),
      out_(OUT),
      sum_rows_(sum_rows) {
  prepare(mode_rows);
}

MotionFetch::MotionFetch(NodalMotion& M, Quantity q, bool support, int64_t sum_rows,
                         HistorySink sink)
    : M_(M),
      R_(M.run),
      q_(q),
      cols_(StepColumns::AllSteps),
      support_(support),
      sum_rows_(sum_rows),
      sink_(std::move(sink)) {
  prepare(7);
}

MotionFetch::MotionFetch(NodalMotion& M, Quantity q, bool support, int64_t nrows)
    : M_(M),
      R_(M.run),
      q_(q),
      cols_(StepColumns::AllSteps),
      support_(support),
      sum_rows_(nrows),
      combined_(true),
      ncoef_(std::max<int64_t>(nrows, 0)) {
  nsteps_ = std::max<int64_t>(R_.NUM_STEPS, 0);
  delivered_.assign(static_cast<size_t>(ncoef_), 0);
  if (R_.HIST_STORE == 1) {
    storage_ = Storage::Modal;
    Modal& md = modal_.emplace();
    // The coordinates are read when the history is combined, once the
    // coefficients are folded; the look-ups stay in their order. Only the
    // modes with records within the file are kept, as on the other roads.
    const SectionRef mdsp = M.archive.find(sections::MDSP, 3);
    const ModalRange range = modal_range(M_, mdsp, true);
    md.first_mode = range.first_mode;
    md.mode_values = Mat<double>("MODE_VALS", ncoef_, range.modes);
    mdsp_ = M.archive.pin(mdsp);
    md.mshp = M.archive.find(sections::MSHP, 3);
    md.mode_row.assign(static_cast<size_t>(range.modes), 0.0);
    return;
  }
  prepare(7);
  dmed_pin_ = M.archive.pin(dmed_);
  if (support_) mser_pin_ = M.archive.pin(mser_);
}

void MotionFetch::combine(const double* coef, double base, double* out, double* last) {
  coef_ = coef;
  base_ = base;
  comb_ = out;
  last_ = last;
  if (last_ != nullptr) std::fill(last_, last_ + ncoef_, 0.0);
  if (storage_ == Storage::Modal)
    finish_combined();
  else if (storage_ == Storage::Direct)
    finish_combined_direct();
  else
    std::fill(comb_, comb_ + nsteps_, base_);
}

bool MotionFetch::combinable(const RunContext& R) {
  if (R.HIST_STORE == 2) return true;
  return R.HIST_STORE == 1 && R.NUM_STEPS >= 1 && R.NUM_STEPS <= R.NUM_STORED_STEPS;
}

void MotionFetch::add_combined(int64_t row, const PinnedSection* s, int64_t index) {
  if (row < 1 || row > ncoef_ || delivered_[static_cast<size_t>(row - 1)]) return;
  delivered_[static_cast<size_t>(row - 1)] = 1;
  if (s != nullptr) records_.push_back({row, s, index});
}

void MotionFetch::finish_combined_direct() {
  // Each row's history is the whole record read as one: a record that cannot
  // hold the steps gives zeros. The steps go in blocks, and the rows in
  // groups of four, so that the block of the sum and the blocks read stay in
  // cache while the group adds its part.
  constexpr int64_t kBlock = 16384;
  constexpr int32_t kGroup = 4;
  const int64_t n = nsteps_;
  const int64_t block = std::min(n, kBlock);
  std::vector<double>& buf = M_.state.row_buffer;
  buf.resize(static_cast<size_t>(kGroup * block));
  const auto nrec = static_cast<int64_t>(records_.size());
  for (int64_t s0 = 0; s0 < n; s0 += kBlock) {
    const int64_t cnt = std::min(kBlock, n - s0);
    std::fill(comb_ + s0, comb_ + s0 + cnt, base_);
    for (int64_t g = 0; g < nrec; g += kGroup) {
      const double* x[kGroup];
      double c[kGroup];
      const auto k = static_cast<int32_t>(std::min<int64_t>(kGroup, nrec - g));
      for (int32_t i = 0; i < k; ++i) {
        const RowRecord& r = records_[static_cast<size_t>(g + i)];
        double* h = buf.data() + i * block;
        if (!M_.archive.read_part(*r.section, r.index, n * 8, s0 * 8, h, cnt * 8))
          std::fill(h, h + cnt, 0.0);
        x[i] = h;
        c[i] = coef_[r.row - 1];
        if (last_ != nullptr && s0 + cnt == n) last_[r.row - 1] = h[cnt - 1];
      }
      add_combination(comb_ + s0, x, c, k, cnt, 1);
    }
  }
}

void MotionFetch::finish_combined() {
  // The coefficients folded into the mode shapes: C(m) = sum over the rows
  // of COEF(r) times the value of mode m at row r.
  Mat<double>& MV = modal_->mode_values;
  const int64_t nm = MV.cols();
  const int64_t m0 = modal_->first_mode;
  std::vector<double> c(static_cast<size_t>(nm), 0.0);
  for (int64_t m = 1; m <= nm; ++m) {
    const double* phi = MV.col(m);
    double sum = 0.0;
    for (int64_t r = 0; r < ncoef_; ++r) sum += coef_[r] * phi[r];
    c[static_cast<size_t>(m - 1)] = sum;
  }
  const bool one_mode = R_.MODE_NO >= 1 && R_.MODE_NO <= R_.NUM_MODES;
  const int64_t n = nsteps_;
  double* y = comb_;
  std::fill(y, y + n, base_);
  // A mode left out has zero coordinates: its term adds nothing, unless its
  // coefficient is not finite.
  for (int64_t m = 1; m <= nm; ++m) {
    const double cm = c[static_cast<size_t>(m - 1)];
    if ((one_mode && m0 + m != R_.MODE_NO) && !std::isfinite(cm)) {
      for (int64_t s = 0; s < n; ++s) y[s] += cm * 0.0;
    }
  }
  // The steps in blocks; within a block every selected mode adds its
  // records, read as they lie in the archive (three values per step).
  constexpr int64_t kBlock = 4096;
  const int64_t k = static_cast<int64_t>(q_) - 1;
  const int64_t nss = R_.NUM_STORED_STEPS;
  std::vector<double> buf(static_cast<size_t>(3 * std::min(n, kBlock)));
  std::vector<char> ok;
  // The coordinates of the last step, for the rows' motion there.
  std::vector<double> at_last(static_cast<size_t>(nm), 0.0);
  for (int64_t s0 = 0; s0 < n; s0 += kBlock) {
    const int64_t cnt = std::min(kBlock, n - s0);
    for (int64_t m = 1; m <= nm; ++m) {
      const int64_t mode = m0 + m;
      if (one_mode && mode != R_.MODE_NO) continue;
      // Record index ((MODAL_SET - 1) NUM_MODES + mode - 1) NUM_STORED_STEPS + s0 + 1.
      int64_t index = 0;
      const bool formed = !__builtin_mul_overflow(int64_t{R_.MODAL_SET} - 1,
                                                  int64_t{R_.NUM_MODES}, &index) &&
                          !__builtin_add_overflow(index, mode - 1, &index) &&
                          !__builtin_mul_overflow(index, nss, &index) &&
                          !__builtin_add_overflow(index, s0 + 1, &index);
      if (formed) {
        M_.archive.read_run(mdsp_, index, cnt, 24, buf.data(), ok);
      } else {
        ok.assign(static_cast<size_t>(cnt), 0);
      }
      // A record that cannot be read is a zero coordinate.
      double* v = buf.data() + k;
      for (int64_t j = 0; j < cnt; ++j) {
        if (!ok[static_cast<size_t>(j)]) v[3 * j] = 0.0;
      }
      const double* x[1] = {v};
      add_combination(y + s0, x, &c[static_cast<size_t>(m - 1)], 1, cnt, 3);
      if (s0 + cnt == n) at_last[static_cast<size_t>(m - 1)] = v[3 * (cnt - 1)];
    }
  }
  if (last_ == nullptr) return;
  // Each row's motion at the last step, summed from zero in mode order as the
  // modal sums of the other roads are.
  for (int64_t r = 1; r <= ncoef_; ++r) {
    double sum = 0.0;
    for (int64_t m = 1; m <= nm; ++m) sum += MV(r, m) * at_last[static_cast<size_t>(m - 1)];
    last_[r - 1] = sum;
  }
}

void MotionFetch::prepare(int64_t mode_rows) {
  nsteps_ = std::max<int64_t>(R_.NUM_STEPS, 0);
  ArchiveReader A = M_.archive;
  if (R_.HIST_STORE == 1) {
    storage_ = Storage::Modal;
    Modal& md = modal_.emplace();
    const SectionRef mdsp = A.find(sections::MDSP, 3);
    const ModalRange range = modal_range(M_, mdsp, cols_ != StepColumns::OneStep);
    md.first_mode = range.first_mode;
    md.coords = Arr3<double>("MODAL_COORD", range.modes, range.steps, 3);
    md.mode_values = Mat<double>("MODE_VALS", mode_rows, range.modes);
    read_modal_coordinates(M_, mdsp, range, md.coords);
    md.mshp = A.find(sections::MSHP, 3);
    md.mode_row.assign(static_cast<size_t>(range.modes), 0.0);
  } else if (R_.HIST_STORE == 2) {
    storage_ = Storage::Direct;
    if (support_) {
      support_rows_ = read_support_index(M_);
      mser_ = A.find(sections::MSER, R_.HIST_CASE);
    }
    dmed_ = A.find_direct(sections::DMED, 1, R_.DIRECT_FILE_NO);
    if (sink_ == nullptr) {
      if (cols_ == StepColumns::AllSteps)
        read_rows_.assign(static_cast<size_t>(std::max<int64_t>(out_.rows(), 0)), 0);
      else
        out_.fill(0.0);
    }
  }
}

void MotionFetch::dof(int64_t row, int32_t equation, int32_t node, int32_t comp) {
  if (storage_ == Storage::Modal) {
    if (equation <= 0) return;
    Modal& md = *modal_;
    // The record holds every mode; the values of the modes kept are fetched.
    const int64_t nm = static_cast<int64_t>(md.mode_row.size());
    if (!M_.archive.read_part(md.mshp, equation, int64_t{R_.NUM_MODES} * 8, md.first_mode * 8,
                              md.mode_row.data(), nm * 8))
      return;
    MatRef<double> MV = md.mode_values.ref();
    auto copy = [&](auto V) {
      for (int64_t m = 1; m <= nm; ++m) V(row, m) = md.mode_row[static_cast<size_t>(m - 1)];
    };
    if (row >= 1 && MV.holds(row, nm))
      copy(MV.raw());
    else
      copy(MV);
    return;
  }
  if (storage_ != Storage::Direct) {
    deliver_nothing(row);
    return;
  }
  if (combined_) {
    // The combined road reads the rows' records at the end.
    if (support_ && equation == 0 && comp <= 3) {
      const int64_t r = find_support_row(M_.state, support_rows_, node, comp);
      add_combined(row, r > 0 ? &mser_pin_ : nullptr, record_index(q_, false, r));
    } else if (equation > 0) {
      add_combined(row, &dmed_pin_, record_index(q_, support_, equation));
    } else {
      add_combined(row, nullptr, 0);
    }
    return;
  }
  if (support_ && equation == 0 && comp <= 3) {
    const int64_t r = find_support_row(M_.state, support_rows_, node, comp);
    if (r > 0)
      deliver(mser_, record_index(q_, false, r), row);
    else
      deliver_nothing(row);
  } else if (equation > 0) {
    deliver(dmed_, record_index(q_, support_, equation), row);
  } else {
    deliver_nothing(row);
  }
}

double* MotionFetch::sink_buffer(int64_t row) {
  if (row == target_row_ && target_ != nullptr) return target_;
  auto& buf = M_.state.HIST;
  buf.resize(static_cast<size_t>(nsteps_));
  return buf.data();
}

void MotionFetch::deliver_nothing(int64_t row) {
  if (sink_ == nullptr || !wanted(row)) return;
  double* h = sink_buffer(row);
  std::fill(h, h + nsteps_, 0.0);
  sink_(row, h);
}

void MotionFetch::deliver(const SectionRef& s, int64_t index, int64_t row) {
  ArchiveReader& A = M_.archive;
  const int64_t n = nsteps_;
  if (sink_ != nullptr) {
    if (!wanted(row)) return;
    double* h = sink_buffer(row);
    if (!A.read(s, index, h, n * 8)) std::fill(h, h + n, 0.0);
    sink_(row, h);
    return;
  }
  switch (cols_) {
    case StepColumns::AllSteps: {
      if (row >= 1 && row <= out_.rows() && n == out_.cols() && n > 0) {
        // The history lands in row ROW of the by-dof buffer.
        auto& buf = M_.state.row_buffer;
        if (static_cast<int64_t>(buf.size()) < row * n)
          buf.resize(static_cast<size_t>(checked_count(sizeof(double), row, n)));
        if (A.read(s, index, buf.data() + (row - 1) * n, n * 8)) {
          read_rows_[static_cast<size_t>(row - 1)] = 1;
          last_row_ = std::max(last_row_, row);
        }
        return;
      }
      // A row outside OUT: the read is made, and its values are bound failures.
      std::vector<double> h(static_cast<size_t>(n));
      if (!A.read(s, index, h.data(), n * 8)) return;
      for (int64_t j = 1; j <= n; ++j) out_(row, j) = h[static_cast<size_t>(j - 1)];
      return;
    }
    case StepColumns::OneStep: {
      StepWork& W = *work_;
      double v = 0.0;
      if (W.step >= 1 && A.read_f64_at(s, index, W.step * 8, (W.step - 1) * 8, v)) W.last = v;
      double value = W.last;
      if (W.step < 1) {
        report_bound_failure("DTEMP", W.step, 1, W.step);
        value = 0.0;
      }
      out_(row, 1) = value;
      return;
    }
    case StepColumns::Extremes: {
      StepWork& W = *work_;
      auto& buf = M_.state.row_buffer;
      buf.resize(static_cast<size_t>(n));
      if (A.read(s, index, buf.data(), n * 8) && n > 0) {
        std::memcpy(W.DTEMP.data(), buf.data(), static_cast<size_t>(n) * sizeof(double));
      }
      out_(row, 1) = W.DTEMP(W.smax);
      out_(row, 2) = W.DTEMP(W.smin);
      return;
    }
  }
}

void MotionFetch::finish() {
  if (combined_) return;
  if (storage_ == Storage::Modal)
    finish_modal();
  else if (storage_ == Storage::Direct && sink_ == nullptr && cols_ == StepColumns::AllSteps)
    finish_columns();
}

void MotionFetch::close_direct_file() {
  if (storage_ == Storage::Direct) M_.archive.close(dmed_);
}

void MotionFetch::finish_modal() {
  Mat<double>& mode_values = modal_->mode_values;
  const int64_t nm = mode_values.cols();
  const auto k = static_cast<int64_t>(q_);
  MatRef<double> C = modal_->coords.plane(k);
  if (sink_ != nullptr) {
    const int64_t n = nsteps_;
    auto& buf = M_.state.HIST;
    buf.resize(static_cast<size_t>(n));
    if (C.holds(nm, n) && mode_values.ref().holds(sum_rows_, nm)) {
      const int64_t ld = mode_values.rows();
      for (int64_t i = 1; i <= sum_rows_; ++i) {
        if (!wanted(i)) continue;
        // Row I of the modal sum, formed straight into the buffer (of no
        // terms when no mode is kept).
        double* row = nm > 0 ? mode_values.data() + (i - 1) : nullptr;
        modal_sum(RawMat<double>(buf.data(), 1), RawMat<double>(row, ld), C.raw(), 1, n, nm);
        sink_(i, buf.data());
      }
      return;
    }
    // Steps beyond the stored ones: the checked sum, with its reports.
    Mat<double> DISP_EQ("DISP_EQ", mode_values.rows(), n);
    modal_sum(DISP_EQ.ref(), mode_values, C, sum_rows_, n);
    for (int64_t i = 1; i <= sum_rows_; ++i) {
      for (int64_t s = 1; s <= n; ++s) buf[static_cast<size_t>(s - 1)] = DISP_EQ(i, s);
      sink_(i, buf.data());
    }
    return;
  }
  out_.fill(0.0);
  // Rows past the mode values are sums of zeros, rows past OUT are dropped:
  // the first of them is reported, and the sums stop there.
  const int64_t rows = out_.fit_rows(mode_values.ref().fit_rows(sum_rows_));
  if (cols_ == StepColumns::Extremes) {
    const StepWork& W = *work_;
    for (int64_t i = 1; i <= rows; ++i) {
      double smx = 0.0, smn = 0.0;
      for (int64_t m = 1; m <= nm; ++m) {
        smx += mode_values(i, m) * C(m, W.smax);
        smn += mode_values(i, m) * C(m, W.smin);
      }
      out_(i, 1) = smx;
      out_(i, 2) = smn;
    }
    return;
  }
  modal_sum(out_, mode_values, C, rows, nsteps_);
}

void MotionFetch::finish_columns() {
  const int64_t n = nsteps_;
  const int64_t ld = out_.rows();
  if (last_row_ < ld) out_.fill(0.0);
  if (last_row_ == 0) return;
  // Rows not read are zero.
  auto& buf = M_.state.row_buffer;
  for (int64_t r = 1; r <= last_row_; ++r) {
    if (!read_rows_[static_cast<size_t>(r - 1)]) {
      std::fill(buf.begin() + (r - 1) * n, buf.begin() + r * n, 0.0);
    }
  }
  // Square tiles keep both the rows read and the columns written in cache.
  constexpr int64_t kTile = 16;
  for (int64_t s0 = 0; s0 < n; s0 += kTile) {
    const int64_t s1 = std::min(n, s0 + kTile);
    for (int64_t i0 = 0; i0 < last_row_; i0 += kTile) {
      const int64_t i1 = std::min(last_row_, i0 + kTile);
      for (int64_t s = s0; s < s1; ++s) {
        double* dst = out_.data() + s * ld;
        const double* src = buf.data() + s;
        for (int64_t i = i0; i < i1; ++i) dst[i] = src[i * n];
      }
    }
  }
}

}  // namespace respcore
