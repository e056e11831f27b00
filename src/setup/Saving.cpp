#include "setup/Saving.h"

#include "measurement/Measurement.h"
#include "setup/SaveFunctionList.h"

namespace nvdl {

CSaving::CSaving() : CObjectFrame(IID_ISaving) {
    m_measFunctions.SetOwner(dispatch());
    m_measFunctions.SetItemClass(CLSID_CSaveFunction);
    m_timeHistoryFunctions.SetOwner(dispatch());
    m_timeHistoryFunctions.SetItemClass(CLSID_CSaveFunction);
}

// The lists forget their owner first, so that emptying them marks nothing.
CSaving::~CSaving() {
    m_measFunctions.SetOwner(nullptr);
    m_timeHistoryFunctions.SetOwner(nullptr);
}

HRESULT CSaving::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IPersistStream || riid == IID_IPersist) {
        *ppv = static_cast<IPersistStream*>(&m_persist);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

HRESULT CSaving::get_MeasFunctions(ICollection** value) {
    if (!value) return E_POINTER;
    *value = &m_measFunctions;
    m_measFunctions.AddRef();
    return S_OK;
}

HRESULT CSaving::get_TimeHistoryFunctions(ICollection** value) {
    if (!value) return E_POINTER;
    *value = &m_timeHistoryFunctions;
    m_timeHistoryFunctions.AddRef();
    return S_OK;
}

// The codes of the measurement: the functions a list names are the measurement's.
HRESULT CSaving::Translate(LONG code, BSTR* text) { return measurementEnumTable().translate(code, text); }

HRESULT CSaving::Copy(ISaving* source, ISaving* target) {
    auto* from = dynamic_cast<CSaving*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CSaving*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from != to) {
        to->m_fields = from->m_fields;
        save_functions::copyClones(from->m_measFunctions, to->m_measFunctions);
        save_functions::copyClones(from->m_timeHistoryFunctions, to->m_timeHistoryFunctions);
    }
    return target->put_Modified(1);
}

}  // namespace nvdl
