// Reading a project's tree: the version decides how workspaces are named; documents, workspaces,
// layouts and setups follow, and the setups that workspaces bring move up into the project.
#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/Resources.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/SmallStreams.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr char kClassTag[] = "20001123";
constexpr char kFirstCurrentTag[] = "20001221";
constexpr std::size_t kMaxVersionRead = 50;
constexpr std::size_t kMaxWorkspaceName = 400;
constexpr std::size_t kMaxOriginFile = 10000;
constexpr std::size_t kMaxOriginTime = 400;

HRESULT openChild(IStorage* parent, const std::u16string& name, IStorage** child) {
    return parent->OpenStorage(name.c_str(), nullptr, kRead, nullptr, 0, child);
}

HRESULT addTo(CObjectCollection& collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return collection.Add(item, &key, &before, &after, &index);
}

void clearModified(IDispatch* item) {
    Variant cleared = Variant::fromShort(0);
    latebound::put(item, u"Modified", cleared);
}

// The elements of a storage that may be missing: a missing storage has none.
std::vector<STATSTG> elementsOf(IStorage* root, const std::u16string& name, ComPtr<IStorage>& storage) {
    std::vector<STATSTG> elements;
    if (SUCCEEDED(openChild(root, name, storage.out()))) storage->EnumElements(&elements);
    return elements;
}

// Documents that cannot be read are passed over: they do not stop the load.
void readDocuments(IStorage* root, CObjectCollection& documents) {
    ComPtr<IStorage> storage;
    for (const STATSTG& e : elementsOf(root, u"Documents", storage)) {
        if (e.type != STGTY_STREAM) continue;
        ComPtr<IDispatch> document;
        ComPtr<IPersistStream> persist;
        ComPtr<IStream> stream;
        if (FAILED(createInstance(CLSID_CParameter, document.out())) ||
            FAILED(document->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()))) ||
            FAILED(storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, stream.out())) ||
            FAILED(persist->Load(stream.get())))
            continue;
        addTo(documents, document.get());
    }
}

void setText(CWorkspace& workspace, HRESULT (CWorkspace::*put)(BSTR), const std::string& text) {
    Bstr value(std::string_view{text});
    (workspace.*put)(value.get());
}

HRESULT readWorkspace(IStorage* data, const STATSTG& element, ProjectLayout layout, const std::string& file,
                      CProject& project, std::string& message) {
    ComPtr<IStorage> storage;
    HRESULT h = openChild(data, element.name, storage.out());
    if (FAILED(h)) return h;
    const std::string elementName = narrow(element.name);
    auto* workspace = new CWorkspace;
    ComPtr<IDispatch> held(workspace->dispatch());  // takes the one reference of the new object
    workspace->setSourceName(elementName);
    if (FAILED(h = loadWkd(storage.get(), *workspace, WkdPlace{file, elementName}, message))) return h;

    std::string name = elementName;
    if (layout == ProjectLayout::Current) {
        ComPtr<IStorage> inner;
        std::string stored;
        if (SUCCEEDED(openChild(storage.get(), u"Workspace", inner.out())) &&
            SUCCEEDED(readTextStream(inner.get(), u"WorkspaceName", kMaxWorkspaceName, stored)))
            name = stored;
        else
            name.clear();  // the name stays as the workspace reader gave it
    }
    if (!name.empty()) {
        setText(*workspace, &CWorkspace::put_Name, name);
        setText(*workspace, &CWorkspace::put_FullPathName, name);
    }
    std::string origin;
    if (SUCCEEDED(readTextStream(storage.get(), u"OriginFile", kMaxOriginFile, origin)))
        setText(*workspace, &CWorkspace::put_OriginFile, origin);
    if (SUCCEEDED(readTextStream(storage.get(), u"OriginTime", kMaxOriginTime, origin)))
        setText(*workspace, &CWorkspace::put_OriginTime, origin);
    if (FAILED(h = addTo(project.workspaces(), held.get()))) return h;
    workspace->put_Modified(0);
    return S_OK;
}

