// The kernel entry: stores the request in the run context, reads the
// history case and what depends on it, calls the history routine of the
// family, and copies the wanted rows to the caller's array.
#include "run/entry.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/diagnostics.hpp"
#include "core/kernel_state.hpp"
#include "nodal/inactive.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

constexpr const char* kProductTags[8] = {"P.R.W", "Y.J.P", "U.K.Y", "H.N.Q",
                                         "W.M.Z", "J.W.U", "Q.L.D", "R.H.V"};

bool tag_is(const KernelState& K, const char* tag) {
  return std::memcmp(K.archive.PRODUCT_TAG.data(), tag, 5) == 0;
}

// Releases what one call made: units and their caches, the per-call tables.
void end_of_call(KernelState& K) {
  K.TDSP.clear();
  close_all_units(K);
  release_inactive_tables(K);
  K.nodal.end_call();
  std::fflush(stdout);
}

void dispatch(KernelState& K, Tdsp& TDSP, ItemList serial, ItemList elemnt, VecRef<double> angle) {
  RunContext& R = K.run;
  const int32_t ncols = R.NCOLS;
  switch (R.ELEM_TYPE) {
    case 1:
    case 2:
      PSTR_TIME(K, TDSP, serial, elemnt, ncols, R.AXIS_FLAG, angle);
      break;
    case 3:
      if (tag_is(K, "J.W.U"))
        PLAT_TIME_GNRL(K, TDSP, serial, elemnt, ncols);
      else
        PLAT_TIME(K, TDSP, serial, elemnt, ncols, angle);
      break;
    case 4:
      SOLID_TIME(K, TDSP, serial, elemnt, ncols, R.AXIS_FLAG);
      break;
    case 5:
      PLANE_STRESS_HIGH(K, TDSP, serial, elemnt, ncols, R.AXIS_FLAG);
      break;
    case 6:
      PLANE_STRAIN_HIGH(K, TDSP, serial, elemnt, ncols, R.AXIS_FLAG);
      break;
    case 7:
      if (tag_is(K, "J.W.U"))
        PLATE_HIGH_GNRL(K, TDSP, serial, elemnt, ncols);
      else
        PLATE_HIGH(K, TDSP, serial, elemnt, ncols);
      break;
    case 8:
      SOLID_HIGH(K, TDSP, serial, elemnt, ncols, R.AXIS_FLAG);
      break;
    case 9:
    case 10:
    case 11:
      R.RESULT_KIND = R.ELEM_TYPE - 8;
      DISP_VELO_ACCEL(K, TDSP, serial, elemnt, ncols, R.RESULT_KIND, R.AXIS_FLAG);
      break;
    case 12:
      TRUSS_TIME(K, TDSP, serial, ncols);
      break;
    case 13:
      BEAM_TIME(K, TDSP, serial, ncols);
      break;
    case 14:
      WBEAM_TIME(K, TDSP, serial, ncols);
      break;
    default:
      break;
  }
}

