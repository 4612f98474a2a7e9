// The plate result kit: strains of the general section, fibre and force
// rows, extrapolation to the nodes.
#include "plate/plate_results.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "plate/dkt.hpp"
#include "plate/plate_section.hpp"
#include "recovery/point_extrapolation.hpp"
#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;

// Stress blocks from known membrane and surface bending strains; the strain
// routine and the fibre rule must give back fibre strains whose stresses
// are the fibre stresses.
TEST(PlateStrain, FibreStrainsInvertFibreStresses) {
  for (int kind = 0; kind < 3; ++kind) {
    Material m;
    const double t = 0.2;
    if (kind == 0) m.isotropic(2.0e5, 0.3, t, t);
    if (kind > 0) m.orthotropic(1.5e5, 0.28, 0.9e5, 4.0e4, 3.0e4, 2.0e4, t, t);
    if (kind == 2) m.K.plate.SECT_ANGLE = 0.6;  // material axes turned on the element
    const PlateSection sec = general_plate_section(m.ctx());
    double S[40] = {}, R[70] = {}, E[30] = {}, strain[4][6];
    for (int p = 0; p < 4; ++p) {
      for (int c = 0; c < 6; ++c) strain[p][c] = 1e-4 * std::sin(1.0 + 7 * p + 3 * c);
      for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
          S[8 * p + r] += sec.Dm[r][c] * strain[p][c];
          S[8 * p + 3 + r] += sec.Dm[r][c] * strain[p][3 + c];  // stress of the surface strain
        }
    }
    double thk[5] = {t, t, t, t, 0}, tr[9] = {};
    PlateStrainSaved sv;
    COMPUTE_PLATE_STRAIN(m.ctx(), sv, VecRef<double>(E, 30, "STRAIN"), VecRef<double>(S, 40, "S"),
                         MatRef<double>(tr, 3, 3, "TR"), VecRef<double>(thk, 5, "THK"), 3, 0, 1, 1,
                         0);
    MIX_STRESS_STRAIN(VecRef<double>(S, 40, "S"), VecRef<double>(R, 70, "R"),
                      VecRef<double>(E, 30, "STRAIN"), 3, 0.5, -0.5, VecRef<double>(thk, 5, "THK"),
                      m.K.ELEM_MATERIAL.plate_prop());
    for (int p = 0; p < 4; ++p)
      for (int r = 0; r < 3; ++r) {
        double top = 0, bot = 0;
        for (int c = 0; c < 3; ++c)
          top += sec.Dm[r][c] * E[6 * p + c], bot += sec.Dm[r][c] * E[6 * p + 3 + c];
        EXPECT_NEAR(top, R[14 * p + r], 1e-9 * 2e5 * 1e-4) << kind << p << r;
        EXPECT_NEAR(bot, R[14 * p + 3 + r], 1e-9 * 2e5 * 1e-4) << kind << p << r;
        EXPECT_NEAR(E[6 * p + r], strain[p][r] + strain[p][3 + r], 1e-15) << kind;
        // Moments: the surface bending stress times -t^2/6.
        EXPECT_NEAR(R[14 * p + 9 + r], -t * t / 6 * S[8 * p + 3 + r], 1e-12);
      }
  }
}

// Values of a linear field at the sampling points become its values at the
// corners and midsides.
TEST(Extrapolation, LinearFieldsAreExact) {
  auto f = [](int c, double x, double y) { return 1.0 + c + (2.0 - c) * x + (0.5 * c - 1.0) * y; };
  const double s = 1 / std::sqrt(3.0);
  const double quad_pts[4][2] = {{-s, -s}, {s, -s}, {s, s}, {-s, s}};
  const double quad_nodes[8][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1},
                                   {0, -1},  {1, 0},  {0, 1}, {-1, 0}};
  const double tri_pts[3][2] = {{1. / 6, 1. / 6}, {2. / 3, 1. / 6}, {1. / 6, 2. / 3}};
  const double tri_nodes[6][2] = {{0, 0}, {1, 0}, {0, 1}, {0.5, 0}, {0.5, 0.5}, {0, 0.5}};
  auto check = [&](const char* what, const std::function<void(VecRef<double>)>& run, int first,
                   int ncomp, int npts, const double(*pts)[2], int nnodes,
                   const double(*nodes)[2]) {
    double v[80] = {};
    for (int p = 0; p < npts; ++p)
      for (int c = 0; c < ncomp; ++c) v[first - 1 + ncomp * p + c] = f(c, pts[p][0], pts[p][1]);
    run(VecRef<double>(v, 80, "V"));
    for (int n = 0; n < nnodes; ++n)
      for (int c = 0; c < ncomp; ++c)
        EXPECT_NEAR(v[first - 1 + ncomp * n + c], f(c, nodes[n][0], nodes[n][1]), 1e-12)
            << what << n << c;
  };
  check(
      "TRTONO", [](VecRef<double> v) { TRTONO(v, 6, 8); }, 33, 8, 4, quad_pts, 4, quad_nodes);
  check(
      "TRTONO plane", [](VecRef<double> v) { TRTONO(v, 3, 3); }, 16, 3, 4, quad_pts, 4, quad_nodes);
  check(
      "TRTONO_3NODE_STRES", [](VecRef<double> v) { TRTONO_3NODE_STRES(v, 3); }, 16, 3, 3, tri_pts,
      3, tri_nodes);
  for (int n : {3, 6})
    check(
        "CURVED_EXPOLATE", [n](VecRef<double> v) { CURVED_EXPOLATE(v, n); }, 9, 8, 3, tri_pts, n,
        tri_nodes);
  check(
      "CURVED_EXPOLATE 8", [](VecRef<double> v) { CURVED_EXPOLATE(v, 8); }, 9, 8, 4, quad_pts, 8,
      quad_nodes);
  // The centre and the points 0.4 of the way to the corners.
  const double tri4[4][2] = {{1. / 3, 1. / 3}, {0.2, 0.2}, {0.6, 0.2}, {0.2, 0.6}};
  const double tri4_nodes[4][2] = {{1. / 3, 1. / 3}, {0, 0}, {1, 0}, {0, 1}};
  check(
      "TRTONO_3", [](VecRef<double> v) { TRTONO_3(v, 6, 8); }, 25, 8, 4, tri4, 4, tri4_nodes);
}

}  // namespace
}  // namespace respcore
