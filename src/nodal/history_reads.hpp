// Reading nodal histories from the archive: modal coordinates, and the
// per-equation history records of the direct files and the support motion.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct KernelState;

// INDX_NF: 1 for each mode that takes part. A MODE_NO within 1..NUM_MODES
// selects that mode alone; any other value selects all.
void select_modes(KernelState& K, Vec<int32_t>& INDX_NF);

// Reads the modal coordinates (mode, step, quantity) of the modes selected
// in INDX_NF from section MDSP, whose first record is FIRST. With ALL_STEPS
// step s = 1..NUM_STEPS goes to column s; otherwise the record of STEP_NO
// goes to column 1. The records of a mode are read in one go and kept for
// the call.
void read_modal_coordinates(KernelState& K, int64_t first, const Vec<int32_t>& INDX_NF,
                            Arr3<double>& coords, bool all_steps);

// DISP_EQ(i, j) := sum over m of MODE_VALS(i, m) * coords(m, j, q), for
// i = 1..NLM and j = 1..NCOL.
void modal_sum(Mat<double>& MODE_VALS, Arr3<double>& coords, int32_t q, int32_t NLM,
               int64_t NCOL, MatRef<double> DISP_EQ);

// One equation's history up to a step, as the work array DTEMP of STEP_NO
// entries: a failed read leaves the value of the last good one.
struct StepPick {
  int64_t n = 0;       // entries of DTEMP
  double last = 0.0;   // DTEMP(n)
  double get(int64_t i) const;
};

// Reads the history record REC of UNIT into row I of DISP_EQ: with
// ALL_STEPS, NUM_STEPS doubles into columns 1..NUM_STEPS; otherwise STEP_NO
// doubles of which the last goes to column 1 (through PICK).
void read_history_row(KernelState& K, int32_t unit, int64_t rec, MatRef<double> DISP_EQ,
                      int64_t i, bool all_steps, StepPick& pick);

// Reads the case's support-motion index (section MSES) into ISER, made with
// the row count on its first use in a call. Returns the row count.
int64_t read_support_index(KernelState& K);

// The first row r of the support-motion index with node NODE and component
// C, or 0 when there is none.
int64_t find_support_row(KernelState& K, int64_t nrows, int32_t node, int32_t c);

}  // namespace respcore
