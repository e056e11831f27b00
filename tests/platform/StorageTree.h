// The tree of a compound file as sorted paths ("Workspace/Blocks/Meas<0>"), for the tests of the
// files the server writes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "nvdl/Storage.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"

namespace nvdl::test {

inline void listTree(IStorage* storage, const std::string& prefix, std::vector<std::string>& paths) {
    std::vector<STATSTG> elements;
    ASSERT_EQ(storage->EnumElements(&elements), S_OK);
    for (const STATSTG& e : elements) {
        paths.push_back(prefix + narrow(e.name));
        if (e.type != STGTY_STORAGE) continue;
        ComPtr<IStorage> child;
        ASSERT_EQ(storage->OpenStorage(e.name.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0, child.out()),
                  S_OK);
        listTree(child.get(), prefix + narrow(e.name) + "/", paths);
    }
}

inline std::vector<std::string> treeOf(const std::filesystem::path& file) {
    ComPtr<IStorage> root;
    EXPECT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    std::vector<std::string> paths;
    if (root) listTree(root.get(), "", paths);
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace nvdl::test
