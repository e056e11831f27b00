// Writes a recording for the Python tests: make_recording PATH float|int16 BLOCK SCANS.
// Two used inputs ("Force" in N with range 5, "Accel" in V with 100 mV/EU and range 2) around an
// unused one, and a tacho ending at 3000 rpm; the stored value of channel n (from 1, the tacho being
// 4) at sample i is n * 100 + (i * 37) % 101 - 50. One stored measurement "Stored" of 16 values.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "access/RecordingBuilder.h"

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: make_recording PATH float|int16 BLOCK SCANS\n");
        return 2;
    }
    nvdl::testing::RecordingPlan plan;
    plan.floats = std::string(argv[2]) == "float";
    plan.block = std::atol(argv[3]);
    plan.scans = std::atol(argv[4]);
    plan.sampleFrequency = 1000.0f;
    plan.inputs = {{"Force", 5.0f, true, "N", 1.0f, "V/EU"}, {"Spare", 1.0f, false},
                   {"Accel", 2.0f, true, "V", 100.0f, "mV/EU"}};
    plan.tachoEndRpm = {3000.0f};
    plan.stored = {{"Stored", 16, false, 1}};
    plan.sample = [](long n, std::int64_t i) { return static_cast<float>(n * 100 + (i * 37) % 101 - 50); };
    if (!nvdl::testing::writeRecording(argv[1], plan)) {
        std::fprintf(stderr, "%s: cannot be written\n", argv[1]);
        return 1;
    }
    return 0;
}
