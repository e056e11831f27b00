#include "platform/StorageCopy.h"

#include <vector>

#include "platform/ComPtr.h"

namespace nvdl {

namespace {

constexpr DWORD kReadMode = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kCreateMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr ULONG kChunk = 64 * 1024;

HRESULT copyStream(IStorage* from, IStorage* to, const std::u16string& name) {
    ComPtr<IStream> source, target;
    HRESULT h = from->OpenStream(name.c_str(), nullptr, kReadMode, 0, source.out());
    if (SUCCEEDED(h)) h = to->CreateStream(name.c_str(), kCreateMode, 0, 0, target.out());
    if (FAILED(h)) return h;
    std::vector<std::uint8_t> buffer(kChunk);
    for (;;) {
        ULONG got = 0;
        h = source->Read(buffer.data(), kChunk, &got);
        if (FAILED(h) || got == 0) return h;
        ULONG written = 0;
        h = target->Write(buffer.data(), got, &written);
        if (FAILED(h)) return h;
        if (written != got) return STG_E_MEDIUMFULL;
    }
}

HRESULT copyStorage(IStorage* from, IStorage* to, const std::u16string& name) {
    ComPtr<IStorage> source, target;
    HRESULT h = from->OpenStorage(name.c_str(), nullptr, kReadMode, nullptr, 0, source.out());
    if (SUCCEEDED(h)) h = to->CreateStorage(name.c_str(), kCreateMode, 0, 0, target.out());
    if (SUCCEEDED(h)) h = copyStorageTree(source.get(), target.get());
    return h;
}

}  // namespace

HRESULT copyStorageTree(IStorage* from, IStorage* to) {
    if (!from || !to) return E_POINTER;
    STATSTG self;
    HRESULT h = from->Stat(&self, STATFLAG_NONAME);
    if (SUCCEEDED(h)) h = to->SetClass(self.clsid);
    std::vector<STATSTG> elements;
    if (SUCCEEDED(h)) h = from->EnumElements(&elements);
    for (std::size_t i = 0; SUCCEEDED(h) && i < elements.size(); ++i) {
        const STATSTG& e = elements[i];
        if (e.type == STGTY_STREAM) h = copyStream(from, to, e.name);
        else if (e.type == STGTY_STORAGE) h = copyStorage(from, to, e.name);
    }
    return h;
}

}  // namespace nvdl
