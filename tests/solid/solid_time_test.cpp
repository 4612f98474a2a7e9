// Low-order solids (ELEM_TYPE 4) through whole requests. The stored
// stress-displacement matrix of each element is made here, from the test's
// own formulation (shape functions, B matrix, integration rule), in element
// axes as the analysis stores it; the kernel turns the results to global
// axes. The oracles are physics: rigid motion, constant strain, equilibrium,
// the compliance.
#include <gtest/gtest.h>

#include <cmath>

#include "solid_support.hpp"

namespace respcore::testing::solid {
namespace {

constexpr double kG2 = 0.5773502691896257;

// The test's own low-order element: natural derivatives of the shape
// functions, result points (centre first, then the integration points in
// the order the kernel extrapolates from) and integration weights.
struct LowElement {
  int nn;

  void deriv(const V3& p, double d[3][8]) const {
    for (int i = 0; i < 3; ++i)
      for (int k = 0; k < 8; ++k) d[i][k] = 0.0;
    const double x = p[0], y = p[1], z = p[2];
    switch (nn) {
      case 4:
        for (int i = 0; i < 3; ++i) {
          d[i][0] = -1.0;
          d[i][i + 1] = 1.0;
        }
        break;
      case 5: {
        // N_i = (1/4)[(1 + xi x)(1 + yi y) - z + xi yi x y z / (1 - z)], N_5 = z.
        const auto nat = natural_nodes(5);
        for (int k = 0; k < 4; ++k) {
          const double xi = nat[k][0], yi = nat[k][1];
          d[0][k] = 0.25 * (xi * (1 + yi * y) + xi * yi * y * z / (1 - z));
          d[1][k] = 0.25 * (yi * (1 + xi * x) + xi * yi * x * z / (1 - z));
          d[2][k] = 0.25 * (-1.0 + xi * yi * x * y / ((1 - z) * (1 - z)));
        }
        d[2][4] = 1.0;
        break;
      }
      case 6: {
        const double L[3] = {1 - x - y, x, y};
        const double dLx[3] = {-1, 1, 0}, dLy[3] = {-1, 0, 1};
        for (int k = 0; k < 6; ++k) {
          const double zk = k < 3 ? -1.0 : 1.0;
          d[0][k] = dLx[k % 3] * (1 + zk * z) / 2;
          d[1][k] = dLy[k % 3] * (1 + zk * z) / 2;
          d[2][k] = L[k % 3] * zk / 2;
        }
        break;
      }
      case 8: {
        const auto nat = natural_nodes(8);
        for (int k = 0; k < 8; ++k) {
          const double a = nat[k][0], b = nat[k][1], c = nat[k][2];
          d[0][k] = a * (1 + b * y) * (1 + c * z) / 8;
          d[1][k] = b * (1 + a * x) * (1 + c * z) / 8;
          d[2][k] = c * (1 + a * x) * (1 + b * y) / 8;
        }
        break;
      }
    }
  }

  // Centre, then the integration points.
  std::vector<V3> points() const {
    switch (nn) {
      case 4: return {{0.25, 0.25, 0.25}};
      case 5: {
        const double A = 0.8774851560592651, B = 0.45584815740585327;
        const double G = 1 - (A + B) / 2, H = (A - B) / 2, r3 = 1.7320507764816284;
        std::vector<V3> p = {{0, 0, 0.25}};
        for (const V3& s : natural_nodes(8)) {
          const double z = G + s[2] * H;
          p.push_back({s[0] * (1 - z) / r3, s[1] * (1 - z) / r3, z});
        }
        return p;
      }
      case 6: {
        std::vector<V3> p = {{1.0 / 3, 1.0 / 3, 0}};
        const double tri[3][2] = {{1.0 / 6, 1.0 / 6}, {2.0 / 3, 1.0 / 6}, {1.0 / 6, 2.0 / 3}};
        for (double z : {-kG2, kG2})
          for (const auto& t : tri) p.push_back({t[0], t[1], z});
        return p;
      }
      case 8: {
        std::vector<V3> p = {{0, 0, 0}};
        for (const V3& s : natural_nodes(8)) p.push_back({s[0] * kG2, s[1] * kG2, s[2] * kG2});
        return p;
      }
    }
    return {};
  }

