// CMeasurement: the samples in memory and the element access by index.
#include <algorithm>
#include <cmath>

#include "measurement/Measurement.h"

namespace nvdl {

namespace {

HRESULT giveArray(const SampleVector& values, std::size_t count, VARIANT* v) {
    if (!v) return E_POINTER;
    VariantClear(v);
    SAFEARRAY* array = makeFloatArray(std::span<const float>(values.data(), std::min(count, values.size())));
    if (!array) return E_OUTOFMEMORY;
    v->vt = VT_ARRAY | VT_R4;
    v->parray = array;
    return S_OK;
}

// The float vector inside a variant (also by reference), or null.
SAFEARRAY* floatArrayOf(const VARIANT* v) {
    if (!v) return nullptr;
    if (v->vt == (VT_BYREF | VT_VARIANT)) return floatArrayOf(v->pvarVal);
    if (v->vt == (VT_ARRAY | VT_R4)) return v->parray;
    if (v->vt == (VT_BYREF | VT_ARRAY | VT_R4)) return v->pparray ? *v->pparray : nullptr;
    return nullptr;
}

bool isPresent(const VARIANT* v) {
    if (!v) return false;
    if (v->vt == (VT_BYREF | VT_VARIANT)) return isPresent(v->pvarVal);
    return v->vt != VT_EMPTY && v->vt != VT_NULL && !(v->vt == VT_ERROR && v->scode == DISP_E_PARAMNOTFOUND);
}

}  // namespace

HRESULT CMeasurement::get_Size(LONG* v) {
    if (!v) return E_POINTER;
    *v = m_size;
    return S_OK;
}

HRESULT CMeasurement::resizeBlock(LONG m) {
    if (m < 1) {
        m_yReal = {};
        m_yImag = {};
        m_x = {};
        m_size = 0;
        return S_OK;
    }
    const std::size_t n = static_cast<std::size_t>(m);
    // A vector that existed keeps its first values and the rest is zeroed; a new one is left as
    // allocated. Fresh arrays, so that a record shrinking to one block gives its memory back.
    auto kept = [n](SampleVector& vector) {
        if (vector.empty()) vector.allocate(n);
        else vector.resize(n, 0.0f);
    };
    try {
        kept(m_yReal);
        if (m_complex) kept(m_yImag);
        else m_yImag.clear();
        if (axisHasXVector(m_xAxisType)) kept(m_x);
        else m_x.clear();
    } catch (const std::bad_alloc&) {
        m_yReal = {};
        m_yImag = {};
        m_x = {};
        m_size = 0;
        return E_OUTOFMEMORY;
    }
    m_size = m;
    return S_OK;
}

HRESULT CMeasurement::put_Size(LONG samples) {
    if (samples < 0) {
        resizeBlock(0);
        return E_INVALIDARG;
    }
    if (!m_longFileFeature) {
        m_maxBlockSize = samples;
        CheckRegistryMaxBlockSize();
        m_fileSamples = samples;
    }
    if (HRESULT h = resizeBlock(std::min(samples, m_maxBlockSize)); FAILED(h)) return h;
    m_fileSamples = samples;
    put_Modified(VARIANT_TRUE);
    if (m_fileSamples < m_maxBlockSize) {
        m_maxBlockSize = m_fileSamples;
        CheckRegistryMaxBlockSize();
    }
    return S_OK;
}

HRESULT CMeasurement::get_Complex(SHORT* v) {
    if (!v) return E_POINTER;
    *v = m_complex ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CMeasurement::put_Complex(SHORT v) {
    if (!v) {
        m_yImag.clear();
        m_complex = 0;
        return put_Modified(VARIANT_TRUE);
    }
    if (m_complex) return S_OK;
    try {
        m_yImag.assign(static_cast<std::size_t>(std::max<LONG>(m_size, 0)), 0.0f);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    m_complex = -1;
    return put_Modified(VARIANT_TRUE);
}

LONG CMeasurement::GetBlockNumber(LONG index) const {
    if (index < 0 || index >= m_fileSamples || m_maxBlockSize <= 0 || m_fileSamples <= 0) return -1;
    return index / m_maxBlockSize + 1;
}

LONG CMeasurement::GetDataIndex(LONG index) const {
    if (!m_longFileFeature) return index >= 0 && index < m_size ? index : 0;
    LONG result = m_formatVersion < 19991006 ? index : 0;
    if (m_maxBlockSize > 0 && m_dataLoaded) {
        result = index;
        long long blockStart = static_cast<long long>(m_currentBlock - 1) * m_maxBlockSize;
        if (m_currentBlock != -1 && index >= blockStart && index < blockStart + m_maxBlockSize)
            result = static_cast<LONG>(index - m_blockStartOffset - blockStart);
    }
    return result;
}

HRESULT CMeasurement::sampleAt(const SampleVector& vector, LONG index, float* value) {
    if (!value) return E_POINTER;
    if (index < 0 || index >= m_fileSamples) return E_INVALIDARG;
    if (HRESULT h = ReadData(index, 1); FAILED(h)) return h;
    if (vector.empty()) return E_POINTER;
    LONG i = GetDataIndex(index);
    if (i < 0 || i >= m_size || static_cast<std::size_t>(i) >= vector.size()) return E_INVALIDARG;
    *value = vector[static_cast<std::size_t>(i)];
    return S_OK;
}

HRESULT CMeasurement::get_YReal(LONG index, float* v) { return sampleAt(m_yReal, index, v); }
HRESULT CMeasurement::get_YImag(LONG index, float* v) { return sampleAt(m_yImag, index, v); }

HRESULT CMeasurement::get_Amplitude(LONG index, float* v) {
    if (!v) return E_POINTER;
    float re = 0, im = 0;
    if (HRESULT h = sampleAt(m_yReal, index, &re); FAILED(h)) return h;
    if (!m_complex) {
        *v = std::fabs(re);
        return S_OK;
    }
    if (HRESULT h = sampleAt(m_yImag, index, &im); FAILED(h)) return h;
    *v = static_cast<float>(std::hypot(static_cast<double>(re), static_cast<double>(im)));
    return S_OK;
}

HRESULT CMeasurement::get_Phase(LONG index, float* v) {
    if (!v) return E_POINTER;
    float re = 0, im = 0;
    if (HRESULT h = sampleAt(m_yReal, index, &re); FAILED(h)) return h;
    if (!m_complex) {
        *v = 0.0f;
        return S_OK;
    }
    if (HRESULT h = sampleAt(m_yImag, index, &im); FAILED(h)) return h;
    *v = static_cast<float>(std::atan2(static_cast<double>(im), static_cast<double>(re)));
    return S_OK;
}

HRESULT CMeasurement::put_YReal(LONG index, float v) {
    if (HRESULT h = CanEditData(); FAILED(h)) return h;
    if (index < 0 || index >= m_size || m_yReal.empty()) return E_INVALIDARG;
    m_yReal[static_cast<std::size_t>(index)] = v;
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::put_YImag(LONG index, float v) {
    if (HRESULT h = CanEditData(); FAILED(h)) return h;
    if (m_yImag.empty()) return E_POINTER;
    if (index < 0 || index >= m_size) return E_INVALIDARG;
    m_yImag[static_cast<std::size_t>(index)] = v;
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::get_X(LONG index, float* v) {
    if (!v) return E_POINTER;
    if (index < 0 || index >= m_fileSamples) return E_INVALIDARG;
    const double linear = static_cast<double>(index) * m_xIncrement + m_xStart;
    const double logarithmic = m_xStart * std::pow(static_cast<double>(m_xIncrement), index);
    switch (m_xAxisType) {
        case kAxisEquidistant: *v = static_cast<float>(linear); return S_OK;
        case kAxisLogarithmic: *v = static_cast<float>(logarithmic); return S_OK;
        case kAxisCategories:
        case kAxisOctaves:
        case kAxisArbitrary: {
            if (HRESULT h = ReadData(index, 1); FAILED(h)) return h;
            LONG i = GetDataIndex(index);
            if (!m_x.empty() && i >= 0 && static_cast<std::size_t>(i) < m_x.size()) {
                *v = m_x[static_cast<std::size_t>(i)];
                return S_OK;
            }
            *v = static_cast<float>(m_xAxisType == kAxisOctaves ? logarithmic : linear);
            return S_OK;
        }
        default: return E_UNEXPECTED;
    }
}

HRESULT CMeasurement::put_X(LONG index, float v) {
    if (HRESULT h = CanEditData(); FAILED(h)) return h;
    if (m_x.empty()) return S_OK;  // an axis without an X vector has nothing to set
    if (index < 0 || index >= m_size) return E_INVALIDARG;
    m_x[static_cast<std::size_t>(index)] = v;
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::get_XArray(VARIANT* v) {
    if (!v) return E_POINTER;
    if (m_x.empty()) {
        VariantClear(v);
        return S_OK;
    }
    return giveArray(m_x, m_x.size(), v);
}

HRESULT CMeasurement::put_XArray(VARIANT v) {
    if (HRESULT h = CanEditData(); FAILED(h)) return h;
    SAFEARRAY* array = floatArrayOf(&v);
    if (!array && isPresent(&v)) return E_INVALIDARG;
    std::span<float> values = floatArrayData(array);
    if (!m_yReal.empty() && static_cast<LONG>(values.size()) != m_size) return E_INVALIDARG;
    m_x.assign(values.begin(), values.end());
    if (m_yReal.empty()) m_size = static_cast<LONG>(values.size());
    GenerateOptimizedArray();
    return put_Modified(VARIANT_TRUE);
}

HRESULT CMeasurement::get_YRealArray(VARIANT* v) {
    if (!v) return E_POINTER;
    if (HRESULT h = LoadFromDisk(); FAILED(h)) return h;
    return giveArray(m_yReal, static_cast<std::size_t>(std::max<LONG>(m_size, 0)), v);
}

HRESULT CMeasurement::get_YImagArray(VARIANT* v) {
    if (!v) return E_POINTER;
    if (m_yImag.empty()) {
        VariantClear(v);
        return S_OK;
    }
    return giveArray(m_yImag, static_cast<std::size_t>(std::max<LONG>(m_size, 0)), v);
}

HRESULT CMeasurement::YArray(VARIANT* re, LONG size, VARIANT* im, BSTR dimension) {
    SAFEARRAY* real = floatArrayOf(re);
    std::span<float> realValues = floatArrayData(real);
    if (!real || realValues.empty() || size < 1) return E_INVALIDARG;
    SAFEARRAY* imag = isPresent(im) ? floatArrayOf(im) : nullptr;
    if (isPresent(im) && (!imag || floatArrayData(imag).size() != realValues.size())) return E_INVALIDARG;
    std::span<float> imagValues = floatArrayData(imag);

    if (!m_x.empty() && !m_isUncompleted) put_Size(size);
    std::size_t n = std::min(static_cast<std::size_t>(size), realValues.size());
    try {
        m_yReal.assign(realValues.begin(), realValues.begin() + static_cast<std::ptrdiff_t>(n));
        if (imag) m_yImag.assign(imagValues.begin(), imagValues.begin() + static_cast<std::ptrdiff_t>(n));
        else m_yImag.clear();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    m_size = static_cast<LONG>(n);
    m_complex = imag ? -1 : 0;
    std::string dimensionText = bstrToAnsi(dimension);
    if (!dimensionText.empty()) {
        put_YDimension(dimension);
        if (m_storageUnitY.empty()) m_storageUnitY = dimensionText;
    }
    if (!m_longFileFeature) {
        m_maxBlockSize = m_size;
        m_fileSamples = m_size;
    } else if (m_size > m_fileSamples) {
        m_fileSamples = m_size;
    }
    GenerateOptimizedArray();
    StoreToDisk();
    return put_Modified(VARIANT_TRUE);
}

namespace {

// Block copy into a vector, as far as the vector reaches.
void copyIn(const float* from, LONG start, LONG count, SampleVector& to) {
    if (!from || count <= 0 || static_cast<std::size_t>(start) >= to.size()) return;
    std::size_t n = std::min(static_cast<std::size_t>(count), to.size() - static_cast<std::size_t>(start));
    std::copy_n(from, n, to.begin() + start);
}

}  // namespace

HRESULT CMeasurement::SetYValues(LONG start, LONG count, const float* re, const float* im) {
    start = std::max<LONG>(start, 0);
    count = std::min<LONG>(count, m_size - start);
    copyIn(re, start, count, m_yReal);
    if (m_complex) copyIn(im, start, count, m_yImag);
    GenerateOptimizedArray();
    return S_OK;
}

namespace {

// Block copy out of a vector: `count` elements of the output are zeroed, then m elements from k are
// copied in, as far as the vector reaches.
void copyOut(const SampleVector& from, LONG k, LONG m, LONG count, float* to) {
    if (!to || count <= 0) return;
    std::fill_n(to, count, 0.0f);
    if (m <= 0 || k < 0 || static_cast<std::size_t>(k) >= from.size()) return;
    std::size_t first = static_cast<std::size_t>(k);
    std::size_t n = std::min({static_cast<std::size_t>(m), static_cast<std::size_t>(count), from.size() - first});
    std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(first), n, to);
}

}  // namespace

// The element range of a block copy: a start past the block in memory is taken relative to the current
// block, and a span of an incomplete record that the block cannot hold is served from the block's start.
void CMeasurement::blockCopyRange(LONG start, LONG count, LONG& k, LONG& m) const {
    long long first = start;
    if (first >= m_size && m_currentBlock > 0) first -= static_cast<long long>(m_currentBlock - 1) * m_size;
    first = std::max(first, 0LL);
    long long n = std::min<long long>(count, m_size - first);
    if (n < count && m_isUncompleted && static_cast<long long>(start) + count <= m_fileSamples) {
        first = 0;
        n = count;
    }
    k = static_cast<LONG>(std::min<long long>(first, m_size));
    m = static_cast<LONG>(std::max(n, 0LL));
}

HRESULT CMeasurement::GetYValues(LONG start, LONG count, float* re, float* im) {
    LONG k = 0, m = 0;
    blockCopyRange(start, count, k, m);
    LoadFromDisk();
    copyOut(m_yReal, k, m, count, re);
    if (m_complex) copyOut(m_yImag, k, m, count, im);
    return S_OK;
}

HRESULT CMeasurement::SetXValues(LONG start, LONG count, const float* x) {
    start = std::max<LONG>(start, 0);
    count = std::min<LONG>(count, m_size - start);
    copyIn(x, start, count, m_x);
    GenerateOptimizedArray();
    return S_OK;
}

HRESULT CMeasurement::GetXValues(LONG start, LONG count, float* x) {
    LONG k = 0, m = 0;
    blockCopyRange(start, count, k, m);
    LoadFromDisk();
    copyOut(m_x, k, m, count, x);
    return S_OK;
}

HRESULT CMeasurement::ReadYRealArray(float* buffer, LONG count, LONG start) {
    if (m_yReal.empty() || !buffer || count <= 0 || start < 0 || static_cast<long long>(start) + count > m_size) return E_FAIL;
    std::copy_n(m_yReal.begin() + start, count, buffer);
    return S_OK;
}

HRESULT CMeasurement::WriteYRealArray(const float* buffer, LONG count, LONG start) {
    if (m_yReal.empty() || !buffer || count <= 0 || start < 0 || static_cast<long long>(start) + count > m_size) return E_FAIL;
    std::copy_n(buffer, count, m_yReal.begin() + start);
    return S_OK;
}

// The first argument gives the element count and the section always starts at element 0:
// clients have always called it so.
HRESULT CMeasurement::sectionArray(const SampleVector& vector, LONG first, VARIANT* value) const {
    if (!value) return E_POINTER;
    if (vector.empty()) return E_POINTER;
    if (m_size < 1) return E_FAIL;
    LONG n = std::clamp<LONG>(first, 0, m_size);
    return giveArray(vector, static_cast<std::size_t>(n), value);
}

HRESULT CMeasurement::get_YRealSectionArray(LONG first, LONG, VARIANT* v) { return sectionArray(m_yReal, first, v); }
HRESULT CMeasurement::get_YImagSectionArray(LONG first, LONG, VARIANT* v) { return sectionArray(m_yImag, first, v); }
HRESULT CMeasurement::get_XSectionArray(LONG first, LONG, VARIANT* v) { return sectionArray(m_x, first, v); }

// The overview picture is kept only for long data.
void CMeasurement::GenerateOptimizedArray() {
    if (!m_longFileFeature || m_size <= 0) return;
    bool made = false;
    auto take = [&](const SampleVector& from, SampleVector& copy) {
        if (!from.empty() && copy.empty()) {
            copy = from;
            made = true;
        }
    };
    take(m_yReal, m_optimizedYReal);
    take(m_yImag, m_optimizedYImag);
    take(m_x, m_optimizedX);
    m_optimizedCompressionFactor = m_compressionFactor;
    if (made) m_optimizedXStart = m_xStart;
}

}  // namespace nvdl
