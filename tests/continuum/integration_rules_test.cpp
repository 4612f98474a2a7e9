#include "continuum/integration_rules.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

namespace respcore {
namespace {

double fact(int n) { return n <= 1 ? 1.0 : n * fact(n - 1); }

// Exact integrals of monomials over the reference elements.
double line_int(int n) { return n % 2 ? 0.0 : 2.0 / (n + 1); }
double tri_int(int a, int b) { return fact(a) * fact(b) / fact(a + b + 2); }
double tet_int(int a, int b, int c) { return fact(a) * fact(b) * fact(c) / fact(a + b + c + 3); }

enum Shape { kLine, kTri, kQuad, kTet, kWedge, kBrick };

struct Rule {
  Shape shape;
  int32_t nstrs, nnode, npt;
  int deg;             // total degree (simplex part) or degree per direction
  int deg_z;           // wedge: degree through the thickness
  double scale;        // factor the caller carries (1/6 for the tetrahedra)
  double tol;
};

std::string name(const Rule& r) {
  return "NSTRS " + std::to_string(r.nstrs) + " NNODE " + std::to_string(r.nnode) + " NPT " +
         std::to_string(r.npt);
}

// Every monomial up to the rule's degree is integrated exactly over the
// reference element, with the weights as stored (the tetrahedron factor 1/6
// carried here, as a caller does).
TEST(IntegrationRules, EachRuleIntegratesItsPolynomialsExactly) {
  const Rule rules[] = {
      {kLine, 1, 2, 1, 1, 0, 1.0, 1e-14},       {kLine, 1, 3, 2, 3, 0, 1.0, 1e-14},
      {kLine, 2, 3, 2, 3, 0, 1.0, 1e-14},       {kLine, 2, 8, 3, 5, 0, 1.0, 1e-14},
      {kTri, 3, 3, 1, 1, 0, 1.0, 1e-14},        {kTri, 4, 6, 3, 2, 0, 1.0, 1e-14},
      {kTri, 5, 6, 3, 2, 0, 1.0, 1e-14},        {kQuad, 3, 4, 4, 3, 0, 1.0, 1e-14},
      {kQuad, 4, 8, 9, 5, 0, 1.0, 1e-14},       {kTet, 6, 4, 1, 1, 0, 1.0, 1e-14},
      {kTet, 6, 10, 4, 2, 0, 1.0 / 6, 1e-8},    {kTet, 6, 4, 5, 3, 0, 1.0 / 6, 1e-14},
      {kWedge, 6, 6, 6, 2, 3, 1.0, 1e-14},      {kWedge, 6, 15, 8, 3, 3, 1.0, 5e-8},
      {kWedge, 6, 6, 9, 2, 5, 1.0, 1e-14},      {kWedge, 6, 15, 12, 3, 5, 1.0, 5e-8},
      {kBrick, 6, 8, 8, 3, 0, 1.0, 1e-14},      {kBrick, 6, 20, 27, 5, 0, 1.0, 1e-14},
  };
  for (const Rule& r : rules) {
    SCOPED_TRACE(name(r));
    const int dz = (r.shape == kWedge) ? r.deg_z : (r.shape == kBrick || r.shape == kTet) ? r.deg : 0;
    const int dy = (r.shape == kLine) ? 0 : r.deg;
    for (int a = 0; a <= r.deg; ++a) {
      for (int b = 0; b <= dy; ++b) {
        for (int c = 0; c <= dz; ++c) {
          double exact;
          switch (r.shape) {
            case kLine: exact = line_int(a); break;
            case kTri:
              if (a + b > r.deg || c > 0) continue;
              exact = tri_int(a, b);
              break;
            case kQuad:
              if (c > 0) continue;
              exact = line_int(a) * line_int(b);
              break;
            case kTet:
              if (a + b + c > r.deg) continue;
              exact = tet_int(a, b, c);
              break;
            case kWedge:
              if (a + b > r.deg) continue;
              exact = tri_int(a, b) * line_int(c);
              break;
            default: exact = line_int(a) * line_int(b) * line_int(c); break;
          }
          double sum = 0.0;
          for (int32_t g = 1; g <= r.npt; ++g) {
            double s = 9, t = 9, u = 9, w = 9;
            T_GP_COORD(s, t, u, w, g, r.npt, r.nnode, r.nstrs);
            sum += w * std::pow(s, a) * std::pow(t, b) * std::pow(u, c);
          }
          EXPECT_NEAR(sum * r.scale, exact, r.tol) << "x^" << a << " y^" << b << " z^" << c;
        }
      }
    }
  }
}

TEST(IntegrationRules, StoredConstantsKeepTheirBits) {
  using namespace gp_table;
  EXPECT_EQ(std::bit_cast<uint64_t>(G2), 0x3fe279a74590331cull);
  EXPECT_EQ(std::bit_cast<uint64_t>(G3), 0x3fe8c97ef43f7248ull);
  EXPECT_EQ(std::bit_cast<uint64_t>(TET4_A), 0x3fc1b06d1ab58decull);  // 0.1381966
  EXPECT_EQ(std::bit_cast<uint64_t>(TET4_B), 0x3fe2bbae2bf7d58full);  // 0.5854102
  EXPECT_EQ(std::bit_cast<uint64_t>(TRI4_W), 0x3fd0aaaaae3eed26ull);  // 0.26041667
  EXPECT_EQ(TRI4_W_CENTRE, -0.28125);
  EXPECT_EQ(TET4_W, 0.25);
  EXPECT_EQ(TET5_W_CENTRE, -0.8);
  EXPECT_EQ(TET5_W, 0.45);
  // Tetrahedron weights are stored undivided: they sum to 1, not 1/6.
  double s4 = 0.0, s5 = 0.0;
  for (double w : WHT4ST) s4 += w;
  for (double w : WHT5ST) s5 += w;
  EXPECT_DOUBLE_EQ(s4, 1.0);
  EXPECT_DOUBLE_EQ(s5, 1.0);
}

}  // namespace
}  // namespace respcore
