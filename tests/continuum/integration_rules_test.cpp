// The integration rules of the continuum elements integrate every monomial
// up to their degree exactly, with their constants as stored.
#include "continuum/integration_rules.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace respcore {
namespace {

double fact(int n) { return n <= 1 ? 1.0 : n * fact(n - 1); }
double line_int(int n) { return n % 2 ? 0.0 : 2.0 / (n + 1); }
double simplex_int(int a, int b, int c, int dims) {
  return fact(a) * fact(b) * fact(c) / fact(a + b + c + dims);
}

enum Shape { kLine, kTri, kQuad, kTet, kWedge, kBrick };

// With the weights as stored: the tetrahedron's factor 1/6 is the caller's.
TEST(IntegrationRules, EachRuleIntegratesItsPolynomialsExactly) {
  struct Rule {
    Shape shape;
    int32_t nstrs, nnode, npt;
    int deg, deg_z;  // total degree (simplex part) or per direction; wedge: through the thickness
    double scale, tol;
  } rules[] = {
      {kLine, 1, 2, 1, 1, 0, 1.0, 1e-14},    {kLine, 2, 8, 3, 5, 0, 1.0, 1e-14},
      {kTri, 3, 3, 1, 1, 0, 1.0, 1e-14},     {kTri, 4, 6, 3, 2, 0, 1.0, 1e-14},
      {kQuad, 3, 4, 4, 3, 0, 1.0, 1e-14},    {kQuad, 4, 8, 9, 5, 0, 1.0, 1e-14},
      {kTet, 6, 10, 4, 2, 0, 1.0 / 6, 1e-8}, {kTet, 6, 4, 5, 3, 0, 1.0 / 6, 1e-14},
      {kWedge, 6, 6, 6, 2, 3, 1.0, 1e-14},   {kWedge, 6, 15, 12, 3, 5, 1.0, 5e-8},
      {kBrick, 6, 8, 8, 3, 0, 1.0, 1e-14},   {kBrick, 6, 20, 27, 5, 0, 1.0, 1e-14},
  };
  for (const Rule& r : rules) {
    const int dims = r.shape == kLine ? 1 : r.shape == kTri || r.shape == kQuad ? 2 : 3;
    const bool simplex = r.shape == kTri || r.shape == kTet || r.shape == kWedge;
    for (int a = 0; a <= r.deg; ++a)
      for (int b = 0; b <= (dims > 1 ? r.deg : 0); ++b)
        for (int c = 0; c <= (dims > 2 ? std::max(r.deg, r.deg_z) : 0); ++c) {
          if (simplex && a + b + (r.shape == kTet ? c : 0) > r.deg) continue;
          if (c > (r.shape == kWedge ? r.deg_z : r.deg)) continue;
          const double exact = r.shape == kTri     ? simplex_int(a, b, 0, 2)
                               : r.shape == kTet   ? simplex_int(a, b, c, 3)
                               : r.shape == kWedge ? simplex_int(a, b, 0, 2) * line_int(c)
                                                   : line_int(a) * (dims > 1 ? line_int(b) : 1.0) *
                                                         (dims > 2 ? line_int(c) : 1.0);
          double sum = 0.0;
          for (int32_t g = 1; g <= r.npt; ++g) {
            double s = 9, t = 9, u = 9, w = 9;
            T_GP_COORD(s, t, u, w, g, r.npt, r.nnode, r.nstrs);
            sum += w * std::pow(s, a) * std::pow(t, b) * std::pow(u, c);
          }
          EXPECT_NEAR(sum * r.scale, exact, r.tol) << r.npt << a << b << c;
        }
  }
  using namespace gp_table;
  EXPECT_EQ(std::bit_cast<uint64_t>(G3), 0x3fe8c97ef43f7248ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(TET4_A), 0x3fc1b06d1ab58decull);  // 0.1381966
  EXPECT_EQ(std::bit_cast<uint64_t>(TRI4_W), 0x3fd0aaaaae3eed26ull);  // 0.26041667
}

}  // namespace
}  // namespace respcore
