#include "plate/plate_section.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;

// The isotropic plate by hand: D0 = E/(1-nu^2), G = E/(2(1+nu)).
struct Iso {
  double e = 2.1e5, nu = 0.3, t = 0.2;
  double d0() const { return e / (1.0 - nu * nu); }
  double g() const { return e / (2.0 * (1.0 + nu)); }
  double d(int i, int j) const {
    if (i == 2 && j == 2) return d0() * (1.0 - nu) / 2.0;
    if (i == 2 || j == 2) return 0.0;
    return i == j ? d0() : d0() * nu;
  }
};

// The general and the stiffened section of a plain isotropic plate are the
// plate's: membrane D*t (per unit width) or D, surface bending stress or
// moment, shear G/1.2, and phi = 2.4 t^2 / ((1 - nu) L^2).
TEST(PlateSection, GeneralAndStiffenedReduceToThePlainPlate) {
  Iso p;
  Material m;
  m.isotropic(p.e, p.nu, p.t, p.t);
  for (int k = 2; k < 5; ++k) m.K.ELEM_MATERIAL.PLATE_PROP[k] = p.t;
  const PlateSection g = general_plate_section(m.ctx());
  const PlateSection s = stiffened_plate_section(m.ctx());
  const double tol = 1e-9 * p.e;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(g.Dm[i][j], p.d(i, j), tol);
      EXPECT_NEAR(g.Dbs[i][j], p.t / 2 * p.d(i, j), tol);
      EXPECT_NEAR(s.Dm[i][j], p.t * p.d(i, j), tol);
      EXPECT_NEAR(s.Dbs[i][j], p.t * p.t * p.t / 12 * p.d(i, j), tol);
    }
  for (int i = 0; i < 2; ++i) {
    EXPECT_NEAR(g.Ds[i][i], p.g() / 1.2, tol);
    EXPECT_NEAR(s.Ds[i][i], p.g() * p.t / 1.2, tol);
    EXPECT_EQ(g.Ds[i][1 - i], 0.0);
  }
  const double phi = 2.4 * p.t * p.t / (1.0 - p.nu) / (1.5 * 1.5);
  EXPECT_NEAR(g.shear_factor(1.5), phi, 1e-12);
  EXPECT_NEAR(s.shear_factor(1.5), phi, 1e-12);
}

// An orthotropic panel whose material axes are turned by 90 degrees is the
// same panel with the two directions exchanged.
TEST(PlateSection, PlaneSectionTurnedQuarterExchangesDirections) {
  Material a, b;
  a.orthotropic(200.0, 0.3, 100.0, 40.0, 30.0, 20.0, 1.0, 1.0);
  b.orthotropic(100.0, 0.15, 200.0, 40.0, 30.0, 20.0, 1.0, 1.0);
  const PlateSection turned = plane_section(a.ctx(), 0, 3.141592653589793 / 2);
  const PlateSection swapped = plane_section(b.ctx(), 0, 0.0);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(turned.Dm[i][j], swapped.Dm[i][j], 1e-10);
  EXPECT_EQ(turned.phi_coef, 0.0);
  // A kind other than 0 and 1 is the stress state.
  const PlateSection k2 = plane_section(b.ctx(), 2, 0.0);
  EXPECT_EQ(k2.Dm[0][0], swapped.Dm[0][0]);
}

// Ribs at 90 degrees: the stiffened section turned by its angle equals the
// one built with the x and y properties exchanged.
TEST(PlateSection, StiffenedTurnedQuarterExchangesDirections) {
  Material a, b;
  const double t1 = 0.2, t2 = 0.1, b1 = 0.5, b2 = 0.3, b3 = 0.25;
  a.orthotropic(200.0, 0.3, 200.0, 76.0, 60.0, 40.0, t1, t2);
  b.orthotropic(200.0, 0.3, 200.0, 76.0, 40.0, 60.0, t2, t1);
  double* pa = a.K.ELEM_MATERIAL.PLATE_PROP;
  double* pb = b.K.ELEM_MATERIAL.PLATE_PROP;
  pa[2] = b1, pa[3] = b2, pa[4] = b3;
  pb[2] = b2, pb[3] = b1, pb[4] = b3;
  a.K.plate.SECT_ORTHO = 1;
  a.K.plate.SECT_ANGLE = 3.141592653589793 / 2;
  const PlateSection s = stiffened_plate_section(a.ctx());
  const PlateSection r = stiffened_plate_section(b.ctx());
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      EXPECT_NEAR(s.Dm[i][j], r.Dm[i][j], 1e-9) << i << j;
      EXPECT_NEAR(s.Dbs[i][j], r.Dbs[i][j], 1e-9) << i << j;
    }
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) EXPECT_NEAR(s.Ds[i][j], r.Ds[i][j], 1e-9);
  EXPECT_NEAR(s.phi_coef, r.phi_coef, 1e-12);
}

}  // namespace
}  // namespace respcore
