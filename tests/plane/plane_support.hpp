// Plane element archives for tests: elements laid in a panel placed anywhere
// in space, nodes with six equations each (identity node axes), direct
// histories from a displacement field, and the panel-axis algebra of the
// oracles.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing::plane {

using V3 = std::array<double, 3>;
using M3 = std::array<V3, 3>;  // m[i][j]; a placement's columns are the panel axes

inline V3 mul(const M3& a, const V3& v) {
  return {a[0][0] * v[0] + a[0][1] * v[1] + a[0][2] * v[2], a[1][0] * v[0] + a[1][1] * v[1] + a[1][2] * v[2],
          a[2][0] * v[0] + a[2][1] * v[1] + a[2][2] * v[2]};
}
inline V3 mulT(const M3& a, const V3& v) {
  return {a[0][0] * v[0] + a[1][0] * v[1] + a[2][0] * v[2], a[0][1] * v[0] + a[1][1] * v[1] + a[2][1] * v[2],
          a[0][2] * v[0] + a[1][2] * v[1] + a[2][2] * v[2]};
}
inline M3 mat(const M3& a, const M3& b, bool ta = false) {  // a b, or a' b
  M3 c{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int k = 0; k < 3; ++k) c[i][j] += (ta ? a[k][i] : a[i][k]) * b[k][j];
  return c;
}
inline M3 turn(double a, double b) {  // about z by a, then about x by b
  const M3 z = {{{std::cos(a), -std::sin(a), 0}, {std::sin(a), std::cos(a), 0}, {0, 0, 1}}};
  const M3 x = {{{1, 0, 0}, {0, std::cos(b), -std::sin(b)}, {0, std::sin(b), std::cos(b)}}};
  return mat(x, z);
}
inline const M3 kXZ = {{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}};  // a panel in the global xz plane

// Panel coordinates of the shapes; the panel-axis rules give axis 1 along x.
inline std::vector<std::array<double, 2>> local_nodes(int nn) {
  switch (nn) {
    case 3: return {{0, 0}, {2, 0}, {0.7, 1.6}};
    case 4: return {{0, 0}, {2, -0.2}, {2.3, 1.5}, {0.3, 1.3}};
    case 6: return {{0, 0}, {2, 0}, {0.7, 1.6}, {1, 0}, {1.35, 0.8}, {0.35, 0.8}};
    default: return {{0, 0}, {2, 0}, {2.5, 1.2}, {0.5, 1.2}, {1, 0}, {2.25, 0.6}, {1.5, 1.2}, {0.25, 0.6}};
  }
}

// Six global values of a node (translations, rotations) at X, step s.
using Field = std::function<std::array<double, 6>(const V3& X, int s)>;
inline Field linear(const M3& G, const V3& w) {  // s (G X), rotations s w
  return [=](const V3& X, int s) {
    const V3 u = mul(G, X);
    return std::array<double, 6>{s * u[0], s * u[1], s * u[2], s * w[0], s * w[1], s * w[2]};
  };
}
inline Field rigid(const V3& w) {
  return linear({{{0, -w[2], w[1]}, {w[2], 0, -w[0]}, {-w[1], w[0], 0}}}, w);
}
inline const M3 kGrad = {{{1.2e-3, -0.4e-3, 0.7e-3}, {0.3e-3, -0.9e-3, 0.5e-3}, {-0.6e-3, 0.8e-3, 0.4e-3}}};
// The panel strain (ex, ey, gxy) of the gradient G for a panel placed by Q.
inline V3 panel_strain(const M3& G, const M3& Q) {
  const M3 g = mat(Q, mat(G, Q), true);
  return {g[0][0], g[1][1], g[0][1] + g[1][0]};
}

