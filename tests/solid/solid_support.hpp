// Test support for the solid families: small vector algebra, materials,
// displacement fields, archives of solid elements written with the writer,
// and the natural node coordinates and placements of the shapes.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing::solid {

using V3 = std::array<double, 3>;
using M3 = std::array<std::array<double, 3>, 3>;  // m[i][j]
using V6 = std::array<double, 6>;                 // xx, yy, zz, xy, yz, zx
using M6 = std::array<double, 36>;                // column-major 6 by 6

inline M3 matmul(const M3& a, const M3& b) {
  M3 c{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
  return c;
}
inline M3 transpose(const M3& a) {
  M3 t{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) t[i][j] = a[j][i];
  return t;
}
inline V3 mul(const M3& a, const V3& v) {
  V3 r{};
  for (int i = 0; i < 3; ++i) r[i] = a[i][0] * v[0] + a[i][1] * v[1] + a[i][2] * v[2];
  return r;
}
inline V3 add(const V3& a, const V3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline V3 cross(const V3& a, const V3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double det3(const M3& a) {
  return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
         a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
         a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}
// Cofactor matrix: det(F) F^-T.
inline M3 cofactor(const M3& a) {
  M3 c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
      c[i][j] = a[i1][j1] * a[i2][j2] - a[i1][j2] * a[i2][j1];
    }
  }
  return c;
}

// A proper rotation from three angles (about z, then y, then x).
inline M3 rotation(double a, double b, double c) {
  const M3 rz = {{{std::cos(a), -std::sin(a), 0}, {std::sin(a), std::cos(a), 0}, {0, 0, 1}}};
  const M3 ry = {{{std::cos(b), 0, std::sin(b)}, {0, 1, 0}, {-std::sin(b), 0, std::cos(b)}}};
  const M3 rx = {{{1, 0, 0}, {0, std::cos(c), -std::sin(c)}, {0, std::sin(c), std::cos(c)}}};
  return matmul(rz, matmul(ry, rx));
}

// Symmetric tensor <-> six values.
inline M3 tensor(const V6& v) {
  return {{{v[0], v[3], v[5]}, {v[3], v[1], v[4]}, {v[5], v[4], v[2]}}};
}
inline V6 six(const M3& s) { return {s[0][0], s[1][1], s[2][2], s[0][1], s[1][2], s[2][0]}; }
// R S R'.
inline V6 rotate(const M3& r, const V6& v) {
  return six(matmul(r, matmul(tensor(v), transpose(r))));
}

// Engineering strain of a displacement gradient G[i][j] = du_i/dx_j.
inline V6 strain_of(const M3& g) {
  return {g[0][0], g[1][1], g[2][2], g[0][1] + g[1][0], g[1][2] + g[2][1], g[2][0] + g[0][2]};
}
inline V6 mul6(const M6& d, const V6& v) {
  V6 r{};
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 6; ++j) r[i] += d[i + 6 * j] * v[j];
  return r;
}

struct Material {
  double E = 2.0e5;
  double nu = 0.3;
  int type = 0;                  // 0 isotropic, 1 orthotropic
  std::array<double, 9> vals{};  // E2, nu13, -, E3, nu23, -, G12, G23, G31
};

inline Material orthotropic() {
  Material m;
  m.type = 1;
  m.E = 1.5e5;
  m.nu = 0.25;
  m.vals = {0.9e5, 0.2, 0.0, 0.6e5, 0.3, 0.0, 4.0e4, 2.5e4, 3.0e4};
  return m;
}

// Compliance from the engineering constants (the isotropic material being
// the orthotropic one with equal constants); the elastic matrix is its
// inverse.
inline M6 compliance(const Material& m) {
  const bool o = m.type == 1;
  const double E1 = m.E, E2 = o ? m.vals[0] : m.E, E3 = o ? m.vals[3] : m.E;
  const double n12 = m.nu, n13 = o ? m.vals[1] : m.nu, n23 = o ? m.vals[4] : m.nu;
  const M3 a = {{{1 / E1, -n12 / E1, -n13 / E1},
                 {-n12 / E1, 1 / E2, -n23 / E2},
                 {-n13 / E1, -n23 / E2, 1 / E3}}};
  M6 c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) c[i + 6 * j] = a[i][j];
    c[(3 + i) * 7] = 1.0 / (o ? m.vals[6 + i] : m.E / (2 * (1 + m.nu)));
  }
  return c;
}

