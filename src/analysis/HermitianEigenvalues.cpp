// Eigenvalues of a Hermitian matrix with LAPACK's zheev.
#include <algorithm>
#include <limits>
#include <vector>

#include "analysis/LapackRoutines.h"

bool imsl_z_eig_herm(long n, const d_complex* a, double* values)
{
    if (!nvdl::analysis::isLapackDimension(n) || a == nullptr || values == nullptr)
        return false;
    if (n == 0)
        return true;
    // Read column by column, the row-major matrix is its transpose, which for a Hermitian matrix is
    // its conjugate and has the same eigenvalues; the lower triangle of the row-major matrix is the
    // upper triangle of that view.
    std::vector<d_complex> work(a, a + n * n);
    int order = static_cast<int>(n);
    int lwork = -1;
    int info = 0;
    d_complex workSize{};
    std::vector<double> rwork(static_cast<size_t>(std::max(1L, 3 * n - 2)));
    zheev_("N", "U", &order, work.data(), &order, values, &workSize, &lwork, rwork.data(), &info, 1, 1);
    lwork = info == 0 ? std::max(1, static_cast<int>(workSize.re)) : 2 * order;
    std::vector<d_complex> scratch(static_cast<size_t>(lwork));
    zheev_("N", "U", &order, work.data(), &order, values, scratch.data(), &lwork, rwork.data(), &info, 1, 1);
    if (info != 0) {
        std::fill(values, values + n, std::numeric_limits<double>::quiet_NaN());
        return false;
    }
    std::reverse(values, values + n);  // LAPACK gives them ascending
    return true;
}
