#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "run/kernel_state.hpp"
#include "plate/plate_geometry.hpp"

namespace respcore {
namespace {

PlateContext plate_context(KernelState& K) {
  return {K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance};
}

TEST(Norm, ScalesToUnitLength) {
  KernelState K;
  double v[3] = {3.0, 0.0, -4.0};
  double len = 0.0;
  NORM(plate_context(K), VecRef<double>(v, 3, "V"), len);
  EXPECT_EQ(len, 5.0);
  EXPECT_DOUBLE_EQ(v[0], 0.6);
  EXPECT_EQ(v[1], 0.0);
  EXPECT_DOUBLE_EQ(v[2], -0.8);
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(Norm, ZeroAndNanLengthsReportAndGoOn) {
  KernelState K;
  double v[3] = {0.0, 0.0, 0.0};
  double len = -1.0;
  ::testing::internal::CaptureStdout();
  NORM(plate_context(K), VecRef<double>(v, 3, "V"), len);
  const std::string out = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(len, 0.0);
  for (double x : v) EXPECT_FALSE(std::isfinite(x));
  const std::string border(45, '-');
  EXPECT_EQ(out, "\n" + border +
                     "\nINTERNAL ERROR ENCOUNTERED.\nSUBROUTINE NORM - DIVIDE BY ZERO\n" + border +
                     "\n");
  EXPECT_EQ(K.diag.output_lines.size(), 5u);

  KernelState Q;
  double w[3] = {1.0, std::nan(""), 0.0};
  ::testing::internal::CaptureStdout();
  NORM(plate_context(Q), VecRef<double>(w, 3, "V"), len);
  ::testing::internal::GetCapturedStdout();
  EXPECT_TRUE(std::isnan(len));
  ASSERT_EQ(Q.diag.output_lines.size(), 5u);
  EXPECT_EQ(Q.diag.output_lines[2], "INTERNAL ERROR ENCOUNTERED.");
  EXPECT_EQ(Q.diag.output_lines[3], "SUBROUTINE NORM - DIVIDE BY NON NUMERIC VALUE");
}

std::vector<double> projection(KernelState& K, std::vector<double> xy, double h, int ndof = 24) {
  std::vector<double> p(static_cast<size_t>(ndof * ndof), -3.0);
  GET_LINEAR_PROJECTION(plate_context(K), VecRef<double>(xy.data(), 8, "XY"), h, ndof,
                        MatRef<double>(p.data(), ndof, ndof, "P"));
  return p;
}

TEST(WarpProjection, FlatElementProjectsOntoItself) {
  KernelState K;
  const auto p = projection(K, {0, 0, 2, 0, 2.5, 1.5, -0.5, 1.0}, 0.0, 26);
  for (int j = 0; j < 26; ++j)
    for (int i = 0; i < 26; ++i)
      EXPECT_EQ(p[static_cast<size_t>(i + 26 * j)], (i == j && i < 24) ? 1.0 : 0.0)
          << i << "," << j;
}

TEST(WarpProjection, UnitSquareByHand) {
  // Node 1 of the unit square: e1 = (0,-1) from node 4, e2 = (1,0) to node 2,
  // a = (0,1), b = (1,0), D1 = -1, D2 = 1, lengths 1, sign +1.
  const double h = 0.1;
  KernelState K;
  const auto p = projection(K, {0, 0, 1, 0, 1, 1, 0, 1}, h);
  auto P = [&](int i, int j) { return p[static_cast<size_t>((i - 1) + 24 * (j - 1))]; };
  EXPECT_DOUBLE_EQ(P(3, 1), -h);       // node 1 w from node 1 u
  EXPECT_DOUBLE_EQ(P(3, 2), -h);       // node 1 w from node 1 v
  EXPECT_DOUBLE_EQ(P(21, 2), h);       // node 4 w from node 1 v
  EXPECT_DOUBLE_EQ(P(9, 1), h);        // node 2 w from node 1 u
  EXPECT_DOUBLE_EQ(P(1, 5), 2 * h);    // node 1 u from node 1 ry
  EXPECT_DOUBLE_EQ(P(2, 4), -2 * h);   // node 1 v from node 1 rx
  EXPECT_DOUBLE_EQ(P(19, 5), -2 * h);  // node 4 u from node 1 ry
  EXPECT_DOUBLE_EQ(P(8, 4), 2 * h);    // node 2 v from node 1 rx
  EXPECT_DOUBLE_EQ(P(6, 4), -2 * h);   // node 1 rz from node 1 rx
  EXPECT_DOUBLE_EQ(P(6, 5), -2 * h);   // node 1 rz from node 1 ry
  EXPECT_EQ(P(1, 1), 1.0);
  EXPECT_EQ(P(3, 3), 1.0);
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(WarpProjection, ShiftedElementGivesTheSameProjection) {
  KernelState K;
  const std::vector<double> xy = {0, 0, 2, 0.2, 2.5, 1.5, -0.5, 1.0};
  std::vector<double> shifted = xy;
  for (size_t i = 0; i < 8; i += 2) {
    shifted[i] += 10.0;
    shifted[i + 1] -= 4.0;
  }
  const auto p = projection(K, xy, 0.05);
  const auto q = projection(K, shifted, 0.05);
  for (size_t i = 0; i < p.size(); ++i) EXPECT_NEAR(p[i], q[i], 1e-12);
  // Heights alternate: a negated height flips every warp term.
  const auto n = projection(K, xy, -0.05);
  for (int j = 0; j < 24; ++j)
    for (int i = 0; i < 24; ++i) {
      const size_t at = static_cast<size_t>(i + 24 * j);
      const double ident = i == j ? 1.0 : 0.0;
      EXPECT_NEAR(n[at] - ident, -(p[at] - ident), 1e-15);
    }
}

TEST(MaterialAxes, CoordinatesFromTheBlock) {
  KernelState K;
  double c[9];
  MatRef<double> coords(c, 3, 3, "COORDS");
  for (int i = 0; i < 9; ++i) K.plate.COORD_VALS[i] = i + 1.0;
  K.plate.COORD_TYPE = 1.9;  // read as 1
  K.plate.COORD_ASSIGNED = 1;
  GET_COORD(plate_context(K), coords, 1);
  EXPECT_EQ(coords(1, 2), 2.0);  // filled row by row
  EXPECT_EQ(coords(2, 1), 4.0);
  EXPECT_EQ(coords(3, 3), 9.0);
  EXPECT_TRUE(K.diag.output_lines.empty());

  K.plate.COORD_TYPE = 2.0;
  K.plate.COORD_ASSIGNED = 0;
  ::testing::internal::CaptureStdout();
  GET_COORD(plate_context(K), coords, 1);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "UNKNOWN COORDINATE TYPE\nNO COORDINATE IS ASSIGNED\n");
  EXPECT_EQ(coords(1, 2), 2.0);

  K.diag.output_lines.clear();
  K.plate.COORD_ASSIGNED = 1;
  GET_COORD(plate_context(K), coords, 0);
  for (double v : c) EXPECT_EQ(v, 0.0);
  EXPECT_TRUE(K.diag.output_lines.empty());
}

TEST(MaterialAxes, BetaIsTheSignedAngleOfTheMaterialXAxis) {
  KernelState K;
  // Element axes turned about z by 0.2; material x axis at 0.2 + beta.
  const double turn = 0.2;
  double a[9] = {std::cos(turn), std::sin(turn), 0, -std::sin(turn), std::cos(turn), 0, 0, 0, 1};
  for (double beta_true : {0.7, -1.2, 3.0}) {
    const double g = turn + beta_true;
    // Tilted out of plane a little: only the in-plane projection counts.
    double b[9] = {std::cos(g) * 0.8, std::sin(g) * 0.8, 0.6, 0, 0, 0, 0, 0, 0};
    double beta = 0.0;
    COMPUTE_BETA(plate_context(K), MatRef<double>(a, 3, 3, "A"), MatRef<double>(b, 3, 3, "B"),
                 beta);
    EXPECT_NEAR(beta, beta_true, 1e-12);
  }
  EXPECT_TRUE(K.diag.output_lines.empty());

  double b[9] = {0, 0, 1, 0, 0, 0, 0, 0, 0};  // along the element normal
  double beta = 0.0;
  ::testing::internal::CaptureStdout();
  COMPUTE_BETA(plate_context(K), MatRef<double>(a, 3, 3, "A"), MatRef<double>(b, 3, 3, "B"), beta);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "ERROR : X AXIS OF MATERIAL COORDINATE IS PERPENDICULAR TO ELEMENT\n");
}

}  // namespace
}  // namespace respcore
