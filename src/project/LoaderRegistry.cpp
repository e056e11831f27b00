#include "project/LoaderRegistry.h"

#include "frame/ClassTable.h"
#include "nvdl/ServerEntry.h"
#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "project/LoaderPlugin.h"

namespace nvdl {

namespace {

// The class that the first workspace files store; they are read as workspace files of today.
constexpr CLSID kFirstWorkspaceFileClass = {0x21f56f02, 0x072d, 0x11d0, {0x8f, 0xb4, 0x00, 0x60, 0x8c, 0xdf, 0x98, 0x83}};

// The class's text as the store writes it.
std::string classKey(const CLSID& cls) { return "CLSID\\" + formatGuid(cls); }

HRESULT createFromFactory(IClassFactory* factory, IWorkspaceLoader** loader) {
    const HRESULT h = factory->CreateInstance(nullptr, IID_IWorkspaceLoader, reinterpret_cast<void**>(loader));
    factory->Release();
    if (FAILED(h)) *loader = nullptr;  // whatever a foreign factory left there
    return h;
}

}  // namespace

HRESULT GetNewClsidLoader(const CLSID& cls, CLSID* result) {
    if (!result) return E_POINTER;
    *result = cls == kFirstWorkspaceFileClass ? CLSID_CWorkspace : cls;
    return S_OK;
}

HRESULT GetProgIDLoaderFromCLSID(const CLSID& cls, std::string& text) {
    std::optional<std::string> value =
        registry::readString(registry::Hive::ClassesRoot, classKey(cls) + "\\CLSIDLoader", "");
    if (!value) return E_FAIL;
    text = std::move(*value);
    return S_OK;
}

HRESULT ClassFromProgId(const std::string& progId, CLSID* cls) {
    if (!cls) return E_POINTER;
    *cls = CLSID_NULL;
    if (progId.empty()) return CO_E_CLASSSTRING;
    if (const ClassInfo* info = findClassByProgId(widen(progId))) {
        *cls = info->clsid;
        return S_OK;
    }
    const std::optional<std::string> text = registry::readString(registry::Hive::ClassesRoot, progId + "\\CLSID", "");
    const std::optional<GUID> parsed = text ? parseGuid(*text) : std::nullopt;
    if (!parsed) return CO_E_CLASSSTRING;
    *cls = *parsed;
    return S_OK;
}

HRESULT createWorkspaceLoader(const std::string& loaderText, IWorkspaceLoader** loader) {
    if (!loader) return E_POINTER;
    *loader = nullptr;
    CLSID cls;
    if (loaderText.starts_with('{')) {
        const std::optional<GUID> parsed = parseGuid(loaderText);
        if (!parsed) return CO_E_CLASSSTRING;
        cls = *parsed;
    } else if (HRESULT h = ClassFromProgId(loaderText, &cls); FAILED(h)) {
        return h;
    }

    IClassFactory* factory = nullptr;
    HRESULT h = findClass(cls) ? DllGetClassObject(cls, IID_IClassFactory, reinterpret_cast<void**>(&factory))
                               : GetPluginClassObject(cls, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(h)) return h;
    return createFromFactory(factory, loader);
}

}  // namespace nvdl
