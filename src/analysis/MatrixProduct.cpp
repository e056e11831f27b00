// Complex matrix product with BLAS zgemm.
#include <algorithm>

#include "analysis/LapackRoutines.h"

bool imsl_z_mat_mul_rect(long ar, long ac, const d_complex* a, long br, long bc, const d_complex* b, d_complex* x)
{
    using nvdl::analysis::isLapackDimension;
    if (!isLapackDimension(ar) || !isLapackDimension(ac) || !isLapackDimension(br) || !isLapackDimension(bc) ||
        ac != br || a == nullptr || b == nullptr || x == nullptr)
        return false;
    if (ar == 0 || bc == 0)
        return true;
    // Row-major X = A·B is, read column by column, X^T = B^T·A^T: the same arrays with the operands
    // swapped.
    int m = static_cast<int>(bc);
    int n = static_cast<int>(ar);
    int k = static_cast<int>(ac);
    int ldb = std::max(1, m);
    int lda = std::max(1, k);
    const d_complex one{1.0, 0.0};
    const d_complex zero{0.0, 0.0};
    zgemm_("N", "N", &m, &n, &k, &one, b, &ldb, a, &lda, &zero, x, &ldb, 1, 1);
    return true;
}
