// One-dimensional Gauss-Legendre rules on [-1, +1], one to four points.
#pragma once

#include <cstdint>

namespace respcore {

// Abscissa XI and weight WT of point IPT of the NPT-point rule. NPT outside
// 1..4 gives the one-point rule; an IPT outside the rule gives its first
// point. The stored constants are the ones every stored result was produced
// with (the three-point abscissa included), not the exact roots.
void INTPT4(int32_t NPT, int32_t IPT, double& XI, double& WT);

}  // namespace respcore
