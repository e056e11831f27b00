// Helpers shared by the kernel's source files: failure reporting and array allocation.
#pragma once

#include "nvdl/daTypes.h"

// Unit name in the "{unit,line}" tail of every failure message, the same whichever file the check
// sits in.
inline constexpr const char* kDaUnit = "daDspLib";

// Formats a failure message into the error store, sets the flag and returns 1, so a check reads
// `return daFail(...)`.
long daFail(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Allocates `count` floats with malloc; null when the request cannot be met (or its byte count
// does not fit in a long). A count of 0 yields a valid, empty array.
float* daAllocFloats(long count);

// Bytes asked for when allocating `count` floats, as reported in the allocation failure message.
inline long daFloatBytes(long count) { return count * static_cast<long>(sizeof(float)); }

// Frees the output's arrays and leaves it empty (null arrays, length 0).
void daClearOutput(daVector* out);

// What an output keeps when its second array cannot be allocated. The rule is to free the first
// array again; the scalar forms of daAdd, daMultiply and daDivide keep it in the record instead,
// where the record's next use as an output frees it.
enum class daSecondAllocFailure { FreeFirst, KeepFirst };

// Allocates out->real (and out->imag when withImag) for `count` floats and sets out->length.
// On failure the output keeps length 0, the failure is reported for `function` at `line`, and the
// return value is 1.
long daAllocOutput(const char* function, daVector* out, long count, bool withImag, int line,
                   daSecondAllocFailure onSecondFailure = daSecondAllocFailure::FreeFirst);
