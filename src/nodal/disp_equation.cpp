#include "nodal/disp_equation.hpp"

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "nodal/history_reads.hpp"

namespace respcore {

namespace {

void modal_storage(KernelState& K, MatRef<double> DISP_EQ, int32_t NDOF, int32_t NLM,
                   VecRef<int32_t> LM) {
  const RunContext& R = K.run;
  Arr3<double> coords("MODAL_COORD", R.NUM_MODES, R.NUM_STORED_STEPS, 3);
  Mat<double> MODE_VALS("MODE_VALS", NDOF, R.NUM_MODES);
  Vec<int32_t> INDX_NF("INDX_NF");
  select_modes(K, INDX_NF);
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, 3, 9, first, found);
  read_modal_coordinates(K, first, INDX_NF, coords, R.REQUEST_MODE == 1);
  RF_BIN_T(K, 3, 10, first, found);
  MODE_VALS.fill(0.0);
  std::vector<double> row(static_cast<size_t>(std::max(R.NUM_MODES, 0)));
  for (int32_t i = 1; i <= NLM; ++i) {
    const int32_t e = LM(i);
    if (e <= 0) continue;
    if (!read_record(K, UNIT_SECOND, first - 1 + e, row.data(), int64_t{R.NUM_MODES} * 8)) continue;
    for (int32_t m = 1; m <= R.NUM_MODES; ++m) MODE_VALS(i, m) = row[static_cast<size_t>(m - 1)];
  }
  DISP_EQ.fill(0.0);
  modal_sum(MODE_VALS, coords, 1, NLM, R.NUM_STEPS, DISP_EQ);
}

// Direct histories without support motion: record start - 1 + 3e of the
// direct file holds the displacement history of equation e.
void direct_storage(KernelState& K, MatRef<double> DISP_EQ, int32_t NLM, VecRef<int32_t> LM,
                    StepPick& pick) {
  int32_t reclen = 0;
  int64_t start = 0;
  RF_BIN_DIRECT(K, 1, 1, K.run.DIRECT_FILE_NO, reclen, start);
  const int64_t n = std::max<int64_t>(K.run.NUM_STEPS, 0);
  if (K.run.REQUEST_MODE == 1 && NLM >= 1 && NLM <= DISP_EQ.rows() && NLM <= LM.size() &&
      LM.lo() == 1 && n == DISP_EQ.cols() && n > 1) {
    // A whole history per dof: read the records one after the other into a
    // dof-major buffer and turn it into step columns in cache-sized blocks.
    const int64_t ld = DISP_EQ.rows();
    auto& buf = K.nodal.row_buffer;
    buf.resize(static_cast<size_t>(checked_count(sizeof(double), NLM, n)));
    for (int32_t i = 1; i <= NLM; ++i) {
      double* row = buf.data() + (i - 1) * n;
      const int32_t e = LM.data()[i - 1];
      if (e <= 0 || !read_record(K, UNIT_DIRECT, start - 1 + 3 * int64_t{e}, row, n * 8)) {
        std::fill(row, row + n, 0.0);
      }
    }
    if (NLM < ld) DISP_EQ.fill(0.0);
    // Square tiles keep both the rows read and the columns written in cache.
    constexpr int64_t kTile = 16;
    for (int64_t s0 = 0; s0 < n; s0 += kTile) {
      const int64_t s1 = std::min(n, s0 + kTile);
      for (int64_t i0 = 0; i0 < NLM; i0 += kTile) {
        const int64_t i1 = std::min<int64_t>(NLM, i0 + kTile);
        for (int64_t s = s0; s < s1; ++s) {
          double* dst = DISP_EQ.data() + s * ld;
          const double* src = buf.data() + s;
          for (int64_t i = i0; i < i1; ++i) dst[i] = src[i * n];
        }
      }
    }
    return;
  }
  DISP_EQ.fill(0.0);
  for (int32_t i = 1; i <= NLM; ++i) {
    const int32_t e = LM(i);
    if (e <= 0) continue;
    read_history_row(K, UNIT_DIRECT, start - 1 + 3 * int64_t{e}, DISP_EQ, i,
                     K.run.REQUEST_MODE == 1, pick);
  }
}

void support_motion_storage(KernelState& K, MatRef<double> DISP_EQ, int32_t NLM,
                            VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE) {
  const RunContext& R = K.run;
  StepPick pick{R.STEP_NO, 0.0};
  int32_t zeros = 0;
  for (int32_t n = 1; n <= NNODE; ++n) {
    for (int32_t c = 1; c <= 3; ++c) {
      if (LM(6 * (n - 1) + c) == 0) ++zeros;
    }
  }
  if (zeros == 0) {
    direct_storage(K, DISP_EQ, NLM, LM, pick);
    unit_close(K, UNIT_DIRECT);
    return;
  }
  const int64_t nrows = read_support_index(K);
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, R.HIST_CASE, 32, first, found);
  const int64_t mser_first = first;
  int32_t reclen = 0;
  int64_t start = 0;
  RF_BIN_DIRECT(K, 1, 1, R.DIRECT_FILE_NO, reclen, start);
  DISP_EQ.fill(0.0);
  for (int32_t n = 1; n <= NNODE; ++n) {
    for (int32_t c = 1; c <= 6; ++c) {
      const int64_t row = 6 * (n - 1) + c;
      const int32_t L = LM(row);
      if (L == 0 && c <= 3) {
        const int64_t r = find_support_row(K, nrows, IIA(n), c);
        if (r > 0) {
          read_history_row(K, UNIT_SECOND, mser_first - 1 + 3 * r, DISP_EQ, row,
                           R.REQUEST_MODE == 1, pick);
        }
      } else if (L > 0) {
        read_history_row(K, UNIT_DIRECT, start - 1 + 3 * int64_t{L}, DISP_EQ, row, R.REQUEST_MODE == 1, pick);
      }
      if (R.ELEM_TYPE == 14) {
        const int32_t W = LM(12 + n);
        if (W > 0) read_history_row(K, UNIT_DIRECT, start - 1 + 3 * int64_t{W}, DISP_EQ, 12 + n,
                                     R.REQUEST_MODE == 1, pick);
      }
    }
  }
  (void)NLM;
  unit_close(K, UNIT_DIRECT);
}

}  // namespace

