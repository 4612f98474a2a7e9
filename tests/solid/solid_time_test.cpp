// Low-order solids (ELEM_TYPE 4) through whole requests. The stored matrix
// is the analysis's: here it holds, for the one equation that moves, forces
// and point stresses in element axes chosen so that the answer is known:
// forces and stresses turned to global axes by the element axes, the centre
// as stored, the nodes extrapolated from the points of a field that the
// extrapolation reproduces, and strains that are the compliance of the
// element's material times the global stresses.
#include <gtest/gtest.h>

#include <cmath>

#include "solid_support.hpp"

namespace respcore::testing::solid {
namespace {

constexpr double kG2 = 0.5773502691896257;

// The stored points of each shape: the centre, then the integration points
// in the order the kernel extrapolates from.
std::vector<V3> points(int nn) {
  std::vector<V3> p;
  if (nn == 4) return {{0.25, 0.25, 0.25}};
  if (nn == 5) {
    const double A = 0.8774851560592651, B = 0.45584815740585327, r3 = 1.7320507764816284;
    p.push_back({0, 0, 0.25});
    for (const V3& s : natural_nodes(8)) {
      const double z = 1 - (A + B) / 2 + s[2] * (A - B) / 2;
      p.push_back({s[0] * (1 - z) / r3, s[1] * (1 - z) / r3, z});
    }
  } else if (nn == 6) {
    p.push_back({1.0 / 3, 1.0 / 3, 0});
    for (double z : {-kG2, kG2})
      for (const auto& t :
           {V3{1.0 / 6, 1.0 / 6, z}, V3{2.0 / 3, 1.0 / 6, z}, V3{1.0 / 6, 2.0 / 3, z}})
        p.push_back(t);
  } else {
    p.push_back({0, 0, 0});
    for (const V3& s : natural_nodes(8)) p.push_back({s[0] * kG2, s[1] * kG2, s[2] * kG2});
  }
  return p;
}

// A stress field over the element that the extrapolation of each shape
// carries exactly: trilinear for the brick, linear by linear for the wedge,
// linear for the pyramid.
V6 field(int nn, const V3& x) {
  V6 c{};
  for (int i = 0; i < 6; ++i)
    c[i] = 1.0 + 0.5 * i + (i + 1) * 0.3 * x[0] - 0.2 * x[1] + 0.4 * x[2] +
           (nn == 8   ? 0.1 * x[0] * x[1] * x[2]
            : nn == 6 ? 0.25 * x[0] * x[2]
                      : 0.0);
  return c;
}
const V6 kCentre = {7, -3, 2, 0.5, -1, 4};
double force(int r) { return 0.1 * r - 1.0; }  // force row r per unit of the moving equation

TEST(SolidTime, StoredMatrixTurnsExtrapolatesAndGivesStrainsOfTheMaterial) {
  const int shapes[4] = {8, 6, 4, 5};
  const Material mats[2] = {orthotropic(), Material{}};
  const M3 Q = sample_placement(1).Q;
  ArchiveFixture a;
  SolidModel model;
  model.materials = {mats[0], mats[1]};
  model.element_material = {1, 2, 1, 2};
  model.nodes = natural_nodes(8);
  model.write_common(
      a,
      [](const V3& x, int s) {
        return V3{x == natural_nodes(8)[0] ? 0.5 * s : 0.0, 0, 0};
      },
      2);
  std::vector<SolidRecord> records;
  for (int nn : shapes) {
    SolidRecord r;
    for (int e = 1; e <= 3 * nn; ++e) r.lm.push_back(e);
    const auto pts = points(nn);
    r.nr = 24 + 6 * static_cast<int>(pts.size());
    r.strs.assign(static_cast<size_t>(r.nr * 3 * nn), 0.0);  // column 1 only: the moving equation
    for (int k = 0; k < 3 * nn; ++k) r.strs[static_cast<size_t>(k)] = force(k + 1);
    for (size_t p = 0; p < pts.size(); ++p)
      for (int i = 0; i < 6; ++i)
        r.strs[24 + 6 * p + static_cast<size_t>(i)] = p == 0 ? kCentre[i] : field(nn, pts[p])[i];
    r.nn = nn;
    r.axes = Q;
    records.push_back(r);
  }
  a.writer().solid_records(3, records);
  a.write();

  Kernel k;
  for (int item = 1; item <= 4; ++item) {
    const int nn = shapes[item - 1];
    const M6 C = compliance(mats[(item - 1) % 2]);
    const auto nat = natural_nodes(nn);
    Request r = a.request(4, 1, 2);
    r.serials = r.elements = {item};
    const auto global = history_rows(k, r, 78 + 6 * (nn + 1));
    r.axis_flag = 0;
    const auto local = history_rows(k, r, 78 + 6 * (nn + 1));
    for (int s = 1; s <= 2; ++s) {
      const double u = 0.5 * s;
      for (int n = 0; n < nn; ++n) {
        const V3 f = {u * force(3 * n + 1), u * force(3 * n + 2), u * force(3 * n + 3)};
        EXPECT_V3_NEAR(point3(global, 1 + 3 * n, s), mul(Q, f), 1e-12) << nn << n;
        EXPECT_V3_NEAR(point3(local, 1 + 3 * n, s), f, 1e-12) << nn << n;
      }
      for (int p = 0; p <= nn; ++p) {
        V6 el = p == 0 || nn == 4 ? kCentre : field(nn, nat[static_cast<size_t>(p - 1)]);
        for (double& x : el) x *= u;
        const V6 g = rotate(Q, el), eps = mul6(C, g);
        EXPECT_V6_NEAR(point6(global, 25 + 6 * p, s), g, 1e-9) << nn << p;
        EXPECT_V6_NEAR(point6(local, 25 + 6 * p, s), el, 1e-9) << nn << p;
        EXPECT_V6_NEAR(point6(global, 79 + 6 * p, s), eps, 1e-9 * norm6(eps)) << nn << p;
        EXPECT_V6_NEAR(point6(local, 79 + 6 * p, s), rotate(transpose(Q), eps), 1e-9 * norm6(eps))
            << nn;
      }
    }
  }
}

}  // namespace
}  // namespace respcore::testing::solid
