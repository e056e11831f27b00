// Constant-percentage bands from the lines of an equidistant spectrum.
//
// Bands have centres 1000·2^(k·s) Hz, with s = 1 octave for one band per octave and the base-ten
// step log2(1000)/(10·b) for b bands per octave, from 10 Hz up to 20 kHz or the top of the data.
// Line i of `values` stands for the frequency i·deltaFrequency and covers up to (i + 0.5)·
// deltaFrequency; a line across a band edge shares its energy between the two bands in proportion
// to its overlap. `x` and `y` are allocated with malloc for *bandCount floats and belong to the
// caller. Both return 0, or -1 when an array cannot be allocated; data that reach no higher than
// 10 Hz give no bands and no arrays.
#pragma once

namespace nvdl {

// Band values from amplitudes: sqrt(factor · Σ v²·overlap / deltaFrequency).
int octaves_from_spectra(const float* values, int count, float deltaFrequency, int bands, float factor, int* bandCount,
                         float** x, float** y);
// Band values from intensities, keeping the sign: each line adds |v|·v·overlap, and the band value
// is the signed root of the sum over deltaFrequency.
int octaves_from_ai(const float* values, int count, float deltaFrequency, int bands, int* bandCount, float** x, float** y);

}  // namespace nvdl
