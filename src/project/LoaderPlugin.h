// Classes of other modules: a loader that a user adds is a shared library registered in the
// settings store the way an in-process server is, its path the default value of
// HKCR\CLSID\{class}\InprocServer32, and its entry point the DllGetClassObject this module exports.
#pragma once

#include "nvdl/Dispatch.h"

namespace nvdl {

// The class object of `cls` from the library registered for it, asked for `riid`.
// REGDB_E_CLASSNOTREG when no library is registered, CO_E_DLLNOTFOUND when it cannot be loaded,
// CO_E_ERRORINDLL when it has no entry point, else what the entry point answers. A library that
// gave a class object stays loaded for the life of the process, since its objects may live on.
HRESULT GetPluginClassObject(REFCLSID cls, REFIID riid, void** object);

}  // namespace nvdl
