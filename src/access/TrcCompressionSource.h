// What the two halves of the reduced read share: the source as the preparation found it, and the
// description of one step.
#pragma once

#include <cstdint>

#include "access/TrcCompression.h"

namespace nvdl::trc {
class CTrcRecorderChannelSection;
class CTrcMeasurementDataSection;
}  // namespace nvdl::trc

namespace nvdl::access {

struct CTrcCompression::Source {
    bool recorded = true;
    // A recorded channel: its part of the scan stream and the stream's layout.
    trc::CTrcRecorderChannelSection* part = nullptr;
    std::int64_t blocksize = 0;
    long sampleBytes = 4;
    std::int64_t scans = 0;
    SampleConversion conversion;
    // A stored measurement (or sub-measurement): its data and the shape of its curves.
    trc::CTrcMeasurementDataSection* data = nullptr;
    std::int64_t curveSize = 0;
    bool hasX = false;
    bool complex = false;
};

struct CTrcCompression::Step {
    std::int64_t length;
    long elementSize;
    SampleConversion conversion;
    bool reduce;             // a pair per step, else the values themselves
    std::int64_t pairAt;     // where the step's pair goes in the output
};

}  // namespace nvdl::access
