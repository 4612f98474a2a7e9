#include "nodal/disp_equation.hpp"

#include "archive/section_access.hpp"

namespace respcore {

namespace {

// The displacements of the element's equations, row i from LM(i); with
// support motion (and a constrained translation among the element's nodes)
// rows are laid out six per node, and a constrained translation takes the
// support motion of its node. MAKE(support) makes the fetch that receives
// them.
template <class Make>
void fetch_rows(NodalMotion& M, int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA,
                int32_t NNODE, Make make) {
  const RunContext& R = M.run;
  // Equations past LM read as equation 0, which has no motion: the first is
  // reported and the element's equations are those LM holds.
  const int64_t nlm = LM.fit(1, NLM);
  auto by_equation = [&](bool close_after) {
    MotionFetch& f = make(false, nlm);
    for (int64_t i = 1; i <= nlm; ++i) f.dof(i, LM(i), 0, 0);
    f.finish();
    if (close_after) f.close_direct_file();
  };
  if (R.HIST_STORE == 1 || (R.HIST_STORE == 2 && R.HAS_SUPPORT_MOTION == 0)) {
    by_equation(false);
    return;
  }
  if (R.HIST_STORE != 2 || R.HAS_SUPPORT_MOTION != 1) return;
  // The nodes whose rows reach into LM. A node behind them has only rows
  // past LM: equation 0, whose motion, if any, lands past the element's rows
  // and is dropped. It still counts as a constrained node.
  const int64_t reach = (LM.hi() + 5) / 6;
  const int64_t nnode = std::min<int64_t>(std::max(NNODE, 0), std::max<int64_t>(reach, 0));
  int32_t zeros = 0;
  if (nnode < NNODE) {
    report_bound_failure(LM.name(), 6 * nnode + 1, LM.lo(), LM.hi());
    ++zeros;
  }
  for (int64_t n = 1; n <= nnode; ++n) {
    for (int64_t c = 1; c <= 3; ++c) {
      if (LM(6 * (n - 1) + c) == 0) ++zeros;
    }
  }
  if (zeros == 0) {
    by_equation(true);
    return;
  }
  MotionFetch& f = make(true, nlm);
  for (int64_t n = 1; n <= nnode; ++n) {
    for (int32_t c = 1; c <= 6; ++c) {
      const int64_t row = 6 * (n - 1) + c;
      const int32_t L = LM(row);
      if (L == 0 && c <= 3) {
        f.dof(row, 0, IIA(n), c);
      } else if (L > 0) {
        f.dof(row, L, 0, c);
      }
      // The warping dof of a wall beam's nodes.
      if (R.ELEM_TYPE == 14) {
        const int32_t W = LM(12 + n);
        if (W > 0) f.dof(12 + n, W, 0, 7);
      }
    }
  }
  f.finish();
  f.close_direct_file();
}

void fetch_displacements(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ, int32_t NLM,
                         VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                         SectionRef* direct) {
  StepWork work(M.run);
  const StepColumns cols =
      M.run.REQUEST_MODE == 1 ? StepColumns::AllSteps : StepColumns::OneStep;
  std::optional<MotionFetch> f;
  fetch_rows(M, NLM, LM, IIA, NNODE, [&](bool support, int64_t nlm) -> MotionFetch& {
    return f.emplace(M, Quantity::Displacement, cols, support, work, DISP_EQ, NDOF, nlm);
  });
  if (direct != nullptr) *direct = f ? f->direct_section() : SectionRef{};
}

// DISP_NO(6(n-1)+r, j) := sum over c of T(r, c) DISP_EQ(6(n-1)+c, j) for the
// transform T of node n; a wall beam's warping rows pass unchanged.
template <class In, class Out>
void turn_node(In EQ, Out NO, const NodeRecord& rec, int64_t n, int64_t nsteps, bool wall) {
  for (int64_t j = 1; j <= nsteps; ++j) {
    for (int r = 1; r <= 6; ++r) {
      double sum = 0.0;
      for (int c = 1; c <= 6; ++c) sum += rec.T[r - 1][c - 1] * EQ(6 * (n - 1) + c, j);
      NO(6 * (n - 1) + r, j) = sum;
    }
    if (wall) NO(12 + n, j) = EQ(12 + n, j);
  }
}

template <class Out>
void clear_rows(Out NO, int64_t nrows, int64_t ncols) {
  for (int64_t j = 1; j <= ncols; ++j) {
    for (int64_t r = 1; r <= nrows; ++r) NO(r, j) = 0.0;
  }
}

}  // namespace

void DISP_EQUATION(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ, MatRef<double> DISP_NO,
                   int32_t NLM, VecRef<int32_t> LM, VecRef<int32_t> IIA, int32_t NNODE,
                   int32_t NO_TRANSFORM, SectionRef* DIRECT) {
  fetch_displacements(M, NDOF, DISP_EQ, NLM, LM, IIA, NNODE, DIRECT);
  if (NO_TRANSFORM == 1) return;
  turn_to_node_axes(M, NDOF, DISP_EQ, DISP_NO, IIA, NNODE, M.run.NUM_STEPS);
}

void turn_to_node_axes(NodalMotion& M, int32_t NDOF, MatRef<double> DISP_EQ,
                       MatRef<double> DISP_NO, VecRef<int32_t> IIA, int32_t NNODE,
                       int64_t NCOLS) {
  const RunContext& R = M.run;
  const SectionRef ndsp = M.archive.find(sections::NDSP, 3);
  const int64_t ncol = DISP_NO.cols();
  clear_rows(DISP_NO.raw(), DISP_NO.fit_rows(NDOF), ncol);
  const int32_t K = M.node_dofs();
  const bool wall = R.ELEM_TYPE == 14;
  const int64_t nsteps = NCOLS;
  // Nodes whose rows all lie past DISP_NO would only drop their writes: the
  // first such row is reported, and the turn stops there.
  const int64_t reach = (DISP_NO.rows() + 5) / 6;
  int64_t nnode = std::max(NNODE, 0);
  if (nnode > reach) {
    report_bound_failure(DISP_NO.name(), 6 * reach + 1, 1, DISP_NO.rows());
    nnode = reach;
  }
  const int64_t last_row = std::max<int64_t>(6 * nnode, wall ? 12 + nnode : 0);
  const bool inside = DISP_EQ.holds(last_row, nsteps) && DISP_NO.holds(last_row, nsteps);
  for (int64_t n = 1; n <= nnode; ++n) {
    const NodeRecord rec = M.node_transform(ndsp, IIA(n), K);
    if (inside)
      turn_node(DISP_EQ.raw(), DISP_NO.raw(), rec, n, nsteps, wall);
    else
      turn_node(DISP_EQ, DISP_NO, rec, n, nsteps, wall);
  }
}

bool DispRow::start(NodalMotion& M, int32_t NDOF, int32_t NLM, VecRef<int32_t> LM,
                    VecRef<int32_t> IIA, int32_t NNODE) {
  const RunContext& R = M.run;
  fetch_.reset();
  if (R.REQUEST_MODE != 1 || !MotionFetch::combinable(R) || NDOF < 0 || NLM > NDOF ||
      NNODE < 0 || NLM > LM.size())
    return false;
  // The layout by node reaches rows 6 NNODE (and a wall beam's 12 + NNODE).
  const bool by_node = R.HIST_STORE == 2 && R.HAS_SUPPORT_MOTION == 1;
  const int64_t rows = std::min<int64_t>(NDOF, LM.size());
  if (by_node && (6 * int64_t{NNODE} > rows || NNODE > IIA.size() ||
                  (R.ELEM_TYPE == 14 && 12 + int64_t{NNODE} > rows)))
    return false;
  fetch_rows(M, NLM, LM, IIA, NNODE, [&](bool support, int64_t) -> MotionFetch& {
    return fetch_.emplace(M, Quantity::Displacement, support, NDOF);
  });
  nsteps_ = R.NUM_STEPS;
  ndof_ = NDOF;
  return true;
}

void DispRow::combine(const double* COEF, double BASE, double* OUT, double* LAST) {
  if (fetch_) {
    fetch_->combine(COEF, BASE, OUT, LAST);
    return;
  }
  // No fetch was made (the case has no storage it knows): no motion.
  std::fill(OUT, OUT + std::max(nsteps_, int64_t{0}), BASE);
  if (LAST != nullptr) std::fill(LAST, LAST + std::max(ndof_, 0), 0.0);
}

}  // namespace respcore
