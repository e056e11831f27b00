// Measurement operators: transforms, spectral estimates, windows and noise.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <vector>

#include "analysis/OperatorFrame.h"
#include "dspLib/daVectorLoops.h"
#include "nvdl/daSignal.h"
#include "nvdl/daSpectra.h"
#include "platform/Host.h"
#include "nvdl/Variant.h"

namespace nvdl {

namespace {

constexpr HRESULT kNotSpectra = static_cast<HRESULT>(0x800A017C);

enum class Direction { None, Forward, Inverse };

struct Transform {
    Direction direction;
    LONG resultType;
};

// Which way a function type goes through the transform, and what it becomes.
Transform transformOf(LONG functionType) {
    switch (functionType) {
        case kFnTimeRecord:
        case kFnHistogram:
        case kFnProbDistribution:
        case kFnProbDensity:
        case kFnWindow: return {Direction::Forward, kFnSpectrum};
        case kFnSpectrum:
        case kFnCoherence:
        case kFnMultipleCoherence:
        case kFnPartialCoherence:
        case kFnVirtualCoherence: return {Direction::Inverse, kFnTimeRecord};
        case kFnAutopower: return {Direction::Inverse, kFnAutocorrelation};
        case kFnCrosspower:
        case kFnPsd:
        case kFnCrossSpectralDensity:
        case kFnEsd:
        case kFnCrossEsd: return {Direction::Inverse, kFnCrosscorrelation};
        case kFnAutocorrelation: return {Direction::Forward, kFnAutopower};
        case kFnCrosscorrelation: return {Direction::Forward, kFnCrosspower};
        case kFnFrf: return {Direction::Inverse, kFnImpulseResponse};
        case kFnImpulseResponse: return {Direction::Forward, kFnFrf};
        default: return {Direction::None, functionType};
    }
}

HRESULT beginResult(IMeasurement** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return S_OK;
}

// The last window made, kept for the next block of the same kind: block-wise analysis asks for
// the same window over and over. Each thread keeps its own.
struct WindowCache {
    daeWindow type{};
    long size = -1;
    float height = 0.0f, parameter = 0.0f, offset = 0.0f;
    std::vector<float> values;
};

void windowInto(CMeasurement& result, daeWindow type, long size, float height, float parameter, float offset) {
    static thread_local WindowCache cache;
    if (!(cache.size == size && cache.type == type && cache.height == height && cache.parameter == parameter &&
          cache.offset == offset)) {
        KernelOutput record;
        daWindow(type, &record, size, height, parameter, offset);
        if (!record.real) {
            OperatorFrame::adopt(result, record);
            return;
        }
        cache.values.assign(record.real, record.real + record.length);
        cache.type = type;
        cache.size = size;
        cache.height = height;
        cache.parameter = parameter;
        cache.offset = offset;
    }
    OperatorFrame::setRealVector(result, cache.values);
}

}  // namespace

HRESULT CMeasurement::Fft(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        const LONG n = m_size;
        if (n < 1) return E_INVALIDARG;
        LoadFromDisk();
        // Start and step of the axis; an arbitrary axis must be equidistant within 1%.
        double x0 = 0.0, dx = 0.0;
        if (m_xAxisType == kAxisEquidistant) {
            x0 = m_xStart;
            dx = m_xIncrement;
        } else if (m_xAxisType == kAxisArbitrary) {
            if (n < 2 || m_x.size() < static_cast<std::size_t>(n)) return E_INVALIDARG;
            x0 = m_x[0];
            dx = (static_cast<double>(m_x[n - 1]) - m_x[0]) / (n - 1);
            for (LONG i = 1; i < n; ++i)
                if (std::fabs((static_cast<double>(m_x[i]) - m_x[i - 1]) - dx) > 0.01 * dx) return E_INVALIDARG;
        } else {
            return E_INVALIDARG;
        }
        if (!(dx > 0.0)) return E_INVALIDARG;

        const Transform t = transformOf(m_functionType);
        ComPtr<CMeasurement> out(t.direction == Direction::None ? OperatorFrame::copyOf(*this) : OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        if (r.m_xAxisType == kAxisArbitrary) {
            r.m_x.clear();
            r.m_optimizedX.clear();
            r.m_xAxisType = kAxisEquidistant;
        }
        if (t.direction == Direction::None) return handOut(out.release(), result);

        KernelOutput record;
        if (t.direction == Direction::Forward) {
            r.m_xIncrement = static_cast<float>(1.0 / (n * dx));
            daFft(OperatorFrame::view(*this), &record);
        } else {
            // Lines missing below the first one are restored as zeros, so that a zoomed spectrum
            // comes back to its true place in time.
            const long missing = static_cast<long>(x0 / dx + 0.5);
            long lines = n;
            if (missing < 1) {
                daInverseFft(OperatorFrame::view(*this), &record);
            } else {
                lines = n + missing;
                const daVector v = OperatorFrame::view(*this);
                std::vector<float> re(static_cast<std::size_t>(lines), 0.0f), im(static_cast<std::size_t>(lines), 0.0f);
                std::copy(v.real, v.real + v.length, re.begin() + missing);
                if (v.imag) std::copy(v.imag, v.imag + v.length, im.begin() + missing);
                daInverseFft(daVector{re.data(), im.data(), lines}, &record);
            }
            const double samples = 2.0 * lines - 2.0;
            r.m_xStart = 0.0f;
            r.m_xIncrement = samples < 1.0 ? 1.0f : static_cast<float>(1.0 / (samples * dx));
        }
        OperatorFrame::adopt(r, record);
        r.m_functionType = t.resultType;
        if (!DimensionIsUnknown(m_xdDimension)) {
            DimensionExponents e = OperatorFrame::exponentsOf(m_xdDimension);
            for (SHORT& x : e) x = static_cast<SHORT>(-x);
            OperatorFrame::setDimension(r.m_xdDimension, OperatorFrame::dimensionFrom(e));
        }
        return handOut(out.release(), result);
    });
}

