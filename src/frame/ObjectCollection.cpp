#include "frame/ObjectCollection.h"

#include <cstdio>
#include <filesystem>

#include "frame/ClassTable.h"
#include "frame/CollectionEnumerator.h"
#include "nvdl/Identifiers.h"
#include "frame/LateBound.h"
#include "frame/Resources.h"
#include "frame/TextChecks.h"
#include "frame/TextCompare.h"
#include "frame/UniqueName.h"
#include "nvdl/IParameter.h"
#include "platform/CodePage.h"
#include "platform/MemberTable.h"

namespace nvdl {

namespace {

// The collection members under the first collection interface's name; the others are aliases.
const InterfaceDescription& describeCollection() {
    static const InterfaceDescription& d = [] () -> const InterfaceDescription& {
        MemberTable<ICollection> table(IID_IParameters, "IParameters");
        ICollection::describeMembers(table);
        return table.build();
    }();
    return d;
}

struct CollectionInterface {
    const IID& iid;
    const char* name;
};
const CollectionInterface kCollectionInterfaces[] = {
    {IID_IWorkspaces, "IWorkspaces"},         {IID_ILayouts, "ILayouts"},
    {IID_ISetups, "ISetups"},                 {IID_IMeasurements, "IMeasurements"},
    {IID_IModes, "IModes"},                   {IID_IGeometries, "IGeometries"},
    {IID_IDataBlocks, "IDataBlocks"},         {IID_ITransducers, "ITransducers"},
    {IID_IInputChannels, "IInputChannels"},   {IID_IStrainChannels, "IStrainChannels"},
    {IID_ISourceChannels, "ISourceChannels"}, {IID_IFrontends, "IFrontends"},
    {IID_ISaveFunctions, "ISaveFunctions"},   {IID_IComponents, "IComponents"},
    {IID_INodes, "INodes"},                   {IID_ILines, "ILines"},
    {IID_ITriangles, "ITriangles"},           {IID_IModeCoeffs, "IModeCoeffs"},
};

bool g_registered = (registerCollectionInterfaces(), true);

std::string lowerAnsi(std::u16string_view name) {
    std::string s = narrow(name);
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool toLong(const VARIANT* v, LONG& out) {
    Variant converted;
    if (v->vt == VT_EMPTY) return false;  // an empty position is no position, not position 0
    if (FAILED(VariantChangeType(&converted, v, 0, VT_I4))) return false;
    out = converted.lVal;
    return true;
}

// Writes null to the item's Parent, or if it has none, to its Setup.
void DetachItem(IDispatch* item) {
    DISPID id;
    if (FAILED(latebound::memberId(item, u"Parent", &id)) && FAILED(latebound::memberId(item, u"Setup", &id))) return;
    Variant none;
    none.vt = VT_DISPATCH;
    none.pdispVal = nullptr;
    latebound::put(item, id, none, true);
}

}  // namespace

void registerCollectionInterfaces() {
    const InterfaceDescription& base = describeCollection();
    for (const CollectionInterface& c : kCollectionInterfaces) registerInterface(base.alias(c.iid, c.name));
}

CObjectCollection::CObjectCollection(const IID& iid) : CObjectFrame(m_iid), m_iid(iid) {}

CObjectCollection::CObjectCollection(const IID& iid, Detached) : CObjectCollection(iid) { m_detached = true; }

CObjectCollection::~CObjectCollection() {
    m_owner.clear();
    m_hasOwner = false;
    Clear();
}

ULONG CObjectCollection::AddRef() {
    if (m_detached) return CObjectFrame::AddRef();
    IDispatch* owner = m_owner.get();
    return owner ? owner->AddRef() : 1;
}

ULONG CObjectCollection::Release() {
    if (m_detached) return CObjectFrame::Release();
    IDispatch* owner = m_owner.get();
    return owner ? owner->Release() : 1;
}

void CObjectCollection::SetOwner(IDispatch* owner) {
    m_owner.setOwner(owner, !m_detached);
    m_hasOwner = owner != nullptr;
}

void CObjectCollection::SetItemClass(const CLSID& itemClass) { m_itemClass = itemClass; }

IDispatch* CObjectCollection::GetOwner() { return m_owner.get(); }

IDispatch* CObjectCollection::itemAt(std::size_t index) const {
    return index < m_items.size() ? m_items[index]->m_pItem : nullptr;
}

bool CObjectCollection::keyedById() const {
    return isItemClass(CLSID_CMeasurement) || isItemClass(CLSID_CDataBlock);
}

bool CObjectCollection::nameIsFree() const {
    return isItemClass(CLSID_CInputChannel) || isItemClass(CLSID_CSourceChannel) || isItemClass(CLSID_CFrontend) ||
           isItemClass(CLSID_CSaveFunction) || isItemClass(CLSID_CParameter);
}

HRESULT CObjectCollection::get_Count(LONG* count) {
    if (!count) return E_POINTER;
    *count = static_cast<LONG>(m_items.size());
    return S_OK;
}

HRESULT CObjectCollection::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_sName);
    return S_OK;
}

