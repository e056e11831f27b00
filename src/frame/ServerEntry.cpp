#include "nvdl/ServerEntry.h"

#include <map>
#include <memory>

#include "frame/ClassTable.h"
#include "frame/ObjectCount.h"
#include "platform/DebugTrace.h"
#include "project/UnitClient.h"

namespace {

class CClassFactory final : public IClassFactory {
public:
    explicit CClassFactory(const nvdl::ClassInfo& info) : m_info(info) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
        *ppv = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    // The module keeps one reference to each factory until it unloads.
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override { return m_cRef > 1 ? --m_cRef : 1; }

    HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        IDispatch* created = m_info.create();
        if (!created) return E_OUTOFMEMORY;
        HRESULT h = created->QueryInterface(riid, object);
        created->Release();  // the creator's reference
        return h;
    }
    HRESULT LockServer(int lock) override {
        if (lock) ++g_nLocks;
        else --g_nLocks;
        return S_OK;
    }

private:
    const nvdl::ClassInfo& m_info;
    ULONG m_cRef = 1;
};

using Factories = std::map<const nvdl::ClassInfo*, std::unique_ptr<CClassFactory>>;

// Factories by class, created on first use and kept until the module is let go of. The map itself
// is never destroyed, so that a request from another static object's constructor or destructor
// still finds it.
Factories& factories() {
    static Factories* map = new Factories;
    return *map;
}

// Attach and detach of the module, with its loading and unloading. This platform has no process heap
// to tune, no crash reporter to arm and no apartment to join, so attach only writes its trace line;
// detach lets go of what the module keeps: the class factories and the unit service.
struct ModuleLifetime {
    ModuleLifetime() { DebugTrace("NVDL.DLL connecting\n"); }
    ~ModuleLifetime() {
        DebugTrace("NVDL.DLL disconnecting\n");
        factories().clear();
        nvdl::ReleaseUnitService();
    }
} g_module;

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory) {
    if (!factory) return E_POINTER;
    *factory = nullptr;
    const nvdl::ClassInfo* info = nvdl::findClass(clsid);
    if (!info) return CLASS_E_CLASSNOTAVAILABLE;
    auto& slot = factories()[info];
    if (!slot) slot = std::make_unique<CClassFactory>(*info);
    return slot->QueryInterface(riid, factory);
}

HRESULT DllCanUnloadNow() { return g_nLocks == 0 && g_nObjects == 0 ? S_OK : S_FALSE; }
