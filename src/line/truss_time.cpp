// Truss history: axial force and axial stress at both ends of each listed
// truss, for each requested step, from the element's stored force-recovery
// matrix and its nodal displacements.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "line/line_element.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"
#include "nodal/snapshot_motion.hpp"

namespace respcore {

namespace {

// The record (TRUS): NDOF equation numbers, STRS(NSTR, NDOF) by columns, and
// in its last three words NDOF, NSTR and the force factor. The extended
// record (EMBT, tag "H.N.Q" only) has 1245 words and the element's node lists.
constexpr int32_t kWords = 63;
constexpr int32_t kExtendedWords = 1245;
constexpr int32_t kRows = 4;  // of a step: two end forces, two end stresses

// STRS(NSTR, NDOF), the recovery matrix as it lies in the record array SA,
// column by column behind the equation numbers: entry (i, j) is
// SA(BASE + i + (j - 1) NSTR), zero past SA. It is read where it lies rather
// than copied, so that no count of the record decides the size of an array.
class RecordMatrix {
 public:
  RecordMatrix(const Vec<double>& SA, int64_t base, int64_t nstr, int64_t ndof)
      : sa_(SA.data()), n_sa_(SA.size()), base_(base), nstr_(nstr), ndof_(ndof) {}
  // Whether rows 1..R and columns 1..C lie within the matrix.
  bool holds(int64_t r, int64_t c) const { return r <= nstr_ && c <= ndof_; }
  // Entry (i, j) of a matrix that holds it.
  double raw(int64_t i, int64_t j) const {
    const int64_t k = base_ + i + (j - 1) * nstr_;
    return k <= n_sa_ ? sa_[k - 1] : 0.0;
  }
  // Entry (i, j), checked as an array subscript of STRS.
  double operator()(int64_t i, int64_t j) const {
    if (i < 1 || i > nstr_) return bound_fail<double>("STRS", i, 1, std::max<int64_t>(nstr_, 0));
    if (j < 1 || j > ndof_) return bound_fail<double>("STRS", j, 1, std::max<int64_t>(ndof_, 0));
    return raw(i, j);
  }

