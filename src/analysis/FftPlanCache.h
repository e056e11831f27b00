// Per-thread cache of FFTW single-precision real transform plans, keyed by length.
#pragma once

#include <fftw3.h>

namespace nvdl::analysis {

// Plans for one length. They were created on arrays aligned as fftwf_malloc aligns them, out of
// place; the unaligned variants serve arrays of any other alignment. Every plan is created on first
// use and stays until its length is evicted from the cache.
struct FftPlans {
    long n = 0;
    fftwf_plan forward = nullptr;           // r2c, n reals -> n/2 + 1 complex
    fftwf_plan backward = nullptr;          // c2r, n/2 + 1 complex -> n reals (destroys its input)
    fftwf_plan forwardUnaligned = nullptr;
    fftwf_plan backwardUnaligned = nullptr;
};

// The calling thread's plans of length n, its most recently used lengths kept. Null if n < 1 or
// n > INT_MAX. The returned record stays valid until the thread's next call.
FftPlans* fftPlansFor(long n);

// The forward or backward plan of `plans` for arrays of the given alignment, created on first use.
// Null if FFTW cannot plan.
fftwf_plan forwardPlan(FftPlans& plans, bool aligned);
fftwf_plan backwardPlan(FftPlans& plans, bool aligned);

}  // namespace nvdl::analysis
