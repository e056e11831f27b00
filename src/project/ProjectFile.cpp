// Saving and loading the project file. A save writes a complete new file beside the target, flushed
// to the disk, and renames it over the target: a failure at any point leaves the old file as it
// was. The project file is locked while the project has it open.
#include <cerrno>
#include <cstring>

#include "frame/Resources.h"
#include "nvdl/ErrorInfo.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/DebugTrace.h"
#include "platform/ReplaceFile.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

constexpr const char* kLoadingError =
    "Loading Error.\nPlease check if the network is still working or if your are not using a corrupt file.";
constexpr const char* kSavingError =
    "Saving Error.\nPlease check if the network is still working or if your are not using a corrupt file.";
constexpr const char* kNotAStorage = "the file exists but is not a storage object.";

// A lost network path: the failures whose status ends in 0x35.
bool networkLost(HRESULT h) { return (static_cast<std::uint32_t>(h) & 0xFF) == 0x35; }

// The text of a failure to open or create a file, for the user.
std::string openFailureText(HRESULT h) {
    if (h == STG_E_FILEALREADYEXISTS) return kNotAStorage;
    if (h == STG_E_FILENOTFOUND || h == STG_E_PATHNOTFOUND) return "The system cannot find the file specified.";
    if (h == STG_E_ACCESSDENIED) return "Access is denied.";
    if (h == STG_E_INVALIDHEADER || h == STG_E_DOCFILECORRUPT) return "The file is damaged and cannot be read.";
    return "The file cannot be opened.";
}

}  // namespace

HRESULT CProject::SaveProject(const std::string& file) {
    DebugTrace("CProject::SaveProject - Begin");
    Close();
    // The trace names the step that failed: "1" the new file, "4" to "10" the parts up to the
    // workspaces, none the documents, layouts and setups, "15" the rename over the target.
    std::string message, step;
    bool written = false;
    HRESULT h = E_FAIL;
    try {
        h = replaceFile(pathFromAnsi(file), [&](const std::filesystem::path& temporary) {
            ComPtr<IStorage> root;
            HRESULT made = createCompoundFile(temporary, STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_CREATE, root.out());
            if (FAILED(made)) {
                DebugTraceF("CProject::SaveProject - TargetFile <%s>", file.c_str());
                DebugTraceF("CProject::SaveProject - TempFile <%s>", temporary.c_str());
                message = std::strerror(errno);
                step = "1";
                return made;
            }
            made = writeProjectTree(root.get(), *this, message, step);
            if (SUCCEEDED(made)) made = root->Commit(STGC_DEFAULT);
            written = SUCCEEDED(made);
            return made;
        });
        if (FAILED(h) && written) step = "15";
    } catch (...) {
        h = E_FAIL;
        message = kSavingError;
    }
    if (FAILED(h)) {
        DebugTraceF("CProject::SaveProject - jump%s%s", step.empty() ? "" : " ", step.c_str());
        if (networkLost(h)) message = kSavingError;
        if (!message.empty()) RaiseExecption(message, file);
        return h;
    }
    // The old file is gone: measurements that paged from it page from the new one.
    for (std::size_t n = 0; n < m_workspaces.size(); ++n)
        if (auto* workspace = dynamic_cast<CWorkspace*>(CFrameBase::of(m_workspaces.itemAt(n))))
            followSavedWorkspace(*workspace, WkdPlace{file, "File " + std::to_string(n + 1)});
    LockUnLockFile(file);
    return S_OK;
}

HRESULT CProject::LoadProject(const std::string& file) {
    Close();
    bool archive = false;
    HRESULT h = LoadProjectZipVersion(file, archive);
    if (archive) return h;
    ComPtr<IStorage> root;
    h = openCompoundFile(pathFromAnsi(file), STGM_READ | STGM_SHARE_DENY_WRITE, root.out());
    if (FAILED(h)) {
        RaiseExecption(openFailureText(h), file);
        return h == STG_E_FILEALREADYEXISTS ? E_FAIL : h;
    }
    std::string message;
    try {
        h = readProjectTree(root.get(), *this, file, message);
    } catch (...) {
        h = E_FAIL;
        message = kLoadingError;
    }
    root.reset();
    if (FAILED(h)) {
        if (networkLost(h)) message = kLoadingError;
        if (!message.empty()) RaiseExecption(message, file);
        return h;
    }
    LockUnLockFile(file);
    return S_OK;
}

// The recording's import takes every section of the file while the flag is set.
int CProject::AppendTRC(const std::string& path) {
    if (path.empty()) return 0;
    ComPtr<IDispatch> held(CWorkspace::create());
    auto* workspace = dynamic_cast<CWorkspace*>(CFrameBase::of(held.get()));
    const Bstr file(std::string_view{path});
    const Variant loader = Variant::fromAnsi("nv_bench.io_newtrc");
    SetImportAllTRCFlag(true);
    const HRESULT h = workspace->Load(file.get(), loader);
    SetImportAllTRCFlag(false);
    if (FAILED(h)) return 0;
    Bstr name;
    workspace->get_Name(name.out());
    workspace->put_FullPathName(name.get());
    Variant key, before, after;
    LONG index = 0;
    if (FAILED(m_workspaces.Add(held.get(), &key, &before, &after, &index))) return 0;
    workspace->put_Modified(0);
    return 1;
}

// Hosts that hand the project a storage of their own get the whole project tree written into it.
HRESULT CProjectPersistStorage::Save(IStorage* storage, int) {
    if (!storage) return E_POINTER;
    std::string message, step;
    HRESULT h = writeProjectTree(storage, m_owner, message, step);
    if (!message.empty()) m_owner.RaiseExecption(message, {});
    return h;
}

}  // namespace nvdl