HRESULT CObjectCollection::put_Name(BSTR name) {
    m_sName = bstrToAnsi(name);
    return S_OK;
}

HRESULT CObjectCollection::Add(IDispatch* item, VARIANT* key, VARIANT* before, VARIANT* after, LONG* index) {
    if (!item || !index || !key || !before || !after) return E_POINTER;
    const LONG count = static_cast<LONG>(m_items.size());

    LONG beforePos = -1, afterPos = -1;
    bool hasBefore = toLong(before, beforePos), hasAfter = toLong(after, afterPos);
    // The caller's positions, with the arithmetic clients have always had: an `after` near the end
    // inserts before the last item rather than behind it.
    if (hasBefore && beforePos > 0) beforePos -= 1;
    if (hasAfter && afterPos >= 0 && afterPos < count - 2) afterPos += 1;
    if ((hasBefore && hasAfter) || (hasBefore && beforePos == -1) || (hasAfter && afterPos == -1)) return E_INVALIDARG;

    std::u16string name;
    bool hasName = false;
    if (!keyedById()) {
        Variant value;
        if (SUCCEEDED(latebound::get(item, u"Name", &value)) && SUCCEEDED(value.changeType(VT_BSTR))) {
            name = bstrView(value.bstrVal);
            hasName = true;
        }
    }
    if (hasName && !nameIsFree()) {
        MakeUniqueName(name);
        Variant renamed = Variant::fromString(name);
        latebound::put(item, u"Name", renamed);
        if (isItemClass(CLSID_CWorkspace)) latebound::put(item, u"FullPathName", renamed);
    }

    IDispatch* stored = item;
    stored->AddRef();
    bool merged = false;
    HRESULT h = S_OK;
    if (isItemClass(CLSID_CParameter)) h = addParameter(stored, name, merged);
    else if (isItemClass(CLSID_CSaveFunction) && hasName) h = addSaveFunction(stored, name, merged);
    if (FAILED(h) || merged) {
        stored->Release();
        return h;
    }
    if (isItemClass(CLSID_CSetup)) NormaliseCreator(stored);

    bool attached = true;
    if (m_bSetParent) {
        h = attachToOwner(stored, attached);
        if (FAILED(h) || !attached) {
            if (isItemClass(CLSID_CParameter)) m_nameIndex.erase(lowerAnsi(name));
            stored->Release();
            return h;
        }
    }

    auto* entry = new CCollectionEntry;
    entry->m_pItem = stored;  // the reference taken above
    LONG position;
    if (hasBefore && beforePos >= 0 && beforePos < count) position = beforePos;
    else if (hasAfter && afterPos >= 0 && afterPos < count) position = afterPos;
    else position = count;
    m_items.insert(m_items.begin() + position, entry);
    *index = position;

    if (m_owner.get()) SetOwnerModified(1);
    return S_OK;
}

// The collection keeps a fresh copy of a parameter, and one parameter per name: a second one of
// the same name (case ignored) only hands its value to the first.
HRESULT CObjectCollection::addParameter(IDispatch*& item, const std::u16string& name, bool& merged) {
    IParameter* given = nullptr;
    IDispatch* fresh = nullptr;
    if (FAILED(item->QueryInterface(IID_IParameter, reinterpret_cast<void**>(&given)))) return E_POINTER;
    HRESULT h = createInstance(CLSID_CParameter, &fresh);
    IParameter* freshParameter = static_cast<IParameter*>(fresh);
    if (SUCCEEDED(h)) given->Copy(freshParameter);
    given->Release();
    if (FAILED(h)) return h;
    item->Release();
    item = fresh;

    if (trimmed(narrow(name)).empty()) {
        RaiseException(loadStringResource(IDS_PARAMETER_NAME_BLANK, 100), moduleFileName());
        return E_FAIL;
    }
    std::string key = lowerAnsi(name);
    if (m_nameIndex.count(key)) {
        Variant text = Variant::fromString(name);
        IDispatch* existing = nullptr;
        if (SUCCEEDED(Item(text, &existing))) {
            Bstr value;
            freshParameter->get_Value(value.out());
            static_cast<IParameter*>(existing)->put_Value(value.get());
            existing->Release();
        }
        merged = true;
        return S_OK;
    }
    m_nameIndex.insert(key);
    return S_OK;
}

