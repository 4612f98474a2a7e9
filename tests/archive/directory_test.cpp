// Section look-ups in the archive's directories: every status, every error
// line, the chaining of blocks and the two directory forms.
#include "archive/directory.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <thread>
#include <tuple>

#include "archive/units.hpp"
#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"
#include "run/kernel_state.hpp"
#include "support/temp_dir.hpp"

namespace respcore {
namespace {

using testing::TempDir;

Tag4 tag(const char* s) {
  Tag4 t;
  std::memcpy(t.data(), s, 4);
  return t;
}

struct Lookup {
  int32_t status = -1;
  int64_t first = -1;
  int32_t reclen = -1;
  int64_t nrec = -1;
  std::string out;
};

Lookup plain(KernelState& K, const std::string& path, const char* t, int32_t serial,
             int32_t code = 2) {
  Lookup r;
  int32_t first = -1;
  ::testing::internal::CaptureStdout();
  READ_F(K.reader(), 63, path, static_cast<int32_t>(path.size()), code, tag(t), serial, first,
         r.reclen, r.nrec, r.status);
  r.out = ::testing::internal::GetCapturedStdout();
  r.first = first;
  return r;
}

Lookup wide(KernelState& K, const std::string& path, const char* t, int32_t serial) {
  Lookup r;
  ::testing::internal::CaptureStdout();
  READ_F_8(K.reader(), 32, path, static_cast<int32_t>(path.size()), 2, tag(t), serial, r.first,
           r.reclen, r.nrec, r.status);
  r.out = ::testing::internal::GetCapturedStdout();
  return r;
}

std::string error_line(const char* t, const char* serial5) {
  return std::string("   ERROR READ-F IN RESP CORE , ID_M, ID_S=") + t + "  " + serial5 + "\n";
}

TEST(DirectoryLookup, FindsSectionsAndMissesSilently) {
  TempDir dir;
  const std::string path = dir.file("a.PA2");
  ArchiveFile f;
  Section& s = f.add(sections::TRUS, 3, 6, 4);
  for (int r = 1; r <= 4; ++r) s.put_f64(r, 0, 10.0 * r);
  f.add(sections::TRUS, 4, 2, 1).put_f64(1, 0, -1.0);
  f.add(sections::BEAM, 3, 2, 1).put_f64(1, 0, 7.5);
  f.write(path);

  KernelState K;
  Lookup a = plain(K, path, "TRUS", 3);
  EXPECT_EQ(std::tuple(a.status, a.reclen, a.nrec, a.first, a.out),
            std::tuple(0, 6, 4, s.first, ""));
  double v = 0;
  ASSERT_TRUE(read_record(K.units, 63, a.first + 2, &v, 8));
  EXPECT_EQ(v, 30.0);
  // Same tag, other serial: a section of its own, and the unit takes its
  // record length.
  EXPECT_EQ(plain(K, path, "TRUS", 4).reclen, 2);
  EXPECT_FALSE(read_record(K.units, 63, a.first + 2, &v, 24));
  // A section with first = last has one record.
  Lookup c = plain(K, path, "BEAM", 3);
  EXPECT_EQ(c.nrec, 1);
  ASSERT_TRUE(read_record(K.units, 63, c.first, &v, 8));
  EXPECT_EQ(v, 7.5);
  // Missing: status 4, the outputs zero, no line.
  Lookup r = plain(K, path, "BEAM", 4);
  EXPECT_EQ(std::tuple(r.status, r.first, r.reclen, r.nrec, r.out), std::tuple(4, 0, 0, 0, ""));
}

// A look-up made again in the same call, after others moved its unit,
// finds the same, leaves the unit on its own section again, and a failing
// one prints its line each time.
TEST(DirectoryLookup, RepeatedLookUpsInACallAgree) {
  TempDir dir;
  const std::string path = dir.file("r.PA2");
  ArchiveFile f;
  f.add(sections::TRUS, 3, 6, 4).put_f64(3, 0, 30.0);
  f.add(sections::BEAM, 3, 2, 1).put_f64(1, 0, 7.5);
  f.write(path);
  KernelState K;
  const std::string bad = error_line("TRUS", "    3");
  for (int round = 0; round < 3; ++round) {
    const Lookup t = plain(K, path, "TRUS", 3);
    EXPECT_EQ(std::tuple(t.status, t.reclen, t.nrec, t.out), std::tuple(0, 6, 4, ""));
    double v[3] = {};
    EXPECT_TRUE(read_record(K.units, 63, t.first + 2, v, 24));
    EXPECT_EQ(v[0], 30.0);
    EXPECT_EQ(plain(K, path, "TRUS", 3, 5).out, bad);
    EXPECT_FALSE(read_record(K.units, 63, t.first + 2, v, 24));
    EXPECT_EQ(plain(K, path, "BEAM", 3).reclen, 2);
    EXPECT_EQ(plain(K, dir.file("none.PA2"), "TRUS", 3).out, bad);
    EXPECT_FALSE(read_record(K.units, 63, 1, v, 8));
  }
}

TEST(DirectoryLookup, ChainedBlocksAreFollowedUntilABlankEntry) {
  TempDir dir;
  const std::string path = dir.file("a.PA2");
  ArchiveFile f;
  for (int i = 1; i <= 45; ++i) f.add("SECT", i, 2, 1).put_f64(1, 0, i);
  f.write(path);
  KernelState K;
  for (int i : {1, 19, 20, 39, 40, 45}) {
    Lookup r = plain(K, path, "SECT", i);
    ASSERT_EQ(r.status, 0) << i;
    double v = 0;
    ASSERT_TRUE(read_record(K.units, 63, r.first, &v, 8));
    EXPECT_EQ(v, i);
  }
  EXPECT_EQ(plain(K, path, "SECT", 46).status, 4);

  // A blank entry in the first block hides the blocks behind it.
  const std::string hidden = dir.file("b.PA2");
  ArchiveFile g;
  g.add("AAAA", 1, 2, 1);
  g.add_blank_entry();
  for (int i = 1; i <= 30; ++i) g.add("SECT", i, 2, 1);
  g.write(hidden);
  EXPECT_EQ(plain(K, hidden, "AAAA", 1).status, 0);
  Lookup r = plain(K, hidden, "SECT", 25);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(4, ""));
  EXPECT_EQ(plain(K, hidden, "SECT", 1).status, 4);
}

TEST(DirectoryLookup, BadRequestsAreRefusedWithTheErrorLine) {
  TempDir dir;
  const std::string path = dir.file("a.PA2");
  ArchiveFile f;
  f.add(sections::TRUS, 3, 6, 1);
  f.write(path);
  KernelState K;
  // The outputs are not touched by a refused request.
  Lookup r = plain(K, path, "HEAD", 1);
  EXPECT_EQ(std::tuple(r.status, r.out, r.reclen), std::tuple(6, error_line("HEAD", "    1"), -1));
  r = plain(K, path, "    ", 12345);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(6, error_line("    ", "12345")));
  int32_t first = 0, reclen = 0, status = 0;
  int64_t nrec = 0;
  ::testing::internal::CaptureStdout();
  READ_F(K.reader(), 63, path, 0, 2, tag("TRUS"), 3, first, reclen, nrec, status);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), error_line("TRUS", "    3"));
  EXPECT_EQ(status, 6);
}

