// The demonstration's test object: a small structure of a few lightly damped modes, driven by a
// random force at one point and measured by three accelerometers, written as a recording of four
// channels (the force first). The modes' frequencies and damping are known, so that an analysis
// of the recording can be held against them.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace nvdl::demo {

constexpr int kResponses = 3;

struct Mode {
    double frequency;  // Hz, undamped
    double damping;    // fraction of critical
    std::array<double, kResponses> shape;  // participation of the mode at each accelerometer
};

struct ModalTest {
    double sampleRate = 4096.0;
    long scanLength = 4096;  // samples per channel in one scan of the recorder
    long scans = 60;
    std::vector<Mode> modes;
    double forceRms = 5.0;       // N
    double noiseFraction = 0.02; // sensor noise on each response, relative to its own rms
    unsigned seed = 20;
};

// The demonstration's structure: three modes well inside the band. `small` records a fifth as long.
ModalTest standardTest(bool small);

// The names of the four channels as they stand in the recording.
std::vector<std::string> channelNames();

// Writes the recording; false with `error` set when the file cannot be written.
bool writeModalRecording(const std::string& path, const ModalTest& test, std::string& error);

}  // namespace nvdl::demo
