// Shared storage of the line-element routines: element records and the
// arrays that keep their contents from one element (or call) to the next.
// A record that cannot be read leaves what the previous element (or call)
// put here.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// The arrays of a two-node beam family: the record, its equation numbers and
// recovery matrix, the step vector with the saved factor words, the result
// set of a step and the initial displacements of a late-activated element.
struct LineElementArrays {
  LineElementArrays(int64_t words, int64_t dof, int64_t rows, int64_t sig, int64_t saved,
                    int64_t set)
      : SA("SA", words), LM("LM", dof), STRS("STRS", rows, dof), SIG("SIG", sig),
        SIG_SAVE("SIG_SAVE", saved), SIG_OUT("SIG_OUT", set) {}
  Vec<double> SA;
  Vec<int32_t> LM;
  Mat<double> STRS;
  Vec<double> SIG;
  Vec<double> SIG_SAVE;
  Vec<double> SIG_OUT;
  Vec<double> DISP_INIT{"DISP_INIT", 100};
};

struct LineState {
  // Truss record buffer and its initial-displacement work array.
  Vec<double> TRUSS_SA{"SA", 1250};
  Vec<double> TRUSS_DISP_INIT{"DISP_INIT", 100};

  // Beam: 12 dof, STRS 26 by 12, the step vector of 34 rows with the 14
  // factor words 13..26, and 34 result rows.
  LineElementArrays beam{327, 12, 26, 34, 14, 34};
  // Wall beam: seven freedoms per end; SIG_SAVE keeps the factor words
  // SIG(19..52); SIG_OUT is the step's full result set, of which 34 rows are
  // delivered.
  LineElementArrays wall_beam{1053, 14, 72, 246, 34, 96};
};

}  // namespace respcore
