// Plate archives for whole requests: elements placed in a tilted plane, nodal
// motion from displacement fields given in element axes, the rows a request
// returns, and the hand values of an isotropic section under a constant
// membrane strain and a constant Kirchhoff curvature.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing::plate {

using Dof6 = std::array<double, 6>;                     // u, v, w, rx, ry, rz
using Field = std::function<Dof6(double x, double y)>;  // in element axes
using Row3 = std::array<double, 3>;
using Block = std::array<double, 14>;
using Rows = std::vector<std::vector<double>>;  // rows[r - 1][s - 1]

constexpr double kE = 2.0e5, kNu = 0.3;

// u = a + w x X for the translation and rotation of A.
inline Field rigid(Dof6 a) {
  return [a](double x, double y) {
    return Dof6{a[0] - a[5] * y, a[1] + a[5] * x, a[2] + a[3] * y - a[4] * x, a[3], a[4], a[5]};
  };
}
// Gradient (ex, g1; g2, ey): strain (ex, ey, g1 + g2), spin (g2 - g1)/2.
inline Field membrane(double ex, double ey, double g1, double g2) {
  return [=](double x, double y) {
    return Dof6{ex * x + g1 * y, g2 * x + ey * y, 0, 0, 0, (g2 - g1) / 2};
  };
}
// w = (A x^2 + B y^2)/2 + C x y, Kirchhoff rotations rx = w,y, ry = -w,x.
inline Field bending(double A, double B, double C) {
  return [=](double x, double y) {
    return Dof6{0, 0, A * x * x / 2 + B * y * y / 2 + C * x * y, B * y + C * x, -(A * x + C * y),
                0};
  };
}
inline Field sum(Field a, Field b) {
  return [a, b](double x, double y) {
    Dof6 p = a(x, y), q = b(x, y);
    for (int i = 0; i < 6; ++i) p[i] += q[i];
    return p;
  };
}

// Element axes in global components, axis k in row k.
inline std::array<Row3, 3> axes() {
  return {
      {{2.0 / 3, 1.0 / 3, 2.0 / 3}, {-2.0 / 3, 2.0 / 3, 1.0 / 3}, {-1.0 / 3, -2.0 / 3, 2.0 / 3}}};
}
inline Row3 to_global(const Row3& v) {
  const auto q = axes();
  return {q[0][0] * v[0] + q[1][0] * v[1] + q[2][0] * v[2],
          q[0][1] * v[0] + q[1][1] * v[1] + q[2][1] * v[2],
          q[0][2] * v[0] + q[1][2] * v[1] + q[2][2] * v[2]};
}
inline Row3 cross(const Row3& a, const Row3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Global motion of a node whose element point lies at R (global) from it,
// the point at local (X, Y) moving by FIELD.
inline Dof6 node_motion(const Field& field, double x, double y, const Row3& r) {
  const Dof6 l = field(x, y);
  const Row3 u = to_global({l[0], l[1], l[2]}), w = to_global({l[3], l[4], l[5]}), wr = cross(w, r);
  return {u[0] - wr[0], u[1] - wr[1], u[2] - wr[2], w[0], w[1], w[2]};
}

// Strain-like triple (xx, yy, engineering xy) in axes turned by DEG degrees.
inline Row3 turn(const Row3& e, double deg) {
  const double t = deg / 180.0 * 3.141592653589793, c = std::cos(t), s = std::sin(t);
  return {c * c * e[0] + s * s * e[1] + c * s * e[2], s * s * e[0] + c * c * e[1] - c * s * e[2],
          -2 * c * s * e[0] + 2 * c * s * e[1] + (c * c - s * s) * e[2]};
}

// Result block of strain EPS and curvature K = (w,xx, w,yy, 2 w,xy): fibres
// ZTOP above and ZBOT below the middle surface, membrane thickness T, bending
// rigidity RIG * D. The bending stress is -D K z; moments are reported as
// +RIG D K.
inline Block hand_block(Row3 eps, Row3 k, double ztop, double zbot, double t, double rig) {
  const double d0 = kE / (1 - kNu * kNu);
  auto D = [&](const Row3& v) {
    return Row3{d0 * (v[0] + kNu * v[1]), d0 * (kNu * v[0] + v[1]), d0 * (1 - kNu) / 2 * v[2]};
  };
  const Row3 sm = D(eps), dk = D(k);
  Block b{};
  for (int c = 0; c < 3; ++c)
    b[c] = sm[c] - dk[c] * ztop, b[c + 3] = sm[c] + dk[c] * zbot, b[c + 6] = sm[c] * t,
    b[c + 9] = dk[c] * rig;
  return b;
}

// Rows 1..NROWS of item 1 over NSTEPS steps, one history request per row.
inline Rows history_rows(const ArchiveFixture& f, int type, int product, int nrows, int nsteps,
                         int serial = 1) {
  Kernel k;
  Rows rows;
  Request q = f.request(type, 1, nsteps);
  q.product_index = product, q.serials = {serial};
  for (q.result_comp = 1; q.result_comp <= nrows; ++q.result_comp) rows.push_back(k.run(q).values);
  return rows;
}

// The many-items form reads the history rows of STEP; the envelope form the
// first six of each listed item's column (two items, two more empty columns).
inline void expect_request_modes(const ArchiveFixture& f, int type, const Rows& rows, int step) {
  Kernel k;
  const size_t nodes = type == 3 ? 4 : 8;
  for (int C = 1; C <= 20; ++C) {
    Request q = f.request(type, C, 1);
    q.request_mode = 2, q.step_no = step;
    const auto v = k.run(q).values;
    ASSERT_EQ(v.size(), C < 7 ? nodes : nodes + 1);
    for (size_t n = 0; n < v.size(); ++n) {
      const size_t row = C < 7 ? C - 1 + 6 * n : C - 1 + 6 * nodes + 14 * n - 6;
      EXPECT_NEAR(v[n], rows[row][step - 1], 1e-12 * (1 + std::fabs(v[n]))) << C;
    }
  }
  Request q = f.request(type, 9, 1);
  q.request_mode = 3, q.step_no = step, q.num_items = 2, q.serials = {1, 1}, q.elements = {1, 1};
  const auto v = k.run(q).values;
  ASSERT_EQ(v.size(), 24u);
  for (size_t i = 0; i < 24; ++i)
    EXPECT_NEAR(v[i], i < 12 ? rows[i % 6][step - 1] : 0.0, 1e-12 * (1 + std::fabs(v[i])));
}

// Node records 1..N with equations 6(n-1)+1..6 and identity transforms, and
// the global motion STEPS[s][n] of node n at step s.
inline void write_motion(ArchiveFixture& f, const std::vector<std::vector<Dof6>>& steps) {
  const size_t nn = steps.front().size();
  std::vector<NodeTransform> nodes(nn);
  std::vector<EquationHistory> eqs(6 * nn);
  for (size_t n = 0; n < nn; ++n)
    for (int c = 0; c < 6; ++c) {
      nodes[n].equations.push_back(6.0 * n + c + 1);
      for (const auto& s : steps) eqs[6 * n + c].disp.push_back(s[n][c]);
    }
  f.history_cases({{2, 1, static_cast<int32_t>(steps.size()), 0, 0}});
  f.node_records(nodes);
  f.direct_histories(1, eqs, static_cast<int32_t>(steps.size()));
}

}  // namespace respcore::testing::plate
