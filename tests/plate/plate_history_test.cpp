// Plate and shell histories (ELEM_TYPE 3) through whole requests, for every
// section variant, shape and kind, with and without offsets and user axes:
// rigid motion gives no stress, constant membrane strain and constant
// Kirchhoff curvature give the section's hand values in every result row,
// releases decouple the released motion, and the general form applies the
// test's own matrices.
#include <numbers>

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
Row3 offset_local(const Case& c, size_t n) {
  return c.moved ? Row3{0.05 * (n + 1), -0.03, 0.2} : Row3{};
}

// The element (force matrix the identity: forces are the nodal motion) with
// the motion of FIELDS, one per step; EXTRA (element axes) is added to node 2.
PlateRecord write_plate(ArchiveFixture& f, const Case& c, const std::vector<Field>& fields,
                        PlateRecord r = {}, Dof6 extra = {}) {
  const auto xy = local_nodes(c.nodes);
  std::vector<std::array<double, 3>> cord;
  std::vector<std::vector<Dof6>> steps(fields.size());
  for (size_t n = 0; n < xy.size(); ++n) {
    const Row3 g = to_global({xy[n][0], xy[n][1], 0.0}), off = to_global(offset_local(c, n));
    r.offset_xyz.push_back({g[0] + 1.0, g[1] - 2.0, g[2] + 0.5});
    cord.push_back({g[0] + 1.0 - off[0], g[1] - 2.0 - off[1], g[2] + 0.5 - off[2]});
    r.nodes.push_back(static_cast<double>(n + 1));
    for (size_t s = 0; s < fields.size(); ++s)
      steps[s].push_back(node_motion(
          n == 1 ? sum(fields[s], [extra](double, double) { return extra; }) : fields[s], xy[n][0],
          xy[n][1], off));
  }
  const int neq = 6 * c.nodes;
  r.ns = neq;
  for (int i = 0; i < neq; ++i) {
    r.lm.push_back(i + 1);
    for (int j = 0; j < neq; ++j) r.forces.push_back(i == j ? 1.0 : 0.0);
  }
  if (r.young == 0.0) r.young = kE, r.poisson = kNu;
  r.form = c.form;
  if (r.prop[0] != 0.0) {
    // the caller's section
  } else if (c.variant == 3)
    r.prop = {kT1, kT1, kB, kB, kB, kZ1, kZ2, kZ1, kZ2, 0.0, 1.0};
  else
    r.prop = {kT1, kT2, 0, 0, 0, 0, 0, 0, 0, 0, c.variant == 4 ? 2.0 : 0.0};
  write_motion(f, steps);
  f.writer().node_coordinates(cord);
  f.writer().plate_records(3, {r});
  if (c.moved) {
    std::vector<double> elim(14, 0.0);
    elim[12] = kAngle;
    f.writer().first().add_f64_rows(sections::ELIM, 1, {elim}, 14);
  }
  f.write();
  return r;
}

// The hand values of the case's result blocks.
Block expected(const Case& c, Row3 eps, Row3 k) {
  if (c.variant == 3) return hand_block(eps, k, kZ1, kZ2, kT1, kB * kB * kB / 12);
  if (c.variant == 4) return hand_block(eps, k, kT1 / 2, kT1 / 2, kT1, kT2 * kT2 * kT2 / 12);
  // The thick triangle's isotropic bending rows carry the plate modulus twice.
  const double q = (c.nodes == 3 && c.form % 2 == 0) ? kE / (1 - kNu * kNu) : 1.0;
  return hand_block(eps, k, q * kT2 / 2, q * kT2 / 2, kT1, q * kT2 * kT2 * kT2 / 12);
}

class PlateFields : public ::testing::TestWithParam<Case> {};

