// What the demonstration prints: the modes found from the FRF peaks against the true ones, with the
// coherence at each peak, and the band levels of one response.
#pragma once

#include <string>
#include <vector>

#include "demo/ModalRecording.h"
#include "nvdl/IMeasurement.h"

namespace nvdl::demo {

struct ModeFound {
    double trueFrequency = 0.0;
    double peakFrequency = 0.0;  // of |H1|, refined between lines
    double coherence = 0.0;      // at the peak's line
    std::size_t response = 0;    // the response whose FRF shows the mode highest
};

// Each mode's peak, looked for within 8% of its true frequency in each response's FRF; the
// response with the highest peak stands for the mode. False when an FRF has no line there.
bool findModes(const ModalTest& test, const std::vector<IMeasurement*>& frfs,
               const std::vector<IMeasurement*>& coherences, std::vector<ModeFound>& modes);

// The table of modes, one line each: mode, true Hz, peak Hz, error %, coherence, response name.
std::string modeTable(const std::vector<ModeFound>& modes, const std::vector<std::string>& responseNames);

// The band levels of a band record, as root mean square values and in dB re 1 µm/s², several
// bands to a line.
std::string bandTable(IMeasurement* bands);

}  // namespace nvdl::demo
