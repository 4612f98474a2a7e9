// The inverse against LAPACK on random matrices, and the rules of the small
// inverses.
#include "numeric/dense.hpp"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/diagnostics.hpp"
#include "run/kernel_state.hpp"

extern "C" {
void dgetrf_(const int32_t*, const int32_t*, double*, const int32_t*, int32_t*, int32_t*);
void dgetri_(const int32_t*, double*, const int32_t*, const int32_t*, double*, const int32_t*,
             int32_t*);
}

namespace respcore {
namespace {

using Dense = std::vector<double>;  // column-major n x n

Dense lapack_inverse(Dense a, int32_t n) {
  std::vector<int32_t> ipiv(static_cast<size_t>(n));
  int32_t info = 0, lwork = 64 * n;
  Dense work(static_cast<size_t>(lwork));
  dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
  dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  return a;
}

// Random, with a dominant positive diagonal (symmetric when asked).
Dense random_matrix(std::mt19937& rng, int n, bool symmetric = false) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Dense a(static_cast<size_t>(n * n));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      a[static_cast<size_t>(i + j * n)] = i == j ? n + 1.0 + std::fabs(u(rng)) : u(rng);
  if (symmetric)
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < j; ++i)
        a[static_cast<size_t>(j + i * n)] = a[static_cast<size_t>(i + j * n)];
  return a;
}

MatRef<double> view(Dense& a, int n, const char* name) {
  return MatRef<double>(a.data(), n, n, name);
}

TEST(Inverse, MatchesLapackAndTheClosedForms) {
  std::mt19937 rng(20240611);
  KernelState K;
  for (int n = 1; n <= 12; ++n) {
    Dense a = random_matrix(rng, n);
    const Dense want = lapack_inverse(a, n);
    Dense inv(static_cast<size_t>(n * n), -99.0);
    INVERSE(K.diag, view(a, n, "A"), view(inv, n, "A_INV"), n);
    for (size_t i = 0; i < inv.size(); ++i)
      EXPECT_NEAR(inv[i], want[i], 1e-13) << "n=" << n << " entry " << i;
  }
  Dense a3 = {2.0, 0.0, 0.0, 0.0, 3.0, 0.0, 1.0, 0.0, 4.0};  // upper triangular, det 24
  double det = 0.0;
  INVERSE3X3(K.diag, view(a3, 3, "A_INV"), det);
  EXPECT_EQ(det, 24.0);
  EXPECT_EQ(a3, (Dense{0.5, 0.0, 0.0, 0.0, 1.0 / 3.0, 0.0, -0.125, 0.0, 0.25}));
  EXPECT_TRUE(K.diag.messages.empty());
}

// An exact zero pivot becomes 1: a zero matrix inverts to the identity, and a
// zero met during the elimination acts as a 1 there.
TEST(Inverse, ExactZeroPivotsArePatchedSilently) {
  KernelState K;
  Dense z(16, 0.0), iz(16, 5.0);
  INVERSE(K.diag, view(z, 4, "A"), view(iz, 4, "A_INV"), 4);
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) EXPECT_EQ(iz[static_cast<size_t>(i + 4 * j)], i == j ? 1.0 : 0.0);
  Dense a = {1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 3, 1, 0, 0, 1, 2}, patched = a, inv(16);
  patched[5] = 2.0;
  const Dense want = lapack_inverse(patched, 4);
  INVERSE(K.diag, view(a, 4, "A"), view(inv, 4, "A_INV"), 4);
  for (size_t i = 0; i < 16; ++i) EXPECT_NEAR(inv[i], want[i], 1e-13) << i;
  EXPECT_TRUE(K.diag.messages.empty());
}

// A 2x2 or 3x3 determinant at or below zero stops the run with the shape
// message; a NaN one passes.
TEST(Inverse, NonPositiveDeterminantOfTwoAndThreeStopsTheRun) {
  const char* message =
      "\n JACOBIAN DETERMINANT OF ELEMENT NO.       0 IS LITTLE THAN ZERO.\n"
      " PLEASE CHECK THE SHAPE OF ELEMENT NO.      0.\n";
  for (Dense a : {Dense{1, 2, 2, 4}, Dense{0, 1, 1, 0}, Dense{1, 0, 0, 0, 1, 0, 0, 0, 0},
                  Dense{0, 1, 0, 1, 0, 0, 0, 0, 1}}) {
    const int n = a.size() == 4 ? 2 : 3;
    KernelState K;
    Dense inv(a.size());
    ::testing::internal::CaptureStdout();
    EXPECT_THROW(INVERSE(K.diag, view(a, n, "A"), view(inv, n, "A_INV"), n), FatalStop);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), message);
    EXPECT_EQ(K.diag.messages, message);
  }
  KernelState K;
  Dense nan = {std::nan(""), 0.0, 0.0, 1.0};
  double det = 0.0;
  EXPECT_NO_THROW(INVERSE2X2(K.diag, view(nan, 2, "A_INV"), det));
}

}  // namespace
}  // namespace respcore
