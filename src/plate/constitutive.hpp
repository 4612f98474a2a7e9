// Plate constitutive matrices: the in-plane matrix D (orthotropic or
// isotropic, plane stress or plane strain), the transverse shear matrix, their
// rotation from material into element axes, and the section stiffness
// factors. D matrices are ordered (xx, yy, xy), shear matrices (xz, yz);
// all are column-major with the leading dimension passed.
#pragma once

#include <cstdint>

#include "continuum/material_matrix.hpp"
#include "core/arrays.hpp"
#include "plate/plate_context.hpp"

namespace respcore {

// STRESS_STRAIN_MATRIX_PLT, the in-plane D of the element's material, lives
// with the continuum material matrices (continuum/material_matrix.hpp).

// Fills the matrices selected by MASK (2: membrane D1, 4: bending D2, 8:
// shear DS(2,2)) in element axes, after rotation and section scaling. All
// three are zeroed first. D1_SHEARMOD is D1(3,3) before rotation, D2_MEAN
// and DS_MEAN the means of the two leading diagonal entries.
void PLATE_MATER_STF(const PlateContext& C, MatRef<double> D1, double& D1_SHEARMOD,
                     MatRef<double> D2, MatRef<double> DS, double& D2_MEAN, double& DS_MEAN,
                     int32_t MASK);

// Rebuilds DD(N,N) (N 3 or 2) from the section's scale factors of matrix
// type ITYPE (1 membrane, 2 bending, 3 shear; any other value reuses the
// last type's factors). Does nothing unless the section is scaled. USEMAT
// (lowest bit) takes the moduli from the element material instead of E1,
// E2, G, NU; TRANS (lowest bit) rotates the result by T(N,N).
void PLATE_STIFF_SCALE_MOD(const PlateContext& C, int32_t N, double E1, double E2, double G,
                           double NU, int32_t USEMAT, MatRef<double> T, MatRef<double> DD,
                           int32_t ITYPE, int32_t TRANS);

// Older form: scales D (leading dimension N) in place by the factors of
// matrix type ITYPE and drops the couplings with the shear term.
void PLATE_STIFF_SCALE(const PlateContext& C, MatRef<double> D, int32_t N, int32_t ITYPE);

// D := T' D T for N by N matrices, N at most 3.
void TRANS_D_SKEW(MatRef<double> D, MatRef<double> T, int32_t N);

// Decides what the current element's D needs: ISCALE = 1 for a scaled
// section, else IROT = 1 for orthotropic material or section at a non-zero
// angle. The two flags never both hold.
void CHECK_PLATE_DMATRIX_TRANSFORM(const PlateContext& C, int32_t& ISCALE, int32_t& IROT);

// The flags of CHECK_PLATE_DMATRIX_TRANSFORM and the rotations T2(2,2) and
// T3(3,3) from material into element axes (identity when neither flag is set).
void CALC_ROTATION_MATRIX(const PlateContext& C, int32_t& ISCALE, int32_t& IROT, MatRef<double> T2,
                          MatRef<double> T3);

// Strain rotation TRAN_INPL_UDC2(3,3) (engineering shear) and vector
// rotation TRAN_TRSH_UDC2(2,2) for axes turned by ANGLE (radians).
void TRANS_VECT_MATL_GNRL(MatRef<double> TRAN_INPL_UDC2, MatRef<double> TRAN_TRSH_UDC2,
                          double ANGLE);

}  // namespace respcore
