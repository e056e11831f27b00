// Elementary members of the da kernel: copy, arithmetic, running sum and difference, amplitude.
//
// Scalar forms of daDivide take the scalar as the numerator. A denominator of exactly zero gives 0
// for that element (no error, the loop goes on). Where an input's imag is null its imaginary parts
// read as 0; a result has an imag array when the rule of each function below says so.
#pragma once

#include "nvdl/Export.h"
#include "nvdl/daTypes.h"

NVDL_API_BEGIN

// a; imag copied when a has one.
long daCopy(daVector a, daVector* out);
// s + a: the scalar adds to the real part only; imag copied unchanged when a has one.
long daAdd(float s, daVector a, daVector* out);
// c + a; imag always present.
long daAdd(daComplex c, daVector a, daVector* out);
// a + b; imag present when either input has one.
long daAdd(daVector a, daVector b, daVector* out);
// x·a + y·b; imag present when either input has one.
long daLinearCombination(daVector a, daVector b, daVector* out, float x, float y);
// s·a; imag scaled when a has one.
long daMultiply(float s, daVector a, daVector* out);
// c·a as complex product; imag always present.
long daMultiply(daComplex c, daVector a, daVector* out);
// a·b as complex product; imag present when either input has one.
long daMultiply(daVector a, daVector b, daVector* out);
// s / a; imag present when a has one.
long daDivide(float s, daVector a, daVector* out);
// c / out: the denominator is read from the output arrays just allocated, not from a, so the result
// carries no meaning; kept as an entry point of the kernel.
long daDivide(daComplex c, daVector a, daVector* out);
// a / b; imag present when either input has one.
long daDivide(daVector a, daVector b, daVector* out);
// Complex conjugate: real copied, imag negated when present.
long daComplexConjugate(daVector a, daVector* out);
// Running sum of real (and imag when present).
long daSum(daVector a, daVector* out);
// First difference of real (and imag when present); element 0 copied. a must not be empty.
long daDifference(daVector a, daVector* out);
// sqrt(re² + im²); real output.
long daAmplitude(daVector a, daVector* out);
// Largest amplitude and the index of its first occurrence; 0 and 0 for an empty or all-zero vector.
long daMaxAmpl(daVector a, float* peak, long* index);

NVDL_API_END
