// The run context: the request of one call and the case fields read from the
// archive, set at entry and read everywhere.
#pragma once

#include <cstdint>

namespace respcore {

struct RunContext {
  int32_t ELEM_TYPE = 0;
  int32_t RESULT_COMP = 0;
  int32_t HIST_CASE = 0;
  int32_t NUM_STEPS = 0;
  int32_t NUM_ITEMS = 0;
  int32_t STEP_NO = 0;
  int32_t REQUEST_MODE = 0;
  int32_t PRODUCT_INDEX = 0;
  int32_t MODE_NO = 0;
  int32_t AXIS_FLAG = 0;
  int32_t ITHIF[5] = {};
  int32_t HIST_STORE = 0;
  int32_t MODAL_SET = 0;
  int32_t DIRECT_FILE_NO = 0;
  int32_t NUM_STORED_STEPS = 0;
  int32_t NUM_MODES = 0;
  int32_t ELEM_FORM = 1;
  int32_t HAS_SUPPORT_MOTION = 0;
  int32_t PRODUCT_FLAG = 0;
  int32_t NCOLS = 0;
};

}  // namespace respcore
