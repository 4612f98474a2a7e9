// Unit tests of the routines the solid histories are made of: panel axes,
// tensor and force rotations, extrapolation of the stored points, strains.
#include <gtest/gtest.h>

#include <cmath>

#include "run/kernel_state.hpp"
#include "plane/panel_axes.hpp"
#include "solid/solid_tensors.hpp"
#include "solid_support.hpp"

namespace respcore::testing::solid {
namespace {

M3 qdcos(const std::vector<V3>& p, int n) {
  double x[4] = {}, y[4] = {}, z[4] = {}, t[9] = {};
  for (size_t k = 0; k < p.size(); ++k) {
    x[k] = p[k][0];
    y[k] = p[k][1];
    z[k] = p[k][2];
  }
  QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"),
        MatRef<double>(t, 3, 3, "PANEL_T"), n);
  M3 m{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m[i][j] = t[i + 3 * j];
  return m;
}

TEST(Qdcos, AxesOfARotatedTriangleAndRectangleAreTheRotationsColumns) {
  const M3 Q = rotation(0.7, -1.1, 2.0);
  const V3 c = {3, -2, 5};
  auto placed = [&](std::vector<V3> p) {
    for (V3& v : p) v = add(mul(Q, v), c);
    return p;
  };
  const M3 tri = qdcos(placed({{0, 0, 0}, {2, 0, 0}, {0.5, 1.5, 0}}), 1);
  const M3 quad = qdcos(placed({{-2, -1, 0}, {2, -1, 0}, {2, 1, 0}, {-2, 1, 0}}), 4);
  for (int k = 0; k < 3; ++k) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(tri[k][j], Q[j][k], 1e-14);
      EXPECT_NEAR(quad[k][j], Q[j][k], 1e-14);
    }
  }
}

TEST(Qdcos, WarpedQuadrilateralByHand) {
  // a = P2 + P3 - P4 - P1 = (4, 0, 0.4); b = P3 + P4 - P1 - P2 = (0, 2, 0).
  const M3 t = qdcos({{0, 0, 0}, {2, 0, 0}, {2, 1, 0.2}, {0, 1, -0.2}}, 4);
  const double r = std::sqrt(1.01);
  const M3 want = {{{1 / r, 0, 0.1 / r}, {0, 1, 0}, {-0.1 / r, 0, 1 / r}}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(t[i][j], want[i][j], 1e-15);
}

TEST(Qdcos, AnyTriangleGivesARightHandedOrthonormalFrame) {
  const M3 t = qdcos({{0.3, 1.2, -0.4}, {2.1, 0.2, 0.9}, {-1.0, 0.8, 1.7}}, 1);
  const M3 i3 = matmul(t, transpose(t));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(i3[i][j], i == j ? 1.0 : 0.0, 1e-14);
  EXPECT_NEAR(det3(t), 1.0, 1e-14);
  // Axis 1 along P2 - P1, axis 3 normal to the triangle.
  const V3 a = {1.8, -1.0, 1.3};
  const double la = std::sqrt(1.8 * 1.8 + 1.0 + 1.3 * 1.3);
  for (int j = 0; j < 3; ++j) EXPECT_NEAR(t[0][j], a[j] / la, 1e-15);
  const V3 b = {-3.1, 0.6, 0.8};
  EXPECT_NEAR(t[2][0] * b[0] + t[2][1] * b[1] + t[2][2] * b[2], 0.0, 1e-14);
}

TEST(Qdcos, CoincidentNodesGiveNonFiniteAxesWithoutStopping) {
  const M3 t = qdcos({{1, 1, 1}, {1, 1, 1}, {2, 3, 4}}, 1);
  EXPECT_FALSE(std::isfinite(t[0][0]));
}

// T holds the element axes as columns.
void to_mat(const M3& q, double t[9]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) t[i + 3 * j] = q[i][j];
}

TEST(SolidTensors, UniaxialStressAlongAnElementAxisTurnsToItsDyad) {
  const M3 Q = rotation(0.3, 1.2, -0.8);
  double t[9];
  to_mat(Q, t);
  // Three points: sigma along axis 1, along axis 3, and a shear in 1-2.
  double v[18] = {5, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0, 0, 0, 0, 0, 3, 0, 0};
  CHANGE_L_G(VecRef<double>(v, 18, "SIG"), MatRef<double>(t, 3, 3, "T"), 2);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const M3 s0 = tensor({v[0], v[1], v[2], v[3], v[4], v[5]});
      const M3 s1 = tensor({v[6], v[7], v[8], v[9], v[10], v[11]});
      const M3 s2 = tensor({v[12], v[13], v[14], v[15], v[16], v[17]});
      EXPECT_NEAR(s0[i][j], 5 * Q[i][0] * Q[j][0], 1e-14);
      EXPECT_NEAR(s1[i][j], -2 * Q[i][2] * Q[j][2], 1e-14);
      EXPECT_NEAR(s2[i][j], 3 * (Q[i][0] * Q[j][1] + Q[i][1] * Q[j][0]), 1e-14);
    }
  }
  // And back.
  CHANGE_G_L(VecRef<double>(v, 18, "SIG"), MatRef<double>(t, 3, 3, "T"), 2);
  const double want[18] = {5, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0, 0, 0, 0, 0, 3, 0, 0};
  for (int i = 0; i < 18; ++i) EXPECT_NEAR(v[i], want[i], 1e-14);
}

