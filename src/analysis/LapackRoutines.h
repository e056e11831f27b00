// Fortran LAPACK and BLAS routines called directly (column-major, 32-bit integers, trailing hidden
// lengths of the character arguments as gfortran passes them).
#pragma once

#include <cstddef>

#include "analysis/ComplexMatrix.h"

extern "C" {

void zheev_(const char* jobz, const char* uplo, const int* n, d_complex* a, const int* lda, double* w,
            d_complex* work, const int* lwork, double* rwork, int* info, std::size_t jobzLength,
            std::size_t uploLength);

void zgesvd_(const char* jobu, const char* jobvt, const int* m, const int* n, d_complex* a, const int* lda, double* s,
             d_complex* u, const int* ldu, d_complex* vt, const int* ldvt, d_complex* work, const int* lwork,
             double* rwork, int* info, std::size_t jobuLength, std::size_t jobvtLength);

void zgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k, const d_complex* alpha,
            const d_complex* a, const int* lda, const d_complex* b, const int* ldb, const d_complex* beta,
            d_complex* c, const int* ldc, std::size_t transaLength, std::size_t transbLength);
}

namespace nvdl::analysis {

// Largest dimension handed to the routines: every matrix of that size (and its workspace) keeps
// its element count within the 32-bit integers of the Fortran interface.
inline constexpr long kMaxLapackDimension = 46340;

inline bool isLapackDimension(long d) { return d >= 0 && d <= kMaxLapackDimension; }

}  // namespace nvdl::analysis
