#include "numeric/dense.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "core/diagnostics.hpp"
#include "run/kernel_state.hpp"

extern "C" {
void dgetrf_(const int32_t* m, const int32_t* n, double* a, const int32_t* lda, int32_t* ipiv,
             int32_t* info);
void dgetri_(const int32_t* n, double* a, const int32_t* lda, const int32_t* ipiv, double* work,
             const int32_t* lwork, int32_t* info);
}

namespace respcore {
namespace {

using Dense = std::vector<double>;  // column-major n x n

// Reference inverse by LU with partial pivoting from the linked LAPACK.
Dense lapack_inverse(Dense a, int32_t n) {
  std::vector<int32_t> ipiv(static_cast<size_t>(n));
  int32_t info = 0;
  dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
  EXPECT_EQ(info, 0);
  const int32_t lwork = 64 * n;
  Dense work(static_cast<size_t>(lwork));
  dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  return a;
}

// Diagonally dominant with a positive diagonal: well conditioned, positive
// determinant, and safe to eliminate without pivoting.
Dense random_dominant(std::mt19937& rng, int n) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Dense a(static_cast<size_t>(n * n));
  for (auto& v : a) v = u(rng);
  for (int i = 0; i < n; ++i) a[static_cast<size_t>(i + i * n)] = n + 1.0 + std::fabs(u(rng));
  return a;
}

MatRef<double> view(Dense& a, int n, const char* name) {
  return MatRef<double>(a.data(), n, n, name);
}

TEST(Inverse, MatchesLapackForSizesOneToTwelve) {
  std::mt19937 rng(20240611);
  KernelState K;
  for (int n = 1; n <= 12; ++n) {
    Dense a = random_dominant(rng, n);
    const Dense original = a;
    const Dense expected = lapack_inverse(a, n);
    Dense inv(static_cast<size_t>(n * n), -99.0);
    INVERSE(K.diag, view(a, n, "A"), view(inv, n, "A_INV"), n);
    for (size_t i = 0; i < inv.size(); ++i)
      EXPECT_NEAR(inv[i], expected[i], 1e-13) << "n=" << n << " entry " << i;
    if (n == 2 || n == 3) {
      EXPECT_EQ(a, original) << "A must survive for n=" << n;
    } else {
      // The elimination leaves A reduced to the identity.
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
          EXPECT_NEAR(a[static_cast<size_t>(i + j * n)], i == j ? 1.0 : 0.0, 1e-14);
      if (n > 1) {
        EXPECT_NE(a, original);
      }
    }
  }
  EXPECT_TRUE(K.diag.messages.empty());
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(Inverse, ClosedFormsByHand) {
  KernelState K;
  Dense a2 = {4.0, 2.0, 7.0, 6.0};  // [[4,7],[2,6]], det 10
  Dense i2(4);
  INVERSE(K.diag, view(a2, 2, "A"), view(i2, 2, "A_INV"), 2);
  EXPECT_DOUBLE_EQ(i2[0], 0.6);
  EXPECT_DOUBLE_EQ(i2[1], -0.2);
  EXPECT_DOUBLE_EQ(i2[2], -0.7);
  EXPECT_DOUBLE_EQ(i2[3], 0.4);

  Dense a3 = {2.0, 0.0, 0.0, 0.0, 3.0, 0.0, 1.0, 0.0, 4.0};  // upper triangular, det 24
  double det = 0.0;
  Dense i3 = a3;
  INVERSE3X3(K.diag, view(i3, 3, "A_INV"), det);
  EXPECT_DOUBLE_EQ(det, 24.0);
  EXPECT_DOUBLE_EQ(i3[0], 0.5);
  EXPECT_DOUBLE_EQ(i3[4], 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(i3[8], 0.25);
  EXPECT_DOUBLE_EQ(i3[6], -0.125);  // (1,3)
  EXPECT_EQ(i3[1], 0.0);
}

TEST(Inverse, ExactZeroPivotsArePatchedSilently) {
  KernelState K;
  Dense z1 = {0.0}, i1 = {7.0};
  INVERSE(K.diag, view(z1, 1, "A"), view(i1, 1, "A_INV"), 1);
  EXPECT_EQ(i1[0], 1.0);

  Dense z4(16, 0.0), i4(16, 5.0);
  INVERSE(K.diag, view(z4, 4, "A"), view(i4, 4, "A_INV"), 4);
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 4; ++i) EXPECT_EQ(i4[static_cast<size_t>(i + 4 * j)], i == j ? 1.0 : 0.0);

  // A zero that appears only during elimination: after row 1 is taken from
  // row 2 the (2,2) pivot is 0 and becomes 1, which is the same as starting
  // from the matrix with (2,2) = 2 (row 2 = [1 2 1 0]).
  Dense a = {1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 3, 1, 0, 0, 1, 2};
  Dense patched = a;
  patched[5] = 2.0;
  const Dense expected = lapack_inverse(patched, 4);
  Dense inv(16);
  INVERSE(K.diag, view(a, 4, "A"), view(inv, 4, "A_INV"), 4);
  for (size_t i = 0; i < 16; ++i) EXPECT_NEAR(inv[i], expected[i], 1e-13) << i;
  EXPECT_TRUE(K.diag.messages.empty());
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(Inverse, TinyPivotAndNegativeDeterminantAboveThreeAreInverted) {
  KernelState K;
  Dense a(16, 0.0);
  a[0] = 1e-300;
  a[5] = -2.0;
  a[10] = 4.0;
  a[15] = 8.0;
  Dense inv(16);
  INVERSE(K.diag, view(a, 4, "A"), view(inv, 4, "A_INV"), 4);
  EXPECT_DOUBLE_EQ(inv[0], 1e300);
  EXPECT_DOUBLE_EQ(inv[5], -0.5);
  EXPECT_DOUBLE_EQ(inv[10], 0.25);
  EXPECT_DOUBLE_EQ(inv[15], 0.125);
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(Inverse, NonPositiveSizeTouchesNothing) {
  KernelState K;
  Dense a = {3.0}, inv = {9.0};
  INVERSE(K.diag, view(a, 1, "A"), view(inv, 1, "A_INV"), 0);
  INVERSE(K.diag, view(a, 1, "A"), view(inv, 1, "A_INV"), -2);
  EXPECT_EQ(a[0], 3.0);
  EXPECT_EQ(inv[0], 9.0);
}

TEST(Inverse, LeadingDimensionIsTheSizePassed) {
  // A 3x3 matrix handed over in the first nine cells of a larger 5x5 store.
  KernelState K;
  Dense big(25, 0.0), out(25, 0.0);
  const double m[9] = {2, 0, 0, 0, 4, 0, 0, 0, 5};
  for (int i = 0; i < 9; ++i) big[static_cast<size_t>(i)] = m[i];
  INVERSE(K.diag, view(big, 5, "A"), view(out, 5, "A_INV"), 3);
  EXPECT_DOUBLE_EQ(out[0], 0.5);
  EXPECT_DOUBLE_EQ(out[4], 0.25);
  EXPECT_DOUBLE_EQ(out[8], 0.2);
  EXPECT_EQ(out[9], 0.0);
}

const char* const kJacobianMessage =
    "\n"
    " JACOBIAN DETERMINANT OF ELEMENT NO.       0 IS LITTLE THAN ZERO.\n"
    " PLEASE CHECK THE SHAPE OF ELEMENT NO.      0.\n";

void expect_fatal(Dense a, int n) {
  KernelState K;
  Dense inv(static_cast<size_t>(n * n));
  ::testing::internal::CaptureStdout();
  EXPECT_THROW(INVERSE(K.diag, view(a, n, "A"), view(inv, n, "A_INV"), n), FatalStop);
  const std::string out = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(K.diag.messages, kJacobianMessage);
  EXPECT_EQ(out, kJacobianMessage);
  ASSERT_EQ(K.diag.output_lines.size(), 3u);
  EXPECT_EQ(K.diag.output_lines[0], "");
}

TEST(Inverse, NonPositiveDeterminantOfTwoAndThreeStopsTheRun) {
  expect_fatal({1.0, 2.0, 2.0, 4.0}, 2);  // singular
  expect_fatal({0.0, 1.0, 1.0, 0.0}, 2);  // det -1, invertible but refused
  expect_fatal({1, 0, 0, 0, 1, 0, 0, 0, 0}, 3);
  expect_fatal({0, 1, 0, 1, 0, 0, 0, 0, 1}, 3);  // det -1
}

TEST(Inverse, NanDeterminantPassesTheCheck) {
  KernelState K;
  Dense work = {std::nan(""), 0.0, 0.0, 1.0};
  double det = 0.0;
  EXPECT_NO_THROW(INVERSE2X2(K.diag, view(work, 2, "A_INV"), det));
  EXPECT_TRUE(std::isnan(det));
  EXPECT_TRUE(K.diag.messages.empty());
}

// A random symmetric matrix whose leading minors are all non-zero; half of
// the cases are indefinite.
Dense random_symmetric(std::mt19937& rng, int n, bool definite) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Dense a(static_cast<size_t>(n * n));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) {
      const double v = u(rng);
      a[static_cast<size_t>(i + j * n)] = v;
      a[static_cast<size_t>(j + i * n)] = v;
    }
  for (int i = 0; i < n; ++i) {
    const double sign = (definite || i % 2 == 0) ? 1.0 : -1.0;
    a[static_cast<size_t>(i + i * n)] = sign * (n + 1.0);
  }
  return a;
}

TEST(SymmetricSolve, FactorAndSubstituteSolveRandomSystems) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> u(-5.0, 5.0);
  for (int n = 1; n <= 10; ++n) {
    for (bool definite : {true, false}) {
      const Dense a = random_symmetric(rng, n, definite);
      const int nrhs = 3;
      Dense b(static_cast<size_t>(n * nrhs));
      for (auto& v : b) v = u(rng);
      Dense f = a, x = b;
      SYMDF(n, view(f, n, "ST"));
      SUBSTF(n, nrhs, view(f, n, "ST"), MatRef<double>(x.data(), n, nrhs, "WORK"));
      for (int l = 0; l < nrhs; ++l)
        for (int i = 0; i < n; ++i) {
          double r = -b[static_cast<size_t>(i + l * n)];
          for (int k = 0; k < n; ++k)
            r += a[static_cast<size_t>(i + k * n)] * x[static_cast<size_t>(k + l * n)];
          EXPECT_NEAR(r, 0.0, 1e-12) << "n=" << n << " definite=" << definite;
        }
      // Both triangles of the factor hold the same unit upper factor.
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < j; ++i)
          EXPECT_EQ(f[static_cast<size_t>(i + j * n)], f[static_cast<size_t>(j + i * n)]);
    }
  }
}

