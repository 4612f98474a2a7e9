// Carrying stresses from the sampling points of plane and plate elements to
// their corners (and midsides), in place in the element's result vector.
// A block is NCOMP consecutive values of one point; the element centre comes
// first, then the sampling points in order.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

// Quadrilateral: the four 2x2 Gauss blocks starting at row 4*NPT3 + NCOMP + 1
// become the bilinear extrapolation to the corners (natural coordinates
// +-sqrt(3) of the Gauss points), in node order.
void TRTONO(VecRef<double> SIG, int32_t NPT3, int32_t NCOMP);

// Triangle: the centre block at row 4*NPT3 + 1 and the three point blocks
// behind it; each point block becomes centre + 2.5 (point - centre), which
// carries the points (0.2, 0.2), (0.6, 0.2), (0.2, 0.6) to the corners.
void TRTONO_3(VecRef<double> SIG, int32_t NPT3, int32_t NCOMP);

// Triangle: the three point blocks from row 16, at (1/6, 1/6), (2/3, 1/6),
// (1/6, 2/3), become the linear extrapolation to the corners.
void TRTONO_3NODE_STRES(VecRef<double> SIG, int32_t NCOMP);

// Blocks of eight after the centre block. N = 3 or 6: blocks 2-4 at the
// triangle points (1/6, 1/6), (2/3, 1/6), (1/6, 2/3) go to the corners; N = 6
// also sets blocks 5-7 to the means of corners 1-2, 2-3, 3-1. N = 8: blocks
// 2-5 at the Gauss points go to the corners and blocks 6-9 take the means of
// corners 1-2, 2-3, 3-4, 4-1. Any other N changes nothing.
void CURVED_EXPOLATE(VecRef<double> V, int32_t N);

}  // namespace respcore
