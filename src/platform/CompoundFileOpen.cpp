// Creating and opening compound files: the entry points that hand out a root storage.
#include <cstring>

#include "platform/CompoundError.h"
#include "platform/CompoundFile.h"
#include "platform/CompoundStorage.h"

namespace nvdl {

HRESULT createCompoundFile(const std::filesystem::path& path, DWORD mode, IStorage** root,
                           const CompoundFileOptions& options) {
    if (!root) return STG_E_INVALIDPOINTER;
    *root = nullptr;
    return cfb::guarded([&] {
        auto file = cfb::CompoundFile::create(path, (mode & STGM_CREATE) != 0, options.largeSectors);
        *root = CompoundStorage::create(std::move(file), cfb::Directory::kRoot, true);
    });
}

HRESULT openCompoundFile(const std::filesystem::path& path, DWORD mode, IStorage** root) {
    if (!root) return STG_E_INVALIDPOINTER;
    *root = nullptr;
    DWORD access = mode & 3;
    if (access == 3 || (mode & STGM_CREATE)) return STG_E_INVALIDFLAG;
    bool writable = access != STGM_READ;
    return cfb::guarded([&] {
        auto file = cfb::CompoundFile::open(path, writable);
        *root = CompoundStorage::create(std::move(file), cfb::Directory::kRoot, writable);
    });
}

HRESULT isCompoundFile(const std::filesystem::path& path) {
    HRESULT result = S_FALSE;
    HRESULT h = cfb::guarded([&] {
        cfb::FileHandle file(path, cfb::FileHandle::Mode::Read);
        std::uint8_t start[sizeof cfb::kSignature];
        file.readAt(0, start, sizeof start);
        if (file.size() >= sizeof start && std::memcmp(start, cfb::kSignature, sizeof start) == 0) result = S_OK;
    });
    return FAILED(h) ? (h == STG_E_FILEALREADYEXISTS ? S_FALSE : h) : result;
}

}  // namespace nvdl