TEST(SymmetricSolve, SizeOneOnlyDivides) {
  Dense st = {4.0}, work = {2.0, -6.0};
  SYMDF(1, view(st, 1, "ST"));
  EXPECT_EQ(st[0], 4.0);
  SUBSTF(1, 2, view(st, 1, "ST"), MatRef<double>(work.data(), 1, 2, "WORK"));
  EXPECT_EQ(work[0], 0.5);
  EXPECT_EQ(work[1], -1.5);
}

TEST(Condensation, MatchesExplicitSchurComplement) {
  std::mt19937 rng(99);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  const int nt = 9;
  for (int nc = 0; nc <= 5; ++nc) {
    const int nr = nt - nc;
    const Dense st0 = random_symmetric(rng, nt, true);
    Dense forc0(nt);
    for (auto& v : forc0) v = u(rng);
    auto at = [&](int i, int j) { return st0[static_cast<size_t>((i - 1) + (j - 1) * nt)]; };

    // Explicit inverse of the condensed block by LAPACK, then the products.
    Dense kcc(static_cast<size_t>(nc * nc));
    for (int j = 1; j <= nc; ++j)
      for (int i = 1; i <= nc; ++i)
        kcc[static_cast<size_t>((i - 1) + (j - 1) * nc)] = at(nr + i, nr + j);
    const Dense kcc_inv = nc > 0 ? lapack_inverse(kcc, nc) : Dense{};
    std::vector<Dense> g(static_cast<size_t>(nr + 1), Dense(static_cast<size_t>(nc), 0.0));
    for (int c = 1; c <= nr + 1; ++c)
      for (int i = 1; i <= nc; ++i)
        for (int k = 1; k <= nc; ++k) {
          const double rhs = c <= nr ? at(nr + k, c) : forc0[static_cast<size_t>(nr + k - 1)];
          g[static_cast<size_t>(c - 1)][static_cast<size_t>(i - 1)] +=
              kcc_inv[static_cast<size_t>((i - 1) + (k - 1) * nc)] * rhs;
        }

    for (int flag : {0, 1}) {
      Dense st = st0, forc = forc0;
      Dense work(static_cast<size_t>(std::max(nc * nc, 1)), 0.0);
      Dense work1(static_cast<size_t>(std::max(nc * (nr + 1), 1)), 0.0);
      STCOND(nt, nc, view(st, nt, "ST"), VecRef<double>(forc.data(), nt, "FORC"),
             MatRef<double>(work.data(), nc, nc, "WORK"),
             MatRef<double>(work1.data(), nc, nr + 1, "WORK1"), flag);
      for (int c = 1; c <= nr + 1; ++c)
        for (int i = 1; i <= nc; ++i)
          EXPECT_NEAR(work1[static_cast<size_t>((i - 1) + (c - 1) * nc)],
                      g[static_cast<size_t>(c - 1)][static_cast<size_t>(i - 1)], 1e-13);
      if (flag == 1) {
        EXPECT_EQ(st, st0);
        EXPECT_EQ(forc, forc0);
        continue;
      }
      for (int j = 1; j <= nt; ++j)
        for (int i = 1; i <= nt; ++i) {
          double expected = at(i, j);
          if (i <= nr && j <= nr)
            for (int k = 1; k <= nc; ++k)
              expected -= at(i, nr + k) * g[static_cast<size_t>(j - 1)][static_cast<size_t>(k - 1)];
          EXPECT_NEAR(st[static_cast<size_t>((i - 1) + (j - 1) * nt)], expected, 1e-13)
              << "nc=" << nc << " (" << i << "," << j << ")";
        }
      for (int i = 1; i <= nt; ++i) {
        double expected = forc0[static_cast<size_t>(i - 1)];
        if (i <= nr)
          for (int k = 1; k <= nc; ++k)
            expected -= at(i, nr + k) * g[static_cast<size_t>(nr)][static_cast<size_t>(k - 1)];
        EXPECT_NEAR(forc[static_cast<size_t>(i - 1)], expected, 1e-13);
      }
    }
  }
}

