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

}  // namespace
}  // namespace respcore
