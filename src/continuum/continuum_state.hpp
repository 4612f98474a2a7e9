// Saved data of the continuum kit: what its routines keep between calls and
// between elements, held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// What STRESS_STRAIN_MATRIX_PLT carries from one element to the next:
// Poisson ratios and compliance entries whose guards may fail (non-positive
// moduli); a failed guard keeps the value of the previous element.
struct PlaneCompliance {
  double NU21 = 0.0;
  double NU31 = 0.0;
  double NU32 = 0.0;
  double S11 = 0.0;
  double S12 = 0.0;
  double S21 = 0.0;
  double S22 = 0.0;
};

struct ContinuumState {
  // The shared plane word: 0 plane stress, 1 plane strain, 2 axisymmetric.
  // Set by the plane element drivers, read by B_BUB (hoop row) and passed to
  // CALC_DMATX.
  int32_t PLANE_TYPE = 0;

  // CALC_DMATX, isotropic 4-row form: the three values it writes into D
  // (D11 = D22, D12 = D21, D33). A plane type other than 0 or 1 writes what
  // the previous call left here.
  double DMATX_D11 = 0.0;
  double DMATX_D12 = 0.0;
  double DMATX_D33 = 0.0;

  // The in-plane material routine's carried values, shared by the plane and
  // plate families.
  PlaneCompliance compliance;
};

}  // namespace respcore
