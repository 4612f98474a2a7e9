// Beam and wall beam histories: end forces, section stresses and corner
// stresses of each listed two-node element, for each requested step, from
// the element's stored recovery matrix and section stress factors.
//
// The record holds everything: the matrix already contains releases, offsets
// and rigid ends, so a step is one small product followed by a fixed change
// of axis convention, a fixed sign pattern and the forming of the result
// rows. The wall beam has a warping freedom at each end: two more force rows
// (the bimoments), two scale words, and a warping term in every corner.
#include "line/line_element.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"
#include "nodal/snapshot_motion.hpp"

namespace respcore {

namespace {

// Rows FIRST..LAST of STRS column COLUMN are factor words of the step vector.
struct FactorBlock {
  int32_t first, last, column;
};
// Result row OUT := (-)F(FORCE) * G(FACTOR), F the result set, G the step
// vector after the axis change.
struct StressRow {
  int32_t out, force;
  bool negate;
  int32_t factor;
};
// Result row OUT := the sum of the result rows TERMS (a zero ends the list).
struct CornerRow {
  int32_t out;
  int32_t terms[4];
};

// What tells a beam from a wall beam: its record, its arrays and the rows of
// its step.
struct LineLayout {
  SectionName record, initial;
  int32_t inactive_kind;
  int32_t words;                // doubles of the record
  int32_t neq_word, nrow_word;  // packed words of the counts
  int32_t dof;                  // freedoms, rows of DISP_EQ and LM
  int32_t rows;                 // declared rows of STRS
  int32_t kept;                 // rows of the product that carry the step
  int32_t saved;                // factor words behind them
  std::span<const FactorBlock> factors;
  void (*axis_change)(VecRef<double>);
  bool element_factor;  // the last word scales the forces under "H.N.Q"
  bool scale_words;     // two scale words behind the node pair form rows 15..18
  std::span<const int32_t> negated;
  std::span<const StressRow> stress;
  std::span<const CornerRow> corners;
  std::span<const int32_t> delivered;  // the result row of each delivered row
  LineElementArrays LineState::*arrays;
};

constexpr FactorBlock kBeamFactors[] = {{13, 19, 1}, {20, 26, 4}};
constexpr int32_t kBeamNegated[] = {1, 2, 3, 4, 6, 11};
constexpr StressRow kBeamStress[] = {{13, 1, true, 13},  {14, 2, true, 14},   {15, 3, true, 15},
                                     {16, 6, true, 16},  {17, 6, true, 17},   {18, 5, false, 18},
                                     {19, 5, false, 19}, {20, 7, false, 20},  {21, 8, false, 21},
                                     {22, 9, false, 22}, {23, 12, false, 23}, {24, 12, false, 24},
                                     {25, 11, true, 25}, {26, 11, true, 26}};
// Corner stresses: axial plus the two bending stresses of the corner.
constexpr CornerRow kBeamCorners[] = {
    {27, {13, 17, 18, 0}}, {28, {13, 16, 18, 0}}, {29, {13, 16, 19, 0}}, {30, {13, 17, 19, 0}},
    {31, {20, 24, 25, 0}}, {32, {20, 23, 25, 0}}, {33, {20, 23, 26, 0}}, {34, {20, 24, 26, 0}}};
constexpr int32_t kBeamDelivered[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                      13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
                                      25, 26, 27, 28, 29, 30, 31, 32, 33, 34};

constexpr FactorBlock kWallFactors[] = {{19, 25, 1}, {26, 32, 4}, {33, 52, 1}};
constexpr int32_t kWallNegated[] = {1, 2, 3, 4, 6, 11, 13, 15, 17};
constexpr StressRow kWallStress[] = {
    // End i, with the bimoment times the warping factors.
    {19, 1, true, 19},
    {20, 2, true, 20},
    {21, 3, true, 21},
    {22, 6, true, 22},
    {23, 6, true, 23},
    {24, 5, false, 24},
    {25, 5, false, 25},
    {26, 13, true, 33},
    {27, 13, true, 34},
    {28, 13, true, 35},
    {29, 13, true, 36},
    // End j.
    {46, 7, false, 26},
    {47, 8, false, 27},
    {48, 9, false, 28},
    {49, 12, false, 29},
    {50, 12, false, 30},
    {51, 11, true, 31},
    {52, 11, true, 32},
    {53, 14, false, 37},
    {54, 14, false, 38},
    {55, 14, false, 39},
    {56, 14, false, 40}};
// Corners: axial, the two bending stresses and the warping stress.
constexpr CornerRow kWallCorners[] = {
    {73, {19, 23, 24, 26}}, {74, {19, 22, 24, 27}}, {75, {19, 22, 25, 28}}, {76, {19, 23, 25, 29}},
    {85, {46, 50, 51, 53}}, {86, {46, 49, 51, 54}}, {87, {46, 49, 52, 55}}, {88, {46, 50, 52, 56}}};
constexpr int32_t kWallDelivered[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                      19, 20, 21, 22, 23, 24, 25, 46, 47, 48, 49, 50,
                                      51, 52, 73, 74, 75, 76, 85, 86, 87, 88};

// Rows delivered per step.
constexpr int32_t kLineRows = 34;

// The record: 327 doubles; NEQ and NROW are the two digits behind the decimal
// point of words 325 and 326, word 327 the element factor.
const LineLayout kBeam{sections::BEAM,
                       sections::ITBM,
                       INACTIVE_KIND_BEAM,
                       327,
                       325,
                       326,
                       12,
                       26,
                       12,
                       14,
                       kBeamFactors,
                       MODFLOC,
                       true,
                       false,
                       kBeamNegated,
                       kBeamStress,
                       kBeamCorners,
                       kBeamDelivered,
                       &LineState::beam};
// The record: 1053 doubles; the counts in words 1051 and 1052; behind the
// matrix the node pair and the two scale words a and b.
const LineLayout kWallBeam{sections::WBMM,
                           sections::ITBW,
                           INACTIVE_KIND_WALL_BEAM,
                           1053,
                           1051,
                           1052,
                           14,
                           72,
                           18,
                           34,
                           kWallFactors,
                           WMODFLOC,
                           false,
                           true,
                           kWallNegated,
                           kWallStress,
                           kWallCorners,
                           kWallDelivered,
                           &LineState::wall_beam};

// The axis change of a step vector whose section factors of end i start at
// row I and those of end j at row J.
void change_axes(VecRef<double> SIG, int64_t i, int64_t j) {
  for (int64_t t = 1; t <= 10; t += 3) {
    const double b = SIG(t + 1);
    const double c = SIG(t + 2);
    SIG(t + 1) = -c;
    SIG(t + 2) = b;
  }
  std::swap(SIG(i), SIG(i + 1));
  for (int64_t r = i + 2; r <= i + 5; ++r) SIG(r) = -SIG(r);
  std::swap(SIG(j), SIG(j + 1));
  for (int64_t r = j + 2; r <= j + 5; ++r) SIG(r) = -SIG(r);
}

// SIG(r) += sum over j of STRS(r, j) DISP(j, s), for r = 1..NROWS.
template <class Sig, class Strs, class Disp>
void step_product(Sig SIG, Strs STRS, Disp D, int64_t s, int64_t nrows, int64_t neq) {
  for (int64_t r = 1; r <= nrows; ++r) {
    for (int64_t j = 1; j <= neq; ++j) SIG(r) = SIG(r) + STRS(r, j) * D(j, s);
  }
}

// What an element's record holds beside its matrix. NEQ and NROW are the
// counts as the record gives them (0..99); NEQ_IN and NROW_IN the part of
// them that the element's arrays hold, which is all a step can use.
struct LineRecord {
  int32_t NEQ = 0, NROW = 0;
  int64_t neq_in = 0, nrow_in = 0;
  int32_t nodes[2] = {};
  double factor = 1.0;      // the element factor (beam)
  double a = 0.0, b = 0.0;  // the scale words (wall beam)
};

// Decodes the record in SA: its counts, LM, the node pair and the words
// behind the matrix.
LineRecord decode_record(const LineLayout& T, LineElementArrays& E) {
  Vec<double>& SA = E.SA;
  LineRecord rec;
  // The counts share their words with the node numbers when the record is
  // full; with fewer equations the node pair moves up behind the matrix.
  rec.NEQ = packed_count(SA(T.neq_word));
  rec.NROW = packed_count(SA(T.nrow_word));
  // Equation numbers past LM cannot be kept: the first is reported, and the
  // step uses the ones LM holds.
  const int64_t nlm = E.LM.fit(1, rec.NEQ);
  for (int64_t i = 1; i <= nlm; ++i) E.LM(i) = trunc_i32(SA(i));
  const int64_t behind = int64_t{rec.NEQ} * (int64_t{rec.NROW} + 1);
  rec.nodes[0] = trunc_i32(SA(behind + 1));
  rec.nodes[1] = trunc_i32(SA(behind + 2));
  if (T.element_factor) rec.factor = SA(T.words);
  if (T.scale_words) {
    rec.a = SA(behind + 3);
    rec.b = SA(behind + 4);
  }
  return rec;
}

// The matrix, column by column, NROW values per column, and the factor words
// of the step vector, saved to be put back after each step's product. Rows
// and columns past STRS, and values past the record array, are reported
// once each; what the arrays hold is filled, the rest stays zero.
void unpack_matrix(const LineLayout& T, LineElementArrays& E, LineRecord& rec) {
  Mat<double>& STRS = E.STRS;
  rec.nrow_in = STRS.fit_rows(rec.NROW);
  rec.neq_in = STRS.fit_cols(rec.NEQ);
  // Each column is copied whole where it lies in SA and cleared below; the
  // columns behind the last one copied are cleared together.
  const int64_t ld = STRS.rows();
  int64_t cleared_from = 1;  // the first column not yet set
  for (int64_t j = 1; j <= rec.neq_in; ++j) {
    // Column j lies at SA(NEQ + (j - 1) NROW + 1 ...): once a column runs past
    // SA, every later one starts past it.
    const int64_t start = int64_t{rec.NEQ} + (j - 1) * rec.NROW + 1;
    const int64_t n = E.SA.fit(start, rec.nrow_in);
    double* col = STRS.col(j);
    if (n > 0) std::copy_n(E.SA.data() + (start - 1), n, col);
    std::fill(col + n, col + ld, 0.0);
    cleared_from = j + 1;
    if (n < rec.nrow_in) break;
  }
  std::fill(STRS.data() + (cleared_from - 1) * ld, STRS.data() + STRS.cols() * ld, 0.0);
  E.SIG.fill(0.0);
  for (const FactorBlock& f : T.factors) {
    for (int64_t r = f.first; r <= f.last; ++r) E.SIG(r) = STRS(r, f.column);
  }
  for (int64_t r = 1; r <= T.saved; ++r) E.SIG_SAVE(r) = E.SIG(T.kept + r);
}

// The delivered rows of step S into COL, from the product of the element's
// matrix with the step's displacements. INIT: the element's initial end
// forces, or none; SCALED: the element factor applies.
void step_rows(const LineLayout& T, LineElementArrays& E, const LineRecord& rec,
               Mat<double>& DISP_EQ, int64_t s, const double* init, bool scaled, double* col) {
  Vec<double>& SIG = E.SIG;
  const RawVec<double> sig = SIG.raw();
  const RawVec<double> out = E.SIG_OUT.raw();
  std::fill(SIG.data(), SIG.data() + T.kept, 0.0);
  // Product rows behind the kept ones land on the factors and are thrown
  // away when the factors are put back, so only the kept rows are formed.
  // Rows and columns of the record past STRS (and past DISP_EQ, whose rows
  // are those of STRS's columns) read as zero: their terms add nothing, and
  // the product runs over what the arrays hold, unchecked.
  step_product(sig, E.STRS.raw(), DISP_EQ.raw(), s, std::min<int64_t>(rec.nrow_in, T.kept),
               rec.neq_in);
  // The axis change must always meet the stored factors.
  std::copy(E.SIG_SAVE.data(), E.SIG_SAVE.data() + T.saved, SIG.data() + T.kept);
  T.axis_change(SIG.ref());
  if (T.scale_words) {
    // Rows 15..18 from the scale words, with the values of rows 15 and 16
    // before the change on the right.
    const double s15 = sig(15);
    const double s16 = sig(16);
    sig(15) = rec.a * s15;
    sig(16) = -rec.b * s16;
    sig(17) = -sig(4) + rec.a * s15;
    sig(18) = -sig(10) - rec.b * s16;
  }

  // End i and end j do not share a sign convention.
  for (int32_t k = 1; k <= T.kept; ++k) out(k) = sig(k);
  for (const int32_t k : T.negated) out(k) = -out(k);
  if (init != nullptr) {
    for (int32_t k = 1; k <= T.dof; ++k) out(k) = out(k) + init[k - 1];
  }
  // The element factor scales the initial forces as well.
  if (scaled) {
    for (int32_t k = 1; k <= T.dof; ++k) out(k) = out(k) * rec.factor;
  }
  for (const StressRow& t : T.stress) {
    double f = out(t.force);
    if (t.negate) f = -f;
    out(t.out) = f * sig(t.factor);
  }
  for (const CornerRow& c : T.corners) {
    double v = out(c.terms[0]) + out(c.terms[1]);
    for (int i = 2; i < 4 && c.terms[i] != 0; ++i) v += out(c.terms[i]);
    out(c.out) = v;
  }
  for (int32_t k = 0; k < kLineRows; ++k) col[k] = out(T.delivered[static_cast<size_t>(k)]);
}

// Whether the record's counts fit the declared arrays.
bool fits(const LineLayout& T, int32_t NEQ, int32_t NROW) {
  return NEQ >= 0 && NEQ <= T.dof && NROW >= 0 && NROW <= T.rows;
}
bool fits(const LineLayout& T, const LineRecord& rec) { return fits(T, rec.NEQ, rec.NROW); }

// Whether the record REC (T.words words, as read) is one the snapshot road
// reads: its counts fit the arrays, so that nothing in it is reported.
bool plain_record(const LineLayout& T, const char* rec) {
  double neq, nrow;
  std::memcpy(&neq, rec + (T.neq_word - 1) * 8, 8);
  std::memcpy(&nrow, rec + (T.nrow_word - 1) * 8, 8);
  return fits(T, packed_count(neq), packed_count(nrow));
}

// Whether element SERIAL is one activated late in the case.
bool inactive(const RunContext& R, InactiveTables& IT, int32_t kind, int32_t serial) {
  if (IT.NUM_INACTIVE <= 0) return false;
  int32_t flag = 0;
  CHECK_INACTIVE_ELEM(IT, kind, serial, R.HIST_CASE, flag);
  return flag == 1;
}

// Row RESULT_COMP of the element over all steps into TDSP. Every delivered
// row of a step is affine in the step's displacements (a product with the
// record's matrix, fixed factors and sums), so the step is probed once for
// its map and the row is combined from the histories as they are read. A
// step leaves nothing that a later one reads.
void one_row(const LineLayout& T, const RunContext& R, LineElementArrays& E, const LineRecord& rec,
             const double* init, bool scaled, DispRow& row, Tdsp& TDSP) {
  Mat<double> X("DISP_EQ", T.dof, 1);
  double col[kLineRows];
  double coef[32];
  const int32_t C = R.RESULT_COMP;
  const double base = affine_probe(
      T.dof,
      [&](const double*) {
        step_rows(T, E, rec, X, 1, init, scaled, col);
        return col[C - 1];
      },
      X.data(), coef);
  row.combine(coef, base, TDSP.fresh_row(C));
}

void line_history(const LineLayout& T, const RunContext& R, ArchiveReader A, NodalMotion& M,
                  InactiveTables& IT, LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL) {
  LineElementArrays& E = L.*T.arrays;
  const bool scaled = T.element_factor && product_is(A.state, "H.N.Q");

  // One row of a long history (REQUEST_MODE 1) is combined from the
  // displacement histories; the step tables are then made only for an
  // element that cannot take that road.
  const bool combined = R.REQUEST_MODE == 1 && R.NUM_STEPS > kCombinedSteps &&
                        R.RESULT_COMP >= 1 && R.RESULT_COMP <= kLineRows;
  // DISP_EQUATION is asked for no node-axis copy, so it needs no storage.
  Mat<double> DISP_EQ("DISP_EQ", T.dof, combined ? 0 : R.NUM_STEPS);
  MatRef<double> DISP_NO(nullptr, 0, 0, "DISP_NO");
  Mat<double> SSIG("SSIG", kLineRows, combined ? 0 : R.NUM_STEPS);
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  const bool has_initial =
      line_detail::read_initial_forces(R, A, T.initial, T.dof, INUM_SERIAL, RST_INITIAL);

  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;

  // A snapshot of many elements looks up the record section and the direct
  // file once, with an element read the usual way, and then reads the
  // records whose counts fit and their displacements through windows on
  // the two sections (see SnapshotMotion). Such an element's look-ups would
  // only repeat what the last usual one found and left, and it has nothing
  // to report; any other element is read the usual way. Of an envelope
  // request's steps only the first is delivered, and no step reports: the
  // road forms the first alone, from column 1 of DISP_EQ.
  const bool road = SnapshotMotion::applies(R) && !combined && IT.NUM_INACTIVE <= 0 &&
                    R.NUM_ITEMS >= kSnapshotItems && TDSP.allocated() &&
                    TDSP.cols() >= R.NUM_ITEMS && E.SA.size() >= T.words &&
                    E.LM.size() >= T.dof && DISP_EQ.rows() == T.dof && DISP_EQ.cols() >= 1;
  bool windows = false;  // made
  bool pinned = false;   // the last usual element left the look-ups they replace
  SectionWindow records;
  SnapshotMotion motion;
  std::array<double*, kLineRows> rows{};

  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    const int32_t serial = INUM_SERIAL(p);
    const char* plain = pinned ? records.record(serial, int64_t{T.words} * 8) : nullptr;
    if (plain != nullptr && plain_record(T, plain)) {
      std::memcpy(E.SA.data(), plain, static_cast<size_t>(T.words) * 8);
      LineRecord rec = decode_record(T, E);
      double* d = DISP_EQ.data();
      motion.displacements(E.LM.data(), rec.NEQ, d);
      std::fill(d + rec.NEQ, d + T.dof, 0.0);
      unpack_matrix(T, E, rec);
      double col[kLineRows];
      step_rows(T, E, rec, DISP_EQ, 1, has_initial ? RST_INITIAL.col(p) : nullptr, scaled, col);
      for (int32_t k = 0; k < kLineRows; ++k) rows[static_cast<size_t>(k)][p - 1] = col[k];
      continue;
    }

    const SectionRef found = A.find(T.record, ID);
    const PinnedSection record_pin = road && !windows ? A.pin(found) : PinnedSection{};
    A.read_f64(found, serial, E.SA.ref(), T.words);
    LineRecord rec = decode_record(T, E);
    VecRef<int32_t> IIA(rec.nodes, 2, "IIA");
    if (combined && fits(T, rec) && !inactive(R, IT, T.inactive_kind, serial) &&
        TDSP.allocated() && TDSP.cols() >= R.NUM_STEPS) {
      DispRow row;
      if (row.start(M, T.dof, rec.NEQ, E.LM.ref(), IIA, 2)) {
        unpack_matrix(T, E, rec);
        one_row(T, R, E, rec, has_initial ? RST_INITIAL.col(p) : nullptr, scaled, row, TDSP);
        continue;
      }
    }
    if (DISP_EQ.cols() != R.NUM_STEPS) {
      DISP_EQ.resize(T.dof, R.NUM_STEPS);
      SSIG.resize(kLineRows, R.NUM_STEPS);
    }
    SectionRef dmed;
    DISP_EQUATION(M, T.dof, DISP_EQ.ref(), DISP_NO, rec.NEQ, E.LM.ref(), IIA, 2, 1, &dmed);
    line_detail::remove_initial_state(R, A, IT, T.inactive_kind, serial, rec.NEQ, E.LM.ref(),
                                      E.DISP_INIT, DISP_EQ);
    unpack_matrix(T, E, rec);
    const double* init = has_initial ? RST_INITIAL.col(p) : nullptr;
    for (int64_t s = 1; s <= R.NUM_STEPS; ++s)
      step_rows(T, E, rec, DISP_EQ, s, init, scaled, SSIG.col(s));
    deliver_rows(TDSP, R.REQUEST_MODE, SSIG, kLineRows, p);
    pinned = road && found.status == LOOKUP_FOUND && dmed.status == LOOKUP_FOUND;
    if (pinned && !windows) {
      records = SectionWindow(record_pin);
      motion = SnapshotMotion(R, A.pin(dmed));
      for (int32_t k = 0; k < kLineRows; ++k) rows[static_cast<size_t>(k)] = TDSP.row(k + 1);
      windows = true;
    }
  }
}

}  // namespace

