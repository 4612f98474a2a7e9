// The plate triangles placed in space (constant fields through whole
// requests: plate_history_test): the transverse shear of the thick triangle
// and its thin limit.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "plane/panel_axes.hpp"
#include "plate/dkmt.hpp"
#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;
using Blocks = std::array<double, 32>;  // four points, eight rows

enum Form { kDkmt, kDktGnrl, kDkmtGnrl, kStiffened };

// Node 1 at the origin, node 2 on the x axis: the element axes of the
// triangle are the frame of these coordinates, placed in space by Q and o.
struct Placement {
  double p[3][2];
  double axis[3], angle, o[3];
};

void rotation(const Placement& pl, double Q[3][3]) {
  const double n =
      std::sqrt(pl.axis[0] * pl.axis[0] + pl.axis[1] * pl.axis[1] + pl.axis[2] * pl.axis[2]);
  const double k[3] = {pl.axis[0] / n, pl.axis[1] / n, pl.axis[2] / n};
  const double c = std::cos(pl.angle), s = std::sin(pl.angle);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) Q[i][j] = (i == j ? c : 0.0) + (1 - c) * k[i] * k[j];
  Q[0][1] -= s * k[2], Q[0][2] += s * k[1], Q[1][0] += s * k[2];
  Q[1][2] -= s * k[0], Q[2][0] -= s * k[1], Q[2][1] += s * k[0];
}

// The blocks of nodal values in element axes: w = WLIN x with no rotation,
// plus EXTRA (six per node) when given.
Blocks run(Form f, Material& m, const Placement& pl, double wlin, const double* extra = nullptr) {
  double Q[3][3], xyz[9], X[3], Y[3], Z[3], tr[9], cst[24] = {}, st[40];
  rotation(pl, Q);
  for (int n = 0; n < 3; ++n) {
    for (int i = 0; i < 3; ++i)
      xyz[3 * n + i] = Q[i][0] * pl.p[n][0] + Q[i][1] * pl.p[n][1] + pl.o[i];
    X[n] = xyz[3 * n], Y[n] = xyz[3 * n + 1], Z[n] = xyz[3 * n + 2];
  }
  MatRef<double> TR(tr, 3, 3, "TR"), XYZ(xyz, 3, 3, "XYZ");
  QDCOS(VecRef<double>(X, 3, "X"), VecRef<double>(Y, 3, "Y"), VecRef<double>(Z, 3, "Z"), TR, 1);
  for (int n = 0; n < 3; ++n) {
    double d[6], g[6];
    for (int k = 0; k < 6; ++k) d[k] = extra ? extra[6 * n + k] : 0.0;
    d[2] += wlin * pl.p[n][0];
    for (int h = 0; h < 2; ++h)  // to global, then back through the element's own axes
      for (int i = 0; i < 3; ++i)
        g[3 * h + i] = Q[i][0] * d[3 * h] + Q[i][1] * d[3 * h + 1] + Q[i][2] * d[3 * h + 2];
    for (int h = 0; h < 2; ++h)
      for (int i = 0; i < 3; ++i)
        cst[6 * n + 3 * h + i] =
            TR(i + 1, 1) * g[3 * h] + TR(i + 1, 2) * g[3 * h + 1] + TR(i + 1, 3) * g[3 * h + 2];
  }
  VecRef<double> CONST(cst, 24, "CONST"), ST(st, 40, "ST");
  const PlateContext C = m.ctx();
  int32_t nn = 0;
  DktSaved ds;
  DkmtSaved dm;
  if (f == kDkmt) DKMTLMT_STR(C, dm, nn, CONST, ST, XYZ, TR, 1);
  if (f == kDktGnrl) DKTLMT_STR_GNRL(C, ds, nn, CONST, ST, XYZ, TR, 1, 0);
  if (f == kDkmtGnrl) DKMTLMT_STR_GNRL(C, dm, nn, CONST, ST, XYZ, TR, 1, 0);
  if (f == kStiffened) DKMTLMT_STR_STIFFENED(C, dm, 0, nn, CONST, ST, XYZ, TR, 1);
  Blocks b{};
  for (int p = 0; p < 4; ++p)
    for (int c = 0; c < 8; ++c)
      b[8 * p + c] = st[8 * p + c];
  return b;
}

constexpr double kE = 2.0e5, kNu = 0.25;

// Transverse shear of w = a x alone on an equilateral triangle: the thick
// triangle keeps the fraction phi/(1+phi) of the shear strain a, so the
// shear vanishes with the thickness; and a thin thick triangle bends as the
// thin one under any nodal values.
TEST(ThickTriangle, ShearFollowsPhiAndThinLimitIsTheThinTriangle) {
  Material m;
  const Placement eq = {{{0, 0}, {1, 0}, {0.5, std::sqrt(0.75)}}, {1, 1, 0}, 0.4, {1, 2, 3}};
  const double a = 0.01;
  for (double t : {0.5, 0.1, 0.01}) {
    m.isotropic(kE, kNu, t, t);
    for (int k = 2; k < 5; ++k) m.K.ELEM_MATERIAL.PLATE_PROP[k] = t;
    const double phi = 2.4 / (1 - kNu) * t * t;
    const double tau = kE / (2 * (1 + kNu)) / 1.2 * a * phi / (1 + phi);
    // The ordinary and the general section give the stress, the ribbed
    // section the force per unit width.
    for (Form form : {kDkmt, kDkmtGnrl, kStiffened}) {
      const Blocks b = run(form, m, eq, a);
      EXPECT_NEAR(b[7], (form == kStiffened ? t : 1.0) * tau, 1e-12 * kE) << form << " " << t;
      EXPECT_NEAR(b[6], 0.0, 1e-12 * kE);
    }
  }
  m.isotropic(kE, kNu, 1e-4, 1e-4);
  const double extra[18] = {0.1,   -0.2, 0.3,  0.05, -0.07, 0.02, 0.4,  0.1,  -0.3,
                            -0.02, 0.06, 0.01, -0.1, 0.3,   0.2,  0.03, 0.04, -0.05};
  const Placement pl = {{{0, 0}, {1.2, 0}, {1.5, 0.9}}, {1, 2, 3}, 1.1, {3, -1, 2}};
  const Blocks thick = run(kDkmtGnrl, m, pl, 0, extra), thin = run(kDktGnrl, m, pl, 0, extra);
  for (int p = 0; p < 4; ++p)
    for (int r = 0; r < 6; ++r)
      EXPECT_NEAR(thick[8 * p + r], thin[8 * p + r], 1e-6 * std::fabs(thin[8 * p + r]) + 1e-9)
          << p << r;
}

}  // namespace
}  // namespace respcore
