#include "project/Workspace.h"

#include <atomic>
#include <ctime>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/TextChecks.h"
#include "frame/TextCompare.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/FileNames.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.workspace", CLSID_CWorkspace, "Sonvara Workspace", &CWorkspace::create}};

std::atomic<long> g_defaultNames{0};

// The current time as ctime writes it, without its line end.
std::string nowText() {
    std::time_t now = std::time(nullptr);
    char buffer[32] = {};
    ctime_r(&now, buffer);
    std::string text(buffer);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

// The text behind the last backslash, or all of it.
std::string lastPart(const std::string& path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

CWorkspace::CWorkspace() : CWorkspace("Workspace" + std::to_string(++g_defaultNames)) {}

CWorkspace::CWorkspace(std::string name) : CObjectFrame(IID_IWorkspace), m_name(std::move(name)) {
    m_modified = 1;
    m_fields.OriginTime = nowText();
    ownCollections();
    InitShmInfo();
}

CWorkspace::~CWorkspace() {
    CloseShmInfo();
    for (CObjectCollection* c : {&m_dataBlocks, &m_setups, &m_geometries, &m_modes, &m_measurements}) c->SetOwner(nullptr);
}

void CWorkspace::ownCollections() {
    const std::pair<CObjectCollection*, const CLSID*> owned[] = {
        {&m_measurements, &CLSID_CMeasurement}, {&m_modes, &CLSID_CMode},         {&m_geometries, &CLSID_CGeometry},
        {&m_setups, &CLSID_CSetup},             {&m_dataBlocks, &CLSID_CDataBlock},
    };
    for (auto [collection, itemClass] : owned) {
        collection->SetOwner(dispatch());
        collection->SetItemClass(*itemClass);
    }
}

// The storage persistence, and on demand a direct writer of a new workspace file of its own.
HRESULT CWorkspace::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IWsStorageV2) return createWsStorageV2(ppv);
    if (riid == IID_IPersistFile) *ppv = static_cast<IPersistFile*>(&m_persistFile);
    else if (riid == IID_IPersistStorage || riid == IID_IPersist) *ppv = static_cast<IPersistStorage*>(&m_persistStorage);
    else return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT CWorkspace::get_Name(BSTR* name) { return field::give(m_name, name); }

// The name becomes a file name: characters that a file name cannot hold become blanks, and the
// ends are trimmed, and the shared record publishes it. The workspace is marked modified without
// telling its project.
HRESULT CWorkspace::put_Name(BSTR name) {
    m_name = trimmed(SanitizeFileName(bstrToAnsi(name)));
    char record[kShmRecordSize] = {};
    m_name.copy(record, sizeof record - 1);
    WriteShmInfo(record, sizeof record);
    m_modified = 1;
    return S_OK;
}

namespace {
HRESULT giveCollection(CObjectCollection& c, ICollection** out) {
    if (!out) return E_POINTER;
    *out = &c;
    c.AddRef();
    return S_OK;
}
}  // namespace

HRESULT CWorkspace::get_Measurements(ICollection** v) { return giveCollection(m_measurements, v); }
HRESULT CWorkspace::get_Modes(ICollection** v) { return giveCollection(m_modes, v); }
HRESULT CWorkspace::get_Geometries(ICollection** v) { return giveCollection(m_geometries, v); }
HRESULT CWorkspace::get_Setups(ICollection** v) { return giveCollection(m_setups, v); }
HRESULT CWorkspace::get_DataBlocks(ICollection** v) { return giveCollection(m_dataBlocks, v); }

// Trimmed and made unique in the project; the part behind the last backslash becomes the name.
HRESULT CWorkspace::put_FullPathName(BSTR path) {
    if (!path) return E_POINTER;
    std::string text = trimmed(bstrToAnsi(path));
    GenerateUnicId(text);
    m_fields.FullPathName = trimmed(text);
    const std::string name = lastPart(m_fields.FullPathName);
    if (!name.empty()) {
        Bstr asName(std::string_view{name});
        put_Name(asName.get());
    }
    m_modified = 1;
    return S_OK;
}

// Counts the project's workspaces whose FullPathName equals the wanted one, ignoring case; the first
// may be this workspace itself. With more, the original text becomes "base(n)extension" with n
// from 2, and the count starts again.
void CWorkspace::GenerateUnicId(std::string& name) {
    ComPtr<IDispatch> parent;
    if (FAILED(get_Parent(parent.out())) || !parent) return;
    ComPtr<IDispatch> project;
    if (FAILED(parent->QueryInterface(IID_IProject, reinterpret_cast<void**>(project.out())))) return;
    Variant value;
    if (FAILED(latebound::get(project.get(), u"Workspaces", &value)) || value.vt != VT_DISPATCH || !value.pdispVal) return;
    auto* workspaces = static_cast<ICollection*>(value.pdispVal);
    LONG count = 0;
    if (FAILED(workspaces->get_Count(&count)) || count == 0) return;
    const std::string original = name;
    const PathParts parts = SplitPath(original);
    const std::string base = parts.drive + parts.directory + parts.baseName;
    for (long n = 2;; ++n) {
        int hits = 0;
        for (LONG i = 0; i < count; ++i) {
            ComPtr<IDispatch> item;
            Variant other;
            if (FAILED(workspaces->Item(Variant::fromLong(i), item.out())) || !item ||
                FAILED(latebound::get(item.get(), u"FullPathName", &other)) || FAILED(other.changeType(VT_BSTR)))
                continue;
            if (equalsIgnoringCase(widen(name), bstrView(other.bstrVal))) ++hits;
        }
        if (hits <= 1) return;
        name = base + "(" + std::to_string(n) + ")" + parts.extension;
    }
}

HRESULT CWorkspace::put_LoadUnits(SHORT loadUnits) {
    m_loadUnits = loadUnits;
    return S_OK;
}

HRESULT CWorkspace::put_OriginFile(BSTR file) {
    field::take(m_fields.OriginFile, file);
    return S_OK;
}

HRESULT CWorkspace::put_OriginTime(BSTR time) {
    field::take(m_fields.OriginTime, time);
    return S_OK;
}

// Kept with the file; it does not mark the workspace modified.
HRESULT CWorkspace::put_Default(SHORT value) {
    m_fields.Default = value;
    return S_OK;
}

HRESULT CWorkspace::Copy(IWorkspace* source, IWorkspace* target) {
    auto* from = dynamic_cast<CWorkspace*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CWorkspace*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from == to) return S_OK;
    to->m_name = from->m_name;
    to->m_fields = from->m_fields;
    to->m_sourceName = from->m_sourceName;
    for (auto member : {&CWorkspace::m_measurements, &CWorkspace::m_dataBlocks, &CWorkspace::m_geometries,
                        &CWorkspace::m_modes, &CWorkspace::m_setups}) {
        if (HRESULT h = (to->*member).AddClonesOf(from->*member); FAILED(h)) return h;
    }
    return S_OK;
}

}  // namespace nvdl
