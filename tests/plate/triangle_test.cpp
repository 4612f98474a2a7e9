// Physics of the plate triangles with oracles of their own: rigid motion,
// constant membrane and constant Kirchhoff curvature fields, the placement
// of the element in space, and the thin limit of the thick triangle.
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

enum Form { kDkt, kDkmt, kDktGnrl, kDkmtGnrl, kStiffened, kDrill };

// A field in element axes: (u, v, w, rx, ry, rz) at (x, y).
struct Field {
  double eps[3] = {}, w2[3] = {}, rigid[6] = {};  // membrane strain; w = (a x^2 + b y^2)/2 + c x y
  double wlin = 0.0;                              // w = wlin x with no rotation
  double extra[18] = {};                          // added to the nodal values
  void at(int n, double x, double y, double d[6]) const {
    const double* r = rigid;  // translation r[0..2], rotation r[3..5]
    d[0] = eps[0] * x + eps[2] / 2 * y + r[0] - r[5] * y;
    d[1] = eps[2] / 2 * x + eps[1] * y + r[1] + r[5] * x;
    d[2] = w2[0] / 2 * x * x + w2[1] / 2 * y * y + w2[2] * x * y + r[2] + r[3] * y - r[4] * x;
    d[3] = w2[1] * y + w2[2] * x + r[3];
    d[4] = -(w2[0] * x + w2[2] * y) + r[4];
    d[5] = r[5];
    d[2] += wlin * x;
    for (int k = 0; k < 6; ++k) d[k] += extra[6 * n + k];
  }
};

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

Blocks run(Form f, Material& m, const Placement& pl, const Field& fld) {
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
    fld.at(n, pl.p[n][0], pl.p[n][1], d);
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
  if (f == kDkt) DKTLMT_STR(C, ds, nn, CONST, ST, XYZ, TR, 1, 1);
  if (f == kDkmt) DKMTLMT_STR(C, dm, nn, CONST, ST, XYZ, TR, 1);
  if (f == kDktGnrl) DKTLMT_STR_GNRL(C, ds, nn, CONST, ST, XYZ, TR, 1, 0);
  if (f == kDkmtGnrl) DKMTLMT_STR_GNRL(C, dm, nn, CONST, ST, XYZ, TR, 1, 0);
  if (f == kStiffened) DKMTLMT_STR_STIFFENED(C, dm, 0, nn, CONST, ST, XYZ, TR, 1);
  if (f == kDrill) DKTLMT_PLANE_STR_DRILL(C, ds, 0, 0.0, 3, CONST, ST, XYZ, TR, 1);
  Blocks b{};
  for (int p = 0; p < 4; ++p)
    for (int c = 0; c < 8; ++c)
      b[8 * p + c] = f == kDrill ? (c < 3 ? st[3 * p + c] : 0.0) : st[8 * p + c];
  return b;
}

constexpr double kE = 2.0e5, kNu = 0.25, kT = 0.3;
const Placement kPlacements[] = {
    {{{0, 0}, {2.0, 0}, {0.6, 1.5}}, {0, 0, 1}, 0.0, {0, 0, 0}},
    {{{0, 0}, {1.2, 0}, {1.5, 0.9}}, {1, 2, 3}, 1.1, {3, -1, 2}},
    {{{0, 0}, {0.8, 0}, {-0.3, 2.2}}, {-2, 0.5, 1}, 2.7, {-4, 5, 0.5}}};

struct TrianglePhysics : ::testing::TestWithParam<std::tuple<Form, int>> {
  Material m;
  void SetUp() override {
    m.isotropic(kE, kNu, kT, kT);
    for (int k = 2; k < 5; ++k) m.K.ELEM_MATERIAL.PLATE_PROP[k] = kT;
  }
};