  // Integration points and weights for the stiffness (need not be exact:
  // the oracles do not depend on it).
  std::vector<std::pair<V3, double>> rule() const {
    const auto p = points();
    std::vector<std::pair<V3, double>> r;
    if (nn == 4) return {{p[0], 1.0 / 6}};
    for (size_t i = 1; i < p.size(); ++i) {
      double w = 1.0;
      if (nn == 6) w = 1.0 / 6;
      if (nn == 5) w = (1 - p[i][2]) * (1 - p[i][2]) / 3.0;
      r.push_back({p[i], w});
    }
    return r;
  }

  // B(6, 3nn) at natural point P for element-axis node coordinates XL.
  std::vector<double> bmat(const V3& p, const std::vector<V3>& xl, double& det) const {
    double d[3][8];
    deriv(p, d);
    M3 J{};
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j)
        for (int k = 0; k < nn; ++k) J[i][j] += d[i][k] * xl[k][j];
    det = det3(J);
    const M3 c = cofactor(J);  // J^-1 = cof(J)' / det
    std::vector<double> B(static_cast<size_t>(6 * 3 * nn), 0.0);
    auto b = [&](int r, int col) -> double& { return B[static_cast<size_t>(r + 6 * col)]; };
    for (int k = 0; k < nn; ++k) {
      double g[3];
      for (int i = 0; i < 3; ++i)
        g[i] = (c[0][i] * d[0][k] + c[1][i] * d[1][k] + c[2][i] * d[2][k]) / det;
      b(0, 3 * k) = g[0];
      b(1, 3 * k + 1) = g[1];
      b(2, 3 * k + 2) = g[2];
      b(3, 3 * k) = g[1];
      b(3, 3 * k + 1) = g[0];
      b(4, 3 * k + 1) = g[2];
      b(4, 3 * k + 2) = g[1];
      b(5, 3 * k) = g[2];
      b(5, 3 * k + 2) = g[0];
    }
    return B;
  }
};

// The stored record of one element: forces and stresses in element axes,
// acting on global displacements.
std::vector<double> solid_record(int nn, const std::vector<V3>& xl, const M3& Q, const M6& D,
                                 const std::vector<int>& eqs) {
  const LowElement el{nn};
  const int ndof = 3 * nn;
  const auto pts = el.points();
  const int nr = 24 + 6 * static_cast<int>(pts.size());
  std::vector<double> strs(static_cast<size_t>(nr * ndof), 0.0);
  auto S = [&](int r, int c) -> double& { return strs[static_cast<size_t>(r + nr * c)]; };

  // Element-axis matrices, columns then turned: M Rb with u_l = Q' u_g.
  std::vector<double> K(static_cast<size_t>(ndof * ndof), 0.0);
  for (const auto& [p, w] : el.rule()) {
    double det = 0;
    const auto B = el.bmat(p, xl, det);
    for (int i = 0; i < ndof; ++i) {
      for (int j = 0; j < ndof; ++j) {
        double x = 0;
        for (int a = 0; a < 6; ++a)
          for (int b = 0; b < 6; ++b) x += B[a + 6 * i] * D[a + 6 * b] * B[b + 6 * j];
        K[i + ndof * j] += w * std::fabs(det) * x;
      }
    }
  }
  auto turned = [&](auto&& m, int r, int col) {
    const int k = col / 3, c = col % 3;
    double x = 0;
    for (int j = 0; j < 3; ++j) x += m(r, 3 * k + j) * Q[c][j];
    return x;
  };
  for (int r = 0; r < ndof; ++r)
    for (int col = 0; col < ndof; ++col)
      S(r, col) = turned([&](int i, int j) { return K[i + ndof * j]; }, r, col);
  for (size_t p = 0; p < pts.size(); ++p) {
    double det = 0;
    const auto B = el.bmat(pts[p], xl, det);
    for (int a = 0; a < 6; ++a) {
      for (int col = 0; col < ndof; ++col) {
        S(24 + 6 * static_cast<int>(p) + a, col) = turned(
            [&](int i, int j) {
              (void)i;
              double x = 0;
              for (int b = 0; b < 6; ++b) x += D[a + 6 * b] * B[b + 6 * j];
              return x;
            },
            a, col);
      }
    }
  }

  SolidRecord rec;
  rec.lm.assign(eqs.begin(), eqs.end());
  rec.nr = nr;
  rec.strs = strs;
  rec.nn = nn;
  for (int I = 0; I < 3; ++I)
    for (int J = 0; J < 3; ++J) rec.axes[I][J] = Q[I][J];
  return rec.words();
}

// One or more low-order solids in one archive; element e uses nodes
// numbered consecutively from 1 + the nodes of the elements before it.
struct LowModel {
  ArchiveFixture a;
  SolidModel model;
  std::vector<std::vector<double>> records;
  std::vector<M3> axes;
  std::vector<std::vector<V3>> coords;

