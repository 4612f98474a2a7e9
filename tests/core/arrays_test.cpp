// The checked arrays: a subscript out of range is reported, reads zero and
// writes nothing; absurd sizes are refused; the packed counts of the line
// element records.
#include "core/arrays.hpp"

#include <gtest/gtest.h>

#include <tuple>

namespace respcore {
namespace {

TEST(CheckedArrays, OutOfRangeReadGivesZeroAndWriteIsDropped) {
  Vec<double> v("SA", 3);
  v(1) = 1.5;
  ::testing::internal::CaptureStderr();
  v(4) = 7.0;             // dropped
  const double r = v(0);  // zero
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(r, 0.0);
  EXPECT_EQ(v(1), 1.5);
  EXPECT_EQ(err,
            "array bound exceeded: SA subscript 4 bound 1:3\n"
            "array bound exceeded: SA subscript 0 bound 1:3\n");
}

TEST(CheckedArrays, MatrixIsColumnMajorAndChecksEachSubscript) {
  Mat<int32_t> m("LM", 2, 3);
  m(2, 1) = 5;
  m(1, 2) = 7;
  EXPECT_EQ(m.data()[1], 5);
  EXPECT_EQ(m.data()[2], 7);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(m(3, 1), 0);
  EXPECT_EQ(m(1, 4), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "array bound exceeded: LM subscript 3 bound 1:2\n"
            "array bound exceeded: LM subscript 4 bound 1:3\n");
}

TEST(CheckedArrays, AbsurdSizesAreRefusedNotAttempted) {
  EXPECT_THROW(Vec<double>("X", int64_t{1} << 40), std::bad_alloc);
  EXPECT_THROW(Mat<double>("X", int64_t{1} << 31, int64_t{1} << 31), std::bad_alloc);
  Vec<double> empty("X", -5);
  EXPECT_EQ(empty.size(), 0);
}

TEST(PackedWords, CountIsTheTwoDigitsBehindThePoint) {
  EXPECT_EQ(std::tuple(packed_count(1234.12), packed_count(1234.26), packed_count(7.0)),
            std::tuple(12, 26, 0));
  EXPECT_EQ(std::tuple(trunc_i32(1234.12), trunc_i32(-3.9), trunc_i32(1e300)),
            std::tuple(1234, -3, 2147483647));
}

}  // namespace
}  // namespace respcore
