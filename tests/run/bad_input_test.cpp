// Hostile and broken archives: no crash, nothing written past the caller's
// array, the system's error lines and zeros.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

constexpr double kGuard = -12345.678;

// Runs a raw request with guard entries around the caller's array and
// checks they survive.
std::vector<double> guarded(Kernel& k, const Request& q) {
  const int64_t n =
      result_size(q.elem_type, q.result_comp, q.num_steps, q.num_items, q.request_mode);
  std::vector<double> buf(static_cast<size_t>(n) + 16, kGuard);
  ::testing::internal::CaptureStderr();
  ::testing::internal::CaptureStdout();
  const int32_t status =
      k.request(q.base.c_str(), static_cast<int32_t>(q.base.size()), q.elem_type, q.result_comp,
                q.hist_case, q.num_steps, q.num_items, q.step_no, q.request_mode, q.product_index,
                q.mode_no, buf.data() + 8, q.serials.data(), q.elements.data(), q.axis_flag);
  ::testing::internal::GetCapturedStdout();
  ::testing::internal::GetCapturedStderr();
  EXPECT_NE(status, 1);
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(buf[static_cast<size_t>(i)], kGuard);
    EXPECT_EQ(buf[buf.size() - 1 - static_cast<size_t>(i)], kGuard);
  }
  return std::vector<double>(buf.begin() + 8, buf.end() - 8);
}

void small_truss_archive(ArchiveFixture& a, std::vector<double> truss) {
  a.history_cases({{2, 1, 3, 0, 0}});
  EquationHistory h{{0, 0, 0}, {0, 0, 0}, {1, 2, 3}};
  a.direct_histories(1, {h, h, h}, 3);
  a.node_records({{{1, 2, 3, 0, 0, 0}, {}}});
  a.writer().second().add_f64_rows(sections::TRUS, 3, {truss});
  a.write();
}

TEST(BadInput, SerialsPastTheSectionAndHugeStepCounts) {
  ArchiveFixture a;
  std::vector<double> t(63, 0.0);
  t[0] = 1, t[60] = 1, t[61] = 4;
  small_truss_archive(a, t);
  Kernel k;
  auto q = a.request(12, 2, 3);
  q.serials = {99999};
  EXPECT_EQ(guarded(k, q), std::vector<double>(3, 0.0));
  q.serials = {-4};
  EXPECT_EQ(guarded(k, q), std::vector<double>(3, 0.0));
  // More steps than the records hold: the reads fail whole, zeros.
  q.serials = {1};
  q.num_steps = 50;
  EXPECT_EQ(guarded(k, q), std::vector<double>(50, 0.0));
  // Nodes past the node section.
  auto n = a.request(9, 1, 3);
  n.elements = {7};
  EXPECT_EQ(guarded(k, n), std::vector<double>(3, 0.0));
  n.request_mode = 3;
  n.elements = {2000000000};
  EXPECT_EQ(guarded(k, n), std::vector<double>(12, 0.0));
  // A request mode of no meaning allocates no result store.
  q.request_mode = 7;
  guarded(k, q);
}

TEST(BadInput, TruncatedAndCorruptFilesAtEveryLength) {
  ArchiveFixture a;
  std::vector<double> t(63, 0.0);
  t[0] = 1, t[1] = 2, t[2] = 1.0, t[3] = -1.0, t[60] = 2, t[61] = 2;
  small_truss_archive(a, t);
  const std::string second = a.writer().second_path();
  std::ifstream in(second, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
  Kernel k;
  // Cut the second file at a spread of lengths, and flip bytes.
  for (size_t cut = 0; cut < bytes.size(); cut += 37) {
    std::ofstream(second, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(cut));
    guarded(k, a.request(12, 1, 3));
    guarded(k, a.request(9, 1, 3));
  }
  std::mt19937 rng(7);
  for (int trial = 0; trial < 60; ++trial) {
    std::vector<char> b = bytes;
    for (int f = 0; f < 6; ++f) b[rng() % b.size()] = static_cast<char>(rng());
    std::ofstream(second, std::ios::binary | std::ios::trunc)
        .write(b.data(), static_cast<std::streamsize>(b.size()));
    guarded(k, a.request(12, 1, 3));
    auto q = a.request(10, 2, 3);
    q.request_mode = 3;
    guarded(k, q);
  }
}

}  // namespace
}  // namespace respcore::testing
