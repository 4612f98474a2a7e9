#include "nodal/node_results.hpp"

#include <cstring>
#include <vector>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/history_reads.hpp"
#include "nodal/node_history.hpp"
#include "run/histories.hpp"

namespace respcore {

void CHECK_NODE_SKEW_INFM(int32_t node, int32_t n, VecRef<int32_t> NODE_SKEW, int32_t& index) {
  index = 0;
  for (int32_t i = 1; i <= n; ++i) {
    if (NODE_SKEW(i) == node) {
      index = i;
      return;
    }
  }
}

void TRANSFORM_TO_LOCAL(MatRef<double> DISP_NO, int32_t ncols, int32_t index, int32_t n,
                        MatRef<double> SKEW_INFM) {
  (void)n;
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

// Which columns of DISP_EQ a fetch fills.
enum class Columns {
  AllSteps,  // steps 1..NUM_STEPS into columns 1..NUM_STEPS
  OneStep,   // step STEP_NO into column 1
  Extremes,  // the steps of the maximum and the minimum into columns 1 and 2
};

struct NodeFetch {
  KernelState& K;
  Columns cols;
  int32_t kind;          // RESULT_KIND: 1 displacement, 2 velocity, 3 acceleration
  int64_t smax = 1, smin = 1;
  StepPick pick;         // DTEMP for one step
  Vec<double> DTEMP;     // DTEMP for the extremes: one equation's whole history
  std::vector<double> buf;

  // Reads history record REC of UNIT into row I of DISP_EQ, by the columns.
  void read(int32_t unit, int64_t rec, Mat<double>& DISP_EQ, int64_t i) {
    if (cols == Columns::AllSteps) {
      read_history_row(K, unit, rec, DISP_EQ.ref(), i, true, pick);
      return;
    }
    if (cols == Columns::OneStep) {
      read_history_row(K, unit, rec, DISP_EQ.ref(), i, false, pick);
      return;
    }
    const int64_t n = std::max<int64_t>(K.run.NUM_STEPS, 0);
    buf.resize(static_cast<size_t>(n));
    if (read_record(K, unit, rec, buf.data(), n * 8) && n > 0) {
      std::memcpy(DTEMP.data(), buf.data(), static_cast<size_t>(n) * sizeof(double));
    }
    DISP_EQ(i, 1) = DTEMP(smax);
    DISP_EQ(i, 2) = DTEMP(smin);
  }
};

}  // namespace

void DISP_VELO_ACCEL(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                     int32_t NCOLS, int32_t RESULT_KIND, int32_t AXIS_FLAG) {
  (void)INUM_SERIAL;
  RunContext& R = K.run;
  NodeSkew& S = K.skew;
  const int32_t mode = R.REQUEST_MODE;
  if (mode == 1) {
    TDSP.zero();
    node_history_over_steps(K, TDSP, INUM_ELEMNT, NCOLS, RESULT_KIND, AXIS_FLAG);
    return;
  }
  int32_t passes = 1;
  if (mode == 2) TDSP.zero();
  int64_t first = 0;
  int32_t found = 0;
  if (mode == 3) {
    passes = 2;
    RF_BIN_T(K, 3, 168, first, found);
    if (!found) {
      S.NUM_SKEW = 0;
    } else {
      S.NUM_SKEW = static_cast<int32_t>(K.archive.SEC_NREC);
      S.NODE_SKEW.resize(S.NUM_SKEW);
      S.SKEW_INFM.resize(9, S.NUM_SKEW);
      const int64_t readable =
          std::min<int64_t>(S.NUM_SKEW, unit_last_record(K, UNIT_SECOND, 76) - (first - 1));
      for (int64_t r = 1; r <= readable; ++r) {
        unsigned char rec[76];
        if (!read_record(K, UNIT_SECOND, first - 1 + r, rec, 76)) continue;
        int32_t node;
        std::memcpy(&node, rec, 4);
        S.NODE_SKEW(r) = node;
        for (int64_t v = 0; v < 9; ++v) {
          double x;
          std::memcpy(&x, rec + 4 + 8 * v, 8);
          S.SKEW_INFM(v + 1, r) = x;
        }
      }
    }
  }

  const int32_t Kw = R.PRODUCT_FLAG != 0 ? 7 : 6;
  Vec<int32_t> LM("LM", 7);
  Mat<double> DISP_EQ("DISP_EQ", 7, R.NUM_STEPS);
  Mat<double> DISP_NO("DISP_NO", 7, R.NUM_STEPS);
  Vec<double> VMAX("VMAX", R.NUM_ITEMS), VMIN("VMIN", R.NUM_ITEMS);
  Vec<int64_t> SMAX("SMAX", R.NUM_ITEMS), SMIN("SMIN", R.NUM_ITEMS);
  NodeFetch fetch{K, Columns::AllSteps, RESULT_KIND, 1, 1, StepPick{R.STEP_NO, 0.0},
                  Vec<double>("DTEMP"), {}};
  if (mode == 3) fetch.DTEMP = Vec<double>("DTEMP", R.NUM_STEPS);

  for (int32_t p = 1; p <= passes; ++p) {
    for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
      const int32_t node = INUM_ELEMNT(k);
      R.CURRENT_NODE = node;
      if (mode == 3 && p == 1) fetch.cols = Columns::AllSteps;
      else if (mode == 3) fetch.cols = Columns::Extremes;
      else fetch.cols = Columns::OneStep;
      if (fetch.cols == Columns::Extremes) {
        fetch.smax = SMAX(k);
        fetch.smin = SMIN(k);
      }

      RF_BIN_T(K, 3, 17, first, found);
      double T[6][6];
      read_node_transform(K, first, node, Kw, T);
      for (int32_t i = 1; i <= Kw; ++i) LM(i) = trunc_i32(K.nodal.TEMP(i));

      // The motion of the node's dof.
      if (R.HIST_STORE == 1) {
        Arr3<double> coords("MODAL_COORD", R.NUM_MODES, R.NUM_STORED_STEPS, 3);
        Mat<double> MODE_VALS("MODE_VALS", 7, R.NUM_MODES);
        Vec<int32_t> INDX_NF("INDX_NF");
        select_modes(K, INDX_NF);
        RF_BIN_T(K, 3, 9, first, found);
        read_modal_coordinates(K, first, INDX_NF, coords, fetch.cols != Columns::OneStep);
        RF_BIN_T(K, 3, 10, first, found);
        std::vector<double> row(static_cast<size_t>(std::max(R.NUM_MODES, 0)));
        for (int32_t i = 1; i <= Kw; ++i) {
          const int32_t e = LM(i);
          if (e <= 0) continue;
          if (!read_record(K, UNIT_SECOND, first - 1 + e, row.data(), int64_t{R.NUM_MODES} * 8)) {
            continue;
          }
          for (int32_t m = 1; m <= R.NUM_MODES; ++m) MODE_VALS(i, m) = row[static_cast<size_t>(m - 1)];
        }
        DISP_EQ.fill(0.0);
        if (fetch.cols == Columns::Extremes) {
          for (int32_t i = 1; i <= Kw; ++i) {
            double smx = 0.0, smn = 0.0;
            for (int32_t m = 1; m <= R.NUM_MODES; ++m) {
              smx += MODE_VALS(i, m) * coords(m, fetch.smax, RESULT_KIND);
              smn += MODE_VALS(i, m) * coords(m, fetch.smin, RESULT_KIND);
            }
            DISP_EQ(i, 1) = smx;
            DISP_EQ(i, 2) = smn;
          }
        } else {
          modal_sum(MODE_VALS, coords, RESULT_KIND, Kw,
                    fetch.cols == Columns::AllSteps ? R.NUM_STEPS : 1, DISP_EQ.ref());
        }
      } else if (R.HIST_STORE == 2) {
        bool support = false;
        if (R.HAS_SUPPORT_MOTION == 1) {
          for (int32_t i = 1; i <= 3; ++i) support = support || LM(i) == 0;
        }
        DISP_EQ.fill(0.0);
        if (!support) {
          int32_t reclen = 0;
          int64_t start = 0;
          RF_BIN_DIRECT(K, 1, 1, R.DIRECT_FILE_NO, reclen, start);
          for (int32_t i = 1; i <= Kw; ++i) {
            const int32_t e = LM(i);
            if (e > 0) fetch.read(UNIT_DIRECT, start + 3 * int64_t{e} - RESULT_KIND, DISP_EQ, i);
          }
        } else {
          const int64_t nrows = read_support_index(K);
          RF_BIN_T(K, R.HIST_CASE, 32, first, found);
          const int64_t mser_first = first;
          int32_t reclen = 0;
          int64_t start = 0;
          RF_BIN_DIRECT(K, 1, 1, R.DIRECT_FILE_NO, reclen, start);
          // With support motion the direct file holds the displacement,
          // velocity and acceleration of equation e at 3e - 1, 2e - 1, e - 1.
          const int64_t factor = RESULT_KIND == 1 ? 3 : RESULT_KIND == 2 ? 2 : 1;
          for (int32_t i = 1; i <= Kw; ++i) {
            const int32_t e = LM(i);
            if (e == 0 && i <= 3) {
              const int64_t r = find_support_row(K, nrows, node, i);
              if (r > 0) fetch.read(UNIT_SECOND, mser_first + 3 * r - RESULT_KIND, DISP_EQ, i);
            } else if (e > 0) {
              fetch.read(UNIT_DIRECT, start + factor * int64_t{e} - 1, DISP_EQ, i);
            }
          }
        }
      }

      // Node axes.
      const int64_t ncol = fetch.cols == Columns::AllSteps ? R.NUM_STEPS
                           : fetch.cols == Columns::OneStep ? 1 : 2;
      const bool fast = ncol <= DISP_EQ.cols();
      for (int64_t c = 1; c <= ncol; ++c) {
        if (fast) {
          const double* x = DISP_EQ.col(c);
          double* y = DISP_NO.col(c);
          for (int r = 0; r < 6; ++r) {
            double sum = 0.0;
            for (int j = 0; j < 6; ++j) sum += T[r][j] * x[j];
            y[r] = sum;
          }
          if (Kw == 7) y[6] = x[6];
        } else {
          for (int r = 1; r <= 6; ++r) {
            double sum = 0.0;
            for (int j = 1; j <= 6; ++j) sum += T[r - 1][j - 1] * DISP_EQ(j, c);
            DISP_NO(r, c) = sum;
          }
          if (Kw == 7) DISP_NO(7, c) = DISP_EQ(7, c);
        }
      }

      if (AXIS_FLAG == 0 && S.NUM_SKEW > 0) {
        int32_t index = 0;
        CHECK_NODE_SKEW_INFM(node, S.NUM_SKEW, S.NODE_SKEW.ref(), index);
        if (index != 0) {
          TRANSFORM_TO_LOCAL(DISP_NO.ref(),
                             fetch.cols == Columns::Extremes ? 2 : R.NUM_STEPS, index,
                             S.NUM_SKEW, S.SKEW_INFM.ref());
        }
      }

      // Output.
      if (mode == 3 && p == 1) {
        const int32_t C = R.RESULT_COMP;
        double vmax = DISP_NO(C, 1), vmin = vmax;
        int64_t smax = 1, smin = 1;
        for (int64_t s = 2; s <= R.NUM_STEPS; ++s) {
          const double v = DISP_NO(C, s);
          if (v > vmax) { vmax = v; smax = s; }
          if (v < vmin) { vmin = v; smin = s; }
        }
        VMAX(k) = vmax;
        VMIN(k) = vmin;
        SMAX(k) = smax;
        SMIN(k) = smin;
        K.nodal.extreme_steps.resize(2 * static_cast<size_t>(R.NUM_ITEMS), 0);
        K.nodal.extreme_steps[2 * static_cast<size_t>(k - 1)] = static_cast<int32_t>(smax);
        K.nodal.extreme_steps[2 * static_cast<size_t>(k - 1) + 1] = static_cast<int32_t>(smin);
      } else if (mode == 3) {
        for (int32_t r = 1; r <= Kw; ++r) {
          TDSP(r, 2 * (k - 1) + 1) = DISP_NO(r, 1);
          TDSP(r, 2 * (k - 1) + 2) = DISP_NO(r, 2);
        }
      } else if (mode == 2) {
        for (int32_t r = 1; r <= Kw; ++r) TDSP(r, k) = DISP_NO(r, R.STEP_NO);
      }
    }
  }
}

}  // namespace respcore
