// Section access by serial and table index: file names by product tag, the
// found rule, the direct-file digits, the form of the archive and the
// element material.
#include <gtest/gtest.h>

#include <cstring>

#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "run/kernel_state.hpp"
#include "respcore/archive_writer.hpp"
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

TEST(SectionAccess, FoundIsZeroOnlyForAMissingSection) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base, "Y.J.P");
  w.second().add(sections::THIF, 3, 5, 2).put_i32(2, 0, 77);
  w.write();
  KernelState K;
  set_base(K, base, "Y.J.P");
  int64_t start = -1;
  int32_t found = -1;
  RF_BIN_T(K.reader(), 3, 18, start, found);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(K.archive.SEC_NREC, 2);
  EXPECT_EQ(K.archive.SEC_RECLEN, 5);
  EXPECT_EQ(std::string(K.archive.SEC_TAG.data(), 4), "THIF");
  int32_t v = 0;
  ASSERT_TRUE(read_record(K.units, UNIT_SECOND, start + 1, &v, 4));
  EXPECT_EQ(v, 77);

  ::testing::internal::CaptureStdout();
  RF_BIN_T(K.reader(), 4, 18, start, found);  // other serial
  EXPECT_EQ(found, 0);
  EXPECT_EQ(start, 0);
  // The first file does not exist: the error line, and found all the same.
  RF_BIN(K.reader(), 1, 78, start, found);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(start, 0);
  // A blank row of the table is refused, and counts as found.
  RF_BIN(K.reader(), 1, 250, start, found);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "   ERROR READ-F IN RESP CORE , ID_M, ID_S=THLG      1\n"
            "   ERROR READ-F IN RESP CORE , ID_M, ID_S=          1\n");
}

TEST(SectionAccess, TablesHoldTheTagsTheKernelUses) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base, "P.R.W");
  const std::pair<const char*, int> first_file[] = {{"ELIM", 204}, {"IASI", 243}, {"IASE", 244},
                                                    {"THLG", 78}};
  const std::pair<const char*, int> second_file[] = {
      {"TRUS", 1}, {"BEAM", 2}, {"SOLD", 8}, {"MDSP", 9}, {"MSHP", 10}, {"GRMT", 14},
      {"NDSP", 17}, {"THIF", 18}, {"MSER", 32}, {"MSES", 33}, {"ELMT", 35}, {"ITTR", 36},
      {"ITBM", 37}, {"MATL", 40}, {"PSOH", 44}, {"EMBT", 102}, {"MTKM", 103}, {"NSKI", 168}};
  for (auto [t, row] : first_file) w.first().add(t, row, 2, 1).put_f64(1, 0, row);
  for (auto [t, row] : second_file) w.second().add(t, row, 2, 1).put_f64(1, 0, row);
  w.write();
  KernelState K;
  set_base(K, base);
  for (auto [t, row] : first_file) {
    int64_t start = 0;
    int32_t found = 0;
    RF_BIN(K.reader(), row, row, start, found);
    double v = 0;
    ASSERT_TRUE(read_record(K.units, UNIT_FIRST, start, &v, 8)) << t;
    EXPECT_EQ(v, row) << t;
  }
  for (auto [t, row] : second_file) {
    int64_t start = 0;
    int32_t found = 0;
    RF_BIN_T(K.reader(), row, row, start, found);
    double v = 0;
    ASSERT_TRUE(read_record(K.units, UNIT_SECOND, start, &v, 8)) << t;
    EXPECT_EQ(v, row) << t;
  }
}

