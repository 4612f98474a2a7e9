#include "plate/plate_section.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tri_fixture.hpp"

namespace respcore {
namespace {

using tri_test::Material;

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

}  // namespace
}  // namespace respcore
