// Octave analysis of a measurement: a band record synthesised from the lines of its spectrum.
//
// On the direct route the spectrum's real vector is overwritten by its amplitudes, and the
// measurement's BandwidthCorrectionFactor ends at 1.0; a time record is first windowed (amplitude-
// corrected Hanning, which leaves WindowType "Hanning") and transformed. These lasting effects are
// what callers of the system expect on a second call.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "analysis/OctaveBands.h"
#include "analysis/OperatorFrame.h"
#include "nvdl/Bstr.h"
#include "nvdl/Variant.h"

namespace nvdl {

namespace {

bool isSpectrumLike(LONG type) {
    switch (type) {
        case kFnSpectrum:
        case kFnAutopower:
        case kFnSoundPressure:
        case kFnSoundPowerLevel:
        case kFnSoundPower: return true;
        default: return false;
    }
}

// The band arrays of the helpers, freed unless taken over.
struct BandArrays {
    int count = 0;
    float* x = nullptr;
    float* y = nullptr;
    ~BandArrays() {
        std::free(x);
        std::free(y);
    }
};

}  // namespace

HRESULT CMeasurement::Octave(LONG bandsPerOctave, IMeasurement** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return guardedOperator([&]() -> HRESULT {
        if (m_xAxisType != kAxisEquidistant) {
            ComPtr<CMeasurement> copy(OperatorFrame::copyOf(*this));
            if (!copy) return E_OUTOFMEMORY;
            copy->m_xAxisType = kAxisOctaves;
            return handOut(copy.release(), result);
        }

        BandArrays bands;
        ComPtr<CMeasurement> spectrum;  // the data on the time route
        CMeasurement* data = this;
        if (m_functionType == kFnTimeRecord) {
            put_WindowType(Variant::fromLong(kWindowHanning));
            put_BandwidthCorrectionFactor(0.0f);
            IMeasurement* window = nullptr;
            if (HRESULT h = Window(&window); FAILED(h)) return h;
            ComPtr<IMeasurement> heldWindow(window);
            IMeasurement* product = nullptr;
            if (HRESULT h = Multiply(window, &product); FAILED(h)) return h;
            ComPtr<IMeasurement> heldProduct(product);
            IMeasurement* transformed = nullptr;
            if (HRESULT h = product->Fft(&transformed); FAILED(h)) return h;
            spectrum.reset(from(transformed));
            data = spectrum.get();
        } else if (m_functionType == kFnSoundIntensity) {
            octaves_from_ai(m_yReal.data(), static_cast<int>(std::min<std::size_t>(m_yReal.size(), std::max<LONG>(m_size, 0))),
                            m_xIncrement, bandsPerOctave, &bands.count, &bands.x, &bands.y);
        } else if (!isSpectrumLike(m_functionType)) {
            const std::u16string_view* type = measurementEnumTable().lookupString(m_functionType);
            char what[64];
            if (type && !type->empty()) std::snprintf(what, sizeof what, "%s type", Bstr(*type).ansi().c_str());
            else std::snprintf(what, sizeof what, "type %ld", static_cast<long>(m_functionType));
            showOperatorMessage(std::string("Octave computation does not work on ") + what + ".");
            ComPtr<CMeasurement> copy(OperatorFrame::copyOf(*this));
            if (!copy) return E_OUTOFMEMORY;
            return handOut(copy.release(), result);
        }

        if (m_functionType != kFnSoundIntensity) {
            // Amplitudes of the lines, in place, then the bands; the energy correction of the
            // window that made the spectrum scales the band power.
            const std::size_t n = std::min(data->m_yReal.size(), static_cast<std::size_t>(std::max<LONG>(data->m_size, 0)));
            for (std::size_t i = 0; i < n; ++i) {
                const double re = data->m_yReal[i];
                const double im = i < data->m_yImag.size() ? data->m_yImag[i] : 0.0;
                data->m_yReal[i] = static_cast<float>(std::sqrt(re * re + im * im));
            }
            const float factor = m_bandwidthCorrectionFactor > 1.0f ? 1.0f / m_bandwidthCorrectionFactor : 1.0f;
            octaves_from_spectra(data->m_yReal.data(), static_cast<int>(n), data->m_xIncrement, bandsPerOctave, factor,
                                 &bands.count, &bands.x, &bands.y);
            put_BandwidthCorrectionFactor(1.0f);
        }

        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        const std::size_t count = static_cast<std::size_t>(std::max(bands.count, 0));
        r.m_xAxisType = kAxisOctaves;
        r.m_x.assign(bands.x, bands.x + (bands.x ? count : 0));
        r.m_yReal.assign(bands.y, bands.y + (bands.y ? count : 0));
        r.m_yImag.clear();
        r.m_complex = 0;
        OperatorFrame::settleSize(r, static_cast<LONG>(r.m_yReal.size()));
        r.m_functionType = data->m_functionType;
        Bstr name;
        get_Name(name.out());
        r.m_name = "Oct(" + name.ansi() + ")";
        OperatorFrame::shareDimension(r.m_xdDimension, data->m_xdDimension);
        OperatorFrame::shareDimension(r.m_ydDimension, data->m_ydDimension);
        return handOut(out.release(), result);
    });
}

}  // namespace nvdl
