// The chain of storages down to a paged record's stream: the workspace's own blocks, a workspace
// nested under "Data" in a project file, and a sub-measurement's block under "SubBlocks".
#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

using namespace nvdl;
using namespace nvdl::test;

namespace {

constexpr LONG kSamples = 100'000;

// Writes a record of kSamples generated samples as stream `name` of `storage`.
void writeRecordInto(IStorage* storage, std::u16string_view name) {
    ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
    auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
    Bstr streamName{name}, xUnit{std::string_view{"s"}}, yUnit{std::string_view{"Pa"}}, none{std::string_view{}};
    ASSERT_EQ(writer->Create(storage, streamName.get()), S_OK);
    ASSERT_EQ(writer->BeginTimeRecord(10, kSamples / 10, 1000.0, 0.0f, xUnit.get(), yUnit.get(), none.get(), none.get(),
                                      0.0, 0.0, nullptr),
              S_OK);
    std::vector<float> block(kSamples / 10);
    for (LONG b = 0; b < 10; ++b) {
        for (std::size_t i = 0; i < block.size(); ++i) block[i] = sampleValue(b * (kSamples / 10) + static_cast<LONG>(i));
        ASSERT_EQ(writer->WriteBlock(block.data(), kSamples / 10, 0), S_OK);
    }
    ASSERT_EQ(writer->Finish(nullptr), S_OK);
    writer->Close();
}

ComPtr<IStorage> child(IStorage* parent, const char16_t* name) {
    ComPtr<IStorage> made;
    EXPECT_EQ(parent->CreateStorage(name, 0x1011, 0, 0, made.out()), S_OK);
    return made;
}

// A measurement loaded from `stream` and located by the rest of the arguments.
ComPtr<CMeasurement> located(IStream* stream, const std::filesystem::path& file, SHORT inDataStorage,
                             std::string_view subStorage, std::u16string_view streamText) {
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    Bstr path{std::string_view{file.string()}}, sub{subStorage}, name{streamText};
    EXPECT_EQ(m->Location(path.get(), inDataStorage, sub.get(), name.get(), CMeasurementBlockWriter::kTag), S_OK);
    EXPECT_EQ(stream->Seek(0, STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(loadRecord(m.get(), stream), S_OK);
    return m;
}

void expectPagedSamples(CMeasurement* m) {
    for (LONG i : std::initializer_list<LONG>{0, 50'000, kSamples - 10}) {
        ASSERT_EQ(m->ReadData(i, 10), S_OK) << i;
        float v = 0;
        ASSERT_EQ(m->get_YReal(i, &v), S_OK) << i;
        EXPECT_EQ(v, sampleValue(i)) << i;
    }
}

class PagingChains : public PagingSettings {};

TEST_F(PagingChains, AWorkspaceNestedInAProjectFile) {
    useSettings(4096);
    const std::filesystem::path file = dir_ / "project.vpj";
    {
        ComPtr<IStorage> root;
        ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        ComPtr<IStorage> data = child(root.get(), u"Data");
        ComPtr<IStorage> nested = child(data.get(), u"File 1");
        ComPtr<IStorage> workspace = child(nested.get(), u"Workspace");
        writeRecordInto(child(workspace.get(), u"Blocks").get(), u"Meas<3>");
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    ComPtr<IStorage> root, data, nested, workspace, blocks;
    ComPtr<IStream> stream;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Data", nullptr, 0x10010, nullptr, 0, data.out()), S_OK);
    ASSERT_EQ(data->OpenStorage(u"File 1", nullptr, 0x10010, nullptr, 0, nested.out()), S_OK);
    ASSERT_EQ(nested->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, workspace.out()), S_OK);
    ASSERT_EQ(workspace->OpenStorage(u"Blocks", nullptr, 0x10010, nullptr, 0, blocks.out()), S_OK);
    ASSERT_EQ(blocks->OpenStream(u"Meas<3>", nullptr, 0x10, 0, stream.out()), S_OK);
    ComPtr<CMeasurement> m = located(stream.get(), file, -1, "File 1", u"Meas<3>");
    expectPagedSamples(m.get());
    // Without the mark of the data storage the chain starts at the file's own workspace, which
    // this file does not have.
    ComPtr<CMeasurement> lost = located(stream.get(), file, 0, "File 1", u"Meas<3>");
    EXPECT_LT(lost->ReadData(50'000, 10), 0);
}

TEST_F(PagingChains, ASubMeasurementUnderItsParentsStorage) {
    useSettings(4096);
    const std::filesystem::path file = dir_ / "workspace.wkd";
    {
        ComPtr<IStorage> root;
        ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        ComPtr<IStorage> workspace = child(root.get(), u"Workspace");
        ComPtr<IStorage> sub = child(workspace.get(), u"SubBlocks");
        writeRecordInto(child(sub.get(), u"Meas<0>").get(), u"SubMeas<1>");
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    ComPtr<IStorage> root, workspace, sub, parent;
    ComPtr<IStream> stream;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, workspace.out()), S_OK);
    ASSERT_EQ(workspace->OpenStorage(u"SubBlocks", nullptr, 0x10010, nullptr, 0, sub.out()), S_OK);
    ASSERT_EQ(sub->OpenStorage(u"Meas<0>", nullptr, 0x10010, nullptr, 0, parent.out()), S_OK);
    ASSERT_EQ(parent->OpenStream(u"SubMeas<1>", nullptr, 0x10, 0, stream.out()), S_OK);
    // The location names the parent's storage and then the sub-measurement's stream.
    ComPtr<CMeasurement> m = located(stream.get(), file, 0, "", u"Meas<0>SubMeas<1>");
    expectPagedSamples(m.get());
}

}  // namespace
