#include "geometry/Mode.h"

#include <cstdio>

#include "frame/ClassTable.h"
#include "frame/Clip.h"
#include "measurement/Field.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.mode", CLSID_CMode, "Sonvara Mode", &CMode::create}};

}  // namespace

CMode::CMode() : CObjectFrame(IID_IMode) {
    for (ModeCoeffList which : kModeCoeffLists) {
        coefficients(which).SetOwner(dispatch());
        coefficients(which).SetItemClass(CLSID_CModeCoeff);
    }
}

CMode::~CMode() {
    for (ModeCoeffList which : kModeCoeffLists) coefficients(which).SetOwner(nullptr);
    if (m_fieldList) m_fieldList->Release();
}

CObjectCollection& CMode::coefficients(ModeCoeffList which) {
    switch (which) {
        case ModeCoeffList::Shape: return m_shape;
        case ModeCoeffList::OrigShape: return m_origShape;
        case ModeCoeffList::Participation: return m_participation;
        case ModeCoeffList::OrigParticip: return m_origParticip;
    }
    return m_shape;
}

HRESULT CMode::giveList(ModeCoeffList which, ICollection** out) {
    if (!out) return E_POINTER;
    CObjectCollection& list = coefficients(which);
    *out = &list;
    list.AddRef();
    return S_OK;
}

HRESULT CMode::get_Shape(ICollection** v) { return giveList(ModeCoeffList::Shape, v); }
HRESULT CMode::get_Participation(ICollection** v) { return giveList(ModeCoeffList::Participation, v); }
HRESULT CMode::get_OrigShape(ICollection** v) { return giveList(ModeCoeffList::OrigShape, v); }
HRESULT CMode::get_OrigParticip(ICollection** v) { return giveList(ModeCoeffList::OrigParticip, v); }

// The stored text, or a text made from the frequency when none is stored.
HRESULT CMode::get_Description(BSTR* description) {
    if (!description) return E_POINTER;
    if (!m_fields.Description.empty()) {
        *description = allocBstrFromAnsi(m_fields.Description);
        return S_OK;
    }
    char text[64];
    std::snprintf(text, sizeof text, "Mode %.2f Hz", static_cast<double>(m_fields.Frequency));
    *description = allocBstrFromAnsi(text);
    return S_OK;
}

HRESULT CMode::put_Type(VARIANT type) {
    LONG code = 0;
    if (HRESULT h = modeCodeOf(type, code); FAILED(h)) return h;
    return storeField(m_fields.Type, code);
}

HRESULT CMode::put_Method(VARIANT method) {
    LONG code = 0;
    if (HRESULT h = modeCodeOf(method, code); FAILED(h)) return h;
    return storeField(m_fields.Method, code);
}

HRESULT CMode::Translate(LONG code, BSTR* text) { return modeEnumTable().translate(code, text); }

// The stored description (not the text made from the frequency), the type and the method.
HRESULT CMode::Clip(BSTR format, BSTR* text) {
    const MessageArg inserts[] = {m_fields.Description, modeCodeText(m_fields.Type), modeCodeText(m_fields.Method)};
    return clip(format, inserts, text);
}

HRESULT CMode::AddShape(IModeCoeff* coefficient, LONG* index) {
    Variant key, before, after;
    return m_shape.Add(coefficient, &key, &before, &after, index);
}

// The list of the mode's scalar properties, made once from the interface; a field made from it
// takes its own reference on the mode.
HRESULT CMode::get_Fields(IFields** fields) {
    if (!fields) return E_POINTER;
    *fields = nullptr;
    if (!m_fieldList) {
        m_fieldList = CFields::create();
        m_fieldList->SetInterface(IID_IMode);
    }
    if (m_fieldList->names().empty()) {
        ITypeLib* library = nullptr;
        HRESULT h = LoadRegTypeLib(LIBID_NVDL, 1, 0, LOCALE_USER_DEFAULT, &library);
        if (FAILED(h)) return h;
        h = m_fieldList->Load(library, nullptr);
        library->Release();
        if (FAILED(h)) return h;
    }
    m_fieldList->SetOwner(dispatch());
    *fields = m_fieldList;
    m_fieldList->AddRef();
    return S_OK;
}

HRESULT CMode::Copy(IMode* source, IMode* target) {
    auto* from = dynamic_cast<CMode*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CMode*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from == to) return S_OK;
    to->m_fields = from->m_fields;
    to->m_modified = from->m_modified;
    for (ModeCoeffList which : kModeCoeffLists) {
        CObjectCollection& into = to->coefficients(which);
        into.Clear();
        if (HRESULT h = into.AddClonesOf(from->coefficients(which)); FAILED(h)) return h;
    }
    return S_OK;
}

}  // namespace nvdl
