// Element loops shared by the spectral estimates and the arithmetic members.
#include "dspLib/daVectorLoops.h"

DA_VECTOR_CLONES
void daConjugateProduct(const float* ar, const float* ai, const float* br, const float* bi, float* re, float* im,
                        long n, double scale)
{
    for (long i = 0; i < n; ++i) {
        const double xr = ar[i], xi = ai[i], yr = br[i], yi = bi[i];
        re[i] = static_cast<float>((yr * xr + yi * xi) * scale);
        im[i] = static_cast<float>((yi * xr - yr * xi) * scale);
    }
}

DA_VECTOR_CLONES
void daScaleFloats(const float* from, float* to, long n, double scale)
{
    for (long i = 0; i < n; ++i)
        to[i] = static_cast<float>(from[i] * scale);
}

DA_VECTOR_CLONES
void daSumFloats(const float* a, const float* b, float* out, long n)
{
    for (long i = 0; i < n; ++i)
        out[i] = static_cast<float>(static_cast<double>(a[i]) + b[i]);
}
