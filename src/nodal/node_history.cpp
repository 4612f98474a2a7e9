// One node over all steps (REQUEST_MODE 1), with its relative and absolute
// forms.
//
// Of the rows this request leaves in TDSP only row RESULT_COMP is ever
// copied to the caller, so only that row is formed: the node's histories are
// read whole, one record per dof as the archive stores them, and the row is
// combined from them directly. A long history therefore costs about what
// reading it costs.
#include <cmath>
#include <cstring>
#include <vector>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/history_reads.hpp"
#include "nodal/node_history.hpp"
#include "nodal/node_results.hpp"

namespace respcore {

namespace {

using Buffer = std::vector<double, DefaultInitAllocator<double>>;

// Produces the history of each of the node's dof i = 1..Kw in turn into BUF
// (zero where nothing could be read) and hands it to CONSUME(i, buf).
template <class Consume>
void for_each_dof_history(KernelState& K, int32_t node, const int32_t* LM, int32_t Kw,
                          int32_t RESULT_KIND, Buffer& buf, Consume consume) {
  RunContext& R = K.run;
  const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
  buf.resize(static_cast<size_t>(n));
  auto zero = [&] { std::fill(buf.begin(), buf.end(), 0.0); };
  auto read = [&](int32_t unit, int64_t rec) {
    if (!read_record(K, unit, rec, buf.data(), n * 8)) zero();
  };
  int64_t first = 0;
  int32_t found = 0;

  if (R.HIST_STORE == 1) {
    Arr3<double> coords("MODAL_COORD", R.NUM_MODES, R.NUM_STORED_STEPS, 3);
    Mat<double> MODE_VALS("MODE_VALS", 7, R.NUM_MODES);
    Vec<int32_t> INDX_NF("INDX_NF");
    select_modes(K, INDX_NF);
    RF_BIN_T(K, 3, 9, first, found);
    read_modal_coordinates(K, first, INDX_NF, coords, true);
    RF_BIN_T(K, 3, 10, first, found);
    std::vector<double> row(static_cast<size_t>(std::max(R.NUM_MODES, 0)));
    for (int32_t i = 1; i <= Kw; ++i) {
      const int32_t e = LM[i - 1];
      if (e <= 0) continue;
      if (!read_record(K, UNIT_SECOND, first - 1 + e, row.data(), int64_t{R.NUM_MODES} * 8)) continue;
      for (int32_t m = 1; m <= R.NUM_MODES; ++m) MODE_VALS(i, m) = row[static_cast<size_t>(m - 1)];
    }
    const int64_t nm = R.NUM_MODES;
    if (n <= coords.extent(2) && RESULT_KIND >= 1 && RESULT_KIND <= 3) {
      const int64_t n1 = coords.extent(1), n2 = coords.extent(2);
      const double* c = coords.data() + n1 * n2 * (RESULT_KIND - 1);
      for (int32_t i = 1; i <= Kw; ++i) {
        const double* mv = MODE_VALS.data() + (i - 1);
        for (int64_t s = 0; s < n; ++s) {
          double sum = 0.0;
          for (int64_t m = 0; m < nm; ++m) sum += mv[7 * m] * c[m + n1 * s];
          buf[static_cast<size_t>(s)] = sum;
        }
        consume(i, buf);
      }
    } else {
      // Steps beyond the stored ones: the checked product, with its reports.
      Mat<double> DISP_EQ("DISP_EQ", 7, n);
      modal_sum(MODE_VALS, coords, RESULT_KIND, Kw, n, DISP_EQ.ref());
      for (int32_t i = 1; i <= Kw; ++i) {
        for (int64_t s = 1; s <= n; ++s) buf[static_cast<size_t>(s - 1)] = DISP_EQ(i, s);
        consume(i, buf);
      }
    }
    return;
  }
  if (R.HIST_STORE != 2) {
    zero();
    for (int32_t i = 1; i <= Kw; ++i) consume(i, buf);
    return;
  }

  bool support = false;
  if (R.HAS_SUPPORT_MOTION == 1) {
    for (int32_t i = 0; i < 3; ++i) support = support || LM[i] == 0;
  }
  int32_t reclen = 0;
  int64_t start = 0;
  if (!support) {
    RF_BIN_DIRECT(K, 1, 1, R.DIRECT_FILE_NO, reclen, start);
    for (int32_t i = 1; i <= Kw; ++i) {
      const int32_t e = LM[i - 1];
      if (e > 0) read(UNIT_DIRECT, start + 3 * int64_t{e} - RESULT_KIND);
      else zero();
      consume(i, buf);
    }
    return;
  }
  const int64_t nrows = read_support_index(K);
  RF_BIN_T(K, R.HIST_CASE, 32, first, found);
  const int64_t mser_first = first;
  RF_BIN_DIRECT(K, 1, 1, R.DIRECT_FILE_NO, reclen, start);
  // With support motion the direct file holds the displacement, velocity
  // and acceleration of equation e at 3e - 1, 2e - 1, e - 1.
  const int64_t factor = RESULT_KIND == 1 ? 3 : RESULT_KIND == 2 ? 2 : 1;
  for (int32_t i = 1; i <= Kw; ++i) {
    const int32_t e = LM[i - 1];
    zero();
    if (e == 0 && i <= 3) {
      const int64_t r = find_support_row(K, nrows, node, i);
      if (r > 0) read(UNIT_SECOND, mser_first + 3 * r - RESULT_KIND);
    } else if (e > 0) {
      read(UNIT_DIRECT, start + factor * int64_t{e} - 1);
    }
    consume(i, buf);
  }
}

// Y += T * X, or Y := 0 + T * X for the first term of a sum.
void add_term(double* y, const double* x, double t, size_t n, bool first_term) {
  if (first_term) {
    for (size_t s = 0; s < n; ++s) y[s] = 0.0 + t * x[s];
  } else {
    for (size_t s = 0; s < n; ++s) y[s] += t * x[s];
  }
}

// Forms row RESULT_COMP of one pass into OUT. Row r of the node-axis motion
// is the sum over the dof c of T(r, c) times the history of c, summed in
// order from a zero start; terms with a zero coefficient add nothing and
// are passed over.
void node_pass(KernelState& K, int32_t node, int32_t Kw, int32_t RESULT_KIND, int32_t AXIS_FLAG,
               Tdsp& OUT) {
  RunContext& R = K.run;
  NodeSkew& S = K.skew;
  R.CURRENT_NODE = node;
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, 3, 17, first, found);
  double T[6][6];
  read_node_transform(K, first, node, Kw, T);
  int32_t LM[7] = {};
  for (int32_t i = 1; i <= Kw; ++i) LM[i - 1] = trunc_i32(K.nodal.TEMP(i));

