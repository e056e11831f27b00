// The tree of a compound file as sorted paths ("Workspace/Blocks/Meas<0>"), for the tests of the
// files the server writes; and the whole contents of any storage, to compare two trees.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
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

// Every element below a storage by path, the storage itself as "." after its path: the kind, the
// class identifier of storages and the bytes of streams.
using TreeContents = std::map<std::string, std::tuple<DWORD, CLSID, std::vector<std::uint8_t>>>;

inline void collectContents(IStorage* storage, const std::string& prefix, TreeContents& out) {
    STATSTG self;
    ASSERT_EQ(storage->Stat(&self, STATFLAG_NONAME), S_OK);
    out[prefix + "."] = {STGTY_STORAGE, self.clsid, {}};
    std::vector<STATSTG> elements;
    ASSERT_EQ(storage->EnumElements(&elements), S_OK);
    for (const STATSTG& e : elements) {
        std::string path = prefix + narrow(e.name);
        constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
        if (e.type == STGTY_STREAM) {
            ComPtr<IStream> stream;
            ASSERT_EQ(storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, stream.out()), S_OK);
            std::vector<std::uint8_t> bytes(static_cast<std::size_t>(e.cbSize));
            ULONG got = 0;
            ASSERT_EQ(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got), S_OK);
            ASSERT_EQ(got, bytes.size());
            out[path] = {STGTY_STREAM, CLSID{}, std::move(bytes)};
            continue;
        }
        ComPtr<IStorage> child;
        ASSERT_EQ(storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, child.out()), S_OK);
        collectContents(child.get(), path + "/", out);
    }
}

inline TreeContents contentsOf(IStorage* storage) {
    TreeContents out;
    collectContents(storage, "", out);
    return out;
}

}  // namespace nvdl::test
