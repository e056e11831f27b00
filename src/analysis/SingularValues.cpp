// Singular values and the Moore-Penrose inverse of a complex matrix with LAPACK's zgesvd.
#include <algorithm>
#include <cfloat>
#include <limits>
#include <vector>

#include "analysis/LapackRoutines.h"

namespace {

d_complex conjugate(d_complex z) { return {z.re, -z.im}; }

d_complex multiply(d_complex a, d_complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }

}  // namespace

bool imsl_z_lin_svd_gen(long m, long n, const d_complex* a, d_complex* singularValues, d_complex* inverse)
{
    using nvdl::analysis::isLapackDimension;
    if (!isLapackDimension(m) || !isLapackDimension(n) || a == nullptr)
        return false;
    const long k = std::min(m, n);
    if (k == 0) {
        if (inverse != nullptr)
            std::fill(inverse, inverse + n * m, d_complex{0.0, 0.0});
        return true;
    }
    // Read column by column, the row-major m×n matrix A is B = A^T, with n rows and m columns.
    // From B = U·S·V^H follows B+ = V·S+·U^H, and A+ = (B+)^T, whose row-major array is exactly
    // B+ in column order, so B+ is written straight into `inverse`.
    std::vector<d_complex> b(a, a + m * n);
    int rows = static_cast<int>(n);
    int cols = static_cast<int>(m);
    int rank = static_cast<int>(k);
    const char* job = inverse != nullptr ? "S" : "N";
    std::vector<d_complex> u(inverse != nullptr ? static_cast<size_t>(n * k) : 1);
    std::vector<d_complex> vt(inverse != nullptr ? static_cast<size_t>(k * m) : 1);
    int ldu = inverse != nullptr ? rows : 1;
    int ldvt = inverse != nullptr ? rank : 1;
    std::vector<double> sigma(static_cast<size_t>(k));
    std::vector<double> rwork(static_cast<size_t>(5 * k));
    int lwork = -1;
    int info = 0;
    d_complex workSize{};
    zgesvd_(job, job, &rows, &cols, b.data(), &rows, sigma.data(), u.data(), &ldu, vt.data(), &ldvt, &workSize, &lwork,
            rwork.data(), &info, 1, 1);
    lwork = info == 0 ? std::max(1, static_cast<int>(workSize.re)) : 2 * rank + std::max(rows, cols);
    std::vector<d_complex> work(static_cast<size_t>(lwork));
    zgesvd_(job, job, &rows, &cols, b.data(), &rows, sigma.data(), u.data(), &ldu, vt.data(), &ldvt, work.data(),
            &lwork, rwork.data(), &info, 1, 1);
    if (info != 0) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        if (singularValues != nullptr)
            std::fill(singularValues, singularValues + k, d_complex{nan, nan});
        if (inverse != nullptr)
            std::fill(inverse, inverse + n * m, d_complex{nan, nan});
        return false;
    }
    if (singularValues != nullptr)
        for (long l = 0; l < k; ++l)
            singularValues[l] = {sigma[static_cast<size_t>(l)], 0.0};
    if (inverse != nullptr) {
        const double cutoff = static_cast<double>(std::max(m, n)) * DBL_EPSILON * sigma[0];
        for (long i = 0; i < m; ++i)
            for (long j = 0; j < n; ++j) {
                d_complex sum{0.0, 0.0};
                for (long l = 0; l < k; ++l) {
                    double s = sigma[static_cast<size_t>(l)];
                    if (s <= cutoff)
                        break;  // descending: every later value is below the cutoff too
                    d_complex term = multiply(conjugate(vt[static_cast<size_t>(l + i * k)]),
                                              conjugate(u[static_cast<size_t>(j + l * n)]));
                    sum.re += term.re / s;
                    sum.im += term.im / s;
                }
                inverse[i + j * m] = sum;
            }
    }
    return true;
}
