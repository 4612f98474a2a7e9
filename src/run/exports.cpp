// The exported C entries and the C++ kernel object.
//
// The C entries share one kernel state, the only mutable global of the
// library: it gives the entry its "survives between calls" behaviour (skew
// systems, the directory form expected).
#include <cstdio>
#include <cstdlib>

#include "archive/directory.hpp"
#include "archive/units.hpp"
#include "run/kernel_state.hpp"
#include "respcore/kernel.hpp"
#include "respcore/respcore.h"
#include "run/entry.hpp"

namespace respcore {
namespace {

KernelState& global_state() {
  static KernelState state;
  return state;
}

}  // namespace
}  // namespace respcore

extern "C" {

__attribute__((visibility("default"))) void respcore_entry_RESPCORE(
    const char* K_FNAME, int32_t name_length, int32_t elem_type, int32_t result_comp,
    int32_t hist_case, int32_t num_steps, int32_t num_items, int32_t step_no, int32_t request_mode,
    int32_t product_index, int32_t mode_no, double* TDSP_COMP, const int32_t* INUM_SERIAL,
    const int32_t* INUM_ELEMNT, int32_t axis_flag) {
  const int32_t status =
      respcore::run_request(respcore::global_state(), K_FNAME, name_length, elem_type, result_comp,
                            hist_case, num_steps, num_items, step_no, request_mode, product_index,
                            mode_no, TDSP_COMP, INUM_SERIAL, INUM_ELEMNT, axis_flag);
  if (status == 1) {
    // A singular element stops the whole run, without a stop text.
    std::fflush(stdout);
    std::exit(0);
  }
}

__attribute__((visibility("default"))) int32_t respcore_request(
    const char* K_FNAME, int32_t name_length, int32_t elem_type, int32_t result_comp,
    int32_t hist_case, int32_t num_steps, int32_t num_items, int32_t step_no, int32_t request_mode,
    int32_t product_index, int32_t mode_no, double* TDSP_COMP, const int32_t* INUM_SERIAL,
    const int32_t* INUM_ELEMNT, int32_t axis_flag) {
  return respcore::run_request(respcore::global_state(), K_FNAME, name_length, elem_type,
                               result_comp, hist_case, num_steps, num_items, step_no, request_mode,
                               product_index, mode_no, TDSP_COMP, INUM_SERIAL, INUM_ELEMNT,
                               axis_flag);
}

}  // extern "C"

namespace respcore {

int64_t result_size(int32_t elem_type, int32_t result_comp, int32_t num_steps, int32_t num_items,
                    int32_t request_mode) {
  return history_size(elem_type, result_comp, num_steps, num_items, request_mode);
}

Kernel::Kernel() : state_(std::make_unique<KernelState>()) {}
Kernel::~Kernel() = default;
Kernel::Kernel(Kernel&&) noexcept = default;
Kernel& Kernel::operator=(Kernel&&) noexcept = default;

Result Kernel::run(const Request& q) {
  Result res;
  res.values.assign(
      static_cast<size_t>(std::max<int64_t>(
          0, result_size(q.elem_type, q.result_comp, q.num_steps, q.num_items, q.request_mode))),
      0.0);
  CallerExtents ext;
  ext.tdsp_comp = static_cast<int64_t>(res.values.size());
  ext.inum_serial = static_cast<int64_t>(q.serials.size());
  ext.inum_elemnt = static_cast<int64_t>(q.elements.size());
  res.status = run_request(*state_, q.base.data(), static_cast<int32_t>(q.base.size()), q.elem_type,
                           q.result_comp, q.hist_case, q.num_steps, q.num_items, q.step_no,
                           q.request_mode, q.product_index, q.mode_no, res.values.data(),
                           q.serials.data(), q.elements.data(), q.axis_flag, ext);
  res.output_lines = state_->diag.output_lines;
  res.diagnostic_lines = state_->diag.diagnostic_lines;
  if (q.request_mode == 3) res.extreme_steps = state_->nodal.extreme_steps;
  return res;
}

void Kernel::set_quiet(bool quiet) { state_->diag.quiet = quiet; }
bool Kernel::quiet() const { return state_->diag.quiet; }

int32_t Kernel::request(const char* name, int32_t name_length, int32_t elem_type,
                        int32_t result_comp, int32_t hist_case, int32_t num_steps,
                        int32_t num_items, int32_t step_no, int32_t request_mode,
                        int32_t product_index, int32_t mode_no, double* TDSP_COMP,
                        const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT, int32_t axis_flag) {
  return run_request(*state_, name, name_length, elem_type, result_comp, hist_case, num_steps,
                     num_items, step_no, request_mode, product_index, mode_no, TDSP_COMP,
                     INUM_SERIAL, INUM_ELEMNT, axis_flag);
}

void Kernel::set_file_cache(bool on) {
  state_->units.keep_files = on;
  if (!on) release_files(state_->units);
}
bool Kernel::file_cache() const { return state_->units.keep_files; }

const std::string& Kernel::messages() const { return state_->diag.messages; }
void Kernel::clear_messages() { state_->diag.messages.clear(); }

int32_t Kernel::create_directory(const std::string& path, int32_t file_code, int32_t form) {
  KernelState& K = *state_;
  const int32_t saved = K.archive.READ_METHOD;
  K.archive.READ_METHOD = form;
  int32_t status = 0;
  ArchiveReader A = K.reader();
  CREATE_F(A, 99, path, static_cast<int32_t>(path.size()), file_code, status);
  K.archive.READ_METHOD = saved;
  close_all_units(K.units);
  return status;
}

KernelState& Kernel::state() { return *state_; }

}  // namespace respcore
