#include "frame/PropertyAccess.h"

#include <cstdio>
#include <string>

#include "platform/CodePage.h"

namespace nvdl {

HRESULT getPropertyText(IDispatch* self, ITypeInfo* info, BSTR name, BSTR* value) {
    if (!info) return E_UNEXPECTED;
    if (!value) return E_POINTER;
    std::u16string text(bstrView(name));
    OLECHAR* names[] = {text.data()};
    MEMBERID id;
    HRESULT h = info->GetIDsOfNames(names, 1, &id);
    if (FAILED(h)) return h;
    Variant result;
    DISPPARAMS none{};
    h = info->Invoke(self, id, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr);
    if (FAILED(h)) return h;
    h = VariantChangeType(&result, &result, 0, VT_BSTR);
    if (FAILED(h)) return h;
    *value = result.bstrVal;
    result.vt = VT_EMPTY;
    return S_OK;
}

namespace {

bool scanLong(const std::string& text, long& value) { return std::sscanf(text.c_str(), "%ld", &value) == 1; }

// The text as a value of the declared type, as put_Property converts it.
HRESULT convertForPut(VARTYPE declared, BSTR text, Variant& value, VARIANT*& argument) {
    std::string narrowText = bstrToAnsi(text);
    long integer = 0;
    double real = 0;
    argument = &value;
    switch (declared) {
        case VT_I2:
        case VT_I4:
            if (!scanLong(narrowText, integer)) return E_INVALIDARG;
            value = Variant::fromLong(static_cast<LONG>(integer));
            return S_OK;
        case VT_R4:
        case VT_R8:
            if (std::sscanf(narrowText.c_str(), "%lf", &real) != 1) return E_INVALIDARG;
            value = Variant::fromDouble(real);
            return S_OK;
        case VT_DATE: {
            Variant source = Variant::fromString(bstrView(text));
            if (FAILED(VariantChangeTypeEx(&value, &source, LOCALE_USER_DEFAULT, 0, VT_DATE))) return E_INVALIDARG;
            return S_OK;
        }
        case VT_BSTR:
            value = Variant::fromString(bstrView(text));
            return S_OK;
        case VT_BOOL:
            if (!scanLong(narrowText, integer)) return E_INVALIDARG;
            value.vt = VT_BOOL;
            value.boolVal = integer != 0 ? 1 : 0;  // 1, not -1
            return S_OK;
        default: return E_INVALIDARG;
    }
}

}  // namespace

HRESULT putPropertyText(IDispatch* self, ITypeInfo* info, BSTR name, BSTR value, PutPropertyOutcome& outcome) {
    outcome = PutPropertyOutcome::NoSuchMember;
    if (bstrToAnsi(name).empty() || bstrToAnsi(value).empty()) return E_FAIL;
    if (!info) return E_UNEXPECTED;
    const TYPEATTR* attr = nullptr;
    if (FAILED(info->GetTypeAttr(&attr)) || !attr) return E_UNEXPECTED;
    for (unsigned i = 0; i < attr->cFuncs; ++i) {
        const FUNCDESC* f = nullptr;
        if (FAILED(info->GetFuncDesc(i, &f)) || f->invkind != INVOKE_PROPERTYPUT) continue;
        BSTR memberName = nullptr;
        unsigned got = 0;
        if (FAILED(info->GetNames(f->memid, &memberName, 1, &got)) || got == 0) continue;
        bool same = bstrView(memberName) == bstrView(name);
        SysFreeString(memberName);
        if (!same) continue;

        outcome = PutPropertyOutcome::Done;
        if (f->cParams - f->cParamsOpt <= 0) return S_OK;
        TYPEDESC type = f->lprgelemdescParam[0].type;
        VARTYPE declared = type.vt == VT_PTR ? type.pointee : type.vt;
        Variant converted;
        Variant byReference;
        VARIANT* argument = nullptr;
        if (declared == VT_VARIANT) {
            converted = Variant::fromString(bstrView(value));
            byReference = Variant::byRef(&converted);
            argument = &byReference;
        } else if (HRESULT h = convertForPut(declared, value, converted, argument); FAILED(h)) {
            return h;
        }
        DISPID named = DISPID_PROPERTYPUT;
        DISPPARAMS params{argument, &named, 1, 1};
        return info->Invoke(self, f->memid, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr);
    }
    return S_OK;
}

bool isWalkedProperty(const FUNCDESC& f) {
    if (f.invkind != INVOKE_PROPERTYGET || f.cParams != 0 || (f.wFuncFlags & FUNCFLAG_FHIDDEN)) return false;
    VARTYPE vt = f.elemdescFunc.vt;
    return vt != VT_UNKNOWN && vt != VT_DISPATCH && !(vt & VT_ARRAY) && vt != VT_PTR;
}

namespace {

template <class Visit>
HRESULT walk(ITypeInfo* info, Visit visit) {
    if (!info) return E_UNEXPECTED;
    const TYPEATTR* attr = nullptr;
    if (FAILED(info->GetTypeAttr(&attr)) || !attr) return E_UNEXPECTED;
    for (unsigned i = 0; i < attr->cFuncs; ++i) {
        const FUNCDESC* f = nullptr;
        if (SUCCEEDED(info->GetFuncDesc(i, &f)) && isWalkedProperty(*f) && !visit(*f)) break;
    }
    return S_OK;
}

}  // namespace

HRESULT propertiesCount(ITypeInfo* info, LONG* count) {
    if (!count) return E_POINTER;
    LONG n = 0;
    HRESULT h = walk(info, [&](const FUNCDESC&) {
        ++n;
        return true;
    });
    if (SUCCEEDED(h)) *count = n;
    return h;
}

HRESULT propertyName(ITypeInfo* info, LONG index, BSTR* name) {
    if (!name) return E_POINTER;
    LONG count = 0;
    if (HRESULT h = propertiesCount(info, &count); FAILED(h)) return h;
    if (index < 0 || index >= count) return S_OK;
    LONG position = 0;
    HRESULT result = S_OK;
    walk(info, [&](const FUNCDESC& f) {
        if (position++ != index) return true;
        unsigned got = 0;
        BSTR text = nullptr;
        result = info->GetNames(f.memid, &text, 1, &got);
        if (SUCCEEDED(result)) *name = text;
        return false;
    });
    return result;
}

}  // namespace nvdl

namespace nvdl {

HRESULT propertyTextByIndex(IDispatch* self, ITypeInfo* info, LONG index, BSTR* value) {
    if (!value) return E_POINTER;
    LONG count = 0;
    if (HRESULT h = propertiesCount(info, &count); FAILED(h)) return h;
    if (index < 0 || index >= count) return E_INVALIDARG;
    Bstr name;
    if (HRESULT h = propertyName(info, index, name.out()); FAILED(h)) return h;
    return getPropertyText(self, info, name.get(), value);
}

}  // namespace nvdl
