// Recordings for the tests of the recording access: a plan (channels, tachos, sample format, scans,
// stored measurements) written through the recording file layer, with every sample given by a
// function of channel and position so that a test can compute what it must read back.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/LittleEndian.h"
#include "recording/Trc.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcSubMeasurement.h"
#include "recording/TrcSubMeasurements.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcTestDefinition.h"

namespace nvdl::testing {

struct InputPlan {
    std::string name;
    float range = 10.0f;
    bool used = true;
    std::string unit = "V";
    float sensitivity = 1.0f;
    std::string calibrationType = "V/EU";
    float preGain = 0.0f;
};

struct StoredPlan {
    std::string name;
    long size = 0;
    bool complex = false;
    long axis = 1;  // 1102 to 1104 carry an X table
    long subs = 0;  // real sub-measurements of the same size, values storedValue(measurement * 100 + k, i)
};

struct RecordingPlan {
    bool floats = true;  // else 16-bit samples
    long block = 64;
    long scans = 8;
    float sampleFrequency = 1024.0f;
    std::vector<InputPlan> inputs;
    std::vector<float> tachoEndRpm;  // one used tacho channel per entry
    std::vector<StoredPlan> stored;
    // The value stored for channel `number` (over all channels, tachos behind the inputs, from 1) at
    // sample `i`: as it stands in the file, a float or a 16-bit integer value.
    std::function<float(long number, std::int64_t i)> sample = [](long number, std::int64_t i) {
        return static_cast<float>(number * 100 + i % 97);
    };
    // Status and range of a scan (from 1) of a channel; the range defaults to the channel's.
    std::function<long(long number, long scan)> status = [](long, long) { return 0L; };
    std::function<float(long number, long scan)> range;  // empty: the channel's range
};

inline long channelCount(const RecordingPlan& plan) {
    return static_cast<long>(plan.inputs.size() + plan.tachoEndRpm.size());
}

// The stored value of a stored measurement's Y real at position i.
inline float storedValue(long measurement, long i) { return static_cast<float>(measurement * 1000 + i) * 0.5f; }
inline float storedImag(long measurement, long i) { return -static_cast<float>(measurement * 10 + i); }
inline float storedX(long measurement, long i) { return static_cast<float>(i) * 1.5f + static_cast<float>(measurement); }

inline void fillRecorder(trc::CTrc& trc, const RecordingPlan& plan) {
    auto& header = trc.GetRecorder().GetHeader();
    header.SetEnabled(1);
    header.SetDataSize(plan.floats ? trc::kDataSizeFloat : trc::kDataSizeInt16);
    auto& setup = header.GetSetup();
    setup.GetAcquisition().SetBlocksize(plan.block);
    setup.GetAcquisition().SetSampleFrequency(plan.sampleFrequency);
    setup.GetProcessing().SetAverageNumber(plan.scans);
    for (const InputPlan& in : plan.inputs) {
        auto input = std::make_unique<trc::CTrcInputChannel>();
        input->SetName(in.name.c_str());
        input->SetUsage(in.used ? 1 : 0);
        input->SetRange(in.range);
        input->SetUnit(in.unit.c_str());
        input->SetSensitivity(in.sensitivity);
        input->SetCalibrationType(in.calibrationType.c_str());
        input->SetPreGain(in.preGain);
        setup.GetInputs().Add(std::move(input));
    }
    for (std::size_t t = 0; t < plan.tachoEndRpm.size(); ++t) {
        auto tacho = std::make_unique<trc::CTrcTachoChannel>();
        tacho->GetRpm().SetName(("Tacho " + std::to_string(t + 1)).c_str());
        tacho->GetRpm().SetActivated(1);
        tacho->GetRpm().SetEndRPM(plan.tachoEndRpm[t]);
        setup.GetTachos().Add(std::move(tacho));
    }
    for (const StoredPlan& s : plan.stored) {
        auto m = std::make_unique<trc::CTrcMeasurementSection>();
        m->GetHeader().SetName(s.name.c_str());
        m->GetHeader().SetSize(s.size);
        m->GetHeader().SetComplex(s.complex ? 1 : 0);
        m->GetHeader().SetXAxisType(s.axis);
        for (long k = 0; k < s.subs; ++k) {
            auto sub = std::make_unique<trc::CTrcSubMeasurementSection>();
            sub->GetHeader().SetSize(s.size);
            sub->GetHeader().SetXAxisType(1);
            m->GetMeasurements().Add(std::move(sub));
        }
        trc.GetMeasurements().Add(std::move(m));
    }
}

// Writes the recording; false at the first step that fails.
inline bool writeRecording(const std::string& path, const RecordingPlan& plan) {
    trc::CTrc trc;
    fillRecorder(trc, plan);
    auto& recorder = trc.GetRecorder();
    if (!trc.Create(path.c_str()) || !trc.GetSetups().Write() || !recorder.Write() || !trc.GetMeasurements().Write() ||
        !trc.GetTestDefinition().Write())
        return false;
    const long inputs = static_cast<long>(plan.inputs.size());
    const long D = plan.floats ? 4 : 2;
    std::vector<unsigned char> samples(static_cast<std::size_t>(plan.block * D));
    for (long number = 1; number <= channelCount(plan); ++number) {
        const bool tacho = number > inputs;
        if (!tacho && !plan.inputs[static_cast<std::size_t>(number - 1)].used) continue;
        auto& part = tacho ? static_cast<trc::CTrcRecorderChannelSection&>(recorder.GetTachoSection())
                           : recorder.GetInputSection();
        const float ownRange = tacho ? 2.0f * plan.tachoEndRpm[static_cast<std::size_t>(number - inputs - 1)]
                                     : plan.inputs[static_cast<std::size_t>(number - 1)].range;
        for (long s = 1; s <= plan.scans; ++s) {
            for (long i = 0; i < plan.block; ++i) {
                const float v = plan.sample(number, static_cast<std::int64_t>(s - 1) * plan.block + i);
                unsigned char* at = &samples[static_cast<std::size_t>(i * D)];
                if (plan.floats) le::putF32(at, v);
                else le::put16(at, static_cast<std::uint16_t>(static_cast<std::int16_t>(v)));
            }
            if (!part.WriteChannel(number, static_cast<std::int64_t>(s - 1) * plan.block, samples.data(), plan.block))
                return false;
            trc::CTrcScanInfo info;
            info.SetStatus(plan.status(number, s));
            info.SetRange(plan.range ? plan.range(number, s) : ownRange);
            if (!part.WriteInfo(s, number, info)) return false;
        }
    }
    for (long m = 0; m < trc.GetMeasurements().GetCount(); ++m) {
        trc::CTrcMeasurementSection& stored = *trc.GetMeasurements().GetItem(m);
        const long n = stored.GetHeader().GetSize();
        std::vector<float> re(static_cast<std::size_t>(n)), im(re.size()), x(re.size());
        for (long i = 0; i < n; ++i) {
            re[static_cast<std::size_t>(i)] = storedValue(m + 1, i);
            im[static_cast<std::size_t>(i)] = storedImag(m + 1, i);
            x[static_cast<std::size_t>(i)] = storedX(m + 1, i);
        }
        if (n > 0 && !stored.GetData().GetY().WriteReal(0, re.data(), n)) return false;
        if (n > 0 && stored.GetHeader().GetComplex() && !stored.GetData().GetY().WriteImag(0, im.data(), n)) return false;
        for (long k = 0; k < stored.GetMeasurements().GetCount(); ++k) {
            for (long i = 0; i < n; ++i) re[static_cast<std::size_t>(i)] = storedValue((m + 1) * 100 + k + 1, i);
            if (n > 0 && !stored.GetMeasurements().GetItem(k)->GetData().GetY().WriteReal(0, re.data(), n)) return false;
        }
        const long axis = stored.GetHeader().GetXAxisType();
        if (n > 0 && axis >= 1102 && axis <= 1104 && !stored.GetData().GetX().Write(0, x.data(), n)) return false;
    }
    return trc.Close() != 0;
}

}  // namespace nvdl::testing
