// The common frame of the measurement operators.
#include "analysis/OperatorFrame.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "platform/Host.h"

namespace nvdl {

CMeasurement* OperatorFrame::copyOf(CMeasurement& source) {
    CMeasurement* result = nullptr;
    try {
        result = CMeasurement::createForCopy();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    if (FAILED(source.copyEngine(*result, false))) {
        result->Release();
        return nullptr;
    }
    return result;
}

CMeasurement* OperatorFrame::resultOf(CMeasurement& source) {
    // Sub-measurements and data blocks need the whole engine; the common record has none, and its
    // Y vectors are about to be replaced, so they are not copied.
    if (source.m_measurements.size() != 0 || source.m_dataBlocks.size() != 0) return copyOf(source);
    CMeasurement* result = nullptr;
    try {
        result = CMeasurement::createForCopy();
        if (FAILED(source.copyEngine(*result, true))) {
            result->Release();
            return nullptr;
        }
        if (axisHasXVector(source.m_xAxisType) && source.m_size > 0) {
            result->m_x = source.m_x;
            result->m_optimizedX = source.m_optimizedX;
        }
    } catch (const std::bad_alloc&) {
        if (result) result->Release();
        return nullptr;
    }
    return result;
}

daVector OperatorFrame::view(CMeasurement& m, LONG n) {
    const std::size_t available = m.m_yReal.size();
    const LONG length = std::max<LONG>(0, std::min<LONG>(n, static_cast<LONG>(available)));
    daVector v{nullptr, nullptr, length};
    if (length > 0) {
        v.real = m.m_yReal.data();
        if (m.m_yImag.size() >= static_cast<std::size_t>(length)) v.imag = m.m_yImag.data();
    }
    return v;
}

void OperatorFrame::settleSize(CMeasurement& m, LONG n) {
    m.m_size = n;
    if (!m.m_longFileFeature) {
        m.m_maxBlockSize = n;
        m.CheckRegistryMaxBlockSize();
    }
    m.m_fileSamples = n;
    if (!m.m_x.empty()) m.m_x.resize(static_cast<std::size_t>(n), 0.0f);
    m.m_optimizedYReal.clear();
    m.m_optimizedYImag.clear();
    m.m_optimizedX.clear();
    m.put_Modified(VARIANT_TRUE);
}

void OperatorFrame::adopt(CMeasurement& result, KernelOutput& out, bool setComplex) {
    const std::size_t n = out.length > 0 ? static_cast<std::size_t>(out.length) : 0;
    const bool hasReal = out.real != nullptr;
    const bool hasImag = out.imag != nullptr;
    // The record's arrays become the result's vectors; the record no longer owns them.
    result.m_yReal.adopt(out.real, hasReal ? n : 0);
    result.m_yImag.adopt(out.imag, hasImag ? n : 0);
    out.real = nullptr;
    out.imag = nullptr;
    if (setComplex) result.m_complex = hasImag ? -1 : 0;
    settleSize(result, hasReal ? static_cast<LONG>(n) : 0);
}

void OperatorFrame::setRealVector(CMeasurement& result, const std::vector<float>& values) {
    result.m_yReal.assign(values.begin(), values.end());
    result.m_yImag.clear();
    result.m_complex = 0;
    settleSize(result, static_cast<LONG>(values.size()));
}

double OperatorFrame::xAt(const CMeasurement& m, LONG i) {
    switch (m.m_xAxisType) {
        case kAxisEquidistant: return static_cast<double>(i) * m.m_xIncrement + m.m_xStart;
        case kAxisLogarithmic: return std::pow(static_cast<double>(m.m_xIncrement), i) * m.m_xStart;
        default:
            if (i >= 0 && static_cast<std::size_t>(i) < m.m_x.size()) return m.m_x[static_cast<std::size_t>(i)];
            return static_cast<double>(i);
    }
}

void OperatorFrame::setDimension(IDispatch*& slot, IDispatch* value) {
    if (slot) slot->Release();
    slot = value;
}

void OperatorFrame::shareDimension(IDispatch*& slot, IDispatch* value) {
    if (value) value->AddRef();
    setDimension(slot, value);
}

IDispatch* OperatorFrame::dimensionFrom(const DimensionExponents& e) { return DimensionWithExponents(e); }

DimensionExponents OperatorFrame::exponentsOf(IDispatch* dimension) {
    DimensionExponents e{};
    GetDimensionExponents(dimension, e);
    return e;
}

bool equalsIgnoringCase(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

void showOperatorMessage(const std::string& text) { host::messageBox(text, "Sonvara", host::MB_OK); }

}  // namespace nvdl
