// The block that paging keeps: a span inside the block is served from memory, a span reaching into
// the block's last tenth is read again from its own first sample, and every index of the block maps
// to its own sample.
#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

using namespace nvdl;
using namespace nvdl::test;

namespace {

constexpr LONG kBlock = 1000;
constexpr LONG kSamples = 100 * kBlock;

// The header of a stored time record of kSamples samples, as the block writer makes it.
std::vector<std::uint8_t> recordHeader(const std::filesystem::path& scratch) {
    ComPtr<IStorage> root;
    EXPECT_EQ(createCompoundFile(scratch, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
    {
        ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
        auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
        Bstr name{std::string_view{"Meas0"}}, xUnit{std::string_view{"s"}}, yUnit{std::string_view{"Pa"}};
        Bstr none{std::string_view{}};
        EXPECT_EQ(writer->Create(root.get(), name.get()), S_OK);
        EXPECT_EQ(writer->BeginTimeRecord(100, kBlock, 1000.0, 0.0f, xUnit.get(), yUnit.get(), none.get(), none.get(),
                                          0.0, 0.0, nullptr),
                  S_OK);
        writer->Close();
    }
    ComPtr<IStream> stream;
    EXPECT_EQ(root->OpenStream(u"Meas0", nullptr, 0x10, 0, stream.out()), S_OK);
    std::vector<std::uint8_t> header(920);
    ULONG got = 0;
    EXPECT_EQ(stream->Read(header.data(), 920, &got), S_OK);
    return header;
}

class PagingBlocks : public PagingSettings {};

TEST_F(PagingBlocks, ASpanInTheLastTenthOfTheBlockIsReadAgainFromItsOwnStart) {
    useSettings(kBlock);
    GeneratedStream stream(recordHeader(dir_ / "header.cfb"), kSamples);
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    ASSERT_EQ(loadRecord(m.get(), &stream), S_OK);

    const auto expectBlockHolds = [&](LONG first, LONG count) {
        for (LONG i = first; i < first + count; ++i) {
            LONG at = m->GetDataIndex(i);
            ASSERT_GE(at, 0);
            ASSERT_LT(at, kBlock);
            ASSERT_EQ(m->yReal()[static_cast<std::size_t>(at)], sampleValue(i)) << i;
        }
    };
    ASSERT_EQ(m->InternalReadData(5000, 100, &stream), S_OK);
    expectBlockHolds(5000, 100);
    const std::uint64_t afterFirst = stream.bytesRead();

    // Inside the block and short of its last tenth (5900 on): nothing is read.
    ASSERT_EQ(m->InternalReadData(5100, 800, &stream), S_OK);
    EXPECT_EQ(stream.bytesRead(), afterFirst);
    expectBlockHolds(5100, 800);

    // Into the last tenth: a fresh block from the span's own start.
    ASSERT_EQ(m->InternalReadData(5850, 100, &stream), S_OK);
    EXPECT_EQ(stream.bytesRead(), afterFirst + kBlock * 4);
    expectBlockHolds(5850, 100);

    // Near the end of the record the block starts earlier than the span and still maps exactly.
    ASSERT_EQ(m->InternalReadData(kSamples - 300, 200, &stream), S_OK);
    expectBlockHolds(kSamples - 300, 300);
    EXPECT_EQ(m->GetBlockNumber(kSamples), -1);
    EXPECT_EQ(m->GetBlockNumber(kSamples - 1), kSamples / kBlock);
}

TEST_F(PagingBlocks, AShortReadIsAFailure) {
    useSettings(kBlock);
    GeneratedStream full(recordHeader(dir_ / "header.cfb"), kSamples);
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    ASSERT_EQ(loadRecord(m.get(), &full), S_OK);
    // The same header over a stream that ends half-way through the record.
    GeneratedStream cut(recordHeader(dir_ / "header2.cfb"), kSamples / 2);
    EXPECT_EQ(m->InternalReadData(kSamples / 2 + 10, 100, &cut), E_FAIL);
    EXPECT_EQ(m->InternalReadData(10, 100, &cut), S_OK);
}

}  // namespace
