#include "solid/solid_steps.hpp"

#include <algorithm>

#include "core/kernel_state.hpp"
#include "numeric/blas.hpp"
#include "solid/solid_tensors.hpp"

namespace respcore {

void solid_product(MatRef<double> OUT, MatRef<double> M, int32_t mrows, int32_t ncols,
                   MatRef<double> DISP) {
  const int64_t nsteps = std::min(OUT.cols(), DISP.cols());
  if (mrows <= 0 || ncols <= 0 || nsteps <= 0) return;
  if (mrows > OUT.rows() || mrows > M.rows() || ncols > M.cols() || ncols > DISP.rows()) return;
  DGEMM('N', 'N', mrows, static_cast<int32_t>(nsteps), ncols, 1.0, M.data(),
        static_cast<int32_t>(M.rows()), DISP.data(), static_cast<int32_t>(DISP.rows()), 0.0,
        OUT.data(), static_cast<int32_t>(OUT.rows()));
}

void solid_steps(KernelState& K, const SolidStepLayout& L, MatRef<double> OUT,
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
    SOLID_STRAIN_TIME(K, NN, first, STRESS, STRAIN);
    if (AXIS_FLAG == 0) CHANGE_G_L(STRAIN, T, NN);
    for (int64_t i = 1; i <= n; ++i) STRAIN_TIME(i, s) = STRAIN(i);

    if (AXIS_FLAG == 0) {
      CHANGE_G_L(stresses, T, NN);
      CHANGE_G_L_FORC(forces, T, NN);
    }
  }
}

void solid_deliver(KernelState& K, Tdsp& TDSP, int64_t ITEM, MatRef<double> OUT, int32_t NROWS,
                   MatRef<double> STRAIN_TIME, int32_t STRAIN_ROW0, int32_t NSTRAIN) {
  const RunContext& R = K.run;
  const int64_t nsteps = OUT.cols();
  auto put_row = [&](int64_t row, const double* src, int64_t ld) {
    if (R.REQUEST_MODE == 1) {
      if (row >= 1 && row <= Tdsp::kRows && TDSP.allocated() && TDSP.cols() >= nsteps) {
        double* dst = TDSP.row(row);
        for (int64_t s = 0; s < nsteps; ++s) dst[s] = src[s * ld];
      } else {
        for (int64_t s = 1; s <= nsteps; ++s) TDSP(row, s) = src[(s - 1) * ld];
      }
    } else if (nsteps >= 1) {
      TDSP(row, ITEM) = src[0];
    }
  };
  const int64_t nr = std::min<int64_t>(NROWS, OUT.rows());
  for (int64_t r = 1; r <= nr; ++r) put_row(r, OUT.data() + (r - 1), OUT.rows());
  const int64_t ns = std::min<int64_t>(NSTRAIN, STRAIN_TIME.rows());
  for (int64_t k = 1; k <= ns; ++k)
    put_row(STRAIN_ROW0 + k, STRAIN_TIME.data() + (k - 1), STRAIN_TIME.rows());
}

}  // namespace respcore
