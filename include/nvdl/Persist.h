// Persistence interfaces of the object runtime, with the platform's slot order.
#pragma once

#include "nvdl/Stream.h"

inline constexpr IID IID_IPersist{0x0000010C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IPersistStream{0x00000109, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IPersist : IUnknown {
    virtual HRESULT GetClassID(CLSID* clsid) = 0;

protected:
    ~IPersist() = default;
};

struct IPersistStream : IPersist {
    static constexpr const IID& iid = IID_IPersistStream;
    // S_OK when there are unsaved changes, S_FALSE otherwise.
    virtual HRESULT IsDirty() = 0;
    virtual HRESULT Load(IStream* stream) = 0;
    virtual HRESULT Save(IStream* stream, int clearDirty) = 0;
    virtual HRESULT GetSizeMax(std::uint64_t* size) = 0;

protected:
    ~IPersistStream() = default;
};

struct IStorage;

inline constexpr IID IID_IPersistStorage{0x0000010A, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IPersistStorage : IPersist {
    static constexpr const IID& iid = IID_IPersistStorage;
    // S_OK when there are unsaved changes, S_FALSE otherwise.
    virtual HRESULT IsDirty() = 0;
    virtual HRESULT InitNew(IStorage* storage) = 0;
    virtual HRESULT Load(IStorage* storage) = 0;
    // `sameStorage` is non-zero when the storage is the one the object was loaded from.
    virtual HRESULT Save(IStorage* storage, int sameStorage) = 0;
    virtual HRESULT SaveCompleted(IStorage* storage) = 0;
    virtual HRESULT HandsOffStorage() = 0;

protected:
    ~IPersistStorage() = default;
};

inline constexpr IID IID_IPersistFile{0x0000010B, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IPersistFile : IPersist {
    static constexpr const IID& iid = IID_IPersistFile;
    // S_OK when there are unsaved changes, S_FALSE otherwise.
    virtual HRESULT IsDirty() = 0;
    virtual HRESULT Load(const OLECHAR* file, DWORD mode) = 0;
    // `remember` non-zero makes `file` the object's current file.
    virtual HRESULT Save(const OLECHAR* file, int remember) = 0;
    virtual HRESULT SaveCompleted(const OLECHAR* file) = 0;
    // The current file, allocated for the caller (freed with SysFreeString).
    virtual HRESULT GetCurFile(OLECHAR** file) = 0;

protected:
    ~IPersistFile() = default;
};
