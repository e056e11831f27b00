// Element loops shared by the spectral estimates and the arithmetic members. The arrays of one call
// never overlap, except where a comment allows it.
#include "dspLib/daVectorLoops.h"

DA_VECTOR_CLONES
void daConjugateProduct(const float* __restrict ar, const float* __restrict ai, const float* __restrict br,
                        const float* __restrict bi, float* __restrict re, float* __restrict im, long n, float scale)
{
    for (long i = 0; i < n; ++i) {
        const float realProducts = br[i] * ar[i] + bi[i] * ai[i];
        const float imagProducts = bi[i] * ar[i] - br[i] * ai[i];
        re[i] = realProducts * scale;
        im[i] = imagProducts * scale;
    }
}

DA_VECTOR_CLONES
void daScaleFloats(const float* from, float* to, long n, float scale)
{
    for (long i = 0; i < n; ++i)
        to[i] = from[i] * scale;
}

DA_VECTOR_CLONES
void daSumFloats(const float* __restrict a, const float* __restrict b, float* __restrict out, long n)
{
    for (long i = 0; i < n; ++i)
        out[i] = a[i] + b[i];
}
