// IWorkspaceLoader: what every file loader offers. A loader knows one file type: Load fills the
// workspace from the file, Save writes the workspace to the file. The workspace is handed over as
// its automation object; a loader reaches it through IWorkspace or late binding.
//
// A loader may live in this module or in a shared library of its own (see "Adding a file loader"
// in README.md); both are found through the settings store.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IWORKSPACELOADER_MEMBERS(M)                   \
    M(call, Load, (BSTR file, IDispatch* workspace))        \
    M(call, Save, (BSTR file, IDispatch* workspace))

NVDL_INTERFACE(IWorkspaceLoader, NVDL_IWORKSPACELOADER_MEMBERS);
