// FFTW planning: estimated and measured plans against a direct transform, the wisdom file's round
// trip through a fresh planner state, wisdom files FFTW refuses, where the file lives, and planning
// from eight threads at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numbers>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "../platform/TempDir.h"
#include "RandomSignal.h"
#include "analysis/FftPlanner.h"
#include "analysis/RealFft.h"

using namespace nvdl::analysis;
using nvdl::test::randomFloats;
using nvdl::test::TempDir;

namespace {

// Sets (or, given null, removes) an environment variable and puts the old value back.
class EnvSetting {
public:
    EnvSetting(const char* name, const char* value) : m_name(name)
    {
        if (const char* old = std::getenv(name))
            m_old = old;
        value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ~EnvSetting() { m_old ? ::setenv(m_name.c_str(), m_old->c_str(), 1) : ::unsetenv(m_name.c_str()); }
    EnvSetting(const EnvSetting&) = delete;
    EnvSetting& operator=(const EnvSetting&) = delete;

private:
    std::string m_name;
    std::optional<std::string> m_old;
};

// X(k) for k = 0..n/2 of n real samples, in double.
std::vector<std::complex<double>> directDft(const std::vector<float>& x)
{
    const size_t n = x.size();
    std::vector<std::complex<double>> spectrum(n / 2 + 1);
    for (size_t k = 0; k < spectrum.size(); ++k)
        for (size_t t = 0; t < n; ++t)
            spectrum[k] += static_cast<double>(x[t]) * std::polar(1.0, -2.0 * std::numbers::pi * double(k * t % n) / double(n));
    return spectrum;
}

double tolerance(const std::vector<float>& x)
{
    double n = static_cast<double>(x.size());
    return 2e-6 * n * std::log2(2.0 * n);
}

// Worst difference between a spectrum of interleaved floats and the direct transform.
double spectrumError(const float* actual, const std::vector<std::complex<double>>& expected)
{
    double worst = 0.0;
    for (size_t k = 0; k < expected.size(); ++k)
        worst = std::max(worst, std::abs(std::complex<double>(actual[2 * k], actual[2 * k + 1]) - expected[k]));
    return worst;
}

// Runs a forward and a backward plan on x (the input starting `offset` floats into an aligned
// array) and returns the worst error of the spectrum against the direct transform and of the
// backward result against n·x.
std::pair<double, double> runPlans(fftwf_plan forward, fftwf_plan backward, const std::vector<float>& x,
                                   size_t offset = 0)
{
    const size_t n = x.size();
    float* real = fftwf_alloc_real(n + 2 + offset);
    float* spectrum = fftwf_alloc_real(2 * (n / 2 + 1));
    std::copy(x.begin(), x.end(), real + offset);
    fftwf_execute_dft_r2c(forward, real + offset, reinterpret_cast<fftwf_complex*>(spectrum));
    const double forwardError = spectrumError(spectrum, directDft(x));
    fftwf_execute_dft_c2r(backward, reinterpret_cast<fftwf_complex*>(spectrum), real + offset);
    double backwardError = 0.0;
    for (size_t t = 0; t < n; ++t)
        backwardError = std::max(backwardError, std::abs(real[offset + t] - double(n) * x[t]));
    fftwf_free(real);
    fftwf_free(spectrum);
    return {forwardError, backwardError};
}

// FFTW's description of a plan, which names the algorithm it chose.
std::string describe(fftwf_plan plan)
{
    char* text = fftwf_sprint_plan(plan);
    std::string description = text != nullptr ? text : "";
    std::free(text);
    return description;
}

std::string readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// Each test starts from empty wisdom, with the wisdom file in a fresh cache directory.
class FftWisdom : public ::testing::Test {
protected:
    void SetUp() override { forgetFftWisdom(); }
    void TearDown() override { forgetFftWisdom(); }

    std::string wisdomFile() const { return (m_cache.path() / "nvdl" / "fftwf-wisdom").string(); }

