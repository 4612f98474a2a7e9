// The BLAS/LAPACK symbols the library uses, declared once, with thin
// wrappers taking plain values. Integers are the 32-bit integers of the
// linked library's interface; character arguments carry their hidden lengths.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {
void dgemm_(const char* transa, const char* transb, const int32_t* m, const int32_t* n,
            const int32_t* k, const double* alpha, const double* a, const int32_t* lda,
            const double* b, const int32_t* ldb, const double* beta, double* c,
            const int32_t* ldc, size_t transa_len, size_t transb_len);
void dgemv_(const char* trans, const int32_t* m, const int32_t* n, const double* alpha,
            const double* a, const int32_t* lda, const double* x, const int32_t* incx,
            const double* beta, double* y, const int32_t* incy, size_t trans_len);
void dpotrf_(const char* uplo, const int32_t* n, double* a, const int32_t* lda, int32_t* info,
             size_t uplo_len);
void dtrsm_(const char* side, const char* uplo, const char* transa, const char* diag,
            const int32_t* m, const int32_t* n, const double* alpha, const double* a,
            const int32_t* lda, double* b, const int32_t* ldb, size_t side_len, size_t uplo_len,
            size_t transa_len, size_t diag_len);
void dsyrk_(const char* uplo, const char* trans, const int32_t* n, const int32_t* k,
            const double* alpha, const double* a, const int32_t* lda, const double* beta,
            double* c, const int32_t* ldc, size_t uplo_len, size_t trans_len);
}

namespace respcore {

// C := alpha op(A) op(B) + beta C.
inline void DGEMM(char transa, char transb, int32_t m, int32_t n, int32_t k, double alpha,
                  const double* a, int32_t lda, const double* b, int32_t ldb, double beta,
                  double* c, int32_t ldc) {
  dgemm_(&transa, &transb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc, 1, 1);
}

// y := alpha op(A) x + beta y.
inline void DGEMV(char trans, int32_t m, int32_t n, double alpha, const double* a, int32_t lda,
                  const double* x, int32_t incx, double beta, double* y, int32_t incy) {
  dgemv_(&trans, &m, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy, 1);
}

// Cholesky factor of the UPLO triangle of A(N,N); returns INFO.
inline int32_t DPOTRF(char uplo, int32_t n, double* a, int32_t lda) {
  int32_t info = 0;
  dpotrf_(&uplo, &n, a, &lda, &info, 1);
  return info;
}

// B := alpha op(A)^-1 B (SIDE 'L') or alpha B op(A)^-1 (SIDE 'R'), A triangular.
inline void DTRSM(char side, char uplo, char transa, char diag, int32_t m, int32_t n,
                  double alpha, const double* a, int32_t lda, double* b, int32_t ldb) {
  dtrsm_(&side, &uplo, &transa, &diag, &m, &n, &alpha, a, &lda, b, &ldb, 1, 1, 1, 1);
}

// C := alpha op(A) op(A)' + beta C on the UPLO triangle of C(N,N).
inline void DSYRK(char uplo, char trans, int32_t n, int32_t k, double alpha, const double* a,
                  int32_t lda, double beta, double* c, int32_t ldc) {
  dsyrk_(&uplo, &trans, &n, &k, &alpha, a, &lda, &beta, c, &ldc, 1, 1);
}

}  // namespace respcore
