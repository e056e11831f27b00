// Helpers of the signal function tests: owned output records, views on test data and the checks
// of a rejected call.
#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvdl/daSignal.h"

namespace signaltest {

// An output record that frees whatever the kernel left in it.
struct OwnedVector {
    daVector v{nullptr, nullptr, 0};
    OwnedVector() = default;
    OwnedVector(const OwnedVector&) = delete;
    OwnedVector& operator=(const OwnedVector&) = delete;
    ~OwnedVector()
    {
        std::free(v.real);
        std::free(v.imag);
    }
    daVector* out() { return &v; }
    float operator[](long i) const { return v.real[i]; }
    std::vector<float> real() const { return {v.real, v.real + v.length}; }
};

inline daVector view(std::vector<float>& real) { return {real.data(), nullptr, static_cast<long>(real.size())}; }
inline daVector view(std::vector<float>& real, std::vector<float>& imag)
{
    return {real.data(), imag.data(), static_cast<long>(real.size())};
}

inline std::string lastError()
{
    char text[1000];
    daGetError(text, sizeof text);
    return text;
}

inline int errorFlag()
{
    int flag = -1;
    daGetErrorFlag(&flag);
    return flag;
}

// One rejected call: what it returns and the message it leaves, up to its "{unit,line}" tail.
struct FailureCase {
    const char* label;
    std::function<long()> call;
    std::string message;
    long status = 1;
};

inline void expectFailures(const std::vector<FailureCase>& cases)
{
    for (const FailureCase& c : cases) {
        SCOPED_TRACE(c.label);
        daClearErrorFlag();
        EXPECT_EQ(c.call(), c.status);
        EXPECT_EQ(errorFlag(), 1);
        const std::string text = lastError();
        EXPECT_EQ(text.substr(0, text.find(" {")), c.message);
        EXPECT_EQ(text.find(" {daDspLib,"), c.message.size()) << text;
        EXPECT_EQ(text.back(), '}') << text;
    }
}

// Huge requests are how the tests reach the allocation failures; AddressSanitizer's allocator
// aborts on them instead of failing, so those cases only run in builds without it.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHugeAllocationsFail = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kHugeAllocationsFail = false;
#else
constexpr bool kHugeAllocationsFail = true;
#endif
#else
constexpr bool kHugeAllocationsFail = true;
#endif

// An element count whose byte size still fits a long but that no allocator can provide.
constexpr long kUnallocatable = 0x7fffffffffffffffL / 4;

}  // namespace signaltest
