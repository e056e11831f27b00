// CMeasurement: the header properties and their rules.
#include <cmath>

#include "frame/TextChecks.h"
#include "measurement/Measurement.h"
#include "platform/Registry.h"

namespace nvdl {

namespace {

HRESULT giveText(const std::string& text, BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstrFromAnsi(text);
    return *v ? S_OK : E_OUTOFMEMORY;
}

template <class T>
HRESULT give(T value, T* v) {
    if (!v) return E_POINTER;
    *v = value;
    return S_OK;
}

HRESULT giveCode(LONG code, VARIANT* v) {
    if (!v) return E_POINTER;
    VariantClear(v);
    v->vt = VT_I4;
    v->lVal = code;
    return S_OK;
}

// -1 is true; anything else false.
LONG exactTrue(SHORT v) { return v == -1 ? 1 : 0; }

}  // namespace

HRESULT CMeasurement::setText(std::string& field, BSTR value) {
    field = bstrToAnsi(value);
    return put_Modified(VARIANT_TRUE);
}

// A code, or a text of the enumeration table; an unknown text leaves the field as it was.
HRESULT CMeasurement::putEnumerated(LONG& field, const VARIANT& value) {
    Variant number;
    HRESULT h = VariantChangeType(&number, &value, 0, VT_I4);
    if (h == DISP_E_TYPEMISMATCH) {
        Variant text;
        if (HRESULT t = VariantChangeType(&text, &value, 0, VT_BSTR); FAILED(t)) return t;
        LONG code = measurementEnumTable().lookupEnum(bstrView(text.bstrVal));
        if (code == -1) return E_INVALIDARG;
        return setValue(field, code);
    }
    if (FAILED(h)) return h;
    return setValue(field, number.lVal);
}

HRESULT CMeasurement::get_FunctionType(VARIANT* v) { return giveCode(m_functionType, v); }
HRESULT CMeasurement::put_FunctionType(VARIANT v) { return putEnumerated(m_functionType, v); }
HRESULT CMeasurement::get_AveragingType(VARIANT* v) { return giveCode(m_averagingType, v); }
HRESULT CMeasurement::put_AveragingType(VARIANT v) { return putEnumerated(m_averagingType, v); }
HRESULT CMeasurement::get_WindowType(VARIANT* v) { return giveCode(m_windowType, v); }
HRESULT CMeasurement::put_WindowType(VARIANT v) { return putEnumerated(m_windowType, v); }
HRESULT CMeasurement::get_XAxisType(VARIANT* v) { return giveCode(m_xAxisType, v); }

// The X vector follows the axis: freed, and made anew (zero-filled) for axes that carry one.
HRESULT CMeasurement::put_XAxisType(VARIANT v) {
    HRESULT h = putEnumerated(m_xAxisType, v);
    if (FAILED(h)) return h;
    m_x.clear();
    if (axisHasXVector(m_xAxisType) && m_size > 0) {
        try {
            m_x.assign(static_cast<std::size_t>(m_size), 0.0f);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }
    return h;
}

HRESULT CMeasurement::get_Response(BSTR* v) { return giveText(m_response, v); }
HRESULT CMeasurement::put_Response(BSTR v) { return setText(m_response, v); }
HRESULT CMeasurement::get_Reference(BSTR* v) { return giveText(m_reference, v); }
HRESULT CMeasurement::put_Reference(BSTR v) { return setText(m_reference, v); }
HRESULT CMeasurement::get_ResponseChannel(LONG* v) { return give(m_responseChannel, v); }
HRESULT CMeasurement::put_ResponseChannel(LONG v) { return v < 0 ? E_INVALIDARG : setValue(m_responseChannel, v); }
HRESULT CMeasurement::get_ReferenceChannel(LONG* v) { return give(m_referenceChannel, v); }
HRESULT CMeasurement::put_ReferenceChannel(LONG v) { return v < 0 ? E_INVALIDARG : setValue(m_referenceChannel, v); }

HRESULT CMeasurement::get_XStart(float* v) { return give(m_xStart, v); }
HRESULT CMeasurement::put_XStart(float v) { return setValue(m_xStart, v); }
HRESULT CMeasurement::get_XIncrement(float* v) { return give(m_xIncrement, v); }
HRESULT CMeasurement::put_XIncrement(float v) {
    if (m_xAxisType == kAxisLogarithmic ? v <= 1.0f : v == 0.0f) return E_INVALIDARG;
    return setValue(m_xIncrement, v);
}

HRESULT CMeasurement::get_StorageUnitX(BSTR* v) { return giveText(m_storageUnitX, v); }
HRESULT CMeasurement::put_StorageUnitX(BSTR v) { return setText(m_storageUnitX, v); }
HRESULT CMeasurement::get_StorageUnitY(BSTR* v) { return giveText(m_storageUnitY, v); }
HRESULT CMeasurement::put_StorageUnitY(BSTR v) { return setText(m_storageUnitY, v); }

HRESULT CMeasurement::get_AveragingParameter(float* v) { return give(m_averagingParameter, v); }
HRESULT CMeasurement::put_AveragingParameter(float v) { return setValue(m_averagingParameter, v); }
// A negative count is refused and kept all the same: clients have always relied on the store.
HRESULT CMeasurement::get_Averages(LONG* v) { return give(m_averages, v); }
HRESULT CMeasurement::put_Averages(LONG v) {
    setValue(m_averages, v);
    return v < 0 ? E_INVALIDARG : S_OK;
}
HRESULT CMeasurement::get_Overlap(float* v) { return give(m_overlap, v); }
HRESULT CMeasurement::put_Overlap(float v) {
    setValue(m_overlap, v);
    return v < 0.0f || v > 1.0f ? E_INVALIDARG : S_OK;
}
HRESULT CMeasurement::get_WindowParameter(float* v) { return give(m_windowParameter, v); }
HRESULT CMeasurement::put_WindowParameter(float v) { return setValue(m_windowParameter, v); }

HRESULT CMeasurement::get_MeasurementTime(double* v) { return give(m_measurementTime, v); }
HRESULT CMeasurement::put_MeasurementTime(double v) { return setValue(m_measurementTime, v); }
HRESULT CMeasurement::get_TestId(BSTR* v) { return giveText(m_testId, v); }
HRESULT CMeasurement::put_TestId(BSTR v) { return setText(m_testId, v); }
HRESULT CMeasurement::get_FunctionQualifier(BSTR* v) { return giveText(m_functionQualifier, v); }
HRESULT CMeasurement::put_FunctionQualifier(BSTR v) { return setText(m_functionQualifier, v); }
HRESULT CMeasurement::get_AcousticWeighting(BSTR* v) { return giveText(m_acousticWeighting, v); }
HRESULT CMeasurement::put_AcousticWeighting(BSTR v) {
    std::string text = trimmed(bstrToAnsi(v));
    m_acousticWeighting = text.empty() ? "Off" : text;
    return put_Modified(VARIANT_TRUE);
}
HRESULT CMeasurement::get_Environment(BSTR* v) { return giveText(m_environment, v); }
HRESULT CMeasurement::put_Environment(BSTR v) { return setText(m_environment, v); }
HRESULT CMeasurement::get_UserId(BSTR* v) { return giveText(m_userId, v); }
HRESULT CMeasurement::put_UserId(BSTR v) { return setText(m_userId, v); }

HRESULT CMeasurement::get_Order(float* v) { return give(m_order, v); }
HRESULT CMeasurement::put_Order(float v) { return setValue(m_order, v); }
HRESULT CMeasurement::get_RPM(float* v) { return give(m_rpm, v); }
HRESULT CMeasurement::put_RPM(float v) { return setValue(m_rpm, v); }
HRESULT CMeasurement::get_Z(float* v) { return give(m_z, v); }
HRESULT CMeasurement::put_Z(float v) { return setValue(m_z, v); }
HRESULT CMeasurement::put_BandwidthCorrectionFactor(float v) { return setValue(m_bandwidthCorrectionFactor, v); }
HRESULT CMeasurement::get_BandwidthCorrectionFactor(float* v) { return give(m_bandwidthCorrectionFactor, v); }
HRESULT CMeasurement::get_Power(LONG* v) { return give(m_power, v); }
HRESULT CMeasurement::put_Power(LONG v) { return setValue(m_power, v); }
HRESULT CMeasurement::get_Overload(LONG* v) { return give(m_overload, v); }
HRESULT CMeasurement::put_Overload(LONG v) { return setValue(m_overload, v); }
HRESULT CMeasurement::get_Usage(LONG* v) { return give(m_usage, v); }
HRESULT CMeasurement::put_Usage(LONG v) { return setValue(m_usage, v); }

// The build of the installation stands in for an empty revision.
HRESULT CMeasurement::get_SoftwareRevision(BSTR* v) {
    if (!v) return E_POINTER;
    std::string text = trimmed(m_softwareRevision);
    if (text.empty()) text = registry::readSetting("BuildNumber").value_or("").substr(0, 199);
    return giveText(text, v);
}
HRESULT CMeasurement::put_SoftwareRevision(BSTR v) { return setText(m_softwareRevision, v); }

// Paging state: set without marking the measurement modified.
HRESULT CMeasurement::get_IsUncompleted(SHORT* v) { return give(static_cast<SHORT>(m_isUncompleted ? -1 : 0), v); }
HRESULT CMeasurement::put_IsUncompleted(SHORT v) {
    m_isUncompleted = exactTrue(v);
    return S_OK;
}
HRESULT CMeasurement::get_IsUsefullData(SHORT* v) { return give(static_cast<SHORT>(m_isUsefullData ? -1 : 0), v); }
HRESULT CMeasurement::put_IsUsefullData(SHORT v) {
    m_isUsefullData = exactTrue(v);
    return S_OK;
}
HRESULT CMeasurement::get_CheckOnUnicId(SHORT* v) { return give(static_cast<SHORT>(m_checkOnUnicId ? -1 : 0), v); }
HRESULT CMeasurement::put_CheckOnUnicId(SHORT v) {
    m_checkOnUnicId = exactTrue(v);
    return S_OK;
}
HRESULT CMeasurement::get_CompressionFactor(float* v) { return give(m_compressionFactor, v); }
HRESULT CMeasurement::put_CompressionFactor(float v) {
    m_compressionFactor = v;
    return S_OK;
}
HRESULT CMeasurement::get_FileSamples(LONG* v) { return give(m_fileSamples, v); }
HRESULT CMeasurement::put_FileSamples(LONG v) {
    if (v < 0) return E_FAIL;
    m_fileSamples = v;
    return S_OK;
}

HRESULT CMeasurement::get_ClsidLoader(BSTR* v) {
    if (!v) return E_POINTER;
    if (m_clsidLoader == GUID_NULL) return E_FAIL;
    return giveText(formatGuid(m_clsidLoader), v);
}
HRESULT CMeasurement::put_ClsidLoader(BSTR v) {
    std::optional<GUID> parsed = parseGuid(bstrToAnsi(v));
    if (!parsed) {
        m_clsidLoader = GUID_NULL;
        return CO_E_CLASSSTRING;
    }
    return setValue(m_clsidLoader, *parsed);
}
HRESULT CMeasurement::get_ChannelFileID(BSTR* v) { return giveText(m_channelFileID, v); }
HRESULT CMeasurement::put_ChannelFileID(BSTR v) { return setText(m_channelFileID, v); }

HRESULT CMeasurement::get_Parameters(ICollection** v) {
    if (!v) return E_POINTER;
    *v = &m_parameters;
    m_parameters.AddRef();
    return S_OK;
}
HRESULT CMeasurement::get_Measurements(ICollection** v) {
    if (!v) return E_POINTER;
    *v = &m_measurements;
    m_measurements.AddRef();
    return S_OK;
}
HRESULT CMeasurement::get_DataBlocks(ICollection** v) {
    if (!v) return E_POINTER;
    *v = &m_dataBlocks;
    m_dataBlocks.AddRef();
    return S_OK;
}
HRESULT CMeasurement::get_SignalRange(ISignalRange** v) {
    if (!v) return E_POINTER;
    *v = &m_signalRange;
    m_signalRange.AddRef();
    return S_OK;
}

}  // namespace nvdl
