// Independent readers and writers agree with the compound-file layer: olefile reads every file
// written here, and files written by libgsf read back identically here, before and after a change.
#include <list>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundName.h"
#include "nvdl/Guid.h"

namespace nvdl::test {
namespace {

// Walks a tree through the layer: every element into `found`, every stream compared with the
// content rule, every storage's children checked to come in storage order.
void walk(IStorage* storage, const std::string& prefix, Manifest& found) {
    std::vector<STATSTG> elements;
    ASSERT_EQ(storage->EnumElements(&elements), S_OK);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const STATSTG& e = elements[i];
        if (i > 0) {
            EXPECT_LT(cfb::compareNames(elements[i - 1].name, e.name), 0);
        }
        std::string path = prefix + utf16ToUtf8(e.name);
        if (e.type == STGTY_STORAGE) {
            found[path] = {"storage", 0, formatGuid(e.clsid)};
            Ref<IStorage> child;
            ASSERT_EQ(storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, child.out()), S_OK);
            walk(child.get(), path + "/", found);
        } else {
            found[path] = {"stream", e.cbSize, "-"};
            EXPECT_EQ(getStream(storage, e.name), content(path, static_cast<std::size_t>(e.cbSize))) << path;
        }
    }
}

Manifest readTree(const std::filesystem::path& file) {
    Manifest found;
    Ref<IStorage> root;
    EXPECT_EQ(openCompoundFile(file, kRead, root.out()), S_OK);
    if (!root) return found;
    STATSTG st;
    EXPECT_EQ(root->Stat(&st, STATFLAG_NONAME), S_OK);
    found["/"] = {"storage", 0, formatGuid(st.clsid)};
    walk(root.get(), "", found);
    return found;
}

// Writes `model` through the layer; the map's order lists parents before their children.
void writeTree(const std::filesystem::path& file, const Manifest& model, bool largeSectors) {
    Ref<IStorage> root;
    ASSERT_EQ(createCompoundFile(file, kCreate, root.out(), {largeSectors}), S_OK);
    std::map<std::string, IStorage*> storages{{"", root.get()}};
    std::list<Ref<IStorage>> held;
    for (const auto& [path, e] : model) {
        if (path == "/") {
            ASSERT_EQ(root->SetClass(*parseGuid(e.clsid)), S_OK);
            continue;
        }
        auto slash = path.rfind('/');
        IStorage* parent = storages.at(slash == std::string::npos ? "" : path.substr(0, slash));
        std::u16string name = u16(path.substr(slash + 1));  // npos + 1 is 0
        if (e.kind == "storage") {
            Ref<IStorage>& s = held.emplace_back();
            ASSERT_EQ(parent->CreateStorage(name.c_str(), kCreate, 0, 0, s.out()), S_OK);
            ASSERT_EQ(s->SetClass(*parseGuid(e.clsid)), S_OK);
            storages[path] = s.get();
        } else {
            putStream(parent, name, content(path, static_cast<std::size_t>(e.size)));
        }
    }
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

const std::string kNullClass = "{00000000-0000-0000-0000-000000000000}";

class CompoundOracleTest : public ::testing::TestWithParam<bool> {
protected:
    TempDir dir;
};

TEST_P(CompoundOracleTest, OlefileReadsWhatWeWrite) {
    // Streams of every size class: empty, both sides of the mini-stream cutoff and of a sector.
    Manifest model = {
        {"/", {"storage", 0, "{1E1827E6-9ACB-46BA-B199-20067D5F8B78}"}},
        {"Version", {"storage", 0, kNullClass}},
        {"Version/Version", {"stream", 18, "-"}},
        {"Data", {"storage", 0, kNullClass}},
        {"Data/File 1", {"storage", 0, "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}"}},
        {"Data/File 1/OriginFile", {"stream", 0, "-"}},
        {"Data/File 1/Workspace", {"storage", 0, kNullClass}},
        {"Data/File 1/Workspace/Blocks", {"storage", 0, kNullClass}},
        {"Data/File 1/Workspace/Blocks/Meas0", {"stream", 63, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas1", {"stream", 64, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas2", {"stream", 4095, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas3", {"stream", 4096, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas4", {"stream", 123457, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas5", {"stream", 65, "-"}},
        {"Data/File 1/Workspace/Blocks/Meas6", {"stream", 4097, "-"}},
        {"Data/File 1/Workspace/Blocks/\xc3\x89t\xc3\xa9 \xce\xb1\xce\xb2", {"stream", 777, "-"}},
        {"Layouts", {"storage", 0, "{01020304-0506-0708-090A-0B0C0D0E0F10}"}},
        {std::string(31, 'L'), {"stream", 1, "-"}},
    };
    // More than 109 FAT sectors in files of 512-byte sectors: the DIFAT comes into use.
    if (!GetParam()) model["Data/Long"] = {"stream", 8u << 20, "-"};
    std::filesystem::path file = dir.file("ours.vpj");
    writeTree(file, model, GetParam());
    EXPECT_EQ(readTree(file), model);
    EXPECT_EQ(olefileComplaints(file, model), "");
}

TEST_P(CompoundOracleTest, LibgsfFilesReadBackIdenticallyAndStillReadInOlefileWhenChangedHere) {
    std::filesystem::path file = dir.file("gsf.cfb");
    Manifest expected = writeWithLibgsf(file, GetParam());
    ASSERT_GT(expected.size(), 10u);
    EXPECT_EQ(readTree(file), expected);
    {
        Ref<IStorage> root, ws;
        ASSERT_EQ(openCompoundFile(file, kWrite, root.out()), S_OK);
        ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, STGM_READWRITE, nullptr, 0, ws.out()), S_OK);
        ASSERT_EQ(ws->DestroyElement(u"Blocks"), S_OK);
        putStream(ws.get(), u"WorkspaceName", content("Workspace/WorkspaceName", 30000));  // replaces it
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    std::erase_if(expected, [](const auto& e) { return e.first.starts_with("Workspace/Blocks"); });
    expected["Workspace/WorkspaceName"].size = 30000;
    EXPECT_EQ(readTree(file), expected);
    EXPECT_EQ(olefileComplaints(file, expected), "");
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundOracleTest, ::testing::Bool(), sectorSizeName);

}  // namespace
}  // namespace nvdl::test