TEST(DirectoryLookup, MissingFileAndBrokenDirectories) {
  TempDir dir;
  KernelState K;
  Lookup r = plain(K, dir.file("none.PA2"), "TRUS", 3);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(1, error_line("TRUS", "    3")));

  const std::string path = dir.file("a.PA2");
  ArchiveFile f;
  f.add(sections::TRUS, 3, 6, 1);
  const auto good = f.build();
  auto write_variant = [&](const std::string& name, size_t off, const void* bytes, size_t n,
                           size_t keep = 0) {
    std::vector<unsigned char> b = good;
    if (n) std::memcpy(b.data() + off, bytes, n);
    if (keep) b.resize(keep);
    std::ofstream(dir.file(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
    return dir.file(name);
  };
  // Serial in a field of 5, with a negative one too.
  const char qvx[4] = {'Q', 'V', 'Y', ' '};
  r = plain(K, write_variant("id.PA2", 0, qvx, 4), "TRUS", -42);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(7, error_line("TRUS", "  -42")));
  const float v2 = 2.0f;
  EXPECT_EQ(plain(K, write_variant("ver.PA2", 8, &v2, 4), "TRUS", 3).status, 7);
  const float vnan = std::nanf("");
  EXPECT_EQ(plain(K, write_variant("nan.PA2", 8, &vnan, 4), "TRUS", 3).status, 7);
  const int32_t entries = 19;
  EXPECT_EQ(plain(K, write_variant("ent.PA2", 12, &entries, 4), "TRUS", 3).status, 7);
  EXPECT_EQ(plain(K, write_variant("code.PA2", 0, nullptr, 0), "TRUS", 3, 5).status, 7);
  // Cut inside the entries: a read error.
  r = plain(K, write_variant("cut.PA2", 0, nullptr, 0, 50), "TRUS", 3);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(2, error_line("TRUS", "    3")));
  // A chain that points back to its own head ends the search.
  const int32_t self = 1;
  EXPECT_EQ(plain(K, write_variant("loop.PA2", 16, &self, 4), "XXXX", 3).status, 4);
  // A section with a non-positive record length cannot be opened.
  const int32_t zero = 0;
  r = plain(K, write_variant("rl.PA2", 2 * 20 + 16, &zero, 4), "TRUS", 3);
  EXPECT_EQ(std::tuple(r.status, r.reclen), std::tuple(1, 0));
}

