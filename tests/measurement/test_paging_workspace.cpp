// A long record stored in a workspace file is paged back: block spans sample-exact, the whole
// record as a min/max overview, and the memory of an overview read bounded by the block.
#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Storage.h"

using namespace nvdl;
using namespace nvdl::test;

namespace {

using I = IMeasurement;
constexpr LONG kBlock = 32768;

// A block writer of a new measurement with a time record of `blocks` blocks of `blockSize` samples
// begun in the stream "Meas0" of `storage`.
IMeasurementBlockWriter* beginRecord(IStorage* storage, LONG blocks, LONG blockSize) {
    CMeasurement* source = CMeasurement::createMeasurement();
    IMeasurementBlockWriter* writer = nullptr;
    EXPECT_EQ(source->QueryInterface(IID_IMeasurementBlockWriter, reinterpret_cast<void**>(&writer)), S_OK);
    source->Release();
    Bstr name{std::string_view{"Meas0"}}, xUnit{std::string_view{"s"}}, yUnit{std::string_view{"Pa"}};
    Bstr none{std::string_view{}};
    EXPECT_EQ(writer->Create(storage, name.get()), S_OK);
    EXPECT_EQ(writer->BeginTimeRecord(blocks, blockSize, 1000.0, 0.0f, xUnit.get(), yUnit.get(), none.get(), none.get(),
                                      0.0, 0.0, nullptr),
              S_OK);
    return writer;
}

long residentKiB() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0) return std::atol(line.c_str() + 6);
    return -1;
}

class PagingWorkspace : public PagingSettings {};

TEST_F(PagingWorkspace, TenMillionSamplesPageBackFromTheWorkspaceFile) {
    useSettings(kBlock);
    const std::filesystem::path file = dir_ / "long.wkd";
    constexpr LONG kSamples = 10'000'000;
    {
        IStorage *root = nullptr, *workspace = nullptr, *blocks = nullptr;
        ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, &root), S_OK);
        ASSERT_EQ(root->CreateStorage(u"Workspace", 0x1011, 0, 0, &workspace), S_OK);
        ASSERT_EQ(workspace->CreateStorage(u"Blocks", 0x1011, 0, 0, &blocks), S_OK);
        IMeasurementBlockWriter* writer = beginRecord(blocks, 1000, 10000);
        std::vector<float> block(10000);
        for (LONG b = 0; b < 1000; ++b) {
            for (LONG i = 0; i < 10000; ++i) block[static_cast<std::size_t>(i)] = sampleValue(b * 10000 + i);
            ASSERT_EQ(writer->WriteBlock(block.data(), 10000, 0), S_OK);
        }
        ASSERT_EQ(writer->Finish(nullptr), S_OK);
        writer->Close();
        writer->Release();
        blocks->Release();
        workspace->Release();
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        root->Release();
    }

    IStorage *root = nullptr, *workspace = nullptr, *blocks = nullptr;
    IStream* stream = nullptr;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, &root), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, &workspace), S_OK);
    ASSERT_EQ(workspace->OpenStorage(u"Blocks", nullptr, 0x10010, nullptr, 0, &blocks), S_OK);
    ASSERT_EQ(blocks->OpenStream(u"Meas0", nullptr, 0x10, 0, &stream), S_OK);
    CMeasurement* m = CMeasurement::createMeasurement();
    Bstr path{std::string_view{file.string()}}, empty{std::string_view{}}, name{std::string_view{"Meas0"}};
    ASSERT_EQ(m->Location(path.get(), 0, empty.get(), name.get(), CMeasurementBlockWriter::kTag), S_OK);
    ASSERT_EQ(loadRecord(m, stream), S_OK);
    stream->Release();
    blocks->Release();
    workspace->Release();
    root->Release();

    EXPECT_EQ(value(m, &I::get_Size), kBlock);
    EXPECT_EQ(value(m, &I::get_FileSamples), kSamples);
    EXPECT_NE(value(m, &I::get_IsUncompleted), 0);

    // A span inside a block, from the file itself: every sample as stored.
    const LONG spanStart = 5 * kBlock + 100;
    ASSERT_EQ(m->ReadData(spanStart, 1000), S_OK);
    EXPECT_NE(value(m, &I::get_IsUsefullData), 0);
    for (LONG i = spanStart; i < spanStart + 1000; ++i) {
        float v = 0;
        ASSERT_EQ(m->get_YReal(i, &v), S_OK) << i;
        ASSERT_EQ(v, sampleValue(i)) << i;
    }
    // A whole block read from its first sample comes out of the block copy unchanged.
    ASSERT_EQ(m->ReadData(7 * kBlock, kBlock), S_OK);
    std::vector<float> copied(kBlock);
    ASSERT_EQ(m->GetYValues(7 * kBlock, kBlock, copied.data(), nullptr), S_OK);
    for (LONG i = 0; i < kBlock; ++i) ASSERT_EQ(copied[static_cast<std::size_t>(i)], sampleValue(7 * kBlock + i)) << i;

    // The whole record: a min/max envelope of chunks of n / (B / 2) samples in one block.
    ASSERT_EQ(m->ReadData(0, kSamples), S_OK);
    EXPECT_EQ(value(m, &I::get_IsUsefullData), 0);
    EXPECT_FLOAT_EQ(value(m, &I::get_CompressionFactor), static_cast<float>(static_cast<double>(kSamples) / kBlock));
    std::vector<float> expected = expectedEnvelope(kBlock / 2, kSamples / (kBlock / 2));
    std::vector<float> picture(kBlock);
    ASSERT_EQ(m->ReadYRealArray(picture.data(), kBlock, 0), S_OK);
    EXPECT_EQ(picture, expected);
    m->Release();
}

