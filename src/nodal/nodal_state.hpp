// State of the nodal-response routines: the skew systems that survive
// between calls, the support-motion index and ground-motion work array of one
// call, the node-record buffer, and the inactive-element tables.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct NodeSkew {
  int32_t NUM_SKEW = 0;
  Vec<int32_t> NODE_SKEW{"NODE_SKEW"};
  Mat<double> SKEW_INFM{"SKEW_INFM", 0, 0};
};

struct NodalState {
  Mat<int32_t> ISER{"ISER", 0, 0};
  Arr3<double> FF_TMP{"FF_TMP", 0, 0, 0};
  // One node-transform record; keeps what an earlier read left.
  Vec<double> TEMP{"TEMP", 29};
};

struct InactiveTables {
  Vec<int32_t> INFM_TMHL{"INFM_TMHL"};
  Mat<int32_t> INACTIVE_INFORM{"INACTIVE_INFORM", 0, 0};
  int32_t NUM_INACTIVE = 0;
  int32_t NUM_TRUS = 0;
  int32_t NUM_BEAM = 0;
  int32_t NUM_WARB = 0;
  Vec<int32_t> TRUS{"TRUS"};
  Vec<int32_t> BEAM{"BEAM"};
  Vec<int32_t> WARB{"WARB"};
  int32_t IS_INACTIVE = 0;
};

}  // namespace respcore