HRESULT CObjectCollection::addSaveFunction(IDispatch* item, const std::u16string& name, bool& merged) {
    std::string key = lowerAnsi(name);
    if (m_functionIndex.count(key)) {
        Variant text = Variant::fromString(name);
        IDispatch* existing = nullptr;
        if (SUCCEEDED(Item(text, &existing))) {
            Variant value;
            if (SUCCEEDED(latebound::get(item, u"Value", &value))) latebound::put(existing, u"Value", value);
            existing->Release();
        }
        merged = true;
        return S_OK;
    }
    m_functionIndex.insert(key);
    return S_OK;
}

// The creator of a setup entering a collection: trimmed, "Measure" when empty, and the kind of
// analysis that made it when one of its sections is active (post-processing before impact).
void CObjectCollection::NormaliseCreator(IDispatch* setup) {
    Variant creator;
    if (FAILED(latebound::get(setup, u"Creator", &creator)) || FAILED(creator.changeType(VT_BSTR))) return;
    auto activated = [&](std::u16string_view section) -> SHORT {
        Variant object, flag;
        if (FAILED(latebound::get(setup, section, &object)) || object.vt != VT_DISPATCH || !object.pdispVal) return 0;
        if (FAILED(latebound::get(object.pdispVal, u"Activated", &flag)) || FAILED(flag.changeType(VT_I2))) return 0;
        return flag.iVal;
    };
    SHORT postProcessing = activated(u"PostProcessing");
    SHORT impact = activated(u"Impact");
    std::string text = trimmed(bstrToAnsi(creator.bstrVal));
    if (text.empty()) text = "Measure";
    if (postProcessing == -1 || impact == -1) text = postProcessing == -1 ? "Post Process" : "Impact Wizard";
    latebound::put(setup, u"Creator", Variant::fromAnsi(text));
}

HRESULT CObjectCollection::attachToOwner(IDispatch* item, bool& attached) {
    DISPID id;
    attached = SUCCEEDED(latebound::memberId(item, u"Parent", &id)) || SUCCEEDED(latebound::memberId(item, u"Setup", &id));
    if (!attached) return S_OK;
    Variant owner;
    owner.vt = VT_DISPATCH;
    owner.pdispVal = m_owner.get();  // a stale owner is cleared by the look and written as null
    if (owner.pdispVal) owner.pdispVal->AddRef();
    return latebound::put(item, id, owner, true);
}

HRESULT CObjectCollection::MakeUniqueName(std::u16string& name) {
    if (m_items.empty()) return S_OK;
    const std::u16string_view keyName = keyedById() ? u"Id" : u"Name";
    DISPID id;
    HRESULT h = latebound::memberId(m_items.front()->m_pItem, keyName, &id);
    if (FAILED(h)) return h;
    const std::string original = narrow(name);
    bool closingInExtension = false;
    long n = 2;
    for (CCollectionEntry* entry : m_items) {
        Variant value;
        if (FAILED(latebound::get(entry->m_pItem, id, &value)) || FAILED(value.changeType(VT_BSTR))) continue;
        if (equalsIgnoringCase(bstrView(value.bstrVal), name)) name = widen(numberedName(original, n++, closingInExtension));
    }
    return S_OK;
}

bool CObjectCollection::itemKeyText(IDispatch* item, std::u16string& text) const {
    if (!item) return false;
    Variant value;
    if (isItemClass(CLSID_CParameter)) {
        IParameter* parameter = nullptr;
        if (FAILED(item->QueryInterface(IID_IParameter, reinterpret_cast<void**>(&parameter)))) return false;
        Bstr name;
        HRESULT h = parameter->get_Name(name.out());
        parameter->Release();
        if (FAILED(h) || !name.get()) return false;
        text = name.view();
        return true;
    }
    if (FAILED(latebound::get(item, keyedById() ? u"Id" : u"Name", &value)) || FAILED(value.changeType(VT_BSTR)))
        return false;
    text = bstrView(value.bstrVal);
    return true;
}

LONG CObjectCollection::findByText(std::u16string_view text, bool ignoreCase) const {
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        std::u16string candidate;
        if (!itemKeyText(m_items[i]->m_pItem, candidate)) continue;
        if (ignoreCase ? equalsIgnoringCase(candidate, text) : candidate == text) return static_cast<LONG>(i);
    }
    return -1;
}

HRESULT CObjectCollection::Item(VARIANT key, IDispatch** item) {
    if (!item) return E_POINTER;
    *item = nullptr;
    Variant copy;
    if (FAILED(VariantCopyInd(&copy, &key))) return E_INVALIDARG;
    LONG index = -1;
    if (copy.vt == VT_BSTR) {
        index = findByText(bstrView(copy.bstrVal), true);
    } else if (!toLong(&copy, index)) {
        return E_INVALIDARG;
    }
    if (index < 0 || index >= static_cast<LONG>(m_items.size())) return E_INVALIDARG;
    *item = m_items[index]->m_pItem;
    (*item)->AddRef();
    return S_OK;
}

