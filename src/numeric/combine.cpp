// Compiled for vector units beyond the baseline where the processor has
// them: the loop is bound by how fast it moves the histories through the
// cache, and wider registers move more per instruction. No variant may fuse
// a product with its sum.
#include "numeric/combine.hpp"

namespace respcore {

namespace {

// The thread sanitizer's runtime is not ready when the variant is chosen at
// load time: there the baseline alone is built.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define RESPCORE_NO_VARIANTS 1
#endif
#endif
#if defined(__SANITIZE_THREAD__)
#define RESPCORE_NO_VARIANTS 1
#endif
#if defined(__clang__)
#pragma clang fp contract(off)
#endif
#if defined(RESPCORE_NO_VARIANTS) || !defined(__GNUC__) || defined(__clang__)
#define RESPCORE_VECTOR_VARIANTS
#else
#define RESPCORE_VECTOR_VARIANTS \
  __attribute__((target_clones("avx2", "default"), optimize("O3", "fp-contract=off")))
#endif

RESPCORE_VECTOR_VARIANTS
void add4(double* __restrict y, const double* __restrict x0, const double* __restrict x1,
          const double* __restrict x2, const double* __restrict x3, const double* c, int64_t n) {
  const double c0 = c[0], c1 = c[1], c2 = c[2], c3 = c[3];
  for (int64_t j = 0; j < n; ++j) {
    double t = y[j];
    t += c0 * x0[j];
    t += c1 * x1[j];
    t += c2 * x2[j];
    t += c3 * x3[j];
    y[j] = t;
  }
}

RESPCORE_VECTOR_VARIANTS
void add1(double* __restrict y, const double* __restrict x, double c, int64_t n) {
  for (int64_t j = 0; j < n; ++j) y[j] += c * x[j];
}

RESPCORE_VECTOR_VARIANTS
void add1_strided(double* __restrict y, const double* __restrict x, double c, int64_t n,
                  int64_t stride) {
  for (int64_t j = 0; j < n; ++j) y[j] += c * x[j * stride];
}

RESPCORE_VECTOR_VARIANTS
void scale_from(double* __restrict y, const double* __restrict x, double c, int64_t n) {
  for (int64_t j = 0; j < n; ++j) y[j] = 0.0 + c * x[j];
}

RESPCORE_VECTOR_VARIANTS
void scale_here(double* y, double c, int64_t n) {
  for (int64_t j = 0; j < n; ++j) y[j] = 0.0 + c * y[j];
}

}  // namespace

void start_combination(double* y, const double* x, double c, int64_t n) {
  if (x == y)
    scale_here(y, c, n);
  else
    scale_from(y, x, c, n);
}

void add_combination(double* y, const double* const* x, const double* c, int32_t k, int64_t n,
                     int64_t stride) {
  int32_t i = 0;
  if (stride == 1) {
    for (; i + 4 <= k; i += 4) add4(y, x[i], x[i + 1], x[i + 2], x[i + 3], c + i, n);
    for (; i < k; ++i) add1(y, x[i], c[i], n);
    return;
  }
  for (; i < k; ++i) add1_strided(y, x[i], c[i], n, stride);
}

}  // namespace respcore
