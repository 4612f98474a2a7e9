// State of the nodal-response routines: the skew systems that survive
// between calls, the support-motion index and the work arrays of one call,
// the node-record buffer, and the inactive-element tables.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "core/arrays.hpp"

namespace respcore {

struct NodeSkew {
  int32_t NUM_SKEW = 0;
  Vec<int32_t> NODE_SKEW{"NODE_SKEW"};
  Mat<double> SKEW_INFM{"SKEW_INFM", 0, 0};
};

struct NodalState {
  // The support-motion index, made on its first use in a call: column r is
  // row ISER_first + r of the section.
  Mat<int32_t> ISER{"ISER", 0, 0};
  int64_t ISER_first = 0;
  bool ISER_made = false;
  // One node-transform record. A record that cannot be read leaves what the
  // last one put here, also from an earlier call.
  Vec<double> TEMP{"TEMP", 29};

  // Per call: blocks of modal-coordinate records already read, by first
  // record and count, and the buffer of whole histories read record by record.
  struct RecordBlock {
    std::vector<double> values;
    std::vector<char> ok;
  };
  std::map<std::pair<int64_t, int64_t>, RecordBlock> modal_blocks;
  std::vector<double> row_buffer;
  // One dof's history at a time, for the node histories; kept between calls
  // while it is small.
  std::vector<double, DefaultInitAllocator<double>> HIST;
  // Node envelopes: the step of the maximum and of the minimum of each item,
  // as the scan found them; kept after the call for the C++ API.
  std::vector<int32_t> extreme_steps;

  void end_call() {
    ISER.clear();
    ISER_first = 0;
    ISER_made = false;
    modal_blocks.clear();
    row_buffer.clear();
    row_buffer.shrink_to_fit();
    // Small history buffers are kept for the next call; large ones go.
    if (HIST.capacity() * sizeof(double) > (size_t{8} << 20)) {
      HIST.clear();
      HIST.shrink_to_fit();
    }
  }
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
