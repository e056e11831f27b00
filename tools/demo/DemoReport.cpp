#include "demo/DemoReport.h"

#include <cmath>
#include <cstdio>

#include "analysis/Peaks.h"

namespace nvdl::demo {

namespace {

constexpr double kSearchWidth = 0.08;  // around a true frequency, relative
constexpr double kReferenceAcceleration = 1e-6;  // m/s², the usual reference of acceleration levels
constexpr int kBandsPerLine = 4;

std::string printed(const char* format, auto... values) {
    char line[160];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

}  // namespace

bool findModes(const ModalTest& test, const std::vector<IMeasurement*>& frfs,
               const std::vector<IMeasurement*>& coherences, std::vector<ModeFound>& modes) {
    modes.clear();
    for (const Mode& mode : test.modes) {
        ModeFound found;
        found.trueFrequency = mode.frequency;
        double highest = -1.0;
        for (std::size_t r = 0; r < frfs.size(); ++r) {
            analysis::Peak peak;
            if (!analysis::findPeak(frfs[r], mode.frequency * (1.0 - kSearchWidth), mode.frequency * (1.0 + kSearchWidth),
                                    peak))
                return false;
            if (peak.magnitude <= highest) continue;
            highest = peak.magnitude;
            found.peakFrequency = peak.frequency;
            found.response = r;
            float coherence = 0.0f;
            coherences[r]->get_YReal(peak.line, &coherence);
            found.coherence = coherence;
        }
        modes.push_back(found);
    }
    return true;
}

std::string modeTable(const std::vector<ModeFound>& modes, const std::vector<std::string>& responseNames) {
    std::string out = "mode   true Hz   peak of |H1| Hz   error %   coherence   response\n";
    for (std::size_t i = 0; i < modes.size(); ++i) {
        const ModeFound& m = modes[i];
        const double error = 100.0 * (m.peakFrequency - m.trueFrequency) / m.trueFrequency;
        out += printed("%4zu %9.2f %17.2f %9.3f %11.4f   %s\n", i + 1, m.trueFrequency, m.peakFrequency, error,
                       m.coherence, responseNames[m.response].c_str());
    }
    return out;
}

std::string bandTable(IMeasurement* bands) {
    LONG size = 0;
    bands->get_Size(&size);
    if (size < 1) return "(no bands)\n";
    std::vector<float> centres(static_cast<std::size_t>(size)), levels(centres.size());
    bands->GetXValues(0, size, centres.data());
    bands->GetYValues(0, size, levels.data(), nullptr);
    std::string out;
    for (LONG i = 0; i < size; ++i) {
        const double level = levels[static_cast<std::size_t>(i)];
        const double dB = level > 0.0 ? 20.0 * std::log10(level / kReferenceAcceleration) : -INFINITY;
        out += printed("%7.1f Hz %9.4f %6.1f dB", static_cast<double>(centres[static_cast<std::size_t>(i)]), level, dB);
        out += (i + 1) % kBandsPerLine == 0 || i + 1 == size ? "\n" : "   ";
    }
    return out;
}

}  // namespace nvdl::demo
