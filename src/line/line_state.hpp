// Shared storage of the line-element routines: element records and the
// arrays that keep their contents from one element (or call) to the next.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct LineState {
  // Truss record buffer and its initial-displacement work array.
  Vec<double> TRUSS_SA{"SA", 1250};
  Vec<double> TRUSS_DISP_INIT{"DISP_INIT", 100};

  // Beam: the record, its equation numbers and recovery matrix, the step
  // vector with the saved section factors, the final row set of a step and
  // the initial displacements of a late-activated element. A record that
  // cannot be read leaves what the previous element (or call) put here.
  Vec<double> BEAM_SA{"SA", 327};
  Vec<int32_t> BEAM_LM{"LM", 12};
  Mat<double> BEAM_STRS{"STRS", 26, 12};
  Vec<double> BEAM_SIG{"SIG", 34};
  Vec<double> BEAM_SIG_SAVE{"SIG_SAVE", 14};
  Vec<double> BEAM_SIG_OUT{"SIG_OUT", 34};
  Vec<double> BEAM_DISP_INIT{"DISP_INIT", 100};

  // Wall beam: the same with seven freedoms per end. SIG_SAVE keeps the
  // factor words SIG(19..52); SIG_OUT is the step's full result set, of
  // which 34 rows are delivered.
  Vec<double> WBEAM_SA{"SA", 1053};
  Vec<int32_t> WBEAM_LM{"LM", 14};
  Mat<double> WBEAM_STRS{"STRS", 72, 14};
  Vec<double> WBEAM_SIG{"SIG", 246};
  Vec<double> WBEAM_SIG_SAVE{"SIG_SAVE", 34};
  Vec<double> WBEAM_SIG_OUT{"SIG_OUT", 96};
  Vec<double> WBEAM_DISP_INIT{"DISP_INIT", 100};
};

}  // namespace respcore
