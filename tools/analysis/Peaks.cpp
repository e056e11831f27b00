#include "analysis/Peaks.h"

#include <algorithm>
#include <cmath>

namespace nvdl::analysis {

std::vector<double> magnitudes(IMeasurement* spectrum) {
    LONG size = 0;
    SHORT complex = 0;
    spectrum->get_Size(&size);
    spectrum->get_Complex(&complex);
    if (size < 1) return {};
    std::vector<float> re(static_cast<std::size_t>(size)), im(re.size());
    if (FAILED(spectrum->GetYValues(0, size, re.data(), complex ? im.data() : nullptr))) return {};
    std::vector<double> out(re.size());
    for (std::size_t i = 0; i < re.size(); ++i) out[i] = std::hypot(static_cast<double>(re[i]), complex ? im[i] : 0.0);
    return out;
}

bool findPeak(IMeasurement* spectrum, double low, double high, Peak& peak) {
    float start = 0.0f, step = 0.0f;
    spectrum->get_XStart(&start);
    spectrum->get_XIncrement(&step);
    const std::vector<double> m = magnitudes(spectrum);
    if (m.empty() || !(step > 0.0f)) return false;
    const long first = std::max(0L, static_cast<long>(std::ceil((low - start) / step)));
    const long last = std::min(static_cast<long>(m.size()) - 1, static_cast<long>(std::floor((high - start) / step)));
    if (first > last) return false;
    long best = first;
    for (long i = first; i <= last; ++i)
        if (m[static_cast<std::size_t>(i)] > m[static_cast<std::size_t>(best)]) best = i;
    double offset = 0.0;
    if (best > 0 && best + 1 < static_cast<long>(m.size())) {
        const double a = m[static_cast<std::size_t>(best - 1)], b = m[static_cast<std::size_t>(best)],
                     c = m[static_cast<std::size_t>(best + 1)];
        const double curve = a - 2.0 * b + c;
        if (curve < 0.0) offset = std::clamp(0.5 * (a - c) / curve, -0.5, 0.5);
    }
    peak.line = best;
    peak.frequency = start + (best + offset) * static_cast<double>(step);
    peak.magnitude = m[static_cast<std::size_t>(best)];
    return true;
}

}  // namespace nvdl::analysis