struct Material {
  double E = 2.0e5, nu = 0.3, t = 0.1;
  int type = 0;
  std::array<double, 9> vals{};
  PlaneMaterial record() const {
    PlaneMaterial m;
    m.plate_prop[0] = t, m.young = E, m.poisson = nu, m.type = type, m.vals = vals;
    return m;
  }
};
// Isotropic D times a strain triple; KIND 1 plane strain.
inline V3 stress_of(const Material& m, const V3& e, int kind) {
  const double k = kind == 1 ? m.E / ((1 + m.nu) * (1 - 2 * m.nu)) : m.E / (1 - m.nu * m.nu);
  const double d11 = kind == 1 ? (1 - m.nu) * k : k, d12 = m.nu * k;
  return {d11 * e[0] + d12 * e[1], d12 * e[0] + d11 * e[1], (kind == 1 ? (1 - 2 * m.nu) / 2 : (1 - m.nu) / 2) * k * e[2]};
}

// An archive: nodes numbered from 1 with equations 6(n-1)+1..6, the
// elements of one section, direct storage in file 1, case 1, material 1.
struct PlaneModel {
  explicit PlaneModel(const char* tag = "P.R.W") : a(tag) {}
  ArchiveFixture a;
  std::vector<V3> nodes;
  std::vector<std::vector<int>> elements;

  // Nodes at C + Q (x, y, 0) of the shape; returns them.
  std::vector<int> place(int nn, const M3& Q, const V3& C = {3, -2, 1}) {
    std::vector<int> ns;
    for (const auto& p : local_nodes(nn)) {
      const V3 d = mul(Q, {p[0], p[1], 0});
      nodes.push_back({C[0] + d[0], C[1] + d[1], C[2] + d[2]});
      ns.push_back(static_cast<int>(nodes.size()));
    }
    elements.push_back(ns);
    return ns;
  }
  static std::vector<double> equations(const std::vector<int>& ns) {
    std::vector<double> lm;
    for (int n : ns)
      for (int c = 1; c <= 6; ++c) lm.push_back(6 * (n - 1) + c);
    return lm;
  }
  // The histories of every equation: HIST(equation, step).
  void write(const std::function<double(int, int)>& hist, int nsteps) {
    a.history_cases({{2, 1, nsteps, 0, 0}});
    std::vector<EquationHistory> eqs(6 * nodes.size());
    std::vector<NodeTransform> nt;
    std::vector<std::array<double, 3>> cord;
    for (size_t n = 0; n < nodes.size(); ++n) {
      nt.push_back({{}, {}});
      cord.push_back(nodes[n]);
      for (int c = 1; c <= 6; ++c) {
        const int e = static_cast<int>(6 * n) + c;
        nt.back().equations.push_back(e);
        for (int s = 1; s <= nsteps; ++s) eqs[static_cast<size_t>(e - 1)].disp.push_back(hist(e, s));
      }
    }
    a.direct_histories(1, eqs, nsteps);
    a.node_records(nt);
    a.writer().node_coordinates(cord);
    a.writer().element_table(std::vector<std::vector<int32_t>>(elements.size(), {1}));
    a.writer().materials({{1, 1.0, 0.0, 0, {}}});
    a.write();
  }
  void write(const Field& u, int nsteps) {
    write([&](int e, int s) { return u(nodes[static_cast<size_t>((e - 1) / 6)], s)[static_cast<size_t>((e - 1) % 6)]; },
          nsteps);
  }
  Request request(int elem_type, int item, int nsteps, int axis_flag = 1) const {
    Request r = a.request(elem_type, 1, nsteps);
    r.serials = {item};
    r.elements = {item};
    r.axis_flag = axis_flag;
    return r;
  }
};

// The six- or eight-node record of the last placed element.
inline PlaneHighRecord high_record(const PlaneModel& m, const Material& mat) {
  PlaneHighRecord r;
  r.lm = PlaneModel::equations(m.elements.back());
  r.nodes.assign(m.elements.back().begin(), m.elements.back().end());
  r.material = mat.record();
  return r;
}

// Rows 1..NROWS of one item, each through its own history request:
// rows[r-1][s-1].
inline std::vector<std::vector<double>> rows_of(Kernel& k, Request r, int nrows) {
  std::vector<std::vector<double>> out;
  for (r.result_comp = 1; r.result_comp <= nrows; ++r.result_comp) {
    Result res = k.run(r);
    EXPECT_EQ(res.status, STATUS_DONE);
    out.push_back(res.values);
  }
  return out;
}

}  // namespace respcore::testing::plane
