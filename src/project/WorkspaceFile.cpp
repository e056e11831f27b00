// A workspace's own file: Save and Load through the loader of the file's class, found in the loader
// registry. Saving writes a new file beside the target and puts it in the target's place only when
// complete; loading names the workspace after its file.
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "frame/Resources.h"
#include "nvdl/ErrorInfo.h"
#include "nvdl/Guid.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/ReplaceFile.h"
#include "project/FileNames.h"
#include "project/LoaderRegistry.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

// Workspace files store the workspace's own class. Refusing that class wherever it came from would
// refuse every workspace file; so only a loader named as the workspace itself is refused, and a file
// of the workspace class reaches the workspace file loader through the loader table.

// A file that the system reports as having no class, and the loader that such a file is saved with.
constexpr CLSID kUnclassedFile{0x00020C01, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr CLSID kUnclassedLoader{0x3FBD0F68, 0x4821, 0x403b, {0xA4, 0x06, 0x6F, 0xE9, 0xE7, 0x75, 0x10, 0xC6}};
constexpr HRESULT kNotWritable = static_cast<HRESULT>(-13);
constexpr const char* kExportFailed =
    "Exporting Error.\nPlease check if the network is still working or if your are not using a corrupt file.";
constexpr const char* kImportFailed =
    "Importing Error.\nPlease check if the network is still working or if your are not using a corrupt file.";

enum class Named { No, Yes, Refused };

// The class named by the loader argument: a ProgID. Nothing named (empty, absent, an error value)
// and a ProgID that is not known both leave the choice to the file; an empty text is refused.
Named classOfLoaderArgument(const VARIANT& loader, CLSID& cls) {
    if (loader.vt == VT_EMPTY || loader.vt == VT_ERROR || loader.vt == VT_NULL) return Named::No;
    Variant text;
    if (FAILED(VariantChangeType(&text, &loader, 0, VT_BSTR))) return Named::No;
    const std::string progId = narrow(bstrView(text.bstrVal));
    if (progId.empty()) return Named::Refused;
    return SUCCEEDED(ClassFromProgId(progId, &cls)) ? Named::Yes : Named::No;
}

// The class stored in a compound file, if it is one and has a class.
bool storedClassOf(const std::string& file, CLSID& cls) {
    ComPtr<IStorage> root;
    STATSTG stat;
    if (FAILED(openCompoundFile(pathFromAnsi(file), STGM_READ | STGM_SHARE_DENY_WRITE, root.out())) ||
        FAILED(root->Stat(&stat, STATFLAG_NONAME)) || stat.clsid == CLSID_NULL)
        return false;
    cls = stat.clsid;
    return true;
}

// The loader of files of a class: the class's CLSIDLoader, or the class itself when it is a loader.
HRESULT loaderOf(const CLSID& cls, ComPtr<IWorkspaceLoader>& loader, CLSID& loaderClass) {
    std::string text;
    if (FAILED(GetProgIDLoaderFromCLSID(cls, text))) text = formatGuid(cls);
    HRESULT h = createWorkspaceLoader(text, loader.out());
    if (FAILED(h)) return h;
    const std::optional<GUID> parsed = parseGuid(text);
    if (parsed) loaderClass = *parsed;
    else if (FAILED(ClassFromProgId(text, &loaderClass))) loaderClass = CLSID_NULL;
    return S_OK;
}

std::string baseNameOf(const std::string& file) { return SplitPath(file).baseName; }

// The message of the layer below, or the fixed text, raised with the file as its source.
std::string failureMessage(const char* fallback) {
    const ErrorRecord* below = peekErrorInfo();
    return below && !below->description.empty() ? narrow(below->description) : std::string(fallback);
}

// A file's date as ctime writes it, without its line end.
std::string fileTime(const std::string& file) {
    struct stat st{};
    if (::stat(pathFromAnsi(file).c_str(), &st) != 0) return {};
    char buffer[32] = {};
    ctime_r(&st.st_mtime, buffer);
    std::string text(buffer);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

}  // namespace

HRESULT CWorkspace::Save(BSTR fileName, VARIANT loaderName) {
    if (!fileName) return E_FAIL;
    std::string file = bstrToAnsi(fileName);
    const std::filesystem::path path = pathFromAnsi(file);
    if (::access(path.c_str(), F_OK) == 0 && ::access(path.c_str(), W_OK) != 0) {
        RaiseException("The file is not accessible in write mode.", file);
        return kNotWritable;
    }
    CLSID cls = CLSID_NULL;
    const Named named = classOfLoaderArgument(loaderName, cls);
    if (named == Named::Refused) return E_FAIL;
    if (named == Named::Yes && cls == CLSID_CWorkspace) return E_FAIL;  // a workspace does not save through itself
    if (named == Named::No && !storedClassOf(file, cls)) cls = CLSID_CWkdLoader;
    if (cls == kUnclassedFile) cls = kUnclassedLoader;
    ComPtr<IWorkspaceLoader> loader;
    CLSID loaderClass;
    HRESULT h = loaderOf(cls, loader, loaderClass);
    if (FAILED(h)) return h;
    if (loaderClass == CLSID_CWkdLoader && !IsWkdFileName(file)) {
        const std::string wkdName = MakeWkdFileName(file);
        if (!PromptSaveAs(file, wkdName)) return E_FAIL;
        file = wkdName;
    }
    h = replaceFile(pathFromAnsi(file), [&](const std::filesystem::path& temporary) {
        const Bstr name(std::string_view{narrow(utf8ToUtf16(temporary.string()))});  // the file system's text to ours
        return loader->Save(name.get(), dispatch());
    });
    if (FAILED(h)) {
        RaiseException(failureMessage(kExportFailed), file);
        return h;
    }
    // A workspace file replaced the one its measurements may have paged from: they follow it.
    if (loaderClass == CLSID_CWkdLoader) followSavedWorkspace(*this, WkdPlace{file, {}});
    const Bstr base(std::string_view{baseNameOf(file)});
    put_OriginFile(base.get());
    put_Name(base.get());
    return S_OK;
}

HRESULT CWorkspace::Load(BSTR fileName, VARIANT loaderName) {
    if (!fileName) return E_FAIL;
    const std::string file = bstrToAnsi(fileName);
    CLSID cls = CLSID_NULL;
    const Named named = classOfLoaderArgument(loaderName, cls);
    if (named == Named::Refused) return E_FAIL;
    if (named == Named::Yes && cls == CLSID_CWorkspace) return E_FAIL;  // a workspace does not load through itself
    if (named == Named::No && !storedClassOf(file, cls) && FAILED(FindLoaderForFile(file, &cls))) cls = CLSID_CWorkspace;
    GetNewClsidLoader(cls, &cls);
    ComPtr<IWorkspaceLoader> loader;
    CLSID loaderClass;
    HRESULT h = loaderOf(cls, loader, loaderClass);
    if (FAILED(h)) h = loaderOf(CLSID_CWorkspace, loader, loaderClass);
    if (FAILED(h)) return h;
    const Bstr base(std::string_view{baseNameOf(file)}), time(std::string_view{fileTime(file)});
    put_Name(base.get());
    put_OriginTime(time.get());
    h = loader->Load(fileName, dispatch());
    put_OriginFile(base.get());
    put_FullPathName(fileName);
    if (FAILED(h)) {
        RaiseException(failureMessage(kImportFailed), file);
        return h;
    }
    m_modified = 0;
    return S_OK;
}

}  // namespace nvdl
