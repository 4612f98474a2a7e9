// Material matrices of the continuum elements, from the current element's
// material (isotropic, or orthotropic with MAT_TYPE 1).
#pragma once

#include <cstdint>

#include "continuum/continuum_state.hpp"
#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"

namespace respcore {

// D(NSTRS,NSTRS), zeroed first.
//   NSTRS 6: the solid matrix of STRESS_STRAIN_MATRIX.
//   NSTRS 4, PLANE_TYPE 2: the axisymmetric matrix, reordered to rows
//     xx, yy, xy, hoop.
//   NSTRS 4, MAT_TYPE 1: the plate routine's orthotropic matrix (MODE =
//     PLANE_TYPE) in the leading 3 by 3.
//   NSTRS 4 otherwise: isotropic plane stress (PLANE_TYPE 0) or plane strain
//     (1) from YOUNG and POISSON in the leading 3 by 3; any other plane type
//     repeats the values of the previous call.
//   Any other NSTRS: zero.
void CALC_DMATX(Diagnostics& DG, const ElementMaterial& m, ContinuumState& s, MatRef<double> D,
                double YOUNG, double POISSON, int32_t PLANE_TYPE, int32_t NSTRS);

// In-plane D(3,3) of the current element's material: MODE 0 plane stress,
// MODE 1 plane strain. D is fully overwritten. Ratios and compliance entries
// whose guards fail (non-positive moduli) keep the values in S from the
// previous element.
void STRESS_STRAIN_MATRIX_PLT(const ElementMaterial& m, PlaneCompliance& s, int32_t MODE,
                              MatRef<double> D);

// D6(6,6), rows xx, yy, zz, xy, yz, zx. MAT_TYPE 0 isotropic; MAT_TYPE 1
// orthotropic, its normal block the inverse of the compliance and the shear
// diagonals MAT_VALS(7), (8), (9). Any other MAT_TYPE leaves D6 as it is.
void STRESS_STRAIN_MATRIX(Diagnostics& DG, const ElementMaterial& m, MatRef<double> D6);

// The isotropic plane-strain entries of D(3,3) from MAT_YOUNG and
// MAT_POISSON; the coupling entries with the shear row are left as they are.
void isotropic_plane_strain(const ElementMaterial& m, MatRef<double> D);

// D4(4,4), rows rr, zz, hoop, rz: isotropic unless MAT_TYPE is 1, which
// inverts the orthotropic compliance by cofactors and puts MAT_VALS(7) in
// D4(4,4).
void STRESS_STRAIN_MATRIX_AXY(const ElementMaterial& m, MatRef<double> D4);

}  // namespace respcore
