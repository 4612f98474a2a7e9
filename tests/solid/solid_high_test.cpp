// High-order solids (ELEM_TYPE 8) through whole requests, and the family's
// element routines. Oracles: rigid motion, constant strain reproduced at
// every result point, equilibrium, the consistent nodal loads of a uniform
// stress (which fix the volume factor of the tetrahedron rule), the
// compliance, and turning element-axis results back to global axes.
#include <gtest/gtest.h>

#include <cmath>

#include "continuum/interpolation.hpp"
#include "run/kernel_state.hpp"
#include "respcore/respcore.h"
#include "solid/solid_high_matrices.hpp"
#include "solid_support.hpp"

namespace respcore::testing::solid {
namespace {

int corners(int nn) { return nn == 10 ? 4 : nn == 13 ? 5 : nn == 15 ? 6 : 8; }

struct HighModel {
  ArchiveFixture a;
  SolidModel model;
  std::vector<std::vector<double>> records;
  std::vector<std::vector<V3>> coords;

  // MAT_VALS of the record; the material table may hold other values.
  void add_element(int nn, const Placement& pl, int material, const std::array<double, 9>& vals) {
    const auto x = place(natural_nodes(nn), corners(nn), pl);
    std::vector<double> rec(90, 0.0);
    rec[0] = nn;
    for (int k = 0; k < nn; ++k) {
      model.nodes.push_back(x[static_cast<size_t>(k)]);
      const int node = static_cast<int>(model.nodes.size());
      rec[static_cast<size_t>(1 + k)] = node;
      for (int c = 1; c <= 3; ++c)
        rec[static_cast<size_t>(21 + 3 * k + c - 1)] = 3 * (node - 1) + c;
    }
    for (int v = 0; v < 9; ++v) rec[static_cast<size_t>(81 + v)] = vals[static_cast<size_t>(v)];
    records.push_back(rec);
    model.element_material.push_back(material);
    coords.push_back(x);
  }

  void write(const Field& u, int nsteps) {
    model.write_common(a, u, nsteps);
    a.writer().second().add_f64_rows(sections::PSOH, 3, records);
    std::vector<std::vector<double>> cord;
    for (const V3& x : model.nodes) cord.push_back({x[0], x[1], x[2]});
    a.writer().second().add_f64_rows(sections::CORD, 3, cord);
    a.write();
  }

