// Three- and four-node plane elements (ELEM_TYPE 1, 2) through whole
// requests. Oracles: constant strain gives D eps at every point and rigid
// motion none, in a panel placed anywhere; forces turn with the panel axes;
// strains invert the stresses; a strain-state quadrilateral rebuilds from the
// panel displacements the last refreshing element left; turning to the
// panel's global plane agrees with the tensor turn of the test.
#include "plane_support.hpp"

namespace respcore::testing::plane {
namespace {

// The last placed element's record. Force rows: sin(r + 2c) on nodes 1..3
// of a triangle, 1..4 of a quadrilateral; a triangle without drilling
// freedoms carries the constant-strain triangle's stress rows for KIND.
PlaneRecord low_record(PlaneModel& m, const M3& Q, const Material& mat, int option, double angle = 0) {
  const std::vector<int>& ns = m.elements.back();
  const int nn = static_cast<int>(ns.size()), neq = 6 * nn;
  PlaneRecord r;
  r.lm = PlaneModel::equations(ns);
  r.strs.assign(static_cast<size_t>(27 * neq), 0.0);
  for (int c = 1; c <= neq; ++c)
    for (int row = 1; row <= 3 * nn; ++row) r.strs[static_cast<size_t>(27 * (c - 1) + row - 1)] = std::sin(row + 2.0 * c);
  if (nn == 3 && option < 100) {
    const auto p = local_nodes(3);
    const double x[3] = {p[0][0], p[1][0], p[2][0]}, y[3] = {p[0][1], p[1][1], p[2][1]};
    const double a2 = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    for (int n = 0; n < 3; ++n) {
      const int j = (n + 1) % 3, k = (n + 2) % 3;
      const V3 bu = {(y[j] - y[k]) / a2, 0, (x[k] - x[j]) / a2}, bv = {0, (x[k] - x[j]) / a2, (y[j] - y[k]) / a2};
      const V3 su = stress_of(mat, bu, option % 100), sv = stress_of(mat, bv, option % 100);
      for (int c = 0; c < 3; ++c)
        for (int pt = 0; pt < 4; ++pt)
          for (int i = 0; i < 3; ++i)
            r.strs[static_cast<size_t>(27 * (6 * n + c) + 12 + 3 * pt + i)] = su[i] * Q[c][0] + sv[i] * Q[c][1];
    }
  }
  r.nodes_count = nn;
  for (int k = 0; k < 4; ++k) {
    r.nodes[k] = ns[static_cast<size_t>(std::min(k, nn - 1))];  // a triangle repeats its third node
    r.xyz[k] = m.nodes[static_cast<size_t>(ns[static_cast<size_t>(std::min(k, nn - 1))] - 1)];
  }
  r.material = mat.record();
  r.option = option;
  r.angle = angle;
  return r;
}

// The forces of the element's matrix at step S of field U (panel axes).
std::vector<double> matrix_forces(const PlaneModel& m, const PlaneRecord& r, const Field& u, int s) {
  std::vector<double> f(12, 0.0);
  for (size_t c = 0; c < r.lm.size(); ++c) {
    const double d = u(m.nodes[static_cast<size_t>(r.lm[c] - 1) / 6], s)[c % 6];
    for (size_t row = 0; row < 12; ++row) f[row] += r.strs[27 * c + row] * d;
  }
  return f;
}

struct LowCase {
  int nn, option;
  double angle;  // of the user's axes, degrees
};
class LowShapes : public ::testing::TestWithParam<LowCase> {};

TEST_P(LowShapes, ConstantStrainGivesItsStressRigidMotionNoneAndForcesTurnWithThePanel) {
  const LowCase c = GetParam();
  const int kind = c.option % 100, family = kind + 1, npts = (c.nn == 4 ? 4 : 3) + 1;
  const M3 Q = turn(0.4, 0.9);
  const Material mat;
  const V3 w = {2e-3, -1e-3, 3e-3};
  for (const bool constant : {true, false}) {
    PlaneModel m;
    m.place(c.nn, Q);
    const PlaneRecord rec = low_record(m, Q, mat, c.option);
    m.a.writer().plane_records(family == 1 ? sections::PSTR : sections::PSRN, 3, {rec});
    m.a.writer().first().add_f64_rows(sections::ELIM, 1, {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, c.angle, 0}});
    const Field u = constant ? linear(kGrad, w) : rigid(w);
    m.write(u, 2);
    const V3 e = panel_strain(kGrad, Q), sig = stress_of(mat, e, kind);
    const double th = c.angle * M_PI / 180, cs = std::cos(th), sn = std::sin(th);
    const bool user = kind == 0 && std::fabs(c.angle) > 1e-5;
    for (const int af : {0, 1}) {
      Kernel k;
      const auto rows = rows_of(k, m.request(family, 1, 2, af), family == 1 ? 27 : 52);
      for (int s = 1; s <= 2; ++s) {
        const auto at = [&](int row) { return rows[static_cast<size_t>(row - 1)][static_cast<size_t>(s - 1)]; };
        const double f = constant ? s : 0.0;
        V3 want = {f * sig[0], f * sig[1], f * sig[2]};
        if (user)
          want = {cs * cs * want[0] + sn * sn * want[1] + 2 * cs * sn * want[2],
                  sn * sn * want[0] + cs * cs * want[1] - 2 * cs * sn * want[2],
                  cs * sn * (want[1] - want[0]) + (cs * cs - sn * sn) * want[2]};
        const int width = kind == 1 ? 4 : 3;
        // (Strain-state stresses in global axes: AxisFlagAndTagChooseTheStrainBlock.)
        for (int p = 0; p < npts && (kind == 0 || af == 0); ++p) {
          for (int i = 0; i < 3; ++i) EXPECT_NEAR(at(13 + width * p + i), want[i], 1e-10 * mat.E) << p << " " << i;
          if (kind == 1) {
            EXPECT_NEAR(at(16 + 4 * p), mat.nu * (want[0] + want[1]), 1e-10 * mat.E);
            for (int i = 0; i < 4; ++i)
              EXPECT_NEAR(at(33 + 4 * p + i), i == 2 ? 0.0 : f * e[i == 3 ? 2 : i], 1e-15) << p << " " << i;
          }
        }
        // Forces: the matrix gives (f1, f2, moment) per node in panel axes.
        const auto fm = matrix_forces(m, rec, u, s);
        for (int n = 0; n < c.nn; ++n) {
          const V3 fp = {fm[3 * n], fm[3 * n + 1], kind == 0 ? 0.0 : fm[3 * n + 2]};
          V3 expect = fp;  // panel axes
          if (kind == 0 && af == 1) expect = mul(Q, fp);  // global, also beside user-axis stresses
          else if (kind == 0 && user) expect = {cs * fp[0] + sn * fp[1], -sn * fp[0] + cs * fp[1], 0.0};
          else if (kind == 1 && af == 0) expect = mulT(Q, fp);  // turned as if they were global
          for (int i = 0; i < 3; ++i) EXPECT_NEAR(at(1 + 3 * n + i), expect[i], 1e-12) << "node " << n;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Plane, LowShapes,
                         ::testing::Values(LowCase{3, 0, 0}, LowCase{3, 100, 0}, LowCase{4, 0, 0},
                                           LowCase{4, 0, 30}, LowCase{3, 1, 0}, LowCase{3, 101, 0}));

// A strain-state quadrilateral does not refresh the panel displacements: in
// a fresh kernel its rows are zero; after a stress-state quadrilateral, in
// the same call or an earlier one, it applies its own material and geometry
// to that element's last panel displacements.
TEST(PlaneStrainQuad, RebuildsFromTheLastRefreshedDisplacements) {
  PlaneModel m;
  Material a, b;
  b.E = 7.0e4, b.nu = 0.2;
  const M3 Q1 = turn(0.4, 0.9), Q2 = turn(-1.1, 0.3);
  m.place(4, Q2);
  const PlaneRecord r1 = low_record(m, Q2, b, 1);
  m.place(4, Q1, {0, 1, 2});
  const PlaneRecord r2 = low_record(m, Q1, a, 0);
  m.place(4, Q2, {-1, 0, 4});
  const PlaneRecord r3 = low_record(m, Q2, b, 1);
  m.a.writer().plane_records(sections::PSRN, 3, {r1, r2, r3});
  m.write(linear(kGrad, {1e-3, 0, 2e-3}), 3);
  const V3 e = panel_strain(kGrad, Q1);

  Kernel k;
  const auto first = rows_of(k, m.request(2, 1, 3, 0), 52);
  for (size_t r = 12; r < 52; ++r)
    for (const double v : first[r]) EXPECT_EQ(v, 0.0) << "row " << r + 1;
  rows_of(k, m.request(2, 2, 3, 0), 1);
  const auto rows = rows_of(k, m.request(2, 3, 3, 0), 52);
  const V3 sig = stress_of(b, {3 * e[0], 3 * e[1], 3 * e[2]}, 1);
  for (int s = 0; s < 3; ++s) {
    for (int p = 0; p < 5; ++p) {
      for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(rows[static_cast<size_t>(12 + 4 * p + i)][static_cast<size_t>(s)], sig[i], 1e-10 * a.E);
        EXPECT_NEAR(rows[static_cast<size_t>(32 + 4 * p + (i == 2 ? 3 : i))][static_cast<size_t>(s)], 3 * e[i], 1e-15);
      }
      EXPECT_NEAR(rows[static_cast<size_t>(15 + 4 * p)][static_cast<size_t>(s)], b.nu * (sig[0] + sig[1]), 1e-10 * a.E);
    }
  }

  // Both in one snapshot at step 2; the selector steps by three through the
  // four rows a point of the strain-state element.
  Kernel fresh;
  Request r = m.request(2, 2, 1, 0);
  r.request_mode = 2, r.step_no = 2, r.num_items = 2, r.serials = {2, 3}, r.elements = {2, 3}, r.result_comp = 4;
  const Result res = fresh.run(r);
  const V3 s2 = stress_of(b, {2 * e[0], 2 * e[1], 2 * e[2]}, 1), s0 = stress_of(a, {2 * e[0], 2 * e[1], 2 * e[2]}, 0);
  const double want[10] = {s0[0], s0[0], s0[0], s0[0], s0[0], s2[0], b.nu * (s2[0] + s2[1]), s2[2], s2[1], s2[0]};
  ASSERT_EQ(res.values.size(), 10u);
  for (int i = 0; i < 10; ++i) EXPECT_NEAR(res.values[static_cast<size_t>(i)], want[i], 1e-10 * a.E) << i;
}

// Orthotropic material axes at 90 degrees give what the moduli exchanged
// give; plane-strain strains of an unrotated orthotropic element invert its
// stresses exactly.
TEST(PlaneOrthotropic, QuarterTurnExchangesTheModuliAndStrainsInvertTheStresses) {
  Material o;
  o.type = 1, o.E = 1.5e5, o.nu = 0.25, o.vals = {0.9e5, 0.2, 0, 0.6e5, 0.3, 0, 4.0e4, 0, 0};
  Material x = o;
  x.E = 0.9e5, x.vals[0] = 1.5e5, x.nu = 0.25 * 0.9 / 1.5;
  const M3 Q = turn(0.4, 0.9);
  PlaneModel m;
  m.place(4, Q);
  PlaneRecord r1 = low_record(m, Q, o, 0, 90.0);
  m.place(4, Q, {1, 1, 1});
  PlaneRecord r2 = low_record(m, Q, x, 0);
  m.place(3, Q, {2, 0, 0});
  m.a.writer().plane_records(sections::PSTR, 3, {r1, r2});
  m.a.writer().plane_records(sections::PSRN, 3, {low_record(m, Q, o, 101)});
  m.write(linear(kGrad, {0, 0, 1e-3}), 1);
  Kernel k;
  const auto turned = rows_of(k, m.request(1, 1, 1, 0), 27), exchanged = rows_of(k, m.request(1, 2, 1, 0), 27);
  for (size_t r = 12; r < 27; ++r) EXPECT_NEAR(turned[r][0], exchanged[r][0], 1e-10 * o.E) << "row " << r + 1;
  Request r = m.request(2, 1, 1, 0);
  r.elements = {3};
  const auto strains = rows_of(k, r, 48);
  const V3 e = panel_strain(kGrad, Q);
  for (int p = 0; p < 4; ++p)
    for (int i = 0; i < 4; ++i)
      EXPECT_NEAR(strains[static_cast<size_t>(32 + 4 * p + i)][0], i == 2 ? 0.0 : e[i == 3 ? 2 : i], 1e-15);
}

// A strain-state triangle (ELEM_TYPE 2) and an eight-node plane strain
// element (6) in the global xz plane, axis 1 at 0.5 rad to x: global rows are
// the test's tensor turn, by the rotation formula or through the six
// components by tag, with the out-of-plane rows each family places.
class StrainBlock : public ::testing::TestWithParam<std::tuple<int, int, int>> {};

TEST_P(StrainBlock, AxisFlagAndTagChooseTheStrainBlock) {
  const auto [family, product, af] = GetParam();
  const bool hnq = product == 4, high = family == 6;
  PlaneModel m(hnq ? "H.N.Q" : "P.R.W");
  const Material mt;
  const M3 Q = mat(kXZ, turn(0.5, 0));
  m.place(high ? 8 : 3, Q);
  if (high)
    m.a.writer().plane_high_records(sections::PSRH, 3, {high_record(m, mt)});
  else
    m.a.writer().plane_records(sections::PSRN, 3, {low_record(m, Q, mt, 101)});
  m.write(linear(kGrad, {0, 1e-3, 0}), 1);
  Kernel k;
  Request r = m.request(family, 1, 1, af);
  r.product_index = product;
  const int npts = high ? 9 : 4, stress0 = high ? 24 : 12, strain0 = high ? 60 : 32;
  const auto rows = rows_of(k, r, strain0 + 4 * npts);
  const V3 e = panel_strain(kGrad, Q), sg = stress_of(mt, e, 1);
  // The panel triple as a tensor turned to global axes: (xx, zz, zx).
  auto global = [&](const V3& t) {
    const M3 QT = mat(Q, {{{t[0], t[2], 0}, {t[2], t[1], 0}, {0, 0, 0}}});
    auto g = [&](int i, int j) { return QT[i][0] * Q[j][0] + QT[i][1] * Q[j][1] + QT[i][2] * Q[j][2]; };
    return V3{g(0, 0), g(2, 2), g(2, 0)};
  };
  const V3 T = global(e), S = global(sg);
  const double nu = mt.nu, out = nu * (sg[0] + sg[1]);
  using A4 = std::array<double, 4>;
  A4 strain{e[0], e[1], 0, e[2]};
  A4 stress = high ? A4{sg[0], sg[1], out, sg[2]} : A4{sg[0], sg[1], sg[2], out};
  if (af == 1) {
    strain = hnq ? (high ? A4{T[0], 0, T[1], T[2]} : A4{T[0], nu * (T[0] + T[1]), T[1], T[2]}) : A4{T[0], T[1], 0, T[2]};
    stress = hnq ? A4{S[0], nu * (S[0] + S[1]), S[1], S[2]}
                 : (high ? A4{S[0], S[1], out, S[2]} : A4{S[0], S[1], S[2], nu * (S[0] + S[1])});
  }
  if (af == 2) strain = {};
  if (!high && hnq && af != 1) stress = {};
  for (int p = 0; p < npts; ++p)
    for (int i = 0; i < 4; ++i) {
      EXPECT_NEAR(rows[static_cast<size_t>(stress0 + 4 * p + i)][0], stress[static_cast<size_t>(i)], 1e-10 * mt.E) << p << " " << i;
      EXPECT_NEAR(rows[static_cast<size_t>(strain0 + 4 * p + i)][0], strain[static_cast<size_t>(i)], 1e-15) << p << " " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Plane, StrainBlock,
                         ::testing::Combine(::testing::Values(2, 6), ::testing::Values(1, 4), ::testing::Values(0, 1, 2)));

}  // namespace
}  // namespace respcore::testing::plane
