#include "core/diagnostics.hpp"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/arrays.hpp"

namespace respcore {

namespace {

// The quiet kernel whose call runs on this thread, if any.
thread_local Diagnostics* t_quiet_sink = nullptr;

// The bound lines of the call that runs on this thread.
struct BoundLines {
  bool counting = false;  // a call runs
  int64_t written = 0;
  int64_t suppressed = 0;
};
thread_local BoundLines t_bounds;

// TEXT and its newline in one write to F: the stream's lock is held for the
// whole line, so lines written from other threads land before or after it.
void write_line(std::FILE* f, std::string_view text) {
  char small[512];
  if (text.size() < sizeof small) {
    std::memcpy(small, text.data(), text.size());
    small[text.size()] = '\n';
    std::fwrite(small, 1, text.size() + 1, f);
    return;
  }
  std::string whole(text);
  whole.push_back('\n');
  std::fwrite(whole.data(), 1, whole.size(), f);
}

}  // namespace

DiagnosticScope::DiagnosticScope(Diagnostics& D)
    : previous_(t_quiet_sink),
      previous_written_(t_bounds.written),
      previous_suppressed_(t_bounds.suppressed),
      previous_active_(t_bounds.counting) {
  t_quiet_sink = D.quiet ? &D : nullptr;
  t_bounds = BoundLines{true, 0, 0};
}

DiagnosticScope::~DiagnosticScope() {
  if (t_bounds.suppressed > 0) {
    print_diagnostic("array bound exceeded: " + std::to_string(t_bounds.suppressed) +
                     " more failures suppressed");
  }
  t_quiet_sink = previous_;
  t_bounds = BoundLines{previous_active_, previous_written_, previous_suppressed_};
}

void print_diagnostic(std::string_view line) {
  if (t_quiet_sink != nullptr) {
    t_quiet_sink->diagnostic_lines.emplace_back(line);
    return;
  }
  write_line(stderr, line);
}

void report_bound_failure(const char* name, int64_t value, int64_t lo, int64_t hi) {
  if (t_bounds.counting) {
    if (t_bounds.written >= kMaxBoundLines) {
      ++t_bounds.suppressed;
      return;
    }
    ++t_bounds.written;
  }
  char line[256];
  std::snprintf(line, sizeof line, "array bound exceeded: %s subscript %lld bound %lld:%lld", name,
                static_cast<long long>(value), static_cast<long long>(lo),
                static_cast<long long>(hi));
  print_diagnostic(line);
}

int64_t checked_count(int64_t elem_size, int64_t n1, int64_t n2, int64_t n3) {
  int64_t count = std::max<int64_t>(n1, 0);
  int64_t bytes = 0;
  if (__builtin_mul_overflow(count, std::max<int64_t>(n2, 0), &count) ||
      __builtin_mul_overflow(count, std::max<int64_t>(n3, 0), &count) ||
      __builtin_mul_overflow(count, elem_size, &bytes) || bytes > kMaxArrayBytes) {
    throw std::bad_alloc();
  }
  return count;
}

void print_line(Diagnostics& D, std::string_view line) {
  if (!D.quiet) write_line(stdout, line);
  D.output_lines.emplace_back(line);
}

void write_message(Diagnostics& D, std::string_view line) {
  D.messages.append(line);
  D.messages.push_back('\n');
}

std::string format_int(int64_t value, int width) {
  std::string s = std::to_string(value);
  if (static_cast<int>(s.size()) > width) return std::string(static_cast<size_t>(width), '*');
  return std::string(static_cast<size_t>(width) - s.size(), ' ') + s;
}

std::string format_fixed(double value, int width, int decimals) {
  if (!std::isfinite(value)) return std::string(static_cast<size_t>(width), '*');
  char buf[128];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, value);
  std::string s = buf;
  // A fraction too wide for its field gives up its leading zero.
  if (static_cast<int>(s.size()) > width) {
    if (s.rfind("0.", 0) == 0)
      s.erase(0, 1);
    else if (s.rfind("-0.", 0) == 0)
      s.erase(1, 1);
  }
  if (static_cast<int>(s.size()) > width) return std::string(static_cast<size_t>(width), '*');
  return std::string(static_cast<size_t>(width) - s.size(), ' ') + s;
}

void stop_run() {
  throw FatalStop{};
}

}  // namespace respcore
