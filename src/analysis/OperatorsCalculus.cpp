// Measurement operators: integration and differentiation, in the frequency domain by (jω)^n and on
// other records by running sums and differences; weighting curves and acoustic intensity.
#include <cmath>
#include <vector>

#include "analysis/OperatorFrame.h"
#include "nvdl/daArithmetic.h"
#include "nvdl/daSignal.h"

namespace nvdl {

namespace {

HRESULT beginResult(IMeasurement** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return S_OK;
}

bool isPowerFunction(LONG type) {
    switch (type) {
        case kFnAutopower:
        case kFnCrosspower:
        case kFnPsd:
        case kFnCrossSpectralDensity:
        case kFnEsd:
        case kFnCrossEsd:
        case kFnSoundIntensity:
        case kFnSoundPower: return true;
        default: return false;
    }
}

}  // namespace

HRESULT CMeasurement::Integrate(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    if (m_functionType == kFnSpectrum || m_functionType == kFnFrf) return jwn(-1, result);
    return SumIntegrate(result);
}

HRESULT CMeasurement::Differentiate(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    if (m_functionType == kFnSpectrum || m_functionType == kFnFrf) return jwn(1, result);
    return SumDifferentiate(result);
}

HRESULT CMeasurement::jwn(LONG power, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        double factor = 1.0;
        if (!OperatorFrame::frequencyFactor(*this, factor)) {
            showOperatorMessage("jwn requires frequency or RPM X-axis");
            return E_INVALIDARG;
        }
        if (power == 0) return E_INVALIDARG;
        LoadFromDisk();
        std::vector<float> f = OperatorFrame::frequencies(*this, factor);
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        const daVector frequency{f.data(), nullptr, static_cast<long>(f.size())};
        KernelOutput record;
        if (power > 0) daDifferentiationFreqDomain(OperatorFrame::view(*this), &record, frequency, power);
        else daIntegrationFreqDomain(OperatorFrame::view(*this), &record, frequency, -power);
        OperatorFrame::adopt(*out.get(), record);
        OperatorFrame::powerDimension(*out.get(), *this, power);
        return handOut(out.release(), result);
    });
}

namespace {

// Running sum (step 1) or difference (step -1) of an equidistant record or a histogram, scaled by
// `scale`; the kernel's records are taken over by the result.
void sumOrDifference(CMeasurement& result, daVector source, int step, float scale, bool scaled) {
    KernelOutput record;
    if (step > 0) daSum(source, &record);
    else if (source.length > 0) daDifference(source, &record);
    if (!scaled) {
        OperatorFrame::adopt(result, record);
        return;
    }
    KernelOutput product;
    daMultiply(scale, record, &product);
    OperatorFrame::adopt(result, product);
}

}  // namespace

HRESULT CMeasurement::SumIntegrate(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::copyOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        LoadFromDisk();
        if (m_functionType == kFnHistogram) {
            sumOrDifference(r, OperatorFrame::view(*this), 1, 1.0f, false);
            return handOut(out.release(), result);
        }
        if (m_xAxisType == kAxisEquidistant) {
            sumOrDifference(r, OperatorFrame::view(*this), 1, m_xIncrement, true);
        } else {
            // Rectangles from each point to the next, starting from zero.
            const std::size_t n = std::min(r.m_yReal.size(), static_cast<std::size_t>(std::max<LONG>(r.m_size, 0)));
            const SampleVector re = r.m_yReal, im = r.m_yImag;
            for (SampleVector* y : {&r.m_yReal, &r.m_yImag}) {
                const SampleVector& y0 = y == &r.m_yReal ? re : im;
                if (y->size() < n || n == 0) continue;
                (*y)[0] = 0.0f;
                for (std::size_t i = 1; i < n; ++i)
                    (*y)[i] = static_cast<float>((*y)[i - 1] +
                                                 (OperatorFrame::xAt(r, static_cast<LONG>(i)) -
                                                  OperatorFrame::xAt(r, static_cast<LONG>(i - 1))) * y0[i - 1]);
            }
        }
        OperatorFrame::powerDimension(r, *this, 1);
        return handOut(out.release(), result);
    });
}

