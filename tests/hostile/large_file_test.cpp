// An archive past 4 GiB in the 64-bit form: a sparse file whose history
// records lie beyond record 2^31 (and byte 48 GiB) and whose truss record
// lies beyond byte 4 GiB. Node and truss histories read back the values
// written there. Skipped where the file system cannot hold a sparse file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

constexpr int32_t kSteps = 3;

// Value of quantity Q (0 acc, 1 vel, 2 disp) of equation E at step S.
double value(int e, int q, int s) { return 100.0 * e + 10.0 * q + s + 0.25; }

// Writes N bytes at OFFSET of PATH; false when the file system refuses.
bool put_at(const std::string& path, int64_t offset, const void* data, size_t n) {
  const int fd = ::open(path.c_str(), O_WRONLY);
  if (fd < 0) return false;
  const bool ok = ::pwrite(fd, data, n, offset) == static_cast<ssize_t>(n);
  ::close(fd);
  return ok;
}

// Whether the file system of DIR keeps a file with a hole of 8 GiB sparse.
bool holds_sparse_files(const TempDir& dir) {
  const std::string probe = dir.file("probe");
  const int fd = ::open(probe.c_str(), O_WRONLY | O_CREAT, 0644);
  if (fd < 0) return false;
  const char byte = 1;
  const bool wrote = ::pwrite(fd, &byte, 1, int64_t{8} << 30) == 1;
  struct stat st {};
  const bool sparse = wrote && ::fstat(fd, &st) == 0 && st.st_blocks * 512 < (int64_t{1} << 20);
  ::close(fd);
  ::unlink(probe.c_str());
  return sparse;
}

TEST(LargeFiles, HistoriesPastRecord2To31AndTrussRecordPast4GiB) {
  ArchiveFixture a("P.R.W", DirectoryForm::Wide);
  if (!holds_sparse_files(a.dir())) GTEST_SKIP() << "no sparse files here";
  a.history_cases({{2, 1, kSteps, 0, 0}});
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}});
  // Six equations, three records of KSTEPS doubles each, from record F.
  const int64_t F = (int64_t{1} << 31) + 12345;
  a.writer().direct(1).add_raw_entry(sections::DMED, 1, F, F + 17, 2 * kSteps);
  // One truss record of 63 doubles (504 bytes) past byte 5 GiB.
  const int64_t T = (int64_t{5} << 30) / 504 + 3;
  a.writer().second().add_raw_entry(sections::TRUS, 3, T, T, 126);
  a.write();

  const std::string direct = a.writer().direct_path(1);
  for (int e = 1; e <= 6; ++e) {
    for (int q = 0; q < 3; ++q) {
      double rec[kSteps];
      for (int s = 1; s <= kSteps; ++s) rec[s - 1] = value(e, q, s);
      const int64_t r = F + 3 * (e - 1) + q;
      if (!put_at(direct, (r - 1) * 8 * kSteps, rec, sizeof rec))
        GTEST_SKIP() << "the file system refuses a write past record 2^31";
    }
  }
  // The truss: axial stiffness 4 and area 0.5 on equation 1 of node 1
  // (STRS rows -4, 4, 1/0.5, 1/0.5 in column 1).
  TrussRecord t;
  t.lm = {1, 2, 3, 4, 5, 6};
  t.strs.assign(24, 0.0);
  t.strs[0] = -4.0;
  t.strs[1] = 4.0;
  t.strs[2] = t.strs[3] = 2.0;
  const std::vector<double> words = t.words();
  ASSERT_TRUE(put_at(a.writer().second_path(), (T - 1) * 504, words.data(), 504));

  Kernel k;
  for (int type = 9; type <= 11; ++type) {
    for (int comp = 1; comp <= 6; ++comp) {
      const Result r = k.run(a.request(type, comp, kSteps));
      ASSERT_EQ(r.status, STATUS_DONE);
      EXPECT_TRUE(r.output_lines.empty());
      // Records hold acceleration, velocity, displacement in this order.
      for (int s = 1; s <= kSteps; ++s)
        EXPECT_EQ(r.values[static_cast<size_t>(s - 1)], value(comp, 11 - type, s)) << type << comp;
    }
  }
  const Result force = k.run(a.request(12, 1, kSteps));
  const Result stress = k.run(a.request(12, 3, kSteps));
  for (int s = 1; s <= kSteps; ++s) {
    EXPECT_EQ(force.values[static_cast<size_t>(s - 1)], 4.0 * value(1, 2, s));
    EXPECT_EQ(stress.values[static_cast<size_t>(s - 1)], 8.0 * value(1, 2, s));
  }
}

}  // namespace
}  // namespace respcore::testing
