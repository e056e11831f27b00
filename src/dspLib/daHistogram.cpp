// Histogram counting with accumulation across calls.
#include <cstdlib>
#include <cstring>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

long daHistogram(daVector a, daVector* out, long nrClasses, float minValue, float maxValue, int clip)
{
    static const char* const kName = "daHistogram";
    if (a.length < 0)
        return daFail("%s : inputVector.length (%ld) should be >0 {%s,%d}", kName, a.length, kDaUnit, __LINE__);
    if (nrClasses < 2)
        return daFail("%s : nrClasses (%ld) should be >1 {%s,%d}", kName, nrClasses, kDaUnit, __LINE__);
    if (!(maxValue > minValue))
        return daFail("%s : maxValue (%e) should be greater than minValue (%e) {%s,%d}", kName,
                      static_cast<double>(maxValue), static_cast<double>(minValue), kDaUnit, __LINE__);

    if (daCheckData(kName, {a}, out, __LINE__) != 0)
        return 1;

    std::free(out->imag);
    out->imag = nullptr;
    // Counts of the same class count are kept and added to: that is the running histogram.
    if (out->length != nrClasses || out->real == nullptr) {
        daClearOutput(out);
        if (daAllocOutput(kName, out, nrClasses, false, __LINE__) != 0)
            return 1;
        std::memset(out->real, 0, static_cast<size_t>(nrClasses) * sizeof(float));
    }

    const long top = nrClasses - 1;
    const double classesPerUnit = static_cast<double>(top) / (static_cast<double>(maxValue) - minValue);
    for (long i = 0; i < a.length; ++i) {
        const double p = (static_cast<double>(a.real[i]) - minValue) * classesPerUnit;
        long index;
        if (p < 0.0) {
            if (clip == 0)
                continue;
            index = 0;
        } else if (p > static_cast<double>(top)) {
            if (clip == 0)
                continue;
            index = top;
        } else if (p >= 0.0) {
            index = static_cast<long>(p);  // truncation: the top class only takes exact hits at maxValue
        } else {
            continue;  // a NaN sample belongs to no class
        }
        out->real[index] += 1.0f;
    }
    return 0;
}
