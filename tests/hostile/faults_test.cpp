// Archives that once took a host process's time or memory, replayed from the
// fuzz corpus (tests/fuzz/make_seeds.cpp writes them): each call must return
// at once, within a small memory bound, with a handful of bound lines and the
// guard entries around the caller's array intact.
#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>

#include "fuzz/fuzz_input.hpp"
#include "respcore/kernel.hpp"
#include "run/kernel_state.hpp"

// Every allocation of this program is counted, so that a test can read the
// peak of the bytes held during a call.
namespace {
std::atomic<int64_t> g_held{0}, g_peak{0};
void* counted(size_t n) {
  void* p = std::malloc(n == 0 ? 1 : n);
  if (p == nullptr) throw std::bad_alloc();
  const int64_t now = g_held += static_cast<int64_t>(malloc_usable_size(p));
  for (int64_t peak = g_peak; now > peak && !g_peak.compare_exchange_weak(peak, now);) {
  }
  return p;
}
void uncounted(void* p) {
  if (p == nullptr) return;
  g_held -= static_cast<int64_t>(malloc_usable_size(p));
  std::free(p);
}
}  // namespace
void* operator new(size_t n) { return counted(n); }
void* operator new[](size_t n) { return counted(n); }
void operator delete(void* p) noexcept { uncounted(p); }
void operator delete[](void* p) noexcept { uncounted(p); }
void operator delete(void* p, size_t) noexcept { uncounted(p); }
void operator delete[](void* p, size_t) noexcept { uncounted(p); }

namespace respcore::testing {
namespace {

constexpr double kGuard = -12345.678;

class Fault : public ::testing::TestWithParam<const char*> {};

TEST_P(Fault, ReturnsAtOnceWithinMemoryAndInsideTheCallersArray) {
  std::ifstream in(std::string(RESPCORE_FUZZ_CORPUS) + "/request/" + GetParam(), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
  ASSERT_FALSE(bytes.empty()) << GetParam();
  const fuzz::RequestInput input =
      fuzz::unpack(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  const auto& f = input.fields;
  const std::string base = fuzz::scratch_dir() + "/fault";
  fuzz::put_files(input, base);

  const int64_t n = result_size(f[0], f[1], f[3], f[4], f[6]);
  std::vector<double> out(static_cast<size_t>(n) + 16, kGuard);
  const std::vector<int32_t> serials(f.begin() + 10, f.begin() + 14);
  const std::vector<int32_t> elements(f.begin() + 14, f.begin() + 18);
  Kernel k;
  k.set_quiet(true);
  const int64_t held = g_held;
  g_peak = held;
  const auto t0 = std::chrono::steady_clock::now();
  const int32_t status =
      k.request(base.c_str(), static_cast<int32_t>(base.size()), f[0], f[1], f[2], f[3], f[4],
                f[5], f[6], f[7], f[8], out.data() + 8, serials.data(), elements.data(), f[9]);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  const int64_t peak = g_peak - held;
  RecordProperty("seconds", std::to_string(seconds));
  RecordProperty("peak_bytes", std::to_string(peak));

  EXPECT_EQ(status, STATUS_DONE);
  for (int g = 0; g < 8; ++g) {
    EXPECT_EQ(out[static_cast<size_t>(g)], kGuard);
    EXPECT_EQ(out[out.size() - 1 - static_cast<size_t>(g)], kGuard);
  }
  // Each loop stopped at its first failing subscript: a few bound lines,
  // none left to the cap.
  const auto& lines = k.state().diag.diagnostic_lines;
  EXPECT_LE(lines.size(), 4u) << (lines.empty() ? "" : lines.back());
  EXPECT_LT(peak, int64_t{16} << 20);
  // Not a timing: a call that floods or loops takes minutes.
  EXPECT_LT(seconds, 10.0);
}

INSTANTIATE_TEST_SUITE_P(Corpus, Fault,
                         ::testing::Values("fault-1-beam-count-word-1", "fault-1-wall-beam-count-word-1",
                                           "fault-1-truss-ndof-word-1", "fault-2-beam-rows-1",
                                           "fault-3-modal-steps-history-1",
                                           "fault-3-modal-steps-envelope-1", "fault-4-first-record-1",
                                           "fault-plane-matrix-stride-1"),
                         [](const auto& p) {
                           std::string s = p.param;
                           for (char& c : s)
                             if (c == '-') c = '_';
                           return s;
                         });

}  // namespace
}  // namespace respcore::testing