TEST(DirectoryLookup, WideFormAndTheVersionExpectation) {
  TempDir dir;
  const std::string path = dir.file("w.PA2");
  ArchiveFile f(DirectoryForm::Wide);
  for (int i = 1; i <= 25; ++i) f.add("SECT", i, 4, 3).put_f64(3, 0, i);
  f.write(path);
  KernelState K;
  // Still expecting version 1.0: the head does not fit.
  Lookup r = wide(K, path, "SECT", 22);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(7, error_line("SECT", "   22")));
  K.archive.dir.version = 2.0f;
  r = wide(K, path, "SECT", 22);
  ASSERT_EQ(std::tuple(r.status, r.nrec, r.reclen), std::tuple(0, 3, 4));
  double v = 0;
  ASSERT_TRUE(read_record(K.units, 32, r.first + 2, &v, 8));
  EXPECT_EQ(v, 22.0);
  r = wide(K, path, "SECT", 26);
  EXPECT_EQ(std::tuple(r.status, r.first), std::tuple(4, 0));
}

// Files kept open between calls: an unchanged file is neither opened nor
// walked again, yet a failed look-up prints its line in every call; a file
// rewritten in place (same size) or replaced is read afresh.
TEST(DirectoryLookup, KeptFilesAreReadAfreshOnceChanged) {
  TempDir dir;
  const std::string path = dir.file("k.PA2");
  // TRUS holds V; SWAPPED lays BEAM first, which moves TRUS.
  auto write = [&](const std::string& to, double v, bool swapped) {
    ArchiveFile f;
    f.add(swapped ? sections::BEAM : sections::TRUS, 3, 2, 1).put_f64(1, 0, swapped ? -v : v);
    f.add(swapped ? sections::TRUS : sections::BEAM, 3, 2, 1).put_f64(1, 0, swapped ? v : -v);
    f.write(to);
    // Past the clock's tick, no later write can repeat the file's stamp.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
  };
  KernelState K;
  K.units.keep_files = true;
  auto call = [&](const char* bad_line = nullptr) {
    const Lookup r = plain(K, path, "TRUS", 3);
    double v = 0;
    EXPECT_TRUE(read_record(K.units, 63, r.first, &v, 8));
    if (bad_line != nullptr) {
      EXPECT_EQ(plain(K, path, "TRUS", 3, 5).out, bad_line);
    }
    close_all_units(K.units);
    return v;
  };
  write(path, 1.0, false);
  EXPECT_EQ(call(), 1.0);
  const uint64_t opened = K.units.opened, walked = K.units.walked;
  const std::string bad = error_line("TRUS", "    3");  // a head of another file code
  EXPECT_EQ(call(bad.c_str()), 1.0);
  EXPECT_EQ(call(bad.c_str()), 1.0);
  EXPECT_EQ(std::tuple(K.units.opened, K.units.walked), std::tuple(opened, walked + 1));

  write(path, 2.0, true);
  EXPECT_EQ(call(), 2.0);
  write(dir.file("new"), 3.0, false);
  ASSERT_EQ(std::rename(dir.file("new").c_str(), path.c_str()), 0);
  EXPECT_EQ(call(), 3.0);
  EXPECT_EQ(K.units.opened, opened + 2);
}

// A new file, in place of whatever had the name, with an empty directory of
// one block that look-ups read.
TEST(CreateDirectory, LaysAnEmptyDirectoryThatLookUpsRead) {
  TempDir dir;
  Kernel k;
  EXPECT_EQ(k.create_directory("", 2, 0), 6);
  const std::string path = dir.file("new.PA1");
  std::ofstream(path) << "old contents that must go";
  ASSERT_EQ(k.create_directory(path, 2, 0), 0);
  EXPECT_EQ(std::ifstream(path, std::ios::ate | std::ios::binary).tellg(), 21 * 20);
  KernelState K;
  const Lookup r = plain(K, path, "TRUS", 3);
  EXPECT_EQ(std::tuple(r.status, r.out), std::tuple(4, ""));
}

}  // namespace
}  // namespace respcore