    TempDir m_cache;
    EnvSetting m_cacheHome{"XDG_CACHE_HOME", m_cache.path().c_str()};
    EnvSetting m_enabled{"NVDL_FFT_WISDOM", nullptr};
};

}  // namespace

// Estimated and measured plans may round differently, but both must compute the transform; after
// measuring, a new plan is the measured one, taken from wisdom.
TEST_F(FftWisdom, EstimatedAndMeasuredPlansComputeTheSameTransform)
{
    for (long n : {1L, 2L, 3L, 5L, 8L, 15L, 16L, 17L, 60L, 97L, 128L, 243L, 256L, 1000L}) {
        SCOPED_TRACE(n);
        const std::vector<float> x = randomFloats(static_cast<size_t>(n), static_cast<unsigned>(n));
        const double limit = tolerance(x);
        ASSERT_FALSE(hasMeasuredFftPlans(n));
        for (bool measured : {false, true}) {
            SCOPED_TRACE(measured ? "measured" : "estimated");
            if (measured) {
                ASSERT_EQ(measureFftPlans(n), FftMeasureResult::Measured);
                ASSERT_TRUE(hasMeasuredFftPlans(n));
            }
            fftwf_plan forward = makeFftPlan(FftKind::Forward, n, true);
            fftwf_plan backward = makeFftPlan(FftKind::Backward, n, true);
            fftwf_plan forwardUnaligned = makeFftPlan(FftKind::Forward, n, false);
            fftwf_plan backwardUnaligned = makeFftPlan(FftKind::Backward, n, false);
            ASSERT_TRUE(forward && backward && forwardUnaligned && backwardUnaligned);
            auto [forwardError, backwardError] = runPlans(forward, backward, x);
            EXPECT_LT(forwardError, limit);
            EXPECT_LT(backwardError, limit);
            std::tie(forwardError, backwardError) = runPlans(forwardUnaligned, backwardUnaligned, x, 1);
            EXPECT_LT(forwardError, limit);
            EXPECT_LT(backwardError, limit);
            if (measured) {
                float* real = fftwf_alloc_real(static_cast<size_t>(n) + 2);
                fftwf_complex* complex = fftwf_alloc_complex(static_cast<size_t>(n) / 2 + 1);
                fftwf_plan fromWisdom = fftwf_plan_dft_r2c_1d(static_cast<int>(n), real, complex,
                                                              FFTW_MEASURE | FFTW_WISDOM_ONLY | FFTW_PRESERVE_INPUT);
                ASSERT_NE(fromWisdom, nullptr);
                EXPECT_EQ(describe(forward), describe(fromWisdom));
                fftwf_destroy_plan(fromWisdom);
                fftwf_free(real);
                fftwf_free(complex);
            }
            for (fftwf_plan plan : {forward, backward, forwardUnaligned, backwardUnaligned})
                releaseFftPlan(plan);
        }
    }
}

// Measured plans reach a new planner state through the file alone; known lengths are not measured
// or written again, and with the file turned off nothing is read or written.
TEST_F(FftWisdom, MeasuredPlansSurviveThroughTheFile)
{
    const std::vector<long> lengths{512, 1000};
    for (long n : lengths)
        ASSERT_EQ(measureFftPlans(n), FftMeasureResult::Measured) << n;
    const std::string saved = readFile(wisdomFile());
    ASSERT_FALSE(saved.empty());

    forgetFftWisdom();
    for (long n : lengths) {
        EXPECT_TRUE(hasMeasuredFftPlans(n)) << n;
        EXPECT_EQ(measureFftPlans(n), FftMeasureResult::Known) << n;
    }
    EXPECT_FALSE(hasMeasuredFftPlans(600));
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(m_cache.path() / "nvdl"))
        files.push_back(entry.path().filename().string());
    EXPECT_EQ(files, std::vector<std::string>{"fftwf-wisdom"}) << "temporary file left behind";

    EnvSetting off("NVDL_FFT_WISDOM", "0");
    forgetFftWisdom();
    EXPECT_FALSE(hasMeasuredFftPlans(512));
    EXPECT_EQ(measureFftPlans(600), FftMeasureResult::NotSaved);
    EXPECT_EQ(readFile(wisdomFile()), saved);
}

