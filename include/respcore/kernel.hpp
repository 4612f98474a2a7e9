// C++ interface of respcore: a kernel object that runs requests against a
// result archive and returns the assembled array.
//
// Each Kernel has its own state (the run context, the saved tables, the
// message sink), so separate objects may serve separate threads. One object
// must not run two requests at once.
//
//   respcore::Kernel k;
//   respcore::Request r;
//   r.base = "/data/model";
//   r.elem_type = 9;              // node displacement
//   r.result_comp = 1;            // x translation
//   r.num_steps = 1000;
//   r.elements = {17};            // node 17
//   r.serials = {1};
//   respcore::Result res = k.run(r);
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "respcore/export.hpp"

namespace respcore {

struct KernelState;

struct Request {
  std::string base;            // archive base name, without extension
  int32_t elem_type = 9;       // 1..14
  int32_t result_comp = 1;     // component selector
  int32_t hist_case = 1;       // history case, from 1
  int32_t num_steps = 1;       // steps wanted (REQUEST_MODE 1 and 3)
  int32_t num_items = 1;       // items listed (REQUEST_MODE 2 and 3)
  int32_t step_no = 1;         // the step of REQUEST_MODE 2; 2 and 3 select absolute and
                               // relative node motion in REQUEST_MODE 1
  int32_t request_mode = 1;    // 1 history, 2 snapshot, 3 node envelopes
  int32_t product_index = 1;   // 1..8, selects the product tag
  int32_t mode_no = 0;         // single mode of a modal history; 0: all modes
  int32_t axis_flag = 1;       // 0: element or node local axes; other: global
  std::vector<int32_t> serials;   // per item: record number in its section
  std::vector<int32_t> elements;  // per item: element or node number
};

enum Status : int32_t {
  STATUS_DONE = 0,
  STATUS_STOPPED = 1,         // a singular 2x2/3x3 inverse stopped the run
  STATUS_INTERNAL_ERROR = 2,  // e.g. an array too large to make
};

struct Result {
  int32_t status = STATUS_DONE;
  std::vector<double> values;  // the assembled array TDSP_COMP
  std::vector<std::string> output_lines;  // error lines the run wrote to standard output
  // Lines for standard error (array bound diagnostics), kept here instead
  // when the kernel is quiet.
  std::vector<std::string> diagnostic_lines;
  // Node envelopes (REQUEST_MODE 3, node families): per item, the step of
  // the maximum and the step of the minimum of the requested component, the
  // steps whose six components fill the item's twelve values. The first
  // step wins a tie.
  std::vector<int32_t> extreme_steps;
};

// Entries of TDSP_COMP that a request fills.
RESPCORE_API int64_t result_size(int32_t elem_type, int32_t result_comp, int32_t num_steps,
                                 int32_t num_items, int32_t request_mode);

class RESPCORE_API Kernel {
 public:
  Kernel();
  ~Kernel();
  Kernel(Kernel&&) noexcept;
  Kernel& operator=(Kernel&&) noexcept;

  Result run(const Request& request);

  // A quiet kernel writes nothing to standard output or standard error: the
  // error lines of a run reach the caller through Result::output_lines and
  // the bound diagnostics through Result::diagnostic_lines. Off by default.
  void set_quiet(bool quiet);
  bool quiet() const;

  // The raw request, with the arguments of the exported C entry. TDSP_COMP
  // must hold the entries the request fills.
  int32_t request(const char* name, int32_t name_length, int32_t elem_type, int32_t result_comp,
                  int32_t hist_case, int32_t num_steps, int32_t num_items, int32_t step_no,
                  int32_t request_mode, int32_t product_index, int32_t mode_no,
                  double* TDSP_COMP, const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
                  int32_t axis_flag);

  // Between calls the kernel keeps the archive files open, with their
  // directories read, and takes them in a later call only when a stat of
  // the path shows the same file (device, inode, size, time stamps); at most
  // a few dozen files are kept, and all are closed with the kernel. Off:
  // every call opens the files and reads the directories afresh, and the
  // kept files are closed now. On by default, unless the environment
  // variable RESPCORE_FILE_CACHE is "0"; the results are the same either way.
  void set_file_cache(bool on);
  bool file_cache() const;

  // The element message sink (unit 78), accumulated over the runs.
  const std::string& messages() const;
  void clear_messages();

  // Lays an empty directory in a new file PATH (form: 0 plain, 1 64-bit).
  // Returns the status: 0 done, 1 open failed, 3 write failed, 6 empty name.
  int32_t create_directory(const std::string& path, int32_t file_code, int32_t form);

  // The kernel's state, for tests and tools built with the library's
  // internal headers.
  KernelState& state();

 private:
  std::unique_ptr<KernelState> state_;
};

}  // namespace respcore
