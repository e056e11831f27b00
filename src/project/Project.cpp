#include "project/Project.h"

#include "frame/ClassTable.h"
#include "frame/TextChecks.h"
#include "nvdl/Guid.h"
#include "nvdl/ITeacReader.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/Host.h"
#include "platform/Registry.h"
#include "project/LoaderRegistry.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.Project", CLSID_CProject, "Sonvara Project", &CProject::create}};

HRESULT giveCollection(CObjectCollection& c, ICollection** out) {
    if (!out) return E_POINTER;
    *out = &c;
    c.AddRef();
    return S_OK;
}

// The class of the loader that a CLSIDLoader text names: a class in braces or a ProgID.
bool loaderClassOf(const std::string& text, CLSID& cls) {
    if (const std::optional<GUID> parsed = parseGuid(text)) {
        cls = *parsed;
        return true;
    }
    return SUCCEEDED(ClassFromProgId(text, &cls));
}

}  // namespace

CProject::CProject() : CObjectFrame(IID_IProject) {
    m_modified = 1;
    const std::pair<CObjectCollection*, const CLSID*> owned[] = {
        {&m_workspaces, &CLSID_CWorkspace},
        {&m_layouts, &CLSID_CLayout},
        {&m_setups, &CLSID_CSetup},
        {&m_documents, &CLSID_CParameter},
    };
    for (auto [collection, itemClass] : owned) {
        collection->SetOwner(dispatch());
        collection->SetItemClass(*itemClass);
    }
}

// The file is unlocked first; then the collections let their items go, which keep running without
// a parent if a client still holds them.
CProject::~CProject() {
    m_hLock.release();
    for (CObjectCollection* c : {&m_documents, &m_setups, &m_layouts, &m_workspaces}) {
        c->Clear();
        c->SetOwner(nullptr);
    }
}

HRESULT CProject::queryCompanion(REFIID riid, void** ppv) {
    if (riid != IID_IPersistStorage && riid != IID_IPersist) return E_NOINTERFACE;
    *ppv = static_cast<IPersistStorage*>(&m_persistStorage);
    AddRef();
    return S_OK;
}

HRESULT CProject::get_Workspaces(ICollection** v) { return giveCollection(m_workspaces, v); }
HRESULT CProject::get_Layouts(ICollection** v) { return giveCollection(m_layouts, v); }
HRESULT CProject::get_Setups(ICollection** v) { return giveCollection(m_setups, v); }
HRESULT CProject::get_AssociatedDocuments(ICollection** v) { return giveCollection(m_documents, v); }

// The project has no notion of an active workspace: that belongs to the client's window.
HRESULT CProject::get_ActiveWorkspace(IWorkspace**) { return E_NOTIMPL; }

HRESULT CProject::get_FullPathName(BSTR* path) { return field::give(m_sFullPathName, path); }

// Names the project's file without touching it; a blank at the end is dropped.
HRESULT CProject::put_FullPathName(BSTR path) {
    std::string text = bstrToAnsi(path);
    if (!text.empty() && text.back() == ' ') text.pop_back();
    m_sFullPathName = std::move(text);
    return S_OK;
}

HRESULT CProject::Save(BSTR file) {
    const std::string name = bstrToAnsi(file);
    HRESULT h = SaveProject(name);
    if (FAILED(h)) return h;
    put_FullPathName(file);
    m_modified = 0;
    return h;
}

HRESULT CProject::Load(BSTR file) {
    const std::string name = bstrToAnsi(file);
    HRESULT h = LoadProject(name);
    if (FAILED(h)) return h;
    put_FullPathName(file);
    m_modified = 0;
    return h;
}

// Drops the lock on the file; the objects stay as they are.
HRESULT CProject::Close() {
    LockUnLockFile({});
    return S_OK;
}

HRESULT CProject::get_Master(SHORT* master) {
    if (!master) return E_POINTER;
    *master = m_bMaster ? -1 : 0;
    return S_OK;
}

// Only a true value of an automation client (-1) makes the project a master.
HRESULT CProject::put_Master(SHORT master) {
    m_bMaster = master == -1 ? 1 : 0;
    return S_OK;
}

// Asks for a lock on the file: the answer says that the lock was asked for, not that it took.
HRESULT CProject::Lock(BSTR file, SHORT* locked) {
    if (!locked) return E_POINTER;
    *locked = 0;
    const std::string name = trimmed(bstrToAnsi(file));
    if (name.empty()) return E_FAIL;
    LockUnLockFile({});
    LockUnLockFile(name);
    *locked = -1;
    return S_OK;
}

// A held lock is dropped whatever the argument; with none held, a named existing file is opened
// and locked, waiting while another process holds it.
int CProject::LockUnLockFile(const std::string& file) {
    if (m_hLock.held()) m_hLock.release();
    else if (!file.empty()) m_hLock.acquire(pathFromAnsi(file));
    return 0;
}

void CProject::DoEvents() { host::DoEvents(); }

void CProject::RaiseExecption(const std::string& message, const std::string& file) { RaiseException(message, file); }

HRESULT CProject::Convert(BSTR source, BSTR target, LONG* count) {
    if (!source || !target) return E_FAIL;
    if (!count) return E_POINTER;
    *count = -1;
    const std::string from = bstrToAnsi(source), to = bstrToAnsi(target);
    if (from.empty() || to.empty()) return E_FAIL;
    CLSID fileClass = CLSID_NULL;
    HRESULT h = FindLoaderForFile(from, &fileClass);
    if (FAILED(h)) return h;
    if (fileClass == CLSID_NULL) return E_FAIL;
    std::string loaderText;
    CLSID loaderClass = CLSID_NULL;
    if (SUCCEEDED(GetProgIDLoaderFromCLSID(fileClass, loaderText)) && loaderClassOf(loaderText, loaderClass) &&
        loaderClass == CLSID_TeacRecordingReader)
        return ConvertTEACtoVPJ(from, to, count);
    return E_FAIL;
}

HRESULT CProject::Copy(IProject* source, IProject* target) {
    auto* from = dynamic_cast<CProject*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CProject*>(CFrameBase::of(target));
    if (!from || !to) return E_FAIL;
    to->m_workspaces.Clear();
    to->m_documents.Clear();
    HRESULT h = to->m_documents.AddClonesOf(from->m_documents);
    if (SUCCEEDED(h)) h = to->m_workspaces.AddClonesOf(from->m_workspaces);
    to->m_layouts.Clear();
    if (SUCCEEDED(h)) h = to->m_layouts.AddClonesOf(from->m_layouts);
    to->m_setups.Clear();
    if (SUCCEEDED(h)) h = to->m_setups.AddClonesOf(from->m_setups);
    return h;
}

// A project is read only from a file of its own: its measurements stay in the file and are paged
// in from it, which a storage that a host holds cannot promise.
HRESULT CProjectPersistStorage::Load(IStorage*) { return E_NOTIMPL; }

void SetImportAllTRCFlag(bool all) {
    registry::writeString(registry::Hive::CurrentUser, registry::kSettingsKey, "ImportAllTRCFlag", all ? "1" : "0");
}

}  // namespace nvdl
