#include "frame/LateBound.h"

#include <string>

#include "platform/TypeDescription.h"

namespace nvdl::latebound {

HRESULT memberId(IDispatch* object, std::u16string_view name, DISPID* id) {
    if (!object || !id) return E_POINTER;
    std::u16string text(name);
    OLECHAR* names[] = {text.data()};
    return object->GetIDsOfNames(IID_NULL, names, 1, 0, id);
}

HRESULT get(IDispatch* object, DISPID id, VARIANT* value) {
    if (!object || !value) return E_POINTER;
    DISPPARAMS none{};
    VariantClear(value);
    return object->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, value, nullptr, nullptr);
}

HRESULT get(IDispatch* object, std::u16string_view name, VARIANT* value) {
    DISPID id;
    HRESULT h = memberId(object, name, &id);
    return FAILED(h) ? h : get(object, id, value);
}

HRESULT put(IDispatch* object, DISPID id, const VARIANT& value, bool byReference) {
    if (!object) return E_POINTER;
    VARIANT arg = value;
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params{&arg, &named, 1, 1};
    return object->Invoke(id, IID_NULL, 0, byReference ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT, &params,
                          nullptr, nullptr, nullptr);
}

HRESULT put(IDispatch* object, std::u16string_view name, const VARIANT& value, bool byReference) {
    DISPID id;
    HRESULT h = memberId(object, name, &id);
    return FAILED(h) ? h : put(object, id, value, byReference);
}

HRESULT call(IDispatch* object, DISPID id, VARIANT* result) {
    if (!object) return E_POINTER;
    DISPPARAMS none{};
    return object->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &none, result, nullptr, nullptr);
}

}  // namespace nvdl::latebound

namespace nvdl {

HRESULT putModifiedThroughFirst(IDispatch* parent, std::initializer_list<IID> kinds, SHORT flag) {
    if (!parent) return E_POINTER;
    for (const IID& kind : kinds) {
        IDispatch* asKind = nullptr;
        if (FAILED(parent->QueryInterface(kind, reinterpret_cast<void**>(&asKind))) || !asKind) continue;
        ITypeLib* library = nullptr;
        ITypeInfo* info = nullptr;
        HRESULT h = LoadRegTypeLib(LIBID_NVDL, 1, 0, 0, &library);
        if (SUCCEEDED(h)) h = library->GetTypeInfoOfGuid(kind, &info);
        if (SUCCEEDED(h)) {
            static const OLECHAR kModified[] = u"Modified";
            OLECHAR* names[] = {const_cast<OLECHAR*>(kModified)};
            MEMBERID id;
            h = info->GetIDsOfNames(names, 1, &id);
            if (SUCCEEDED(h)) {
                VARIANT value;
                VariantInit(&value);
                value.vt = VT_I2;
                value.iVal = flag;
                DISPID named = DISPID_PROPERTYPUT;
                DISPPARAMS params{&value, &named, 1, 1};
                h = info->Invoke(asKind, id, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr);
            }
        }
        asKind->Release();
        return h;
    }
    return S_OK;
}

}  // namespace nvdl