 private:
  const double* sa_;
  int64_t n_sa_, base_, nstr_, ndof_;
};

// The step S of the element: the two end forces come with opposite signs;
// both ends carry their mean, tension positive; the initial forces are added
// before the stresses are formed, and the factor scales the forces alone.
template <class Strs, class Disp, class Out>
void truss_step(Strs STRS, Disp D, Out SSIG, int64_t s, int64_t NDOF, const double* init,
                bool scaled, double SCALE) {
  double SIG[2] = {0.0, 0.0};
  for (int64_t i = 1; i <= 2; ++i) {
    for (int64_t j = 1; j <= NDOF; ++j) SIG[i - 1] += STRS(i, j) * D(j, s);
  }
  const double F = (SIG[1] - SIG[0]) * 0.5;
  SSIG(1, s) = F;
  SSIG(2, s) = F;
  if (init != nullptr) {
    SSIG(1, s) = SSIG(1, s) + init[0];
    SSIG(2, s) = SSIG(2, s) + init[1];
  }
  SSIG(3, s) = SSIG(1, s) * STRS(3, 1);
  SSIG(4, s) = SSIG(2, s) * STRS(4, 1);
  if (scaled) {
    SSIG(1, s) = SSIG(1, s) * SCALE;
    SSIG(2, s) = SSIG(2, s) * SCALE;
  }
}

// Whether the record REC (kWords words) is one the snapshot road reads: not
// extended, its equations within the record and its matrix of at least four
// rows within SA (of SA_SIZE words), so that nothing in it is reported.
bool plain_record(const char* rec, int64_t sa_size) {
  double w[3];
  std::memcpy(w, rec + (kWords - 3) * 8, sizeof w);
  const int64_t ndof = trunc_i32(w[0]);
  const int64_t nstr = trunc_i32(w[1]);
  return trunc_i32(w[2]) >= 0 && ndof >= 1 && ndof <= kWords && nstr >= 4 &&
         ndof + nstr * ndof <= sa_size;
}

// The element of the plain record REC on the snapshot road: what the usual
// reading delivers to column COL of ROWS, from the same words and in the same
// order of operations. It reads the record where it lies rather than in SA:
// the next usual element clears SA before it reads, and the last element of
// the call leaves its record there (keep_record).
void snapshot_truss(const char* rec, SnapshotMotion& motion, const double* init, bool scaled,
                    const std::array<double*, kRows>& rows, int64_t col) {
  auto word = [rec](int64_t i) {
    double w;
    std::memcpy(&w, rec + (i - 1) * 8, 8);
    return w;
  };
  const int64_t NDOF = trunc_i32(word(kWords - 2));
  const int64_t NSTR = trunc_i32(word(kWords - 1));
  double SCALE = word(kWords);
  if (SCALE < 0.0) SCALE = -SCALE;
  int32_t lm[kWords];
  double disp[kWords];
  for (int64_t i = 1; i <= NDOF; ++i) lm[i - 1] = trunc_i32(word(i));
  motion.displacements(lm, NDOF, disp);
  // The matrix lies behind the equation numbers, NSTR rows per column; past
  // the record SA would hold zeros.
  auto strs = [&](int64_t i, int64_t j) {
    const int64_t k = NDOF + i + (j - 1) * NSTR;
    return k <= kWords ? word(k) : 0.0;
  };
  double out[kRows];
  truss_step(
      strs, [&](int64_t j, int64_t) { return disp[j - 1]; },
      [&](int64_t r, int64_t) -> double& { return out[r - 1]; }, 1, NDOF, init, scaled, SCALE);
  for (int r = 0; r < kRows; ++r) rows[static_cast<size_t>(r)][col] = out[r];
}

// SA as the usual reading of the plain record REC leaves it, from SA as it
// was left by an element whose words reached DIRTY.
void keep_record(const char* rec, Vec<double>& SA, int64_t dirty) {
  std::fill(SA.data(), SA.data() + dirty, 0.0);
  std::memcpy(SA.data(), rec, kWords * 8);
}

}  // namespace

void TRUSS_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
                LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL) {
  Vec<double>& SA = L.TRUSS_SA;
  const bool hnq = product_is(A.state, "H.N.Q");

  Mat<double> SSIG("SSIG", kRows, R.NUM_STEPS);
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  const bool has_initial =
      line_detail::read_initial_forces(R, A, sections::ITTR, 2, INUM_SERIAL, RST_INITIAL);
  // DISP_EQUATION is asked for no node-axis copy, so it needs no storage.
  MatRef<double> DISP_NO(nullptr, 0, 0, "DISP_NO");

  // The element's arrays, made once and set anew for each element (setting
  // an array to its extent reuses its storage).
  Vec<int32_t> LM("LM");
  Vec<int32_t> IIA("IIA");
  Mat<double> DISP_EQ("DISP_EQ", 0, 0);
  // Each element starts from a record of zeros. Only the words the reads
  // and swaps of the last element reached can be other than zero; an earlier
  // call may have left any of them.
  int64_t dirty = SA.size();
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;

  // A snapshot of many trusses looks up TRUS and the direct file once, with
  // an element read the usual way, and then reads the plain records and
  // their displacements through windows on the two sections (see
  // SnapshotMotion). Such an element's look-ups would only repeat what the
  // last usual one found and left, and it has nothing to report; any other
  // element is read the usual way. Of an envelope request's steps only the
  // first is delivered: the road forms that one alone, since a plain record
  // forms the others (from zero displacements) without a report.
  const bool road = SnapshotMotion::applies(R) && IT.NUM_INACTIVE <= 0 &&
                    R.NUM_ITEMS >= kSnapshotItems && TDSP.allocated() &&
                    TDSP.cols() >= R.NUM_ITEMS && SA.size() >= kWords;
  bool windows = false;  // made
  bool pinned = false;   // the last usual element left the look-ups they replace
  SectionWindow records;
  SnapshotMotion motion;
  PinnedSection trus_pin;
  std::array<double*, kRows> rows{};

  for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
    const int32_t serial = INUM_SERIAL(k);
    const char* plain = pinned ? records.record(serial, kWords * 8) : nullptr;
    if (plain != nullptr && plain_record(plain, SA.size())) {
      snapshot_truss(plain, motion, has_initial ? RST_INITIAL.col(k) : nullptr, hnq, rows, k - 1);
      if (k == R.NUM_ITEMS) keep_record(plain, SA, dirty);
      continue;
    }

    std::fill(SA.data(), SA.data() + dirty, 0.0);
    dirty = std::min<int64_t>(kWords, SA.size());
    const SectionRef trus = A.find(sections::TRUS, ID);
    if (road && !windows) trus_pin = A.pin(trus);
    A.read_f64(trus, serial, SA.ref(), kWords);

    // A negative factor marks an element with an extended record, which
    // only the tag "H.N.Q" reads; its factor and word 1245 change places.
    const bool extended = trunc_i32(SA(kWords)) < 0;
    int32_t reclen = kWords;
    int64_t NNODE = 2;
    double SCALE = SA(kWords);
    if (extended && hnq) {
      A.read_f64(A.find(sections::EMBT, ID), serial, SA.ref(), kExtendedWords);
      dirty = std::min<int64_t>(kExtendedWords, SA.size());
      const double F = SA(kWords);
      const double G = SA(kExtendedWords);
      SA(kExtendedWords) = F;
      SA(kWords) = G;
      SCALE = -F;
      reclen = kExtendedWords;
      NNODE = int64_t{trunc_i32(SA(1201))} + trunc_i32(SA(1202));
    }
    if (SCALE < 0.0) SCALE = -SCALE;

    const int32_t NDOF_WORD = trunc_i32(SA(reclen - 2));
    const int32_t NSTR = trunc_i32(SA(reclen - 1));
    // The equation numbers past SA read as zero (the first is reported); past
    // the record SA holds zeros. An element that claims more equations than
    // its record holds therefore has a matrix of zeros behind them, and its
    // equations past the record contribute nothing: it is cut there, so that
    // no count of the record sizes its arrays.
    int64_t NDOF = SA.fit(1, NDOF_WORD);
    if (NDOF > reclen) NDOF = reclen;
    LM.resize(NDOF);
    for (int64_t i = 1; i <= NDOF; ++i) LM(i) = trunc_i32(SA(i));

    // The node lists: NA nodes from SA(1204), NB from SA(1223), the second
    // behind the first. Only the nodes whose six rows reach into LM take part
    // in the motion, and only those IIA holds.
    NNODE = std::clamp<int64_t>(NNODE, 0, INT32_MAX);
    const int64_t nodes = std::min(NNODE, (NDOF + 5) / 6);
    IIA.resize(nodes);
    if (extended) {
      const int64_t NA = trunc_i32(SA(1201));
      const int64_t NB = trunc_i32(SA(1202));
      const int64_t na = SA.fit(1204, std::min(NA, nodes));
      for (int64_t i = 1; i <= na; ++i) IIA(i) = trunc_i32(SA(1203 + i));
      // Node i of the second list is IIA(NA + i).
      const int64_t lo = std::max<int64_t>(1, 1 - NA);
      const int64_t hi = std::min(NB, nodes - NA);
      const int64_t nb = lo > hi ? 0 : SA.fit(1222 + lo, hi - lo + 1);
      for (int64_t i = lo; i < lo + nb; ++i) IIA(NA + i) = trunc_i32(SA(1222 + i));
    }

    DISP_EQ.resize(NDOF, R.NUM_STEPS);
    SectionRef dmed;
    DISP_EQUATION(M, static_cast<int32_t>(NDOF), DISP_EQ.ref(), DISP_NO, static_cast<int32_t>(NDOF),
                  LM.ref(), IIA.ref(), static_cast<int32_t>(NNODE), 1, &dmed);
    line_detail::remove_initial_state(R, A, IT, INACTIVE_KIND_TRUSS, serial,
                                      static_cast<int32_t>(NDOF), LM.ref(), L.TRUSS_DISP_INIT,
                                      DISP_EQ);
    // An extended record looks up EMBT between the two.
    pinned =
        road && !(extended && hnq) && trus.status == LOOKUP_FOUND && dmed.status == LOOKUP_FOUND;
    const bool first_pin = pinned && !windows;
    if (first_pin) {
      records = SectionWindow(trus_pin);
      motion = SnapshotMotion(R, A.pin(dmed));
      windows = true;
    }

    // The matrix from word NDOF_WORD + 1 on; what runs past SA is reported
    // once and reads as zero.
    const RecordMatrix STRS(SA, std::max<int64_t>(NDOF_WORD, 0), NSTR, NDOF);
    const int64_t nvals = int64_t{std::max(NSTR, 0)} * std::max<int64_t>(NDOF, 0);
    SA.fit(std::max<int64_t>(NDOF_WORD, 0) + 1, nvals);

    const double* init = has_initial ? RST_INITIAL.col(k) : nullptr;
    // Rows 1..4 of column 1 and rows 1, 2 of every column are read.
    const bool inside = STRS.holds(4, NDOF) && NDOF >= 1;
    for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
      if (inside)
        truss_step([&](int64_t i, int64_t j) { return STRS.raw(i, j); }, DISP_EQ.raw(), SSIG.raw(),
                   s, NDOF, init, hnq, SCALE);
      else
        truss_step(STRS, DISP_EQ.ref(), SSIG.ref(), s, NDOF, init, hnq, SCALE);
    }

    deliver_rows(TDSP, R.REQUEST_MODE, SSIG, kRows, k);
    if (first_pin) {
      for (int r = 0; r < kRows; ++r) rows[static_cast<size_t>(r)] = TDSP.row(r + 1);
    }
  }
}

}  // namespace respcore
