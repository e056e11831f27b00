// Writing a project's tree: version, documents, workspaces with their origins, layouts, setups.
#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/SmallStreams.h"
#include "project/Workspace.h"
#include "setup/Setup.h"

namespace nvdl {

namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE;
constexpr char kClassTag[] = "20001123";
constexpr char kFileTag[] = "20030221";
constexpr const char* kTooManyMeasurements =
    "Save VPJ error: too many measurements.\nPlease split them into different workspaces and use the WKD export file format.";

std::u16string numbered(const char* format, std::size_t n) {
    char name[64];
    std::snprintf(name, sizeof name, format, static_cast<long>(n));
    return widen(name);
}

// Notes the trace step of a failure and hands its status on.
HRESULT failedAt(std::string& step, const char* at, HRESULT status) {
    step = at;
    return status;
}

HRESULT createChild(IStorage* parent, const std::u16string& name, IStorage** child) {
    return parent->CreateStorage(name.c_str(), kCreate, 0, 0, child);
}

template <class I>
HRESULT persistOf(IDispatch* item, const IID& iid, ComPtr<I>& persist) {
    return item->QueryInterface(iid, reinterpret_cast<void**>(persist.out()));
}

HRESULT writeDocuments(IStorage* root, CObjectCollection& documents) {
    if (documents.size() == 0) return S_OK;
    ComPtr<IStorage> storage;
    HRESULT h = createChild(root, u"Documents", storage.out());
    for (std::size_t i = 0; SUCCEEDED(h) && i < documents.size(); ++i) {
        ComPtr<IPersistStream> persist;
        ComPtr<IStream> stream;
        h = persistOf(documents.itemAt(i), IID_IPersistStream, persist);
        if (SUCCEEDED(h)) h = storage->CreateStream(numbered("Document(%ld)", i + 1).c_str(), kCreate, 0, 0, stream.out());
        if (SUCCEEDED(h)) h = persist->Save(stream.get(), 1);
    }
    return h;
}

std::string textOf(IDispatch* item, const char16_t* property) {
    Variant value;
    if (FAILED(latebound::get(item, property, &value)) || FAILED(value.changeType(VT_BSTR))) return {};
    return bstrToAnsi(value.bstrVal);
}

HRESULT writeWorkspaces(IStorage* root, CObjectCollection& workspaces, std::string& message, std::string& step) {
    if (workspaces.size() == 0) return S_OK;
    ComPtr<IStorage> data;
    HRESULT h = createChild(root, u"Data", data.out());
    if (FAILED(h)) return failedAt(step, "6", h);
    for (std::size_t i = 0; i < workspaces.size(); ++i) {
        IDispatch* workspace = workspaces.itemAt(i);
        if (!workspace) return failedAt(step, "7", E_FAIL);
        ComPtr<IPersistStorage> persist;
        if (FAILED(h = persistOf(workspace, IID_IPersistStorage, persist))) return failedAt(step, "8", h);
        ComPtr<IStorage> storage;
        if (FAILED(h = createChild(data.get(), numbered("File %ld", i + 1), storage.out()))) return failedAt(step, "8A", h);
        if (FAILED(h = persist->Save(storage.get(), 0))) {
            message = kTooManyMeasurements;
            return failedAt(step, "9", h);
        }
        if (FAILED(writeTextStream(storage.get(), u"OriginFile", textOf(workspace, u"OriginFile"))) ||
            FAILED(writeTextStream(storage.get(), u"OriginTime", textOf(workspace, u"OriginTime"))))
            return failedAt(step, "10", E_FAIL);
        if (auto* own = dynamic_cast<CWorkspace*>(CFrameBase::of(workspace))) own->setModifiedHere(0);
        CProject::DoEvents();
    }
    return S_OK;
}

HRESULT writeLayouts(IStorage* root, CObjectCollection& layouts) {
    if (layouts.size() == 0) return S_OK;
    ComPtr<IStorage> storage;
    HRESULT h = createChild(root, u"Layouts", storage.out());
    for (std::size_t i = 0; SUCCEEDED(h) && i < layouts.size(); ++i) {
        ComPtr<IPersistStorage> persist;
        ComPtr<IStorage> child;
        h = persistOf(layouts.itemAt(i), IID_IPersistStorage, persist);
        if (SUCCEEDED(h)) h = createChild(storage.get(), numbered("Layout %ld", i + 1), child.out());
        if (SUCCEEDED(h)) h = persist->Save(child.get(), 0);
    }
    return h;
}

// Each setup in a storage of its own, told its number first: the number names its header stream.
HRESULT writeSetups(IStorage* root, CObjectCollection& setups) {
    if (setups.size() == 0) return S_OK;
    ComPtr<IStorage> storage;
    HRESULT h = createChild(root, u"Setups", storage.out());
    for (std::size_t i = 0; SUCCEEDED(h) && i < setups.size(); ++i) {
        if (auto* setup = dynamic_cast<CSetup*>(CFrameBase::of(setups.itemAt(i))))
            setup->setSetupCount(static_cast<LONG>(i + 1));
        ComPtr<IPersistStorage> persist;
        ComPtr<IStorage> child;
        h = persistOf(setups.itemAt(i), IID_IPersistStorage, persist);
        if (SUCCEEDED(h)) h = createChild(storage.get(), numbered("Setup %ld", i + 1), child.out());
        if (SUCCEEDED(h)) h = persist->Save(child.get(), 0);
    }
    return h;
}

}  // namespace

HRESULT writeProjectVersion(IStorage* root) {
    ComPtr<IStorage> version;
    HRESULT h = createChild(root, u"Version", version.out());
    std::string bytes = std::string(kClassTag) + '\0' + kFileTag + '\0';
    return FAILED(h) ? h : writeSmallStream(version.get(), u"Version", bytes.data(), bytes.size());
}

HRESULT writeProjectTree(IStorage* root, CProject& project, std::string& message, std::string& step) {
    HRESULT h = root->SetClass(CLSID_CProject);
    if (FAILED(h)) return failedAt(step, "4", h);
    if (FAILED(h = writeProjectVersion(root))) return failedAt(step, "5", h);
    if (FAILED(h = writeDocuments(root, project.documents()))) return failedAt(step, "", h);
    if (FAILED(h = writeWorkspaces(root, project.workspaces(), message, step))) return h;
    if (FAILED(h = writeLayouts(root, project.layouts()))) return failedAt(step, "", h);
    if (FAILED(h = writeSetups(root, project.setups()))) return failedAt(step, "", h);
    return S_OK;
}

}  // namespace nvdl
