// Storages: the directories of a compound file, in the shape the platform's structured storage uses.
// A storage is reference counted like every object; the slot order after IUnknown is
// CreateStream, OpenStream, CreateStorage, OpenStorage, Commit, EnumElements, DestroyElement,
// RenameElement, SetClass, Stat.
#pragma once

#include <filesystem>
#include <vector>

#include "nvdl/Export.h"
#include "nvdl/Stream.h"

NVDL_API_BEGIN

inline constexpr IID IID_IStorage{0x0000000B, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Access, sharing and creation modes. Elements are always opened in direct mode: a transacted
// request is accepted and written through. Sharing flags are accepted and not enforced.
constexpr DWORD STGM_DIRECT = 0x00000000;
constexpr DWORD STGM_TRANSACTED = 0x00010000;
constexpr DWORD STGM_READ = 0x00000000;
constexpr DWORD STGM_WRITE = 0x00000001;
constexpr DWORD STGM_READWRITE = 0x00000002;
constexpr DWORD STGM_SHARE_DENY_NONE = 0x00000040;
constexpr DWORD STGM_SHARE_DENY_READ = 0x00000030;
constexpr DWORD STGM_SHARE_DENY_WRITE = 0x00000020;
constexpr DWORD STGM_SHARE_EXCLUSIVE = 0x00000010;
constexpr DWORD STGM_FAILIFTHERE = 0x00000000;
constexpr DWORD STGM_CREATE = 0x00001000;

// Commit flags: only the default is meaningful here.
constexpr DWORD STGC_DEFAULT = 0;

// Stat flags.
constexpr DWORD STATFLAG_DEFAULT = 0;
constexpr DWORD STATFLAG_NONAME = 1;

struct IStorage : IUnknown {
    // Creates a stream; an element of that name is replaced with STGM_CREATE, else STG_E_FILEALREADYEXISTS.
    virtual HRESULT CreateStream(const OLECHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                 IStream** stream) = 0;
    // Opens an existing stream; STG_E_FILENOTFOUND if there is none of that name.
    virtual HRESULT OpenStream(const OLECHAR* name, void* reserved1, DWORD mode, DWORD reserved2,
                               IStream** stream) = 0;
    virtual HRESULT CreateStorage(const OLECHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                  IStorage** storage) = 0;
    // `priority` and `exclude` must be null.
    virtual HRESULT OpenStorage(const OLECHAR* name, IStorage* priority, DWORD mode, void* exclude,
                                DWORD reserved, IStorage** storage) = 0;
    // On the root, writes the file's tables so that the file on disk is complete; elsewhere succeeds.
    virtual HRESULT Commit(DWORD flags) = 0;
    // The direct children in storage order (by name length, then by upper-cased name).
    virtual HRESULT EnumElements(std::vector<STATSTG>* elements) = 0;
    // Removes a child with everything below it; open objects of it answer STG_E_REVERTED afterwards.
    virtual HRESULT DestroyElement(const OLECHAR* name) = 0;
    virtual HRESULT RenameElement(const OLECHAR* oldName, const OLECHAR* newName) = 0;
    virtual HRESULT SetClass(REFCLSID clsid) = 0;
    virtual HRESULT Stat(STATSTG* stat, DWORD flags) = 0;

protected:
    ~IStorage() = default;
};

namespace nvdl {

struct CompoundFileOptions {
    // Write 4096-byte sectors from the start. Without it a file starts with 512-byte sectors and
    // moves to 4096-byte sectors by itself when its data outgrows what 512-byte sectors may hold.
    bool largeSectors = false;
};

// Creates a compound file and gives its root storage, open for reading and writing. With STGM_CREATE an
// existing file is replaced; without it an existing file gives STG_E_FILEALREADYEXISTS.
HRESULT createCompoundFile(const std::filesystem::path& path, DWORD mode, IStorage** root,
                           const CompoundFileOptions& options = {});

// Opens a compound file: STGM_READ for reading, STGM_READWRITE to change it. A file that is not a
// compound file gives STG_E_FILEALREADYEXISTS, a damaged one STG_E_INVALIDHEADER or STG_E_DOCFILECORRUPT.
HRESULT openCompoundFile(const std::filesystem::path& path, DWORD mode, IStorage** root);

// S_OK if the file starts like a compound file, S_FALSE if not, a failure if it cannot be read.
HRESULT isCompoundFile(const std::filesystem::path& path);

}  // namespace nvdl

NVDL_API_END
