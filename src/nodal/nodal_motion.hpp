// The one road by which nodal motion leaves the archive. Every history that
// needs the motion of some degrees of freedom (DISP_EQUATION for the element
// families, the node histories, the node snapshots and envelopes) fetches it
// here, from the storage of the case:
//
//   modal    the modal coordinates of the selected modes (MDSP) times the
//            mode shapes of the dof's equation (MSHP);
//   direct   the dof's history record in the case's direct file (DMED);
//   support  with support motion, a constrained translation takes the
//            history of its node and component (MSES, MSER), and the direct
//            file is addressed by the support-motion rule;
//
// and delivers the steps by one of three column rules: all steps, the one
// step STEP_NO, or the two steps of an envelope's extremes. A fetch is made
// once per element or node (its look-ups happen then), asked dof by dof in
// the caller's order, and finished once.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "archive/section_access.hpp"
#include "core/arrays.hpp"
#include "nodal/nodal_state.hpp"
#include "run/run_context.hpp"

namespace respcore {

// RESULT_KIND: which record of an equation's triple.
enum class Quantity : int32_t { Displacement = 1, Velocity = 2, Acceleration = 3 };

// Which steps a fetch delivers, into which columns.
enum class StepColumns {
  AllSteps,  // steps 1..NUM_STEPS into columns 1..NUM_STEPS
  OneStep,   // step STEP_NO into column 1
  Extremes,  // the steps SMAX and SMIN into columns 1 and 2
};

// DTEMP, the work array into which a single-step or an envelope read takes an
// equation's record: it is shared by every read of a request routine, so
// that a read that fails repeats what the last good one left.
struct StepWork {
  explicit StepWork(const RunContext& R) : step(R.STEP_NO) {}
  int64_t step;                // the step of a single-step read
  double last = 0.0;           // DTEMP(step) as the last good read left it
  Vec<double> DTEMP;           // envelopes: the last good whole history
  int64_t smax = 1, smin = 1;  // envelopes: the steps to deliver
};

// A node's transform record (NDSP): its K equation numbers and the upper
// triangle T of its transform to node axes.
struct NodeRecord {
  int32_t LM[7] = {};
  double T[6][6] = {};
};

// The parts of the kernel state that the fetch works with.
class NodalMotion {
 public:
  NodalMotion(const RunContext& R, ArchiveReader A, NodalState& S) : run(R), archive(A), state(S) {}

  // Equation numbers per node record: 7 when the archive has the seventh dof.
  int32_t node_dofs() const { return run.PRODUCT_FLAG != 0 ? 7 : 6; }

  // The record of NODE in NDSP (looked up by the caller), K equation numbers
  // and the transform behind them. It is read into TEMP: a record that cannot
  // be read gives what the last one left there.
  NodeRecord node_transform(const SectionRef& ndsp, int64_t node, int32_t K);

  const RunContext& run;
  ArchiveReader archive;
  NodalState& state;
};

// The receiver of whole histories, one dof at a time: its row and its
// NUM_STEPS values (zero where nothing could be read).
using HistorySink = std::function<void(int64_t row, const double* values)>;

class MotionFetch {
 public:
  // Into rows of OUT, whose other rows are left zero (unless the case has no
  // storage the fetch knows, which leaves OUT as it is). MODE_ROWS is the row
  // count of the mode values, SUM_ROWS the rows 1.. that a modal sum forms.
  MotionFetch(NodalMotion& M, Quantity q, StepColumns cols, bool support, StepWork& work,
              MatRef<double> OUT, int64_t mode_rows, int64_t sum_rows);
  // All steps, each dof's history handed to SINK (rows 1..SUM_ROWS in order
  // for a modal case, when the fetch finishes).
  MotionFetch(NodalMotion& M, Quantity q, bool support, int64_t sum_rows, HistorySink sink);
  // For the sink road in direct storage: only the rows set in WANTED (bit
  // r - 1 for row r; rows past 64 are always wanted) are read and handed to
  // the sink. Reads make no lines, so a row nobody uses need not be read.
  void want_rows(uint64_t wanted) { wanted_ = wanted; }
  // Row ROW's history is read straight into DST (NUM_STEPS values) and
  // handed to the sink there, instead of through the fetch's own buffer.
  void read_row_into(int64_t row, double* dst) {
    target_row_ = row;
    target_ = dst;
  }