HRESULT readWorkspaces(IStorage* root, ProjectLayout layout, const std::string& file, CProject& project,
                       std::string& message) {
    ComPtr<IStorage> data;
    for (const STATSTG& e : elementsOf(root, u"Data", data)) {
        if (e.type != STGTY_STORAGE) continue;  // the stream "WsName" of old files among them
        if (HRESULT h = readWorkspace(data.get(), e, layout, file, project, message); FAILED(h)) return h;
        CProject::DoEvents();
    }
    return S_OK;
}

// Layouts and setups: each storage element is one object of the class, read by its storage persistence.
HRESULT readObjects(IStorage* root, const std::u16string& name, const CLSID& cls, CObjectCollection& into) {
    ComPtr<IStorage> storage;
    for (const STATSTG& e : elementsOf(root, name, storage)) {
        if (e.type != STGTY_STORAGE) continue;
        ComPtr<IStorage> child;
        ComPtr<IDispatch> object;
        ComPtr<IPersistStorage> persist;
        HRESULT h = openChild(storage.get(), e.name, child.out());
        if (SUCCEEDED(h)) h = createInstance(cls, object.out());
        if (SUCCEEDED(h)) h = object->QueryInterface(IID_IPersistStorage, reinterpret_cast<void**>(persist.out()));
        if (SUCCEEDED(h)) h = persist->Load(child.get());
        if (SUCCEEDED(h)) h = addTo(into, object.get());
        if (FAILED(h)) return h;
        clearModified(object.get());
    }
    return S_OK;
}

// A project's setups belong to the project: those that workspaces brought from the file join the
// project's collection, which renames duplicates. Each workspace lets its setups go before they
// join, so that they keep the project as their parent (emptying the workspace's collection last
// would leave them without one).
HRESULT moveSetupsIntoProject(CProject& project) {
    CObjectCollection& workspaces = project.workspaces();
    for (std::size_t i = 0; i < workspaces.size(); ++i) {
        auto* workspace = dynamic_cast<CWorkspace*>(CFrameBase::of(workspaces.itemAt(i)));
        if (!workspace) continue;
        CObjectCollection& setups = workspace->setups();
        std::vector<ComPtr<IDispatch>> moving;
        for (std::size_t j = 0; j < setups.size(); ++j) moving.push_back(ComPtr<IDispatch>::share(setups.itemAt(j)));
        setups.Clear();
        workspace->setModifiedHere(0);
        for (const ComPtr<IDispatch>& setup : moving)
            if (HRESULT h = addTo(project.setups(), setup.get()); FAILED(h)) return h;
    }
    return S_OK;
}

}  // namespace

// The stream holds the class tag, its zero and the file's tag. The file's tag decides when there is
// one: the byte behind the class tag's zero starts it. A stream with the class tag alone is of the
// old layout.
ProjectLayout projectLayoutOf(const std::string& versionBytes) {
    const std::string first = versionBytes.c_str();
    std::string version = first;
    if (versionBytes.size() > first.size() + 1 && versionBytes[first.size() + 1] != '\0')
        version = versionBytes.c_str() + first.size() + 1;
    if (version == kClassTag) return ProjectLayout::Old;
    if (version < kFirstCurrentTag) return ProjectLayout::Refused;
    return ProjectLayout::Current;
}

HRESULT readProjectTree(IStorage* root, CProject& project, const std::string& file, std::string& message) {
    ComPtr<IStorage> version;
    std::string bytes;
    if (FAILED(openChild(root, u"Version", version.out())) ||
        FAILED(readSmallStream(version.get(), u"Version", kMaxVersionRead, bytes)) ||
        projectLayoutOf(bytes) == ProjectLayout::Refused) {
        message = loadStringResource(IDS_INVALID_VERSION);
        return E_FAIL;
    }
    const ProjectLayout layout = projectLayoutOf(bytes);
    readDocuments(root, project.documents());
    HRESULT h = readWorkspaces(root, layout, file, project, message);
    if (SUCCEEDED(h)) h = readObjects(root, u"Layouts", CLSID_CLayout, project.layouts());
    if (SUCCEEDED(h)) h = readObjects(root, u"Setups", CLSID_CSetup, project.setups());
    if (SUCCEEDED(h)) h = moveSetupsIntoProject(project);
    return h;
}

}  // namespace nvdl
