// Kernels in threads: two kernels on two archives give, request for request,
// what they give one after the other; the error lines of kernels that write
// at once come out whole. CI runs these under ThreadSanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <thread>

#include "fuzz/fuzz_input.hpp"
#include "respcore/kernel.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {
namespace {

// The archive of corpus input NAME, written under DIR; its request.
Request archive_of(const TempDir& dir, const std::string& name) {
  std::ifstream in(std::string(RESPCORE_FUZZ_CORPUS) + "/request/" + name, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), {});
  const fuzz::RequestInput input =
      fuzz::unpack(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  const auto& f = input.fields;
  Request q;
  q.base = dir.file("m");
  fuzz::put_files(input, q.base);
  q.elem_type = f[0], q.num_steps = f[3], q.serials = q.elements = {1, 2};
  return q;
}

// Requests of every component and mode of the archive's family.
std::vector<Request> requests_on(Request q, int ncomp) {
  std::vector<Request> out;
  for (q.request_mode = 1; q.request_mode <= 3; ++q.request_mode)
    for (q.result_comp = 1; q.result_comp <= ncomp; ++q.result_comp) {
      q.num_items = q.request_mode == 1 ? 1 : 2;
      q.step_no = 1 + q.result_comp % 3;
      out.push_back(q);
    }
  return out;
}

TEST(Threads, TwoKernelsGiveTheirSerialResults) {
  TempDir beams, nodes;
  const std::vector<Request> lists[2] = {requests_on(archive_of(beams, "beam-plain-modal-1"), 34),
                                         requests_on(archive_of(nodes, "node-wide-1"), 6)};
  std::vector<std::vector<double>> serial[2];
  for (int t = 0; t < 2; ++t) {
    Kernel k;
    k.set_quiet(true);
    for (const Request& q : lists[t]) serial[t].push_back(k.run(q).values);
  }
  int mismatches[2] = {0, 0};
  auto work = [&](int t) {
    Kernel k;
    k.set_quiet(true);
    const auto& list = lists[t];
    for (size_t i = 0; i < 2000; ++i)
      mismatches[t] += k.run(list[i % list.size()]).values != serial[t][i % list.size()];
  };
  std::thread a(work, 0), b(work, 1);
  a.join();
  b.join();
  EXPECT_EQ(mismatches[0], 0);
  EXPECT_EQ(mismatches[1], 0);
}

// A request on a missing archive: its error lines on standard output and a
// bound line on standard error, from eight kernels at once.
TEST(Threads, LinesOfKernelsInThreadsStayWhole) {
  TempDir dir;
  Request q;
  q.base = dir.file("missing"), q.elem_type = 13, q.num_steps = 5, q.serials = q.elements = {1};
  Kernel quiet;
  quiet.set_quiet(true);
  const Result one = quiet.run(q);
  ASSERT_GE(one.output_lines.size(), 2u);
  ASSERT_GE(one.diagnostic_lines.size(), 1u);

  constexpr int kThreads = 8, kCalls = 1000;
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  std::atomic<int> ready{0};
  std::vector<std::thread> pool;
  for (int t = 0; t < kThreads; ++t) {
    pool.emplace_back([&] {
      Kernel k;
      // All start together, so that their lines meet.
      for (++ready; ready < kThreads;) std::this_thread::yield();
      for (int c = 0; c < kCalls; ++c) k.run(q);
    });
  }
  for (auto& th : pool) th.join();
  const std::string err = ::testing::internal::GetCapturedStderr();
  const std::string out = ::testing::internal::GetCapturedStdout();
  for (const auto& [text, expected] : {std::pair{out, one.output_lines},
                                       std::pair{err, one.diagnostic_lines}}) {
    const std::set<std::string> known(expected.begin(), expected.end());
    std::istringstream in(text);
    size_t lines = 0, broken = 0;
    for (std::string line; std::getline(in, line); ++lines) broken += known.count(line) == 0;
    EXPECT_EQ(lines, expected.size() * kThreads * kCalls);
    EXPECT_EQ(broken, 0u);
  }
}

}  // namespace
}  // namespace respcore::testing
