// Real discrete Fourier transform in the packed half-complex layout the kernel works in.
//
// Forward, for n real samples p, the result q holds X(k) = sum p(t)·exp(-2πi·k·t/n), unnormalised:
//   q[0] = X(0); q[2k-1] = Re X(k), q[2k] = Im X(k) for 1 <= k < n/2 (every k with 2k < n);
//   q[n-1] = Re X(n/2) when n is even.
// Backward takes the same layout and gives
//   p(t) = q[0] + 2·sum(q[2k-1]·cos(2πkt/n) - q[2k]·sin(2πkt/n)) + (-1)^t·q[n-1] (last term for even n),
// also unnormalised, so forward followed by backward multiplies by n.
//
// Every length n >= 1 is accepted. A length with a measured plan in the FFTW wisdom file runs on
// it; any other is planned by FFTW's estimating planner (a few milliseconds even for millions of
// samples, where measuring takes many seconds; `nvdl plan` measures lengths and saves the wisdom).
// Plans are kept in a small cache by length, one per thread, so repeated and alternating block
// sizes reuse them, and transforms may run in several threads at once.
#pragma once

// Set-up for transforms of one length, with a work area for transforms that return their result
// in it. One block, released with free().
struct ImslFftRealSetup {
    long n;
    float* work;  // n + 2 floats inside the same block, aligned for the transform
};

enum class ImslFftDirection { Forward, Backward };

// Prepares transforms of length n (builds and caches the plan, allocates the work area). Null if
// n < 1 or on allocation failure.
ImslFftRealSetup* imsl_f_fft_real_init(long n);

// Transforms the n floats of p (left unchanged) and returns a new array of n floats, to be released
// with free(), or null when n < 1, a setup of another length is given, or memory runs out. A setup is
// only an optimisation: the numbers are the same with or without it.
float* imsl_f_fft_real(long n, const float* p, ImslFftDirection direction = ImslFftDirection::Forward,
                       const ImslFftRealSetup* setup = nullptr);

// Forward transform of the n floats of p into the work area of `setup` (which must be of length n),
// without allocating anything: the result a repeated block size needs. Returns the packed result
// (n floats), valid until the next transform through that set-up, or null on failure.
const float* imsl_f_fft_real_into_setup(long n, const float* p, ImslFftRealSetup* setup);