  // All steps, combined into one history (see combine()): the dof calls
  // note each row's history (rows 1..NROWS; a row delivered twice counts
  // once) and, in modal storage, read its mode values; the histories are
  // read when the history is combined. The caller makes sure that the case
  // allows it (combinable()).
  MotionFetch(NodalMotion& M, Quantity q, bool support, int64_t nrows);
  // Whether the case allows the combined road: its storage is direct, or
  // modal with the steps wanted stored.
  static bool combinable(const RunContext& R);
  // After finish(), at any later point of the call: OUT(s) := BASE + the sum
  // over the rows r of COEF(r) times the motion of r, s = 1..NUM_STEPS. With
  // modal storage the coefficients are first folded into the mode shapes of
  // the rows, so that the steps cost one pass over the modal coordinates of
  // the selected modes, read as they lie in the archive; the sums are then
  // associated differently from the row-by-row road, which changes them by
  // rounding. With LAST, LAST(r) := the motion of row r at the last step
  // (zero for a row not delivered), for r = 1..NROWS.
  void combine(const double* coef, double base, double* out, double* last = nullptr);

  // The motion of one dof into row ROW: EQUATION is its equation number (an
  // equation when positive); NODE and COMP (1..6) place a constrained dof in
  // the support motion.
  void dof(int64_t row, int32_t equation, int32_t node, int32_t comp);
  // What the dof calls began: the modal sums and the step columns.
  void finish();
  // Closes the direct file the fetch read.
  void close_direct_file();
  // The direct-file section the fetch looked up (not found: none).
  const SectionRef& direct_section() const { return dmed_; }

 private:
  enum class Storage { None, Modal, Direct };

  void prepare(int64_t mode_rows);
  void deliver(const SectionRef& s, int64_t index, int64_t row);
  void deliver_nothing(int64_t row);
  void finish_modal();
  void finish_columns();
  void finish_combined();
  void add_combined(int64_t row, const PinnedSection* s, int64_t index);

  NodalMotion& M_;
  const RunContext& R_;
  Quantity q_;
  StepColumns cols_;
  bool support_;
  StepWork* work_ = nullptr;
  MatRef<double> out_;
  int64_t sum_rows_;
  HistorySink sink_;
  uint64_t wanted_ = ~uint64_t{0};
  int64_t target_row_ = 0;
  double* target_ = nullptr;
  bool wanted(int64_t row) const {
    return row < 1 || row > 64 || ((wanted_ >> (row - 1)) & 1U) != 0;
  }
  // Where the sink road reads row ROW: its target, or the fetch's buffer.
  double* sink_buffer(int64_t row);
  Storage storage_ = Storage::None;
  int64_t nsteps_ = 0;

  // Modal storage.
  // Modal storage: the coordinates and the values of modes FIRST_MODE + 1,
  // ..., the ones whose records the file holds (see modal_range).
  struct Modal {
    int64_t first_mode;  // set when the fetch is made
    Arr3<double> coords;
    Mat<double> mode_values;
    SectionRef mshp;
    std::vector<double> mode_row;
  };
  std::optional<Modal> modal_;
  // The combined road: the coefficients, the history formed, which rows
  // were delivered, and the sections kept for the end.
  bool combined_ = false;
  const double* coef_ = nullptr;
  int64_t ncoef_ = 0;
  double* comb_ = nullptr;
  double base_ = 0.0;
  double* last_ = nullptr;
  std::vector<char> delivered_;
  PinnedSection mdsp_, dmed_pin_, mser_pin_;
  // Direct storage: the history record of each row, read at the end in
  // blocks of steps.
  struct RowRecord {
    int64_t row;
    const PinnedSection* section;
    int64_t index;
  };
  std::vector<RowRecord> records_;
  void finish_combined_direct();
  // Direct storage.
  SectionRef dmed_, mser_;
  int64_t support_rows_ = 0;
  // All steps into OUT: the histories by dof, turned into step columns at
  // the end; which rows were read.
  std::vector<char> read_rows_;
  int64_t last_row_ = 0;
};

}  // namespace respcore
