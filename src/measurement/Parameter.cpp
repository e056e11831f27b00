#include "measurement/Parameter.h"

#include "frame/ClassTable.h"
#include "frame/Resources.h"
#include "frame/TextChecks.h"
#include "platform/DebugTrace.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.parameter", CLSID_CParameter, "Sonvara Parameter", &CParameter::create}};

}  // namespace

CParameter::CParameter() : CObjectFrame(IID_IParameter) {}

IDispatch* CParameter::create() { return (new CParameter)->dispatch(); }

HRESULT CParameter::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IPersistStream || riid == IID_IPersist) {
        *ppv = static_cast<IPersistStream*>(&m_persist);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

HRESULT CParameter::put_Name(BSTR name) {
    if (IsBlankString(name)) {
        std::string message = loadStringResource(IDS_PARAMETER_NAME_BLANK, 100);
        RaiseException(message, moduleFileName());
        return E_FAIL;
    }
    m_name = bstrToAnsi(name);
    return static_cast<IParameter*>(this)->put_Modified(1);
}

HRESULT CParameter::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_name);
    return S_OK;
}

HRESULT CParameter::get_Value(BSTR* value) {
    if (!value) return E_POINTER;
    *value = allocBstrFromAnsi(m_value);
    return S_OK;
}

HRESULT CParameter::put_Value(BSTR value) {
    m_value = bstrToAnsi(value);
    return static_cast<IParameter*>(this)->put_Modified(1);
}

// Through the public setters, in the order of the properties; string reads that give nothing are
// skipped and failures are not reported.
HRESULT CParameter::Copy(IParameter* source, IParameter* target) {
    Bstr text;
    if (SUCCEEDED(source->get_Name(text.out())) && text.get()) target->put_Name(text.get());
    if (SUCCEEDED(source->get_Value(text.out())) && text.get()) target->put_Value(text.get());
    SHORT modified = 0;
    if (SUCCEEDED(source->get_Modified(&modified))) target->put_Modified(modified);
    return S_OK;
}

// Stream companion.

HRESULT CParameterPersistStream::Load(IStream* stream) {
    ParameterRecord stored;
    if (HRESULT h = parameter_record::read(stream, stored); FAILED(h)) return h;
    m_owner.m_name = std::move(stored.name);
    m_owner.m_value = std::move(stored.value);
    return S_OK;
}

HRESULT CParameterPersistStream::Save(IStream* stream, int clearDirty) {
    HRESULT h = parameter_record::write(stream, ParameterRecord{m_owner.m_name, m_owner.m_value});
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

HRESULT CParameterPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = kRecordSize;
    return S_OK;
}

}  // namespace nvdl