// Constant membrane strain and constant Kirchhoff curvature together, on
// top of a rigid motion (which must add nothing): the membrane rows are D eps, the bending rows
// (t/2) D kappa (moments per unit width, t^3/12 D kappa, for the ribbed section; the ordinary thick
// triangle's isotropic rows carry D0 once more), the shear rows zero.
TEST_P(TrianglePhysics, RigidMotionAndConstantFieldsGiveHandValues) {
  const auto [form, place] = GetParam();
  Field f;
  const double rigid[6] = {0.3, -0.2, 0.5, 0.02, -0.03, 0.015};
  for (int k = 0; k < 6; ++k) f.rigid[k] = rigid[k];
  const double eps[3] = {1e-3, -4e-4, 6e-4}, w2[3] = {0.7, -0.4, 0.25};
  for (int k = 0; k < 3; ++k) f.eps[k] = eps[k], f.w2[k] = w2[k];
  const double kappa[3] = {-w2[0], -w2[1], -2 * w2[2]};
  const double d0 = kE / (1 - kNu * kNu);
  const double D[3][3] = {{d0, kNu * d0, 0}, {kNu * d0, d0, 0}, {0, 0, d0 * (1 - kNu) / 2}};
  const double mscale = form == kStiffened ? kT : 1.0;
  const double bscale = form == kStiffened ? kT * kT * kT / 12
                        : form == kDrill   ? 0.0
                        : form == kDkmt    ? d0 * kT / 2
                                           : kT / 2;
  const Blocks b = run(form, m, kPlacements[place], f);
  for (int p = 0; p < 4; ++p)
    for (int r = 0; r < 3; ++r) {
      const double sm = mscale * (D[r][0] * eps[0] + D[r][1] * eps[1] + D[r][2] * eps[2]);
      const double sb = bscale * (D[r][0] * kappa[0] + D[r][1] * kappa[1] + D[r][2] * kappa[2]);
      EXPECT_NEAR(b[8 * p + r], sm, 1e-9 * std::fabs(sm) + 1e-9) << p << r;
      EXPECT_NEAR(b[8 * p + 3 + r], sb, 1e-9 * std::fabs(sb) + 1e-6) << p << r;
      if (r < 2) {
        EXPECT_NEAR(b[8 * p + 6 + r], 0.0, 1e-6);
      }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, TrianglePhysics,
                         ::testing::Combine(::testing::Values(kDkt, kDkmt, kDktGnrl, kDkmtGnrl,
                                                              kStiffened, kDrill),
                                            ::testing::Values(0, 1, 2)));

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
    Field f;
    f.wlin = a;
    const double phi = 2.4 / (1 - kNu) * t * t;
    const double tau = kE / (2 * (1 + kNu)) / 1.2 * a * phi / (1 + phi);
    // The ordinary and the general section give the stress, the ribbed
    // section the force per unit width.
    for (Form form : {kDkmt, kDkmtGnrl, kStiffened}) {
      const Blocks b = run(form, m, eq, f);
      EXPECT_NEAR(b[7], (form == kStiffened ? t : 1.0) * tau, 1e-12 * kE) << form << " " << t;
      EXPECT_NEAR(b[6], 0.0, 1e-12 * kE);
    }
  }
  m.isotropic(kE, kNu, 1e-4, 1e-4);
  Field f;
  const double extra[18] = {0.1,   -0.2, 0.3,  0.05, -0.07, 0.02, 0.4,  0.1,  -0.3,
                            -0.02, 0.06, 0.01, -0.1, 0.3,   0.2,  0.03, 0.04, -0.05};
  for (int k = 0; k < 18; ++k) f.extra[k] = extra[k];
  const Blocks thick = run(kDkmtGnrl, m, kPlacements[1], f);
  const Blocks thin = run(kDktGnrl, m, kPlacements[1], f);
  for (int p = 0; p < 4; ++p)
    for (int r = 0; r < 6; ++r)
      EXPECT_NEAR(thick[8 * p + r], thin[8 * p + r], 1e-6 * std::fabs(thin[8 * p + r]) + 1e-9)
          << p << r;
}

}  // namespace
}  // namespace respcore
