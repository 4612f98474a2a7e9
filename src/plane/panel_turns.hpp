// Turning force triples between global and panel axes. PANEL_T(3,3) holds
// the panel axes as rows, in global components.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// Global to panel, in place: each of the 2*N triples of SIG becomes
// PANEL_T * triple.
void LOCPANEL(VecRef<double> SIG, MatRef<double> PANEL_T, int32_t N);

// Panel to global: each of the N/3 triples of FORCL, turned by the transpose
// of PANEL_T, is written to FORC.
void LOCTOGLO_FOC(VecRef<double> FORCL, VecRef<double> FORC, int32_t N, MatRef<double> PANEL_T);

}  // namespace respcore