TEST(BlockRotation, MatchesExplicitTripleProduct) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  const int n1 = 12;
  for (int ndof : {3, 6, 12}) {
    Dense s(static_cast<size_t>(n1 * n1));
    for (auto& v : s) v = u(rng);
    // A proper rotation about a skew axis.
    const double a = 0.7, b = -0.4;
    const double t[9] = {std::cos(a),
                         std::sin(a),
                         0.0,
                         -std::sin(a) * std::cos(b),
                         std::cos(a) * std::cos(b),
                         std::sin(b),
                         std::sin(a) * std::sin(b),
                         -std::cos(a) * std::sin(b),
                         std::cos(b)};
    Dense tm(t, t + 9);
    // B: block diagonal over the leading NDOF rows, identity elsewhere.
    Dense bmat(static_cast<size_t>(n1 * n1), 0.0);
    for (int i = 0; i < n1; ++i) bmat[static_cast<size_t>(i + i * n1)] = 1.0;
    for (int blk = 0; blk < ndof; blk += 3)
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
          bmat[static_cast<size_t>((blk + r) + (blk + c) * n1)] = t[r + 3 * c];
    Dense expected(static_cast<size_t>(n1 * n1), 0.0);
    for (int i = 0; i < n1; ++i)
      for (int j = 0; j < n1; ++j) {
        double v = 0.0;
        for (int p = 0; p < n1; ++p)
          for (int q = 0; q < n1; ++q)
            v += bmat[static_cast<size_t>(p + i * n1)] * s[static_cast<size_t>(p + q * n1)] *
                 bmat[static_cast<size_t>(q + j * n1)];
        expected[static_cast<size_t>(i + j * n1)] = v;
      }
    Dense s2(static_cast<size_t>(n1 * n1), 0.0);
    Dense rotated = s;
    LOCTOGLO(view(rotated, n1, "S1"), n1, view(s2, n1, "S2"), n1, view(tm, 3, "T"), ndof);
    for (int j = 0; j < n1; ++j)
      for (int i = 0; i < n1; ++i) {
        const size_t at = static_cast<size_t>(i + j * n1);
        if (i < ndof && j < ndof)
          EXPECT_NEAR(rotated[at], expected[at], 1e-14) << ndof;
        else
          EXPECT_EQ(rotated[at], s[at]) << "outside the rotated block, ndof " << ndof;
      }
  }
}

}  // namespace
}  // namespace respcore
