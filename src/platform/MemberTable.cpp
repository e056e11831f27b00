#include "platform/MemberTable.h"

#include <cctype>
#include <new>
#include <stdexcept>
#include <string_view>

#include "nvdl/ErrorInfo.h"
#include "platform/CodePage.h"

namespace nvdl::detail {

namespace {

const VARIANT* followReference(const VARIANT* in) {
    while (in && in->vt == (VT_BYREF | VT_VARIANT)) in = in->pvarVal;
    return in;
}

bool isMissing(const VARIANT* v) { return v->vt == VT_ERROR && v->scode == DISP_E_PARAMNOTFOUND; }

}  // namespace

HRESULT loadConverted(const VARIANT* in, VARTYPE vt, Variant& holder) {
    if (!in) return DISP_E_PARAMNOTOPTIONAL;
    HRESULT h = VariantChangeType(&holder, in, 0, vt);
    if (FAILED(h) && h != DISP_E_OVERFLOW) return DISP_E_TYPEMISMATCH;
    return h;
}

HRESULT loadObject(const VARIANT* in, const IID& iid, void** object) {
    *object = nullptr;
    in = followReference(in);
    if (!in) return DISP_E_PARAMNOTOPTIONAL;
    if (in->vt == (VT_BYREF | VT_DISPATCH) || in->vt == (VT_BYREF | VT_UNKNOWN)) {
        IUnknown* target = in->ppdispVal ? *in->ppdispVal : nullptr;
        if (!target) return S_OK;
        return SUCCEEDED(target->QueryInterface(iid, object)) ? S_OK : DISP_E_TYPEMISMATCH;
    }
    if (in->vt == VT_EMPTY || in->vt == VT_NULL || isMissing(in)) return S_OK;
    if (in->vt != VT_DISPATCH && in->vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    if (!in->punkVal) return S_OK;
    return SUCCEEDED(in->punkVal->QueryInterface(iid, object)) ? S_OK : DISP_E_TYPEMISMATCH;
}

void storeValue(VARIANT* dest, VARIANT& value) {
    VariantClear(dest);
    *dest = value;
    VariantInit(&value);
}

HRESULT Arg<SAFEARRAY*>::load(CallFrame& f, const ArgSlot& s) {
    const VARIANT* in = followReference(f.params[s.position]);
    if (!in) return DISP_E_PARAMNOTOPTIONAL;
    if (in->vt == (VT_ARRAY | VT_R4)) array = in->parray;
    else if (in->vt == (VT_BYREF | VT_ARRAY | VT_R4)) array = *in->pparray;
    else if (in->vt == VT_EMPTY || isMissing(in)) array = nullptr;
    else return DISP_E_TYPEMISMATCH;
    return S_OK;
}

namespace {

// The parameter names of a list as written: "(LONG index, float* v)" gives index and v.
std::vector<std::string> parameterNames(std::string_view list) {
    std::vector<std::string> names;
    std::size_t open = list.find('('), close = list.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close <= open) return names;
    std::string_view inner = list.substr(open + 1, close - open - 1);
    while (!inner.empty()) {
        std::size_t comma = inner.find(',');
        std::string_view one = inner.substr(0, comma);
        std::size_t end = one.find_last_not_of(" \t\n");
        if (end != std::string_view::npos) {
            std::size_t begin = end;
            while (begin > 0 && (std::isalnum(static_cast<unsigned char>(one[begin - 1])) || one[begin - 1] == '_')) --begin;
            names.emplace_back(one.substr(begin, end + 1 - begin));
        }
        if (comma == std::string_view::npos) break;
        inner.remove_prefix(comma + 1);
    }
    return names;
}

INVOKEKIND invokeKind(members::Kind kind) {
    switch (kind) {
        case members::Kind::PropertyGet: return INVOKE_PROPERTYGET;
        case members::Kind::PropertyPut: return INVOKE_PROPERTYPUT;
        case members::Kind::PropertyPutRef: return INVOKE_PROPERTYPUTREF;
        default: return INVOKE_FUNC;
    }
}

struct ParameterMarks {
    bool optional = false;
    bool output = false;
    VARTYPE declared = VT_EMPTY;
};

}  // namespace

namespace {

void recordFailure(const IID& iid, std::u16string description) {
    ErrorRecord record;
    record.iid = iid;
    record.source = u"nvdl";
    record.description = std::move(description);
    setErrorInfo(std::move(record));
}

}  // namespace

HRESULT failureOfException(const IID& iid) noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& e) {
        try {
            recordFailure(iid, widen(e.what()));
        } catch (...) {
        }
    } catch (...) {
        try {
            recordFailure(iid, u"An unexpected failure stopped the call.");
        } catch (...) {
        }
    }
    return E_FAIL;
}

