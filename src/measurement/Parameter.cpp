#include "measurement/Parameter.h"

#include <algorithm>

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

ULONG CParameterPersistStream::AddRef() { return m_owner.AddRef(); }
ULONG CParameterPersistStream::Release() { return m_owner.Release(); }
HRESULT CParameterPersistStream::QueryInterface(REFIID riid, void** ppv) { return m_owner.QueryInterface(riid, ppv); }

HRESULT CParameterPersistStream::GetClassID(CLSID* clsid) {
    if (!clsid) return E_POINTER;
    *clsid = CLSID_CParameter;
    return S_OK;
}

HRESULT CParameterPersistStream::IsDirty() {
    SHORT modified = 0;
    m_owner.get_Modified(&modified);
    return modified ? S_OK : S_FALSE;
}

namespace {

// A text field of the record: at most size minus 1 characters, zero-ended, zero-filled behind.
void putTextField(std::uint8_t* field, std::size_t size, const std::string& text) {
    std::size_t n = std::min(text.size(), size - 1);
    std::fill(field, field + size, 0);
    std::copy_n(text.begin(), n, field);
}

std::string getTextField(const std::uint8_t* field, std::size_t size) {
    std::size_t n = 0;
    while (n < size && field[n]) ++n;
    return std::string(reinterpret_cast<const char*>(field), std::min(n, size - 1));
}

}  // namespace

HRESULT CParameterPersistStream::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    std::uint8_t record[kRecordSize];
    ULONG read = 0;
    if (FAILED(stream->Read(record, kRecordSize, &read)) || read != kRecordSize) return E_FAIL;
    m_owner.m_name = getTextField(record, kTextField);
    m_owner.m_value = getTextField(record + kTextField, kTextField);
    return S_OK;
}

HRESULT CParameterPersistStream::Save(IStream* stream, int clearDirty) {
    if (!stream) return E_POINTER;
    std::uint8_t record[kRecordSize];
    putTextField(record, kTextField, m_owner.m_name);
    putTextField(record + kTextField, kTextField, m_owner.m_value);
    ULONG written = 0;
    HRESULT h = stream->Write(record, kRecordSize, &written);
    if (FAILED(h)) return h;
    if (written != kRecordSize) return STG_E_MEDIUMFULL;
    if (clearDirty) m_owner.put_Modified(0);
    return S_OK;
}

HRESULT CParameterPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = kRecordSize;
    return S_OK;
}

}  // namespace nvdl