  const int32_t C = R.RESULT_COMP;
  const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
  const size_t un = static_cast<size_t>(n);
  Buffer& buf = K.nodal.HIST;
  const bool wanted = C >= 1 && C <= Kw && n == OUT.cols();
  if (!wanted) {
    // Row RESULT_COMP stays zero; the archive is still read as always.
    for_each_dof_history(K, node, LM, Kw, RESULT_KIND, buf, [](int32_t, const Buffer&) {});
    return;
  }
  double* row = OUT.fresh_row(C);
  if (C == 7) {
    for_each_dof_history(K, node, LM, Kw, RESULT_KIND, buf, [&](int32_t i, const Buffer& h) {
      if (i == 7) std::copy(h.begin(), h.end(), row);
    });
    return;
  }
  int32_t index = 0;
  if (AXIS_FLAG == 0 && S.NUM_SKEW > 0) {
    CHECK_NODE_SKEW_INFM(node, S.NUM_SKEW, S.NODE_SKEW.ref(), index);
  }
  // The rows to form: C alone, or with a skew system the three rows of
  // C's triple, which it mixes.
  const int base = index == 0 ? C - 1 : (C <= 3 ? 0 : 3);
  const int nrows = index == 0 ? 1 : 3;
  std::vector<double> extra[3];
  double* y[3];
  for (int k = 0; k < nrows; ++k) {
    if (index == 0) {
      y[k] = row;
    } else {
      extra[k].resize(un);
      y[k] = extra[k].data();
    }
  }
  bool started[3] = {false, false, false};
  for_each_dof_history(K, node, LM, Kw, RESULT_KIND, buf, [&](int32_t i, const Buffer& h) {
    if (i > 6) return;
    for (int k = 0; k < nrows; ++k) {
      const double t = T[base + k][i - 1];
      if (t == 0.0) continue;
      add_term(y[k], h.data(), t, un, !started[k]);
      started[k] = true;
    }
  });
  for (int k = 0; k < nrows; ++k) {
    if (!started[k]) std::fill(y[k], y[k] + n, 0.0);
  }
  if (index != 0) {
    double Rm[3];
    const int i = (C - 1) % 3;
    for (int j = 0; j < 3; ++j) Rm[j] = S.SKEW_INFM(3 * i + j + 1, index);
    for (size_t k = 0; k < un; ++k) row[k] = Rm[0] * y[0][k] + Rm[1] * y[1][k] + Rm[2] * y[2][k];
  }
}

}  // namespace

void node_history_over_steps(KernelState& K, Tdsp& TDSP, ItemList INUM_ELEMNT, int32_t NCOLS,
                             int32_t RESULT_KIND, int32_t AXIS_FLAG) {
  RunContext& R = K.run;
  const int32_t Kw = R.PRODUCT_FLAG != 0 ? 7 : 6;
  const int32_t C = R.RESULT_COMP;
  const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
  node_pass(K, INUM_ELEMNT(1), Kw, RESULT_KIND, AXIS_FLAG, TDSP);

  if (R.STEP_NO == 3) {
    // Relative to the list's second node.
    Tdsp TDSP_OTHER("TDSP_OTHER", NCOLS);
    node_pass(K, INUM_ELEMNT(2), Kw, RESULT_KIND, AXIS_FLAG, TDSP_OTHER);
    if (C >= 1 && C <= Kw && n <= TDSP.cols() && n <= TDSP_OTHER.cols()) {
      double* y = TDSP.row(C);
      const double* x = TDSP_OTHER.row(C);
      for (int64_t s = 0; s < n; ++s) y[s] = y[s] - x[s];
    }
  } else if (R.STEP_NO == 2) {
    // Absolute motion: the ground motion of the direction added to the
    // translations.
    int64_t first = 0;
    int32_t found = 0;
    RF_BIN_T(K, 3, 14, first, found);
    const int64_t q = RESULT_KIND == 1 ? 3 : RESULT_KIND == 2 ? 2 : 1;
    if (C >= 1 && C <= 3 && n <= TDSP.cols()) {
      std::vector<double> g(static_cast<size_t>(n), 0.0);
      const int64_t rec = first - 1 + 9 * (int64_t{R.HIST_CASE} - 1) + 3 * (C - 1) + q;
      if (!read_record(K, UNIT_SECOND, rec, g.data(), n * 8)) std::fill(g.begin(), g.end(), 0.0);
      double* y = TDSP.row(C);
      for (int64_t s = 0; s < n; ++s) y[s] = y[s] + g[static_cast<size_t>(s)];
    }
  }
}

}  // namespace respcore
