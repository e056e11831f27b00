// A layout in a storage: the stream "Layout" holds one record of 122 bytes (a version tag, the
// name, the default flag); the storage "Components", present only when the components tree has
// contents, is written and read by the tree itself.
#include <span>

#include "nvdl/Storage.h"
#include "platform/RecordLayout.h"
#include "project/Layout.h"

namespace nvdl {

namespace {

constexpr std::size_t kRecordSize = 122;
constexpr const char* kTag = "20030218";
constexpr const char* kInvalidVersion = "Invalid Layout version number";
constexpr const char16_t* kRecordStream = u"Layout";
constexpr const char16_t* kComponentsStorage = u"Components";
constexpr DWORD kCreateMode = STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kReadMode = STGM_READ | STGM_SHARE_EXCLUSIVE;

struct LayoutRecord {
    std::string tag;
    std::string name;
    std::int16_t isDefault = 0;
};

using namespace record;
constexpr Field<LayoutRecord, 1> kFields[] = {
    {text(&LayoutRecord::tag, 20), {0}},
    {text(&LayoutRecord::name, 100), {20}},
    {i16(&LayoutRecord::isDefault), {120}},
};
constexpr std::span<const Field<LayoutRecord, 1>> kTable(kFields);
static_assert(fitsAndDisjoint(kTable, 0, kRecordSize));

}  // namespace

HRESULT CLayoutPersistStorage::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    CLayout& layout = m_owner;
    ComPtr<IStream> stream;
    HRESULT h = storage->OpenStream(kRecordStream, nullptr, kReadMode, 0, stream.out());
    if (FAILED(h)) return h;
    std::uint8_t bytes[kRecordSize];
    ULONG got = 0;
    LayoutRecord stored;
    if (SUCCEEDED(stream->Read(bytes, kRecordSize, &got)) && got == kRecordSize) decode(kTable, 0, bytes, stored);
    if (stored.tag != kTag) {
        layout.RaiseException(kInvalidVersion, moduleFileName());
        return E_FAIL;
    }
    ILayout* self = &layout;
    self->put_Name(Bstr(std::string_view(stored.name)).get());
    self->put_Default(stored.isDefault);

    ComPtr<IStorage> components;
    h = storage->OpenStorage(kComponentsStorage, nullptr, kReadMode, nullptr, 0, components.out());
    if (SUCCEEDED(h)) {
        ComPtr<INVRootStorage> tree;
        h = layout.components(tree.out());
        ComPtr<IPersistStorage> persist = ComPtr<IPersistStorage>::query(tree.get());
        if (SUCCEEDED(h)) h = persist ? persist->Load(components.get()) : E_NOINTERFACE;
        if (FAILED(h)) return h;
    } else if (h != STG_E_FILENOTFOUND) {
        return h;
    }
    return self->put_Modified(0);
}

HRESULT CLayoutPersistStorage::Save(IStorage* storage, int) {
    if (!storage) return E_POINTER;
    CLayout& layout = m_owner;
    std::uint8_t bytes[kRecordSize] = {};
    encode(kTable, 0, LayoutRecord{kTag, layout.m_fields.Name, layout.m_fields.Default}, bytes);
    ComPtr<IStream> stream;
    HRESULT h = storage->CreateStream(kRecordStream, kCreateMode, 0, 0, stream.out());
    ULONG written = 0;
    if (SUCCEEDED(h)) h = stream->Write(bytes, kRecordSize, &written);
    if (SUCCEEDED(h) && written != kRecordSize) h = STG_E_MEDIUMFULL;
    if (FAILED(h)) return h;

    SHORT has = 0;
    if (layout.m_components && SUCCEEDED(layout.m_components->HasContents(&has)) && has) {
        ComPtr<IPersistStorage> persist = ComPtr<IPersistStorage>::query(layout.m_components.get());
        ComPtr<IStorage> components;
        h = persist ? storage->CreateStorage(kComponentsStorage, kCreateMode, 0, 0, components.out()) : E_NOINTERFACE;
        if (SUCCEEDED(h)) h = persist->Save(components.get(), 0);
        if (SUCCEEDED(h)) h = components->Commit(STGC_DEFAULT);
        if (FAILED(h)) return h;
    }
    return static_cast<ILayout*>(&layout)->put_Modified(0);
}

}  // namespace nvdl