inline M6 elastic(const Material& m) {
  const M6 c = compliance(m);
  M3 a;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) a[i][j] = c[i + 6 * j];
  const M3 cof = cofactor(a);
  M6 d{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) d[i + 6 * j] = cof[j][i] / det3(a);
    d[(3 + i) * 7] = 1.0 / c[(3 + i) * 7];
  }
  return d;
}

// The global stress of a constant strain (displacement gradient G), the
// material being given in the element axes, the columns of Q.
inline V6 stress_of_element(const Material& m, const M3& Q, const M3& G) {
  M3 e = tensor(strain_of(G));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      if (i != j) e[i][j] *= 0.5;
  const M3 el = matmul(transpose(Q), matmul(e, Q));
  const V6 evl = {el[0][0], el[1][1], el[2][2], 2 * el[0][1], 2 * el[1][2], 2 * el[2][0]};
  return rotate(Q, mul6(elastic(m), evl));
}

// ---------------------------------------------------------------------------
// Displacement fields: u(X, step).

using Field = std::function<V3(const V3&, int)>;

// u = s (a + G X) at step s.
inline Field linear_field(const V3& a, const M3& g) {
  return [a, g](const V3& x, int s) {
    const V3 u = add(a, mul(g, x));
    return V3{s * u[0], s * u[1], s * u[2]};
  };
}
// u = s (a + w x X): an infinitesimal rigid motion.
inline Field rigid_field(const V3& a, const V3& w) {
  return [a, w](const V3& x, int s) {
    const V3 u = add(a, cross(w, x));
    return V3{s * u[0], s * u[1], s * u[2]};
  };
}

inline M3 sample_gradient() {
  return {{{1.2e-3, -0.4e-3, 0.7e-3}, {0.3e-3, -0.9e-3, 0.5e-3}, {-0.6e-3, 0.8e-3, 0.4e-3}}};
}

// ---------------------------------------------------------------------------
// An archive of solid elements: nodes numbered from 1, equation 3(n-1)+c for
// node n and direction c, direct storage of the histories in file 1, case 1.

struct SolidModel {
  std::vector<V3> nodes;
  std::vector<Material> materials;    // material k+1
  std::vector<int> element_material;  // per element serial: material number

  void write_common(ArchiveFixture& a, const Field& u, int nsteps) const {
    a.history_cases({{2, 1, nsteps, 0, 0}});
    std::vector<EquationHistory> eqs(3 * nodes.size());
    for (size_t n = 0; n < nodes.size(); ++n) {
      for (int s = 1; s <= nsteps; ++s) {
        const V3 d = u(nodes[n], s);
        for (int c = 0; c < 3; ++c) eqs[3 * n + c].disp.push_back(d[c]);
      }
    }
    a.direct_histories(1, eqs, nsteps);
    std::vector<std::vector<int32_t>> table;
    for (const int m : element_material) table.push_back({m});
    a.writer().element_table(table);
    std::vector<MaterialRecord> mats;
    for (size_t m = 0; m < materials.size(); ++m) {
      const Material& x = materials[m];
      mats.push_back({static_cast<int32_t>(m + 1), x.E, x.nu, x.type, x.vals});
    }
    a.writer().materials(mats);
  }
};

// Rows ROW0.. of step S as a force triple or a point's six values.
template <size_t N>
std::array<double, N> point(const std::vector<std::vector<double>>& rows, int row0, int s) {
  std::array<double, N> v{};
  for (size_t i = 0; i < N; ++i) v[i] = rows[row0 + i - 1][static_cast<size_t>(s - 1)];
  return v;
}
inline V6 point6(const std::vector<std::vector<double>>& r, int row0, int s) {
  return point<6>(r, row0, s);
}
inline V3 point3(const std::vector<std::vector<double>>& r, int row0, int s) {
  return point<3>(r, row0, s);
}

