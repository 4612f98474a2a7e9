// Node snapshots (REQUEST_MODE 2) and envelopes (REQUEST_MODE 3); one node
// over the steps is node_history.cpp.
#include "nodal/node_results.hpp"

#include <cstring>

#include "archive/section_access.hpp"

namespace respcore {

void CHECK_NODE_SKEW_INFM(int32_t node, int32_t n, VecRef<int32_t> NODE_SKEW, int32_t& index) {
  index = 0;
  for (int64_t i = 1; i <= n; ++i) {
    if (NODE_SKEW(i) == node) {
      index = static_cast<int32_t>(i);
      return;
    }
  }
}

void TRANSFORM_TO_LOCAL(MatRef<double> DISP_NO, int32_t ncols, int32_t index,
                        MatRef<double> SKEW_INFM) {
  double Rm[3][3];
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) Rm[i - 1][j - 1] = SKEW_INFM(3 * (i - 1) + j, index);
  }
  for (int64_t c = 1; c <= ncols; ++c) {
    for (int block = 0; block < 2; ++block) {
      double v[3], w[3];
      for (int i = 0; i < 3; ++i) v[i] = DISP_NO(3 * block + i + 1, c);
      for (int i = 0; i < 3; ++i) w[i] = Rm[i][0] * v[0] + Rm[i][1] * v[1] + Rm[i][2] * v[2];
      for (int i = 0; i < 3; ++i) DISP_NO(3 * block + i + 1, c) = w[i];
    }
  }
}

namespace {

// The skew systems of the archive (NSKI), for the envelopes.
void read_skew_systems(ArchiveReader A, NodeSkew& S) {
  const SectionRef nski = A.find(sections::NSKI, 3);
  if (!nski.found()) {
    S.NUM_SKEW = 0;
    return;
  }
  constexpr int64_t kBytes = 4 + 9 * 8;  // the node number, then its matrix by rows
  // The count is the system's 32-bit field. The table holds the records the
  // file holds, FIRST..LAST, in their order; entries outside the file would
  // be zero (node 0, a zero matrix), and one zero entry before them and one
  // behind stand for those, so that every node finds an entry of the same
  // contents as in the whole table.
  S.NUM_SKEW = static_cast<int32_t>(nski.nrec);
  const auto [first, last] = A.readable_among(nski, kBytes, S.NUM_SKEW);
  const int64_t nread = std::max<int64_t>(last - first + 1, 0);
  const int64_t lead = S.NUM_SKEW > 0 && (nread == 0 || first > 1) ? 1 : 0;
  const int64_t trail = nread > 0 && S.NUM_SKEW > last ? 1 : 0;
  if (S.NUM_SKEW > 0) S.NUM_SKEW = static_cast<int32_t>(lead + nread + trail);
  S.NODE_SKEW.resize(S.NUM_SKEW);
  S.SKEW_INFM.resize(9, S.NUM_SKEW);
  for (int64_t r = first; r <= last; ++r) {
    unsigned char rec[kBytes];
    if (!A.read(nski, r, rec, kBytes)) continue;
    const int64_t k = lead + r - first + 1;
    int32_t node;
    std::memcpy(&node, rec, 4);
    S.NODE_SKEW(k) = node;
    for (int64_t v = 0; v < 9; ++v) {
      double x;
      std::memcpy(&x, rec + 4 + 8 * v, 8);
      S.SKEW_INFM(v + 1, k) = x;
    }
  }
}

// DISP_NO(r, c) := sum over j of T(r, j) DISP_EQ(j, c), r = 1..6, and the
// seventh dof as it is, for columns 1..NCOL; only row ONLY when it is given.
template <class In, class Out>
void to_node_axes(In EQ, Out NO, const NodeRecord& rec, int32_t K, int64_t ncol, int only = 0) {
  const int r0 = only == 0 ? 1 : only;
  const int r1 = only == 0 ? 6 : std::min(only, 6);
  for (int64_t c = 1; c <= ncol; ++c) {
    for (int r = r0; r <= r1; ++r) {
      double sum = 0.0;
      for (int j = 1; j <= 6; ++j) sum += rec.T[r - 1][j - 1] * EQ(j, c);
      NO(r, c) = sum;
    }
    if (K == 7 && (only == 0 || only == 7)) NO(7, c) = EQ(7, c);
  }
}

// The steps of the largest and the smallest value of ROW(s), s = 1..N: a later
// step wins only when strictly larger (smaller), so the first of a tie stays.
template <class Row>
void extreme_steps(Row row, int64_t n, int64_t& smax, int64_t& smin) {
  double vmax = row(1), vmin = vmax;
  smax = smin = 1;
  for (int64_t s = 2; s <= n; ++s) {
    const double v = row(s);
    if (v > vmax) {
      vmax = v;
      smax = s;
    }
    if (v < vmin) {
      vmin = v;
      smin = s;
    }
  }
}

}  // namespace

