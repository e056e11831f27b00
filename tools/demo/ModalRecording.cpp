#include "demo/ModalRecording.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <random>

#include "platform/LittleEndian.h"
#include "recording/Trc.h"
#include "recording/TrcInputChannel.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcTestDefinition.h"

namespace nvdl::demo {

namespace {

// Acceleration over force of one mode, s^2 / (s^2 + 2 zeta w s + w^2), as a digital filter by the
// bilinear transform warped to keep the natural frequency where it is.
class ModeFilter {
public:
    ModeFilter(const Mode& mode, double sampleRate) {
        const double w = 2.0 * std::numbers::pi * mode.frequency;
        const double k = w / std::tan(w / (2.0 * sampleRate));
        const double a0 = k * k + 2.0 * mode.damping * w * k + w * w;
        b_ = k * k / a0;
        a1_ = (2.0 * w * w - 2.0 * k * k) / a0;
        a2_ = (k * k - 2.0 * mode.damping * w * k + w * w) / a0;
    }
    double step(double x) {
        // Numerator b (1 - 2 z^-1 + z^-2), transposed direct form II.
        const double y = b_ * x + s1_;
        s1_ = -2.0 * b_ * x - a1_ * y + s2_;
        s2_ = b_ * x - a2_ * y;
        return y;
    }

private:
    double b_, a1_, a2_;
    double s1_ = 0.0, s2_ = 0.0;
};

double rms(const std::vector<float>& v) {
    double sum = 0.0;
    for (float x : v) sum += static_cast<double>(x) * x;
    return v.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(v.size()));
}

// The four channels' samples: the force, then the accelerations with their sensor noise.
std::vector<std::vector<float>> simulate(const ModalTest& test) {
    const std::size_t n = static_cast<std::size_t>(test.scanLength) * static_cast<std::size_t>(test.scans);
    std::vector<std::vector<float>> channels(kResponses + 1, std::vector<float>(n));
    std::mt19937 random(test.seed);
    std::normal_distribution<double> gauss(0.0, 1.0);
    std::vector<ModeFilter> filters;
    for (const Mode& m : test.modes) filters.emplace_back(m, test.sampleRate);
    for (std::size_t i = 0; i < n; ++i) {
        const double force = test.forceRms * gauss(random);
        channels[0][i] = static_cast<float>(force);
        double response[kResponses] = {};
        for (std::size_t r = 0; r < filters.size(); ++r) {
            const double q = filters[r].step(force);
            for (int k = 0; k < kResponses; ++k) response[k] += test.modes[r].shape[static_cast<std::size_t>(k)] * q;
        }
        for (int k = 0; k < kResponses; ++k) channels[static_cast<std::size_t>(k) + 1][i] = static_cast<float>(response[k]);
    }
    for (int k = 1; k <= kResponses; ++k) {
        const double noise = test.noiseFraction * rms(channels[static_cast<std::size_t>(k)]);
        for (float& v : channels[static_cast<std::size_t>(k)]) v += static_cast<float>(noise * gauss(random));
    }
    return channels;
}

}  // namespace

ModalTest standardTest(bool small) {
    ModalTest test;
    test.scans = small ? 20 : 60;
    test.modes = {{53.0, 0.04, {1.0, 0.7, 0.4}}, {131.0, 0.02, {0.8, -0.6, 1.0}}, {287.0, 0.015, {0.5, 0.9, -0.7}}};
    return test;
}

std::vector<std::string> channelNames() { return {"Force", "Acc 1", "Acc 2", "Acc 3"}; }

bool writeModalRecording(const std::string& path, const ModalTest& test, std::string& error) {
    const std::vector<std::vector<float>> samples = simulate(test);
    const std::vector<std::string> names = channelNames();
    trc::CTrc recording;
    auto& header = recording.GetRecorder().GetHeader();
    header.SetEnabled(1);
    header.SetDataSize(trc::kDataSizeFloat);
    auto& setup = header.GetSetup();
    setup.GetAcquisition().SetBlocksize(test.scanLength);
    setup.GetAcquisition().SetSampleFrequency(static_cast<float>(test.sampleRate));
    setup.GetProcessing().SetAverageNumber(test.scans);
    for (std::size_t c = 0; c < samples.size(); ++c) {
        auto input = std::make_unique<trc::CTrcInputChannel>();
        input->SetName(names[c].c_str());
        input->SetUsage(1);
        input->SetRange(static_cast<float>(8.0 * rms(samples[c])));
        input->SetUnit(c == 0 ? "N" : "m/s\xB2");  // the code page's superscript two
        input->SetSensitivity(1.0f);
        input->SetCalibrationType("V/EU");
        setup.GetInputs().Add(std::move(input));
    }
    auto& recorder = recording.GetRecorder();
    if (!recording.Create(path.c_str()) || !recording.GetSetups().Write() || !recorder.Write() ||
        !recording.GetMeasurements().Write() || !recording.GetTestDefinition().Write()) {
        error = "cannot create the recording";
        return false;
    }
    std::vector<unsigned char> bytes(static_cast<std::size_t>(test.scanLength) * 4);
    auto& inputs = recorder.GetInputSection();
    for (std::size_t c = 0; c < samples.size(); ++c) {
        const long number = static_cast<long>(c) + 1;
        for (long s = 0; s < test.scans; ++s) {
            const std::int64_t first = static_cast<std::int64_t>(s) * test.scanLength;
            for (long i = 0; i < test.scanLength; ++i)
                le::putF32(&bytes[static_cast<std::size_t>(i) * 4], samples[c][static_cast<std::size_t>(first + i)]);
            trc::CTrcScanInfo info;
            info.SetStatus(0);
            info.SetRange(setup.GetInputs().GetItem(static_cast<long>(c))->GetRange());
            if (!inputs.WriteChannel(number, first, bytes.data(), test.scanLength) || !inputs.WriteInfo(s + 1, number, info)) {
                error = "cannot write the samples of " + names[c];
                return false;
            }
        }
    }
    if (!recording.Close()) {
        error = "cannot finish the recording";
        return false;
    }
    return true;
}

}  // namespace nvdl::demo
