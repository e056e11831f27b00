#include "project/WkdLoader.h"

#include "frame/ClassTable.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.io_wkd", CLSID_CWkdLoader, "Sonvara WKD Loader", &CWkdLoader::create}};

CWorkspace* workspaceOf(IDispatch* object) { return dynamic_cast<CWorkspace*>(CFrameBase::of(object)); }

}  // namespace

HRESULT CWkdLoader::Load(BSTR file, IDispatch* workspace) {
    CWorkspace* ws = workspaceOf(workspace);
    if (!file || !ws) return E_POINTER;
    const std::string path = bstrToAnsi(file);
    ComPtr<IStorage> root;
    HRESULT h = openCompoundFile(pathFromAnsi(path), STGM_READ | STGM_SHARE_DENY_WRITE, root.out());
    if (FAILED(h)) return h;
    std::string message;
    h = loadWkd(root.get(), *ws, WkdPlace{path, {}}, message);
    if (FAILED(h) && !message.empty()) RaiseException(message, path);
    return h;
}

HRESULT CWkdLoader::Save(BSTR file, IDispatch* workspace) {
    CWorkspace* ws = workspaceOf(workspace);
    if (!file || !ws) return E_POINTER;
    ComPtr<IStorage> root;
    // Sectors of 4096 bytes from the start: the tables of a file of long records stay small, so
    // opening it costs the same for a gigabyte as for a few megabytes.
    HRESULT h = createCompoundFile(pathFromAnsi(bstrToAnsi(file)), STGM_CREATE | STGM_READWRITE, root.out(),
                                   CompoundFileOptions{true});
    if (FAILED(h)) return h;
    std::string message;
    h = saveWkd(root.get(), *ws, message);
    if (FAILED(h) && !message.empty()) RaiseException(message, bstrToAnsi(file));
    return h;
}

}  // namespace nvdl
