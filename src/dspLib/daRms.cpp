// RMS sum of a vector.
#include <cmath>
#include <limits>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

long daRms(daVector a, float* rms, int amplitudes, float scale)
{
    if (a.length < 0)
        return daFail("%s : Input vector1 length (%ld) should be >0 {%s,%d}", "daRms", a.length, kDaUnit, __LINE__);

    if (daCheckData("daRms", {a}, nullptr, __LINE__, false) != 0)
        return 1;

    double sum = 0.0;
    for (long i = 0; i < a.length; ++i) {
        const double re = a.real[i];
        const double im = a.imag != nullptr ? a.imag[i] : 0.0;
        if (amplitudes == 0)
            sum += re * re + im * im;
        else if (im != 0.0)
            sum += std::sqrt(re * re + im * im);
        else
            sum += re;  // a real power value is taken as it stands, sign included
    }

    const double power = static_cast<double>(scale) * sum;
    // Power data are never negative; a negative total has no meaningful root.
    const double result = power >= 0.0 ? std::sqrt(power) : std::numeric_limits<double>::quiet_NaN();
    if (rms != nullptr)
        *rms = static_cast<float>(result);
    return 0;
}
