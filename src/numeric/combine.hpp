// The inner loop of a history combined from stored histories: a block of
// the result gets each history times its coefficient added, in order.
#pragma once

#include <cstdint>

namespace respcore {

// For j = 0..N-1: Y(j) := (((Y(j) + C(0) X0(j)) + C(1) X1(j)) + ...), over K
// histories Xk(j) = X[k][j STRIDE]; every product and every sum rounded as
// written (no fused multiply-add), so the result is that of K passes of
// Y(j) += C(k) Xk(j) in order. Y overlaps no X.
void add_combination(double* y, const double* const* x, const double* c, int32_t k, int64_t n,
                     int64_t stride);

// For j = 0..N-1: Y(j) := 0 + C X(j), the first term of such a sum (the
// zero start turns a product of -0 into +0). X is Y, or overlaps it nowhere.
void start_combination(double* y, const double* x, double c, int64_t n);

}  // namespace respcore