TEST_P(PlateFields, RigidMotionConstantStrainAndCurvatureInEveryRow) {
  const Case c = GetParam();
  const Row3 eps = {1e-3, -4e-4, 8e-4}, k = {2e-3, -1e-3, 1e-3};
  const std::vector<Field> fields = {rigid({1e-3, -2e-3, 3e-3, 4e-4, -5e-4, 6e-4}),
                                     membrane(eps[0], eps[1], 6e-4, 2e-4),
                                     bending(k[0], k[1], k[2] / 2)};
  ArchiveFixture f;
  const Field shear = [](double x, double y) { return Dof6{0, 0, 1e-3 * x - 4e-4 * y, 0, 0, 0}; };
  write_plate(f, c, {fields[0], fields[1], fields[2], fields[0]});
  const Rows rows = history_rows(f, 3, 1, 94, 4);
  const double angle = c.moved ? kAngle : 0.0, ct = std::cos(angle / 180 * std::numbers::pi),
               st = std::sin(angle / 180 * std::numbers::pi);
  const auto xy = local_nodes(c.nodes);
  for (int s = 0; s < 3; ++s) {
    // Forces: the element-axis motion of the nodes, in the user's axes.
    for (int n = 0; n < 4; ++n)
      for (int h = 0; h < 6; h += 3) {
        Row3 l{};
        if (n < c.nodes) {
          const Dof6 d = fields[s](xy[n][0], xy[n][1]);
          const Row3 wr = cross({d[3], d[4], d[5]}, offset_local(c, n));
          l = {d[h] - (h ? 0 : wr[0]), d[h + 1] - (h ? 0 : wr[1]), d[h + 2] - (h ? 0 : wr[2])};
        }
        const double want[3] = {ct * l[0] + st * l[1], -st * l[0] + ct * l[1], l[2]};
        for (int a = 0; a < 3; ++a) EXPECT_NEAR(rows[6 * n + h + a][s], want[a], 1e-15) << s << n;
      }
    const Row3 e0 = s == 1 ? eps : Row3{}, k0 = s == 2 ? k : Row3{};
    const Block turned = expected(c, turn(e0, angle), turn(k0, angle)), plain = expected(c, e0, k0);
    for (int p = 0; p < 5; ++p)
      for (int i = 0; i < 14; ++i) {
        // A triangle's fifth block repeats its centre unturned; the general
        // section leaves it empty.
        const bool fifth = c.nodes == 3 && p == 4;
        const double want = !fifth ? turned[i] : (c.variant == 4 ? 0.0 : plain[i]);
        EXPECT_NEAR(rows[24 + 14 * p + i][s], want, 1e-7 * (1 + std::fabs(want)))
            << "step " << s + 1 << " point " << p + 1 << " row " << i + 1;
      }
  }
  // Stiffened with every thickness kB is the thick plate of thickness kB: a
  // linear w (Qx != Qy) gives the same shear rows at every point.
  if (c.variant == 3) {
    Rows q[2];
    for (int v = 0; v < 2; ++v) {
      ArchiveFixture g;
      PlateRecord r;
      r.prop = v ? std::array<double, 11>{kB, kB} : std::array<double, 11>{kB, kB, kB, kB, kB, kZ1};
      r.prop[10] = v ? 0.0 : 1.0;
      write_plate(g, Case{c.nodes, 0, v ? 2 : 3, c.moved}, {shear}, r);
      q[v] = history_rows(g, 3, 1, 94, 1);
    }
    for (int i = 24; i < 94; i += 14)
      for (int j = 12; j < 14; ++j) EXPECT_NEAR(q[0][i + j][0], q[1][i + j][0], 1e-9) << i + j + 1;
  }
  // Step 4 repeats step 1 on the set-ups of step 1.
  for (int i = 0; i < 94; ++i) EXPECT_EQ(rows[i][3], rows[i][0]) << "row " << i + 1;
  if (c.moved && c.variant == 2) expect_request_modes(f, 3, rows, 3);
}

std::vector<Case> cases() {
  std::vector<Case> v;
  for (bool moved : {false, true})
    for (int nodes : {3, 4}) {
      for (int form : {0, 1})
        for (int variant : {2, 3, 4}) v.push_back({nodes, form, variant, moved});
      v.push_back({nodes, 2, 2, moved});  // the drilling membrane
    }
  return v;
}
INSTANTIATE_TEST_SUITE_P(VariantShapeKind, PlateFields, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& pi) {
                           const Case& c = pi.param;
                           return std::string(c.nodes == 3 ? "Tri" : "Quad") + "Form" +
                                  std::to_string(c.form) + "Variant" + std::to_string(c.variant) +
                                  (c.moved ? "Moved" : "");
                         });

