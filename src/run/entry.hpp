// One request from entry to return: the run context, the dispatch on the
// family, and the assembly of the caller's array.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"

namespace respcore {

struct KernelState;

// Extents of the caller's arrays; -1 where only the caller knows them (the
// C entry), in which case the declared extents of the request are assumed.
struct CallerExtents {
  int64_t tdsp_comp = -1;
  int64_t inum_serial = -1;
  int64_t inum_elemnt = -1;
};

// Runs one request. Returns 0 done, 1 stopped by a fatal inverse, 2 internal
// error. Standard output is flushed before it returns.
int32_t run_request(KernelState& K, const char* K_FNAME, int32_t name_length, int32_t elem_type,
                    int32_t result_comp, int32_t hist_case, int32_t num_steps, int32_t num_items,
                    int32_t step_no, int32_t request_mode, int32_t product_index, int32_t mode_no,
                    double* TDSP_COMP, const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
                    int32_t axis_flag, const CallerExtents& extents = {});

// Copies the selected rows of TDSP into TDSP_COMP.
void assemble_history(const RunContext& R, const Tdsp& TDSP, VecRef<double> TDSP_COMP);

// Entries of TDSP_COMP that a request fills.
int64_t history_size(int32_t elem_type, int32_t result_comp, int32_t num_steps,
                     int32_t num_items, int32_t request_mode);

}  // namespace respcore