void run_steps(KernelState& K, const char* K_FNAME, int32_t name_length, int32_t elem_type,
               int32_t result_comp, int32_t hist_case, int32_t num_steps, int32_t num_items,
               int32_t step_no, int32_t request_mode, int32_t product_index, int32_t mode_no,
               double* TDSP_COMP, const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
               int32_t axis_flag, const CallerExtents& extents) {
  RunContext& R = K.run;
  ArchiveState& A = K.archive;

  // The base name, blank padded to 1024.
  int32_t len = name_length;
  if (len < 0 || len > 1024) report_bound_failure("K_FNAME", len, 1, 1024);
  len = std::clamp(len, 0, 1024);
  A.FNAME_LEN = len;
  A.FNAME.assign(1024, ' ');
  if (len > 0 && K_FNAME != nullptr)
    A.FNAME.replace(0, static_cast<size_t>(len), K_FNAME, static_cast<size_t>(len));

  R.ELEM_TYPE = elem_type;
  R.RESULT_COMP = result_comp;
  R.HIST_CASE = hist_case;
  R.NUM_STEPS = num_steps;
  R.NUM_ITEMS = num_items;
  R.STEP_NO = step_no;
  R.REQUEST_MODE = request_mode;
  R.PRODUCT_INDEX = product_index;
  R.MODE_NO = mode_no;
  R.AXIS_FLAG = axis_flag;
  R.NUM_MODES = 0;
  R.NUM_STORED_STEPS = 0;

  Tdsp& TDSP = K.TDSP;
  TDSP.clear();
  switch (request_mode) {
    case 1:
      R.NUM_ITEMS = 1;
      R.NCOLS = std::max(R.NUM_STEPS, 0);
      TDSP.reset(R.NCOLS);
      break;
    case 2:
      R.NUM_STEPS = 1;
      R.NCOLS = std::max(R.NUM_ITEMS, 0);
      TDSP.reset(R.NCOLS);
      break;
    case 3:
      R.NCOLS =
          static_cast<int32_t>(std::min<int64_t>(2 * int64_t{std::max(R.NUM_ITEMS, 0)}, INT32_MAX));
      TDSP.reset(R.NCOLS);
      break;
    default:
      break;  // no TDSP: the caller must not ask for this
  }
  Vec<double> EL_ANGLE("EL_ANGLE", R.NUM_ITEMS);

  if (product_index >= 1 && product_index <= 8) {
    std::memcpy(A.PRODUCT_TAG.data(), kProductTags[product_index - 1], 5);
  }

  FIND_READING_RESULT_METHOD(K);
  READ_INFORM_INITIAL(K);

  int64_t first = 0;
  int32_t found = 0;
  R.PRODUCT_FLAG = 0;
  if (tag_is(K, "P.R.W") || tag_is(K, "Y.J.P") || tag_is(K, "Q.L.D")) {
    RF_BIN_T(K, 3, 103, first, found);
    if (found) R.PRODUCT_FLAG = -1;
  }

  // The history case.
  RF_BIN_T(K, 3, 18, first, found);
  read_record(K, UNIT_SECOND, first + R.HIST_CASE - 1, R.ITHIF, 20);
  switch (R.ITHIF[0]) {
    case 1:
      R.HIST_STORE = 1;
      R.MODAL_SET = R.ITHIF[1];
      break;
    case 2:
    case 3:
      R.HIST_STORE = 2;
      R.DIRECT_FILE_NO = R.ITHIF[1];
      break;
    default:
      R.HIST_STORE = R.ITHIF[0];
      break;
  }
  R.NUM_STORED_STEPS = R.ITHIF[2];
  R.NUM_MODES = R.ITHIF[3];

  R.ELEM_FORM = 1;
  if (!tag_is(K, "J.W.U") && !tag_is(K, "H.N.Q")) {
    RF_BIN(K, 1, 78, first, found);
    if (found) {
      int32_t form = 0;
      if (read_record(K, UNIT_FIRST, first + R.HIST_CASE - 1, &form, 4)) R.ELEM_FORM = form;
    }
  }
  RF_BIN_T(K, R.HIST_CASE, 33, first, found);
  R.HAS_SUPPORT_MOTION = found ? 1 : 0;

  const int64_t item_extent =
      request_mode >= 1 && request_mode <= 3 ? int64_t{R.NCOLS} : int64_t{std::max(R.NUM_ITEMS, 0)};
  auto caller_list = [&](const int32_t* p, int64_t known) {
    const int64_t n = p == nullptr ? 0 : known >= 0 ? known : item_extent;
    return ItemList(const_cast<int32_t*>(p), n, "INUM_SERIAL");
  };
  ItemList serial = caller_list(INUM_SERIAL, extents.inum_serial);
  ItemList elemnt = caller_list(INUM_ELEMNT, extents.inum_elemnt);
  elemnt = ItemList(elemnt.data(), elemnt.size(), "INUM_ELEMNT");

  EL_ANGLE.fill(0.0);
  if (tag_is(K, "P.R.W") || tag_is(K, "Y.J.P")) {
    RF_BIN(K, 1, 204, first, found);
    if (found) {
      for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
        const int32_t n = elemnt(k);
        if (n > A.SEC_NREC) continue;
        double rec[14];
        if (read_record(K, UNIT_FIRST, first + n - 1, rec, sizeof rec)) EL_ANGLE(k) = rec[12];
      }
    }
  }

  dispatch(K, TDSP, serial, elemnt, EL_ANGLE.ref());

  const int64_t comp_extent =
      TDSP_COMP == nullptr ? 0
      : extents.tdsp_comp >= 0
          ? extents.tdsp_comp
          : history_size(R.ELEM_TYPE, R.RESULT_COMP, R.NUM_STEPS, R.NUM_ITEMS, R.REQUEST_MODE);
  assemble_history(K, TDSP, VecRef<double>(TDSP_COMP, comp_extent, "TDSP_COMP"));
}

}  // namespace

int32_t run_request(KernelState& K, const char* K_FNAME, int32_t name_length, int32_t elem_type,
                    int32_t result_comp, int32_t hist_case, int32_t num_steps, int32_t num_items,
                    int32_t step_no, int32_t request_mode, int32_t product_index, int32_t mode_no,
                    double* TDSP_COMP, const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
                    int32_t axis_flag, const CallerExtents& extents) {
  K.diag.output_lines.clear();
  K.diag.diagnostic_lines.clear();
  K.nodal.extreme_steps.clear();
  const DiagnosticScope diagnostics(K.diag);
  int32_t status = 0;
  try {
    run_steps(K, K_FNAME, name_length, elem_type, result_comp, hist_case, num_steps, num_items,
              step_no, request_mode, product_index, mode_no, TDSP_COMP, INUM_SERIAL, INUM_ELEMNT,
              axis_flag, extents);
  } catch (const FatalStop&) {
    status = 1;
  } catch (const std::bad_alloc&) {
    print_diagnostic("respcore: an array of the request is too large to make");
    status = 2;
  } catch (const std::exception& e) {
    print_diagnostic(std::string("respcore: internal error: ") + e.what());
    status = 2;
  }
  try {
    end_of_call(K);
  } catch (...) {
    status = 2;
  }
  return status;
}

}  // namespace respcore
