// Wall beam history: the beam's history for the element with a warping
// freedom at each end. The two extra force rows are the bimoments of end i
// and end j; they reach the corner stresses through the warping factors.
#include <algorithm>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/kernel_state.hpp"
#include "line/beam_time.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

// Record layout: 1053 doubles; NEQ and NROW are the two digits behind the
// decimal point of words 1051 and 1052. Behind the matrix come the node
// pair and the two scale words a and b.
constexpr int32_t kWallWords = 1053;
constexpr int32_t kWallNeqWord = 1051;
constexpr int32_t kWallNrowWord = 1052;
constexpr int32_t kWallDof = 14;
constexpr int32_t kWallRows = 72;   // declared rows of STRS
constexpr int32_t kWallProduct = 18;  // rows of the product that are kept
constexpr int32_t kWallOut = 34;    // delivered rows

// Section tables of the second file.
constexpr int32_t kSectionInitial = 105;  // ITBW
constexpr int32_t kSectionWallBeam = 106; // WBMM

// Result-set rows 19..96 that are formed, from the forces R(1..14) and the
// factors G(19..40) after the axis change.
void wall_stress_rows(double* Rs, const double* Gs) {
  auto R = [Rs](int r) -> double& { return Rs[r - 1]; };
  auto G = [Gs](int r) { return Gs[r - 1]; };
  // End i.
  R(19) = -R(1) * G(19);
  R(20) = -R(2) * G(20);
  R(21) = -R(3) * G(21);
  R(22) = -R(6) * G(22);
  R(23) = -R(6) * G(23);
  R(24) = R(5) * G(24);
  R(25) = R(5) * G(25);
  for (int i = 0; i < 4; ++i) R(26 + i) = -R(13) * G(33 + i);
  // End j.
  R(46) = R(7) * G(26);
  R(47) = R(8) * G(27);
  R(48) = R(9) * G(28);
  R(49) = R(12) * G(29);
  R(50) = R(12) * G(30);
  R(51) = -R(11) * G(31);
  R(52) = -R(11) * G(32);
  for (int i = 0; i < 4; ++i) R(53 + i) = R(14) * G(37 + i);
  // Corners: axial, the two bending stresses and the warping stress.
  R(73) = R(19) + R(23) + R(24) + R(26);
  R(74) = R(19) + R(22) + R(24) + R(27);
  R(75) = R(19) + R(22) + R(25) + R(28);
  R(76) = R(19) + R(23) + R(25) + R(29);
  R(85) = R(46) + R(50) + R(51) + R(53);
  R(86) = R(46) + R(49) + R(51) + R(54);
  R(87) = R(46) + R(49) + R(52) + R(55);
  R(88) = R(46) + R(50) + R(52) + R(56);
}

}  // namespace

void WMODFLOC(VecRef<double> SIG) {
  for (int64_t t = 1; t <= 10; t += 3) {
    const double b = SIG(t + 1);
    const double c = SIG(t + 2);
    SIG(t + 1) = -c;
    SIG(t + 2) = b;
  }
  std::swap(SIG(20), SIG(21));
  for (int64_t r = 22; r <= 25; ++r) SIG(r) = -SIG(r);
  std::swap(SIG(33), SIG(34));
  for (int64_t r = 35; r <= 38; ++r) SIG(r) = -SIG(r);
}

