// The road of a user's script for an averaged cross-spectrum, all through IMeasurement: a 2-channel
// record of 10 million samples is cut into blocks of 4096 measurements; each block is windowed
// (amplitude-corrected Hanning), transformed, and its three power spectra (Psd) are summed with Add;
// the sums are scaled to averages, then Frf and Coherence are taken. cross_spectrum_reference.py
// times scipy.signal.coherence on the same data (same generator, block length, no overlap).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "measurement/Measurement.h"
#include "nvdl/Bstr.h"
#include "nvdl/Variant.h"

namespace {

using namespace nvdl;

constexpr long kSamples = 10'000'000;
constexpr long kBlock = 4096;
constexpr float kRate = 25600.0f;

// Uniform noise in [-0.5, 0.5) from a counter-based generator, so that numpy can draw the same values.
double noiseAt(std::uint64_t i) {
    std::uint64_t z = i + 0x9E3779B97F4A7C15ull;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    z ^= z >> 31;
    return static_cast<double>(z >> 11) * 0x1.0p-53 - 0.5;
}

struct Record {
    std::vector<float> x, y;
};

// Input: noise. Output: the input through a resonant second-order filter, plus independent noise.
const Record& record() {
    static const Record r = [] {
        Record made;
        made.x.resize(kSamples);
        made.y.resize(kSamples);
        const double b0 = 0.05, b1 = 0.1, b2 = 0.05, a1 = -1.6, a2 = 0.8;
        double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
        for (long i = 0; i < kSamples; ++i) {
            const double x = noiseAt(static_cast<std::uint64_t>(i));
            const double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
            x2 = x1;
            x1 = x;
            y2 = y1;
            y1 = y;
            made.x[i] = static_cast<float>(x);
            made.y[i] = static_cast<float>(y + 0.1 * noiseAt(static_cast<std::uint64_t>(i) + (1ull << 40)));
        }
        return made;
    }();
    return r;
}

// Holds one reference.
struct Ref {
    IMeasurement* p = nullptr;
    Ref() = default;
    explicit Ref(IMeasurement* m) : p(m) {}
    Ref(const Ref&) = delete;
    Ref& operator=(const Ref&) = delete;
    ~Ref() {
        if (p) p->Release();
    }
    IMeasurement* operator->() const { return p; }
    IMeasurement** out() {
        if (p) p->Release();
        p = nullptr;
        return &p;
    }
};

// One block of one channel as a windowed spectrum.
void spectrumOf(const float* samples, Ref& spectrum) {
    Ref block(CMeasurement::createMeasurement());
    block->put_Size(kBlock);
    block->SetYValues(0, kBlock, samples, nullptr);
    block->put_XIncrement(1.0f / kRate);
    block->put_FunctionType(Variant::fromLong(1001));
    block->put_WindowType(Variant::fromLong(1302));
    block->put_BandwidthCorrectionFactor(0.0f);
    Ref window, windowed;
    block->Window(window.out());
    block->Multiply(window.p, windowed.out());
    windowed->Fft(spectrum.out());
}

// Adds `term` into the running sum held in `sum`.
void accumulate(Ref& sum, Ref& term) {
    if (!sum.p) {
        sum.p = term.p;
        term.p = nullptr;
        return;
    }
    Variant mode = Variant::fromLong(0);
    Ref next;
    sum->Add(term.p, &mode, next.out());
    std::swap(sum.p, next.p);
}

void BM_CrossSpectrumThroughMeasurements(benchmark::State& state) {
    const Record& data = record();
    const long blocks = kSamples / kBlock;
    float coherenceAt100Hz = 0.0f;
    for (auto _ : state) {
        Ref gxx, gyy, gxy;
        for (long b = 0; b < blocks; ++b) {
            Ref sx, sy;
            spectrumOf(data.x.data() + b * kBlock, sx);
            spectrumOf(data.y.data() + b * kBlock, sy);
            Ref pxx, pyy, pxy;
            sx->Psd(sx.p, pxx.out());
            sy->Psd(sy.p, pyy.out());
            sx->Psd(sy.p, pxy.out());
            accumulate(gxx, pxx);
            accumulate(gyy, pyy);
            accumulate(gxy, pxy);
        }
        Ref axx, ayy, axy, frf, coherence;
        gxx->ScalarMultiply(1.0f / blocks, axx.out());
        gyy->ScalarMultiply(1.0f / blocks, ayy.out());
        gxy->ScalarMultiply(1.0f / blocks, axy.out());
        Variant estimator = Variant::fromLong(1);
        axy->Frf(axx.p, estimator, frf.out());
        axy->Coherence(axx.p, ayy.p, coherence.out());
        coherence->get_YReal(16, &coherenceAt100Hz);
        benchmark::DoNotOptimize(coherenceAt100Hz);
    }
    state.counters["blocks"] = static_cast<double>(blocks);
    state.counters["coherence_100Hz"] = coherenceAt100Hz;
}
BENCHMARK(BM_CrossSpectrumThroughMeasurements)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
