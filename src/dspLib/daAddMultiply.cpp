// Copy, addition, linear combination and multiplication of kernel vectors.
#include "dspLib/daChecks.h"
#include "dspLib/daVectorLoops.h"
#include "nvdl/daArithmetic.h"

long daCopy(daVector a, daVector* out)
{
    if (daCheckOne("daCopy", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daCopy", out, a.length, a.imag != nullptr, __LINE__))
        return 1;
    for (long i = 0; i < a.length; ++i)
        out->real[i] = a.real[i];
    if (a.imag != nullptr)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = a.imag[i];
    return 0;
}

long daAdd(float s, daVector a, daVector* out)
{
    if (daCheckOne("daAdd", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daAdd", out, a.length, a.imag != nullptr, __LINE__, daSecondAllocFailure::KeepFirst))
        return 1;
    for (long i = 0; i < a.length; ++i)
        out->real[i] = static_cast<float>(static_cast<double>(s) + a.real[i]);
    if (a.imag != nullptr)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = a.imag[i];
    return 0;
}

long daAdd(daComplex c, daVector a, daVector* out)
{
    if (daCheckOne("daAdd", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daAdd", out, a.length, true, __LINE__))
        return 1;
    for (long i = 0; i < a.length; ++i) {
        out->real[i] = static_cast<float>(static_cast<double>(c.real) + a.real[i]);
        out->imag[i] = static_cast<float>(c.imag + daImagAt(a, i));
    }
    return 0;
}

long daAdd(daVector a, daVector b, daVector* out)
{
    if (daBeginTwo("daAdd", a, b, out, __LINE__))
        return 1;
    const bool complex = a.imag != nullptr || b.imag != nullptr;
    daSumFloats(a.real, b.real, out->real, a.length);
    if (a.imag != nullptr && b.imag != nullptr)
        daSumFloats(a.imag, b.imag, out->imag, a.length);
    else if (complex)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = static_cast<float>(daImagAt(a, i) + daImagAt(b, i));
    return 0;
}

long daLinearCombination(daVector a, daVector b, daVector* out, float x, float y)
{
    if (daBeginTwo("daLinearCombination", a, b, out, __LINE__))
        return 1;
    const bool complex = a.imag != nullptr || b.imag != nullptr;
    const double wa = x;
    const double wb = y;
    for (long i = 0; i < a.length; ++i)
        out->real[i] = static_cast<float>(wa * a.real[i] + wb * b.real[i]);
    if (complex)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = static_cast<float>(wa * daImagAt(a, i) + wb * daImagAt(b, i));
    return 0;
}

long daMultiply(float s, daVector a, daVector* out)
{
    if (daCheckOne("daMultiply", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daMultiply", out, a.length, a.imag != nullptr, __LINE__, daSecondAllocFailure::KeepFirst))
        return 1;
    const double factor = s;
    for (long i = 0; i < a.length; ++i)
        out->real[i] = static_cast<float>(factor * a.real[i]);
    if (a.imag != nullptr)
        for (long i = 0; i < a.length; ++i)
            out->imag[i] = static_cast<float>(factor * a.imag[i]);
    return 0;
}

long daMultiply(daComplex c, daVector a, daVector* out)
{
    if (daCheckOne("daMultiply", a, out, __LINE__))
        return 1;
    daClearOutput(out);
    if (daAllocOutput("daMultiply", out, a.length, true, __LINE__))
        return 1;
    const double cr = c.real;
    const double ci = c.imag;
    for (long i = 0; i < a.length; ++i) {
        double re = a.real[i];
        double im = daImagAt(a, i);
        out->real[i] = static_cast<float>(cr * re - ci * im);
        out->imag[i] = static_cast<float>(cr * im + ci * re);
    }
    return 0;
}

long daMultiply(daVector a, daVector b, daVector* out)
{
    if (daBeginTwo("daMultiply", a, b, out, __LINE__))
        return 1;
    const bool complex = a.imag != nullptr || b.imag != nullptr;
    if (!complex) {
        // The product of two floats is exact in double, so the float product rounds the same.
        for (long i = 0; i < a.length; ++i)
            out->real[i] = a.real[i] * b.real[i];
        return 0;
    }
    for (long i = 0; i < a.length; ++i) {
        double ar = a.real[i];
        double ai = daImagAt(a, i);
        double br = b.real[i];
        double bi = daImagAt(b, i);
        out->real[i] = static_cast<float>(ar * br - ai * bi);
        if (complex)
            out->imag[i] = static_cast<float>(ai * br + bi * ar);
    }
    return 0;
}
