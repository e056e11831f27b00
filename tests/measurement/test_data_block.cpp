// Data blocks: packed flat records of mixed lengths kept at the stride of the longest, measurements
// made from them on demand, and images that are short or lie about their lengths.
#include "../setup/SectionTestSupport.h"
#include "PersistenceTestSupport.h"
#include "measurement/DataBlock.h"
#include "measurement/FlatRecord.h"
#include "platform/LittleEndian.h"

namespace nvdl::test {
namespace {

flat::Record recordNamed(const char* name, std::vector<float> re, std::vector<float> im = {}, const char* axis = "",
                         std::vector<float> x = {}) {
    flat::Record r;
    r.head.name = name;
    r.head.xAxisType = axis;
    r.head.xIncrement = 1;
    r.re = std::move(re);
    r.im = std::move(im);
    r.x = std::move(x);
    return r;
}

std::vector<std::uint8_t> packed(const std::vector<flat::Record>& records) {
    std::vector<std::uint8_t> bytes;
    for (const flat::Record& r : records) {
        const std::vector<std::uint8_t> one = flat::writeRecord(r);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    return bytes;
}

std::vector<flat::Record> mixedRecords() {
    flat::Record withParameters = recordNamed("Spectrum(acc)", {1, 2}, {}, "Arbitrary", {10, 20});
    withParameters.parameters = {{"Gain", "2"}, {"Sensor", "B&K"}};
    return {recordNamed("Acc(1)", {1, 2, 3}), recordNamed("FRF(acc/force)", {1, 2, 3, 4, 5}, {-1, -2, -3, -4, -5}),
            withParameters};
}

TEST(DataBlock, MixedRecordsKeepTheirPlacesAtTheLongestStride) {
    const std::vector<flat::Record> records = mixedRecords();
    const std::vector<std::uint8_t> bytes = packed(records);
    for (bool checked : {false, true}) {
        ComPtr<CDataBlock> block(dynamic_cast<CDataBlock*>(CFrameBase::of(CDataBlock::create())));
        ASSERT_EQ(checked ? block->InitializeChecked(3, bytes) : block->Initialize(3, bytes.data()), S_OK);
        LONG count = 0;
        block->get_MeasurementsCount(&count);
        EXPECT_EQ(count, 3);
        EXPECT_EQ(block->stride(), 1400u + 5 * 4 * 2);  // the complex record is the longest
        EXPECT_EQ(block->imageSize(), bytes.size());
        EXPECT_EQ(getText(block.get(), u"Name"), "Acc");  // the kind of the first record

        for (LONG i = 0; i < 3; ++i) {
            ComPtr<IMeasurement> m;
            ASSERT_EQ(block->get_Measurement(i, m.out()), S_OK);
            EXPECT_EQ(getText(m.get(), u"Name"), records[i].head.name);
            EXPECT_EQ(floats(m.get(), &IMeasurement::get_YRealArray), records[i].re);
            if (!records[i].im.empty()) {
                EXPECT_EQ(floats(m.get(), &IMeasurement::get_YImagArray), records[i].im);
            }
        }
        ComPtr<IMeasurement> last, beyond;
        block->get_Measurement(2, last.out());
        EXPECT_EQ(floats(last.get(), &IMeasurement::get_XArray), (std::vector<float>{10, 20}));
        EXPECT_EQ(parameters(last.get()), (std::vector<std::string>{"Gain=2", "Sensor=B&K"}));
        EXPECT_EQ(block->get_Measurement(3, beyond.out()), E_FAIL);
        EXPECT_EQ(beyond.get(), nullptr);

        ComPtr<IDataBlock> clone;
        ASSERT_EQ(block->Clone(clone.out()), S_OK);
        ComPtr<IMeasurement> cloned;
        ASSERT_EQ(clone->get_Measurement(1, cloned.out()), S_OK);
        EXPECT_EQ(floats(cloned.get(), &IMeasurement::get_YImagArray), records[1].im);
    }
}

TEST(DataBlock, ShortOrLyingImagesAreRefusedAndLeaveTheBlockEmpty) {
    const std::vector<std::uint8_t> whole = packed(mixedRecords());
    auto withInt = [&](std::size_t offset, std::int32_t value) {
        std::vector<std::uint8_t> bytes = whole;
        if (offset + 4 <= bytes.size()) le::put32(&bytes.at(offset), static_cast<std::uint32_t>(value));
        return bytes;
    };
    const std::vector<std::vector<std::uint8_t>> damaged = {
        std::vector<std::uint8_t>(whole.begin(), whole.end() - 1),  // the last record one byte short
        std::vector<std::uint8_t>(whole.begin(), whole.begin() + 1399),
        withInt(376, -1),         // a negative size
        withInt(376, 1 << 30),    // a size beyond the image
        withInt(868, 0x7fffffff), // parameter text beyond the image
    };
    for (std::size_t i = 0; i < damaged.size(); ++i) {
        ComPtr<CDataBlock> block(dynamic_cast<CDataBlock*>(CFrameBase::of(CDataBlock::create())));
        EXPECT_EQ(block->InitializeChecked(3, damaged[i]), E_FAIL) << i;
        LONG count = -1;
        block->get_MeasurementsCount(&count);
        EXPECT_EQ(count, 0) << i;
    }
}

TEST(DataBlock, EmptyRecordsNamesAndTheWorkspace) {
    ComPtr<IDispatch> object(CDataBlock::create());
    auto block = ComPtr<IDataBlock>::query(object.get());
    EXPECT_EQ(block->Init_Create(0), E_FAIL);
    putText(object.get(), u"Name", "Run 7");
    EXPECT_EQ(getText(object.get(), u"Name"), "Run 7");  // an empty block gives its stored name
    ASSERT_EQ(block->Init_Create(4), S_OK);
    EXPECT_EQ(getText(object.get(), u"MeasurementsCount"), "4");
    ComPtr<IMeasurement> m;
    ASSERT_EQ(block->get_Measurement(3, m.out()), S_OK);
    EXPECT_EQ(getText(m.get(), u"Size"), getText(newObject(u"nv_bench.measurement").get(), u"Size"));
    EXPECT_EQ(getText(object.get(), u"Id").rfind(".UID.0x", 0), 0u);

    ComPtr<IDispatch> workspace = newObject(u"nv_bench.workspace");
    Variant dataBlocks;
    ASSERT_EQ(latebound::get(workspace.get(), u"DataBlocks", &dataBlocks), S_OK);
    Variant key, before, after;
    LONG index = 0;
    ASSERT_EQ(static_cast<ICollection*>(dataBlocks.pdispVal)->Add(object.get(), &key, &before, &after, &index), S_OK);
    putText(workspace.get(), u"Modified", "0");
    putText(object.get(), u"Name", "Run 8");
    EXPECT_EQ(getText(workspace.get(), u"Modified"), "1");  // a change climbs to the workspace
}

}  // namespace
}  // namespace nvdl::test
