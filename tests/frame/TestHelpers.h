// Late-bound calls for the tests, in the shape a client makes them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "frame/LateBound.h"
#include "platform/CodePage.h"
#include "nvdl/ErrorInfo.h"
#include "platform/TypeDescription.h"
#include "nvdl/Variant.h"

namespace nvdl::test {

inline std::string textOf(const VARIANT& v) {
    Variant s;
    if (FAILED(VariantChangeType(&s, &v, 0, VT_BSTR))) return "<not text>";
    return narrow(bstrView(s.bstrVal));
}

inline std::string getText(IDispatch* object, std::u16string_view name) {
    Variant v;
    HRESULT h = latebound::get(object, name, &v);
    return FAILED(h) ? "<failed>" : textOf(v);
}

inline HRESULT putText(IDispatch* object, std::u16string_view name, const char* text) {
    return latebound::put(object, name, Variant::fromAnsi(text));
}

inline std::string pendingDescription() {
    const ErrorRecord* r = peekErrorInfo();
    return r ? narrow(r->description) : std::string();
}

// Calls a member with positional arguments (given first to last).
inline HRESULT invoke(IDispatch* object, std::u16string_view name, WORD flags, std::vector<Variant> args,
                      VARIANT* result = nullptr, unsigned* argErr = nullptr) {
    DISPID id;
    HRESULT h = latebound::memberId(object, name, &id);
    if (FAILED(h)) return h;
    std::vector<VARIANT> reversed(args.rbegin(), args.rend());
    DISPID named = DISPID_PROPERTYPUT;
    bool put = flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF);
    DISPPARAMS params{reversed.empty() ? nullptr : reversed.data(), put ? &named : nullptr,
                      static_cast<unsigned>(reversed.size()), put ? 1u : 0u};
    return object->Invoke(id, IID_NULL, 0, flags, &params, result, nullptr, argErr);
}

// Calls every member of the object that has outputs with null outputs: each must answer E_POINTER.
inline void expectNullOutputsRefused(IDispatch* object) {
    ITypeInfo* info = nullptr;
    ASSERT_EQ(object->GetTypeInfo(0, 0, &info), S_OK);
    const auto* d = static_cast<InterfaceDescription*>(info);
    for (const MemberEntry& m : d->members()) {
        if (m.hasOutputs) {
            // A member that is not implemented answers so before it looks at anything.
            const HRESULT h = d->invokeWithNullOutputs(object, m);
            EXPECT_TRUE(h == E_POINTER || h == E_NOTIMPL) << d->name() << "::" << m.name << " answered " << std::hex << h;
        }
    }
    info->Release();
}

}  // namespace nvdl::test
