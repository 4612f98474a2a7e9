// One node over all steps (REQUEST_MODE 1), with its relative and absolute
// forms.
//
// Of the rows this request leaves in TDSP only row RESULT_COMP is ever
// copied to the caller, so only that row is formed: the node's histories are
// fetched whole, one dof at a time as the archive stores them, and the row is
// combined from them directly. A long history therefore costs about what
// reading it costs.
#include <vector>

#include "archive/section_access.hpp"
#include "nodal/node_results.hpp"
#include "numeric/combine.hpp"

namespace respcore {

namespace {

// Y += T * X, or Y := 0 + T * X for the first term of a sum (X may be Y
// then).
void add_term(double* y, const double* x, double t, size_t n, bool first_term) {
  const auto len = static_cast<int64_t>(n);
  if (first_term)
    start_combination(y, x, t, len);
  else
    add_combination(y, &x, &t, 1, len, 1);
}

// Forms row RESULT_COMP of one node into OUT. Row r of the node-axis motion
// is the sum over the dof c of T(r, c) times the history of c, summed in
// order from a zero start; terms with a zero coefficient add nothing and
// are passed over.
void node_pass(NodalMotion& M, NodeSkew& S, int32_t node, Quantity q, int32_t AXIS_FLAG,
               Tdsp& OUT, double* dest = nullptr) {
  const RunContext& R = M.run;
  const int32_t K = M.node_dofs();
  const NodeRecord rec = M.node_transform(M.archive.find(sections::NDSP, 3), node, K);
  bool support = false;
  if (R.HAS_SUPPORT_MOTION == 1) {
    for (int i = 0; i < 3; ++i) support = support || rec.LM[i] == 0;
  }
  // WANTED: the dofs whose histories the row uses; FIRST, if any, is read
  // straight into the row.
  auto fetch = [&](HistorySink sink, uint64_t wanted, int64_t first, double* row) {
    MotionFetch f(M, q, support, K, std::move(sink));
    f.want_rows(wanted);
    if (first > 0) f.read_row_into(first, row);
    for (int32_t i = 1; i <= K; ++i) f.dof(i, rec.LM[i - 1], node, i);
    f.finish();
  };

  const int32_t C = R.RESULT_COMP;
  const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
  const size_t un = static_cast<size_t>(n);
  if (!(C >= 1 && C <= K && n == OUT.cols())) {
    // Row RESULT_COMP stays zero; the look-ups are made as always, and no
    // history is needed.
    fetch([](int64_t, const double*) {}, 0, 0, nullptr);
    return;
  }
  double* row = dest != nullptr ? dest : OUT.fresh_row(C);
  if (dest != nullptr) OUT.row_delivered();
  if (C == 7) {
    fetch([&](int64_t i, const double* h) {
      if (i == 7 && h != row) std::copy(h, h + n, row);
    }, uint64_t{1} << 6, 7, row);
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
  // A dof is read when some row formed has a term for it; with one row the
  // first such dof is read into the row, which its term then scales in place.
  uint64_t wanted = 0;
  int64_t first = 0;
  for (int64_t i = 1; i <= 6; ++i) {
    for (int k = 0; k < nrows; ++k) {
      if (rec.T[base + k][i - 1] != 0.0) wanted |= uint64_t{1} << (i - 1);
    }
    if (first == 0 && nrows == 1 && (wanted >> (i - 1) & 1U) != 0) first = i;
  }
  fetch([&](int64_t i, const double* h) {
    if (i > 6) return;
    for (int k = 0; k < nrows; ++k) {
      const double t = rec.T[base + k][i - 1];
      if (t == 0.0) continue;
      add_term(y[k], h, t, un, !started[k]);
      started[k] = true;
    }
  }, wanted, first, row);
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

void node_history_over_steps(NodalMotion& M, NodeSkew& S, Tdsp& TDSP, VecRef<int32_t> INUM_ELEMNT,
                             Quantity q, int32_t AXIS_FLAG) {
  const RunContext& R = M.run;
  const int32_t C = R.RESULT_COMP;
  const int64_t n = std::max<int64_t>(R.NUM_STEPS, 0);
  // The plain history is the call's last work: its row is formed where the
  // caller gets it. The relative and absolute forms change it afterwards.
  const bool last = R.STEP_NO != 2 && R.STEP_NO != 3;
  node_pass(M, S, INUM_ELEMNT(1), q, AXIS_FLAG, TDSP, last ? TDSP.caller_row() : nullptr);

  if (R.STEP_NO == 3) {
    // Relative to the list's second node.
    Tdsp TDSP_OTHER("TDSP_OTHER", TDSP.cols());
    node_pass(M, S, INUM_ELEMNT(2), q, AXIS_FLAG, TDSP_OTHER);
    if (C >= 1 && C <= M.node_dofs() && n <= TDSP.cols() && n <= TDSP_OTHER.cols()) {
      double* y = TDSP.row(C);
      const double* x = TDSP_OTHER.row(C);
      for (int64_t s = 0; s < n; ++s) y[s] = y[s] - x[s];
    }
  } else if (R.STEP_NO == 2) {
    // Absolute motion: the ground motion of the direction added to the
    // translations. A direction's records hold acceleration, velocity and
    // displacement.
    const SectionRef grmt = M.archive.find(sections::GRMT, 3);
    const int64_t quantity = 4 - static_cast<int64_t>(q);
    if (C >= 1 && C <= 3 && n <= TDSP.cols()) {
      std::vector<double> g(static_cast<size_t>(n), 0.0);
      const int64_t index = 9 * (int64_t{R.HIST_CASE} - 1) + 3 * (C - 1) + quantity;
      if (!M.archive.read(grmt, index, g.data(), n * 8)) std::fill(g.begin(), g.end(), 0.0);
      double* y = TDSP.row(C);
      for (int64_t s = 0; s < n; ++s) y[s] = y[s] + g[static_cast<size_t>(s)];
    }
  }
}

}  // namespace respcore
