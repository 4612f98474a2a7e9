// The plane families (ELEM_TYPE 1, 2, 5, 6) through whole requests, on
// elements in a panel placed anywhere in space. Oracles: a linear field (a
// quadratic one for six and eight nodes) gives D eps at every point and
// rigid motion nothing; strains invert the stresses; forces and stresses turn
// with the panel and the user's axes; a strain-state quadrilateral rebuilds
// from the panel displacements the last refreshing element left; global
// strain-state rows are the test's tensor turn.
#include "plane_support.hpp"

namespace respcore::testing::plane {
namespace {

// The last placed element's record; STRS(r, c) = sin(r + 2c) on rows 1..27,
// but for a triangle's fourth force triple.
PlaneRecord low_record(PlaneModel& m, const Material& mat, int option, double angle = 0) {
  const std::vector<int>& ns = m.elements.back();
  PlaneRecord r;
  r.lm = m.equations();
  for (size_t v = 0; v < 27 * r.lm.size(); ++v) {
    const bool fourth = ns.size() == 3 && v % 27 >= 9 && v % 27 < 12;
    r.strs.push_back(fourth ? 0.0 : std::sin(v % 27 + 1 + 2.0 * (v / 27 + 1)));
  }
  r.nodes_count = static_cast<int32_t>(ns.size());
  for (size_t k = 0; k < 4; ++k) {
    r.nodes[k] = ns[std::min(k, ns.size() - 1)];  // a triangle repeats its third node
    r.xyz[k] = m.nodes[static_cast<size_t>(r.nodes[k] - 1)];
  }
  r.material = mat.record(), r.option = option, r.angle = angle;
  return r;
}

// The element of serial 1 of FAMILY, placed and written.
void add_element(PlaneModel& m, int family, int nn, const M3& Q, const Material& mt, int option,
                 PlaneRecord* low = nullptr, double mat_angle = 0) {
  m.place(nn, Q);
  const SectionName* sec[7] = {nullptr, &sections::PSTR, &sections::PSRN, nullptr,
                               nullptr, &sections::PSTH, &sections::PSRH};
  if (family > 2)
    return void(m.a.writer().plane_high_records(*sec[family], 3, {m.high_record(mt)}));
  *low = low_record(m, mt, option, mat_angle);
  m.a.writer().plane_records(*sec[family], 3, {*low});
}

// Longer than a history whose rows the kernel combines from its first steps.
constexpr int kSteps = 70;

struct Case {
  int family, nn, option;
  double angle = 0;      // of the user's axes, degrees
  bool ortho = false;    // orthotropic: stresses checked in plane stress only
  double mat_angle = 0;  // of material axis 1 to the panel's x, degrees
};

// Orthotropic plane stress with material axis 1 at TH to x: the strain
// turned into material axes, the material's own D there, the stress back.
V3 ortho_stress(const Material& m, const V3& e, double th) {
  const double c = std::cos(th), s = std::sin(th), E2 = m.vals[0], G = m.vals[6];
  const double k = 1 / (1 - m.nu * m.nu * E2 / m.E), d11 = k * m.E, d22 = k * E2,
               d12 = k * m.nu * E2;
  const V3 em = {c * c * e[0] + s * s * e[1] + c * s * e[2],
                 s * s * e[0] + c * c * e[1] - c * s * e[2],
                 2 * c * s * (e[1] - e[0]) + (c * c - s * s) * e[2]};
  const V3 sm = {d11 * em[0] + d12 * em[1], d12 * em[0] + d22 * em[1], G * em[2]};
  return {c * c * sm[0] + s * s * sm[1] - 2 * c * s * sm[2],
          s * s * sm[0] + c * c * sm[1] + 2 * c * s * sm[2],
          c * s * (sm[0] - sm[1]) + (c * c - s * s) * sm[2]};
}

class Fields : public ::testing::TestWithParam<Case> {};

TEST_P(Fields, PanelFieldGivesDEpsAtEveryPointRigidMotionNoneForcesTurnWithThePanel) {
  const Case c = GetParam();
  const bool low = c.family <= 2, strain = c.family % 2 == 0, user = c.family == 1 && c.angle != 0;
  const bool rebuilt = !low || c.nn == 4 || c.option >= 100;
  const int kind = strain ? 1 : 0, width = strain ? 4 : 3, row0 = low ? 13 : 25;
  const int npts = low ? (c.nn == 4 ? 5 : 4) : c.nn + 1, corners = c.nn % 4 == 0 ? 4 : 3;
  Material mt;
  if (c.ortho)
    mt.type = 1, mt.E = 1.5e5, mt.nu = 0.25, mt.vals = {0.9e5, 0.2, 0, 0.6e5, 0.3, 0, 4e4};
  PanelField pf{turn(0.4, 0.9)};
  if (!low) pf.QU = {{{2e-4, -1e-4, 3e-4}, {-3e-4, 1.5e-4, 1e-4}, {0, 0, 0}}};
  const double th = c.angle * M_PI / 180, cs = std::cos(th), sn = std::sin(th);
  const auto xy = local_nodes(c.nn);
  for (const bool rigid_motion : {false, true}) {
    PlaneModel m;
    PlaneRecord rec;
    add_element(m, c.family, c.nn, pf.Q, mt, c.option, &rec, c.mat_angle);
    m.a.writer().first().add_f64_rows(sections::ELIM, 1,
                                      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, c.angle}}, 14);
    const Field u = rigid_motion ? rigid({2e-3, -1e-3, 3e-3}) : pf.field();
    m.write(u, kSteps);
    for (int af = 0; af <= (c.family == 1 ? 1 : 0); ++af) {
      Kernel k;
      const int nrows[7] = {0, 27, 48, 0, 0, 51, 96};  // (the triangles of ELEM_TYPE 2)
      const auto rows = history_rows(k, m.request(c.family, 1, kSteps, af), nrows[c.family]);
      for (int s = 1; s <= kSteps; ++s) {
        auto at = [&](int row) { return rows[size_t(row - 1)][size_t(s - 1)]; };
        std::vector<double> f(27, 0.0);  // the stored matrix's product
        for (size_t q = 0; q < rec.lm.size(); ++q)
          for (size_t r = 0; r < 27; ++r)
            f[r] += rec.strs[27 * q + r] * u(m.nodes[q / 6], s)[q % 6];
        for (int p = 0; p < npts; ++p) {
          double x = 0, y = 0;  // the centre, the mean of the corners, then the nodes
          for (int n = 0; n < corners && p == 0; ++n)
            x += xy[n][0] / corners, y += xy[n][1] / corners;
          if (p > 0) x = xy[p - 1][0], y = xy[p - 1][1];
          V3 e = pf.eps(x, y);
          for (double& v : e) v *= rigid_motion ? 0 : s;
          V3 w = c.ortho ? ortho_stress(mt, e, c.mat_angle * M_PI / 180) : stress_of(mt, e, kind);
          if (user)
            w = {cs * cs * w[0] + sn * sn * w[1] + 2 * cs * sn * w[2],
                 sn * sn * w[0] + cs * cs * w[1] - 2 * cs * sn * w[2],
                 cs * sn * (w[1] - w[0]) + (cs * cs - sn * sn) * w[2]};
          if (!rebuilt) w = {f[12 + 3 * p], f[13 + 3 * p], f[14 + 3 * p]};
          const double out = mt.nu * (w[0] + w[1]);
          const double want[4] = {w[0], w[1], c.family == 6 ? out : w[2],
                                  c.family == 6 ? w[2] : out};
          for (int i = 0; i < width && (!c.ortho || kind == 0); ++i)
            EXPECT_NEAR(at(row0 + width * p + i), want[i], 1e-10 * mt.E) << p << " " << i;
          const double ep[4] = {e[0], e[1], 0, e[2]};
          for (int i = 0; i < 4 && strain; ++i)
            EXPECT_NEAR(at((low ? 33 : 61) + 4 * p + i), ep[i], 1e-15 * s) << p << " " << i;
        }
        // Forces: the matrix gives (f1, f2, moment) per node in panel axes.
        for (int n = 0; n < c.nn && low; ++n) {
          const double* fn = f.data() + 3 * n;
          V3 want = {fn[0], fn[1], kind == 0 ? 0.0 : fn[2]};
          if (kind == 0 && af == 1)
            want = mul(pf.Q, want);  // also beside user-axis stresses
          else if (user)
            want = {cs * fn[0] + sn * fn[1], -sn * fn[0] + cs * fn[1], 0.0};
          else if (kind == 1)
            want = mul(pf.Q, want, true);  // turned as if they were global
          for (int i = 0; i < 3; ++i) EXPECT_NEAR(at(1 + 3 * n + i), want[i], 1e-12) << n;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Plane, Fields,
                         ::testing::Values(Case{1, 3, 0}, Case{1, 3, 100}, Case{1, 4, 0},
                                           Case{1, 4, 0, 30}, Case{1, 4, 0, 0, true, 30},
                                           Case{1, 3, 100, 0, true, -50}, Case{2, 3, 101},
                                           Case{2, 3, 101, 0, true}, Case{5, 6, 0}, Case{5, 8, 0},
                                           Case{6, 6, 0}, Case{6, 8, 0}, Case{6, 8, 0, 0, true}));

// A strain-state quadrilateral does not refresh the panel displacements: in
// a fresh kernel its rows are zero; after a stress-state quadrilateral, in
// the same call or an earlier one, it applies its own material and geometry
// to that element's last panel displacements. An element of another kind
// has zero rows and refreshes nothing either.
TEST(PlaneStrainQuad, RebuildsFromTheLastRefreshedDisplacements) {
  PlaneModel m;
  Material a, b;
  b.E = 7.0e4, b.nu = 0.2;
  const PanelField pf{turn(0.4, 0.9), {0, 1, 2}};
  std::vector<PlaneRecord> recs;
  for (int e = 0; e < 4; ++e) {  // kinds 1, 0, 1 and one of its own, 2
    m.place(4, e == 1 ? pf.Q : turn(-1.1, 0.3), e == 1 ? pf.C : V3{-1.0 * e, 0, 4});
    recs.push_back(low_record(m, e == 1 ? a : b, e == 1 ? 0 : e == 3 ? 2 : 1));
  }
  m.a.writer().plane_records(sections::PSRN, 3, recs);
  m.write(pf.field(), kSteps);
  Kernel k;
  auto zeros = [&](int item, size_t from) {
    const auto z = history_rows(k, m.request(2, item, kSteps, 0), 52);
    for (size_t r = from; r < 52; ++r)
      for (const double v : z[r]) EXPECT_EQ(v, 0.0) << item << " row " << r + 1;
  };
  zeros(1, 12);
  history_rows(k, m.request(2, 2, kSteps, 0), 1);
  zeros(4, 0);  // the kind of its own: zero rows, and nothing refreshed
  const auto rows = history_rows(k, m.request(2, 3, kSteps, 0), 52);
  const V3 e = pf.eps(0, 0), sg = stress_of(b, {kSteps * e[0], kSteps * e[1], kSteps * e[2]}, 1);
  const double want[8] = {sg[0],         sg[1],         sg[2], b.nu * (sg[0] + sg[1]),
                          kSteps * e[0], kSteps * e[1], 0,     kSteps * e[2]};
  for (size_t s = 0; s < kSteps; ++s)
    for (size_t i = 0; i < 40; ++i)
      EXPECT_NEAR(rows[12 + i][s], want[i % 4 + 4 * (i / 20)], i < 20 ? 1e-10 * a.E : 1e-13);

  // Both in one snapshot at step 2; the selector steps by three through the
  // four rows a point of the strain-state element.
  Kernel fresh;
  Request r = m.request(2, 2, 1, 0);
  r.request_mode = 2, r.step_no = 2, r.num_items = 2, r.result_comp = 4;
  r.serials = r.elements = {2, 3};
  const Result res = fresh.run(r);
  const V3 e2 = {2 * e[0], 2 * e[1], 2 * e[2]}, s2 = stress_of(b, e2, 1), s0 = stress_of(a, e2, 0);
  const double snap[10] = {s0[0], s0[0], s0[0], s0[0], s0[0], s2[0], b.nu * (s2[0] + s2[1]),
                           s2[2], s2[1], s2[0]};
  ASSERT_EQ(res.values.size(), 10u);
  for (size_t i = 0; i < 10; ++i) EXPECT_NEAR(res.values[i], snap[i], 1e-10 * a.E) << i;
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
  const PanelField pf{turn(0.5, 0, true)};
  PlaneRecord rec;
  add_element(m, family, high ? 8 : 3, pf.Q, mt, 101, &rec);
  m.write(pf.field(), 1);
  Kernel k;
  Request r = m.request(family, 1, 1, af);
  r.product_index = product;
  const size_t npts = high ? 9 : 4, stress0 = high ? 24 : 12, strain0 = high ? 60 : 32;
  const auto rows = history_rows(k, r, static_cast<int>(strain0 + 4 * npts));
  // Panel triples as tensors in global axes, of which the xz plane's
  // (xx, zz, zx).
  const V3 e = pf.eps(0, 0), sg = stress_of(mt, e, 1);
  auto global = [&](const V3& t) {
    const M3& Q = pf.Q;
    auto g = [&](int i, int j) {
      return Q[i][0] * (t[0] * Q[j][0] + t[2] * Q[j][1]) +
             Q[i][1] * (t[2] * Q[j][0] + t[1] * Q[j][1]);
    };
    return V3{g(0, 0), g(2, 2), g(2, 0)};
  };
  const V3 T = global(e), S = global(sg);
  const double nu = mt.nu, out = nu * (sg[0] + sg[1]), St = nu * (S[0] + S[1]);
  using A4 = std::array<double, 4>;
  A4 strain{e[0], e[1], 0, e[2]};
  A4 stress = high ? A4{sg[0], sg[1], out, sg[2]} : A4{sg[0], sg[1], sg[2], out};
  if (af == 1) {
    strain = !hnq ? A4{T[0], T[1], 0, T[2]} : A4{T[0], high ? 0.0 : nu * (T[0] + T[1]), T[1], T[2]};
    stress = hnq    ? A4{S[0], St, S[1], S[2]}
             : high ? A4{S[0], S[1], out, S[2]}
                    : A4{S[0], S[1], S[2], St};
  }
  if (af == 2) strain = {};
  if (!high && hnq && af != 1) stress = {};
  for (size_t i = 0; i < 4 * npts; ++i) {
    EXPECT_NEAR(rows[stress0 + i][0], stress[i % 4], 1e-10 * mt.E) << i;
    EXPECT_NEAR(rows[strain0 + i][0], strain[i % 4], 1e-15) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Plane, StrainBlock,
                         ::testing::Combine(::testing::Values(2, 6), ::testing::Values(1, 4),
                                            ::testing::Values(0, 1, 2)));

}  // namespace
}  // namespace respcore::testing::plane
