#include "frame/LateBound.h"

#include <string>
#include <vector>

#include "platform/ComPtr.h"
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

HRESULT call(IDispatch* object, std::u16string_view name, std::span<const VARIANT> args, VARIANT* result) {
    DISPID id;
    HRESULT h = memberId(object, name, &id);
    if (FAILED(h)) return h;
    std::vector<VARIANT> reversed(args.rbegin(), args.rend());  // the last argument comes first
    DISPPARAMS params{reversed.empty() ? nullptr : reversed.data(), nullptr, static_cast<unsigned>(reversed.size()), 0};
    return object->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &params, result, nullptr, nullptr);
}

}  // namespace nvdl::latebound

namespace nvdl {

HRESULT putModifiedThroughFirst(IDispatch* parent, std::span<const IID> kinds, SHORT flag) {
    if (!parent) return E_POINTER;
    for (const IID& kind : kinds) {
        ComPtr<IDispatch> asKind;
        if (FAILED(parent->QueryInterface(kind, asKind.outVoid())) || !asKind) continue;
        DISPID id;
        HRESULT h = latebound::memberId(asKind.get(), u"Modified", &id);
        if (FAILED(h)) return h;
        // Invoke would clear the thread's error record: the member is called through the parent's
        // type description instead when it has one, else through Invoke.
        ComPtr<ITypeInfo> info;
        if (SUCCEEDED(asKind->GetTypeInfo(0, 0, info.out())) && info) {
            VARIANT value;
            VariantInit(&value);
            value.vt = VT_I2;
            value.iVal = flag;
            DISPID named = DISPID_PROPERTYPUT;
            DISPPARAMS params{&value, &named, 1, 1};
            return info->Invoke(asKind.get(), id, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr);
        }
        return latebound::put(asKind.get(), id, Variant::fromShort(flag));
    }
    return S_OK;
}

}  // namespace nvdl
