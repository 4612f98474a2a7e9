// Section access through the archive reader: file names by product tag, the
// found rule, the direct-file digits, the form of the archive and the
// element material.
#include "archive/section_access.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "archive/units.hpp"
#include "respcore/archive_writer.hpp"
#include "run/kernel_state.hpp"
#include "support/temp_dir.hpp"

namespace respcore {
namespace {

using testing::TempDir;

void set_base(KernelState& K, const std::string& base, const char* tag = "P.R.W") {
  K.archive.FNAME.assign(1024, ' ');
  K.archive.FNAME.replace(0, base.size(), base);
  K.archive.FNAME_LEN = static_cast<int32_t>(base.size());
  std::memcpy(K.archive.PRODUCT_TAG.data(), tag, 5);
}

// Only a missing section is not found: a file that cannot be opened counts
// as found (its error line printed), and its reads fail.
TEST(SectionAccess, OnlyAMissingSectionIsNotFound) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base, "Y.J.P");
  w.second().add(sections::THIF, 3, 5, 2).put_i32(2, 0, 77);
  w.write();
  KernelState K;
  set_base(K, base, "Y.J.P");
  ArchiveReader A = K.reader();
  const SectionRef thif = A.find(sections::THIF, 3);
  EXPECT_TRUE(thif.found());
  EXPECT_EQ(thif.nrec, 2);
  EXPECT_EQ(thif.reclen, 5);
  int32_t v = 0;
  ASSERT_TRUE(A.read(thif, 2, &v, 4));
  EXPECT_EQ(v, 77);
  ::testing::internal::CaptureStdout();
  EXPECT_FALSE(A.find(sections::THIF, 4).found());
  const SectionRef thlg = A.find(sections::THLG, 1);  // no first file
  EXPECT_TRUE(thlg.found());
  EXPECT_FALSE(A.read(thlg, 1, &v, 4));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "   ERROR READ-F IN RESP CORE , ID_M, ID_S=THLG      1\n");
}

TEST(SectionAccess, DirectFileDigits) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base, "H.N.Q");
  for (int n : {9, 10}) w.direct(n).add(sections::DMED, 1, 2, 3).put_f64(3, 0, n);
  w.write();
  KernelState K;
  set_base(K, base, "H.N.Q");
  ArchiveReader A = K.reader();
  auto third = [&](int file_no) {
    double v = 0;
    const SectionRef s = A.find_direct(sections::DMED, 1, file_no);
    return A.read(s, 3, &v, 8) ? v : -1.0;
  };
  EXPECT_EQ(third(9), 9.0);
  EXPECT_EQ(third(10), 10.0);
  // 100 and above write no digits: the name of the previous look-up.
  EXPECT_EQ(third(100), 10.0);
  // A missing file: the look-up's own line; a missing section is silent.
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(third(3), -1.0);
  EXPECT_FALSE(A.find_direct(sections::DSPL, 1, 9).found());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "   ERROR READ-F IN RESP CORE , ID_M, ID_S=DMED      1\n");
}

// The first file decides the form of the whole archive; once a 64-bit
// archive was read, the expected version stays 2.0.
TEST(SectionAccess, TheFirstFileDecidesTheForm) {
  TempDir dir;
  KernelState K;
  const std::string base = dir.file("m");
  set_base(K, base);
  ::testing::internal::CaptureStdout();
  FIND_READING_RESULT_METHOD(K.reader());
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "   OPENING ERROR READ-F IN RESP CORE \n");
  EXPECT_EQ(K.archive.READ_METHOD, 0);

  ArchiveWriter w(base, "P.R.W", DirectoryForm::Wide);
  w.first();
  w.second().add(sections::THIF, 3, 5, 1).put_i32(1, 0, 5);
  w.write();
  close_all_units(K.units);  // a new call
  FIND_READING_RESULT_METHOD(K.reader());
  EXPECT_EQ(K.archive.READ_METHOD, 1);
  ArchiveReader A = K.reader();
  int32_t v = 0;
  ASSERT_TRUE(A.read(A.find(sections::THIF, 3), 1, &v, 4));
  EXPECT_EQ(v, 5);

  ArchiveWriter p(base, "P.R.W");
  p.first();
  p.write();
  close_all_units(K.units);
  FIND_READING_RESULT_METHOD(K.reader());
  EXPECT_EQ(K.archive.READ_METHOD, 0);
  EXPECT_EQ(K.archive.dir.version, 2.0f);
}

TEST(SectionAccess, ElementMaterial) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base);
  w.element_table({{7}, {9}, {8}});
  w.materials({{7, 2.0e5, 0.3, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
               {9, 7.0e4, 0.25, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0.5}}});
  w.write();
  KernelState K;
  set_base(K, base);
  ElementMaterial& M = K.ELEM_MATERIAL;
  READING_ELEMENT_MATERIAL_DATA(K.reader(), M, 1);
  EXPECT_EQ(std::tuple(M.MAT_YOUNG, M.MAT_POISSON, M.MAT_TYPE, M.MAT_VALS[8]),
            std::tuple(2.0e5, 0.3, 1, 9.0));
  READING_ELEMENT_MATERIAL_DATA(K.reader(), M, 2);
  EXPECT_EQ(std::tuple(M.MAT_YOUNG, M.MAT_VALS[8]), std::tuple(7.0e4, 0.5));
  // Material 8 is not in the table: the previous element's values stay.
  READING_ELEMENT_MATERIAL_DATA(K.reader(), M, 3);
  EXPECT_EQ(M.MAT_YOUNG, 7.0e4);
}

}  // namespace
}  // namespace respcore
