// A file loader of another module: Load writes "loaded" into the file it is given and Save writes
// "saved", so that a test sees that the call arrived with its file name.
#include <fstream>
#include <string>

#include "nvdl/IWorkspaceLoader.h"
#include "nvdl/ServerEntry.h"
#include "../PluginFactory.h"

namespace {

constexpr CLSID kEchoLoaderClass = {0x9d1c1f6e, 0x3b57, 0x4f0a, {0x8e, 0x2d, 0x51, 0x7a, 0x0c, 0x44, 0xe6, 0x19}};

class EchoLoader final : public nvdl::test::PluginObject<IWorkspaceLoader> {
public:
    HRESULT Load(BSTR file, IDispatch* workspace) override { return echo(file, workspace, "loaded"); }
    HRESULT Save(BSTR file, IDispatch* workspace) override { return echo(file, workspace, "saved"); }

private:
    static HRESULT echo(BSTR file, IDispatch* workspace, const char* word) {
        if (!file || !workspace) return E_POINTER;
        std::ofstream out(nvdl::test::narrowAscii(file), std::ios::binary | std::ios::trunc);
        out << word;
        return out ? S_OK : E_FAIL;
    }
};

nvdl::test::PluginFactory<EchoLoader> g_factory;

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory) {
    return g_factory.classObject(kEchoLoaderClass, clsid, riid, factory);
}