// Released rotations of node 2 (code 110): the stresses do not depend on the
// motion given for them, rigid motion stays stress free, and codes of 0 with
// the release flag set change nothing.
TEST(PlateReleases, StressesIgnoreTheReleasedMotion) {
  for (const Case c : {Case{4, 0, 2, true}, Case{3, 1, 2, false}, Case{3, 0, 4, true}}) {
    const std::vector<Field> fields = {rigid({1e-3, 2e-3, -1e-3, 3e-4, 2e-4, -1e-4}),
                                       sum(bending(2e-3, -1e-3, 4e-4), membrane(1e-3, 0, 2e-4, 0))};
    std::vector<Rows> runs;
    for (int run = 0; run < 4; ++run) {
      ArchiveFixture f;
      PlateRecord r;
      r.release_flag = run == 3 ? 0 : 1;
      if (run < 2) r.release_codes = {0, 110.7, 0, 0};
      write_plate(f, c, fields, r, run == 1 ? Dof6{0, 0, 0, 3e-3, -2e-3, 0} : Dof6{});
      runs.push_back(history_rows(f, 3, 1, 94, 2));
    }
    for (int i = 24; i < 94; ++i) {
      EXPECT_NEAR(runs[0][i][0], 0.0, 1e-7) << "rigid, row " << i + 1;
      EXPECT_NEAR(runs[1][i][0], 0.0, 1e-7) << "rigid, released motion moved, row " << i + 1;
      EXPECT_NEAR(runs[1][i][1], runs[0][i][1], 1e-9 * (1 + std::fabs(runs[0][i][1]))) << i + 1;
      EXPECT_EQ(runs[2][i][1], runs[3][i][1]) << "codes 0, row " << i + 1;
    }
  }
}

// Material axes at 90 degrees (the record holds degrees) make the material of
// the quadrilateral that with its two directions exchanged: moduli and the
// Poisson ratio that goes with them.
TEST(PlateMaterialAxes, NinetyDegreesExchangesTheDirections) {
  const Field fl = sum(bending(2e-3, -1e-3, 5e-4), membrane(1e-3, 2e-4, 0, 3e-4));
  for (int variant : {2, 4}) {
    std::vector<Rows> runs;
    for (int turned = 0; turned < 2; ++turned) {
      ArchiveFixture f;
      PlateRecord r;
      r.mat_type = 1, r.young = turned ? 1.5e5 : 0.9e5, r.poisson = turned ? 0.25 : 0.15;
      r.mat_vals = {turned ? 0.9e5 : 1.5e5, 0, 0, 1e5, 0, 0, 4e4, turned ? 2.5e4 : 3e4,
                    turned ? 3e4 : 2.5e4};
      r.angle = turned ? 90.0 : 0.0;
      write_plate(f, Case{4, 0, variant, false}, {fl}, r);
      runs.push_back(history_rows(f, 3, 1, 94, 1));
    }
    for (int i = 24; i < 94; ++i)
      EXPECT_NEAR(runs[1][i][0], runs[0][i][0], 1e-9 * (1 + std::fabs(runs[0][i][0]))) << i + 1;
  }
}

