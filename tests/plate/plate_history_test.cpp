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

}  // namespace
}  // namespace respcore::testing::plate
