#include "platform/MemberTable.h"

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

void describe(MemberEntry& entry, INVOKEKIND kind, const std::vector<SignatureItem>& signature,
              std::initializer_list<Param> params, VARTYPE valueType) {
    const std::size_t n = signature.size();
    std::vector<Param> names(params);
    while (names.size() < n) names.emplace_back(kind == INVOKE_FUNC ? "arg" : "value");

    std::vector<bool> output(n);
    for (std::size_t i = 0; i < n; ++i) output[i] = kind != INVOKE_PROPERTYPUT && kind != INVOKE_PROPERTYPUTREF &&
                                                   (signature[i].output || names[i].output);
    if (kind == INVOKE_PROPERTYGET && n > 0) output[n - 1] = true;  // a get's last parameter is its value
    const bool hasRetval = n > 0 && output[n - 1] && (kind == INVOKE_PROPERTYGET || kind == INVOKE_FUNC);

    entry.desc.memid = entry.memid;
    entry.desc.invkind = kind;
    entry.desc.elemdescFunc = {VT_VOID, VT_EMPTY};
    entry.hasRetval = hasRetval;
    entry.slots.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
        VARTYPE vt = signature[i].vt;
        VARTYPE declared = names[i].declared != VT_EMPTY ? names[i].declared : vt;
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
        p.name = names[i].name;
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
        if (names[i].optional) {
            p.flags |= PARAMFLAG_FOPT;
            ++entry.desc.cParamsOpt;
        }
        slot.position = static_cast<unsigned>(entry.params.size());
        entry.params.push_back(p);
    }
    entry.desc.cParams = static_cast<SHORT>(entry.params.size());
}

}  // namespace nvdl::detail
