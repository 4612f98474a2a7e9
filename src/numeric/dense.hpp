// Small dense solvers shared by the element formulations: an in-place
// inverse with closed forms for sizes 2 and 3, a symmetric U'DU
// factorisation with its substitution, static condensation of trailing
// degrees of freedom, and the 3x3 block rotation of a stiffness matrix.
//
// Matrices are column-major with 1-based subscripts; the leading dimension
// of a matrix is the size passed with it. None of these routines allocates,
// pivots or returns a status.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct Diagnostics;

// The callee's view of a matrix argument: the caller's storage read with the
// leading dimension passed to the routine, as a dummy array of that shape
// would read it (a caller holding a larger array hands over a contiguous
// block of exactly that size). Columns beyond what the storage holds are cut
// off, so every subscript stays checked against real storage.
inline MatRef<double> as_shape(MatRef<double> m, int64_t rows, int64_t cols) {
  rows = rows > 0 ? rows : 0;
  cols = cols > 0 ? cols : 0;
  if (m.rows() == rows && m.cols() >= cols) return MatRef<double>(m.data(), rows, cols, m.name());
  const int64_t total = m.rows() * m.cols();
  const int64_t fit = rows > 0 ? (cols < total / rows ? cols : total / rows) : 0;
  return MatRef<double>(m.data(), rows, fit, m.name());
}

// A_INV := inverse of A(N,N). For N = 2 and 3 the closed forms below are used
// and A is left as it is; for any other positive N, A is reduced by
// Gauss-Jordan elimination without pivoting and is overwritten. Exact zero
// pivots are replaced by 1.0 without notice, so a singular matrix of such a
// size yields a finite, meaningless result. N <= 0 touches nothing.
void INVERSE(Diagnostics& D, MatRef<double> A, MatRef<double> A_INV, int32_t N);

// In-place inverse of a 2x2 (3x3) matrix by cofactors; DET receives the
// determinant. A determinant <= 0 writes the element-shape message to the
// message sink and standard output and performs the fatal stop.
void INVERSE2X2(Diagnostics& D, MatRef<double> A_INV, double& DET);
void INVERSE3X3(Diagnostics& D, MatRef<double> A_INV, double& DET);

// In-place U'DU factorisation of the symmetric ST(N,N): D on the diagonal,
// the unit upper factor U in both triangles. No pivot test.
void SYMDF(int32_t N, MatRef<double> ST);

// Solves with a SYMDF factor: every column of WORK(N,NRHS) is replaced by
// the solution of ST x = column.
void SUBSTF(int32_t N, int32_t NRHS, MatRef<double> ST, MatRef<double> WORK);

// Condenses the last NC of NT degrees of freedom. WORK(NC,NC) is scratch;
// WORK1(NC,NT-NC+1) receives inv(Kcc)*Kcr in its first NT-NC columns and
// inv(Kcc)*Fc in its last. With FLAG = 1 ST and FORC are left untouched;
// otherwise their leading NT-NC rows/columns receive the condensed system.
void STCOND(int32_t NT, int32_t NC, MatRef<double> ST, VecRef<double> FORC, MatRef<double> WORK,
            MatRef<double> WORK1, int32_t FLAG);

// S1 := B' S1 B over its leading NDOF rows and columns, B block diagonal
// with T(3,3) repeated; S2(N2,N2) is scratch.
void LOCTOGLO(MatRef<double> S1, int32_t N1, MatRef<double> S2, int32_t N2, MatRef<double> T,
              int32_t NDOF);

}  // namespace respcore
