#include "nodal/history_reads.hpp"

#include <map>
#include <vector>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"

namespace respcore {

void select_modes(KernelState& K, Vec<int32_t>& INDX_NF) {
  const RunContext& R = K.run;
  INDX_NF.resize(R.NUM_MODES);
  if (R.MODE_NO >= 1 && R.MODE_NO <= R.NUM_MODES) {
    INDX_NF.fill(0);
    INDX_NF(R.MODE_NO) = 1;
  } else {
    INDX_NF.fill(1);
  }
}

void read_modal_coordinates(KernelState& K, int64_t first, const Vec<int32_t>& INDX_NF,
                            Arr3<double>& coords, bool all_steps) {
  const RunContext& R = K.run;
  coords.fill(0.0);
  const int64_t nss = R.NUM_STORED_STEPS;
  const int64_t count = all_steps ? std::max<int64_t>(R.NUM_STEPS, 0) : 1;
  for (int64_t m = 1; m <= R.NUM_MODES; ++m) {
    if (INDX_NF(m) != 1) continue;
    const int64_t rec0 = first - 1 + ((int64_t{R.MODAL_SET} - 1) * R.NUM_MODES + m) * nss - nss +
                         (all_steps ? 1 : R.STEP_NO);
    // The same block of records serves every element of the call.
    auto& block = K.nodal.modal_blocks[{rec0, count}];
    if (block.ok.empty() && count > 0) {
      block.values.assign(static_cast<size_t>(3 * count), 0.0);
      read_records(K, UNIT_SECOND, rec0, count, 24, block.values.data(), &block.ok);
    }
    const bool fast = m <= coords.extent(1) && count <= coords.extent(2) && coords.extent(3) >= 3;
    for (int64_t s = 1; s <= count; ++s) {
      if (!block.ok[static_cast<size_t>(s - 1)]) continue;
      const double* v = block.values.data() + 3 * (s - 1);
      if (fast) {
        const int64_t n1 = coords.extent(1), n2 = coords.extent(2);
        double* base = coords.data() + (m - 1) + n1 * (s - 1);
        base[0] = v[0];
        base[n1 * n2] = v[1];
        base[2 * n1 * n2] = v[2];
      } else {
        for (int q = 1; q <= 3; ++q) coords(m, s, q) = v[q - 1];
      }
    }
  }
}

void modal_sum(Mat<double>& MODE_VALS, Arr3<double>& coords, int32_t q, int32_t NLM,
               int64_t NCOL, MatRef<double> DISP_EQ) {
  const int64_t nm = MODE_VALS.cols();
  const bool fast = NLM <= MODE_VALS.rows() && NLM <= DISP_EQ.rows() && NCOL <= DISP_EQ.cols() &&
                    NCOL <= coords.extent(2) && nm <= coords.extent(1) && q >= 1 &&
                    q <= coords.extent(3);
  if (fast) {
    const int64_t n1 = coords.extent(1), n2 = coords.extent(2);
    const double* c = coords.data() + n1 * n2 * (q - 1);
    const double* mv = MODE_VALS.data();
    const int64_t ld = MODE_VALS.rows();
    for (int64_t j = 1; j <= NCOL; ++j) {
      const double* cj = c + n1 * (j - 1);
      double* out = DISP_EQ.col(j);
      for (int64_t i = 1; i <= NLM; ++i) {
        double sum = 0.0;
        for (int64_t m = 1; m <= nm; ++m) sum += mv[(i - 1) + ld * (m - 1)] * cj[m - 1];
        out[i - 1] = sum;
      }
    }
    return;
  }
  for (int64_t j = 1; j <= NCOL; ++j) {
    for (int64_t i = 1; i <= NLM; ++i) {
      double sum = 0.0;
      for (int64_t m = 1; m <= nm; ++m) sum += MODE_VALS(i, m) * coords(m, j, q);
      DISP_EQ(i, j) = sum;
    }
  }
}

double StepPick::get(int64_t i) const {
  if (i < 1 || i > n) {
    report_bound_failure("DTEMP", i, 1, n);
    return 0.0;
  }
  return last;
}

void read_history_row(KernelState& K, int32_t unit, int64_t rec, MatRef<double> DISP_EQ,
                      int64_t i, bool all_steps, StepPick& pick) {
  const RunContext& R = K.run;
  if (all_steps) {
    const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
    std::vector<double>& buf = K.nodal.row_buffer;
    buf.resize(static_cast<size_t>(n));
    if (!read_record(K, unit, rec, buf.data(), n * 8)) return;
    if (i >= 1 && i <= DISP_EQ.rows() && n <= DISP_EQ.cols()) {
      double* p = DISP_EQ.data() + (i - 1);
      const int64_t ld = DISP_EQ.rows();
      for (int64_t j = 0; j < n; ++j) p[j * ld] = buf[static_cast<size_t>(j)];
    } else {
      for (int64_t j = 1; j <= n; ++j) DISP_EQ(i, j) = buf[static_cast<size_t>(j - 1)];
    }
    return;
  }
  const int64_t n = R.STEP_NO;
  double v = 0.0;
  if (n >= 1 && read_record_f64_at(K, unit, rec, n * 8, (n - 1) * 8, v)) pick.last = v;
  DISP_EQ(i, 1) = pick.get(n);
}

int64_t read_support_index(KernelState& K) {
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, K.run.HIST_CASE, 33, first, found);
  const int64_t nrows = K.archive.SEC_NREC;
  Mat<int32_t>& ISER = K.nodal.ISER;
  if (!K.nodal.ISER_made) {
    ISER.resize(2, nrows);
    K.nodal.ISER_made = true;
  }
  // Rows past the end of the file cannot be read, whatever the count says.
  const int64_t readable = std::min(nrows, unit_last_record(K, UNIT_SECOND, 8) - (first - 1));
  for (int64_t r = 1; r <= readable; ++r) {
    int32_t pair[2];
    if (!read_record(K, UNIT_SECOND, first - 1 + r, pair, 8)) continue;
    ISER(1, r) = pair[0];
    ISER(2, r) = pair[1];
  }
  return nrows;
}

int64_t find_support_row(KernelState& K, int64_t nrows, int32_t node, int32_t c) {
  Mat<int32_t>& ISER = K.nodal.ISER;
  for (int64_t r = 1; r <= nrows; ++r) {
    if (ISER(1, r) == node && ISER(2, r) == c) return r;
  }
  return 0;
}

}  // namespace respcore
