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

inline M3 matmul(const M3& a, const M3& b, bool ta = false) {  // a b, or a' b
  M3 c{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int k = 0; k < 3; ++k) c[i][j] += (ta ? a[k][i] : a[i][k]) * b[k][j];
  return c;
}
inline M3 transpose(const M3& a) { return matmul(a, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, true); }
inline V3 mul(const M3& a, const V3& v) {
  V3 r{};
  for (int i = 0; i < 3; ++i) r[i] = a[i][0] * v[0] + a[i][1] * v[1] + a[i][2] * v[2];
  return r;
}
inline V3 add(const V3& a, const V3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline V3 cross(const V3& a, const V3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// A proper rotation from three angles (about z, then y, then x).
inline M3 rotation(double a, double b, double c) {
  const M3 rz = {{{std::cos(a), -std::sin(a), 0}, {std::sin(a), std::cos(a), 0}, {0, 0, 1}}};
  const M3 ry = {{{std::cos(b), 0, std::sin(b)}, {0, 1, 0}, {-std::sin(b), 0, std::cos(b)}}};
  const M3 rx = {{{1, 0, 0}, {0, std::cos(c), -std::sin(c)}, {0, std::sin(c), std::cos(c)}}};
  return matmul(rz, matmul(ry, rx));
}

// R S R' of a symmetric tensor given by its six values.
inline V6 rotate(const M3& r, const V6& v) {
  const M3 t = {{{v[0], v[3], v[5]}, {v[3], v[1], v[4]}, {v[5], v[4], v[2]}}};
  const M3 s = matmul(r, matmul(t, transpose(r)));
  return {s[0][0], s[1][1], s[2][2], s[0][1], s[1][2], s[2][0]};
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
  return {1.5e5, 0.25, 1, {0.9e5, 0.2, 0.0, 0.6e5, 0.3, 0.0, 4.0e4, 2.5e4, 3.0e4}};
}

// Compliance from the engineering constants (the isotropic material being
// the orthotropic one with equal constants).
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

// The isotropic stress of an engineering strain.
inline V6 isotropic_stress(const Material& m, const V6& e) {
  const double mu = m.E / (2 * (1 + m.nu)), lam = 2 * mu * m.nu / (1 - 2 * m.nu),
               tr = lam * (e[0] + e[1] + e[2]);
  return {tr + 2 * mu * e[0], tr + 2 * mu * e[1], tr + 2 * mu * e[2], mu * e[3], mu * e[4],
          mu * e[5]};
}

// ---------------------------------------------------------------------------
// Displacement fields: u(X, step).

using Field = std::function<V3(const V3&, int)>;

// u = s (a + G X) at step s; a rigid motion when G is skew.
inline Field linear_field(const V3& a, const M3& g) {
  return [a, g](const V3& x, int s) {
    const V3 u = add(a, mul(g, x));
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
constexpr auto point6 = point<6>;
constexpr auto point3 = point<3>;
inline double norm6(const V6& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2] + v[3] * v[3] + v[4] * v[4] + v[5] * v[5]); }

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
