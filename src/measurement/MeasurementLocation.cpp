// CMeasurement: where the samples live (the backing stream), the overview picture, and the names
// of the workspace and shared link that a measurement carries.
#include "frame/TextChecks.h"
#include "measurement/Measurement.h"

namespace nvdl {

HRESULT CMeasurement::Location(BSTR file, SHORT inDataStorage, BSTR subStorage, BSTR stream, LONG version) {
    if (!file || !subStorage || !stream) return E_FAIL;
    m_locationFile = bstrToAnsi(file);
    m_locationInDataStorage = inDataStorage;
    m_locationSubStorage = bstrToAnsi(subStorage);
    m_locationStream = bstrToAnsi(stream);
    m_formatVersion = version;
    m_dataLoaded = 0;
    m_currentBlock = -1;
    return S_OK;
}

// Back to the overview picture taken by GenerateOptimizedArray; only long data has one.
HRESULT CMeasurement::Optimize() {
    if (!m_longFileFeature) return S_OK;
    if (m_size <= 0) return S_OK;
    if (m_optimizedYReal.empty()) return E_FAIL;
    const SampleVector re = m_optimizedYReal, im = m_optimizedYImag, x = m_optimizedX;
    Variant reArray, imArray;
    reArray.vt = VT_ARRAY | VT_R4;
    reArray.parray = makeFloatArray(re);
    if (!im.empty()) {
        imArray.vt = VT_ARRAY | VT_R4;
        imArray.parray = makeFloatArray(im);
    }
    Bstr dimension;
    dimensionName(m_ydDimension, dimension.out());
    if (dimension.view().empty()) dimension = Bstr(std::string_view("1"));
    HRESULT h = YArray(&reArray, static_cast<LONG>(re.size()), &imArray, dimension.get());
    if (FAILED(h)) return h;
    if (axisHasXVector(m_xAxisType) && !x.empty()) {
        LONG uncompleted = m_isUncompleted;
        m_isUncompleted = 0;
        Variant xArray;
        xArray.vt = VT_ARRAY | VT_R4;
        xArray.parray = makeFloatArray(x);
        put_XArray(xArray);
        m_isUncompleted = uncompleted;
    }
    m_compressionFactor = m_optimizedCompressionFactor;
    m_xStart = m_optimizedXStart;
    m_currentBlock = -1;
    m_isUsefullData = 0;
    if (m_maxBlockSize < m_fileSamples) {
        if (m_maxBlockSize != 0) m_compressionFactor = static_cast<float>(m_fileSamples) / static_cast<float>(m_maxBlockSize);
    } else {
        m_isUsefullData = 1;
    }
    return S_OK;
}

// Without a shared link the name stands as last stored.
HRESULT CMeasurement::get_Workspace(BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstrFromAnsi(trimmed(m_workspaceName));
    return S_OK;
}

HRESULT CMeasurement::get_MeasShmLink(BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstrFromAnsi(trimmed(m_measShmLink));
    return S_OK;
}

HRESULT CMeasurement::put_MeasShmLink(BSTR v) {
    if (!v) return E_POINTER;
    m_measShmLink = bstrToAnsi(v);
    return S_OK;
}

}  // namespace nvdl