TEST(SectionAccess, DirectFileDigits) {
  TempDir dir;
  const std::string base = dir.file("m");
  ArchiveWriter w(base, "H.N.Q");
  for (int n : {9, 10}) w.direct(n).add(sections::DMED, 1, 2, 3).put_f64(3, 0, n);
  w.write();
  KernelState K;
  set_base(K, base, "H.N.Q");
  int32_t reclen = -1;
  int64_t start = -1;
  double v = 0;
  RF_BIN_DIRECT(K.reader(), 1, 1, 9, reclen, start);
  EXPECT_EQ(reclen, 2);
  ASSERT_TRUE(read_record(K.units, UNIT_DIRECT, start + 2, &v, 8));
  EXPECT_EQ(v, 9.0);
  RF_BIN_DIRECT(K.reader(), 1, 1, 10, reclen, start);
  ASSERT_TRUE(read_record(K.units, UNIT_DIRECT, start + 2, &v, 8));
  EXPECT_EQ(v, 10.0);
  // 100 and above write no digits: the name of the previous look-up.
  RF_BIN_DIRECT(K.reader(), 1, 1, 100, reclen, start);
  ASSERT_TRUE(read_record(K.units, UNIT_DIRECT, start + 2, &v, 8));
  EXPECT_EQ(v, 10.0);
  // A missing file: the look-up's own line; nothing tells the caller.
  ::testing::internal::CaptureStdout();
  RF_BIN_DIRECT(K.reader(), 1, 1, 3, reclen, start);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "   ERROR READ-F IN RESP CORE , ID_M, ID_S=DMED      1\n");
  EXPECT_EQ(start, 0);
  // A missing section is silent.
  ::testing::internal::CaptureStdout();
  RF_BIN_DIRECT(K.reader(), 1, 2, 9, reclen, start);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(start, 0);
  EXPECT_EQ(reclen, 0);
}

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
  EXPECT_EQ(K.archive.dir.version, 2.0f);
  int64_t start = 0;
  int32_t found = 0;
  RF_BIN_T(K.reader(), 3, 18, start, found);
  int32_t v = 0;
  ASSERT_TRUE(read_record(K.units, UNIT_SECOND, start, &v, 4));
  EXPECT_EQ(v, 5);

  // A plain archive afterwards: the form goes back, the version does not.
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
  Section& elmt = w.second().add(sections::ELMT, 3, 4, 3);
  elmt.put_i32(1, 0, 7);
  elmt.put_i32(2, 0, 9);
  elmt.put_i32(3, 0, 8);
  std::vector<std::vector<double>> matl = {
      {7, 2.0e5, 0.3, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9},
      {9, 7.0e4, 0.25, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0.5}};
  w.second().add_f64_rows(sections::MATL, 3, matl, 14);
  w.write();
  KernelState K;
  set_base(K, base);
  READING_ELEMENT_MATERIAL_DATA(K.reader(), K.ELEM_MATERIAL, 1);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_YOUNG, 2.0e5);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_POISSON, 0.3);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_TYPE, 1);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_VALS[8], 9.0);
  READING_ELEMENT_MATERIAL_DATA(K.reader(), K.ELEM_MATERIAL, 2);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_YOUNG, 7.0e4);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_VALS[8], 0.5);
  // Material 8 is not in the table: the previous element's values stay.
  READING_ELEMENT_MATERIAL_DATA(K.reader(), K.ELEM_MATERIAL, 3);
  EXPECT_EQ(K.ELEM_MATERIAL.MAT_YOUNG, 7.0e4);
}

TEST(SectionAccess, FillRoutinesCountTheLow32Bits) {
  double a[4] = {1, 1, 1, 1};
  RSET(5.0, VecRef<double>(a, 4, "A"), 0);
  EXPECT_EQ(a[0], 1.0);
  RSET(5.0, VecRef<double>(a, 4, "A"), (int64_t{1} << 32) + 3);
  EXPECT_EQ(a[2], 5.0);
  EXPECT_EQ(a[3], 1.0);
  int32_t b[2] = {3, 3};
  R4SET(int32_t{0}, VecRef<int32_t>(b, 2, "B"), 2);
  EXPECT_EQ(b[1], 0);
}

}  // namespace
}  // namespace respcore
