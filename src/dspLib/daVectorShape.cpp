// Conjugate, running sum, first difference, amplitude and peak amplitude of kernel vectors.
#include <cmath>

#include "dspLib/daChecks.h"
#include "nvdl/daArithmetic.h"

long daComplexConjugate(daVector a, daVector* out)
{
    if (daCheckOne("daComplexConjugate", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daComplexConjugate", out, a.length, a.imag != nullptr, __LINE__))
        return 1;
    for (long i = 0; i < a.length; ++i)
        out->real[i] = a.real[i];
    if (a.imag != nullptr)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = -a.imag[i];
    return 0;
}

namespace {

void runningSum(const float* in, float* out, long length)
{
    double sum = 0.0;
    for (long i = 0; i < length; ++i) {
        sum += in[i];
        out[i] = static_cast<float>(sum);
    }
}

// Fills from the last element down to element 1 and copies element 0 last.
void firstDifference(const float* in, float* out, long length)
{
    for (long i = length - 1; i >= 1; --i)
        out[i] = static_cast<float>(static_cast<double>(in[i]) - in[i - 1]);
    if (length > 0)
        out[0] = in[0];
}

}  // namespace

long daSum(daVector a, daVector* out)
{
    if (daCheckOne("daSum", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daSum", out, a.length, a.imag != nullptr, __LINE__))
        return 1;
    runningSum(a.real, out->real, a.length);
    if (a.imag != nullptr)
        runningSum(a.imag, out->imag, a.length);
    return 0;
}

long daDifference(daVector a, daVector* out)
{
    if (daCheckOne("daDifference", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daDifference", out, a.length, a.imag != nullptr, __LINE__))
        return 1;
    firstDifference(a.real, out->real, a.length);
    if (a.imag != nullptr)
        firstDifference(a.imag, out->imag, a.length);
    return 0;
}

long daAmplitude(daVector a, daVector* out)
{
    if (daCheckOne("daAmplitude", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daAmplitude", out, a.length, false, __LINE__))
        return 1;
    for (long i = 0; i < a.length; ++i) {
        double re = a.real[i];
        double im = daImagAt(a, i);
        out->real[i] = static_cast<float>(std::sqrt(re * re + im * im));
    }
    return 0;
}

long daMaxAmpl(daVector a, float* peak, long* index)
{
    if (a.length < 0)
        return daFail("%s : Input vector1 length (%ld) should be >0 {%s,%d}", "daMaxAmpl", a.length, kDaUnit,
                      __LINE__);
    if (daCheckData("daMaxAmpl", {a}, nullptr, __LINE__, false))
        return 1;
    double best = 0.0;
    long bestIndex = 0;
    for (long i = 0; i < a.length; ++i) {
        double re = a.real[i];
        double im = daImagAt(a, i);
        double squared = re * re + im * im;
        if (squared > best) {
            best = squared;
            bestIndex = i;
        }
    }
    if (peak != nullptr)
        *peak = static_cast<float>(std::sqrt(best));
    if (index != nullptr)
        *index = bestIndex;
    return 0;
}