inline double norm6(const V6& v) {
  double s = 0;
  for (double x : v) s += x * x;
  return std::sqrt(s);
}

// Component by component; a message may be streamed behind.
#define EXPECT_V6_NEAR(a, b, tol) \
  for (int i_ = 0; i_ < 6; ++i_)  \
  EXPECT_NEAR((a)[i_], (b)[i_], (tol)) << "component " << i_ + 1 << " "
#define EXPECT_V3_NEAR(a, b, tol) \
  for (int i_ = 0; i_ < 3; ++i_)  \
  EXPECT_NEAR((a)[i_], (b)[i_], (tol)) << "component " << i_ + 1 << " "

// ---------------------------------------------------------------------------
// Natural node coordinates of the shapes, in element order.

inline std::vector<V3> natural_nodes(int nn) {
  switch (nn) {
    case 4:
      return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    case 5:
      return {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {0, 0, 1}};
    case 6:
      return {{0, 0, -1}, {1, 0, -1}, {0, 1, -1}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
    case 8:
      return {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
              {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
    case 10:
      return {{0, 0, 0},     {1, 0, 0},   {0, 1, 0},   {0, 0, 1},     {0.5, 0, 0},
              {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5}, {0.5, 0, 0.5}, {0, 0.5, 0.5}};
    case 13:
      return {{-1, -1, 0},      {1, -1, 0},      {1, 1, 0},       {-1, 1, 0}, {0, 0, 1},
              {0, -1, 0},       {1, 0, 0},       {0, 1, 0},       {-1, 0, 0}, {-0.5, -0.5, 0.5},
              {0.5, -0.5, 0.5}, {0.5, 0.5, 0.5}, {-0.5, 0.5, 0.5}};
    case 15:
      return {{0, 0, -1},    {1, 0, -1},   {0, 1, -1},     {0, 0, 1},    {1, 0, 1},
              {0, 1, 1},     {0.5, 0, -1}, {0.5, 0.5, -1}, {0, 0.5, -1}, {0.5, 0, 1},
              {0.5, 0.5, 1}, {0, 0.5, 1},  {0, 0, 0},      {1, 0, 0},    {0, 1, 0}};
    case 20:
      return {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1},
              {1, -1, 1},   {1, 1, 1},   {-1, 1, 1}, {0, -1, -1}, {1, 0, -1},
              {0, 1, -1},   {-1, 0, -1}, {0, -1, 1}, {1, 0, 1},   {0, 1, 1},
              {-1, 0, 1},   {-1, -1, 0}, {1, -1, 0}, {1, 1, 0},   {-1, 1, 0}};
    default:
      return {};
  }
}

// Global node positions: X = Q (A x + bump(x)) + C, with A upper triangular so
// that the element axes built from nodes 1..3 (or 1..4) are the columns of Q.
struct Placement {
  M3 Q = rotation(0.0, 0.0, 0.0);
  M3 A = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  V3 C = {0.0, 0.0, 0.0};
  double bump = 0.0;  // curvature given to nodes that are not corners
};

inline Placement sample_placement(int variant) {
  Placement p;
  const double ang[3][3] = {{0.4, -0.7, 1.1}, {2.3, 0.5, -0.9}, {-1.4, 1.2, 0.3}};
  p.Q = rotation(ang[variant % 3][0], ang[variant % 3][1], ang[variant % 3][2]);
  p.A = {{{2.0, 0.3, -0.2}, {0.0, 1.5, 0.4}, {0.0, 0.0, 1.2}}};
  p.C = {10.0, -4.0, 7.5};
  return p;
}

inline std::vector<V3> place(const std::vector<V3>& nat, int ncorner, const Placement& p) {
  std::vector<V3> out;
  for (size_t k = 0; k < nat.size(); ++k) {
    V3 x = mul(p.A, nat[k]);
    if (static_cast<int>(k) >= ncorner && p.bump != 0.0) {
      const double f = p.bump;
      x = add(x, V3{f * std::sin(1.0 + k), f * std::cos(2.0 * k), f * std::sin(0.5 * k + 0.3)});
    }
    out.push_back(add(mul(p.Q, x), p.C));
  }
  return out;
}

}  // namespace respcore::testing::solid
