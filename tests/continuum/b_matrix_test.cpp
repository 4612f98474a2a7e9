// The B matrix of the continuum elements: a linear field gives its constant
// strain on distorted elements, and the Jacobian integrates to the area.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "continuum/integration_rules.hpp"
#include "continuum/interpolation.hpp"
#include "run/kernel_state.hpp"

namespace respcore {
namespace {

using P3 = std::array<double, 3>;

// Result of B_BUB at one point, with room for the nodeless columns.
struct BEval {
  std::vector<double> b, cartd, shape;
  double gpcod[3] = {};
  double det = -1.0;
  int32_t nstrs, ncols;
};

BEval eval_b(KernelState& K, const std::vector<double>& cn, int32_t nnode, int32_t ndim,
             int32_t nstrs, const P3& p, int32_t bubble = 0, int32_t det_only = 0,
             int32_t elem_no = 0) {
  BEval e;
  e.nstrs = nstrs;
  e.ncols = ndim * (nnode + ndim);
  e.b.assign(static_cast<size_t>(nstrs * e.ncols), 77.0);
  e.cartd.assign(static_cast<size_t>(ndim * (nnode + ndim)), 55.0);
  e.shape.assign(static_cast<size_t>(nnode + ndim), 0.0);
  B_BUB(K.diag, elem_no, K.continuum.PLANE_TYPE, MatRef<double>(e.b.data(), nstrs, e.ncols, "B"),
        e.det, MatRef<double>(e.cartd.data(), ndim, nnode + ndim, "CARTD"),
        VecRef<double>(e.shape.data(), nnode + ndim, "SHAPE"),
        VecRef<double>(e.gpcod, ndim, "GPCOD"), p[0], p[1], p[2],
        MatRef<double>(const_cast<double*>(cn.data()), ndim, nnode, "CN"), nnode, ndim, nstrs,
        bubble, det_only);
  return e;
}

// Strain of the nodal displacements U (NDIM per node) through B.
std::vector<double> strain(const BEval& e, const std::vector<double>& u) {
  std::vector<double> s(static_cast<size_t>(e.nstrs), 0.0);
  for (int32_t i = 0; i < e.nstrs; ++i)
    for (size_t j = 0; j < u.size(); ++j) s[i] += e.b[i + e.nstrs * j] * u[j];
  return s;
}

// Distorted elements: node coordinates, NDIM by NNODE.
const std::vector<double> kQuad4 = {0.0, 0.0, 3.0, 0.4, 2.6, 2.5, -0.3, 1.8};
const std::vector<double> kQuad8 = {0.0, 0.0,  3.0, 0.4, 2.6, 2.5, -0.3, 1.8,
                                    1.6, 0.05, 2.9, 1.5, 1.2, 2.3, -0.1, 0.8};
const std::vector<double> kTri3 = {0.2, 0.1, 2.5, 0.4, 0.9, 2.1};
const std::vector<double> kTri6 = {0.2, 0.1, 2.5, 0.4, 0.9, 2.1, 1.4, 0.15, 1.75, 1.3, 0.5, 1.1};

const double kGrad[3][3] = {{0.012, -0.004, 0.007}, {0.003, -0.009, 0.002}, {-0.005, 0.011, 0.006}};
double lin_u(int i, const double* x, int ndim) {
  double u = 0.1 * (i + 1);
  for (int j = 0; j < ndim; ++j) u += kGrad[i][j] * x[j];
  return u;
}

// A linear displacement field gives its constant strain at every point of a
// distorted element.
TEST(BMatrix, LinearFieldGivesConstantStrainInThePlane) {
  KernelState K;
  K.continuum.PLANE_TYPE = 0;
  struct E {
    const std::vector<double>* cn;
    int32_t nnode;
    std::vector<P3> pts;
  };
  const std::vector<P3> quad_pts = {{-0.57, -0.57, 0}, {0.77, 0.1, 0}, {0.3, 0.9, 0}, {-1, 1, 0}};
  const std::vector<P3> tri_pts = {{1.0 / 6, 1.0 / 6, 0}, {0.6, 0.2, 0}, {0.1, 0.8, 0}, {0, 0, 0}};
  for (const E& el : {E{&kQuad4, 4, quad_pts}, E{&kQuad8, 8, quad_pts}, E{&kTri3, 3, tri_pts},
                      E{&kTri6, 6, tri_pts}}) {
    std::vector<double> u;
    for (int32_t k = 0; k < el.nnode; ++k)
      for (int i = 0; i < 2; ++i) u.push_back(lin_u(i, &(*el.cn)[2 * k], 2));
    for (const P3& p : el.pts) {
      const BEval e = eval_b(K, *el.cn, el.nnode, 2, 3, p);
      const std::vector<double> s = strain(e, u);
      EXPECT_NEAR(s[0], kGrad[0][0], 1e-14) << el.nnode;
      EXPECT_NEAR(s[1], kGrad[1][1], 1e-14) << el.nnode;
      EXPECT_NEAR(s[2], kGrad[0][1] + kGrad[1][0], 1e-14) << el.nnode;
      EXPECT_GT(e.det, 0.0);
    }
  }
  EXPECT_EQ(K.diag.messages, "");
}

// DET times the weights of the element's rule gives its area.
TEST(BMatrix, DeterminantIntegratesToTheArea) {
  KernelState K;
  // Shoelace area of the straight-sided quadrilateral.
  double area = 0.0;
  for (int k = 0; k < 4; ++k) {
    const int n = (k + 1) % 4;
    area += kQuad4[2 * k] * kQuad4[2 * n + 1] - kQuad4[2 * n] * kQuad4[2 * k + 1];
  }
  area /= 2.0;
  double sum = 0.0;
  for (int32_t g = 1; g <= 4; ++g) {
    double s, t, uu, w;
    T_GP_COORD(s, t, uu, w, g, 4, 4, 3);
    sum += eval_b(K, kQuad4, 4, 2, 3, {s, t, uu}, 0, 1).det * w;
  }
  EXPECT_NEAR(sum, area, 1e-13);
}

}  // namespace
}  // namespace respcore
