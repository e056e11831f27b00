// Making and releasing FFTW single-precision real transform plans, safe from any thread, with
// measured plans kept as FFTW wisdom in the user's cache directory.
//
// A plan of a length FFTW's wisdom knows is the measured plan, made at once from the wisdom; any
// other length gets an estimated plan, which costs a few milliseconds. Measuring (seconds to tens of
// seconds for long transforms) happens only on request, through measureFftPlans (`nvdl plan`), and
// saves the wisdom file, so that every later process plans those lengths at full speed.
//
// The wisdom file is $XDG_CACHE_HOME/nvdl/fftwf-wisdom, else ~/.cache/nvdl/fftwf-wisdom; it is read
// once, at the first planning of the process. NVDL_FFT_WISDOM=0 in the environment turns it off
// (neither read nor written). A file FFTW refuses (damaged, or written by another FFTW build) is
// ignored and replaced at the next save.
//
// FFTW's planner is not reentrant, so every planner call here holds one process-wide lock; executing
// an existing plan on new arrays (fftwf_execute_dft_*) needs no lock.
#pragma once

#include <fftw3.h>

#include <string>

namespace nvdl::analysis {

enum class FftKind { Forward, Backward };  // r2c (input preserved) or c2r (input destroyed)

// An out-of-place plan of length n for arrays aligned as fftwf_malloc aligns them, or for arrays of
// any alignment. Null if n < 1, n > INT_MAX or FFTW cannot plan. Release it with releaseFftPlan.
fftwf_plan makeFftPlan(FftKind kind, long n, bool aligned);
void releaseFftPlan(fftwf_plan plan);

// The wisdom file's path; empty when NVDL_FFT_WISDOM=0 or neither $XDG_CACHE_HOME nor $HOME is set.
std::string fftWisdomPath();

// Whether wisdom holds measured plans of length n for both kinds on aligned arrays.
bool hasMeasuredFftPlans(long n);

enum class FftMeasureResult {
    Known,       // wisdom held both plans already; nothing measured or written
    Measured,    // measured now and the wisdom file written
    NotSaved,    // measured now (kept for this process), but the wisdom file is off or cannot be written
    CannotPlan,  // n out of range or FFTW cannot plan it
};

// Measures the plans of length n of both kinds on aligned arrays unless wisdom knows them, then
// writes the wisdom file whole (a temporary file beside it, renamed over it).
FftMeasureResult measureFftPlans(long n);

// Forgets all wisdom of the process; the file is read again at the next planning. Plans already
// made stay valid.
void forgetFftWisdom();

}  // namespace nvdl::analysis
