// Beam history: end forces, section stresses and corner stresses of each
// listed two-node beam, for each requested step, from the element's stored
// recovery matrix and section stress factors.
//
// The record holds everything: the matrix already contains releases, offsets
// and rigid ends, so a step is one small product followed by a fixed change
// of axis convention, a fixed sign pattern and the forming of 34 rows.
#include <algorithm>
#include <cstring>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "line/beam_time.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

// Record layout: 327 doubles; NEQ and NROW are the two digits behind the
// decimal point of words 325 and 326, word 327 the element factor.
constexpr int32_t kBeamWords = 327;
constexpr int32_t kBeamNeqWord = 325;
constexpr int32_t kBeamNrowWord = 326;
constexpr int32_t kBeamFactorWord = 327;
constexpr int32_t kBeamDof = 12;
constexpr int32_t kBeamRows = 26;  // declared rows of STRS
constexpr int32_t kBeamOut = 34;   // rows of a step's result

// Section tables of the second file.
constexpr int32_t kSectionBeam = 2;     // BEAM
constexpr int32_t kSectionInitial = 37; // ITBM

// Rows 13..34 of the result from the forces F(1..12) and the section factors
// G(13..26) after the axis change.
void beam_stress_rows(double* F, const double* G) {
  // Both are used with their 1-based row numbers.
  auto f = [F](int r) -> double& { return F[r - 1]; };
  auto g = [G](int r) { return G[r - 1]; };
  f(13) = -f(1) * g(13);
  f(14) = -f(2) * g(14);
  f(15) = -f(3) * g(15);
  f(16) = -f(6) * g(16);
  f(17) = -f(6) * g(17);
  f(18) = f(5) * g(18);
  f(19) = f(5) * g(19);
  f(20) = f(7) * g(20);
  f(21) = f(8) * g(21);
  f(22) = f(9) * g(22);
  f(23) = f(12) * g(23);
  f(24) = f(12) * g(24);
  f(25) = -f(11) * g(25);
  f(26) = -f(11) * g(26);
  // Corner stresses: axial plus the two bending stresses of the corner.
  f(27) = f(13) + f(17) + f(18);
  f(28) = f(13) + f(16) + f(18);
  f(29) = f(13) + f(16) + f(19);
  f(30) = f(13) + f(17) + f(19);
  f(31) = f(20) + f(24) + f(25);
  f(32) = f(20) + f(23) + f(25);
  f(33) = f(20) + f(23) + f(26);
  f(34) = f(20) + f(24) + f(26);
}

}  // namespace

void MODFLOC(VecRef<double> SIG) {
  for (int64_t t = 1; t <= 10; t += 3) {
    const double b = SIG(t + 1);
    const double c = SIG(t + 2);
    SIG(t + 1) = -c;
    SIG(t + 2) = b;
  }
  std::swap(SIG(14), SIG(15));
  for (int64_t r = 16; r <= 19; ++r) SIG(r) = -SIG(r);
  std::swap(SIG(21), SIG(22));
  for (int64_t r = 23; r <= 26; ++r) SIG(r) = -SIG(r);
}

namespace line_detail {

bool read_initial_forces(KernelState& K, int32_t ID_S, int32_t NVAL, VecRef<int32_t> INUM_SERIAL,
                         Mat<double>& RST_INITIAL) {
  const RunContext& R = K.run;
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, R.HIST_CASE, ID_S, first, found);
  if (found == 0) return false;
  RST_INITIAL.resize(NVAL, R.NUM_ITEMS);
  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    VecRef<double> col(RST_INITIAL.col(p), NVAL, RST_INITIAL.name());
    read_f64(K, UNIT_SECOND, first + INUM_SERIAL(p) - 1, col, NVAL);
  }
  return true;
}

void remove_initial_state(KernelState& K, int32_t kind, int32_t serial, int32_t NEQ,
                          VecRef<int32_t> LM, Vec<double>& DISP_INIT, Mat<double>& DISP_EQ) {
  const RunContext& R = K.run;
  if (K.inactive.NUM_INACTIVE <= 0) return;
  int32_t flag = 0;
  CHECK_INACTIVE_ELEM(K, kind, serial, R.HIST_CASE, flag);
  if (flag != 1) return;
  if (R.DIRECT_FILE_NO == 1) {
    DISP_EQ.fill(0.0);
    return;
  }
  DISP_EQUATION_INITIAL(K, DISP_INIT.ref(), NEQ, LM);
  for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
    for (int32_t j = 1; j <= NEQ; ++j) DISP_EQ(j, s) = DISP_EQ(j, s) - DISP_INIT(j);
  }
}

void deliver_rows(KernelState& K, Tdsp& TDSP, Mat<double>& SSIG, int64_t p) {
  const RunContext& R = K.run;
  if (R.REQUEST_MODE == 1) {
    const int64_t n = R.NUM_STEPS;
    const bool fits = n <= TDSP.cols() && TDSP.allocated() && SSIG.rows() == 34;
    for (int64_t k = 1; k <= 34; ++k) {
      if (fits && n > 0) {
        double* row = TDSP.row(k);
        const double* src = SSIG.data() + (k - 1);
        for (int64_t s = 0; s < n; ++s) row[s] = src[s * 34];
      } else {
        for (int64_t s = 1; s <= n; ++s) TDSP(k, s) = SSIG(k, s);
      }
    }
  } else {
    for (int64_t k = 1; k <= 34; ++k) TDSP(k, p) = SSIG(k, 1);
  }
}

}  // namespace line_detail

