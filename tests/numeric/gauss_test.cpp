#include "numeric/gauss.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace respcore {
namespace {

uint64_t bits(double v) { return std::bit_cast<uint64_t>(v); }

TEST(GaussTable, StoredConstantsHaveTheirExactBitPatterns) {
  double xi = 0.0, wt = 0.0;
  INTPT4(2, 2, xi, wt);
  EXPECT_EQ(bits(xi), 0x3fe279a74590331dULL);
  INTPT4(3, 3, xi, wt);
  // The three-point abscissa as stored (digits ...438), not the exact root.
  EXPECT_EQ(bits(xi), 0x3fe8c97ef43f70afULL);
  EXPECT_EQ(bits(wt), 0x3fe1c71c71c71c76ULL);
  EXPECT_NE(xi, std::sqrt(0.6));
  INTPT4(3, 2, xi, wt);
  EXPECT_EQ(bits(wt), 0x3fec71c71c71c71dULL);
  INTPT4(4, 3, xi, wt);
  EXPECT_EQ(bits(xi), 0x3fd5c23fd9dd3df7ULL);
  EXPECT_EQ(bits(wt), 0x3fe4de5f840c24c9ULL);
  INTPT4(4, 4, xi, wt);
  EXPECT_EQ(bits(xi), 0x3feb8e6dbcf63989ULL);
  EXPECT_EQ(bits(wt), 0x3fd64340f7e7b66eULL);
}

// An NPT-point rule integrates every polynomial up to degree 2 NPT - 1
// exactly over [-1, 1]; the tolerance is what the 15-digit constants allow.
TEST(GaussTable, RulesIntegratePolynomialsOfTheirDegree) {
  for (int npt = 1; npt <= 4; ++npt) {
    const double tol = npt == 3 ? 2e-13 : 2e-15;
    for (int deg = 0; deg <= 2 * npt - 1; ++deg) {
      double sum = 0.0;
      for (int ipt = 1; ipt <= npt; ++ipt) {
        double xi = 0.0, wt = 0.0;
        INTPT4(npt, ipt, xi, wt);
        sum += wt * std::pow(xi, deg);
      }
      const double exact = deg % 2 == 0 ? 2.0 / (deg + 1) : 0.0;
      EXPECT_NEAR(sum, exact, tol) << "npt " << npt << " degree " << deg;
    }
    // And not the next even degree.
    double sum = 0.0;
    for (int ipt = 1; ipt <= npt; ++ipt) {
      double xi = 0.0, wt = 0.0;
      INTPT4(npt, ipt, xi, wt);
      sum += wt * std::pow(xi, 2 * npt);
    }
    EXPECT_GT(std::fabs(sum - 2.0 / (2 * npt + 1)), 1e-3) << npt;
  }
}

}  // namespace
}  // namespace respcore
