// Plane element archives for tests: elements laid in a panel placed anywhere
// in space (nodes at C + Q (x, y, 0), Q's columns the panel axes), nodes with
// six equations each and identity node axes, direct histories of a field.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing::plane {

using V3 = std::array<double, 3>;
using M3 = std::array<V3, 3>;  // m[i][j]

inline V3 mul(const M3& a, const V3& v, bool transposed = false) {
  V3 r{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r[i] += (transposed ? a[j][i] : a[i][j]) * v[j];
  return r;
}
// About z by A, then about x by B; with XZ the panel's normal is -y.
inline M3 turn(double a, double b, bool xz = false) {
  const double c = std::cos(a), s = std::sin(a), cb = std::cos(b), sb = std::sin(b);
  if (xz) return {{{c, -s, 0}, {0, 0, -1}, {s, c, 0}}};
  return {{{c, -s, 0}, {cb * s, cb * c, -sb}, {sb * s, sb * c, cb}}};
}

// Panel coordinates of the shapes; the panel-axis rules give axis 1 along x.
inline std::vector<std::array<double, 2>> local_nodes(int nn) {
  if (nn == 3) return {{0, 0}, {2, 0}, {0.7, 1.6}};
  if (nn == 4) return {{0, 0}, {2, -0.2}, {2.3, 1.5}, {0.3, 1.3}};
  if (nn == 6) return {{0, 0}, {2, 0}, {0.7, 1.6}, {1, 0}, {1.35, 0.8}, {0.35, 0.8}};
  return {{0, 0}, {2, 0}, {2.5, 1.2}, {0.5, 1.2}, {1, 0}, {2.25, 0.6}, {1.5, 1.2}, {0.25, 0.6}};
}

// The six global values of a node (translations, rotations) at X, step s.
using Field = std::function<std::array<double, 6>(const V3& X, int s)>;
inline Field rigid(const V3& w) {
  return [=](const V3& X, int s) {
    const V3 u = mul({{{0, -w[2], w[1]}, {w[2], 0, -w[0]}, {-w[1], w[0], 0}}}, X);
    return std::array<double, 6>{s * u[0], s * u[1], s * u[2], s * w[0], s * w[1], s * w[2]};
  };
}

// A field in the panel (Q, C): at panel point (x, y) the in-plane motion
// s (L (x, y) + QU (x^2, xy, y^2)) and the rotation s 1e-3 about the normal;
// EPS(x, y) is its strain (ex, ey, gxy) at step 1.
struct PanelField {
  M3 Q;
  V3 C = {3, -2, 1};
  M3 L = {{{1.2e-3, -0.4e-3, 0}, {0.3e-3, -0.9e-3, 0}, {0, 0, 0}}}, QU{};
  V3 eps(double x, double y) const {
    return {L[0][0] + 2 * QU[0][0] * x + QU[0][1] * y, L[1][1] + QU[1][1] * x + 2 * QU[1][2] * y,
            L[0][1] + L[1][0] + (QU[0][1] + 2 * QU[1][0]) * x + (2 * QU[0][2] + QU[1][1]) * y};
  }
  Field field() const {
    return [f = *this](const V3& X, int s) {
      const V3 x = mul(f.Q, {X[0] - f.C[0], X[1] - f.C[1], X[2] - f.C[2]}, true);
      const V3 q = mul(f.QU, {x[0] * x[0], x[0] * x[1], x[1] * x[1]}), l = mul(f.L, x);
      const V3 g = mul(f.Q, {s * (l[0] + q[0]), s * (l[1] + q[1]), 0}),
               w = mul(f.Q, {0, 0, s * 1e-3});
      return std::array<double, 6>{g[0], g[1], g[2], w[0], w[1], w[2]};
    };
  }
};

struct Material {
  double E = 2.0e5, nu = 0.3, t = 0.1;
  int type = 0;
  std::array<double, 9> vals{};
  PlaneMaterial record() const { return {{t}, E, nu, type, vals}; }
};
// Isotropic D times a strain triple; KIND 1 plane strain.
inline V3 stress_of(const Material& m, const V3& e, int kind) {
  const double nu = m.nu, k = m.E / (kind == 1 ? (1 + nu) * (1 - 2 * nu) : 1 - nu * nu);
  const double d11 = kind == 1 ? (1 - nu) * k : k, g = (kind == 1 ? 1 - 2 * nu : 1 - nu) / 2 * k;
  return {d11 * e[0] + nu * k * e[1], nu * k * e[0] + d11 * e[1], g * e[2]};
}

// Nodes from 1 with equations 6(n-1)+1..6, direct storage in file 1, case 1.
struct PlaneModel {
  explicit PlaneModel(const char* tag = "P.R.W") : a(tag) {}
  ArchiveFixture a;
  std::vector<V3> nodes;
  std::vector<std::vector<int>> elements;

  void place(int nn, const M3& Q, const V3& C = {3, -2, 1}) {
    elements.emplace_back();
    for (const auto& p : local_nodes(nn)) {
      const V3 d = mul(Q, {p[0], p[1], 0});
      nodes.push_back({C[0] + d[0], C[1] + d[1], C[2] + d[2]});
      elements.back().push_back(static_cast<int>(nodes.size()));
    }
  }
  std::vector<double> equations() const {
    std::vector<double> lm;
    for (int n : elements.back())
      for (int c = 1; c <= 6; ++c) lm.push_back(6 * (n - 1) + c);
    return lm;
  }
  // HIST(equation, step) of every equation.
  void write(const std::function<double(int, int)>& hist, int nsteps) {
    a.history_cases({{2, 1, nsteps, 0, 0}});
    std::vector<EquationHistory> eqs(6 * nodes.size());
    std::vector<NodeTransform> nt(nodes.size());
    for (int e = 1; e <= static_cast<int>(eqs.size()); ++e) {
      nt[static_cast<size_t>(e - 1) / 6].equations.push_back(e);
      for (int s = 1; s <= nsteps; ++s) eqs[static_cast<size_t>(e - 1)].disp.push_back(hist(e, s));
    }
    a.direct_histories(1, eqs, nsteps);
    a.node_records(nt);
    a.writer().node_coordinates(std::vector<std::array<double, 3>>(nodes.begin(), nodes.end()));
    a.writer().element_table(std::vector<std::vector<int32_t>>(elements.size(), {1}));
    a.writer().materials({{1, 1.0, 0.0, 0, {}}});
    a.write();
  }
  void write(const Field& u, int nsteps) {
    write([&](int e, int s) { return u(nodes[static_cast<size_t>(e - 1) / 6], s)[(e - 1) % 6]; },
          nsteps);
  }
  Request request(int elem_type, int item, int nsteps, int axis_flag = 1) const {
    Request r = a.request(elem_type, 1, nsteps);
    r.serials = r.elements = {item};
    r.axis_flag = axis_flag;
    return r;
  }
  // The six- or eight-node record of the last placed element.
  PlaneHighRecord high_record(const Material& mat) const {
    return {equations(), {elements.back().begin(), elements.back().end()}, mat.record()};
  }
};

}  // namespace respcore::testing::plane
