// Constants shared by every section of a recording file: versions are decimal dates written as a
// 32-bit integer (20040309 is 9 March 2004), and every table of sections is a 96-byte head followed
// by one 168-byte entry per child.
#pragma once

#include <cstdint>

namespace nvdl::trc {

inline constexpr std::int32_t kBaseVersion = 20040309;  // the oldest readable version of any table

inline constexpr std::int64_t kTocHeadSize = 96;
inline constexpr std::int64_t kTocEntrySize = 168;

// The room of a table of `count` entries.
constexpr std::int64_t tocSize(std::int64_t count) { return kTocHeadSize + kTocEntrySize * count; }

// Section types; 1 and 10 are not used.
enum SectionType : std::int32_t {
    kMeasurementsSection = 2,
    kSubMeasurementsSection = 3,
    kMeasurementSection = 4,
    kSubMeasurementSection = 5,
    kMeasurementHeaderSection = 6,
    kMeasurementDataSection = 7,
    kMeasurementXDataSection = 8,
    kMeasurementYDataSection = 9,
    kRecorderSection = 11,
    kSetupsSection = 12,
    kSetupSection = 13,
    kInputChannels = 14,
    kInputChannel = 15,
    kParametersSection = 16,
    kParameterSection = 17,
    kOutputChannels = 18,
    kOutputChannel = 19,
    kAcquisition = 20,
    kTachoChannels = 21,
    kTachoChannel = 22,
    kThroughput = 23,
    kProcessing = 24,
    kPostProcessing = 25,
    kOctave = 26,
    kResampling = 27,
    kSaving = 28,
    kRecorderSectionHeader = 29,
    kRecorderInputSection = 30,
    kRecorderTachoSection = 31,
    kTrcRoot = 32,
    kTestDefSection = 33,
    kTestDefSectionHeader = 34,
    kTestDefSectionData = 35,
    kSrs = 36,
    kSteppedSine = 37,
    kShockCapture = 38,
    kStrainChannels = 39,
    kStrainChannel = 40,
};

}  // namespace nvdl::trc