// The general form ("J.W.U") applies the record's matrices: forces as stored,
// stress blocks (the same at every point here) on the element-axis motion at
// the offset points, fibres by the record's factors, forces by the thickness
// of each point; form 1 takes the shear forces from the moment gradient.
TEST(GeneralPlate, RecordsBuiltFromTheTestsOwnMatrices) {
  ArchiveFixture f("J.W.U");
  // Element axes: local x, y, z along global y, z, x.
  const std::array<Row3, 3> tr = {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}};
  const Row3 off = {0.125, -0.25, 0.375};
  const std::vector<std::vector<Row3>> xyz = {{{0, 0, 0}, {0, 2, 0}, {0, 2, 1}, {0, 0, 1}},
                                              {{0, 0, 0}, {0, 2, 0}, {0, 1, 1}},
                                              {{0, 0, 0}, {0, 2, 0}, {0, 2, 1}, {0, 0, 1}}};
  std::vector<std::array<double, 3>> cord;
  std::vector<Dof6> motion;
  std::vector<GeneralPlateRecord> recs(3);
  for (size_t e = 0; e < 3; ++e) {
    GeneralPlateRecord& g = recs[e];
    const size_t nn = xyz[e].size(), neq = 6 * nn;
    for (size_t n = 0; n < nn; ++n) {
      cord.push_back(xyz[e][n]);
      g.nodes.push_back(static_cast<double>(cord.size()));
      if (e == 0)
        g.offsets[3 * n] = off[0], g.offsets[3 * n + 1] = off[1], g.offsets[3 * n + 2] = off[2];
      Dof6 m;
      for (int k = 0; k < 6; ++k) m[k] = 1e-3 * std::sin(3.0 * cord.size() + k);
      motion.push_back(m);
    }
    for (size_t i = 0; i < neq; ++i)
      g.lm.push_back(static_cast<double>(6 * (cord.size() - nn) + i + 1));
    g.offset_switch = e == 0 ? 1 : 0;
    // thk^2 = 0.0625 + 0.09375 x of element 3: its moments grow linearly in x.
    g.thk = e == 2 ? std::array<double, 5>{0.375, 0.25, 0.5, 0.5, 0.25}
                   : std::array<double, 5>{0.375, 0.25, 0.5, 0.125, 0.75};
    g.axes = tr, g.top = e == 2 ? 0.0 : 0.5, g.bottom = -0.375, g.form = e == 2 ? 1 : 2 * e;
    for (size_t i = 0; i < neq * neq; ++i) g.forc.push_back((i % 5) - 2.0);
    for (size_t p = 0; p <= nn; ++p)
      for (size_t rr = 0; rr < 8; ++rr)
        for (size_t i = 0; i < neq; ++i)
          g.strs.push_back((static_cast<double>((rr + 1) * (i + 3) % 7) - 3) / 4);
  }
  write_motion(f, {motion});
  f.writer().node_coordinates(cord);
  f.writer().general_plate_records(3, recs);
  f.write();

  for (size_t e = 0, first = 0; e < 3; first += xyz[e].size(), ++e) {
    const Rows rows = history_rows(f, 3, 6, 94, 1, static_cast<int>(e + 1));
    const GeneralPlateRecord& g = recs[e];
    const size_t nn = xyz[e].size(), neq = 6 * nn;
    std::vector<double> d, loc(neq);
    for (size_t n = 0; n < nn; ++n) {
      const Dof6& u = motion[first + n];
      d.insert(d.end(), u.begin(), u.end());
      const Row3 wr = cross({u[3], u[4], u[5]}, e == 0 ? off : Row3{});
      for (int a = 0; a < 3; ++a)
        loc[6 * n + a] = u[(a + 1) % 3] + wr[(a + 1) % 3], loc[6 * n + 3 + a] = u[3 + (a + 1) % 3];
    }
    for (size_t i = 0; i < 24; ++i) {
      double want = 0.0;
      for (size_t j = 0; j < neq && i < neq; ++j) want += g.forc[j * neq + i] * d[j];
      EXPECT_NEAR(rows[i][0], want, 1e-15) << "element " << e + 1 << " force " << i + 1;
    }
    double S[8] = {};
    for (size_t rr = 0; rr < 8; ++rr)
      for (size_t i = 0; i < neq; ++i) S[rr] += g.strs[rr * neq + i] * loc[i];
    for (size_t p = 0; p < 5; ++p) {
      const double t = g.thk[p];
      Block b{};
      for (int c = 0; c < 3; ++c)
        b[c] = S[c] + 2 * g.top * S[c + 3], b[c + 3] = S[c] + 2 * g.bottom * S[c + 3],
        b[c + 6] = S[c] * t, b[c + 9] = g.top == 0.0 ? -t * t * S[c + 3] / 6 : 0.0;
      b[12] = g.form == 1 ? 0.09375 / 6 * S[3] : S[7] * t;
      b[13] = g.form == 1 ? 0.09375 / 6 * S[5] : S[6] * t;
      for (size_t i = 0; i < 14; ++i)
        EXPECT_NEAR(rows[24 + 14 * p + i][0], p == nn + 1 ? 0.0 : b[i], 1e-12)
            << "element " << e + 1 << " point " << p + 1 << " row " << i + 1;
    }
  }
}

}  // namespace
}  // namespace respcore::testing::plate