void MODFLOC(VecRef<double> SIG) { change_axes(SIG, 14, 21); }

void WMODFLOC(VecRef<double> SIG) { change_axes(SIG, 20, 33); }

void BEAM_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
               LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL) {
  line_history(kBeam, R, A, M, IT, L, TDSP, INUM_SERIAL);
}

void WBEAM_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
                LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL) {
  line_history(kWallBeam, R, A, M, IT, L, TDSP, INUM_SERIAL);
}

namespace line_detail {

bool read_initial_forces(const RunContext& R, ArchiveReader A, const SectionName& name,
                         int32_t NVAL, ItemList INUM_SERIAL, Mat<double>& RST_INITIAL) {
  const SectionRef initial = A.find(name, R.HIST_CASE);
  if (!initial.found()) return false;
  RST_INITIAL.resize(NVAL, R.NUM_ITEMS);
  for (int64_t p = 1; p <= R.NUM_ITEMS; ++p) {
    VecRef<double> col(RST_INITIAL.col(p), NVAL, RST_INITIAL.name());
    A.read_f64(initial, INUM_SERIAL(p), col, NVAL);
  }
  return true;
}

void remove_initial_state(const RunContext& R, ArchiveReader A, InactiveTables& IT, int32_t kind,
                          int32_t serial, int32_t NEQ, VecRef<int32_t> LM, Vec<double>& DISP_INIT,
                          Mat<double>& DISP_EQ) {
  if (IT.NUM_INACTIVE <= 0) return;
  int32_t flag = 0;
  CHECK_INACTIVE_ELEM(IT, kind, serial, R.HIST_CASE, flag);
  if (flag != 1) return;
  if (R.DIRECT_FILE_NO == 1) {
    DISP_EQ.fill(0.0);
    return;
  }
  DISP_EQUATION_INITIAL(A, DISP_INIT.ref(), NEQ, LM);
  // Equations past DISP_EQ or past DISP_INIT change nothing: the first of
  // them is reported, and the steps run over the others.
  const int64_t n = DISP_INIT.fit(1, DISP_EQ.fit_rows(NEQ));
  for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
    for (int64_t j = 1; j <= n; ++j) DISP_EQ(j, s) = DISP_EQ(j, s) - DISP_INIT(j);
  }
}

}  // namespace line_detail

}  // namespace respcore
