#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "continuum/interpolation.hpp"

namespace respcore {
namespace {

using P3 = std::array<double, 3>;

struct Family {
  int32_t ndim;
  std::vector<P3> nodes;  // natural coordinates of the nodes, in element order
  int32_t nnode() const { return static_cast<int32_t>(nodes.size()); }
  std::string name() const { return std::to_string(ndim) + "D/" + std::to_string(nnode()); }
};

std::vector<P3> corners_hex() {
  std::vector<P3> p;
  for (double z : {-1.0, 1.0})
    for (auto [x, y] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}}) p.push_back({x, y, z});
  return p;
}

std::vector<Family> families() {
  std::vector<Family> f;
  f.push_back({1, {{-1, 0, 0}, {1, 0, 0}}});
  f.push_back({1, {{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}}});
  f.push_back({2, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}});
  f.push_back({2, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}});
  f.push_back({2, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.5, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0}}});
  f.push_back({2, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}}});
  f.push_back({3, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  f.push_back({3, {{0, 0, -1}, {1, 0, -1}, {0, 1, -1}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}});
  f.push_back({3, corners_hex()});
  f.push_back({3, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.5, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0},
                   {0, 0, 0.5}, {0.5, 0, 0.5}, {0, 0.5, 0.5}}});
  f.push_back({3, {{0, 0, -1}, {1, 0, -1}, {0, 1, -1}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {0.5, 0, -1},
                   {0.5, 0.5, -1}, {0, 0.5, -1}, {0.5, 0, 1}, {0.5, 0.5, 1}, {0, 0.5, 1}, {0, 0, 0},
                   {1, 0, 0}, {0, 1, 0}}});
  std::vector<P3> h20 = corners_hex();
  for (double z : {-1.0, 1.0})
    for (auto [x, y] : {std::pair{0.0, -1.0}, {1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}}) h20.push_back({x, y, z});
  for (auto [x, y] : {std::pair{-1.0, -1.0}, {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}}) h20.push_back({x, y, 0});
  f.push_back({3, h20});
  return f;
}

bool has_bubbles(const Family& f) {
  return (f.ndim == 2 && (f.nnode() == 4 || f.nnode() == 8)) ||
         (f.ndim == 3 && (f.nnode() == 8 || f.nnode() == 20));
}

// Interior sample points valid for every family (inside the simplex too).
const std::vector<P3> kSamples = {{0.2, 0.3, -0.4}, {0.1, 0.15, 0.6}, {0.45, 0.05, 0.1}, {0.3, 0.3, -0.9}};

std::vector<double> shape(const Family& f, const P3& p) {
  std::vector<double> s(static_cast<size_t>(f.nnode() + f.ndim), 99.0);
  SHAPE_FUN_BUB(VecRef<double>(s.data(), static_cast<int64_t>(s.size()), "SHAPE"), p[0], p[1], p[2],
                f.nnode(), f.ndim);
  return s;
}

std::vector<double> deriv(const Family& f, const P3& p) {
  std::vector<double> d(static_cast<size_t>(f.ndim * (f.nnode() + f.ndim)), 99.0);
  SHAPE_DER_BUB(MatRef<double>(d.data(), f.ndim, f.nnode() + f.ndim, "DERIV"), p[0], p[1], p[2],
                f.nnode(), f.ndim);
  return d;
}

TEST(ShapeFunctions, KroneckerAtNodesAndPartitionOfUnity) {
  for (const Family& f : families()) {
    SCOPED_TRACE(f.name());
    for (int32_t j = 0; j < f.nnode(); ++j) {
      const std::vector<double> s = shape(f, f.nodes[j]);
      for (int32_t k = 0; k < f.nnode(); ++k) EXPECT_NEAR(s[k], k == j ? 1.0 : 0.0, 1e-15);
    }
    for (const P3& p : kSamples) {
      const std::vector<double> s = shape(f, p);
      double sum = 0.0;
      for (int32_t k = 0; k < f.nnode(); ++k) sum += s[k];
      EXPECT_NEAR(sum, 1.0, 1e-14);
      // The nodal functions reproduce the coordinates themselves.
      for (int32_t i = 0; i < f.ndim; ++i) {
        double x = 0.0;
        for (int32_t k = 0; k < f.nnode(); ++k) x += s[k] * f.nodes[k][i];
        EXPECT_NEAR(x, p[i], 1e-14);
      }
    }
  }
}

TEST(ShapeFunctions, DerivativesMatchCentralDifferences) {
  const double h = 1e-6;
  for (const Family& f : families()) {
    SCOPED_TRACE(f.name());
    const int32_t ncol = f.nnode() + f.ndim;
    for (const P3& p : kSamples) {
      const std::vector<double> d = deriv(f, p);
      for (int32_t i = 0; i < f.ndim; ++i) {
        P3 pp = p, pm = p;
        pp[i] += h;
        pm[i] -= h;
        const std::vector<double> sp = shape(f, pp), sm = shape(f, pm);
        for (int32_t k = 0; k < ncol; ++k)
          EXPECT_NEAR(d[i + f.ndim * k], (sp[k] - sm[k]) / (2 * h), 1e-8) << "entry " << k + 1;
      }
    }
  }
}

