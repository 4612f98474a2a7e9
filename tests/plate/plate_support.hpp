// Plate archives for whole requests: an element placed in a tilted plane,
// nodal motion made from displacement fields given in the element's axes, and
// the rows a request returns. The hand values of a result block are those of
// an isotropic section under a constant membrane strain and a constant
// Kirchhoff curvature.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing::plate {

using Dof6 = std::array<double, 6>;                     // u, v, w, rx, ry, rz
using Field = std::function<Dof6(double x, double y)>;  // in element axes
using Row3 = std::array<double, 3>;
using Block = std::array<double, 14>;

constexpr double kE = 2.0e5, kNu = 0.3;

// u = a + w x X for the translation a and rotation w of A.
inline Field rigid(Dof6 a) {
  return [a](double x, double y) {
    return Dof6{a[0] - a[5] * y, a[1] + a[5] * x, a[2] + a[3] * y - a[4] * x, a[3], a[4], a[5]};
  };
}
// Displacement gradient (ex, g1; g2, ey): strain (ex, ey, g1 + g2), spin (g2 - g1)/2.
inline Field membrane(double ex, double ey, double g1, double g2) {
  return [=](double x, double y) {
    return Dof6{ex * x + g1 * y, g2 * x + ey * y, 0, 0, 0, (g2 - g1) / 2};
  };
}
// w = (A x^2 + B y^2)/2 + C x y with the Kirchhoff rotations rx = w,y, ry = -w,x.
inline Field bending(double A, double B, double C) {
  return [=](double x, double y) {
    return Dof6{0, 0, A * x * x / 2 + B * y * y / 2 + C * x * y, B * y + C * x, -(A * x + C * y), 0};
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
  return {{{2.0 / 3, 1.0 / 3, 2.0 / 3}, {-2.0 / 3, 2.0 / 3, 1.0 / 3}, {-1.0 / 3, -2.0 / 3, 2.0 / 3}}};
}
inline Row3 to_global(const Row3& v) {
  const auto q = axes();
  return {q[0][0] * v[0] + q[1][0] * v[1] + q[2][0] * v[2],
          q[0][1] * v[0] + q[1][1] * v[1] + q[2][1] * v[2],
          q[0][2] * v[0] + q[1][2] * v[1] + q[2][2] * v[2]};
}

// Strain-like triple (xx, yy, engineering xy) in axes turned by DEG degrees.
inline Row3 turn(const Row3& e, double deg) {
  const double t = deg / 180.0 * 3.141592653589793, c = std::cos(t), s = std::sin(t);
  return {c * c * e[0] + s * s * e[1] + c * s * e[2], s * s * e[0] + c * c * e[1] - c * s * e[2],
          -2 * c * s * e[0] + 2 * c * s * e[1] + (c * c - s * s) * e[2]};
}

// The result block of strain EPS and curvature K = (w,xx, w,yy, 2 w,xy) for a
// section whose fibres lie at ZTOP above and ZBOT below the middle surface,
// of membrane thickness T and bending rigidity RIG * D.
inline Block hand_block(Row3 eps, Row3 k, double ztop, double zbot, double t, double rig) {
  const double d0 = kE / (1 - kNu * kNu);
  auto D = [&](const Row3& v) {
    return Row3{d0 * (v[0] + kNu * v[1]), d0 * (kNu * v[0] + v[1]), d0 * (1 - kNu) / 2 * v[2]};
  };
  const Row3 sm = D(eps), dk = D(k);
  Block b{};
  for (int c = 0; c < 3; ++c) {
    b[c] = sm[c] - dk[c] * ztop;
    b[c + 3] = sm[c] + dk[c] * zbot;
    b[c + 6] = sm[c] * t;
    b[c + 9] = dk[c] * rig;
  }
  return b;
}

// A linear request helper: the rows 1..NROWS of item 1 over NSTEPS steps.
inline std::vector<std::vector<double>> history_rows(const ArchiveFixture& f, int type, int product,
                                                     int nrows, int nsteps) {
  Kernel k;
  std::vector<std::vector<double>> rows;
  for (int r = 1; r <= nrows; ++r) {
    Request q = f.request(type, r, nsteps);
    q.product_index = product;
    const Result res = k.run(q);
    EXPECT_EQ(res.output_lines.size(), 0u) << res.output_lines[0];
    rows.push_back(res.values);
  }
  return rows;
}

// Node records 1..N with equations 6(n-1)+1..6, identity transforms, and the
// global motion of each node at each step: STEPS[s][n].
inline void write_motion(ArchiveFixture& f, const std::vector<std::vector<Dof6>>& steps) {
  const size_t nn = steps.front().size();
  std::vector<NodeTransform> nodes;
  std::vector<EquationHistory> eqs(6 * nn);
  for (size_t n = 0; n < nn; ++n) {
    NodeTransform t;
    for (int c = 1; c <= 6; ++c) t.equations.push_back(6.0 * n + c);
    nodes.push_back(t);
    for (const auto& s : steps)
      for (int c = 0; c < 6; ++c) eqs[6 * n + c].disp.push_back(s[n][c]);
  }
  f.history_cases({{2, 1, static_cast<int32_t>(steps.size()), 0, 0}});
  f.node_records(nodes);
  f.direct_histories(1, eqs, static_cast<int32_t>(steps.size()));
}

// Global motion of a node whose element point lies at R (global) from it,
// the element point at local (X, Y) moving by FIELD.
inline Dof6 node_motion(const Field& field, double x, double y, const Row3& r) {
  const Dof6 l = field(x, y);
  const Row3 u = to_global({l[0], l[1], l[2]}), w = to_global({l[3], l[4], l[5]});
  return {u[0] - (w[1] * r[2] - w[2] * r[1]), u[1] - (w[2] * r[0] - w[0] * r[2]),
          u[2] - (w[0] * r[1] - w[1] * r[0]), w[0], w[1], w[2]};
}

// Every value of A against B, to TOL times SCALE.
inline void expect_near_all(const std::vector<double>& a, const std::vector<double>& b, double tol,
                            const std::string& what) {
  ASSERT_EQ(a.size(), b.size()) << what;
  for (size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], tol) << what << " row " << i + 1;
}

}  // namespace respcore::testing::plate
