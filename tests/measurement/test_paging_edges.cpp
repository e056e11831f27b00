// Paging at the edges: the last block of a record whose end does not fall on a block boundary,
// a backing file whose name is not ASCII, and a backing file that cannot be opened.
#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Storage.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"

using namespace nvdl;
using namespace nvdl::test;

namespace {

constexpr LONG kSamples = 400'000;

// Writes a time record of kSamples generated samples as the stream "Meas0" of a workspace file.
void writeBlocks(IStorage* root) {
    ComPtr<IStorage> workspace, blocks;
    ASSERT_EQ(root->CreateStorage(u"Workspace", 0x1011, 0, 0, workspace.out()), S_OK);
    ASSERT_EQ(workspace->CreateStorage(u"Blocks", 0x1011, 0, 0, blocks.out()), S_OK);
    ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
    auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
    ASSERT_TRUE(writer);
    Bstr name{std::string_view{"Meas0"}}, xUnit{std::string_view{"s"}}, yUnit{std::string_view{"Pa"}}, none;
    ASSERT_EQ(writer->Create(blocks.get(), name.get()), S_OK);
    constexpr LONG kBlockSize = 10'000;
    ASSERT_EQ(writer->BeginTimeRecord(kSamples / kBlockSize, kBlockSize, 1000.0, 0.0f, xUnit.get(), yUnit.get(),
                                      none.get(), none.get(), 0.0, 0.0, nullptr),
              S_OK);
    std::vector<float> block(kBlockSize);
    for (LONG b = 0; b < kSamples / kBlockSize; ++b) {
        for (LONG i = 0; i < kBlockSize; ++i) block[static_cast<std::size_t>(i)] = sampleValue(b * kBlockSize + i);
        ASSERT_EQ(writer->WriteBlock(block.data(), kBlockSize, 0), S_OK);
    }
    ASSERT_EQ(writer->Finish(nullptr), S_OK);
    writer->Close();
}

void writeRecord(const std::filesystem::path& file) {
    ComPtr<IStorage> root;
    ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
    writeBlocks(root.get());
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

// A measurement that pages the record of `file`, located by the path text `pathText`.
ComPtr<CMeasurement> pagedRecord(const std::filesystem::path& file, std::u16string_view pathText) {
    ComPtr<IStorage> root, workspace, blocks;
    ComPtr<IStream> stream;
    EXPECT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    EXPECT_EQ(root->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, workspace.out()), S_OK);
    EXPECT_EQ(workspace->OpenStorage(u"Blocks", nullptr, 0x10010, nullptr, 0, blocks.out()), S_OK);
    EXPECT_EQ(blocks->OpenStream(u"Meas0", nullptr, 0x10, 0, stream.out()), S_OK);
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    Bstr path{pathText}, empty{std::string_view{}}, name{std::string_view{"Meas0"}};
    EXPECT_EQ(m->Location(path.get(), 0, empty.get(), name.get(), CMeasurementBlockWriter::kTag), S_OK);
    EXPECT_EQ(loadRecord(m.get(), stream.get()), S_OK);
    return m;
}

class PagingEdges : public PagingSettings {};

TEST_F(PagingEdges, TheLastBlockOfARecordGivesEverySampleAsStored) {
    for (LONG block : std::initializer_list<LONG>{32768, 4000}) {
        useSettings(block);
        // A file name outside ASCII: the object keeps it in the system code page, the file system
        // is handed UTF-8.
        const std::filesystem::path file = dir_ / std::filesystem::path(u8"Mésure.wkd");
        writeRecord(file);
        ComPtr<CMeasurement> m = pagedRecord(file, file.u16string());
        for (LONG i : std::initializer_list<LONG>{399'600, 399'999, kSamples - block, 396'000, 1000, 399'601}) {
            float v = 0;
            ASSERT_EQ(m->get_YReal(i, &v), S_OK) << "block " << block << ", sample " << i;
            EXPECT_EQ(v, sampleValue(i)) << "block " << block << ", sample " << i;
        }
        m.reset();
        TearDown();
    }
}

TEST_F(PagingEdges, ABackingFileThatCannotBeOpenedIsAFailureNotOldSamples) {
    useSettings(32768);
    const std::filesystem::path file = dir_ / "record.wkd";
    writeRecord(file);
    ComPtr<CMeasurement> m = pagedRecord(file, file.u16string());
    float before = 0;
    ASSERT_EQ(m->get_YReal(0, &before), S_OK);
    std::filesystem::remove(file);
    EXPECT_LT(m->ReadData(100'000, 500), 0);
    float v = 0;
    EXPECT_LT(m->get_YReal(100'000, &v), 0);
}

}  // namespace
