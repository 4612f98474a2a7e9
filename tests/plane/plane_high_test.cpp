// Six- and eight-node plane elements (ELEM_TYPE 5, 6) through whole requests,
// the stress rows of their element routine, and the rows every plane family
// returns in each request mode. Oracles: unit displacements give a symmetric
// stiffness that rigid motion does not load; a quadratic field gives D eps of
// its linear strain at the centre and every node; the assembly table.
#include "plane/plane_high_matrices.hpp"
#include "plane_support.hpp"
#include "run/kernel_state.hpp"

namespace respcore::testing::plane {
namespace {

class HighShapes : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(HighShapes, UnitDisplacementsGiveASymmetricStiffnessThatRigidMotionDoesNotLoad) {
  const auto [family, nn] = GetParam();
  const Material mt;
  PlaneModel m;
  m.place(nn, turn(0.4, 0.9));
  m.a.writer().plane_high_records(family == 5 ? sections::PSTH : sections::PSRH, 3, {high_record(m, mt)});
  m.write([](int e, int s) { return e == s ? 1.0 : 0.0; }, 6 * nn);  // step j: equation j moves
  Kernel k;
  const auto K = rows_of(k, m.request(family, 1, 6 * nn), 3 * nn);  // K[row][equation]
  const double tol = 1e-10 * mt.E * mt.t;
  for (int a = 0; a < nn; ++a)
    for (int b = 0; b < nn; ++b)
      for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 6; ++j) {
          const double kab = K[static_cast<size_t>(3 * a + i)][static_cast<size_t>(6 * b + j)];
          if (j < 3) EXPECT_NEAR(kab, K[static_cast<size_t>(3 * b + j)][static_cast<size_t>(6 * a + i)], tol);
          else EXPECT_EQ(kab, 0.0);  // the rotations do not enter
        }
  for (int mode = 0; mode < 6; ++mode) {
    V3 v{};
    v[static_cast<size_t>(mode % 3)] = 1.0;
    const Field u = mode < 3 ? linear({}, {}) : rigid(v);
    for (int r = 0; r < 3 * nn; ++r) {
      double f = 0.0;
      for (int n = 0; n < nn; ++n)
        for (int c = 0; c < 3; ++c) {
          const double d = mode < 3 ? v[static_cast<size_t>(c)] : u(m.nodes[static_cast<size_t>(n)], 1)[static_cast<size_t>(c)];
          f += K[static_cast<size_t>(r)][static_cast<size_t>(6 * n + c)] * d;
        }
      EXPECT_NEAR(f, 0.0, 10 * tol) << "rigid mode " << mode << " row " << r + 1;
    }
  }
}

// A quadratic field in panel axes gives, at the centre and every node, D
// times its linear strain there; a rigid motion gives nothing.
TEST_P(HighShapes, QuadraticFieldGivesItsStressesAndRigidMotionNone) {
  const auto [family, nn] = GetParam();
  const Material mt;
  const M3 Q = turn(-0.7, 1.3);
  const V3 C = {3, -2, 1};
  const double al[3] = {2e-4, -1e-4, 3e-4}, be[3] = {-3e-4, 1.5e-4, 1e-4};
  for (const bool quadratic : {true, false}) {
    PlaneModel m;
    m.place(nn, Q, C);
    m.a.writer().plane_high_records(family == 5 ? sections::PSTH : sections::PSRH, 3, {high_record(m, mt)});
    const Field rig = rigid({1e-3, -2e-3, 5e-4});
    m.write(
        [&](const V3& X, int s) {
          if (!quadratic) return rig(X, s);
          const V3 x = mulT(Q, {X[0] - C[0], X[1] - C[1], X[2] - C[2]});
          const double q[3] = {x[0] * x[0], x[0] * x[1], x[1] * x[1]};
          const V3 g = mul(Q, {s * (al[0] * q[0] + al[1] * q[1] + al[2] * q[2]),
                               s * (be[0] * q[0] + be[1] * q[1] + be[2] * q[2]), 0});
          return std::array<double, 6>{g[0], g[1], g[2], 0, 0, 0};
        },
        2);
    Kernel k;
    const auto rows = rows_of(k, m.request(family, 1, 2, 0), family == 5 ? 51 : 96);
    const auto xy = local_nodes(nn);
    const int corners = nn == 8 ? 4 : 3;
    for (int p = 0; p <= nn; ++p) {
      double x = 0, y = 0;  // the centre, then the nodes
      if (p == 0)
        for (int c = 0; c < corners; ++c) x += xy[static_cast<size_t>(c)][0] / corners, y += xy[static_cast<size_t>(c)][1] / corners;
      else
        x = xy[static_cast<size_t>(p - 1)][0], y = xy[static_cast<size_t>(p - 1)][1];
      const V3 e = quadratic ? V3{2 * al[0] * x + al[1] * y, be[1] * x + 2 * be[2] * y,
                                  al[1] * x + 2 * al[2] * y + 2 * be[0] * x + be[1] * y}
                             : V3{};
      const V3 sg = stress_of(mt, e, family - 5);
      for (int s = 1; s <= 2; ++s) {
        const auto at = [&](int row) { return rows[static_cast<size_t>(row - 1)][static_cast<size_t>(s - 1)]; };
        const double tol = 1e-9 * mt.E * 1e-3;
        if (family == 5) {
          for (int i = 0; i < 3; ++i) EXPECT_NEAR(at(25 + 3 * p + i), s * sg[i], tol) << p;
          continue;
        }
        const double st[4] = {sg[0], sg[1], mt.nu * (sg[0] + sg[1]), sg[2]}, ep[4] = {e[0], e[1], 0, e[2]};
        for (int i = 0; i < 4; ++i) {
          EXPECT_NEAR(at(25 + 4 * p + i), s * st[i], tol) << p;
          EXPECT_NEAR(at(61 + 4 * p + i), s * ep[i], 1e-14) << p;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Plane, HighShapes, ::testing::Combine(::testing::Values(5, 6), ::testing::Values(6, 8)));

// The stress rows of the element routine at the centre, on panel freedoms
// of a linear field, are D eps.
TEST(PlaneHighMatrices, CentreStressRowsGiveDEps) {
  for (const int nn : {6, 8}) {
    KernelState K;
    ContinuumParts C{K.diag, K.ELEM_MATERIAL, K.continuum, K.plane, K.plate};
    C.material.MAT_YOUNG = 2.0e5, C.material.MAT_POISSON = 0.3;
    const M3 Q = turn(0.3, 0.6);
    Mat<double> XYZ("XYZ", 3, 8), STR("STR", 60, 16);
    const auto xy = local_nodes(nn);
    for (int n = 0; n < nn; ++n) {
      const V3 X = mul(Q, {xy[static_cast<size_t>(n)][0], xy[static_cast<size_t>(n)][1], 0});
      for (int i = 0; i < 3; ++i) XYZ(i + 1, n + 1) = X[static_cast<size_t>(i)] + 1.0;
    }
    double tran[9];
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j) tran[i + 3 * j] = Q[static_cast<size_t>(j)][static_cast<size_t>(i)];
    PLANE_QUAD8_STR_BUB(C, 1, STR.ref(), nn, XYZ.ref(), MatRef<double>(tran, 3, 3, "TRAN"));
    const V3 e = {1e-3, -4e-4, 6e-4}, sg = stress_of(Material{}, e, 0);
    for (int i = 1; i <= 3; ++i) {
      double v = 0.0;
      for (int n = 0; n < nn; ++n) {
        const double x = xy[static_cast<size_t>(n)][0], y = xy[static_cast<size_t>(n)][1];
        v += STR(24 + i, 2 * n + 1) * (e[0] * x + 0.5 * e[2] * y) + STR(24 + i, 2 * n + 2) * (0.5 * e[2] * x + e[1] * y);
      }
      EXPECT_NEAR(v, sg[static_cast<size_t>(i - 1)], 1e-9) << nn;
    }
  }
}

// Each request mode returns the rows the assembly table names, for two items
// of each family at step 2 (the many-items form of ELEM_TYPE 2 steps by three
// through its four rows a point). The history's products run over all steps
// at once, the snapshot's over one: they agree to rounding.
TEST(PlaneAssembly, EveryRequestModeReturnsTheRowsOfTheTable) {
  struct Fam {
    int type, nn, option, nrows;
  };
  for (const Fam f : {Fam{1, 4, 0, 27}, Fam{2, 3, 101, 48}, Fam{5, 8, 0, 51}, Fam{6, 6, 0, 88}}) {
    PlaneModel m;
    const M3 Q = turn(0.2, 0.5);
    std::vector<PlaneRecord> low;
    std::vector<PlaneHighRecord> high;
    for (int e = 0; e < 2; ++e) {
      m.place(f.nn, Q, {1.0 * e, 0, 0});
      if (f.type <= 2) {
        PlaneRecord r;
        r.lm = PlaneModel::equations(m.elements.back());
        r.nrow = 12;
        r.strs.assign(12 * r.lm.size(), 0.0);
        for (size_t v = 0; v < r.strs.size(); ++v) r.strs[v] = std::cos(0.3 * v + e);
        const auto& ns = m.elements.back();
        for (int c = 0; c < 4; ++c) r.nodes[c] = ns[static_cast<size_t>(std::min(c, f.nn - 1))];
        for (int c = 0; c < 4; ++c) r.xyz[c] = m.nodes[static_cast<size_t>(r.nodes[c] - 1)];
        r.material = Material{}.record(), r.option = f.option;
        low.push_back(r);
      } else {
        high.push_back(high_record(m, Material{}));
      }
    }
    const SectionName& sec = f.type == 1 ? sections::PSTR : f.type == 2 ? sections::PSRN : f.type == 5 ? sections::PSTH : sections::PSRH;
    if (f.type <= 2) m.a.writer().plane_records(sec, 3, low);
    else m.a.writer().plane_high_records(sec, 3, high);
    m.write(linear(kGrad, {1e-3, 2e-3, 0}), 2);
    Kernel k;
    std::vector<std::vector<double>> rows[2];  // of each item at step 2
    for (int e = 0; e < 2; ++e) rows[e] = rows_of(k, m.request(f.type, e + 1, 2, 0), f.nrows);
    Request r = m.request(f.type, 1, 2, 0);
    r.step_no = 2, r.num_items = 2, r.serials = {1, 2}, r.elements = {1, 2};
    for (const int C : {1, 3, 4, 6}) {
      r.request_mode = 2, r.result_comp = C;
      const Result res = k.run(r);
      const bool pts = C >= 4;
      const int mpts = f.type <= 2 ? 4 + pts : 8 + pts;
      const int base = !pts ? C : f.type <= 2 ? C + 9 : C + 21, stride = f.type == 6 && pts ? 4 : 3;
      ASSERT_EQ(res.values.size(), static_cast<size_t>(2 * mpts));
      for (int e = 0; e < 2; ++e)
        for (int n = 0; n < mpts; ++n)
          EXPECT_NEAR(res.values[static_cast<size_t>(mpts * e + n)], rows[e][static_cast<size_t>(base + stride * n - 1)][1],
                      1e-12 * (1 + std::fabs(res.values[static_cast<size_t>(mpts * e + n)])))
              << f.type << " C " << C << " point " << n;
    }
    r.request_mode = 3;
    const Result res = k.run(r);
    ASSERT_EQ(res.values.size(), 24u);
    for (int v = 0; v < 24; ++v)
      EXPECT_NEAR(res.values[static_cast<size_t>(v)], v < 12 ? rows[v / 6][static_cast<size_t>(v % 6)][1] : 0.0, 1e-12) << f.type;
  }
}

}  // namespace
}  // namespace respcore::testing::plane
