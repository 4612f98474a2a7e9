// The library's three output channels.
//
// - Standard output carries only the system's own error lines (look-up
//   failures, singular inverses, geometry warnings). Each line is also kept
//   in the kernel state so that the C++ API can hand it back.
// - Standard error carries the bound diagnostics of the checked arrays. A
//   call writes at most kMaxBoundLines of them; the failures after those are
//   counted, and the end of the call writes one line with their number.
//
// Every line goes out in one write of its text and its newline, so that the
// lines of kernels that run in separate threads never mix.
// - Unit 78 is the element message sink: kept in memory, never a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace respcore {

// What one kernel has written: the lines it put on standard output during
// the current call, and the element message sink (unit 78).
//
// A quiet kernel writes nothing to the process's streams: its error lines
// are only recorded, and the bound diagnostics and other standard-error
// lines of its calls are kept in DIAGNOSTIC_LINES, so that a caller (a
// Python session, a tool that writes CSV) decides where they go.
struct Diagnostics {
  std::vector<std::string> output_lines;
  std::string messages;
  bool quiet = false;
  std::vector<std::string> diagnostic_lines;
};

// Writes LINE and a newline to standard output (unless D is quiet) and
// records it.
void print_line(Diagnostics& D, std::string_view line);

// A line for standard error: written there, or kept in the diagnostic lines
// of the quiet kernel that runs on this thread.
void print_diagnostic(std::string_view line);

// Bound lines one call writes; the failures past them are only counted.
inline constexpr int64_t kMaxBoundLines = 100;

// One call of a kernel on this thread. While one of these lives, the
// standard-error lines of this thread go to D if D is quiet, and its bound
// lines are counted against kMaxBoundLines; when it ends, one line says how
// many failures were not written. Kernels run one call at a time on a thread,
// so one sink per thread suffices.
class DiagnosticScope {
 public:
  explicit DiagnosticScope(Diagnostics& D);
  ~DiagnosticScope();
  DiagnosticScope(const DiagnosticScope&) = delete;
  DiagnosticScope& operator=(const DiagnosticScope&) = delete;

 private:
  Diagnostics* previous_;
  int64_t previous_written_;
  int64_t previous_suppressed_;
  bool previous_active_;
};

// Appends LINE and a newline to the message sink (unit 78).
void write_message(Diagnostics& D, std::string_view line);

// The system's integer field: right-justified in W characters; a value that
// does not fit prints as W asterisks.
std::string format_int(int64_t value, int width);

// The system's fixed real field of W characters with D decimals; a fraction
// too wide for it loses its leading zero, and a value that still does not fit
// prints as W asterisks.
std::string format_fixed(double value, int width, int decimals);

// Thrown by the fatal stop of a singular 2x2/3x3 inverse. The exported entry
// ends the process; the status entries turn it into status 1.
struct FatalStop {};

[[noreturn]] void stop_run();

}  // namespace respcore
