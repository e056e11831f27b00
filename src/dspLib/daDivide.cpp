// Division of kernel vectors. A denominator of exactly zero gives 0 for that element, with no
// error, and the loop goes on.
#include <cstring>

#include "dspLib/daChecks.h"
#include "nvdl/daArithmetic.h"

long daDivide(float s, daVector a, daVector* out)
{
    if (daCheckOne("daDivide", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daDivide", out, a.length, a.imag != nullptr, __LINE__, daSecondAllocFailure::KeepFirst))
        return 1;
    const double numerator = s;
    for (long i = 0; i < a.length; ++i) {
        double re = a.real[i];
        double im = daImagAt(a, i);
        double d = re * re + im * im;
        out->real[i] = d == 0.0 ? 0.0f : static_cast<float>(numerator * re / d);
        if (a.imag != nullptr)
            out->imag[i] = d == 0.0 ? 0.0f : static_cast<float>(-numerator * im / d);
    }
    return 0;
}

// The denominator is read from the output arrays just allocated, not from `a`. Those arrays are
// zeroed first so that the read is defined: every element then takes the zero-denominator rule and
// the result is all zeros. No operator calls this form.
long daDivide(daComplex c, daVector a, daVector* out)
{
    if (daCheckOne("daDivide", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daDivide", out, a.length, true, __LINE__))
        return 1;
    std::memset(out->real, 0, static_cast<size_t>(daFloatBytes(a.length)));
    std::memset(out->imag, 0, static_cast<size_t>(daFloatBytes(a.length)));
    const double cr = c.real;
    const double ci = c.imag;
    for (long i = 0; i < a.length; ++i) {
        double re = out->real[i];
        double im = out->imag[i];
        double d = re * re + im * im;
        out->real[i] = d == 0.0 ? 0.0f : static_cast<float>((cr * re + ci * im) / d);
        out->imag[i] = d == 0.0 ? 0.0f : static_cast<float>((ci * re - cr * im) / d);
    }
    return 0;
}

long daDivide(daVector a, daVector b, daVector* out)
{
    if (daBeginTwo("daDivide", a, b, out, __LINE__))
        return 1;
    const bool complex = a.imag != nullptr || b.imag != nullptr;
    for (long i = 0; i < a.length; ++i) {
        double ar = a.real[i];
        double ai = daImagAt(a, i);
        double br = b.real[i];
        double bi = daImagAt(b, i);
        double d = br * br + bi * bi;
        out->real[i] = d == 0.0 ? 0.0f : static_cast<float>((ar * br + ai * bi) / d);
        if (complex)
            out->imag[i] = d == 0.0 ? 0.0f : static_cast<float>((ai * br - ar * bi) / d);
    }
    return 0;
}
