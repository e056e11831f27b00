// Band-limited noise: equal line amplitudes with random phases, brought to the time domain by an
// inverse transform.
#include <cmath>
#include <cstdlib>

#include "analysis/RealFft.h"
#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

namespace {

constexpr double kRadiansPerDraw = 0.00019175345033112584;  // 2π / 32767

// Truncation of a line position that may be NaN or out of range (infinite sampling frequency).
long lineAt(double position, long highest)
{
    if (!(position >= 0.0))
        return 0;
    if (position > static_cast<double>(highest))
        return highest;
    return static_cast<long>(position);
}

// A draw of the C runtime's shared generator, brought to 0..32767 whatever the runtime's RAND_MAX.
int drawPhaseStep()
{
    constexpr int kDivisor = RAND_MAX / 32768 + 1;
    return std::rand() / kDivisor;
}

}  // namespace

long daWhiteNoise(daVector* out, float* peak, long blocksize, float samplingFrequency, float startFrequency,
                  float endFrequency, float desiredVrms, float burstFraction)
{
    static const char* const kName = "daWhiteNoise";
    const double fs = samplingFrequency;
    const double s = fs * startFrequency;
    const double e = fs * endFrequency;
    if (blocksize < 0)
        return daFail("%s : blocksize (%ld) should be >0 {%s,%d}", kName, blocksize, kDaUnit, __LINE__);
    if (!(fs > 0.0))
        return daFail("%s : samplingFrequency (%e) should be >0 {%s,%d}", kName, fs, kDaUnit, __LINE__);
    if (!(e > 0.0) || e > fs / 2.0)
        return daFail("%s : endFrequency (%e) should be within ]0,%e] {%s,%d}", kName, e, fs / 2.0, kDaUnit,
                      __LINE__);
    if (!(s >= 0.0) || !(s < e))
        return daFail("%s : startFrequency (%e) should be within [0.,%e] {%s,%d}", kName, s, e, kDaUnit, __LINE__);
    if (!(desiredVrms >= 0.0f))
        return daFail("%s : desiredVrms (%e) should be >=0. {%s,%d}", kName, static_cast<double>(desiredVrms),
                      kDaUnit, __LINE__);
    if (!(burstFraction > 0.0f) || burstFraction > 1.0f)
        return daFail("%s : burstFraction (%e) should be within ]0.,1.] {%s,%d}", kName,
                      static_cast<double>(burstFraction), kDaUnit, __LINE__);

    if (daCheckData(kName, {}, out, __LINE__) != 0)
        return 1;

    const long n = blocksize;
    const long half = n / 2;
    daClearOutput(out);
    if (daAllocOutput(kName, out, n, false, __LINE__) != 0)
        return 1;
    // One (re, im) pair per line 0..half.
    const long workFloats = 2 * (half + 1);
    float* work = static_cast<float*>(std::calloc(static_cast<size_t>(workFloats), sizeof(float)));
    if (work == nullptr) {
        daClearOutput(out);
        return daFail("%s : allocation failure for %ld floats {%s,%d}", kName, workFloats, kDaUnit, __LINE__);
    }

    const double blockLength = static_cast<double>(n);
    const long firstLine = lineAt(std::floor(blockLength * s / fs), half);
    long lastLine = lineAt(std::ceil(blockLength * e / fs), half);
    if (lastLine < firstLine)
        lastLine = firstLine;

    // The level rule: each line gets sqrt(desiredVrms / lines); a line between DC and Nyquist is a
    // cosine of that amplitude, so a band clear of both has the mean square desiredVrms / 2.
    const double amplitude = std::sqrt(static_cast<double>(desiredVrms) / static_cast<double>(lastLine - firstLine + 1));
    for (long k = firstLine; k <= lastLine; ++k) {
        const int draw = drawPhaseStep();  // drawn for every line, also where the phase is forced to 0
        const double phase = (k == 0 || k == half) ? 0.0 : draw * kRadiansPerDraw;
        work[2 * k] = static_cast<float>(amplitude * std::cos(phase));
        work[2 * k + 1] = static_cast<float>(amplitude * std::sin(phase));
    }

    // Pack into the transform's half-complex order. The backward transform doubles every line between
    // DC and Nyquist, hence the halving. The last position is left as the pairs put it: it keeps the
    // unhalved imaginary part of the line below Nyquist, and the Nyquist line itself is not used.
    for (long k = 1; k <= half - 1; ++k) {
        work[2 * k - 1] = 0.5f * work[2 * k];
        work[2 * k] = 0.5f * work[2 * k + 1];
    }

    float* time = imsl_f_fft_real(n, work, ImslFftDirection::Backward);
    std::free(work);
    if (time == nullptr) {
        daClearOutput(out);
        return daFail("%s : Inverse FFT (imsl_f_fft_real) failed {%s,%d}", kName, kDaUnit, __LINE__);
    }

    long burst = lineAt(blockLength * burstFraction + 0.5, n);
    double largest = 0.0;
    for (long i = 0; i < n; ++i) {
        if (i < burst) {
            out->real[i] = time[i];
            if (std::fabs(time[i]) > largest)
                largest = std::fabs(time[i]);
        } else {
            out->real[i] = 0.0f;
        }
    }
    std::free(time);
    if (peak != nullptr)
        *peak = static_cast<float>(largest);
    return 0;
}
