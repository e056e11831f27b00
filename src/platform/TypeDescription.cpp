#include "platform/TypeDescription.h"

#include <algorithm>
#include <cctype>
#include <unordered_map>

namespace nvdl {

namespace {

bool nameEquals(const OLECHAR* wide, const char* ascii) {
    if (!wide) return false;
    std::size_t i = 0;
    for (; ascii[i]; ++i) {
        OLECHAR w = wide[i];
        if (w == 0 || w > 0x7F) return false;
        if (std::tolower(static_cast<unsigned char>(w)) != std::tolower(static_cast<unsigned char>(ascii[i]))) return false;
    }
    return wide[i] == 0;
}

std::string foldedName(std::string_view name) {
    std::string folded(name);
    for (char& c : folded) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return folded;
}

bool kindAccepts(INVOKEKIND kind, WORD flags) {
    switch (kind) {
        case INVOKE_FUNC: return flags & DISPATCH_METHOD;
        case INVOKE_PROPERTYGET: return flags & DISPATCH_PROPERTYGET;
        case INVOKE_PROPERTYPUT: return flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
        case INVOKE_PROPERTYPUTREF: return flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
    }
    return false;
}

const VARIANT& missingArgument() {
    static const Variant missing = Variant::missing();
    return missing;
}

}  // namespace

InterfaceDescription::InterfaceDescription(const IID& iid, const char* name, std::vector<MemberEntry> members)
    : m_name(name), m_members(std::move(members)) {
    m_attr.guid = iid;
    m_attr.cFuncs = static_cast<WORD>(m_members.size());
    for (MemberEntry& m : m_members) {
        m.desc.lprgelemdescParam = m.params.empty() ? nullptr : m.params.data();
        for (std::size_t i = 0; i < m.slots.size() && i < m.names.size(); ++i)
            if (m.slots[i].role != SlotRole::Retval) m.params[m.slots[i].position].name = m.names[i].c_str();
    }
    // The name index: member names folded to lower case, sorted; the first member of a name wins.
    for (std::size_t i = 0; i < m_members.size(); ++i) m_byName.emplace_back(foldedName(m_members[i].name), i);
    std::stable_sort(m_byName.begin(), m_byName.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
}

HRESULT InterfaceDescription::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_IUnknown || riid == IID_ITypeInfo) {
        *ppv = static_cast<ITypeInfo*>(this);
        return S_OK;
    }
    return E_NOINTERFACE;
}

HRESULT InterfaceDescription::GetTypeAttr(const TYPEATTR** attr) {
    if (!attr) return E_POINTER;
    *attr = &m_attr;
    return S_OK;
}

HRESULT InterfaceDescription::GetFuncDesc(unsigned index, const FUNCDESC** desc) {
    if (!desc) return E_POINTER;
    *desc = nullptr;
    if (index >= m_members.size()) return TYPE_E_ELEMENTNOTFOUND;
    *desc = &m_members[index].desc;
    return S_OK;
}

HRESULT InterfaceDescription::GetNames(MEMBERID memid, BSTR* names, unsigned maxNames, unsigned* count) {
    if (!names || !count) return E_POINTER;
    *count = 0;
    for (const MemberEntry& m : m_members) {
        if (m.memid != memid) continue;
        if (maxNames == 0) return S_OK;
        names[(*count)++] = allocBstrFromAnsi(m.name);
        for (const PARAMDESC& p : m.params) {
            if (*count >= maxNames) break;
            names[(*count)++] = allocBstrFromAnsi(p.name);
        }
        return S_OK;
    }
    return TYPE_E_ELEMENTNOTFOUND;
}

HRESULT InterfaceDescription::GetIDsOfNames(OLECHAR** names, unsigned count, MEMBERID* ids) {
    if (!ids || (count && !names)) return E_POINTER;
    if (count == 0) return S_OK;
    for (unsigned i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    const MemberEntry* member = findByName(names[0]);
    if (!member) return DISP_E_UNKNOWNNAME;
    ids[0] = member->memid;
    HRESULT result = S_OK;
    for (unsigned i = 1; i < count; ++i) {
        for (std::size_t p = 0; p < member->params.size(); ++p)
            if (nameEquals(names[i], member->params[p].name)) ids[i] = static_cast<MEMBERID>(p);
        if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
    }
    return result;
}

const MemberEntry* InterfaceDescription::findByName(const OLECHAR* name) const {
    if (!name) return nullptr;
    char folded[64];
    std::size_t n = 0;
    for (; name[n]; ++n) {
        if (n == sizeof folded || name[n] > 0x7F) return nullptr;  // member names are short ASCII words
        folded[n] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[n])));
    }
    std::string_view key(folded, n);
    auto it = std::lower_bound(m_byName.begin(), m_byName.end(), key,
                               [](const auto& entry, std::string_view k) { return entry.first < k; });
    return it != m_byName.end() && it->first == key ? &m_members[it->second] : nullptr;
}

const MemberEntry* InterfaceDescription::find(MEMBERID memid, WORD flags) const {
    for (const MemberEntry& m : m_members)
        if (m.memid == memid && kindAccepts(m.desc.invkind, flags)) return &m;
    return nullptr;
}