HRESULT CObjectCollection::get__NewEnum(IUnknown** enumerator) {
    if (!enumerator) return E_POINTER;
    auto snapshot = std::make_shared<CCollectionEnumerator::Snapshot>();
    snapshot->reserve(m_items.size());
    for (CCollectionEntry* entry : m_items) snapshot->push_back(Variant::fromDispatch(entry->m_pItem));
    *enumerator = CCollectionEnumerator::create(std::move(snapshot));
    return S_OK;
}

HRESULT CObjectCollection::Remove(VARIANT key) {
    Variant copy;
    if (FAILED(VariantCopyInd(&copy, &key))) return E_INVALIDARG;
    LONG index = -1;
    if (copy.vt == VT_BSTR) {
        index = findByText(bstrView(copy.bstrVal), false);  // exact: unlike Item, case counts here
    } else {
        Variant number;
        HRESULT h = VariantChangeType(&number, &copy, 0, VT_I4);
        if (FAILED(h)) return h;
        Variant asText, numberText;
        if (FAILED(VariantChangeType(&asText, &copy, 0, VT_BSTR)) ||
            FAILED(VariantChangeType(&numberText, &number, 0, VT_BSTR)) ||
            bstrView(asText.bstrVal) != bstrView(numberText.bstrVal))
            return E_INVALIDARG;  // 1.5 is not taken for 1
        index = number.lVal;
    }
    if (index < 0 || index >= static_cast<LONG>(m_items.size())) return E_INVALIDARG;

    CCollectionEntry* entry = m_items[index];
    IDispatch* item = entry->m_pItem;
    if (isItemClass(CLSID_CParameter) || isItemClass(CLSID_CSaveFunction)) {
        std::u16string name;
        if (itemKeyText(item, name)) (isItemClass(CLSID_CParameter) ? m_nameIndex : m_functionIndex).erase(lowerAnsi(name));
    }
    DetachItem(item);
    ULONG left = item->Release();
    if (isItemClass(CLSID_CMeasurement)) writeRemoveDiagnostic(left);
    entry->m_pItem = nullptr;
    if (m_owner.get()) SetOwnerModified(1);
    m_items.erase(m_items.begin() + index);
    delete entry;
    return S_OK;
}

// A developer's aid: the count left on a removed measurement, in the temporary directory.
void CObjectCollection::writeRemoveDiagnostic(ULONG countLeft) const {
    std::error_code ec;
    std::filesystem::path path = std::filesystem::temp_directory_path(ec) / "remove.txt";
    if (ec) return;
    std::filesystem::remove(path, ec);
    if (FILE* f = std::fopen(path.c_str(), "w")) {
        std::fprintf(f, "cRef = %ld\n", static_cast<long>(countLeft));
        std::fclose(f);
    }
}

HRESULT CObjectCollection::Clear() {
    if (!m_items.empty() && m_owner.get()) SetOwnerModified(1);
    for (CCollectionEntry* entry : m_items) {
        if (entry && entry->m_pItem) {
            DetachItem(entry->m_pItem);
            entry->m_pItem->Release();
        }
        delete entry;
    }
    m_items.clear();
    m_nameIndex.clear();
    m_functionIndex.clear();
    return S_OK;
}

HRESULT CObjectCollection::Clone(ICollection** copy) {
    if (!copy) return E_POINTER;
    *copy = nullptr;
    auto* fresh = new CObjectCollection(m_iid, Detached{});
    fresh->m_sName = m_sName;
    if (HRESULT h = fresh->AddClonesOf(*this); FAILED(h)) {
        fresh->Release();
        return h;
    }
    *copy = fresh;
    return S_OK;
}

HRESULT CObjectCollection::AddClonesOf(const CObjectCollection& source) {
    for (CCollectionEntry* entry : source.m_items) {
        if (!entry || !entry->m_pItem) return E_POINTER;
        DISPID id;
        if (FAILED(latebound::memberId(entry->m_pItem, u"Clone", &id))) continue;
        Variant result;
        if (FAILED(latebound::call(entry->m_pItem, id, &result)) || FAILED(result.changeType(VT_DISPATCH)) ||
            !result.pdispVal)
            continue;
        Variant empty1, empty2, empty3;
        LONG index;
        Add(result.pdispVal, &empty1, &empty2, &empty3, &index);
    }
    return S_OK;
}

void CObjectCollection::SetOwnerModified(SHORT flag) {
    IDispatch* owner = m_owner.get();
    if (!owner) return;
    Variant value;
    value.vt = VT_BOOL;
    value.boolVal = flag;
    latebound::put(owner, u"Modified", value);
}

}  // namespace nvdl