void BEAM_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS) {
  (void)NCOLS;
  RunContext& R = K.run;
  LineState& L = K.line;
  Vec<double>& SA = L.BEAM_SA;
  Vec<int32_t>& LM = L.BEAM_LM;
  Mat<double>& STRS = L.BEAM_STRS;
  Vec<double>& SIG = L.BEAM_SIG;
  Vec<double>& SIG_SAVE = L.BEAM_SIG_SAVE;
  Vec<double>& SIG_OUT = L.BEAM_SIG_OUT;
  const bool hnq = std::memcmp(K.archive.PRODUCT_TAG.data(), "H.N.Q", 5) == 0;

  // DISP_EQUATION is asked for no node-axis copy, so it needs no storage.
  Mat<double> DISP_EQ("DISP_EQ", kBeamDof, R.NUM_STEPS);
  MatRef<double> DISP_NO(nullptr, 0, 0, "DISP_NO");
  Mat<double> SSIG("SSIG", kBeamOut, R.NUM_STEPS);
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  const bool has_initial =
      line_detail::read_initial_forces(K, kSectionInitial, 12, INUM_SERIAL, RST_INITIAL);

  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    const int32_t serial = INUM_SERIAL(p);
    R.CURRENT_ELEM = serial;
    int64_t first = 0;
    int32_t found = 0;
    RF_BIN_T(K, ID, kSectionBeam, first, found);
    read_f64(K, UNIT_SECOND, first + serial - 1, SA.ref(), kBeamWords);

    // The counts share their words with the node numbers when the record is
    // full (NEQ 12, NROW 26); with fewer equations the node pair moves up
    // behind the matrix.
    const int32_t NROW = packed_count(SA(kBeamNrowWord));
    const int32_t NEQ = packed_count(SA(kBeamNeqWord));
    for (int32_t i = 1; i <= NEQ; ++i) LM(i) = trunc_i32(SA(i));
    const int64_t behind = int64_t{NEQ} * (int64_t{NROW} + 1);
    int32_t nodes[2] = {trunc_i32(SA(behind + 1)), trunc_i32(SA(behind + 2))};
    VecRef<int32_t> IIA(nodes, 2, "IIA");
    const double factor = SA(kBeamFactorWord);

    DISP_EQUATION(K, kBeamDof, DISP_EQ.ref(), DISP_NO, NEQ, LM.ref(), IIA, 2, 1);
    line_detail::remove_initial_state(K, INACTIVE_KIND_BEAM, serial, NEQ, LM.ref(),
                                      L.BEAM_DISP_INIT, DISP_EQ);

    // The matrix, column by column, NROW values per column.
    STRS.fill(0.0);
    for (int32_t j = 1; j <= NEQ; ++j) {
      for (int32_t r = 1; r <= NROW; ++r) {
        STRS(r, j) = SA(int64_t{NEQ} + int64_t{j - 1} * NROW + r);
      }
    }

    // Section stress factors: end i from column 1, end j from column 4.
    SIG.fill(0.0);
    for (int64_t r = 13; r <= 19; ++r) SIG(r) = STRS(r, 1);
    for (int64_t r = 20; r <= 26; ++r) SIG(r) = STRS(r, 4);
    for (int64_t r = 1; r <= 14; ++r) SIG_SAVE(r) = SIG(12 + r);

    // Rows 13..NROW of the product land on the factors and are thrown away
    // when the factors are put back, so only rows 1..12 need forming when
    // the record's shape fits the declared arrays.
    const bool fits = NEQ >= 0 && NEQ <= kBeamDof && NROW >= 0 && NROW <= kBeamRows;
    const int32_t nforce = std::min(NROW, kBeamDof);
    // Unchecked 1-based access for the step loop; every row used lies
    // within the declared extents.
    double* sig_data = SIG.data();
    double* out_data = SIG_OUT.data();
    auto sig = [sig_data](int r) -> double& { return sig_data[r - 1]; };
    auto out = [out_data](int r) -> double& { return out_data[r - 1]; };
    const double* strs = STRS.data();
    const double* save = SIG_SAVE.data();
    const double* init = has_initial ? RST_INITIAL.col(p) : nullptr;

    for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
      std::fill(sig_data, sig_data + 12, 0.0);
      if (fits) {
        const double* d = DISP_EQ.col(s);
        for (int32_t j = 0; j < NEQ; ++j) {
          const double dj = d[j];
          const double* c = strs + int64_t{j} * kBeamRows;
          for (int32_t r = 0; r < nforce; ++r) sig_data[r] += c[r] * dj;
        }
      } else {
        for (int32_t r = 1; r <= NROW; ++r) {
          for (int32_t j = 1; j <= NEQ; ++j) SIG(r) = SIG(r) + STRS(r, j) * DISP_EQ(j, s);
        }
      }
      // The axis change must always meet the stored factors.
      std::copy(save, save + 14, sig_data + 12);
      MODFLOC(SIG.ref());

      // End i and end j do not share a sign convention.
      sig(1) = -sig(1);
      sig(2) = -sig(2);
      sig(3) = -sig(3);
      sig(4) = -sig(4);
      sig(6) = -sig(6);
      sig(11) = -sig(11);

      std::fill(out_data, out_data + kBeamOut, 0.0);
      for (int k = 1; k <= 12; ++k) out(k) = sig(k);
      if (init != nullptr) {
        for (int k = 1; k <= 12; ++k) out(k) = out(k) + init[k - 1];
      }
      // The element factor scales the initial forces as well.
      if (hnq) {
        for (int k = 1; k <= 12; ++k) out(k) = out(k) * factor;
      }
      beam_stress_rows(out_data, sig_data);
      std::copy(out_data, out_data + kBeamOut, SSIG.col(s));
    }

    line_detail::deliver_rows(K, TDSP, SSIG, p);
  }
}

}  // namespace respcore
