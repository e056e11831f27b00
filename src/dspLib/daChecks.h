// Input checks shared by the kernel's vector functions. Each returns 0 when the inputs pass and
// otherwise reports the failure for `function` at the caller's `line` and returns 1.
#pragma once

#include <initializer_list>

#include "dspLib/daFailure.h"

// A vector's real data must be present whenever it has elements.
inline bool daHasData(const daVector& v) { return v.length == 0 || v.real != nullptr; }

// Missing data in any of the inputs, then a missing output record (out may be null only when
// `needsOutput` is false).
long daCheckData(const char* function, std::initializer_list<daVector> inputs, const daVector* out, int line,
                 bool needsOutput = true);

// One-vector members: a negative length, then missing data or a missing output record.
long daCheckOne(const char* function, const daVector& a, const daVector* out, int line);

// Two-vector members: a negative first length, unequal lengths, then missing data or output.
long daCheckTwo(const char* function, const daVector& a, const daVector& b, const daVector* out, int line);

// The start of the element-wise two-vector members: the checks, then the output cleared and
// allocated, with an imaginary part when either input has one. 1 when a check or the allocation failed.
long daBeginTwo(const char* function, const daVector& a, const daVector& b, daVector* out, int line);

// Imaginary part of element i, 0 where the vector has none.
inline double daImagAt(const daVector& v, long i) { return v.imag != nullptr ? v.imag[i] : 0.0; }
