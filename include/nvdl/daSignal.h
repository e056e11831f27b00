// Signal functions of the da kernel: windows and their corrections, integration and differentiation
// of spectra, band-limited noise, the integer output buffer of a signal source, histograms, acoustic
// weighting curves, phase and RMS.
//
// They keep the records, the ownership rule and the error store of daTypes.h: 0 for success, 1 for
// failure with the message in the store. daAcousticWeight is the one deviation (see there);
// daHistogram and daAcousticWeight reuse an output array of the right length instead of clearing it.
#pragma once

#include <cstdint>

#include "nvdl/Export.h"
#include "nvdl/daTypes.h"

NVDL_API_BEGIN

// Window shapes of daWindow.
enum daeWindow : int {
    daeUniform = 1,
    daeHanning = 2,
    daeHamming = 3,
    daeExponential = 4,
    daeForce = 5,
    daeFlattop = 6,
    daeBlackman = 7,
    daeKaiserBessel = 8,
};

// What a measurement's window type code (1301 "Uniform" ... 1309 "Force/Exponential") means to the
// kernel: the shape to generate, the height of an amplitude-corrected window, and the energy
// correction that turns a spectrum of windowed data into power figures.
struct daWindowCorrection {
    daeWindow window;
    float amplitudeCorrection;
    float bandwidthCorrectionFactor;
};

// The correction of a window type code; "Force/Exponential" and unknown codes give the uniform one.
daWindowCorrection daGetWindowCorrection(long windowType);

// A periodic window of `size` samples scaled by `amplitude`. `parameter` is the decay of the
// exponential window, or the width of the force window as a percentage (whole part) plus a fraction
// (fractional part); `offset` is the fraction of the block where the force window starts.
// Only out->real is allocated.
long daWindow(daeWindow type, daVector* out, long size, float amplitude, float parameter, float offset);

// Divides a spectrum by (j·2π·f)^exponent, with f from frequency.real; a line at f <= 0 passes
// unchanged. exponent must be at least 1. out->imag is always allocated.
long daIntegrationFreqDomain(daVector a, daVector* out, daVector frequency, long exponent);
// Multiplies a spectrum by (j·2π·f)^exponent; otherwise as daIntegrationFreqDomain.
long daDifferentiationFreqDomain(daVector a, daVector* out, daVector frequency, long exponent);

// One real block of `blocksize` noise samples with equal line amplitudes and random phases between
// startFrequency and endFrequency, both given as fractions of samplingFrequency. Each line has the
// amplitude sqrt(desiredVrms / lines), so a band clear of DC and Nyquist has the RMS
// sqrt(desiredVrms / 2). Only the first burstFraction of the block is kept, the rest is 0. Phases
// come from the C runtime's rand(), which this function never seeds. *peak (when peak is not null)
// receives the largest absolute sample.
long daWhiteNoise(daVector* out, float* peak, long blocksize, float samplingFrequency, float startFrequency,
                  float endFrequency, float desiredVrms, float burstFraction);

// Converts data.real into 32-bit words for a 24-bit signal output (sample in the upper 24 bits),
// into outputNoiseBuffer, which the caller allocates with data.length words. A peak of exactly 0 is
// taken from the data. The scale applied (a multiple of 1/256 in ]0, 1]) is stored in *scale when
// scale is not null. Allocates nothing.
long daOutputBuffer(daVector data, float outputLevel, float* scale, std::int32_t* outputNoiseBuffer, float peak);

// Counts a.real into nrClasses classes spanning minValue..maxValue. When out already holds
// nrClasses counts they are added to, which makes a running histogram; otherwise fresh zeroed counts
// are allocated. With clip non-zero, samples below or above the range go into the first or last
// class; otherwise they are dropped. out->imag is always freed.
long daHistogram(daVector a, daVector* out, long nrClasses, float minValue, float maxValue, int clip);

// Gain of an acoustic weighting at the frequencies of frequency.real. type 2, 3, 4 select B, C, D
// as amplitude gains and 12, 13, 14 as power gains; any other type up to 10 is A as amplitude gain,
// above 10 A as power gain. Outside 8 Hz..25 kHz the gain is 0. out->real is reused when its length
// matches. A negative length returns the general failure status (negative), not 1.
long daAcousticWeight(daVector frequency, daVector* out, long type);

// Phase in degrees in the range -160..200; 0 throughout for a real input. Real output.
long daPhaseUnwrappedDegrees(daVector a, daVector* out);

// sqrt(scale · sum): with amplitudes 0 the sum is of re² + im²; otherwise of the amplitude of each
// complex element and of the value itself (sign kept) for an element with zero imaginary part.
// A negative scale · sum has no root: *rms is then NaN.
long daRms(daVector a, float* rms, int amplitudes, float scale);

// What the RMS of a measurement depends on.
struct daRmsSource {
    daVector y;                        // the samples
    long functionType;                 // function type code, 1001 "Time record" ...
    long xAxisType;                    // X axis type code, 1100 "Equidistant" ...
    long windowType;                   // window type code, 1301 "Uniform" ...
    float xIncrement;                  // line spacing df
    float firstX;                      // X value of element 0
    bool frequencyAxis;                // the X dimension is 1/s
    bool loudnessAxes;                 // X dimension "Frequency" or "1/s" and Y dimension "Loudness"
    float* bandwidthCorrectionFactor;  // the measurement's own factor: 0 is replaced by 1.0 there
};

// The RMS of elements first..last of a measurement, scaled by its function type. On entry *rms holds
// the amplitude convention code (701 for RMS amplitudes, 703 for peak-to-peak, anything else for
// peak); it is cleared and then receives the result. A DC line on a frequency axis is taken out of
// the sum, with its neighbour (three neighbours after a flattop window), and added back as its own
// power. A loudness curve gives its integral over frequency instead of an RMS.
long daRmsOfMeasurement(const daRmsSource& source, long first, long last, float* rms);

NVDL_API_END