  void add_element(int nn, const Placement& pl, int material) {
    const auto nat = natural_nodes(nn);
    const auto x = place(nat, nn, pl);
    std::vector<int> eqs;
    std::vector<V3> xl;
    for (int k = 0; k < nn; ++k) {
      model.nodes.push_back(x[static_cast<size_t>(k)]);
      const int node = static_cast<int>(model.nodes.size());
      for (int c = 1; c <= 3; ++c) eqs.push_back(3 * (node - 1) + c);
      xl.push_back(mul(transpose(pl.Q), add(x[static_cast<size_t>(k)], V3{-pl.C[0], -pl.C[1], -pl.C[2]})));
    }
    const M6 D = elastic(model.materials[static_cast<size_t>(material - 1)]);
    records.push_back(solid_record(nn, xl, pl.Q, D, eqs));
    model.element_material.push_back(material);
    axes.push_back(pl.Q);
    coords.push_back(x);
  }

  void write(const Field& u, int nsteps) {
    model.write_common(a, u, nsteps);
    a.writer().second().add_f64_rows(sections::SOLD, 3, records);
    a.write();
  }

  Request request(int nsteps, int item = 1) const {
    Request r = a.request(4, 1, nsteps);
    r.serials = {item};
    r.elements = {item};
    return r;
  }
};

class SolidShapes : public ::testing::TestWithParam<int> {};

std::string NodeCountName(const ::testing::TestParamInfo<int>& p) { return "nodes" + std::to_string(p.param); }

TEST_P(SolidShapes, RigidMotionGivesNoForceAndNoStress) {
  const int nn = GetParam();
  for (int variant = 0; variant < 3; ++variant) {
    LowModel m;
    m.model.materials = {Material{}};
    m.add_element(nn, sample_placement(variant), 1);
    m.write(rigid_field({0.3, -0.2, 0.5}, {2e-3, -1e-3, 3e-3}), 3);
    Kernel k;
    const auto rows = all_rows(k, m.request(3), 24 + 6 * (nn + 1));
    // Stiffness times displacement is of order E * 1e-3 per unit length.
    for (size_t r = 0; r < rows.size(); ++r)
      for (double v : rows[r]) EXPECT_NEAR(v, 0.0, 1e-7) << "row " << r + 1;
  }
}

TEST_P(SolidShapes, LinearFieldGivesItsStressAtCentreAndNodes) {
  const int nn = GetParam();
  const M3 G = sample_gradient();
  for (int variant = 0; variant < 3; ++variant) {
    LowModel m;
    m.model.materials = {Material{}};
    Placement pl = sample_placement(variant);
    m.add_element(nn, pl, 1);
    m.write(linear_field({0.1, 0.2, -0.3}, G), 2);
    Kernel k;
    Request r = m.request(2);
    const auto rows = all_rows(k, r, 78 + 6 * (nn + 1));
    const V6 sigma = mul6(elastic(Material{}), strain_of(G));
    for (int s = 1; s <= 2; ++s) {
      for (int p = 0; p <= nn; ++p) {
        V6 expect = sigma;
        for (double& x : expect) x *= s;
        EXPECT_V6_NEAR(point6(rows, 25 + 6 * p, s), expect, 1e-9 * norm6(expect));
      }
      // Equilibrium of the element: forces and their moments balance.
      V3 fsum{}, msum{};
      for (int n = 0; n < nn; ++n) {
        const V3 f = point3(rows, 1 + 3 * n, s);
        fsum = add(fsum, f);
        msum = add(msum, cross(m.coords[0][static_cast<size_t>(n)], f));
      }
      EXPECT_V3_NEAR(fsum, (V3{0, 0, 0}), 1e-8);
      EXPECT_V3_NEAR(msum, (V3{0, 0, 0}), 1e-6);
      // The forces are not all zero: the element is loaded.
      EXPECT_GT(std::fabs(point3(rows, 1, s)[0]) + std::fabs(point3(rows, 1, s)[1]), 1e-3);
    }
  }
}

TEST_P(SolidShapes, ElementAxesResultsTurnBackToTheGlobalOnes) {
  const int nn = GetParam();
  LowModel m;
  m.model.materials = {orthotropic()};
  const Placement pl = sample_placement(1);
  m.add_element(nn, pl, 1);
  // A general field: a linear one plus some node-by-node scatter.
  const Field lin = linear_field({0.1, 0.2, -0.3}, sample_gradient());
  m.write([&](const V3& x, int s) {
    V3 u = lin(x, s);
    u[0] += 1e-4 * std::sin(3 * x[0] + s);
    u[2] += 1e-4 * std::cos(2 * x[1] - s);
    return u;
  }, 2);
  Kernel k;
  Request r = m.request(2);
  r.axis_flag = 1;
  const auto g = all_rows(k, r, 78 + 6 * (nn + 1));
  r.axis_flag = 0;
  const auto l = all_rows(k, r, 78 + 6 * (nn + 1));
  const M3& Q = pl.Q;
  for (int s = 1; s <= 2; ++s) {
    for (int n = 0; n < nn; ++n) {
      const V3 fg = point3(g, 1 + 3 * n, s);
      EXPECT_V3_NEAR(mul(Q, point3(l, 1 + 3 * n, s)), fg, 1e-9 * (1 + std::fabs(fg[0]) + std::fabs(fg[1]) + std::fabs(fg[2])));
    }
    for (int p = 0; p <= nn; ++p) {
      const V6 sg = point6(g, 25 + 6 * p, s);
      EXPECT_V6_NEAR(rotate(Q, point6(l, 25 + 6 * p, s)), sg, 1e-9 * (1 + norm6(sg)));
      const V6 eg = point6(g, 79 + 6 * p, s);
      EXPECT_V6_NEAR(rotate(Q, point6(l, 79 + 6 * p, s)), eg, 1e-9 * (1e-6 + norm6(eg)));
    }
  }
}

TEST_P(SolidShapes, StrainsAreTheComplianceTimesTheStresses) {
  const int nn = GetParam();
  for (const Material& mat : {Material{}, orthotropic()}) {
    LowModel m;
    m.model.materials = {mat};
    m.add_element(nn, sample_placement(2), 1);
    const Field lin = linear_field({0.0, 0.1, 0.0}, sample_gradient());
    m.write([&](const V3& x, int s) {
      V3 u = lin(x, s);
      u[1] += 2e-4 * std::sin(x[0] * x[2] + s);
      return u;
    }, 1);
    Kernel k;
    const auto rows = all_rows(k, m.request(1), 78 + 6 * (nn + 1));
    const M6 C = compliance(mat);
    for (int p = 0; p <= nn; ++p) {
      const V6 eps = mul6(C, point6(rows, 25 + 6 * p, 1));
      EXPECT_V6_NEAR(point6(rows, 79 + 6 * p, 1), eps, 1e-9 * norm6(eps));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(LowOrder, SolidShapes, ::testing::Values(4, 5, 6, 8),
                         NodeCountName);

TEST(SolidTime, OrthotropicConstantStrainTurnsWithTheElement) {
  const M3 G = sample_gradient();
  for (int nn : {6, 8}) {
    LowModel m;
    m.model.materials = {orthotropic()};
    const Placement pl = sample_placement(0);
    m.add_element(nn, pl, 1);
    m.write(linear_field({0, 0, 0}, G), 1);
    Kernel k;
    const auto rows = all_rows(k, m.request(1), 24 + 6 * (nn + 1));
    const V6 expect = stress_of_element(orthotropic(), pl.Q, G);
    for (int p = 0; p <= nn; ++p)
      EXPECT_V6_NEAR(point6(rows, 25 + 6 * p, 1), expect, 1e-9 * norm6(expect));
  }
}

// The stored rows pass through: the centre as stored (turned to global
// axes), the nodes extrapolated from the integration points.
TEST(SolidTime, CentrePassesThroughAndNodesExtrapolateTheStoredPoints) {
  for (int nn : {4, 6, 8}) {
    const Placement pl = sample_placement(1);
    const auto nat = natural_nodes(nn);
    const auto pts = LowElement{nn}.points();
    const int ndof = 3 * nn, nr = 24 + 6 * static_cast<int>(pts.size());
    // Stresses that depend on dof 1 only: at point p, c(p) * u1, with c a
    // field that the extrapolation reproduces (trilinear for the brick,
    // linear by linear for the wedge); the centre row something else.
    auto cfield = [&](const V3& x) {
      V6 c{};
      for (int i = 0; i < 6; ++i)
        c[i] = 1.0 + 0.5 * i + (i + 1) * 0.3 * x[0] - 0.2 * x[1] + (nn == 8 ? 0.1 * x[0] * x[1] * x[2] : 0.0) +
               0.4 * x[2] + (nn == 6 ? 0.25 * x[0] * x[2] : 0.0);
      return c;
    };
    std::vector<double> rec(3805, 0.0);
    for (int i = 0; i < ndof; ++i) rec[static_cast<size_t>(i)] = i + 1;
    const V6 centre = {7, -3, 2, 0.5, -1, 4};
    for (int i = 0; i < 6; ++i) rec[static_cast<size_t>(ndof + 24 + i)] = centre[i];
    for (size_t p = 1; p < pts.size(); ++p) {
      const V6 c = cfield(pts[p]);
      for (int i = 0; i < 6; ++i) rec[static_cast<size_t>(ndof + 24 + 6 * p + i)] = c[i];
    }
    rec[3792] = ndof;
    rec[3793] = nr;
    rec[3795] = nn;
    for (int I = 0; I < 3; ++I)
      for (int J = 0; J < 3; ++J) rec[static_cast<size_t>(3796 + 3 * I + J)] = pl.Q[I][J];

    ArchiveFixture a;
    SolidModel model;
    model.materials = {Material{}};
    model.element_material = {1};
    model.nodes = place(nat, nn, pl);
    model.write_common(a, [](const V3&, int s) { return V3{0.5 * s, 0, 0}; }, 2);
    a.writer().second().add_f64_rows(sections::SOLD, 3, {rec});
    a.write();
    Kernel k;
    const auto rows = all_rows(k, a.request(4, 1, 2), 24 + 6 * (nn + 1));
    for (int s = 1; s <= 2; ++s) {
      const double u1 = 0.5 * s;
      V6 c0 = centre;
      for (double& x : c0) x *= u1;
      EXPECT_V6_NEAR(point6(rows, 25, s), rotate(pl.Q, c0), 1e-12);
      for (int n = 1; n <= nn; ++n) {
        V6 e = nn == 4 ? centre : cfield(nat[static_cast<size_t>(n - 1)]);
        for (double& x : e) x *= u1;
        EXPECT_V6_NEAR(point6(rows, 25 + 6 * n, s), rotate(pl.Q, e), 1e-9) << "node " << n;
      }
    }
  }
}

TEST(SolidTime, TetrahedronNodesShowTheCentreStress) {
  LowModel m;
  m.model.materials = {Material{}};
  m.add_element(4, sample_placement(0), 1);
  m.write(linear_field({0.1, 0, 0}, sample_gradient()), 1);
  Kernel k;
  const auto rows = all_rows(k, m.request(1), 54);
  for (int n = 1; n <= 4; ++n)
    for (int i = 0; i < 6; ++i) EXPECT_EQ(rows[static_cast<size_t>(24 + 6 * n + i)][0], rows[static_cast<size_t>(24 + i)][0]);
}

TEST(SolidTime, ManyElementsAtOneStepGiveTheRowsOfTheHistory) {
  LowModel m;
  m.model.materials = {Material{}, orthotropic()};
  m.add_element(8, sample_placement(0), 1);
  m.add_element(6, sample_placement(2), 2);
  const Field lin = linear_field({0.1, 0.2, -0.3}, sample_gradient());
  m.write([&](const V3& x, int s) {
    V3 u = lin(x, s);
    u[0] += 1e-4 * std::sin(3 * x[0] * s);
    return u;
  }, 3);
  Kernel k;
  std::vector<std::vector<std::vector<double>>> hist;
  for (int item = 1; item <= 2; ++item) hist.push_back(all_rows(k, m.request(3, item), 132));

  for (int comp : {1, 2, 3, 4, 5, 9}) {
    Request r = m.request(1);
    r.request_mode = 2;
    r.step_no = 3;
    r.num_items = 2;
    r.serials = {1, 2};
    r.elements = {1, 2};
    r.result_comp = comp;
    Result res = k.run(r);
    ASSERT_EQ(res.status, STATUS_DONE);
    const int mpts = comp < 4 ? 8 : 9;
    ASSERT_EQ(res.values.size(), static_cast<size_t>(2 * mpts));
    for (int item = 0; item < 2; ++item) {
      for (int n = 1; n <= mpts; ++n) {
        const int row = comp < 4 ? comp + 3 * (n - 1) : comp + 21 + 6 * (n - 1);
        {
        const double want = hist[static_cast<size_t>(item)][static_cast<size_t>(row - 1)][2];
        EXPECT_NEAR(res.values[static_cast<size_t>(mpts * item + n - 1)], want, 1e-8 * (1 + std::fabs(want)))
            << "comp " << comp << " item " << item + 1 << " point " << n;
        }
      }
    }
  }
  // The wedge's strain rows end after its seven points.
  for (double v : hist[1][78 + 42]) EXPECT_EQ(v, 0.0);
  EXPECT_NE(hist[1][78 + 41][0], 0.0);
}

TEST(SolidTime, OversizedRecordsAreBoundFailuresAndDoNotStopTheRun) {
  for (auto [ndof, nr, name] : {std::tuple{49, 30, "LM subscript 49 bound 1:48"},
                                std::tuple{12, 79, "STRS subscript 79 bound 1:78"}}) {
    ArchiveFixture a;
    SolidModel model;
    model.materials = {Material{}};
    model.element_material = {1};
    model.nodes = natural_nodes(4);
    model.write_common(a, linear_field({1, 0, 0}, sample_gradient()), 2);
    std::vector<double> rec(3805, 1.0);
    for (int i = 0; i < 12; ++i) rec[static_cast<size_t>(i)] = i + 1;
    rec[3792] = ndof;
    rec[3793] = nr;
    rec[3795] = 4;
    a.writer().second().add_f64_rows(sections::SOLD, 3, {rec});
    a.write();
    Kernel k;
    Request r = a.request(4, 25, 2);
    ::testing::internal::CaptureStderr();
    Result res = k.run(r);
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(res.status, STATUS_DONE);
    EXPECT_EQ(res.values.size(), 2u);
    EXPECT_NE(err.find(std::string("array bound exceeded: ") + name), std::string::npos) << err;
  }
}

TEST(SolidTime, MissingRecordGivesZeros) {
  ArchiveFixture a;
  SolidModel model;
  model.materials = {Material{}};
  model.element_material = {1};
  model.nodes = natural_nodes(8);
  model.write_common(a, linear_field({1, 0, 0}, sample_gradient()), 2);
  a.write();
  Kernel k;
  Result res = k.run(a.request(4, 25, 2));
  EXPECT_EQ(res.status, STATUS_DONE);
  EXPECT_EQ(res.values, (std::vector<double>{0.0, 0.0}));
}

}  // namespace
}  // namespace respcore::testing::solid

namespace respcore::testing::solid {
namespace {

// With ELEM_FORM 2 (section THLG of the case) the element records come from
// serial 4; those of serial 3 are not looked at.
TEST(SolidTime, SecondElementFormReadsTheRecordsOfSerialFour) {
  ArchiveFixture a;
  SolidModel model;
  model.materials = {Material{}};
  model.element_material = {1};
  const Placement pl = sample_placement(0);
  model.nodes = place(natural_nodes(4), 4, pl);
  const M3 G = sample_gradient();
  model.write_common(a, linear_field({0, 0, 0}, G), 1);
  std::vector<double> rec(3805, 0.0);
  for (int i = 0; i < 12; ++i) rec[static_cast<size_t>(i)] = i + 1;
  rec[3792] = 12;
  rec[3793] = 30;
  rec[3795] = 4;
  for (int I = 0; I < 3; ++I)
    for (int J = 0; J < 3; ++J) rec[static_cast<size_t>(3796 + 3 * I + J)] = pl.Q[I][J];
  rec[12 + 24] = 1000.0;  // centre xx from dof 1 (x of node 1)
  std::vector<double> decoy = rec;
  decoy[12 + 24] = -7.0;
  a.writer().second().add_f64_rows(sections::SOLD, 3, {decoy});
  a.writer().second().add_f64_rows(sections::SOLD, 4, {rec});
  a.writer().first().add(sections::THLG, 1, 1, 1).put_i32(1, 0, 2);
  a.write();
  Kernel k;
  Request r = a.request(4, 25, 1);
  r.axis_flag = 0;
  Result res = k.run(r);
  const double u1 = mul(G, model.nodes[0])[0];
  ASSERT_EQ(res.values.size(), 1u);
  EXPECT_NEAR(res.values[0], 1000.0 * u1, 1e-9 * std::fabs(1000.0 * u1));
}

}  // namespace
}  // namespace respcore::testing::solid
