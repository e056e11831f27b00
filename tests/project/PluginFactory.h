// The class factory of a test plug-in library: one factory for the library's life, making objects
// of one class, and the library's entry point answering for that class only; and what the objects
// of such a library share. Public headers only, as a library of another module sees this one.
#pragma once

#include <string>

#include "nvdl/Dispatch.h"

namespace nvdl::test {

// A text of a library of another module, which only ever holds ASCII.
inline std::string narrowAscii(const char16_t* text) {
    std::string out;
    for (; text && *text; ++text) out += static_cast<char>(*text);
    return out;
}

// IUnknown and IDispatch of an object of the one interface I; nothing is late bound.
template <class I>
class PluginObject : public I {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IDispatch && riid != I::iid) return E_NOINTERFACE;
        *ppv = static_cast<I*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override {
        const ULONG left = --m_cRef;
        if (left == 0) delete this;
        return left;
    }
    HRESULT GetTypeInfoCount(unsigned*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(unsigned, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, OLECHAR**, unsigned, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, unsigned*) override { return E_NOTIMPL; }

protected:
    virtual ~PluginObject() = default;

private:
    ULONG m_cRef = 1;
};

template <class Object>
class PluginFactory final : public IClassFactory {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
        *ppv = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    // One factory for the life of the library.
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        auto* made = new Object;
        const HRESULT h = made->QueryInterface(riid, object);
        made->Release();
        return h;
    }
    HRESULT LockServer(int) override { return S_OK; }

    // What the library's DllGetClassObject answers when it serves `served`.
    HRESULT classObject(REFCLSID served, REFCLSID clsid, REFIID riid, void** factory) {
        if (!factory) return E_POINTER;
        *factory = nullptr;
        if (clsid != served) return CLASS_E_CLASSNOTAVAILABLE;
        return QueryInterface(riid, factory);
    }
};

}  // namespace nvdl::test