HRESULT CMeasurement::Psd(IMeasurement* other, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    CMeasurement* o = from(other);
    if (!o) return E_POINTER;
    long progress = 0;
    try {
        if (m_functionType != kFnSpectrum || o->m_functionType != kFnSpectrum) return kNotSpectra;
        progress = 1;
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        progress = 2;
        const LONG n = std::min(m_size, o->m_size);
        LoadFromDisk();
        o->LoadFromDisk();
        KernelOutput record;
        daPsd(OperatorFrame::view(*this, n), OperatorFrame::view(*o, n), &record, m_xIncrement);
        progress = 3;
        // One-sided peak spectra: half the squared amplitude is the power, spread over the window's
        // noise bandwidth.
        const float scale = static_cast<float>(1.0 / (2.0 * m_bandwidthCorrectionFactor));
        for (float* part : {record.real, record.imag})
            if (part) daScaleFloats(part, part, record.length, scale);
        OperatorFrame::adopt(r, record);
        progress = 4;
        r.m_bandwidthCorrectionFactor = 1.0f;
        r.m_functionType = kFnPsd;
        r.m_reference = m_response;
        r.m_referenceChannel = m_responseChannel;
        r.m_response = o->m_response;
        r.m_responseChannel = o->m_responseChannel;
        progress = 5;
        if (DimensionIsUnknown(m_ydDimension)) {
            // stays as copied
        } else if (DimensionIsUnknown(o->m_ydDimension)) {
            OperatorFrame::shareDimension(r.m_ydDimension, o->m_ydDimension);
        } else if (DimensionIsUnknown(m_xdDimension)) {
            OperatorFrame::shareDimension(r.m_ydDimension, m_xdDimension);
        } else if (DimensionIsUnknown(o->m_xdDimension)) {
            OperatorFrame::shareDimension(r.m_ydDimension, o->m_xdDimension);
        } else {
            const DimensionExponents ya = OperatorFrame::exponentsOf(m_ydDimension);
            const DimensionExponents yb = OperatorFrame::exponentsOf(o->m_ydDimension);
            const DimensionExponents xa = OperatorFrame::exponentsOf(m_xdDimension);
            const DimensionExponents xb = OperatorFrame::exponentsOf(o->m_xdDimension);
            DimensionExponents e{};
            for (std::size_t i = 0; i < e.size(); ++i) e[i] = static_cast<SHORT>((ya[i] + yb[i]) - (xa[i] + xb[i]) / 2);
            OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::dimensionFrom(e));
        }
        progress = 6;
        return handOut(out.release(), result);
    } catch (...) {
        char text[400];
        std::snprintf(text, sizeof text,
                      "Sonvara encountered an unexpected error.\nPlease report it to support@norvane-instruments.com, "
                      "quoting: Measurement(%ld)",
                      progress);
        host::messageBox(text, "Unexpected error.", host::MB_OK);
        return E_FAIL;
    }
}

