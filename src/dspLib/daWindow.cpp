// Window generation. Every window is periodic: its phase runs over i/N, not i/(N-1), so that the
// block repeats seamlessly.
#include <cmath>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

namespace {

constexpr double kTwoPi = 6.283185308;
constexpr double kPi = 3.141592654;

// Truncates toward zero like a plain cast, after clamping into [low, high] so that huge, infinite or
// NaN products cannot overflow the conversion (NaN gives low).
long truncateWithin(double value, double low, double high)
{
    if (!(value >= low))
        return static_cast<long>(low);
    if (value > high)
        return static_cast<long>(high);
    return static_cast<long>(value);
}

// A rectangle of the given width starting at `offset` of the block, two samples early, falling to
// zero over a half cosine whose length is a fifth of the width's percentage part.
void fillForceWindow(float* w, long n, float amplitude, float parameter, float offset)
{
    const double percentage = std::floor(parameter) * 0.01;
    const double widthFraction = percentage + std::fmod(static_cast<double>(parameter), 1.0);
    const float fallFraction = static_cast<float>(0.2 * percentage);
    const double blockLength = static_cast<double>(n);

    const long width = truncateWithin(blockLength * widthFraction, -1.0, blockLength + 1.0);

    long start = truncateWithin(blockLength * offset, -1.0, blockLength + 2.0) - 2;
    if (start < 0)
        start = 0;
    if (start > n - 1)
        start = n - 1;

    long end = start + width - 1;
    if (end <= start)
        end = start;
    else if (end > n - 1)
        end = n - 1;

    // The product is formed in single precision, as the fall fraction is held.
    long taper = truncateWithin(static_cast<float>(n) * fallFraction, -1.0, blockLength + 1.0);
    if (taper == 0)
        taper = n / 100;
    if (taper >= n - end)
        taper = n - end - 1;

    for (long i = 0; i < n; ++i) {
        double value = 0.0;
        if (i < start)
            value = 0.0;
        else if (i <= end)
            value = 1.0;
        else if (i < end + taper)
            value = 0.5 * (std::cos(static_cast<double>(i - end) * kPi / static_cast<double>(taper)) + 1.0);
        w[i] = static_cast<float>(amplitude * value);
    }
}

double shapeAt(daeWindow type, long i, long n, float parameter)
{
    const double position = static_cast<double>(i);
    const double length = static_cast<double>(n);
    const double theta = position * kTwoPi / length;
    switch (type) {
    case daeHanning: {
        const double s = std::sin(position * kPi / length);
        return s * s;
    }
    case daeHamming:
        return 0.54 - 0.46 * std::cos(theta);
    case daeExponential:
        return std::exp(-position * parameter / length);
    case daeFlattop:
        return (1.0 - 1.933 * std::cos(theta) + 1.286 * std::cos(2.0 * theta) - 0.388 * std::cos(3.0 * theta) +
                0.032 * std::cos(4.0 * theta)) /
               4.637;
    case daeBlackman:
        return 0.42 - 0.5 * std::cos(theta) + 0.08 * std::cos(2.0 * theta);
    case daeKaiserBessel:
        return (1.0 - 1.24 * std::cos(theta) + 0.244 * std::cos(2.0 * theta) - 0.00305 * std::cos(3.0 * theta)) *
               0.40207472;
    case daeUniform:
    case daeForce:
        break;
    }
    return 1.0;
}

}  // namespace

long daWindow(daeWindow type, daVector* out, long size, float amplitude, float parameter, float offset)
{
    static const char* const kName = "daWindow";
    if (type < daeUniform || type > daeKaiserBessel)
        return daFail("%s : Window type (%d) outside valid range [%d,%d] {%s,%d}", kName, static_cast<int>(type), -1,
                      8, kDaUnit, __LINE__);
    if (size < 0)
        return daFail("%s : Window size (%ld) should be >0 {%s,%d}", kName, size, kDaUnit, __LINE__);

    if (daCheckData(kName, {}, out, __LINE__) != 0)
        return 1;

    daClearOutput(out);
    if (daAllocOutput(kName, out, size, false, __LINE__) != 0)
        return 1;

    if (type == daeForce) {
        fillForceWindow(out->real, size, amplitude, parameter, offset);
        return 0;
    }
    for (long i = 0; i < size; ++i)
        out->real[i] = static_cast<float>(amplitude * shapeAt(type, i, size, parameter));
    return 0;
}
