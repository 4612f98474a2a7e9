// Saved data of the continuum interpolation kit: what the routines keep between calls
// (their static locals in the original design), held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

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
};

}  // namespace respcore