void WBEAM_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS) {
  (void)NCOLS;
  RunContext& R = K.run;
  LineState& L = K.line;
  Vec<double>& SA = L.WBEAM_SA;
  Vec<int32_t>& LM = L.WBEAM_LM;
  Mat<double>& STRS = L.WBEAM_STRS;
  Vec<double>& SIG = L.WBEAM_SIG;
  Vec<double>& SIG_SAVE = L.WBEAM_SIG_SAVE;
  Vec<double>& SIG_OUT = L.WBEAM_SIG_OUT;

  Mat<double> DISP_EQ("DISP_EQ", kWallDof, R.NUM_STEPS);
  MatRef<double> DISP_NO(nullptr, 0, 0, "DISP_NO");
  Mat<double> SSIG("SSIG", kWallOut, R.NUM_STEPS);
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  const bool has_initial =
      line_detail::read_initial_forces(K, kSectionInitial, 14, INUM_SERIAL, RST_INITIAL);

  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    const int32_t serial = INUM_SERIAL(p);
    R.CURRENT_ELEM = serial;
    int64_t first = 0;
    int32_t found = 0;
    RF_BIN_T(K, ID, kSectionWallBeam, first, found);
    read_f64(K, UNIT_SECOND, first + serial - 1, SA.ref(), kWallWords);

    const int32_t NEQ = packed_count(SA(kWallNeqWord));
    const int32_t NROW = packed_count(SA(kWallNrowWord));
    for (int32_t i = 1; i <= NEQ; ++i) LM(i) = trunc_i32(SA(i));
    const int64_t behind = int64_t{NEQ} * (int64_t{NROW} + 1);
    int32_t nodes[2] = {trunc_i32(SA(behind + 1)), trunc_i32(SA(behind + 2))};
    VecRef<int32_t> IIA(nodes, 2, "IIA");
    const double a = SA(behind + 3);
    const double b = SA(behind + 4);

    DISP_EQUATION(K, kWallDof, DISP_EQ.ref(), DISP_NO, NEQ, LM.ref(), IIA, 2, 1);
    line_detail::remove_initial_state(K, INACTIVE_KIND_WALL_BEAM, serial, NEQ, LM.ref(),
                                      L.WBEAM_DISP_INIT, DISP_EQ);

    STRS.fill(0.0);
    for (int32_t j = 1; j <= NEQ; ++j) {
      for (int32_t r = 1; r <= NROW; ++r) {
        STRS(r, j) = SA(int64_t{NEQ} + int64_t{j - 1} * NROW + r);
      }
    }

    // Factor words: end i section factors (column 1), end j section factors
    // (column 4), then the warping and further factors (column 1).
    SIG.fill(0.0);
    for (int64_t r = 19; r <= 25; ++r) SIG(r) = STRS(r, 1);
    for (int64_t r = 26; r <= 32; ++r) SIG(r) = STRS(r, 4);
    for (int64_t r = 33; r <= 52; ++r) SIG(r) = STRS(r, 1);
    for (int64_t r = 1; r <= 34; ++r) SIG_SAVE(r) = SIG(18 + r);

    // Product rows 19..52 land on the factors and are replaced by them, and
    // rows behind 52 are never read: rows 1..18 carry the step.
    const bool fits = NEQ >= 0 && NEQ <= kWallDof && NROW >= 0 && NROW <= kWallRows;
    const int32_t nkept = std::min(NROW, kWallProduct);
    double* sig_data = SIG.data();
    double* out_data = SIG_OUT.data();
    auto sig = [sig_data](int r) -> double& { return sig_data[r - 1]; };
    auto out = [out_data](int r) -> double& { return out_data[r - 1]; };
    const double* strs = STRS.data();
    const double* save = SIG_SAVE.data();
    const double* init = has_initial ? RST_INITIAL.col(p) : nullptr;

    for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
      std::fill(sig_data, sig_data + kWallProduct, 0.0);
      if (fits) {
        const double* d = DISP_EQ.col(s);
        for (int32_t j = 0; j < NEQ; ++j) {
          const double dj = d[j];
          const double* c = strs + int64_t{j} * kWallRows;
          for (int32_t r = 0; r < nkept; ++r) sig_data[r] += c[r] * dj;
        }
      } else {
        for (int32_t r = 1; r <= NROW; ++r) {
          for (int32_t j = 1; j <= NEQ; ++j) SIG(r) = SIG(r) + STRS(r, j) * DISP_EQ(j, s);
        }
      }
      std::copy(save, save + 34, sig_data + 18);
      WMODFLOC(SIG.ref());

      // Rows 15..18 from the scale words, with the values of rows 15 and 16
      // before the change on the right.
      const double s15 = sig(15);
      const double s16 = sig(16);
      sig(15) = a * s15;
      sig(16) = -b * s16;
      sig(17) = -sig(4) + a * s15;
      sig(18) = -sig(10) - b * s16;

      for (int k = 1; k <= kWallProduct; ++k) out(k) = sig(k);
      for (int k : {1, 2, 3, 4, 6, 11, 13, 15, 17}) out(k) = -out(k);
      if (init != nullptr) {
        for (int k = 1; k <= 14; ++k) out(k) = out(k) + init[k - 1];
      }
      wall_stress_rows(out_data, sig_data);

      double* col = SSIG.col(s);
      for (int k = 1; k <= 12; ++k) col[k - 1] = out(k);
      for (int k = 0; k < 7; ++k) col[12 + k] = out(19 + k);
      for (int k = 0; k < 7; ++k) col[19 + k] = out(46 + k);
      for (int k = 0; k < 4; ++k) col[26 + k] = out(73 + k);
      for (int k = 0; k < 4; ++k) col[30 + k] = out(85 + k);
    }

    line_detail::deliver_rows(K, TDSP, SSIG, p);
  }
}

}  // namespace respcore
