// Truss history: axial force and axial stress at both ends of each listed
// truss, for each requested step, from the element's stored force-recovery
// matrix and its nodal displacements.
#include <cstring>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"
#include "run/histories.hpp"

namespace respcore {

void TRUSS_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS) {
  (void)NCOLS;
  RunContext& R = K.run;
  Vec<double>& SA = K.line.TRUSS_SA;
  Vec<double>& DISP_INIT = K.line.TRUSS_DISP_INIT;
  const bool hnq = std::memcmp(K.archive.PRODUCT_TAG.data(), "H.N.Q", 5) == 0;

  Mat<double> SSIG("SSIG", 4, R.NUM_STEPS);
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, R.HIST_CASE, 36, first, found);
  const bool has_initial = found != 0;
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  if (has_initial) {
    RST_INITIAL.resize(2, R.NUM_ITEMS);
    for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
      double v[2];
      if (!read_record(K, UNIT_SECOND, first + INUM_SERIAL(k) - 1, v, 16)) continue;
      RST_INITIAL(1, k) = v[0];
      RST_INITIAL(2, k) = v[1];
    }
  }

  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
    SA.fill(0.0);
    const int32_t serial = INUM_SERIAL(k);
    R.CURRENT_ELEM = serial;
    RF_BIN_T(K, ID, 1, first, found);
    read_f64(K, UNIT_SECOND, first + serial - 1, SA.ref(), 63);

    // A negative factor marks an element with an extended record, which
    // only the tag "H.N.Q" reads.
    const bool extended = trunc_i32(SA(63)) < 0;
    int32_t reclen = 63;
    int32_t NNODE = 2;
    double SCALE = SA(63);
    if (extended && hnq) {
      RF_BIN_T(K, ID, 102, first, found);
      read_f64(K, UNIT_SECOND, first + serial - 1, SA.ref(), 1245);
      const double F = SA(63);
      const double G = SA(1245);
      SA(1245) = F;
      SA(63) = G;
      SCALE = -F;
      reclen = 1245;
      NNODE = trunc_i32(SA(1201)) + trunc_i32(SA(1202));
    }
    if (SCALE < 0.0) SCALE = -SCALE;

    const int32_t NDOF = trunc_i32(SA(reclen - 2));
    const int32_t NSTR = trunc_i32(SA(reclen - 1));
    Vec<int32_t> LM("LM", NDOF);
    for (int32_t i = 1; i <= NDOF; ++i) LM(i) = trunc_i32(SA(i));

    Vec<int32_t> IIA("IIA", NNODE);
    if (extended) {
      const int32_t NA = trunc_i32(SA(1201));
      const int32_t NB = trunc_i32(SA(1202));
      for (int32_t i = 1; i <= NA; ++i) IIA(i) = trunc_i32(SA(1203 + i));
      for (int32_t i = 1; i <= NB; ++i) IIA(NA + i) = trunc_i32(SA(1222 + i));
    }

    Mat<double> DISP_EQ("DISP_EQ", NDOF, R.NUM_STEPS);
    Mat<double> DISP_NO("DISP_NO", NDOF, R.NUM_STEPS);
    DISP_EQUATION(K, NDOF, DISP_EQ.ref(), DISP_NO.ref(), NDOF, LM.ref(), IIA.ref(), NNODE, 1);

    if (K.inactive.NUM_INACTIVE > 0) {
      int32_t flag = 0;
      CHECK_INACTIVE_ELEM(K, INACTIVE_KIND_TRUSS, serial, R.HIST_CASE, flag);
      if (flag == 1 && R.DIRECT_FILE_NO != 1) {
        DISP_EQUATION_INITIAL(K, DISP_INIT.ref(), NDOF, LM.ref());
        for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
          for (int32_t i = 1; i <= NDOF; ++i) DISP_EQ(i, s) = DISP_EQ(i, s) - DISP_INIT(i);
        }
      } else if (flag == 1) {
        DISP_EQ.fill(0.0);
      }
    }

    Mat<double> STRS("STRS", NSTR, NDOF);
    const int64_t nvals = int64_t{std::max(NSTR, 0)} * std::max(NDOF, 0);
    for (int64_t v = 1; v <= nvals; ++v) STRS.flat()(v) = SA(NDOF + v);

    // The two end forces come with opposite signs; both ends carry their
    // mean, tension positive.
    const bool fast = NSTR >= 2;
    for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
      double SIG[4] = {0.0, 0.0, 0.0, 0.0};
      if (fast) {
        const double* d = DISP_EQ.col(s);
        for (int32_t j = 1; j <= NDOF; ++j) {
          SIG[0] += STRS.data()[0 + (j - 1) * NSTR] * d[j - 1];
          SIG[1] += STRS.data()[1 + (j - 1) * NSTR] * d[j - 1];
        }
      } else {
        for (int32_t i = 1; i <= 2; ++i) {
          for (int32_t j = 1; j <= NDOF; ++j) SIG[i - 1] += STRS(i, j) * DISP_EQ(j, s);
        }
      }
      const double F = (SIG[1] - SIG[0]) * 0.5;
      SSIG(1, s) = F;
      SSIG(2, s) = F;
      if (has_initial) {
        SSIG(1, s) = SSIG(1, s) + RST_INITIAL(1, k);
        SSIG(2, s) = SSIG(2, s) + RST_INITIAL(2, k);
      }
      SSIG(3, s) = SSIG(1, s) * STRS(3, 1);
      SSIG(4, s) = SSIG(2, s) * STRS(4, 1);
      if (hnq) {
        SSIG(1, s) = SSIG(1, s) * SCALE;
        SSIG(2, s) = SSIG(2, s) * SCALE;
      }
    }

    if (R.REQUEST_MODE == 1) {
      for (int64_t r = 1; r <= 4; ++r) {
        for (int64_t s = 1; s <= R.NUM_STEPS; ++s) TDSP(r, s) = SSIG(r, s);
      }
    } else {
      for (int64_t r = 1; r <= 4; ++r) TDSP(r, k) = SSIG(r, 1);
    }
  }
}

}  // namespace respcore
