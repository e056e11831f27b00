// The measurement's enumeration table, its Clip text and its identity text.
#include <gtest/gtest.h>

#include <regex>

#include "../frame/TestHelpers.h"
#include "measurement/Measurement.h"

namespace nvdl::test {
namespace {

TEST(MeasurementEnums, OneSortedTableMatchedCaseSensitively) {
    const EnumTable& table = measurementEnumTable();
    EXPECT_TRUE(table.isSorted());
    EXPECT_EQ(table.lookupEnum(u""), 1000);
    EXPECT_EQ(table.lookupEnum(u"hanning"), -1);  // case counts
    ASSERT_NE(table.lookupString(1309), nullptr);
    EXPECT_EQ(*table.lookupString(1309), u"Force/Exponential");
    BSTR text = reinterpret_cast<BSTR>(0x1);
    EXPECT_EQ(table.translate(4711, &text), S_OK);
    EXPECT_EQ(SysStringLen(text), 0u);
    SysFreeString(text);
}

TEST(MeasurementEnums, OneAndTwoChannelNames) {
    for (LONG code : {1000, 1003, 1005, 1017, 1023, 1030, 1038}) EXPECT_TRUE(isOneChannelFunction(code)) << code;
    for (LONG code : {1004, 1011, 1029, 1039, 1048}) EXPECT_FALSE(isOneChannelFunction(code)) << code;
}

TEST(MeasurementClip, FieldsInTheirOrder) {
    CMeasurement* m = CMeasurement::createMeasurement();
    IDispatch* d = m->dispatch();
    putText(d, u"FunctionType", "Spectrum");
    putText(d, u"Response", "acc");
    latebound::put(d, u"ResponseChannel", Variant::fromLong(3));
    latebound::put(d, u"XIncrement", Variant::fromDouble(2.75));
    latebound::put(d, u"MeasurementTime", Variant::fromDouble(36526.5));
    Bstr text;
    ASSERT_EQ(m->Clip(Bstr(std::string_view("%1 of %2 on %3!d!, dx %8, %11, %19")).get(), text.out()), S_OK);
    EXPECT_EQ(text.ansi(), "Spectrum of acc on 3, dx 2, False, 1/1/2000 12:00:00 PM");
    EXPECT_EQ(m->Clip(Bstr(std::string_view("%20")).get(), text.out()), E_OUTOFMEMORY);
    EXPECT_EQ(m->Clip(Bstr(std::string_view("%1")).get(), nullptr), E_POINTER);
    m->Release();
}

TEST(MeasurementIdentity, AGuidInItsFixedFormatGivenToACopysSource) {
    CMeasurement* source = CMeasurement::createMeasurement();
    CMeasurement* copy = CMeasurement::createMeasurement();
    ASSERT_EQ(source->CopyHeader(copy), S_OK);
    Bstr id, copyId;
    ASSERT_EQ(source->get_Id(id.out()), S_OK);
    const std::regex format(R"(\.UID\.0x[0-9A-F]{8}-0x[0-9A-F]{4}-0x[0-9a-f]{4}-0x[0-9A-F]{4}-0x[0-9A-F]{12})");
    EXPECT_TRUE(std::regex_match(id.ansi(), format)) << id.ansi();
    ASSERT_EQ(copy->get_Id(copyId.out()), S_OK);
    EXPECT_NE(copyId.ansi(), id.ansi());

    std::string named = "run.UID.kept";
    EXPECT_EQ(CMeasurement::GenerateStaticUnicId(named), S_OK);
    EXPECT_EQ(named, "run.UID.kept");
    copy->Release();
    source->Release();
}

}  // namespace
}  // namespace nvdl::test
