// Element loops shared by the spectral estimates and the arithmetic members. The arrays of one call
// never overlap, except where a comment allows it.
#include "dspLib/daVectorLoops.h"

#include "platform/CpuFeatures.h"

namespace {

NVDL_INLINE_LOOP void conjugateProduct(const float* __restrict ar, const float* __restrict ai,
                                       const float* __restrict br, const float* __restrict bi,
                                       float* __restrict re, float* __restrict im, long n, float scale) {
    for (long i = 0; i < n; ++i) {
        const float realProducts = br[i] * ar[i] + bi[i] * ai[i];
        const float imagProducts = bi[i] * ar[i] - br[i] * ai[i];
        re[i] = realProducts * scale;
        im[i] = imagProducts * scale;
    }
}

NVDL_INLINE_LOOP void scaleFloats(const float* from, float* to, long n, float scale) {
    for (long i = 0; i < n; ++i) to[i] = from[i] * scale;
}

NVDL_INLINE_LOOP void sumFloats(const float* __restrict a, const float* __restrict b, float* __restrict out, long n) {
    for (long i = 0; i < n; ++i) out[i] = a[i] + b[i];
}

using ConjugateProduct = void(const float*, const float*, const float*, const float*, float*, float*, long, float);
using ScaleFloats = void(const float*, float*, long, float);
using SumFloats = void(const float*, const float*, float*, long);

NVDL_AVX2 void conjugateProductAvx2(const float* ar, const float* ai, const float* br, const float* bi, float* re,
                                    float* im, long n, float scale) {
    conjugateProduct(ar, ai, br, bi, re, im, n, scale);
}
void conjugateProductBaseline(const float* ar, const float* ai, const float* br, const float* bi, float* re, float* im,
                              long n, float scale) {
    conjugateProduct(ar, ai, br, bi, re, im, n, scale);
}
NVDL_AVX2 void scaleFloatsAvx2(const float* from, float* to, long n, float scale) { scaleFloats(from, to, n, scale); }
void scaleFloatsBaseline(const float* from, float* to, long n, float scale) { scaleFloats(from, to, n, scale); }
NVDL_AVX2 void sumFloatsAvx2(const float* a, const float* b, float* out, long n) { sumFloats(a, b, out, n); }
void sumFloatsBaseline(const float* a, const float* b, float* out, long n) { sumFloats(a, b, out, n); }

ConjugateProduct* const g_conjugateProduct = nvdl::pickBuild<ConjugateProduct>(conjugateProductAvx2, conjugateProductBaseline);
ScaleFloats* const g_scaleFloats = nvdl::pickBuild<ScaleFloats>(scaleFloatsAvx2, scaleFloatsBaseline);
SumFloats* const g_sumFloats = nvdl::pickBuild<SumFloats>(sumFloatsAvx2, sumFloatsBaseline);

}  // namespace

void daConjugateProduct(const float* ar, const float* ai, const float* br, const float* bi, float* re, float* im,
                        long n, float scale) {
    g_conjugateProduct(ar, ai, br, bi, re, im, n, scale);
}

void daScaleFloats(const float* from, float* to, long n, float scale) { g_scaleFloats(from, to, n, scale); }

void daSumFloats(const float* a, const float* b, float* out, long n) { g_sumFloats(a, b, out, n); }
