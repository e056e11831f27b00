// Dense complex matrix operations used by the multi-input analysis: Hermitian eigenvalues, singular
// values with the generalized (Moore-Penrose) inverse, and the matrix product.
//
// Matrices are contiguous arrays of d_complex, row by row, without padding. The matrices of the
// analysis are small (as many rows as the test has inputs) and are handled one spectral line at a
// time. The operations report nothing a caller has to act on; they return false only for a bad
// argument (null array, negative or mismatched size) or when the underlying routine does not
// converge, in which case the results are filled with NaN so that nothing reads undefined memory.
#pragma once

struct d_complex {
    double re;
    double im;
};

// Eigenvalues of the Hermitian n×n matrix a, only its lower triangle being read, into values[0..n-1].
// Order: descending, the largest eigenvalue first, so that principal component 1 is the strongest.
bool imsl_z_eig_herm(long n, const d_complex* a, double* values);

// Singular value decomposition of the m×n matrix a. Either output may be null:
// - singularValues receives the min(m, n) singular values, descending, each with imaginary part 0;
// - inverse receives the n×m Moore-Penrose inverse. Singular values at or below
//   max(m, n)·ε·σmax (ε the double-precision machine epsilon) count as zero, so a singular or
//   rank-deficient matrix gets its pseudo-inverse, which is a normal result.
bool imsl_z_lin_svd_gen(long m, long n, const d_complex* a, d_complex* singularValues, d_complex* inverse);

// x = a·b for the ar×ac matrix a and the br×bc matrix b (ac must equal br); x is ar×bc and must not
// overlap a or b.
bool imsl_z_mat_mul_rect(long ar, long ac, const d_complex* a, long br, long bc, const d_complex* b, d_complex* x);