void describe(MemberEntry& entry, members::Kind memberKind, const std::vector<SignatureItem>& signature,
              const char* parameters, std::initializer_list<members::Mark> marks) {
    const INVOKEKIND kind = invokeKind(memberKind);
    const std::size_t n = signature.size();
    entry.names = parameterNames(parameters);
    while (entry.names.size() < n) entry.names.emplace_back(kind == INVOKE_FUNC ? "arg" : "value");

    std::vector<ParameterMarks> marked(n);
    VARTYPE valueType = VT_EMPTY;
    entry.desc.memid = entry.memid;
    for (const members::Mark& mark : marks) {
        using What = members::Mark::What;
        std::size_t i = 0;
        if (mark.parameter)
            while (i < n && entry.names[i] != mark.parameter) ++i;
        if (mark.parameter && i == n) continue;  // a mark on no parameter of this member
        switch (mark.what) {
            case What::Optional: marked[i].optional = true; break;
            case What::Output: marked[i].output = true; break;
            case What::Declared: marked[i].declared = mark.type; break;
            case What::ValueType: valueType = mark.type; break;
            case What::Hidden: entry.desc.wFuncFlags |= FUNCFLAG_FHIDDEN; break;
            case What::Id: entry.desc.memid = mark.id; break;
        }
    }

    std::vector<bool> output(n);
    for (std::size_t i = 0; i < n; ++i) output[i] = kind != INVOKE_PROPERTYPUT && kind != INVOKE_PROPERTYPUTREF &&
                                                   (signature[i].output || marked[i].output);
    if (kind == INVOKE_PROPERTYGET && n > 0) output[n - 1] = true;  // a get's last parameter is its value
    const bool hasRetval = n > 0 && output[n - 1] && (kind == INVOKE_PROPERTYGET || kind == INVOKE_FUNC);

    entry.desc.invkind = kind;
    entry.desc.elemdescFunc = {VT_VOID, VT_EMPTY};
    entry.hasRetval = hasRetval;
    entry.slots.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        VARTYPE vt = signature[i].vt;
        VARTYPE declared = marked[i].declared != VT_EMPTY ? marked[i].declared : vt;
        bool isValue = (hasRetval && i == n - 1) || ((kind == INVOKE_PROPERTYPUT || kind == INVOKE_PROPERTYPUTREF) && i == n - 1);
        if (isValue && valueType != VT_EMPTY) declared = valueType;
        TYPEDESC type = declared == VT_PTR ? TYPEDESC{VT_PTR, VT_USERDEFINED} : TYPEDESC{declared, VT_EMPTY};
        ArgSlot& slot = entry.slots[i];
        slot.declared = declared;
        if (hasRetval && i == n - 1) {
            slot.role = SlotRole::Retval;
            entry.desc.elemdescFunc = type;
            entry.hasOutputs = true;
            continue;
        }
        PARAMDESC p;
        p.name = entry.names[i].c_str();
        if (output[i]) {
            slot.role = SlotRole::Out;
            p.type = {VT_PTR, type.vt == VT_PTR ? static_cast<VARTYPE>(VT_USERDEFINED) : type.vt};
            p.flags = PARAMFLAG_FOUT;
            entry.hasOutputs = true;
        } else {
            slot.role = SlotRole::In;
            p.type = signature[i].byPointer ? TYPEDESC{VT_PTR, type.vt} : type;
            p.flags = PARAMFLAG_FIN;
        }
        if (marked[i].optional) {
            p.flags |= PARAMFLAG_FOPT;
            ++entry.desc.cParamsOpt;
        }
        slot.position = static_cast<unsigned>(entry.params.size());
        entry.params.push_back(p);
    }
    entry.desc.cParams = static_cast<SHORT>(entry.params.size());
}

}  // namespace nvdl::detail