// The nodeless modes: 1 - xi^2 vanishes on the sides xi = +-1, 1 - eta^2 on
// eta = +-1 (and 1 - zeta^2 on zeta = +-1), all of them at the corners.
// Families without them leave the entries zero.
TEST(ShapeFunctions, BubbleEntriesVanishOnTheirSides) {
  for (const Family& f : families()) {
    SCOPED_TRACE(f.name());
    const int32_t n = f.nnode();
    if (!has_bubbles(f)) {
      for (const P3& p : kSamples) {
        const std::vector<double> s = shape(f, p);
        const std::vector<double> d = deriv(f, p);
        for (int32_t b = n; b < n + f.ndim; ++b) {
          EXPECT_EQ(s[b], 0.0);
          for (int32_t i = 0; i < f.ndim; ++i) EXPECT_EQ(d[i + f.ndim * b], 0.0);
        }
      }
      continue;
    }
    for (double t : {-0.7, 0.0, 0.35}) {
      for (double side : {-1.0, 1.0}) {
        for (int32_t b = 0; b < f.ndim; ++b) {
          P3 p = {t, -t / 2, 0.6 * t};
          p[b] = side;
          EXPECT_EQ(shape(f, p)[n + b], 0.0);
        }
      }
    }
    for (int32_t c = 0; c < 4; ++c) {
      const std::vector<double> s = shape(f, f.nodes[c]);
      for (int32_t b = 0; b < f.ndim; ++b) EXPECT_EQ(s[n + b], 0.0);
    }
    const std::vector<double> centre = shape(f, {0, 0, 0});
    for (int32_t b = 0; b < f.ndim; ++b) EXPECT_EQ(centre[n + b], 1.0);
  }
}

// Pairs outside the families (the pyramids among them) leave everything zero.
TEST(ShapeFunctions, UnknownFamiliesLeaveZeros) {
  for (auto [ndim, nnode] : {std::pair{3, 13}, {3, 5}, {3, 7}, {2, 5}, {1, 4}, {3, 21}}) {
    Family f{ndim, std::vector<P3>(static_cast<size_t>(nnode))};
    for (double x : shape(f, {0.1, 0.2, 0.3})) EXPECT_EQ(x, 0.0) << ndim << "/" << nnode;
    for (double x : deriv(f, {0.1, 0.2, 0.3})) EXPECT_EQ(x, 0.0) << ndim << "/" << nnode;
  }
}

// The centre Jacobian from the corners equals the Jacobian of the nodal
// functions at the centre when the element is an affine image of its
// reference (midside nodes on straight sides).
TEST(ShapeFunctions, CentreJacobianOfAffineElements) {
  const double A[3][3] = {{2.0, 0.3, -0.4}, {0.5, 1.5, 0.2}, {-0.1, 0.25, 3.0}};
  for (const Family& f : families()) {
    SCOPED_TRACE(f.name());
    const int32_t nd = f.ndim, nn = f.nnode();
    std::vector<double> cn(static_cast<size_t>(nd * nn));
    for (int32_t k = 0; k < nn; ++k)
      for (int32_t i = 0; i < nd; ++i) {
        double x = 1.0 + i;
        for (int32_t j = 0; j < nd; ++j) x += A[i][j] * f.nodes[k][j];
        cn[i + nd * k] = x;
      }
    double dj0[9] = {};
    CALC_J0(MatRef<double>(dj0, nd, nd, "DJ0"), MatRef<double>(cn.data(), nd, nn, "CN"), nn, nd);
    // DJ0(i,j) = d x_j / d xi_i = A(j,i).
    for (int32_t i = 0; i < nd; ++i)
      for (int32_t j = 0; j < nd; ++j) EXPECT_NEAR(dj0[i + nd * j], A[j][i], 1e-14);
  }
  // A curved 8-node side does not change it: only the corners count.
  const std::vector<double> cn8 = {0, 0, 2, 0, 2, 1, 0, 1, 1, -0.3, 2.2, 0.5, 1, 1.4, -0.1, 0.5};
  double dj0[4] = {};
  CALC_J0(MatRef<double>(dj0, 2, 2, "DJ0"), MatRef<double>(const_cast<double*>(cn8.data()), 2, 8, "CN"), 8, 2);
  EXPECT_DOUBLE_EQ(dj0[0], 1.0);
  EXPECT_DOUBLE_EQ(dj0[1], 0.0);
  EXPECT_DOUBLE_EQ(dj0[2], 0.0);
  EXPECT_DOUBLE_EQ(dj0[3], 0.5);
}

}  // namespace
}  // namespace respcore
