// Array allocation and output clearing shared by the kernel's functions.
#include <climits>
#include <cstdlib>

#include "dspLib/daFailure.h"

float* daAllocFloats(long count)
{
    if (count < 0 || count > LONG_MAX / static_cast<long>(sizeof(float)))
        return nullptr;
    // malloc(0) may legally return null; one spare element keeps an empty array distinguishable
    // from a failed allocation.
    size_t elements = count == 0 ? 1 : static_cast<size_t>(count);
    return static_cast<float*>(std::malloc(elements * sizeof(float)));
}

void daClearOutput(daVector* out)
{
    std::free(out->real);
    std::free(out->imag);
    out->real = nullptr;
    out->imag = nullptr;
    out->length = 0;
}

long daAllocOutput(const char* function, daVector* out, long count, bool withImag, int line,
                   daSecondAllocFailure onSecondFailure)
{
    out->real = daAllocFloats(count);
    if (out->real == nullptr)
        return daFail("%s : Memory allocation (%ld bytes) failed {%s,%d}", function, daFloatBytes(count), kDaUnit,
                      line);
    if (withImag) {
        out->imag = daAllocFloats(count);
        if (out->imag == nullptr) {
            if (onSecondFailure == daSecondAllocFailure::FreeFirst) {
                std::free(out->real);
                out->real = nullptr;
            }
            return daFail("%s : Memory allocation (%ld bytes) failed {%s,%d}", function, daFloatBytes(count),
                          kDaUnit, line);
        }
    }
    out->length = count;
    return 0;
}
