#include "solid/solid_steps.hpp"

#include <algorithm>
#include <optional>
#include <vector>

#include "numeric/blas.hpp"
#include "solid/solid_tensors.hpp"

namespace respcore {

void solid_product(MatRef<double> OUT, MatRef<double> M, int32_t mrows, int32_t ncols,
                   MatRef<double> DISP) {
  const int64_t nsteps = std::min(OUT.cols(), DISP.cols());
  if (mrows <= 0 || nsteps <= 0 || mrows > OUT.rows()) return;
  if (ncols <= 0 || mrows > M.rows() || ncols > M.cols() || ncols > DISP.rows()) {
    for (int64_t s = 1; s <= nsteps; ++s) std::fill(OUT.col(s), OUT.col(s) + mrows, 0.0);
    return;
  }
  DGEMM('N', 'N', mrows, static_cast<int32_t>(nsteps), ncols, 1.0, M.data(),
        static_cast<int32_t>(M.rows()), DISP.data(), static_cast<int32_t>(DISP.rows()), 0.0,
        OUT.data(), static_cast<int32_t>(OUT.rows()));
}

void solid_steps(SolidContext& C, const SolidStepLayout& L, MatRef<double> OUT,
                 MatRef<double> STRAIN_TIME, MatRef<double> T, int32_t NN, int32_t AXIS_FLAG) {
  if (NN < 0) return;
  const int64_t nvals = 6 * int64_t{L.max_points};
  int32_t first = 1;
  std::vector<double> stress(static_cast<size_t>(nvals)), strain(static_cast<size_t>(nvals));
  VecRef<double> STRESS(stress.data(), nvals, "STRESS_GLOBAL");
  VecRef<double> STRAIN(strain.data(), nvals, "STRAIN_GLOBAL");
  for (int64_t s = 1; s <= OUT.cols(); ++s) {
    VecRef<double> col(OUT.col(s), OUT.rows(), "SIG");
    VecRef<double> forces = col.sub(1, L.force_rows);
    VecRef<double> stresses = col.sub(L.force_rows + 1, nvals);
    if (L.low_order) SOL_RECV_H(stresses, NN);
    CHANGE_L_G(stresses, T, NN);
    if (L.low_order) CHANGE_L_G_FORC(forces, T, NN);

    // Strains from the global stresses.
    const int64_t n = std::min<int64_t>(6 * (int64_t{NN} + 1), nvals);
    for (int64_t i = 1; i <= n; ++i) STRESS(i) = stresses(i);
    SOLID_STRAIN_TIME(C, NN, first, STRESS, STRAIN);
    if (AXIS_FLAG == 0) CHANGE_G_L(STRAIN, T, NN);
    for (int64_t i = 1; i <= n; ++i) STRAIN_TIME(i, s) = STRAIN(i);

    if (AXIS_FLAG == 0) {
      CHANGE_G_L(stresses, T, NN);
      CHANGE_G_L_FORC(forces, T, NN);
    }
  }
}

void solid_deliver(int32_t REQUEST_MODE, Tdsp& TDSP, int64_t ITEM, MatRef<double> OUT,
                   int32_t NROWS, MatRef<double> STRAIN_TIME, int32_t STRAIN_ROW0,
                   int32_t NSTRAIN) {
  const int64_t nsteps = OUT.cols();
  if (nsteps <= 0) return;  // no step: nothing to deliver
  auto put_row = [&](int64_t row, const double* src, int64_t ld) {
    if (REQUEST_MODE == 1)
      TDSP.put_row(row, src, ld, nsteps);
    else if (nsteps >= 1)
      TDSP(row, ITEM) = src[0];
  };
  const int64_t nr = std::min<int64_t>(NROWS, OUT.rows());
  for (int64_t r = 1; r <= nr; ++r) put_row(r, OUT.data() + (r - 1), OUT.rows());
  const int64_t ns = std::min<int64_t>(NSTRAIN, STRAIN_TIME.rows());
  for (int64_t k = 1; k <= ns; ++k)
    put_row(STRAIN_ROW0 + k, STRAIN_TIME.data() + (k - 1), STRAIN_TIME.rows());
}

namespace {

// What a requested row of a solid needs: the block it belongs to (a node's
// force triple or a point's six values), the rows of the product that form
// it, and its place in them.
struct RowPlan {
  enum class Kind { Force, Stress, Strain } kind = Kind::Force;
  int32_t b0 = 0, blen = 0, at = 0;  // first row of the block, its length, C's place in it
  bool turn = true;                  // the block is one the routines turn
  int32_t rows = 0, first_row = 0;   // rows of the product formed, from FIRST_ROW
  int32_t off = 0;                   // the block's place in a column of the product
};

// The plan of row C, or none for a row the element does not fill.
std::optional<RowPlan> plan_row(int32_t C, const SolidStepLayout& L, int32_t mrows, int32_t NN,
                                int32_t NROWS, int32_t STRAIN_ROW0, int32_t NSTRAIN) {
  const int32_t F = L.force_rows;
  RowPlan p;
  if (C >= 1 && C <= NROWS && C <= F) {
    p.kind = RowPlan::Kind::Force;
    const int32_t n = (C - 1) / 3 + 1;
    p.b0 = 3 * n - 2;
    p.blen = 3;
    p.at = (C - 1) % 3;
    p.turn = n <= NN;
  } else if (C > F && C <= NROWS) {
    p.kind = RowPlan::Kind::Stress;
    const int32_t pt = (C - F - 1) / 6 + 1;
    p.b0 = F + 6 * (pt - 1) + 1;
    p.blen = 6;
    p.at = (C - F - 1) % 6;
    p.turn = pt <= NN + 1;
  } else if (C > STRAIN_ROW0 && C <= STRAIN_ROW0 + NSTRAIN) {
    p.kind = RowPlan::Kind::Strain;
    const int32_t pt = (C - STRAIN_ROW0 - 1) / 6 + 1;
    p.b0 = F + 6 * (pt - 1) + 1;
    p.blen = 6;
    p.at = (C - STRAIN_ROW0 - 1) % 6;
  } else {
    return std::nullopt;
  }
  if (p.b0 + p.blen - 1 > mrows) return std::nullopt;
  // The product: all rows when the stored points must be extrapolated,
  // otherwise the block's rows alone.
  p.rows = L.low_order ? mrows : p.blen;
  p.first_row = L.low_order ? 1 : p.b0;
  p.off = p.b0 - p.first_row;
  return p;
}

// The row's value from a column COL of the product (P.rows values): the
// extrapolation, the turns and the strains of its block, in place.
double row_value(SolidContext& SC, const RowPlan& P, const SolidStepLayout& L, double* col,
                 MatRef<double> T, int32_t NN, int32_t AXIS_FLAG, int32_t& first) {
  const int32_t F = L.force_rows;
  if (L.low_order) SOL_RECV_H(VecRef<double>(col + F, P.rows - F, "SIG"), NN);
  VecRef<double> blk(col + P.off, P.blen, "SIG");
  switch (P.kind) {
    case RowPlan::Kind::Force:
      if (P.turn && L.low_order) CHANGE_L_G_FORC(blk, T, 1);
      if (P.turn && AXIS_FLAG == 0) CHANGE_G_L_FORC(blk, T, 1);
      return blk(P.at + 1);
    case RowPlan::Kind::Stress:
      if (P.turn) {
        CHANGE_L_G(blk, T, 0);
        if (AXIS_FLAG == 0) CHANGE_G_L(blk, T, 0);
      }
      return blk(P.at + 1);
    case RowPlan::Kind::Strain: {
      double strain[6];
      CHANGE_L_G(blk, T, 0);
      VecRef<double> STRAIN(strain, 6, "STRAIN_GLOBAL");
      SOLID_STRAIN_TIME(SC, 0, first, blk, STRAIN);
      if (AXIS_FLAG == 0) CHANGE_G_L(STRAIN, T, 0);
      return strain[P.at];
    }
  }
  return 0.0;
}

}  // namespace

void solid_history_row(SolidContext& SC, int32_t C, Tdsp& TDSP, const SolidStepLayout& L,
                       MatRef<double> M, int32_t mrows, int32_t ncols, MatRef<double> DISP,
                       MatRef<double> T, int32_t NN, int32_t AXIS_FLAG, int32_t NROWS,
                       int32_t STRAIN_ROW0, int32_t NSTRAIN) {
  const int64_t nsteps = DISP.cols();
  if (nsteps <= 0 || NN < 0) return;
  const std::optional<RowPlan> plan = plan_row(C, L, mrows, NN, NROWS, STRAIN_ROW0, NSTRAIN);
  if (!plan) return;
  const RowPlan& P = *plan;
  Mat<double> OUT("SIG", P.rows, nsteps);
  MatRef<double> Msub(M.data() + (P.first_row - 1), M.rows(), M.cols(), M.name());
  if (ncols > 0 && ncols <= M.cols() && ncols <= DISP.rows() && P.rows <= M.rows()) {
    DGEMM('N', 'N', P.rows, static_cast<int32_t>(nsteps), ncols, 1.0, Msub.data(),
          static_cast<int32_t>(M.rows()), DISP.data(), static_cast<int32_t>(DISP.rows()), 0.0,
          OUT.data(), P.rows);
  }
  double* dst = nullptr;
  if (TDSP.allocated() && TDSP.cols() >= nsteps) dst = TDSP.row(C);
  int32_t first = 1;
  for (int64_t s = 1; s <= nsteps; ++s) {
    const double v = row_value(SC, P, L, OUT.col(s), T, NN, AXIS_FLAG, first);
    if (dst != nullptr)
      dst[s - 1] = v;
    else
      TDSP(C, s) = v;
  }
}

void solid_combined_row(SolidContext& SC, int32_t C, Tdsp& TDSP, const SolidStepLayout& L,
                        MatRef<double> M, int32_t mrows, int32_t ncols, MatRef<double> T,
                        int32_t NN, int32_t AXIS_FLAG, int32_t NROWS, int32_t STRAIN_ROW0,
                        int32_t NSTRAIN, DispRow& row) {
  if (NN < 0) return;
  const std::optional<RowPlan> plan = plan_row(C, L, mrows, NN, NROWS, STRAIN_ROW0, NSTRAIN);
  // A row the element does not fill stays zero; its motion was read all the same.
  if (!plan) return;
  const RowPlan& P = *plan;
  const bool product = ncols > 0 && ncols <= M.cols() && P.rows <= M.rows();
  std::vector<double> col(static_cast<size_t>(P.rows));
  double x[kCombinedInputs], coef[kCombinedInputs];
  int32_t first = 1;
  const int32_t n = std::clamp(ncols, 0, kCombinedInputs);
  const double base = affine_probe(
      n,
      [&](const double* xin) {
        // The column of the product, as one step of the DGEMM forms it.
        std::fill(col.begin(), col.end(), 0.0);
        if (product) {
          for (int32_t j = 0; j < ncols; ++j) {
            const double* mj = M.col(j + 1) + (P.first_row - 1);
            for (int32_t r = 0; r < P.rows; ++r) col[static_cast<size_t>(r)] += mj[r] * xin[j];
          }
        }
        return row_value(SC, P, L, col.data(), T, NN, AXIS_FLAG, first);
      },
      x, coef);
  row.combine(coef, base, TDSP.fresh_row(C));
}

void solid_element_rows(SolidContext& C, const RunContext& R, Tdsp& TDSP, int64_t ITEM,
                        const SolidStepLayout& L, MatRef<double> M, int32_t mrows, int32_t ncols,
                        MatRef<double> DISP, MatRef<double> T, int32_t NN, int32_t AXIS_FLAG,
                        int32_t NROWS, int32_t STRAIN_ROW0, int32_t NSTRAIN, MatRef<double> OUT,
                        MatRef<double> STRAIN_TIME) {
  if (R.REQUEST_MODE == 1) {
    solid_history_row(C, R.RESULT_COMP, TDSP, L, M, mrows, ncols, DISP, T, NN, AXIS_FLAG, NROWS,
                      STRAIN_ROW0, NSTRAIN);
    return;
  }
  // All steps in one product.
  solid_product(OUT, M, mrows, ncols, DISP);
  solid_steps(C, L, OUT, STRAIN_TIME, T, NN, AXIS_FLAG);
  solid_deliver(R.REQUEST_MODE, TDSP, ITEM, OUT, NROWS, STRAIN_TIME, STRAIN_ROW0, NSTRAIN);
}

}  // namespace respcore
