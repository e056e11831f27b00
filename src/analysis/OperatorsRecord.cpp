// Measurement operators on the record as a whole: histograms, RMS figures, the complex square root,
// concatenation and the min/max picture of a long record.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "analysis/OperatorFrame.h"
#include "nvdl/daArithmetic.h"
#include "nvdl/daSignal.h"
#include "nvdl/Bstr.h"

namespace nvdl {

namespace {

HRESULT beginResult(IMeasurement** result) {
    if (!result) return E_POINTER;
    *result = nullptr;
    return S_OK;
}

// A kernel record holding a malloc'ed copy of a vector, for kernel calls that add to their output.
void fillRecord(KernelOutput& record, const std::vector<float>& values) {
    record.real = static_cast<float*>(std::malloc(std::max<std::size_t>(values.size(), 1) * sizeof(float)));
    if (!record.real) throw std::bad_alloc();
    if (!values.empty()) std::memcpy(record.real, values.data(), values.size() * sizeof(float));
    record.length = static_cast<long>(values.size());
}

}  // namespace

HRESULT CMeasurement::Histogram(LONG classes, float minimum, float maximum, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    return guardedOperator([&]() -> HRESULT {
        ComPtr<CMeasurement> out(OperatorFrame::resultOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        LoadFromDisk();
        const daVector data = OperatorFrame::view(*this);
        if (minimum == 0.0f && maximum == 0.0f) {
            float peak = 0.0f;
            long index = 0;
            daMaxAmpl(data, &peak, &index);
            minimum = -1.5f * peak;
            maximum = 1.5f * peak;
        }
        KernelOutput counts;
        daHistogram(data, &counts, classes, minimum, maximum, 1);
        r.m_x.clear();
        OperatorFrame::adopt(r, counts);
        r.m_functionType = kFnHistogram;
        r.m_xAxisType = kAxisEquidistant;
        r.m_xStart = minimum;
        if (classes > 1) r.m_xIncrement = (maximum - minimum) / static_cast<float>(classes - 1);
        OperatorFrame::shareDimension(r.m_xdDimension, m_ydDimension);
        OperatorFrame::setDimension(r.m_ydDimension, OperatorFrame::zeroDimension());
        return handOut(out.release(), result);
    });
}

// Adds the values of `other` to this running histogram; a measurement that is no histogram yet
// starts one of 101 classes over ±1.5 times the other's peak.
HRESULT CMeasurement::HistogramAdd(IMeasurement* other) {
    CMeasurement* o = from(other);
    if (!o) return E_POINTER;
    return guardedOperator([&]() -> HRESULT {
        o->LoadFromDisk();
        LoadFromDisk();
        const daVector data = OperatorFrame::view(*o);
        long classes = 101;
        float minimum = 0.0f, maximum = 0.0f;
        KernelOutput counts;
        if (m_functionType == kFnHistogram) {
            minimum = m_xStart;
            maximum = static_cast<float>((m_size - 1) * static_cast<double>(m_xIncrement) + m_xStart);
            classes = std::max<long>(m_size, 2);
            std::vector<float> existing(m_yReal.begin(), m_yReal.begin() + std::min<std::size_t>(m_yReal.size(), std::max<LONG>(m_size, 0)));
            fillRecord(counts, existing);
        } else {
            float peak = 0.0f;
            long index = 0;
            daMaxAmpl(data, &peak, &index);
            minimum = -1.5f * peak;
            maximum = 1.5f * peak;
        }
        daHistogram(data, &counts, classes, minimum, maximum, 1);
        m_x.clear();
        OperatorFrame::adopt(*this, counts);
        m_yImag.clear();
        m_complex = 0;
        m_functionType = kFnHistogram;
        m_xStart = minimum;
        m_xIncrement = (maximum - minimum) / static_cast<float>(classes - 1);
        OperatorFrame::shareDimension(m_xdDimension, o->m_ydDimension);
        OperatorFrame::setDimension(m_ydDimension, OperatorFrame::zeroDimension());
        return S_OK;
    });
}

HRESULT CMeasurement::Rms(float* rms) {
    if (!rms) return E_POINTER;
    return Rms2(0, m_size - 1, rms);
}

HRESULT CMeasurement::Rms3(LONG first, LONG last, LONG code, float* rms) {
    if (!rms) return E_POINTER;
    *rms = static_cast<float>(code);
    return Rms2(first, last, rms);
}

// The RMS figure of elements first..last, scaled by the function type; *rms carries the amplitude
// convention code in.
HRESULT CMeasurement::Rms2(LONG first, LONG last, float* rms) {
    if (!rms) return E_POINTER;
    return guardedOperator([&]() -> HRESULT {
        LoadFromDisk();
        daRmsSource source{};
        source.y = OperatorFrame::view(*this);
        source.functionType = m_functionType;
        source.xAxisType = m_xAxisType;
        source.windowType = m_windowType;
        source.xIncrement = m_xIncrement;
        source.firstX = m_size > 0 ? static_cast<float>(OperatorFrame::xAt(*this, 0)) : 0.0f;
        if (m_xdDimension && !DimensionIsUnknown(m_xdDimension)) {
            const DimensionExponents e = OperatorFrame::exponentsOf(m_xdDimension);
            bool perSecond = e[1] == -1 && (e[9] == 0 || e[9] == 1);
            for (std::size_t i = 0; i < 9; ++i)
                if (i != 1 && e[i] != 0) perSecond = false;
            source.frequencyAxis = perSecond;
        }
        const std::string xName = DimensionName(m_xdDimension);
        source.loudnessAxes = (xName == "Frequency" || xName == "1/s") &&
                              equalsIgnoringCase(DimensionName(m_ydDimension), "Loudness");
        source.bandwidthCorrectionFactor = &m_bandwidthCorrectionFactor;
        return daRmsOfMeasurement(source, first, last, rms) == 0 ? S_OK : E_FAIL;
    });
}

// The complex square root, element by element, from amplitude and phase.
HRESULT CMeasurement::sqr(IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    if (m_size < 1) return E_INVALIDARG;
    return guardedOperator([&]() -> HRESULT {
        LoadFromDisk();
        ComPtr<CMeasurement> out(OperatorFrame::copyOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        if (!r.m_complex && FAILED(r.put_Complex(VARIANT_TRUE))) return E_FAIL;
        for (LONG i = 0; i < r.m_size; ++i) {
            float amplitude = 0.0f, phase = 0.0f;
            if (FAILED(r.get_Amplitude(i, &amplitude)) || FAILED(r.get_Phase(i, &phase))) return E_FAIL;
            const double root = std::sqrt(static_cast<double>(amplitude));
            r.m_yReal[static_cast<std::size_t>(i)] = static_cast<float>(root * std::cos(phase / 2.0));
            r.m_yImag[static_cast<std::size_t>(i)] = static_cast<float>(root * std::sin(phase / 2.0));
        }
        Bstr name;
        if (FAILED(get_Name(name.out()))) return E_FAIL;
        if (FAILED(r.put_Name(Bstr(std::string_view("Sqr(" + name.ansi() + ")")).get()))) return E_FAIL;
        if (m_ydDimension) {
            IDispatch* root = SquareRootDimension(m_ydDimension);
            if (!root) return E_FAIL;
            OperatorFrame::setDimension(r.m_ydDimension, root);
        }
        return handOut(out.release(), result);
    });
}

// This record followed by the other one: Y values, the X vector on axes that have one, and the
// imaginary values when this record is complex (zeros where the other one has none).
HRESULT CMeasurement::Concatenate(IMeasurement* other, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    CMeasurement* o = from(other);
    if (!o) return E_POINTER;
    return guardedOperator([&]() -> HRESULT {
        LoadFromDisk();
        o->LoadFromDisk();
        ComPtr<CMeasurement> out(OperatorFrame::copyOf(*this));
        if (!out) return E_OUTOFMEMORY;
        CMeasurement& r = *out.get();
        const LONG first = m_size, second = o->m_size;
        const LONG total = first + second;
        if (FAILED(r.put_Size(total)) || r.m_size != total) return E_OUTOFMEMORY;
        auto append = [&](SampleVector& to, const SampleVector& from) {
            for (LONG i = 0; i < second; ++i)
                to[static_cast<std::size_t>(first + i)] = static_cast<std::size_t>(i) < from.size() ? from[static_cast<std::size_t>(i)] : 0.0f;
        };
        if (axisHasXVector(m_xAxisType) && r.m_x.size() == static_cast<std::size_t>(total)) append(r.m_x, o->m_x);
        append(r.m_yReal, o->m_yReal);
        if (m_complex && r.m_yImag.size() == static_cast<std::size_t>(total)) append(r.m_yImag, o->m_yImag);
        return handOut(out.release(), result);
    });
}

namespace {

// `points` values from `source`: straight across when it is not longer, else a minimum and a
// maximum for each block of up to 1024 samples.
SampleVector minMaxPicture(const SampleVector& source, LONG size, LONG points) {
    SampleVector picture;
    picture.assign(static_cast<std::size_t>(points), 0.0f);
    if (size <= points || points < 2) {
        std::copy_n(source.begin(), std::min<std::size_t>({source.size(), static_cast<std::size_t>(std::max<LONG>(size, 0)), picture.size()}),
                    picture.begin());
        return picture;
    }
    const LONG blocks = points / 2;
    const LONG chunk = std::min<LONG>(size / blocks, 1024);
    for (LONG b = 0; b < blocks; ++b) {
        auto begin = source.begin() + static_cast<std::ptrdiff_t>(b) * chunk;
        auto [low, high] = std::minmax_element(begin, begin + chunk);
        picture[static_cast<std::size_t>(2 * b)] = *low;
        picture[static_cast<std::size_t>(2 * b + 1)] = *high;
    }
    return picture;
}

}  // namespace

HRESULT CMeasurement::Compress(LONG points, IMeasurement** result) {
    if (HRESULT h = beginResult(result); FAILED(h)) return h;
    if (points < 1 || m_xAxisType != kAxisEquidistant) return E_FAIL;
    const double duration = static_cast<double>(m_size) * m_xIncrement;
    if (duration == 0.0) return E_FAIL;
    return guardedOperator([&]() -> HRESULT {
        LoadFromDisk();
        ComPtr<CMeasurement> out(CMeasurement::createMeasurement());
        CMeasurement& r = *out.get();
        copyEngine(r, true);
        if (FAILED(r.put_Size(points))) return E_OUTOFMEMORY;
        if (points < m_size) r.m_xIncrement = static_cast<float>(duration / points);
        const LONG size = std::min<LONG>(m_size, static_cast<LONG>(m_yReal.size()));
        r.m_yReal = minMaxPicture(m_yReal, size, points);
        if (m_complex == -1) r.m_yImag = minMaxPicture(m_yImag, std::min<LONG>(size, static_cast<LONG>(m_yImag.size())), points);
        return handOut(out.release(), result);
    });
}

}  // namespace nvdl
