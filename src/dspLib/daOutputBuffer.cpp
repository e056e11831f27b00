// Conversion of a signal block into the words of a 24-bit signal output.
#include <cmath>
#include <cstdint>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

namespace {

constexpr double kFullScale = 8388608.0;        // 2^23
constexpr double kPositiveLimit = 4194304.0;    // 2^22
constexpr double kNegativeLimit = -32768.0;
constexpr std::int32_t kPositiveWord = 0x40000000;
constexpr std::int32_t kNegativeWord = INT32_MIN;  // 0x80000000

}  // namespace

long daOutputBuffer(daVector data, float outputLevel, float* scale, std::int32_t* outputNoiseBuffer, float peak)
{
    static const char* const kName = "daOutputBuffer";
    if (outputNoiseBuffer == nullptr)
        return daFail("%s : outputNoiseBuffer (0x%lx) should be pre-allocated {%s,%d}", kName,
                      static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(outputNoiseBuffer)), kDaUnit,
                      __LINE__);
    if (data.length < 0)
        return daFail("%s : Data vector length (%ld) should be >0 {%s,%d}", kName, data.length, kDaUnit, __LINE__);
    if (!(outputLevel > 0.0f))
        return daFail("%s : Data output level (%e) should be >0 {%s,%d}", kName, static_cast<double>(outputLevel),
                      kDaUnit, __LINE__);

    if (daCheckData(kName, {data}, nullptr, __LINE__, false) != 0)
        return 1;

    if (peak == 0.0f) {
        for (long i = 0; i < data.length; ++i)
            if (std::fabs(data.real[i]) > peak)
                peak = std::fabs(data.real[i]);
    }

    // The scale is quantised to 1/256 and never amplifies.
    const double steps = static_cast<double>(peak) * 256.0 / outputLevel + 0.5;
    double factor = steps >= 1.0 && steps < 512.0 ? std::trunc(steps) / 256.0 : 1.0;
    if (factor > 1.0 || factor <= 0.0)
        factor = 1.0;
    if (scale != nullptr)
        *scale = static_cast<float>(factor);

    const double gain = kFullScale / factor;
    for (long i = 0; i < data.length; ++i) {
        const double v = gain * data.real[i];
        std::int32_t word;
        if (v >= kPositiveLimit)
            word = kPositiveWord;
        else if (v <= kNegativeLimit)
            word = kNegativeWord;
        else if (v > kNegativeLimit)
            word = static_cast<std::int32_t>(v) * 256;  // truncated, shifted into the upper 24 bits
        else
            word = 0;  // a NaN sample is silence
        outputNoiseBuffer[i] = word;
    }
    return 0;
}