void DISP_VELO_ACCEL(NodalMotion& M, NodeSkew& S, Tdsp& TDSP, VecRef<int32_t> INUM_ELEMNT,
                     int32_t RESULT_KIND, int32_t AXIS_FLAG) {
  const RunContext& R = M.run;
  const auto q = static_cast<Quantity>(RESULT_KIND);
  const int32_t mode = R.REQUEST_MODE;
  if (mode == 1) {
    TDSP.zero();
    node_history_over_steps(M, S, TDSP, INUM_ELEMNT, q, AXIS_FLAG);
    return;
  }
  int32_t passes = 1;
  if (mode == 2) TDSP.zero();
  if (mode == 3) {
    passes = 2;
    read_skew_systems(M.archive, S);
  }

  const int32_t K = M.node_dofs();
  Mat<double> DISP_EQ("DISP_EQ", 7, R.NUM_STEPS);
  Mat<double> DISP_NO("DISP_NO", 7, R.NUM_STEPS);
  Vec<int64_t> SMAX("SMAX", R.NUM_ITEMS), SMIN("SMIN", R.NUM_ITEMS);
  StepWork work(R);
  if (mode == 3) work.DTEMP = Vec<double>("DTEMP", R.NUM_STEPS);

  for (int32_t p = 1; p <= passes; ++p) {
    // An envelope's first pass finds the steps of the extremes, its second
    // returns every component at those steps; a snapshot takes its step.
    const StepColumns cols = mode != 3 ? StepColumns::OneStep
                             : p == 1  ? StepColumns::AllSteps
                                       : StepColumns::Extremes;
    const int64_t ncol = cols == StepColumns::AllSteps  ? R.NUM_STEPS
                         : cols == StepColumns::OneStep ? 1
                                                        : 2;
    for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
      const int32_t node = INUM_ELEMNT(k);
      if (cols == StepColumns::Extremes) {
        work.smax = SMAX(k);
        work.smin = SMIN(k);
      }
      const NodeRecord rec = M.node_transform(M.archive.find(sections::NDSP, 3), node, K);
      bool support = false;
      if (R.HAS_SUPPORT_MOTION == 1) {
        for (int i = 0; i < 3; ++i) support = support || rec.LM[i] == 0;
      }
      MotionFetch fetch(M, q, cols, support, work, DISP_EQ.ref(), 7, K);
      for (int32_t i = 1; i <= K; ++i) fetch.dof(i, rec.LM[i - 1], node, i);
      fetch.finish();

      // An envelope's first pass reads row RESULT_COMP alone; unless a skew
      // system mixes the rows, only that row is formed.
      const int32_t C = R.RESULT_COMP;
      const bool skewed = AXIS_FLAG == 0 && S.NUM_SKEW > 0;
      const int only =
          mode == 3 && p == 1 && !skewed && C >= 1 && (C <= 6 || (C == 7 && K == 7)) ? C : 0;
      if (DISP_EQ.ref().holds(K, ncol))
        to_node_axes(DISP_EQ.raw(), DISP_NO.raw(), rec, K, ncol, only);
      else
        to_node_axes(DISP_EQ.ref(), DISP_NO.ref(), rec, K, ncol);
      if (AXIS_FLAG == 0 && S.NUM_SKEW > 0) {
        int32_t index = 0;
        CHECK_NODE_SKEW_INFM(node, S.NUM_SKEW, S.NODE_SKEW.ref(), index);
        if (index != 0) {
          TRANSFORM_TO_LOCAL(DISP_NO.ref(), cols == StepColumns::Extremes ? 2 : R.NUM_STEPS, index,
                             S.SKEW_INFM.ref());
        }
      }

      if (mode == 3 && p == 1) {
        int64_t smax = 1, smin = 1;
        MatRef<double> NO = DISP_NO.ref();
        if (C >= 1 && NO.holds(C, R.NUM_STEPS) && R.NUM_STEPS >= 1)
          extreme_steps([&](int64_t s) { return NO.raw()(C, s); }, R.NUM_STEPS, smax, smin);
        else
          extreme_steps([&](int64_t s) { return NO(C, s); }, R.NUM_STEPS, smax, smin);
        SMAX(k) = smax;
        SMIN(k) = smin;
        M.state.extreme_steps.resize(2 * static_cast<size_t>(R.NUM_ITEMS), 0);
        M.state.extreme_steps[2 * static_cast<size_t>(k - 1)] = static_cast<int32_t>(smax);
        M.state.extreme_steps[2 * static_cast<size_t>(k - 1) + 1] = static_cast<int32_t>(smin);
      } else if (mode == 3) {
        for (int32_t r = 1; r <= K; ++r) {
          TDSP(r, 2 * (k - 1) + 1) = DISP_NO(r, 1);
          TDSP(r, 2 * (k - 1) + 2) = DISP_NO(r, 2);
        }
      } else if (mode == 2) {
        for (int32_t r = 1; r <= K; ++r) TDSP(r, k) = DISP_NO(r, R.STEP_NO);
      }
    }
  }
}

}  // namespace respcore
