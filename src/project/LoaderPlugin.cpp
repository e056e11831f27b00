#include "project/LoaderPlugin.h"

#include <dlfcn.h>

#include <string>

#include "nvdl/Guid.h"
#include "platform/CodePage.h"
#include "platform/DebugTrace.h"
#include "platform/Registry.h"

namespace nvdl {

namespace {

using EntryPoint = HRESULT (*)(REFCLSID, REFIID, void**);

}  // namespace

HRESULT GetPluginClassObject(REFCLSID cls, REFIID riid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const std::string key = "CLSID\\" + formatGuid(cls) + "\\InprocServer32";
    const std::optional<std::string> path = registry::readString(registry::Hive::ClassesRoot, key, "");
    if (!path || path->empty()) return REGDB_E_CLASSNOTREG;

    void* library = ::dlopen(pathFromAnsi(*path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        DebugTraceF("GetPluginClassObject - %s cannot be loaded: %s", path->c_str(), ::dlerror());
        return CO_E_DLLNOTFOUND;
    }
    auto entry = reinterpret_cast<EntryPoint>(::dlsym(library, "DllGetClassObject"));
    if (!entry) {
        DebugTraceF("GetPluginClassObject - %s has no DllGetClassObject", path->c_str());
        ::dlclose(library);
        return CO_E_ERRORINDLL;
    }
    const HRESULT h = entry(cls, riid, object);
    if (FAILED(h) || !*object) {
        *object = nullptr;
        ::dlclose(library);
        return FAILED(h) ? h : E_UNEXPECTED;
    }
    return h;
}

}  // namespace nvdl
