// Plate sections: what turns the strains of a plate or shell formulation at
// one of its points into that point's stress block.
//
// A formulation core computes, at each of its points, the membrane strain
// eps = (ex, ey, gxy), the curvature kappa and the transverse shear strain
// (gxz, gyz) in element axes. The section gives the stress block of the
// point:
//   rows 1-3  Dm  * eps
//   rows 4-6  Dbs * kappa
//   row 8, row 7  Ds * (gxz, gyz)      (row 7 is the yz member, row 8 xz)
// and the shear factor of a side of length L, phi = phi_coef / L^2, that the
// thick formulations use to tie the transverse shear to the rotations.
//
// The ordinary sections of the DKT, DKMT and DKMQ routines are built by
// those routines themselves; the sections below serve the general, the
// stiffened and the plane variants.
#pragma once

#include <cstdint>

#include "plate/plate_context.hpp"

namespace respcore {

// Rows of the transverse shear pair in a stress block: every plate routine
// delivers the yz member first.
inline constexpr int32_t kShearRowYZ = 7;
inline constexpr int32_t kShearRowXZ = 8;

struct PlateSection {
  double Dm[3][3] = {};   // membrane, (xx, yy, xy) by (xx, yy, xy); Dm[i][j] is row i+1, column j+1
  double Dbs[3][3] = {};  // bending: curvature to the block's rows 4-6
  double Ds[2][2] = {};   // transverse shear over (xz, yz)
  double phi_coef = 0.0;  // 12 * (mean bending rigidity) / (mean shear rigidity), per unit width

  double shear_factor(double L) const { return phi_coef / (L * L); }

  // The stress block of a point: BLOCK(1..8) from its strains.
  void stress_block(const double eps[3], const double kappa[3], const double gxz_gyz[2],
                    double block[8]) const {
    for (int i = 0; i < 3; ++i) {
      block[i] = Dm[i][0] * eps[0] + Dm[i][1] * eps[1] + Dm[i][2] * eps[2];
      block[i + 3] = Dbs[i][0] * kappa[0] + Dbs[i][1] * kappa[1] + Dbs[i][2] * kappa[2];
    }
    block[kShearRowXZ - 1] = Ds[0][0] * gxz_gyz[0] + Ds[0][1] * gxz_gyz[1];
    block[kShearRowYZ - 1] = Ds[1][0] * gxz_gyz[0] + Ds[1][1] * gxz_gyz[1];
  }
};

// The general section of plate variant 4 (PLATE_MATER_STF with MASK 14):
// Dm = D1 (full, coupling kept), Dbs = (P1/2) * D2 with P1 = PLATE_PROP(1),
// Ds = DS / 1.2, phi_coef = 1.2 * (D2_MEAN / DS_MEAN) * T2^2 with
// T2 = PLATE_PROP(2).
PlateSection general_plate_section(const PlateContext& C);

// The stiffened section of plate variant 3 (ribbed plate), forces per unit
// width: Dm = A, Dbs = Db, Ds = As, turned by SECT_ANGLE when it is not 0;
// phi_coef = 12 * ((Db11 + Db22) / 2) / ((As11 + As22) / 2).
PlateSection stiffened_plate_section(const PlateContext& C);

// The plane section of calls from the plane element histories: Dm = the
// in-plane D of PLANE_KIND (0 plane stress, 1 plane strain; 2 or more is
// taken as 0), turned by MAT_ANGLE (radians) when MAT_TYPE is 1 and the
// angle is not 0; no bending, no shear.
PlateSection plane_section(const PlateContext& C, int32_t PLANE_KIND, double MAT_ANGLE);

}  // namespace respcore
