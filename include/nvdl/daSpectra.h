// Spectra of the da kernel: transforms between time and frequency and spectral estimates.
//
// A spectrum from daFft is one-sided and peak-scaled: N real samples give N/2 + 1 complex lines;
// a sine of amplitude A on line k reads A there, a constant C reads C at line 0. Line 0 and the last
// line carry half the factor of the lines between them and an imaginary part of exactly 0.
#pragma once

#include "nvdl/Export.h"
#include "nvdl/daTypes.h"

NVDL_API_BEGIN

// Forward transform of a real time vector (imag must be null) into its one-sided spectrum.
// Keeps the set-up of the last transform length for repeated blocks of one size.
long daFft(daVector time, daVector* spectrum);
// Inverse of daFft: a one-sided spectrum of M lines (M > 4) gives 2M - 2 real samples.
long daInverseFft(daVector spectrum, daVector* time);
// Lines first..last of the one-sided spectrum, stored at output index k (callers use first == 0).
long daZoomFft(daVector time, daVector* spectrum, long first, long last);
// Entry point without a body: returns 0 and changes nothing.
long daInverseZoomFft(daVector spectrum, daVector* time, long first, long last);
// Cross-spectral density: conj(a)·b / deltaFrequency.
long daPsd(daVector a, daVector b, daVector* psd, float deltaFrequency);
// Running average of the cross-spectral density, blended with weight fraction for the new value.
long daAvgPsd(daVector a, daVector b, daVector avgPsd, daVector* out, float fraction, float deltaFrequency);
// Frequency response from crosspower and autopower; estimator 2 selects the second form.
long daFrf(daVector cross, daVector autoPower, daVector* frf, long estimator, float threshold);
// Ordinary coherence from crosspower and the two autopowers; real output.
long daCoherence(daVector cross, daVector auto1, daVector auto2, daVector* coherence);

NVDL_API_END
