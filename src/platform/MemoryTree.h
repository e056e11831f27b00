// The nodes of a storage tree in memory, shared by the handles that the tree hands out.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/ComPtr.h"
#include "platform/MemoryStream.h"

namespace nvdl::memory_tree {

// What every handle on the tree shares: whether the tree changed since it was last clean.
struct Tree {
    bool dirty = false;
};

// A storage (children in storage order, a class identifier) or a stream (its bytes).
struct Node {
    std::u16string name;
    bool isStream = false;
    bool detached = false;  // destroyed or replaced: its handles answer STG_E_REVERTED
    ComPtr<MemoryStream> bytes;
    CLSID clsid{};
    DWORD stateBits = 0;
    std::vector<std::shared_ptr<Node>> children;  // by name length, then by upper-cased name
};

// Marks a node and everything below it as gone.
void detach(Node& node);

}  // namespace nvdl::memory_tree
