// The module's entry: class factories, one per class, made on first request and kept until unload.
#pragma once

#include "nvdl/Dispatch.h"
#include "nvdl/Export.h"

NVDL_API_BEGIN

inline constexpr IID IID_IClassFactory{0x00000001, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IClassFactory : IUnknown {
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    virtual HRESULT LockServer(int lock) = 0;

protected:
    ~IClassFactory() = default;
};

// Plain C names, so that a host finds them by name in the loaded library; a file loader that lives
// in a shared library of its own exports the same DllGetClassObject.
extern "C" {
HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory);
// S_OK (0) when no object lives and no lock is held; S_FALSE (1) otherwise.
HRESULT DllCanUnloadNow();
// Writes the keys of every class, interface and the project file type under the classes root of the
// settings store (removing those of an earlier registration first), naming this library's path.
// SELFREG_E_CLASS when the store cannot be written.
HRESULT DllRegisterServer();
// Removes those keys with their subkeys.
HRESULT DllUnregisterServer();
}

NVDL_API_END
