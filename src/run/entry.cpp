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
#include "line/line_element.hpp"
#include "nodal/inactive.hpp"
#include "nodal/node_results.hpp"
#include "run/histories.hpp"
#include "run/kernel_state.hpp"
#include "solid/solid_histories.hpp"

namespace respcore {

namespace {

constexpr const char* kProductTags[8] = {"P.R.W", "Y.J.P", "U.K.Y", "H.N.Q",
                                         "W.M.Z", "J.W.U", "Q.L.D", "R.H.V"};

// The arguments of one request as the entry received them.
struct EntryArgs {
  const char* K_FNAME;
  int32_t name_length, elem_type, result_comp, hist_case, num_steps, num_items, step_no,
      request_mode, product_index, mode_no;
  double* TDSP_COMP;
  const int32_t* INUM_SERIAL;
  const int32_t* INUM_ELEMNT;
  int32_t axis_flag;
};

// Releases what one call made: units and their caches, the per-call tables.
void end_of_call(KernelState& K) {
  K.TDSP.clear();
  close_all_units(K.units);
  release_inactive_tables(K.inactive);
  K.nodal.end_call();
  std::fflush(stdout);
}

// The request into the run context, the base name blank padded to 1024, and
// TDSP made for the request's mode.
void store_request(KernelState& K, const EntryArgs& a) {
  RunContext& R = K.run;
  ArchiveState& A = K.archive;
  int32_t len = a.name_length;
  if (len < 0 || len > 1024) report_bound_failure("K_FNAME", len, 1, 1024);
  len = std::clamp(len, 0, 1024);
  A.FNAME_LEN = len;
  A.FNAME.assign(1024, ' ');
  if (len > 0 && a.K_FNAME != nullptr)
    A.FNAME.replace(0, static_cast<size_t>(len), a.K_FNAME, static_cast<size_t>(len));

  R.ELEM_TYPE = a.elem_type;
  R.RESULT_COMP = a.result_comp;
  R.HIST_CASE = a.hist_case;
  R.NUM_STEPS = a.num_steps;
  R.NUM_ITEMS = a.num_items;
  R.STEP_NO = a.step_no;
  R.REQUEST_MODE = a.request_mode;
  R.PRODUCT_INDEX = a.product_index;
  R.MODE_NO = a.mode_no;
  R.AXIS_FLAG = a.axis_flag;
  R.NUM_MODES = 0;
  R.NUM_STORED_STEPS = 0;

  Tdsp& TDSP = K.TDSP;
  TDSP.clear();
  switch (a.request_mode) {
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
}

// The case: the seventh dof (MTKM), the storage of the history (THIF), the
// element form (THLG) and the support motion (MSES).
void read_history_case(ArchiveReader A, RunContext& R) {
  R.PRODUCT_FLAG = 0;
  if (product_is(A.state, "P.R.W") || product_is(A.state, "Y.J.P") ||
      product_is(A.state, "Q.L.D")) {
    if (A.find(sections::MTKM, 3).found()) R.PRODUCT_FLAG = -1;
  }

  // A record that cannot be read leaves the last case's values.
  A.read(A.find(sections::THIF, 3), R.HIST_CASE, R.ITHIF, 20);
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
  if (!product_is(A.state, "J.W.U") && !product_is(A.state, "H.N.Q")) {
    const SectionRef thlg = A.find(sections::THLG, 1);
    if (thlg.found()) {
      int32_t form = 0;
      if (A.read(thlg, R.HIST_CASE, &form, 4)) R.ELEM_FORM = form;
    }
  }
  R.HAS_SUPPORT_MOTION = A.find(sections::MSES, R.HIST_CASE).found() ? 1 : 0;
}

// EL_ANGLE(k): the angle of element INUM_ELEMNT(k) from its local-axis record
// (ELIM, the thirteenth double), for the tags that have one; zero otherwise.
void read_element_angles(ArchiveReader A, const RunContext& R, ItemList INUM_ELEMNT,
                         Vec<double>& EL_ANGLE) {
  EL_ANGLE.fill(0.0);
  if (!product_is(A.state, "P.R.W") && !product_is(A.state, "Y.J.P")) return;
  const SectionRef elim = A.find(sections::ELIM, 1);
  if (!elim.found()) return;
  for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
    const int32_t n = INUM_ELEMNT(k);
    if (n > elim.nrec) continue;
    double rec[14];
    if (A.read(elim, n, rec, sizeof rec)) EL_ANGLE(k) = rec[12];
  }
}

// Each family's history routine, with the parts of the state it uses.
void dispatch(KernelState& K, ArchiveReader A, ItemList serial, ItemList elemnt,
              VecRef<double> angle) {
  const RunContext& R = K.run;
  Tdsp& TDSP = K.TDSP;
  NodalMotion M(R, A, K.nodal);
  ContinuumParts P{K.diag, K.ELEM_MATERIAL, K.continuum, K.plane, K.plate};
  SolidContext S = K.solids();
  const bool general = product_is(K.archive, "J.W.U");
  switch (R.ELEM_TYPE) {
    case 1:
    case 2:
      PSTR_TIME(R, A, M, P, TDSP, serial, elemnt, R.AXIS_FLAG, angle);
      break;
    case 3:
      if (general)
        PLAT_TIME_GNRL(R, A, M, P, TDSP, serial);
      else
        PLAT_TIME(R, A, M, P, TDSP, serial, elemnt, angle);
      break;
    case 4:
      SOLID_TIME(R, A, M, S, TDSP, serial, elemnt, R.AXIS_FLAG);
      break;
    case 5:
      PLANE_STRESS_HIGH(R, A, M, P, TDSP, serial, elemnt);
      break;
    case 6:
      PLANE_STRAIN_HIGH(R, A, M, P, TDSP, serial, elemnt, R.AXIS_FLAG);
      break;
    case 7:
      if (general)
        PLATE_HIGH_GNRL(R, A, M, P, TDSP, serial, elemnt);
      else
        PLATE_HIGH(R, A, M, P, TDSP, serial, elemnt);
      break;
    case 8:
      SOLID_HIGH(R, A, M, S, TDSP, serial, elemnt, R.AXIS_FLAG);
      break;
    case 9:
    case 10:
    case 11:
      DISP_VELO_ACCEL(M, K.skew, TDSP, elemnt, R.ELEM_TYPE - 8, R.AXIS_FLAG);
      break;
    case 12:
      TRUSS_TIME(R, A, M, K.inactive, K.line, TDSP, serial);
      break;
    case 13:
      BEAM_TIME(R, A, M, K.inactive, K.line, TDSP, serial);
      break;
    case 14:
      WBEAM_TIME(R, A, M, K.inactive, K.line, TDSP, serial);
      break;
    default:
      break;
  }
}

void run_steps(KernelState& K, const EntryArgs& a, const CallerExtents& extents) {
  RunContext& R = K.run;
  store_request(K, a);
  Vec<double> EL_ANGLE("EL_ANGLE", R.NUM_ITEMS);
  if (a.product_index >= 1 && a.product_index <= 8) {
    std::memcpy(K.archive.PRODUCT_TAG.data(), kProductTags[a.product_index - 1], 5);
  }

  ArchiveReader A = K.reader();
  FIND_READING_RESULT_METHOD(A);
  READ_INFORM_INITIAL(A, K.inactive);
  read_history_case(A, R);

  // The caller's lists, with the extent the request declares for them.
  const int64_t item_extent = a.request_mode >= 1 && a.request_mode <= 3
                                  ? int64_t{R.NCOLS}
                                  : int64_t{std::max(R.NUM_ITEMS, 0)};
  auto caller_list = [&](const int32_t* p, int64_t known, const char* name) {
    const int64_t n = p == nullptr ? 0 : known >= 0 ? known : item_extent;
    return ItemList(const_cast<int32_t*>(p), n, name);
  };
  const ItemList serial = caller_list(a.INUM_SERIAL, extents.inum_serial, "INUM_SERIAL");
  const ItemList elemnt = caller_list(a.INUM_ELEMNT, extents.inum_elemnt, "INUM_ELEMNT");

  read_element_angles(A, R, elemnt, EL_ANGLE);
  const int64_t comp_extent =
      a.TDSP_COMP == nullptr ? 0
      : extents.tdsp_comp >= 0
          ? extents.tdsp_comp
          : history_size(R.ELEM_TYPE, R.RESULT_COMP, R.NUM_STEPS, R.NUM_ITEMS, R.REQUEST_MODE);
  // Where the history's row will be copied whole, a routine may form it
  // there directly.
  const int64_t n = R.NUM_STEPS;
  if (R.REQUEST_MODE == 1 && K.TDSP.allocated() && R.RESULT_COMP >= 1 &&
      R.RESULT_COMP <= Tdsp::kRows && n > 0 && n <= K.TDSP.cols() && n <= comp_extent)
    K.TDSP.set_caller_row(a.TDSP_COMP);
  dispatch(K, A, serial, elemnt, EL_ANGLE.ref());
  assemble_history(R, K.TDSP, VecRef<double>(a.TDSP_COMP, comp_extent, "TDSP_COMP"));
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
  const EntryArgs args{K_FNAME,   name_length, elem_type,   result_comp,  hist_case,
                       num_steps, num_items,   step_no,     request_mode, product_index,
                       mode_no,   TDSP_COMP,   INUM_SERIAL, INUM_ELEMNT,  axis_flag};
  int32_t status = 0;
  try {
    run_steps(K, args, extents);
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
