// A file loader of another module: Load writes "loaded" into the file it is given and Save writes
// "saved", so that a test sees that the call arrived with its file name.
#include <fstream>
#include <string>

#include "nvdl/IWorkspaceLoader.h"
#include "nvdl/ServerEntry.h"
#include "../PluginFactory.h"

namespace {

constexpr CLSID kEchoLoaderClass = {0x9d1c1f6e, 0x3b57, 0x4f0a, {0x8e, 0x2d, 0x51, 0x7a, 0x0c, 0x44, 0xe6, 0x19}};

std::string narrowAscii(const char16_t* text) {
    std::string out;
    for (; text && *text; ++text) out += static_cast<char>(*text);
    return out;
}

class EchoLoader final : public IWorkspaceLoader {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IDispatch && riid != IID_IWorkspaceLoader) return E_NOINTERFACE;
        *ppv = static_cast<IWorkspaceLoader*>(this);
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

    HRESULT Load(BSTR file, IDispatch* workspace) override { return echo(file, workspace, "loaded"); }
    HRESULT Save(BSTR file, IDispatch* workspace) override { return echo(file, workspace, "saved"); }

private:
    static HRESULT echo(BSTR file, IDispatch* workspace, const char* word) {
        if (!file || !workspace) return E_POINTER;
        std::ofstream out(narrowAscii(file), std::ios::binary | std::ios::trunc);
        out << word;
        return out ? S_OK : E_FAIL;
    }

    ULONG m_cRef = 1;
};

nvdl::test::PluginFactory<EchoLoader> g_factory;

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory) {
    return g_factory.classObject(kEchoLoaderClass, clsid, riid, factory);
}

