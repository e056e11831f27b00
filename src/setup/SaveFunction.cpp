#include "setup/SaveFunction.h"

#include "frame/ClassTable.h"
#include "frame/Resources.h"
#include "frame/TextChecks.h"
#include "measurement/ParameterRecord.h"
#include "platform/DebugTrace.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.savefunction", CLSID_CSaveFunction, "Sonvara savefunction", &CSaveFunction::create}};

}  // namespace

HRESULT CSaveFunction::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IPersistStream || riid == IID_IPersist) {
        *ppv = static_cast<IPersistStream*>(&m_persist);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

// A blank name is refused with the same message as a parameter's; the old name stays.
HRESULT CSaveFunction::put_Name(BSTR name) {
    const std::string text = bstrToAnsi(name);
    DebugTraceF("put_Name(%s)", text.c_str());
    if (IsBlankString(name)) {
        RaiseException(loadStringResource(IDS_PARAMETER_NAME_BLANK, 100), moduleFileName());
        return E_FAIL;
    }
    m_name = text;
    return static_cast<ISaveFunction*>(this)->put_Modified(1);
}

HRESULT CSaveFunction::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_name);
    return S_OK;
}

HRESULT CSaveFunction::get_Value(BSTR* value) {
    if (!value) return E_POINTER;
    *value = allocBstrFromAnsi(m_value);
    return S_OK;
}

HRESULT CSaveFunction::put_Value(BSTR value) {
    m_value = bstrToAnsi(value);
    DebugTraceF("put_Value(%s)", m_value.c_str());
    return static_cast<ISaveFunction*>(this)->put_Modified(1);
}

// String reads that give nothing are skipped and failures are not reported.
HRESULT CSaveFunction::Copy(ISaveFunction* source, ISaveFunction* target) {
    Bstr text;
    if (SUCCEEDED(source->get_Name(text.out())) && text.get()) target->put_Name(text.get());
    if (SUCCEEDED(source->get_Value(text.out())) && text.get()) target->put_Value(text.get());
    SHORT modified = 0;
    if (SUCCEEDED(source->get_Modified(&modified))) target->put_Modified(modified);
    return S_OK;
}

HRESULT CSaveFunctionPersistStream::Load(IStream* stream) {
    ParameterRecord stored;
    if (HRESULT h = parameter_record::read(stream, stored); FAILED(h)) return h;
    m_owner.m_name = std::move(stored.name);
    m_owner.m_value = std::move(stored.value);
    return S_OK;
}

HRESULT CSaveFunctionPersistStream::Save(IStream* stream, int clearDirty) {
    HRESULT h = parameter_record::write(stream, ParameterRecord{m_owner.m_name, m_owner.m_value});
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

HRESULT CSaveFunctionPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = parameter_record::kSize;
    return S_OK;
}

}  // namespace nvdl
