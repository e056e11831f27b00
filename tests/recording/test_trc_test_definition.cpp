// The embedded test definition of a recording: its layout, its header and its data by position.
#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcTestDefinition.h"

using namespace nvdl::trc;
namespace le = nvdl::le;

namespace {

// A root holding one entry, the test definition's, at offset 264.
class Root final : public CTrcBaseSection {
public:
    std::int64_t GetSectionSize() override { return 264 + def.GetSectionSize(); }
    CTrcTableManagment* GetToc() override { return &toc; }
    void layOut() {
        toc.Init();
        def.SetSectionOffset(264);
        def.UpdateTocSections();
        toc.Add(def);
    }
    CTrcTableManagment toc;
    CTrcTestDefSection def;
};

}  // namespace

TEST(TrcTestDefinition, EmbeddedFileRoundTripsByPosition) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("d.trc").string();
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Root root;
    root.def.Init(&file, &root);
    EXPECT_EQ(root.def.GetSectionSize(), 2684);  // table of two, header block, empty table
    root.def.GetHeader().SetFilename(std::string(120, 'f').c_str());
    root.def.GetHeader().SetDataSize(1000);
    root.layOut();
    ASSERT_TRUE(root.toc.Write(&file, &root));
    ASSERT_TRUE(root.def.Write());
    std::vector<unsigned char> payload(1000);
    for (std::size_t i = 0; i < payload.size(); ++i) payload[i] = static_cast<unsigned char>(i * 7);
    ASSERT_TRUE(root.def.GetData().Write(0, payload.data(), 600));
    ASSERT_TRUE(root.def.GetData().Write(600, payload.data() + 600, 400));
    EXPECT_FALSE(root.def.GetData().Write(999, payload.data(), 2));  // past the end
    EXPECT_FALSE(root.def.GetData().Write(-1, payload.data(), 1));
    file.Close();

    // The header block stands behind the table of two entries.
    std::ifstream in(name, std::ios::binary);
    std::vector<unsigned char> b{std::istreambuf_iterator<char>(in), {}};
    ASSERT_EQ(b.size(), 264u + 2684 + 1000);
    const unsigned char* header = &b[264 + 96 + 2 * 168];
    EXPECT_EQ(le::i32(header), 20060713);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(header + 4)), std::string(99, 'f'));
    EXPECT_EQ(le::u32(header + 104), 1000u);
    EXPECT_EQ(le::i32(header + 2156 + 4), 0);  // the header's own table is empty
    EXPECT_EQ(b[264 + 2684 + 5], payload[5]);

    ASSERT_TRUE(file.Open(name.c_str()));
    Root back;
    back.def.Init(&file, &back);
    ASSERT_TRUE(file.Seek(0, 0));
    ASSERT_TRUE(back.toc.Read(&file));
    back.def.SetSectionIndex(0);
    ASSERT_TRUE(back.def.Read());
    EXPECT_TRUE(back.def.IsRead());
    EXPECT_EQ(back.def.GetHeader().GetDataSize(), 1000u);
    char shortName[8];
    back.def.GetHeader().GetFilename(shortName, sizeof shortName);
    EXPECT_STREQ(shortName, "fffffff");
    std::vector<unsigned char> got(400);
    ASSERT_TRUE(back.def.GetData().Read(600, got.data(), 400));
    EXPECT_TRUE(std::equal(got.begin(), got.end(), payload.begin() + 600));
    EXPECT_FALSE(back.def.GetData().Read(0, got.data(), 0));
}

TEST(TrcTestDefinition, OlderEntriesAndEmptyDataAreRefused) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("o.trc").string();
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Root root;
    root.def.Init(&file, &root);
    root.layOut();
    root.toc.GetItem(0)->version = 20040309;  // written before the section had its current version
    ASSERT_TRUE(root.toc.Write(&file, &root));
    ASSERT_TRUE(root.def.Write());
    unsigned char byte = 0;
    EXPECT_FALSE(root.def.GetData().Write(0, &byte, 1));  // DataSize 0: no byte may be written
    EXPECT_FALSE(root.def.Read());
}
