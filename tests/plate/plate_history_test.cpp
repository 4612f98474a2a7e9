// Plate and shell histories (ELEM_TYPE 3) through whole requests on archives
// written with the writer, for every section variant, shape and kind, with
// and without offsets and user axes: rigid motion gives no stress, constant
// membrane strain and constant Kirchhoff curvature give the section's hand
// values in every result row, releases decouple the released motion, and the
// general form applies the test's own matrices.
#include "plate_support.hpp"

namespace respcore::testing::plate {
namespace {

struct Case {
  int nodes;    // 3 or 4
  int form;     // PLATE_FORM: 0 thick, 1 thin, +2 with the drilling membrane
  int variant;  // 2 ordinary, 3 stiffened, 4 general section
  bool moved;   // offsets and user axes
};

constexpr double kT1 = 0.2, kT2 = 0.25;           // membrane, bending thickness
constexpr double kB = 0.5, kZ1 = 0.3, kZ2 = 0.2;  // stiffened: rib depth, fibres
constexpr double kAngle = 30.0;

std::vector<std::array<double, 2>> local_nodes(int n) {
  if (n == 4) return {{-2, -1}, {2, -1}, {1, 1.5}, {-1, 1.5}};
  return {{0, 0}, {3, 0}, {1, 2}};
}
Row3 offset_of(const Case& c, size_t n) {
  return c.moved ? to_global({0.05 * (n + 1), -0.03, 0.2}) : Row3{};
}

PlateRecord record(const Case& c, std::vector<std::array<double, 3>>& cord) {
  PlateRecord r;
  const auto xy = local_nodes(c.nodes);
  for (size_t n = 0; n < xy.size(); ++n) {
    const Row3 g = to_global({xy[n][0], xy[n][1], 0.0}), off = offset_of(c, n);
    const Row3 p = {g[0] + 1.0, g[1] - 2.0, g[2] + 0.5};
    r.offset_xyz.push_back(p);
    cord.push_back({p[0] - off[0], p[1] - off[1], p[2] - off[2]});
    r.nodes.push_back(static_cast<double>(n + 1));
    for (int k = 1; k <= 6; ++k) r.lm.push_back(6.0 * n + k);
  }
  r.ns = 6 * c.nodes;
  r.young = kE;
  r.poisson = kNu;
  r.form = c.form;
  if (c.variant == 3)
    r.prop = {kT1, kT1, kB, kB, kB, kZ1, kZ2, kZ1, kZ2, 0.0, 1.0};
  else
    r.prop = {kT1, kT2, 0, 0, 0, 0, 0, 0, 0, 0, c.variant == 4 ? 2.0 : 0.0};
  return r;
}

// Writes the element with the nodal motion of FIELDS, one per step; EXTRA
// (element axes) is added to node 2's motion.
void write_plate(ArchiveFixture& f, const Case& c, const PlateRecord& base,
                 const std::vector<std::array<double, 3>>& cord, const std::vector<Field>& fields,
                 Dof6 extra = {}) {
  const auto xy = local_nodes(c.nodes);
  std::vector<std::vector<Dof6>> steps;
  for (const Field& fl : fields) {
    steps.emplace_back();
    for (size_t n = 0; n < xy.size(); ++n) {
      const Field fn = n == 1 ? sum(fl, [extra](double, double) { return extra; }) : fl;
      steps.back().push_back(node_motion(fn, xy[n][0], xy[n][1], offset_of(c, n)));
    }
  }
  write_motion(f, steps);
  f.writer().node_coordinates(cord);
  f.writer().plate_records(3, {base});
  if (c.moved) {
    std::vector<double> elim(14, 0.0);
    elim[12] = kAngle;
    f.writer().first().add_f64_rows(sections::ELIM, 1, {elim}, 14);
  }
  f.write();
}

// The hand values of the case's result blocks under strain EPS and curvature K.
Block expected(const Case& c, Row3 eps, Row3 k) {
  if (c.variant == 3) return hand_block(eps, k, kZ1, kZ2, kT1, kB * kB * kB / 12);
  if (c.variant == 4) return hand_block(eps, k, kT1 / 2, kT1 / 2, kT1, kT2 * kT2 * kT2 / 12);
  // The thick triangle's isotropic bending rows carry the plate modulus twice.
  const double q = (c.nodes == 3 && c.form % 2 == 0) ? kE / (1 - kNu * kNu) : 1.0;
  return hand_block(eps, k, q * kT2 / 2, q * kT2 / 2, kT1, q * kT2 * kT2 * kT2 / 12);
}

class PlateFields : public ::testing::TestWithParam<Case> {};

TEST_P(PlateFields, RigidMotionConstantStrainAndCurvatureInEveryResultRow) {
  const Case c = GetParam();
  const Field rig = rigid({1e-3, -2e-3, 3e-3, 4e-4, -5e-4, 6e-4});
  const Row3 eps = {1e-3, -4e-4, 8e-4}, k = {2e-3, -1e-3, 1e-3};
  ArchiveFixture f;
  std::vector<std::array<double, 3>> cord;
  const PlateRecord r = record(c, cord);
  write_plate(f, c, r, cord, {rig, sum(rig, membrane(eps[0], eps[1], 6e-4, 2e-4)),
                              bending(k[0], k[1], k[2] / 2), rig});
  const auto rows = history_rows(f, 3, 1, 94, 4);

  const double angle = c.moved ? kAngle : 0.0;
  for (int s = 0; s < 4; ++s) {
    const bool loaded = s == 1 || s == 2;
    const Row3 e0 = s == 1 ? eps : Row3{}, k0 = s == 2 ? k : Row3{};
    const Block turned = expected(c, turn(e0, angle), turn(k0, angle));
    const Block plain = expected(c, e0, k0);
    for (int p = 0; p < 5; ++p) {
      // A triangle's fifth block repeats its centre unturned; the general
      // section leaves it empty.
      const bool fifth = c.nodes == 3 && p == 4;
      for (int i = 0; i < 14; ++i) {
        const double want = !fifth ? turned[i] : (c.variant == 4 ? 0.0 : plain[i]);
        EXPECT_NEAR(rows[24 + 14 * p + i][s], want, 1e-7 * (1 + std::fabs(want)))
            << "step " << s + 1 << " point " << p + 1 << " row " << i + 1 << (loaded ? "" : " rigid");
      }
    }
  }
  // Step 4 repeats step 1 with the set-ups of step 1.
  for (int i = 0; i < 94; ++i) EXPECT_EQ(rows[i][3], rows[i][0]) << "row " << i + 1;
}

std::vector<Case> cases() {
  std::vector<Case> v;
  for (bool moved : {false, true}) {
    for (int nodes : {3, 4}) {
      for (int form : {0, 1}) {
        for (int variant : {2, 3, 4}) v.push_back({nodes, form, variant, moved});
      }
      v.push_back({nodes, 2, 2, moved});  // the drilling membrane
    }
  }
  return v;
}

INSTANTIATE_TEST_SUITE_P(VariantShapeKind, PlateFields, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& pi) {
                           const Case& c = pi.param;
                           return std::string(c.nodes == 3 ? "Tri" : "Quad") + "Form" +
                                  std::to_string(c.form) + "Variant" + std::to_string(c.variant) +
                                  (c.moved ? "OffsetUserAxes" : "");
                         });

// Released rotations of node 2 (code 110): the stresses do not depend on the
// motion given for them, rigid motion is still stress free, and codes of 0
// with the release flag set change nothing.
TEST(PlateReleases, StressesIgnoreTheReleasedMotion) {
  for (const Case c : {Case{4, 0, 2, true}, Case{3, 1, 2, false}, Case{3, 0, 4, true}}) {
    std::vector<std::array<double, 3>> cord;
    PlateRecord r = record(c, cord);
    const std::vector<Field> fields = {rigid({1e-3, 2e-3, -1e-3, 3e-4, 2e-4, -1e-4}),
                                       sum(bending(2e-3, -1e-3, 4e-4), membrane(1e-3, 0, 2e-4, 0))};
    std::vector<std::vector<std::vector<double>>> runs;
    for (int run = 0; run < 4; ++run) {
      ArchiveFixture f;
      PlateRecord rr = r;
      rr.release_flag = run == 3 ? 0 : 1;
      if (run < 2) rr.release_codes = {0, 110.7, 0, 0};
      // Run 1 moves the released rotations anywhere; run 2 has codes 0.
      write_plate(f, c, rr, cord, fields, run == 1 ? Dof6{0, 0, 0, 3e-3, -2e-3, 0} : Dof6{});
      runs.push_back(history_rows(f, 3, 1, 94, 2));
    }
    for (int i = 24; i < 94; ++i) {
      EXPECT_NEAR(runs[0][i][0], 0.0, 1e-7) << "rigid, row " << i + 1;
      EXPECT_NEAR(runs[1][i][0], 0.0, 1e-7) << "rigid, moved release, row " << i + 1;
      EXPECT_NEAR(runs[1][i][1], runs[0][i][1], 1e-9 * (1 + std::fabs(runs[0][i][1]))) << i + 1;
      EXPECT_EQ(runs[2][i][1], runs[3][i][1]) << "codes 0, row " << i + 1;
    }
  }
}

// Forces are the stored matrix times the motion by equation, turned to
// element axes (and to the user's); the many-items and the envelope forms
// return the rows of the history form.
TEST(PlateAssembly, ForcesAndTheThreeRequestModes) {
  for (const Case c : {Case{4, 0, 2, true}, Case{3, 1, 2, false}}) {
    ArchiveFixture f;
    std::vector<std::array<double, 3>> cord;
    PlateRecord r = record(c, cord);
    const int neq = 6 * c.nodes;
    for (int i = 1; i <= neq; ++i)
      for (int j = 1; j <= neq; ++j) r.forces.push_back((j - 2 * i) / 7.0);
    const Field fl = sum(rigid({1e-3, 2e-3, -1e-3, 3e-4, 2e-4, -1e-4}), bending(1e-3, 2e-3, 0));
    write_plate(f, c, r, cord, {fl, membrane(1e-3, 2e-3, 0, 0)});
    const auto rows = history_rows(f, 3, 1, 94, 2);
    std::vector<double> d;
    const auto xy = local_nodes(c.nodes);
    for (size_t n = 0; n < xy.size(); ++n) {
      const Dof6 m = node_motion(fl, xy[n][0], xy[n][1], offset_of(c, n));
      d.insert(d.end(), m.begin(), m.end());
    }
    const auto q = axes();
    const double t = (c.moved ? kAngle : 0.0) / 180 * 3.141592653589793;
    for (int k = 0; k < 2 * c.nodes; ++k) {
      Row3 g{}, l{};
      for (int a = 0; a < 3; ++a)
        for (int i = 0; i < neq; ++i) g[a] += r.forces[i * neq + 3 * k + a] * d[i];
      for (int a = 0; a < 3; ++a) l[a] = q[a][0] * g[0] + q[a][1] * g[1] + q[a][2] * g[2];
      const Row3 want = {std::cos(t) * l[0] + std::sin(t) * l[1], -std::sin(t) * l[0] + std::cos(t) * l[1], l[2]};
      for (int a = 0; a < 3; ++a) EXPECT_NEAR(rows[3 * k + a][0], want[a], 1e-12) << 3 * k + a + 1;
    }
    for (int i = neq; i < 24; ++i) EXPECT_EQ(rows[i][0], 0.0);

    Kernel k;
    for (int step = 1; step <= 2; ++step)
      for (int C = 1; C <= 20; ++C) {
        Request q2 = f.request(3, C, 1);
        q2.request_mode = 2;
        q2.step_no = step;
        const auto v = k.run(q2).values;
        ASSERT_EQ(v.size(), C < 7 ? 4u : 5u);
        for (size_t n = 0; n < v.size(); ++n)  // one step or two in the force product
          EXPECT_NEAR(v[n], rows[C < 7 ? C - 1 + 6 * n : C + 17 + 14 * n][step - 1], 1e-15) << C;
      }
    Request q3 = f.request(3, 9, 1);
    q3.request_mode = 3;
    q3.num_items = 2;
    q3.serials = {1, 1};
    q3.elements = {1, 1};
    const auto v3 = k.run(q3).values;
    ASSERT_EQ(v3.size(), 24u);
    for (int i = 0; i < 24; ++i) EXPECT_NEAR(v3[i], i < 12 ? rows[i % 6][0] : 0.0, 1e-15) << i;
  }
}

// The general form ("J.W.U") applies the record's own matrices: forces as
// stored on the motion by equation, stress blocks on the element-axis motion
// at the offset points, fibres by the record's factors and thickness per
// point; form 1 takes the shear forces from the moment gradient.
TEST(GeneralPlate, RecordsBuiltFromTheTestsOwnMatrices) {
  ArchiveFixture f("J.W.U");
  auto q = axes();  // as the record's four-byte reals hold them
  for (auto& row : q)
    for (double& v : row) v = static_cast<float>(v);
  struct El { std::vector<std::array<double, 2>> xy; double top; int form; Row3 off; };
  const std::vector<El> els = {{local_nodes(4), 0.5, 0, {0.125, -0.25, 0.375}},
                               {local_nodes(3), 0.5, 2, {0, 0, 0}},
                               {{{0, 0}, {2, 0}, {2, 1}, {0, 1}}, 0.0, 1, {0, 0, 0}}};
  const std::array<double, 5> thk = {0.375, 0.25, 0.5, 0.125, 0.75};
  std::vector<std::array<double, 3>> cord;
  std::vector<Dof6> motion;
  std::vector<GeneralPlateRecord> recs;
  std::vector<std::vector<double>> m8s;
  for (const El& e : els) {
    GeneralPlateRecord g;
    const int nn = static_cast<int>(e.xy.size()), neq = 6 * nn;
    for (int n = 0; n < nn; ++n) {
      const Row3 p = to_global({e.xy[n][0], e.xy[n][1], 0.0});
      cord.push_back({p[0] - e.off[0], p[1] - e.off[1], p[2] - e.off[2]});
      g.nodes.push_back(static_cast<double>(cord.size()));
      for (int k = 1; k <= 6; ++k) g.lm.push_back(6.0 * (cord.size() - 1) + k);
      g.offsets[3 * n] = e.off[0], g.offsets[3 * n + 1] = e.off[1], g.offsets[3 * n + 2] = e.off[2];
      Dof6 m;
      for (int k = 0; k < 6; ++k) m[k] = 1e-3 * std::sin(3.0 * cord.size() + k);
      motion.push_back(m);
    }
    g.offset_switch = e.off[2] != 0.0 ? 1 : 0;
    g.thk = e.form == 1 ? std::array<double, 5>{0.375, 0.25, 0.5, 0.5, 0.25} : thk;
    g.axes = q;
    g.top = e.top;
    g.bottom = -0.4;
    g.form = e.form;
    for (int i = 0; i < neq * neq; ++i) g.forc.push_back((i % 5) - 2.0);
    std::vector<double> m8;  // the same 8 rows at every point
    for (int rr = 0; rr < 8; ++rr)
      for (int i = 0; i < neq; ++i) m8.push_back(((rr + 1) * (i + 3) % 7 - 3) / 4.0);
    for (int p = 0; p <= nn; ++p) g.strs.insert(g.strs.end(), m8.begin(), m8.end());
    recs.push_back(g);
    m8s.push_back(m8);
  }
  write_motion(f, {motion});
  f.writer().node_coordinates(cord);
  f.writer().general_plate_records(3, recs);
  f.write();

  Kernel k;
  size_t first = 0;
  for (size_t e = 0; e < els.size(); ++e) {
    Request rq = f.request(3, 1, 1);
    rq.product_index = 6;
    rq.serials = {static_cast<int32_t>(e + 1)};
    std::vector<double> rows(94);
    for (int r = 1; r <= 94; ++r) {
      rq.result_comp = r;
      rows[r - 1] = k.run(rq).values.at(0);
    }
    const int nn = static_cast<int>(els[e].xy.size()), neq = 6 * nn;
    std::vector<double> d, loc(neq);
    for (int n = 0; n < nn; ++n) d.insert(d.end(), motion[first + n].begin(), motion[first + n].end());
    for (int i = 0; i < 24; ++i) {
      double want = 0.0;
      for (int j = 0; j < neq && i < neq; ++j) want += recs[e].forc[j * neq + i] * d[j];
      EXPECT_NEAR(rows[i], want, 1e-15) << "element " << e + 1 << " force " << i + 1;
    }
    for (int n = 0; n < nn; ++n) {
      const double* u = &d[6 * n];
      const Row3 r = recs[e].offset_switch == 1 ? els[e].off : Row3{};
      const Row3 ug = {u[0] + u[4] * r[2] - u[5] * r[1], u[1] + u[5] * r[0] - u[3] * r[2],
                       u[2] + u[3] * r[1] - u[4] * r[0]};
      for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) {
          loc[6 * n + a] += q[a][b] * ug[b];
          loc[6 * n + 3 + a] += q[a][b] * u[3 + b];
        }
    }
    double S[8] = {};
    for (int rr = 0; rr < 8; ++rr)
      for (int i = 0; i < neq; ++i) S[rr] += m8s[e][rr * neq + i] * loc[i];
    for (int p = 0; p < 5; ++p) {
      const double t = recs[e].thk[p], top = els[e].top;
      Block b{};
      for (int c = 0; c < 3; ++c) {
        b[c] = S[c] + 2 * top * S[c + 3];
        b[c + 3] = S[c] + 2 * static_cast<double>(-0.4f) * S[c + 3];
        b[c + 6] = S[c] * t;
        b[c + 9] = top == 0.0 ? -t * t * S[c + 3] / 6 : 0.0;
      }
      b[12] = S[7] * t, b[13] = S[6] * t;
      // thk^2 = 0.0625 + 0.09375 x: the moments grow linearly along x.
      if (els[e].form == 1) b[12] = 0.09375 / 6 * S[3], b[13] = 0.09375 / 6 * S[5];
      for (int i = 0; i < 14; ++i) {
        const double want = p == nn + 1 ? 0.0 : b[i];
        // The gradient sees the node positions through the four-byte axes.
        const double tol = els[e].form == 1 && i >= 12 ? 1e-6 * std::fabs(want) : 1e-12;
        EXPECT_NEAR(rows[24 + 14 * p + i], want, tol) << "element " << e + 1 << " point " << p + 1 << " row " << i + 1;
      }
    }
    first += nn;
  }
}

}  // namespace
}  // namespace respcore::testing::plate
