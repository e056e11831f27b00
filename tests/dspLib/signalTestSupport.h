// The checks of a rejected kernel call: its status, the flag and the message it leaves.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KernelVector.h"

namespace nvdl::test {

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

// `call` asks `function` for kUnallocatable floats and must report that the allocation failed.
inline void expectAllocationFailure(const std::string& function, const std::function<long()>& call)
{
    if (kHugeAllocationsFail)
        expectFailures({{"allocation", call, function + " : Memory allocation (9223372036854775804 bytes) failed"}});
}

}  // namespace nvdl::test
