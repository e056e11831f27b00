// Input checks of the kernel's one- and two-vector members.
#include "dspLib/daChecks.h"

long daCheckData(const char* function, std::initializer_list<daVector> inputs, const daVector* out, int line,
                 bool needsOutput)
{
    for (const daVector& v : inputs)
        if (!daHasData(v))
            return daFail("%s : Input vector has no data {%s,%d}", function, kDaUnit, line);
    if (needsOutput && out == nullptr)
        return daFail("%s : Output vector is null {%s,%d}", function, kDaUnit, line);
    return 0;
}

long daCheckOne(const char* function, const daVector& a, const daVector* out, int line)
{
    if (a.length < 0)
        return daFail("%s : Input vector length (%ld) should be >0 {%s,%d}", function, a.length, kDaUnit, line);
    return daCheckData(function, {a}, out, line);
}

long daCheckTwo(const char* function, const daVector& a, const daVector& b, const daVector* out, int line)
{
    if (a.length < 0)
        return daFail("%s : Input vector1 length (%ld) should be >0 {%s,%d}", function, a.length, kDaUnit, line);
    if (a.length != b.length)
        return daFail("%s : Input vector length (%ld & %ld) should be equal {%s,%d}", function, a.length, b.length,
                      kDaUnit, line);
    return daCheckData(function, {a, b}, out, line);
}

long daBeginTwo(const char* function, const daVector& a, const daVector& b, daVector* out, int line)
{
    if (daCheckTwo(function, a, b, out, line))
        return 1;
    daClearOutput(out);
    return daAllocOutput(function, out, a.length, a.imag != nullptr || b.imag != nullptr, line);
}
