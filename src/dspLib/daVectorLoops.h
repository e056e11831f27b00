// Element loops of the kernel that run on every block of a block-wise analysis. Each is built twice,
// for the baseline instruction set and for AVX2, and the build the processor runs is picked once at
// load (platform/CpuFeatures.h).
#pragma once

// re + i·im = conj(a)·b · scale, over n complex lines given as separate real and imaginary arrays,
// in single precision. Each product is rounded before it is summed (no fused multiply-add), so the
// imaginary part of a spectrum's product with itself is exactly zero.
void daConjugateProduct(const float* ar, const float* ai, const float* br, const float* bi, float* re, float* im,
                        long n, float scale);

// to[i] = from[i] · scale for n floats (from and to may be the same array).
void daScaleFloats(const float* from, float* to, long n, float scale);

// out[i] = a[i] + b[i]. A float sum rounds as the exact sum rounded once.
void daSumFloats(const float* a, const float* b, float* out, long n);
