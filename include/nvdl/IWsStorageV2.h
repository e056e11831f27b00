// IWsStorageV2: the direct writer of a workspace file, for a recording front end that writes its
// measurements straight into a new file: Start lays out the file and hands back the storage in which
// the measurements go, Finish closes it.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Storage.h"

NVDL_API_BEGIN

struct IWsStorageV2 : IUnknown {
    // A slot kept free in front of the others; it does nothing.
    virtual HRESULT Unused() = 0;
    // Writes the head of the file in `root` (the default flag set, the name trimmed and cut to 99
    // characters) and hands back its measurement storage, "Blocks".
    virtual HRESULT Start(IStorage* root, BSTR name, IStorage** blocks) = 0;
    // -1 while the workspace storage is open, 0 otherwise.
    virtual HRESULT IsStarted(SHORT* started) = 0;
    // Closes the workspace storage. It answers E_FAIL in every case, also when the storage was
    // closed well: callers rely on that answer.
    virtual HRESULT Finish() = 0;

protected:
    ~IWsStorageV2() = default;
};

NVDL_API_END
