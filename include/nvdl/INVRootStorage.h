// INVRootStorage: a tree of named streams and storages kept in memory, which a client fills and
// reads like any storage (IStorage) and which persists as a whole into a storage of a file
// (IPersistStorage: Load copies a storage tree in, Save writes the whole tree out). A layout keeps
// its client's components in one and never looks inside.
#pragma once

#include "nvdl/Export.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Unknown.h"

struct INVRootStorage : IUnknown {
    static constexpr const IID& iid = IID_INVRootStorage;
    // -1 when the tree holds at least one element, 0 when it is empty.
    virtual HRESULT HasContents(SHORT* has) = 0;
    // Replaces the whole tree by a deep copy of the source's: streams byte for byte, storages with
    // their class identifiers. Copying a tree onto itself leaves it as it is.
    virtual HRESULT CopyFrom(INVRootStorage* source) = 0;
    // Removes every element; streams and storages still held answer STG_E_REVERTED afterwards.
    virtual HRESULT Clear() = 0;

protected:
    ~INVRootStorage() = default;
};

NVDL_API_BEGIN

namespace nvdl {

// A new empty tree, with one reference held by the caller.
HRESULT CreateNVRootStorage(INVRootStorage** out);

}  // namespace nvdl

NVDL_API_END
