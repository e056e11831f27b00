// A stand-in parent of another server, for the Modified climb.
#pragma once

#include "nvdl/Dispatch.h"
#include "nvdl/Variant.h"

namespace nvdl::test {

// A parent from another server: it answers IDispatch and the kinds it is told to, and knows one
// member, Modified, that it takes by Invoke. It has no type description here.
class ForeignParent final : public IDispatch {
public:
    explicit ForeignParent(IID kind) : m_kind(kind) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IDispatch && riid != m_kind) return E_NOINTERFACE;
        *ppv = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_refs; }
    ULONG Release() override { return --m_refs; }  // lives on the test's stack
    HRESULT GetTypeInfoCount(unsigned* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(unsigned, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, OLECHAR** names, unsigned, LCID, DISPID* ids) override {
        if (std::u16string_view(names[0]) != u"Modified") return DISP_E_UNKNOWNNAME;
        *ids = 7;
        return S_OK;
    }
    HRESULT Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                   unsigned*) override {
        if (id != 7 || !(flags & DISPATCH_PROPERTYPUT) || params->cArgs != 1) return DISP_E_MEMBERNOTFOUND;
        Variant flag;
        VariantChangeType(&flag, &params->rgvarg[0], 0, VT_I2);
        modified = flag.iVal;
        ++puts;
        return S_OK;
    }

    SHORT modified = 0;
    int puts = 0;

private:
    IID m_kind;
    ULONG m_refs = 1;
};

}  // namespace nvdl::test
