// Writes a recording of a small structure under random excitation for the tests of scripts that
// analyse recordings: modal_recording PATH. A force channel "Force" and three responses "Acc1" to
// "Acc3" of a structure with two modes (45 Hz and 125 Hz, 4 % damping), 32 scans of 1024 samples at
// 1000 Hz, with a little noise on the responses. Each mode is an impulse-invariant resonator, so the
// responses' resonances lie at the modes' damped frequencies.
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <vector>

#include "access/RecordingBuilder.h"

namespace {

constexpr double kRate = 1000.0;
constexpr long kBlock = 1024, kScans = 32;
constexpr double kModes[2] = {45.0, 125.0};
constexpr double kDamping = 0.04;
// Mode shapes at the three response points.
constexpr double kShapes[3][2] = {{1.0, 0.8}, {0.5, -1.0}, {-0.7, 0.6}};

// The response of one resonator (natural frequency `hz`) to the force.
std::vector<double> resonator(const std::vector<double>& force, double hz) {
    const double w = 2 * std::numbers::pi * hz, wd = w * std::sqrt(1 - kDamping * kDamping), t = 1 / kRate;
    const double r = std::exp(-kDamping * w * t);
    const double a1 = 2 * r * std::cos(wd * t), a2 = -r * r, b1 = r * std::sin(wd * t);
    std::vector<double> y(force.size(), 0.0);
    for (std::size_t n = 2; n < force.size(); ++n) y[n] = a1 * y[n - 1] + a2 * y[n - 2] + b1 * force[n - 1];
    return y;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: modal_recording PATH\n");
        return 2;
    }
    const std::size_t total = static_cast<std::size_t>(kBlock * kScans);
    std::mt19937 random(20);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::normal_distribution<double> noise(0.0, 0.01);
    std::vector<std::vector<float>> channels(4, std::vector<float>(total));
    std::vector<double> force(total);
    for (std::size_t i = 0; i < total; ++i) force[i] = uniform(random);
    std::vector<double> modes[2] = {resonator(force, kModes[0]), resonator(force, kModes[1])};
    for (std::size_t i = 0; i < total; ++i) channels[0][i] = static_cast<float>(force[i]);
    for (std::size_t p = 0; p < 3; ++p)
        for (std::size_t i = 0; i < total; ++i)
            channels[p + 1][i] =
                static_cast<float>(kShapes[p][0] * modes[0][i] + kShapes[p][1] * modes[1][i] + noise(random));

    nvdl::testing::RecordingPlan plan;
    plan.floats = true;
    plan.block = kBlock;
    plan.scans = kScans;
    plan.sampleFrequency = static_cast<float>(kRate);
    plan.inputs = {{"Force"}, {"Acc1"}, {"Acc2"}, {"Acc3"}};
    plan.sample = [&](long number, std::int64_t i) { return channels[static_cast<std::size_t>(number - 1)][static_cast<std::size_t>(i)]; };
    if (!nvdl::testing::writeRecording(argv[1], plan)) {
        std::fprintf(stderr, "%s: cannot be written\n", argv[1]);
        return 1;
    }
    return 0;
}