void read_node_transform(KernelState& K, int64_t first, int64_t node, int32_t Kw,
                         double T[6][6]) {
  Vec<double>& TEMP = K.nodal.TEMP;
  read_f64(K, UNIT_SECOND, first - 1 + node, TEMP.ref(), Kw + 21);
  int32_t next = Kw + 1;
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) T[i][j] = 0.0;
    for (int j = i; j < 6; ++j) T[i][j] = TEMP(next++);
  }
}

void DISP_EQUATION(KernelState& K, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                   int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                   int32_t NO_TRANSFORM) {
  const RunContext& R = K.run;
  if (R.HIST_STORE == 1) {
    modal_storage(K, DISP_EQ, NDOF, NLM, LM);
  } else if (R.HIST_STORE == 2) {
    if (R.HAS_SUPPORT_MOTION == 0) {
      StepPick pick{R.STEP_NO, 0.0};
      direct_storage(K, DISP_EQ, NLM, LM, pick);
    } else if (R.HAS_SUPPORT_MOTION == 1) {
      support_motion_storage(K, DISP_EQ, NLM, LM, IIA, NNODE);
    }
  }
  if (NO_TRANSFORM == 1) return;

  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, 3, 17, first, found);
  const int64_t ncol = DISP_NO.cols();
  for (int64_t j = 1; j <= ncol; ++j) {
    for (int64_t r = 1; r <= NDOF; ++r) DISP_NO(r, j) = 0.0;
  }
  const int32_t Kw = R.PRODUCT_FLAG != 0 ? 7 : 6;
  for (int32_t n = 1; n <= NNODE; ++n) {
    double T[6][6];
    read_node_transform(K, first, IIA(n), Kw, T);
    for (int64_t j = 1; j <= R.NUM_STEPS; ++j) {
      for (int r = 1; r <= 6; ++r) {
        double sum = 0.0;
        for (int c = 1; c <= 6; ++c) sum += T[r - 1][c - 1] * DISP_EQ(6 * (n - 1) + c, j);
        DISP_NO(6 * (n - 1) + r, j) = sum;
      }
      if (R.ELEM_TYPE == 14) DISP_NO(12 + n, j) = DISP_EQ(12 + n, j);
    }
  }
}

}  // namespace respcore