HRESULT InterfaceDescription::Invoke(IDispatch* instance, MEMBERID memid, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO*, unsigned* argErr) {
    if (!instance || !params) return E_POINTER;
    if (params->cArgs && !params->rgvarg) return E_POINTER;
    const MemberEntry* entry = find(memid, flags);
    if (!entry) return DISP_E_MEMBERNOTFOUND;

    bool isPut = entry->desc.invkind == INVOKE_PROPERTYPUT || entry->desc.invkind == INVOKE_PROPERTYPUTREF;
    if (isPut) {
        if (params->cNamedArgs != 1 || !params->rgdispidNamedArgs || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)
            return DISP_E_PARAMNOTOPTIONAL;
    } else if (params->cNamedArgs != 0) {
        return DISP_E_NONAMEDARGS;
    }

    const std::size_t declared = entry->params.size();
    if (params->cArgs > declared) return DISP_E_BADPARAMCOUNT;
    CallFrame frame;
    frame.iid = m_attr.guid;
    frame.result = result;
    frame.params.resize(declared, nullptr);
    if (isPut) {
        // The value is the named argument (first in rgvarg); index arguments come before it.
        frame.params[declared - 1] = &params->rgvarg[0];
        unsigned indexArgs = params->cArgs - 1;
        for (unsigned i = 0; i < indexArgs; ++i) frame.params[i] = &params->rgvarg[params->cArgs - 1 - i];
        for (std::size_t i = indexArgs; i + 1 < declared; ++i) {
            if (!(entry->params[i].flags & PARAMFLAG_FOPT)) return DISP_E_BADPARAMCOUNT;
            frame.params[i] = &missingArgument();
        }
    } else {
        for (unsigned i = 0; i < params->cArgs; ++i) frame.params[i] = &params->rgvarg[params->cArgs - 1 - i];
        for (std::size_t i = params->cArgs; i < declared; ++i) {
            const PARAMDESC& p = entry->params[i];
            if (p.flags & PARAMFLAG_FOPT) frame.params[i] = &missingArgument();
            else if (!(p.flags & PARAMFLAG_FOUT)) return DISP_E_BADPARAMCOUNT;
        }
    }
    HRESULT h = entry->thunk(instance, *entry, frame);
    if (argErr && (h == DISP_E_TYPEMISMATCH || h == DISP_E_OVERFLOW)) {
        // Report the failing argument by its place in rgvarg, as the caller sees it.
        if (isPut && frame.argErr + 1 == declared) *argErr = 0;
        else if (frame.argErr < params->cArgs) *argErr = params->cArgs - 1 - frame.argErr;
    }
    return h;
}

HRESULT InterfaceDescription::invokeWithNullOutputs(IDispatch* instance, const MemberEntry& entry) const {
    static const Variant empty;
    CallFrame frame;
    frame.iid = m_attr.guid;
    frame.nullOutputs = true;
    frame.params.assign(entry.params.size(), &empty);
    return entry.thunk(instance, entry, frame);
}

std::unique_ptr<InterfaceDescription> InterfaceDescription::alias(const IID& iid, const char* name) const {
    return std::make_unique<InterfaceDescription>(iid, name, m_members);
}

namespace {

class TypeLibrary final : public ITypeLib {
public:
    // Never destroyed: objects released during the module's own teardown still let go of their
    // descriptions.
    static TypeLibrary& instance() {
        static TypeLibrary* library = new TypeLibrary;
        return *library;
    }
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid == IID_IUnknown || riid == IID_ITypeLib) {
            *ppv = static_cast<ITypeLib*>(this);
            return S_OK;
        }
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetTypeInfoOfGuid(REFIID iid, ITypeInfo** info) override {
        if (!info) return E_POINTER;
        *info = nullptr;
        auto it = m_byIid.find(iid);
        if (it == m_byIid.end()) return TYPE_E_ELEMENTNOTFOUND;
        *info = const_cast<InterfaceDescription*>(it->second);
        return S_OK;
    }
    const InterfaceDescription& add(std::unique_ptr<InterfaceDescription> d) {
        m_byIid[d->iid()] = d.get();
        m_owned.push_back(std::move(d));
        return *m_owned.back();
    }

    std::vector<const InterfaceDescription*> all() const {
        std::vector<const InterfaceDescription*> descriptions;
        for (const auto& entry : m_byIid) descriptions.push_back(entry.second);
        return descriptions;
    }

private:
    std::unordered_map<IID, const InterfaceDescription*, GuidHash> m_byIid;
    std::vector<std::unique_ptr<InterfaceDescription>> m_owned;
};

}  // namespace

const InterfaceDescription& registerInterface(std::unique_ptr<InterfaceDescription> description) {
    return TypeLibrary::instance().add(std::move(description));
}

std::vector<const InterfaceDescription*> registeredInterfaces() { return TypeLibrary::instance().all(); }

}  // namespace nvdl

HRESULT LoadRegTypeLib(REFIID libid, WORD major, WORD minor, LCID, ITypeLib** lib) {
    if (!lib) return E_POINTER;
    *lib = nullptr;
    if (libid != LIBID_NVDL || major != 1 || minor != 0) return TYPE_E_LIBNOTREGISTERED;
    *lib = &nvdl::TypeLibrary::instance();
    return S_OK;
}
