// The reference-counted object root, with the slot order of the platform: QueryInterface, AddRef, Release.
#pragma once

#include "nvdl/Guid.h"
#include "nvdl/HResult.h"

inline constexpr IID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
    virtual HRESULT QueryInterface(REFIID riid, void** ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;  // objects are destroyed through Release only
};