// A file FFTW refuses leaves the planner without wisdom but planning at full correctness, and the
// next measurement replaces it with a good one.
TEST_F(FftWisdom, RefusedFilesAreIgnoredAndReplaced)
{
    const long n = 256;
    ASSERT_EQ(measureFftPlans(n), FftMeasureResult::Measured);
    const std::string good = readFile(wisdomFile());
    const size_t firstEntry = good.find("(fftwf_", 1);
    ASSERT_NE(firstEntry, std::string::npos) << good;
    std::string doublePrecision = good;
    doublePrecision.replace(doublePrecision.find("fftwf_wisdom"), 12, "fftw_wisdom");
    std::string unknownAlgorithm = good;
    unknownAlgorithm.insert(firstEntry + 7, "nvdl_missing_");

    const struct {
        const char* name;
        std::string text;
    } cases[] = {
        {"empty", ""},
        {"not wisdom", "hello\n"},
        {"cut in half", good.substr(0, good.size() / 2)},
        {"double precision", doublePrecision},
        {"algorithm this build lacks", unknownAlgorithm},
        {"oversized", good + std::string(1 << 20, ' ')},
    };
    const std::vector<float> x = randomFloats(n, 5);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(wisdomFile(), c.text);
        forgetFftWisdom();
        EXPECT_FALSE(hasMeasuredFftPlans(n));
        fftwf_plan forward = makeFftPlan(FftKind::Forward, n, true);
        fftwf_plan backward = makeFftPlan(FftKind::Backward, n, true);
        ASSERT_TRUE(forward && backward);
        auto [forwardError, backwardError] = runPlans(forward, backward, x);
        EXPECT_LT(forwardError, tolerance(x));
        EXPECT_LT(backwardError, tolerance(x));
        releaseFftPlan(forward);
        releaseFftPlan(backward);

        EXPECT_EQ(measureFftPlans(n), FftMeasureResult::Measured);
        forgetFftWisdom();
        EXPECT_TRUE(hasMeasuredFftPlans(n));
    }
    // The good file itself is read, so the cases above fail for their damage alone.
    writeFile(wisdomFile(), good);
    forgetFftWisdom();
    EXPECT_TRUE(hasMeasuredFftPlans(n));
}

TEST(FftWisdomPath, FollowsTheEnvironment)
{
    const struct {
        const char* cacheHome;
        const char* home;
        const char* enabled;
        const char* expected;
    } cases[] = {
        {"/c", "/h", nullptr, "/c/nvdl/fftwf-wisdom"},
        {"/c", "/h", "1", "/c/nvdl/fftwf-wisdom"},
        {"", "/h", nullptr, "/h/.cache/nvdl/fftwf-wisdom"},
        {"relative", "/h", nullptr, "/h/.cache/nvdl/fftwf-wisdom"},
        {nullptr, "/h", nullptr, "/h/.cache/nvdl/fftwf-wisdom"},
        {"/c", "/h", "0", ""},
        {nullptr, nullptr, nullptr, ""},
    };
    for (const auto& c : cases) {
        EnvSetting cacheHome("XDG_CACHE_HOME", c.cacheHome);
        EnvSetting home("HOME", c.home);
        EnvSetting enabled("NVDL_FFT_WISDOM", c.enabled);
        EXPECT_EQ(fftWisdomPath(), c.expected) << (c.cacheHome ? c.cacheHome : "(unset)") << " "
                                               << (c.home ? c.home : "(unset)") << " "
                                               << (c.enabled ? c.enabled : "(unset)");
    }
}

// Eight threads transform lengths of their own, each more lengths than a thread's plan cache holds,
// while half of them also measure lengths and write the wisdom file.
TEST_F(FftWisdom, EightThreadsPlanAtOnce)
{
    constexpr int kThreads = 8;
    constexpr int kLengthsPerThread = 10;
    std::vector<std::string> failures(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &failure = failures[t]] {
            for (int round = 0; round < 2; ++round) {
                for (int i = 0; i < kLengthsPerThread; ++i) {
                    const long n = 40 + kThreads * i + t;
                    const std::vector<float> x = randomFloats(static_cast<size_t>(n), static_cast<unsigned>(n));
                    std::unique_ptr<float[], decltype(&std::free)> q(imsl_f_fft_real(n, x.data()), &std::free);
                    if (q == nullptr) {
                        failure += "no transform of " + std::to_string(n) + "; ";
                        continue;
                    }
                    // Back from the packed layout to interleaved bins.
                    std::vector<float> bins(2 * static_cast<size_t>(n / 2 + 1), 0.0f);
                    bins[0] = q[0];
                    std::copy(q.get() + 1, q.get() + n, bins.begin() + 2);
                    if (spectrumError(bins.data(), directDft(x)) > tolerance(x))
                        failure += "wrong transform of " + std::to_string(n) + "; ";
                }
                if (t % 2 == 0 && measureFftPlans(20 + t + round) == FftMeasureResult::CannotPlan)
                    failure += "cannot measure; ";
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(failures[t], "") << "thread " << t;
    forgetFftWisdom();
    for (long n : {20L, 22L, 24L, 26L})
        EXPECT_TRUE(hasMeasuredFftPlans(n)) << n;
}