TEST(SolidTensors, ForcesTurnWithTheAxesAndBack) {
  const M3 Q = rotation(-0.4, 0.9, 2.2);
  double t[9];
  to_mat(Q, t);
  double f[9] = {1, 0, 0, 0, 2, 0, 0.5, -1, 3};
  CHANGE_L_G_FORC(VecRef<double>(f, 9, "F"), MatRef<double>(t, 3, 3, "T"), 3);
  const V3 g3 = mul(Q, V3{0.5, -1, 3});
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(f[i], Q[i][0], 1e-15);
    EXPECT_NEAR(f[3 + i], 2 * Q[i][1], 1e-15);
    EXPECT_NEAR(f[6 + i], g3[i], 1e-15);
  }
  CHANGE_G_L_FORC(VecRef<double>(f, 9, "F"), MatRef<double>(t, 3, 3, "T"), 3);
  const double want[9] = {1, 0, 0, 0, 2, 0, 0.5, -1, 3};
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(f[i], want[i], 1e-14);
}

TEST(SolRecvH, UniformPointValuesReachEveryNodeAndTheCentreStays) {
  for (int nn : {4, 5, 6, 8}) {
    std::vector<double> sig(54, 0.0);
    const int ngp = nn == 4 ? 0 : nn == 5 ? 8 : nn;
    for (int c = 0; c < 6; ++c) sig[static_cast<size_t>(c)] = 100 + c;  // centre
    for (int g = 1; g <= ngp; ++g)
      for (int c = 0; c < 6; ++c) sig[static_cast<size_t>(6 * g + c)] = (nn == 4 ? 0 : 10 + c);
    SOL_RECV_H(VecRef<double>(sig.data(), 54, "SIG"), nn);
    for (int c = 0; c < 6; ++c) EXPECT_EQ(sig[static_cast<size_t>(c)], 100 + c);
    for (int n = 1; n <= nn; ++n)
      for (int c = 0; c < 6; ++c)
        EXPECT_NEAR(sig[static_cast<size_t>(6 * n + c)], nn == 4 ? 100 + c : 10 + c, 1e-12)
            << nn << " node " << n;
  }
  // The pyramid clears the point slots behind its five nodes.
  std::vector<double> sig(54, 7.0);
  SOL_RECV_H(VecRef<double>(sig.data(), 54, "SIG"), 5);
  for (size_t i = 36; i < 54; ++i) EXPECT_EQ(sig[i], 0.0);
}

TEST(SolidStrainTime, InverseIsBuiltAtTheFirstStepAndKeptForTheElement) {
  KernelState K;
  K.ELEM_MATERIAL.MAT_YOUNG = 1000;
  K.ELEM_MATERIAL.MAT_POISSON = 0.2;
  K.ELEM_MATERIAL.MAT_TYPE = 0;
  SolidContext C = K.solids();
  double s[12] = {10, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0};
  double e[12] = {};
  int32_t first = 1;
  SOLID_STRAIN_TIME(C, 1, first, VecRef<double>(s, 12, "STRESS"), VecRef<double>(e, 12, "STRAIN"));
  EXPECT_EQ(first, 0);
  EXPECT_NEAR(e[0], 0.01, 1e-15);
  EXPECT_NEAR(e[1], -0.002, 1e-15);
  EXPECT_NEAR(e[2], -0.002, 1e-15);
  EXPECT_NEAR(e[9], 4 * 2 * 1.2 / 1000, 1e-15);  // gamma = tau / G
  // A later step of the same element keeps the inverse.
  K.ELEM_MATERIAL.MAT_YOUNG = 1.0;
  SOLID_STRAIN_TIME(C, 1, first, VecRef<double>(s, 12, "STRESS"), VecRef<double>(e, 12, "STRAIN"));
  EXPECT_NEAR(e[0], 0.01, 1e-15);
}

}  // namespace
}  // namespace respcore::testing::solid
