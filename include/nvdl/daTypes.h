// Records and error store of the da signal kernel.
//
// daVector is a split-complex float vector: `real` and `imag` each hold `length` contiguous floats;
// a null `imag` means every imaginary part is zero. Inputs are passed by value and are views: the
// kernel never frees or changes what they point at. Outputs are passed by pointer and belong to the
// caller, who hands them in either zeroed or holding arrays from an earlier kernel call. Every
// producing function frees the output's arrays on entry, after its input checks have passed, and
// allocates fresh ones with malloc; the caller owns them after a successful return and releases them
// with free. An output must never share arrays with an input.
//
// Every kernel function returns 0 on success and 1 on failure. A failure sets the process-wide
// error flag and message; the kernel never clears the flag, so it means "some call has failed since
// the last daClearErrorFlag". The store is unsynchronised: one caller at a time.
#pragma once

#include "nvdl/Export.h"

NVDL_API_BEGIN

struct daVector {
    float* real;
    float* imag;
    long length;
};

struct daComplex {
    float real;
    float imag;
};

// Sets the flag and copies at most 999 characters of text into the message buffer.
long daSetError(const char* text);
// Stores the flag (0 or 1) in *flag.
long daGetErrorFlag(int* flag);
// Copies at most min(size - 1, 999) characters of the message into dst and terminates it there.
// The flag is left as it is.
long daGetError(char* dst, long size);
// Clears the flag; the message text stays readable.
long daClearErrorFlag(void);

NVDL_API_END