HRESULT CMeasurement::Frf(IMeasurement* other, VARIANT estimator, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    CMeasurement* o = from(other);
    if (!o) return E_POINTER;
    return guardedOperator([&]() -> HRESULT {
        // A number is taken as it is; a text selects the second estimator only as "H2".
        long form = 1;
        Variant number;
        HRESULT h = VariantChangeType(&number, &estimator, 0, VT_I4);
        if (SUCCEEDED(h)) {
            form = number.lVal;
        } else if (h == DISP_E_TYPEMISMATCH) {
            Variant text;
            if (SUCCEEDED(VariantChangeType(&text, &estimator, 0, VT_BSTR))) {
                std::string name = bstrToAnsi(text.bstrVal);
                for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
                if (name == "H2") form = 2;
            }
        }
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        const LONG n = std::min(m_size, o->m_size);
        LoadFromDisk();
        o->LoadFromDisk();
        KernelOutput record;
        daFrf(OperatorFrame::view(*this, n), OperatorFrame::view(*o, n), &record, form, 1.0e-30f);
        OperatorFrame::adopt(r, record);
        r.m_functionType = kFnFrf;
        if (DimensionIsUnknown(m_ydDimension)) {
            // stays as copied
        } else if (DimensionIsUnknown(o->m_ydDimension)) {
            OperatorFrame::shareDimension(r.m_ydDimension, o->m_ydDimension);
        } else {
            DimensionExponents e = OperatorFrame::exponentsOf(m_ydDimension);
            const DimensionExponents f = OperatorFrame::exponentsOf(o->m_ydDimension);
            for (std::size_t i = 0; i < e.size(); ++i) e[i] = static_cast<SHORT>(e[i] - f[i]);
            OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::dimensionFrom(e));
        }
        return handOut(out.release(), result);
    });
}

HRESULT CMeasurement::Coherence(IMeasurement* auto1, IMeasurement* auto2, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    CMeasurement* a1 = from(auto1);
    CMeasurement* a2 = from(auto2);
    if (!a1 || !a2) return E_POINTER;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        const LONG n = std::min({m_size, a1->m_size, a2->m_size});
        LoadFromDisk();
        a1->LoadFromDisk();
        a2->LoadFromDisk();
        KernelOutput record;
        daCoherence(OperatorFrame::view(*this, n), OperatorFrame::view(*a1, n), OperatorFrame::view(*a2, n), &record);
        OperatorFrame::adopt(r, record);
        r.m_functionType = kFnCoherence;
        OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::zeroDimension());
        return handOut(out.release(), result);
    });
}

// The window of this measurement's type, as long as the measurement. This measurement keeps the
// window's energy correction in its BandwidthCorrectionFactor afterwards, which later spectra use.
HRESULT CMeasurement::Window(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        const daWindowCorrection correction = daGetWindowCorrection(m_windowType);
        const float offset = m_windowType == kWindowForce ? m_overlap : 0.0f;
        float height = 1.0f;
        if (m_bandwidthCorrectionFactor == 0.0f) height = correction.amplitudeCorrection;
        else if (m_bandwidthCorrectionFactor < 0.0f) height = -m_bandwidthCorrectionFactor;
        put_BandwidthCorrectionFactor(correction.bandwidthCorrectionFactor);
        windowInto(r, correction.window, m_size, height, m_windowParameter, offset);
        OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::zeroDimension());
        return handOut(out.release(), result);
    });
}

HRESULT CMeasurement::WhiteNoise(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        KernelOutput record;
        float peak = 0.0f;
        daWhiteNoise(&record, &peak, m_size, 2.0f, 0.0f, 0.5f, 1.0f, 1.0f);
        OperatorFrame::adopt(r, record);
        r.m_functionType = kFnTimeRecord;
        return handOut(out.release(), result);
    });
}

}  // namespace nvdl
