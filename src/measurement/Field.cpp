#include "measurement/Field.h"

#include <algorithm>

#include "frame/CollectionEnumerator.h"
#include "frame/LateBound.h"
#include "frame/PropertyAccess.h"
#include "frame/TextCompare.h"
#include "platform/CodePage.h"
#include "platform/DebugTrace.h"
#include "platform/MemberTable.h"

namespace nvdl {


CField::CField(IDispatch* owner, const IID& ownerInterface, std::string name)
    : CObjectFrame(IID_IField), m_name(std::move(name)), m_owner(ComPtr<IDispatch>::share(owner)),
      m_ownerInterface(ownerInterface) {}

CField* CField::create(IDispatch* owner, const IID& ownerInterface, std::string name) {
    return new CField(owner, ownerInterface, std::move(name));
}

CField::~CField() = default;

HRESULT CField::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_name);
    return S_OK;
}

IDispatch* CField::readableOwner() { return m_owner.get(); }

HRESULT CField::resolveMember() {
    if (m_dispid != -1) return S_OK;
    IDispatch* owner = readableOwner();
    if (!owner) return E_FAIL;
    return latebound::memberId(owner, widen(m_name), &m_dispid);
}

HRESULT CField::get_Value(BSTR* value) {
    if (!value) return E_POINTER;
    *value = nullptr;
    if (FAILED(resolveMember())) return E_FAIL;
    Variant result;
    if (FAILED(latebound::get(m_owner.get(), m_dispid, &result)) || FAILED(result.changeType(VT_BSTR))) return E_FAIL;
    *value = result.bstrVal;
    result.vt = VT_EMPTY;
    return S_OK;
}

// The value type of the property's put half, from the owner's type description.
HRESULT CField::resolvePutType() {
    if (m_valueType != VT_UNKNOWN) return S_OK;
    ComPtr<ITypeInfo> info;
    if (FAILED(m_owner->GetTypeInfo(0, 0, info.out())) || !info) return E_FAIL;
    const TYPEATTR* attr = nullptr;
    HRESULT h = E_FAIL;
    if (SUCCEEDED(info->GetTypeAttr(&attr))) {
        for (unsigned i = 0; i < attr->cFuncs; ++i) {
            const FUNCDESC* f = nullptr;
            if (FAILED(info->GetFuncDesc(i, &f)) || f->memid != m_dispid || f->invkind != INVOKE_PROPERTYPUT ||
                f->cParams < 1)
                continue;
            TYPEDESC t = f->lprgelemdescParam[f->cParams - 1].type;
            m_valueType = t.vt == VT_PTR ? t.pointee : t.vt;
            h = S_OK;
            break;
        }
    }
    return h;
}

HRESULT CField::put_Value(BSTR value) {
    DebugTrace("HRESULT __stdcall CField::put_Value(BSTR bstrValue) - 1");
    if (FAILED(resolveMember()) || FAILED(resolvePutType())) return E_FAIL;
    Variant text = Variant::fromString(bstrView(value));
    Variant converted;
    if (m_valueType == VT_VARIANT) converted = text;
    else if (FAILED(VariantChangeType(&converted, &text, 0, m_valueType))) return E_FAIL;
    if (FAILED(latebound::put(m_owner.get(), m_dispid, converted))) return E_FAIL;
    putModifiedThroughFirst(m_owner.get(), kModifiedParents, VARIANT_TRUE);
    return S_OK;
}

HRESULT CField::put_Parent(IDispatch* parent) {
    m_owner = ComPtr<IDispatch>::share(parent);
    m_dispid = -1;
    m_valueType = VT_UNKNOWN;
    return S_OK;
}

HRESULT CField::get_Parent(IDispatch** parent) {
    if (!parent) return E_POINTER;
    *parent = readableOwner();
    if (*parent) (*parent)->AddRef();
    return S_OK;
}

CFields::CFields() : CObjectFrame(IID_IFields) {}

CFields* CFields::create() { return new CFields; }

void CFields::SetOwner(IDispatch* owner) { m_owner.set(owner); }

HRESULT CFields::Load(ITypeLib* library, IDispatch* owner) {
    if (!library) return E_POINTER;
    if (owner) SetOwner(owner);
    if (!m_names.empty()) return S_OK;
    ComPtr<ITypeInfo> info;
    HRESULT h = library->GetTypeInfoOfGuid(m_ownerInterface, info.out());
    if (FAILED(h)) return h;
    const TYPEATTR* attr = nullptr;
    if (SUCCEEDED(h = info->GetTypeAttr(&attr))) {
        for (unsigned i = 0; i < attr->cFuncs; ++i) {
            const FUNCDESC* f = nullptr;
            if (FAILED(info->GetFuncDesc(i, &f)) || !isWalkedProperty(*f)) continue;
            BSTR name = nullptr;
            unsigned got = 0;
            if (SUCCEEDED(info->GetNames(f->memid, &name, 1, &got)) && got) m_names.push_back(bstrToAnsi(name));
            SysFreeString(name);
        }
    }
    return h;
}

void CFields::Remove(std::string_view name) {
    for (auto it = m_names.begin(); it != m_names.end(); ++it)
        if (equalsIgnoringCase(widen(*it), widen(name))) {
            m_names.erase(it);
            return;
        }
}

HRESULT CFields::get_Count(LONG* count) {
    if (!count) return E_POINTER;
    *count = static_cast<LONG>(m_names.size());
    return S_OK;
}

HRESULT CFields::get_Item(VARIANT index, IField** field) {
    if (!field) return E_POINTER;
    *field = nullptr;
    Variant key;
    if (FAILED(VariantCopyInd(&key, &index))) return E_INVALIDARG;
    std::string name;
    if (key.vt == VT_BSTR) {
        auto it = std::find_if(m_names.begin(), m_names.end(),
                               [&](const std::string& n) { return equalsIgnoringCase(widen(n), bstrView(key.bstrVal)); });
        if (it == m_names.end()) return E_INVALIDARG;
        name = *it;
    } else {
        if (FAILED(key.changeType(VT_I4))) return E_INVALIDARG;
        // A position equal to the count passes the check, as it always has; it names no property.
        if (key.lVal < 0 || key.lVal > static_cast<LONG>(m_names.size())) return E_INVALIDARG;
        if (key.lVal < static_cast<LONG>(m_names.size())) name = m_names[key.lVal];
    }
    *field = CField::create(m_owner.get(), m_ownerInterface, name);
    return S_OK;
}

HRESULT CFields::get__NewEnum(IUnknown** enumerator) {
    if (!enumerator) return E_POINTER;
    auto snapshot = std::make_shared<CCollectionEnumerator::Snapshot>();
    for (const std::string& name : m_names) {
        CField* field = CField::create(m_owner.get(), m_ownerInterface, name);
        snapshot->push_back(Variant::fromDispatch(field->dispatch()));
        field->Release();
    }
    *enumerator = CCollectionEnumerator::create(std::move(snapshot));
    return S_OK;
}

}  // namespace nvdl
