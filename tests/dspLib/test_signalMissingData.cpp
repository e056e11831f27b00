// Signal functions refuse records without data and missing output records instead of crashing.
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(SignalFunctions, MissingDataOrOutputIsRefused)
{
    std::vector<float> two = {100.0f, 200.0f};
    const daVector noData = {nullptr, nullptr, 2};
    OwnedVector out;
    std::vector<std::int32_t> words(2);
    float value = 0.0f;
    daRmsSource source = {noData, 1001, 1100, 1301, 1.0f, 0.0f, false, false, nullptr};
    std::vector<FailureCase> cases = {
        {"window", [&] { return daWindow(daeHanning, nullptr, 4, 1, 0, 0); }, "daWindow : Output vector is null"},
        {"integration", [&] { return daIntegrationFreqDomain(noData, out.out(), view(two), 1); },
         "daIntegrationFreqDomain : Input vector has no data"},
        {"differentiation", [&] { return daDifferentiationFreqDomain(view(two), nullptr, view(two), 1); },
         "daDifferentiationFreqDomain : Output vector is null"},
        {"noise", [&] { return daWhiteNoise(nullptr, nullptr, 8, 1, 0, 0.5f, 1, 1); },
         "daWhiteNoise : Output vector is null"},
        {"output buffer", [&] { return daOutputBuffer(noData, 1.0f, &value, words.data(), 0.0f); },
         "daOutputBuffer : Input vector has no data"},
        {"histogram", [&] { return daHistogram(noData, out.out(), 2, 0, 1, 1); },
         "daHistogram : Input vector has no data"},
        {"weighting", [&] { return daAcousticWeight(view(two), nullptr, 1); },
         "daAcousticWeight : Output vector is null"},
        {"phase", [&] { return daPhaseUnwrappedDegrees(noData, out.out()); },
         "daPhaseUnwrappedDegrees : Input vector has no data"},
        {"rms", [&] { return daRms(noData, &value, 0, 1.0f); }, "daRms : Input vector has no data"},
        {"measurement rms", [&] { return daRmsOfMeasurement(source, 0, 1, &value); },
         "daRmsOfMeasurement : Input vector has no data"},
        {"measurement rms result", [&] { return daRmsOfMeasurement(source, 0, 1, nullptr); },
         "daRmsOfMeasurement : rms pointer is null"},
    };
    expectFailures(cases);
}