HRESULT CMeasurement::SumDifferentiate(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::copyOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        LoadFromDisk();
        if (m_functionType == kFnHistogram) {
            sumOrDifference(r, OperatorFrame::view(*this), -1, 1.0f, false);
            return handOut(out.release(), result);
        }
        if (m_xAxisType == kAxisEquidistant) {
            sumOrDifference(r, OperatorFrame::view(*this), -1, m_xIncrement == 0.0f ? 1.0f : 1.0f / m_xIncrement, true);
        } else {
            // Forward differences; the last point repeats the one before it.
            const std::size_t n = std::min(r.m_yReal.size(), static_cast<std::size_t>(std::max<LONG>(r.m_size, 0)));
            for (SampleVector* y : {&r.m_yReal, &r.m_yImag}) {
                if (y->size() < n || n == 0) continue;
                for (std::size_t i = 0; i + 1 < n; ++i)
                    (*y)[i] = static_cast<float>((static_cast<double>((*y)[i + 1]) - (*y)[i]) /
                                                 (OperatorFrame::xAt(r, static_cast<LONG>(i + 1)) -
                                                  OperatorFrame::xAt(r, static_cast<LONG>(i))));
                (*y)[n - 1] = n > 1 ? (*y)[n - 2] : 0.0f;
            }
        }
        OperatorFrame::powerDimension(r, *this, -1);
        return handOut(out.release(), result);
    });
}

// The gain curve of an acoustic weighting at this measurement's frequencies: an amplitude gain,
// or a power gain for power-like function types.
HRESULT CMeasurement::WeightingFunction(BSTR weighting, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        double factor = 1.0;
        if (!OperatorFrame::frequencyFactor(*this, factor)) {
            showOperatorMessage("WeightingFunction requires frequency or RPM X-axis");
            return E_INVALIDARG;
        }
        const std::string name = bstrToAnsi(weighting);
        long type = 0;
        if (name == "A") type = 1;
        else if (name == "B") type = 2;
        else if (name == "C") type = 3;
        else if (name == "D") type = 4;
        else return E_INVALIDARG;
        if (isPowerFunction(m_functionType)) type += 10;

        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        r.m_yImag.clear();
        r.m_complex = 0;
        r.m_functionType = kFnWeighting;
        r.m_acousticWeighting = name;
        std::vector<float> f = OperatorFrame::frequencies(*this, factor);
        KernelOutput curve;
        daAcousticWeight(daVector{f.data(), nullptr, static_cast<long>(f.size())}, &curve, type);
        const std::size_t n = f.size();
        if (curve.real && curve.length == static_cast<long>(n)) r.m_yReal.assign(curve.real, curve.real + n);
        else r.m_yReal.assign(n, 1.0f);
        OperatorFrame::settleSize(r, static_cast<LONG>(n));
        OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::zeroDimension());
        return handOut(out.release(), result);
    });
}

// Sound intensity from the imaginary part of a cross spectrum between two microphones: `a` and `b`
// are the air density and the spacing of the pair (each 1 when not above 0).
HRESULT CMeasurement::AcousticIntensity(float a, float b, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        if (a <= 0.0f) a = 1.0f;
        if (b <= 0.0f) b = 1.0f;
        double c = 0.0;
        switch (m_functionType) {
            case kFnCrosspower: c = 1.0; break;
            case kFnPsd:
            case kFnCrossSpectralDensity:
            case kFnEsd:
            case kFnCrossEsd: c = m_xIncrement; break;
            default: return E_INVALIDARG;
        }
        LoadFromDisk();
        ComPtr<CMeasurement> out(OperatorFrame::copyOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        r.put_Complex(VARIANT_FALSE);
        const double pi = std::atan(1.0) * 4.0;
        const double k = c / (4.0 * pi * a * b);
        const std::size_t n = std::min(r.m_yReal.size(), static_cast<std::size_t>(std::max<LONG>(m_size, 0)));
        for (std::size_t i = 0; i < n; ++i) {
            const double x = OperatorFrame::xAt(*this, static_cast<LONG>(i));
            const double im = i < m_yImag.size() ? m_yImag[i] : 0.0;
            r.m_yReal[i] = x > 0.0 ? static_cast<float>(im * k / x) : 0.0f;
        }
        r.m_functionType = kFnSoundIntensity;
        DimensionExponents e{};
        e[1] = -3;
        e[2] = 1;
        OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::dimensionFrom(e));
        return handOut(out.release(), result);
    });
}

}  // namespace nvdl