  Request request(int nsteps, int item = 1) const {
    Request r = a.request(8, 1, nsteps);
    r.serials = {item};
    r.elements = {item};
    return r;
  }
};

int rows_of(int nn) { return 186 + 6 * (nn + 1); }

class HighShapes : public ::testing::TestWithParam<int> {};

std::string NodeCountName(const ::testing::TestParamInfo<int>& p) {
  return "nodes" + std::to_string(p.param);
}

TEST_P(HighShapes, RigidMotionGivesNoForceAndNoStress) {
  const int nn = GetParam();
  HighModel m;
  m.model.materials = {Material{}};
  Placement pl = sample_placement(0);
  pl.bump = 0.05;
  m.add_element(nn, pl, 1, Material{}.vals);
  m.write(rigid_field({0.3, -0.2, 0.5}, {2e-3, -1e-3, 3e-3}), 2);
  Kernel k;
  const auto rows = all_rows(k, m.request(2), 60 + 6 * (nn + 1));
  for (size_t r = 0; r < rows.size(); ++r)
    for (double v : rows[r]) EXPECT_NEAR(v, 0.0, 1e-7) << "row " << r + 1;
}

TEST_P(HighShapes, LinearFieldGivesItsStressEverywhereAndForcesBalance) {
  const int nn = GetParam();
  const M3 G = sample_gradient();
  for (int variant = 0; variant < 3; ++variant) {
    HighModel m;
    m.model.materials = {Material{}};
    Placement pl = sample_placement(variant);
    pl.bump = 0.04;  // curved edges: the field is still reproduced
    m.add_element(nn, pl, 1, Material{}.vals);
    m.write(linear_field({0.1, 0.2, -0.3}, G), 2);
    Kernel k;
    const auto rows = all_rows(k, m.request(2), rows_of(nn));
    const V6 sigma = mul6(elastic(Material{}), strain_of(G));
    const M6 C = compliance(Material{});
    for (int s = 1; s <= 2; ++s) {
      V6 expect = sigma;
      for (double& x : expect) x *= s;
      for (int p = 0; p <= nn; ++p) {
        EXPECT_V6_NEAR(point6(rows, 61 + 6 * p, s), expect, 1e-9 * norm6(expect)) << "point " << p;
        const V6 eps = mul6(C, expect);
        EXPECT_V6_NEAR(point6(rows, 187 + 6 * p, s), eps, 1e-9 * norm6(eps)) << "point " << p;
      }
      V3 fsum{}, msum{};
      for (int n = 0; n < nn; ++n) {
        const V3 f = point3(rows, 1 + 3 * n, s);
        fsum = add(fsum, f);
        msum = add(msum, cross(m.coords[0][static_cast<size_t>(n)], f));
      }
      EXPECT_V3_NEAR(fsum, (V3{0, 0, 0}), 1e-8);
      EXPECT_V3_NEAR(msum, (V3{0, 0, 0}), 1e-6);
    }
  }
}

// Faces of the reference element: which nodes lie on a face, and the face's
// outward area vector in natural coordinates.
struct Face {
  std::function<bool(const V3&)> on;
  V3 area;
  bool quad;
};

std::vector<Face> faces(int nn) {
  auto eq = [](double a, double b) { return std::fabs(a - b) < 1e-12; };
  if (nn == 10) {
    return {{[=](const V3& x) { return eq(x[0], 0); }, {-0.5, 0, 0}, false},
            {[=](const V3& x) { return eq(x[1], 0); }, {0, -0.5, 0}, false},
            {[=](const V3& x) { return eq(x[2], 0); }, {0, 0, -0.5}, false},
            {[=](const V3& x) { return eq(x[0] + x[1] + x[2], 1); }, {0.5, 0.5, 0.5}, false}};
  }
  if (nn == 15) {
    return {{[=](const V3& x) { return eq(x[2], -1); }, {0, 0, -0.5}, false},
            {[=](const V3& x) { return eq(x[2], 1); }, {0, 0, 0.5}, false},
            {[=](const V3& x) { return eq(x[1], 0); }, {0, -2, 0}, true},
            {[=](const V3& x) { return eq(x[0], 0); }, {-2, 0, 0}, true},
            {[=](const V3& x) { return eq(x[0] + x[1], 1); }, {2, 2, 0}, true}};
  }
  std::vector<Face> f;
  for (int d = 0; d < 3; ++d) {
    for (double s : {-1.0, 1.0}) {
      V3 a{0, 0, 0};
      a[static_cast<size_t>(d)] = 4 * s;
      f.push_back({[=](const V3& x) { return eq(x[static_cast<size_t>(d)], s); }, a, true});
    }
  }
  return f;
}

// Consistent nodal loads of a uniform stress on the boundary of an element
// with straight edges: sigma times the face's area vector, shared out as the
// face's quadratic shape functions integrate (triangle: corners 0, midsides
// 1/3; quadrilateral: corners -1/12, midsides 1/3).
TEST_P(HighShapes, UniformStressGivesTheConsistentBoundaryLoads) {
  const int nn = GetParam();
  const M3 G = sample_gradient();
  HighModel m;
  m.model.materials = {Material{}};
  const Placement pl = sample_placement(1);
  m.add_element(nn, pl, 1, Material{}.vals);
  m.write(linear_field({0.1, 0.2, -0.3}, G), 1);
  Kernel k;
  const auto rows = all_rows(k, m.request(1), 3 * nn);
  const M3 sig = tensor(mul6(elastic(Material{}), strain_of(G)));
  const M3 cof = cofactor(matmul(pl.Q, pl.A));
  const auto nat = natural_nodes(nn);
  for (int n = 0; n < nn; ++n) {
    V3 f{0, 0, 0};
    for (const Face& face : faces(nn)) {
      if (!face.on(nat[static_cast<size_t>(n)])) continue;
      const double share = n < corners(nn) ? (face.quad ? -1.0 / 12 : 0.0) : 1.0 / 3;
      const V3 t = mul(sig, mul(cof, face.area));
      f = add(f, V3{share * t[0], share * t[1], share * t[2]});
    }
    EXPECT_V3_NEAR(point3(rows, 1 + 3 * n, 1), f, 1e-8 * 200) << "node " << n + 1;
  }
}

TEST_P(HighShapes, ElementAxesResultsTurnBackToTheGlobalOnes) {
  const int nn = GetParam();
  HighModel m;
  m.model.materials = {orthotropic()};
  Placement pl = sample_placement(2);
  pl.bump = 0.03;
  m.add_element(nn, pl, 1, orthotropic().vals);
  const Field lin = linear_field({0.1, 0.2, -0.3}, sample_gradient());
  m.write(
      [&](const V3& x, int s) {
        V3 u = lin(x, s);
        u[0] += 1e-4 * std::sin(3 * x[0] + s);
        u[2] += 1e-4 * std::cos(2 * x[1] - s);
        return u;
      },
      2);
  Kernel k;
  Request r = m.request(2);
  r.axis_flag = 1;
  const auto g = all_rows(k, r, rows_of(nn));
  r.axis_flag = 0;
  const auto l = all_rows(k, r, rows_of(nn));
  const M3& Q = pl.Q;  // the element axes: nodes 1..3 (1..4) lie in its xy plane
  for (int s = 1; s <= 2; ++s) {
    for (int n = 0; n < nn; ++n) {
      const V3 fg = point3(g, 1 + 3 * n, s);
      EXPECT_V3_NEAR(mul(Q, point3(l, 1 + 3 * n, s)), fg,
                     1e-9 * (1 + std::fabs(fg[0]) + std::fabs(fg[1]) + std::fabs(fg[2])));
    }
    for (int p = 0; p <= nn; ++p) {
      const V6 sg = point6(g, 61 + 6 * p, s);
      EXPECT_V6_NEAR(rotate(Q, point6(l, 61 + 6 * p, s)), sg, 1e-9 * (1 + norm6(sg)));
      const V6 eg = point6(g, 187 + 6 * p, s);
      EXPECT_V6_NEAR(rotate(Q, point6(l, 187 + 6 * p, s)), eg, 1e-9 * (1e-6 + norm6(eg)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(HighOrder, HighShapes, ::testing::Values(10, 15, 20), NodeCountName);

// The material lies in the element axes, with the record's MAT_VALS (the
// material table here holds others); the strains are the compliance times
// the global stresses.
TEST(SolidHigh, OrthotropicMaterialFromTheRecordTurnsWithTheElement) {
  const M3 G = sample_gradient();
  for (int nn : {10, 15, 20}) {
    HighModel m;
    Material table = orthotropic();
    table.vals = {1e3, 0.1, 0, 1e3, 0.1, 0, 1e2, 1e2, 1e2};
    m.model.materials = {table};
    const Placement pl = sample_placement(0);
    m.add_element(nn, pl, 1, orthotropic().vals);
    m.write(linear_field({0, 0, 0}, G), 1);
    Kernel k;
    const auto rows = all_rows(k, m.request(1), rows_of(nn));
    const V6 expect = stress_of_element(orthotropic(), pl.Q, G);
    const M6 C = compliance(orthotropic());
    for (int p = 0; p <= nn; ++p) {
      EXPECT_V6_NEAR(point6(rows, 61 + 6 * p, 1), expect, 1e-9 * norm6(expect)) << nn << " " << p;
      const V6 eps = mul6(C, point6(rows, 61 + 6 * p, 1));
      EXPECT_V6_NEAR(point6(rows, 187 + 6 * p, 1), eps, 1e-9 * norm6(eps));
    }
  }
}

// The test's own 10-node tetrahedron: natural derivatives.
void tet10_deriv(const V3& p, double d[3][10]) {
  const double L[4] = {1 - p[0] - p[1] - p[2], p[0], p[1], p[2]};
  const double dL[4][3] = {{-1, -1, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const int ea[6] = {0, 1, 2, 0, 1, 2}, eb[6] = {1, 2, 0, 3, 3, 3};
  for (int c = 0; c < 3; ++c) {
    for (int i = 0; i < 4; ++i) d[c][i] = (4 * L[i] - 1) * dL[i][c];
    for (int e = 0; e < 6; ++e)
      d[c][4 + e] = 4 * (dL[ea[e]][c] * L[eb[e]] + L[ea[e]] * dL[eb[e]][c]);
  }
}

// The centre of a 10-node tetrahedron is the mean of its four integration
// points (the recovery's weights there), not the stress at the centroid.
TEST(SolidHigh, TetrahedronCentreIsTheMeanOfItsIntegrationPoints) {
  HighModel m;
  m.model.materials = {Material{}};
  Placement pl = sample_placement(1);
  pl.bump = 0.08;
  m.add_element(10, pl, 1, Material{}.vals);
  const Field u = [](const V3& x, int) {
    return V3{1e-4 * x[0] * x[1], -2e-4 * x[2] * x[2] + 1e-4 * x[0], 3e-4 * x[1] * x[0]};
  };
  m.write(u, 1);
  Kernel k;
  const auto rows = all_rows(k, m.request(1), 66);

  // Element-axis coordinates and displacements, then D B u at each point.
  std::vector<V3> xl, ul;
  for (const V3& x : m.coords[0]) {
    xl.push_back(mul(transpose(pl.Q), add(x, V3{-pl.C[0], -pl.C[1], -pl.C[2]})));
    ul.push_back(mul(transpose(pl.Q), u(x, 1)));
  }
  const double a = 0.1381966, b = 0.5854102;
  const V3 gp[4] = {{a, a, a}, {b, a, a}, {a, b, a}, {a, a, b}};
  const M6 D = elastic(Material{});
  V6 mean{};
  for (const V3& p : gp) {
    double d[3][10];
    tet10_deriv(p, d);
    M3 J{};
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j)
        for (int kk = 0; kk < 10; ++kk) J[i][j] += d[i][kk] * xl[static_cast<size_t>(kk)][j];
    const M3 c = cofactor(J);
    const double det = det3(J);
    M3 grad{};  // du_i/dx_j
    for (int kk = 0; kk < 10; ++kk) {
      for (int j = 0; j < 3; ++j) {
        const double dx = (c[0][j] * d[0][kk] + c[1][j] * d[1][kk] + c[2][j] * d[2][kk]) / det;
        for (int i = 0; i < 3; ++i) grad[i][j] += ul[static_cast<size_t>(kk)][i] * dx;
      }
    }
    const V6 s = mul6(D, strain_of(grad));
    for (int i = 0; i < 6; ++i) mean[i] += s[i] / 4;
  }
  const V6 expect = rotate(pl.Q, mean);
  EXPECT_V6_NEAR(point6(rows, 61, 1), expect, 1e-9 * norm6(expect));
}

TEST(SolidHigh, ManyElementsAtOneStepGiveTheRowsOfTheHistory) {
  HighModel m;
  m.model.materials = {Material{}, orthotropic()};
  m.add_element(20, sample_placement(0), 1, Material{}.vals);
  m.add_element(10, sample_placement(2), 2, orthotropic().vals);
  const Field lin = linear_field({0.1, 0.2, -0.3}, sample_gradient());
  m.write(
      [&](const V3& x, int s) {
        V3 u = lin(x, s);
        u[0] += 1e-4 * std::sin(3 * x[0] * s);
        return u;
      },
      2);
  Kernel k;
  std::vector<std::vector<std::vector<double>>> hist;
  hist.push_back(all_rows(k, m.request(2, 1), rows_of(20)));
  hist.push_back(all_rows(k, m.request(2, 2), rows_of(20)));
  for (int comp : {1, 3, 4, 6, 9}) {
    Request r = m.request(1);
    r.request_mode = 2;
    r.step_no = 2;
    r.num_items = 2;
    r.serials = {1, 2};
    r.elements = {1, 2};
    r.result_comp = comp;
    Result res = k.run(r);
    ASSERT_EQ(res.status, STATUS_DONE);
    const int mpts = comp < 4 ? 20 : 21;
    ASSERT_EQ(res.values.size(), static_cast<size_t>(2 * mpts));
    for (int item = 0; item < 2; ++item) {
      for (int n = 1; n <= mpts; ++n) {
        const int row = comp < 4 ? comp + 3 * (n - 1) : comp + 57 + 6 * (n - 1);
        {
          const double want = hist[static_cast<size_t>(item)][static_cast<size_t>(row - 1)][1];
          EXPECT_NEAR(res.values[static_cast<size_t>(mpts * item + n - 1)], want,
                      1e-8 * (1 + std::fabs(want)))
              << "comp " << comp << " item " << item + 1 << " point " << n;
        }
      }
    }
  }
  // The tetrahedron fills 30 force rows, 11 points of stress and strain.
  EXPECT_EQ(hist[1][30][1], 0.0);
  EXPECT_NE(hist[1][29][1], 0.0);
  EXPECT_EQ(hist[1][186 + 66][1], 0.0);
  EXPECT_NE(hist[1][186 + 65][1], 0.0);
}

TEST(SolidHigh, ThePyramidOfThirteenNodesRunsWithoutShapeFunctions) {
  HighModel m;
  m.model.materials = {Material{}};
  m.add_element(13, sample_placement(0), 1, Material{}.vals);
  m.write(linear_field({0.1, 0.2, -0.3}, sample_gradient()), 2);
  Kernel k;
  Request r = m.request(2);
  r.result_comp = 70;
  Result res = k.run(r);
  EXPECT_EQ(res.status, STATUS_DONE);
  EXPECT_EQ(res.values.size(), 2u);
  EXPECT_NE(k.messages().find("JACOBIAN"), std::string::npos);
}

TEST(SolidHigh, OversizedNodeCountIsABoundFailure) {
  HighModel m;
  m.model.materials = {Material{}};
  m.add_element(20, sample_placement(0), 1, Material{}.vals);
  m.records[0][0] = 21;
  m.write(linear_field({0.1, 0.2, -0.3}, sample_gradient()), 1);
  Kernel k;
  ::testing::internal::CaptureStderr();
  Result res = k.run(m.request(1));
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(res.status, STATUS_DONE);
  EXPECT_NE(err.find("array bound exceeded: IIA subscript 21 bound 1:20"), std::string::npos)
      << err;
}

// ---------------------------------------------------------------------------
// The family's own shape functions agree with the interpolation kit's, and
// both interpolate: N_i(node j) = delta_ij.

TEST(SolShapeFunct, AgreesWithTheInterpolationKitAndInterpolates) {
  for (int nn : {4, 6, 8, 10, 15, 20}) {
    const int nshape = nn;
    const std::vector<V3> nat = natural_nodes(nn);
    double sh[20], ds[20], dt[20], du[20];
    VecRef<double> SH(sh, 20, "SHAPE"), DS(ds, 20, "DN_S"), DT(dt, 20, "DN_T"), DU(du, 20, "DN_U");
    for (int j = 0; j < nshape; ++j) {
      const V3& p = nat[static_cast<size_t>(j)];
      SOL_SHAPE_FUNCT(SH, DS, DT, DU, p[0], p[1], p[2], nn);
      for (int i = 0; i < nshape; ++i) EXPECT_NEAR(sh[i], i == j ? 1.0 : 0.0, 1e-14) << nn;
    }
    const V3 pts[3] = {{0.2, 0.1, 0.3}, {0.15, 0.35, -0.4}, {-0.3, 0.6, 0.7}};
    for (const V3& p : pts) {
      SOL_SHAPE_FUNCT(SH, DS, DT, DU, p[0], p[1], p[2], nn);
      double kit[23], kd[3 * 23];
      SHAPE_FUN_BUB(VecRef<double>(kit, 23, "SHAPE"), p[0], p[1], p[2], nn, 3);
      SHAPE_DER_BUB(MatRef<double>(kd, 3, 23, "DERIV"), p[0], p[1], p[2], nn, 3);
      double sum = 0, dsum[3] = {0, 0, 0};
      for (int i = 0; i < nshape; ++i) {
        EXPECT_NEAR(sh[i], kit[i], 1e-14) << nn << " node " << i + 1;
        EXPECT_NEAR(ds[i], kd[3 * i], 1e-13) << nn << " node " << i + 1;
        EXPECT_NEAR(dt[i], kd[3 * i + 1], 1e-13) << nn << " node " << i + 1;
        EXPECT_NEAR(du[i], kd[3 * i + 2], 1e-13) << nn << " node " << i + 1;
        sum += sh[i];
        dsum[0] += ds[i];
        dsum[1] += dt[i];
        dsum[2] += du[i];
      }
      EXPECT_NEAR(sum, 1.0, 1e-14);
      for (double d : dsum) EXPECT_NEAR(d, 0.0, 1e-13);
    }
  }
}

TEST(SolBMatHigh, MatchesTheKitAndReportsAnInvertedElement) {
  KernelState K;
  for (int nn : {10, 15, 20}) {
    Placement pl = sample_placement(1);
    pl.bump = 0.05;
    const auto x = place(natural_nodes(nn), corners(nn), pl);
    double xl[60];
    for (int k = 0; k < nn; ++k)
      for (int i = 0; i < 3; ++i) xl[3 * k + i] = x[static_cast<size_t>(k)][static_cast<size_t>(i)];
    MatRef<double> XL(xl, 3, nn, "XL");
    double b1[6 * 69] = {}, b2[6 * 69] = {}, c1[69] = {}, c2[69] = {}, sh[23], gp[3];
    double det1 = 0, det2 = 0;
    SOL_B_MAT_HIGH(K.diag, MatRef<double>(b1, 6, 60, "B"), MatRef<double>(c1, 3, 20, "CARTD"), det1, 0.2,
                   0.25, 0.1, XL, nn);
    B_BUB(K.diag, 0, K.continuum.PLANE_TYPE, MatRef<double>(b2, 6, 69, "B"), det2,
          MatRef<double>(c2, 3, 23, "CARTD"), VecRef<double>(sh, 23, "SHAPE"),
          VecRef<double>(gp, 3, "GPCOD"), 0.2, 0.25, 0.1, XL, nn, 3, 6, 0, 0);
    EXPECT_NEAR(det1, det2, 1e-12 * std::fabs(det2));
    EXPECT_GT(det1, 0.0);
    for (int i = 0; i < 6 * 3 * nn; ++i) EXPECT_NEAR(b1[i], b2[i], 1e-12) << nn << " " << i;
  }
  EXPECT_EQ(K.diag.messages, "");
  // A mirrored element: the Jacobian is negative and reported.
  const auto nat = natural_nodes(8);
  double xl[24];
  for (int k = 0; k < 8; ++k) {
    xl[3 * k] = -nat[static_cast<size_t>(k)][0];
    xl[3 * k + 1] = nat[static_cast<size_t>(k)][1];
    xl[3 * k + 2] = nat[static_cast<size_t>(k)][2];
  }
  double b[6 * 24], c[24], det = 0;
  SOL_B_MAT_HIGH(K.diag, MatRef<double>(b, 6, 24, "B"), MatRef<double>(c, 3, 8, "CARTD"), det, 0.1, 0.2,
                 0.3, MatRef<double>(xl, 3, 8, "XL"), 8);
  EXPECT_LT(det, 0.0);
  EXPECT_EQ(K.diag.messages,
            "     JACOBIAN DETERMINENT IS NEGATIVE\n     PLEASE CHECK YOUR DATA FILE \n");

  // Only a determinant at or below zero is reported: a NaN one (a node
  // without coordinates) is neither, and passes without a word.
  K.diag.messages.clear();
  xl[0] = std::nan("");
  SOL_B_MAT_HIGH(K.diag, MatRef<double>(b, 6, 24, "B"), MatRef<double>(c, 3, 8, "CARTD"), det, 0.1, 0.2,
                 0.3, MatRef<double>(xl, 3, 8, "XL"), 8);
  EXPECT_TRUE(std::isnan(det));
  EXPECT_EQ(K.diag.messages, "");
}

// The stiffness of a unit-cube brick and of a unit tetrahedron has the
// element's volume in it: the diagonal sum of B'DB integrated, checked here
// through the trace against a hand value for a uniform dilatation.
TEST(SolStf, StiffnessIsSymmetricAndItsEnergyIsTheVolumeTimesTheEnergyDensity) {
  KernelState K;
  K.ELEM_MATERIAL.MAT_YOUNG = 1000.0;
  K.ELEM_MATERIAL.MAT_POISSON = 0.25;
  K.ELEM_MATERIAL.MAT_TYPE = 0;
  for (int nn : {10, 15, 20}) {
    const Placement pl = sample_placement(2);
    const auto x = place(natural_nodes(nn), corners(nn), pl);
    Mat<double> XYZ("XYZ", 3, 20);
    for (int k = 0; k < nn; ++k)
      for (int i = 0; i < 3; ++i)
        XYZ(i + 1, k + 1) = x[static_cast<size_t>(k)][static_cast<size_t>(i)];
    Mat<double> T("T", 3, 3);  // rows the element axes
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) T(i + 1, j + 1) = pl.Q[j][i];
    Mat<double> S("S", 60, 60), W("WORK", 60, 60);
    SolidContext C = K.solids();
    SOL_STF(C, 1, S.ref(), W.ref(), 60, nn, XYZ.ref(), T.ref());
    for (int i = 1; i <= 3 * nn; ++i)
      for (int j = 1; j <= 3 * nn; ++j)
        EXPECT_NEAR(S(i, j), S(j, i), 1e-9 * (1 + std::fabs(S(i, j))))
            << nn << " " << i << " " << j;
    // u = G x: energy u'Su = V eps'D eps.
    const M3 G = sample_gradient();
    std::vector<double> u(static_cast<size_t>(3 * nn));
    for (int k = 0; k < nn; ++k) {
      const V3 uk = mul(G, x[static_cast<size_t>(k)]);
      for (int c = 0; c < 3; ++c) u[static_cast<size_t>(3 * k + c)] = uk[c];
    }
    double energy = 0;
    for (int i = 1; i <= 3 * nn; ++i)
      for (int j = 1; j <= 3 * nn; ++j)
        energy += u[static_cast<size_t>(i - 1)] * S(i, j) * u[static_cast<size_t>(j - 1)];
    Material mat;
    mat.E = 1000.0;
    mat.nu = 0.25;
    const V6 eps = strain_of(G);
    const V6 sig = mul6(elastic(mat), eps);
    double density = 0;
    for (int i = 0; i < 6; ++i) density += eps[i] * sig[i];
    const double ref_volume = nn == 10 ? 1.0 / 6 : nn == 15 ? 1.0 : 8.0;
    const double volume = ref_volume * det3(pl.A);
    EXPECT_NEAR(energy, volume * density, 1e-9 * volume * density) << nn;
  }
}

// A material whose compliance has a determinant of zero or less cannot be
// inverted: the run stops. The status entry reports it; the exported entry
// ends the process with status 0.
void singular_material_model(HighModel& m) {
  Material bad;
  bad.type = 1;
  bad.E = 1.0;
  bad.nu = 0.6;
  bad.vals = {1.0, 0.6, 0.0, 1.0, 0.6, 0.0, 1.0, 1.0, 1.0};
  m.model.materials = {bad};
  m.add_element(20, sample_placement(0), 1, bad.vals);
  m.write(linear_field({0, 0, 0}, sample_gradient()), 1);
}

TEST(SolidHigh, SingularMaterialStopsTheRun) {
  HighModel m;
  singular_material_model(m);
  Kernel k;
  ::testing::internal::CaptureStdout();
  Result r = k.run(m.request(1));
  const std::string out = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(r.status, STATUS_STOPPED);
  const std::string lines =
      "\n JACOBIAN DETERMINANT OF ELEMENT NO.       0 IS LITTLE THAN ZERO.\n"
      " PLEASE CHECK THE SHAPE OF ELEMENT NO.      0.\n";
  EXPECT_EQ(out, lines);
  EXPECT_EQ(k.messages(), lines);
  // The kernel is usable afterwards.
  HighModel ok;
  ok.model.materials = {Material{}};
  ok.add_element(20, sample_placement(0), 1, Material{}.vals);
  ok.write(linear_field({0, 0, 0}, sample_gradient()), 1);
  EXPECT_EQ(k.run(ok.request(1)).status, STATUS_DONE);
}

TEST(SolidHighDeathTest, SingularMaterialEndsTheProcessThroughTheExportedEntry) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  HighModel m;
  singular_material_model(m);
  const Request q = m.request(1);
  std::vector<double> out(1, 0.0);
  EXPECT_EXIT(
      respcore_entry_RESPCORE(q.base.c_str(), static_cast<int32_t>(q.base.size()), q.elem_type,
                              q.result_comp, q.hist_case, q.num_steps, 1, 1, 1, q.product_index, 0,
                              out.data(), q.serials.data(), q.elements.data(), q.axis_flag),
      ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(respcore_request(q.base.c_str(), static_cast<int32_t>(q.base.size()), q.elem_type,
                             q.result_comp, q.hist_case, q.num_steps, 1, 1, 1, q.product_index, 0,
                             out.data(), q.serials.data(), q.elements.data(), q.axis_flag),
            1);
}

}  // namespace
}  // namespace respcore::testing::solid
