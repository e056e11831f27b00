// CMeasurement: properties by name, the Fields list, Translate and Clip.
#include "frame/Clip.h"
#include "frame/TextCompare.h"
#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "project/DateText.h"

namespace nvdl {

// The Fields list is made once: every scalar property of the interface except the flag and the arrays.
HRESULT CMeasurement::InitializeFields() {
    if (!m_fields) {
        m_fields = CFields::create();
        m_fields->SetInterface(IID_IMeasurement);
    }
    if (!m_fields->names().empty()) return S_OK;
    ITypeLib* library = nullptr;
    HRESULT h = LoadRegTypeLib(LIBID_NVDL, 1, 0, LOCALE_USER_DEFAULT, &library);
    if (FAILED(h)) return h;
    h = m_fields->Load(library, nullptr);
    library->Release();
    for (const char* name : {"Modified", "XArray", "YRealArray", "YImagArray"}) m_fields->Remove(name);
    return h;
}

// A field made from the list takes its own reference on the measurement; the list does not.
HRESULT CMeasurement::get_Fields(IFields** v) {
    if (!v) return E_POINTER;
    if (HRESULT h = InitializeFields(); FAILED(h)) return h;
    m_fields->SetOwner(dispatch());
    *v = m_fields;
    m_fields->AddRef();
    return S_OK;
}

HRESULT CMeasurement::get_Property(BSTR name, BSTR* value) {
    if (HRESULT h = InitializeFields(); FAILED(h)) return h;
    if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
    if (!value) return E_POINTER;
    if (!equalsIgnoringCase(bstrView(name), u"MeasurementTime")) return getPropertyText(dispatch(), m_pTypeInfo, name, value);
    *value = allocBstrFromAnsi(FormatDateTimeLocal(m_measurementTime));
    return S_OK;
}

// A name that matches no property put is passed over; a conversion or a put that fails raises.
HRESULT CMeasurement::PropertyPut(BSTR name, BSTR value) {
    if (HRESULT h = InitializeFields(); FAILED(h)) return h;
    if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
    PutPropertyOutcome outcome;
    HRESULT h = putPropertyText(dispatch(), m_pTypeInfo, name, value, outcome);
    if (FAILED(h)) {
        RaiseException(noPropertyPutMessage(name), moduleFileName());
        return E_FAIL;
    }
    return S_OK;
}

HRESULT CMeasurement::get_PropertiesCount(LONG* v) {
    if (!v) return E_POINTER;
    if (HRESULT h = InitializeFields(); FAILED(h)) return h;
    *v = static_cast<LONG>(m_fields->names().size());
    return S_OK;
}

HRESULT CMeasurement::get_PropertyName(LONG index, BSTR* name) {
    if (!name) return E_POINTER;
    if (HRESULT h = InitializeFields(); FAILED(h)) return h;
    const auto& names = m_fields->names();
    if (index < 0 || index >= static_cast<LONG>(names.size())) return S_OK;
    *name = allocBstrFromAnsi(names[static_cast<std::size_t>(index)]);
    return S_OK;
}

HRESULT CMeasurement::Translate(LONG code, BSTR* text) {
    if (!text) return E_POINTER;
    const std::u16string_view* found = measurementEnumTable().lookupString(code);
    *text = found ? allocBstr(*found) : nullptr;  // an unknown code gives a null string
    return S_OK;
}

HRESULT CMeasurement::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    auto enumText = [](LONG code) {
        const std::u16string_view* t = measurementEnumTable().lookupString(code);
        return t ? narrow(*t) : std::string();
    };
    auto dimension = [&](IDispatch* d) {
        Bstr name;
        dimensionName(d, name.out());
        return name.ansi();
    };
    const MessageArg fields[] = {
        enumText(m_functionType),
        m_response,
        m_responseChannel,
        m_reference,
        m_referenceChannel,
        enumText(m_xAxisType),
        static_cast<std::int32_t>(m_xStart),
        static_cast<std::int32_t>(m_xIncrement),
        dimension(m_xdDimension),
        m_size,
        std::string(m_complex ? "True" : "False"),
        dimension(m_ydDimension),
        enumText(m_averagingType),
        static_cast<std::int32_t>(m_averagingParameter),
        m_averages,
        static_cast<std::int32_t>(m_overlap),
        enumText(m_windowType),
        static_cast<std::int32_t>(m_windowParameter),
        formatDate(m_measurementTime),
    };
    std::optional<std::string> rendered = formatMessage(bstrToAnsi(format), fields, 1000);
    if (!rendered || rendered->empty()) return E_OUTOFMEMORY;
    *text = allocBstrFromAnsi(*rendered);
    return S_OK;
}

}  // namespace nvdl