TEST_F(PagingWorkspace, OverviewOfA400MegabyteRecordStaysWithinItsBlock) {
    useSettings(kBlock);
    constexpr LONG kBlocks = 1000, kBlockSamples = 100'000;
    constexpr LONG kSamples = kBlocks * kBlockSamples;  // 400 MB of samples
    const std::filesystem::path file = dir_ / "overview.wkd";
    {
        IStorage *root = nullptr, *workspace = nullptr, *blocks = nullptr;
        ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, &root), S_OK);
        ASSERT_EQ(root->CreateStorage(u"Workspace", 0x1011, 0, 0, &workspace), S_OK);
        ASSERT_EQ(workspace->CreateStorage(u"Blocks", 0x1011, 0, 0, &blocks), S_OK);
        IMeasurementBlockWriter* writer = beginRecord(blocks, kBlocks, kBlockSamples);
        std::vector<float> block(kBlockSamples);
        for (LONG b = 0; b < kBlocks; ++b) {
            for (LONG i = 0; i < kBlockSamples; ++i) block[static_cast<std::size_t>(i)] = sampleValue(b * kBlockSamples + i);
            ASSERT_EQ(writer->WriteBlock(block.data(), kBlockSamples, 0), S_OK);
        }
        ASSERT_EQ(writer->Finish(nullptr), S_OK);
        writer->Close();
        writer->Release();
        blocks->Release();
        workspace->Release();
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        root->Release();
    }
    IStorage *root = nullptr, *workspace = nullptr, *blocks = nullptr;
    IStream* stream = nullptr;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, &root), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, &workspace), S_OK);
    ASSERT_EQ(workspace->OpenStorage(u"Blocks", nullptr, 0x10010, nullptr, 0, &blocks), S_OK);
    ASSERT_EQ(blocks->OpenStream(u"Meas0", nullptr, 0x10, 0, &stream), S_OK);
    CMeasurement* m = CMeasurement::createMeasurement();
    Bstr path{std::string_view{file.string()}}, empty{std::string_view{}}, name{std::string_view{"Meas0"}};
    ASSERT_EQ(m->Location(path.get(), 0, empty.get(), name.get(), CMeasurementBlockWriter::kTag), S_OK);
    ASSERT_EQ(loadRecord(m, stream), S_OK);
    stream->Release();
    blocks->Release();
    workspace->Release();
    root->Release();
    ASSERT_EQ(value(m, &I::get_FileSamples), kSamples);

    // The overview pages the whole file through one bounded buffer: memory grows by little more
    // than the block, whatever the record's length.
    const long before = residentKiB();
    ASSERT_GT(before, 0);
    ASSERT_EQ(m->ReadData(0, kSamples), S_OK);
    const long grown = residentKiB() - before;
    EXPECT_LT(grown, 16 * 1024) << "resident memory grew by " << grown << " KiB";

    const std::int64_t chunkSize = kSamples / (kBlock / 2);
    EXPECT_FLOAT_EQ(value(m, &I::get_CompressionFactor), static_cast<float>(static_cast<double>(kSamples) / kBlock));
    std::vector<float> picture(kBlock);
    ASSERT_EQ(m->ReadYRealArray(picture.data(), kBlock, 0), S_OK);
    std::vector<float> first = expectedEnvelope(1, chunkSize);
    EXPECT_EQ(picture[0], first[0]);
    EXPECT_EQ(picture[1], first[1]);
    m->Release();
    std::filesystem::remove(file);
}

}  // namespace
