// Automation values: counted strings, float vectors, dates, and the conversions between types.
#include <gtest/gtest.h>

#include "platform/CodePage.h"
#include "nvdl/Guid.h"
#include "platform/MemoryStream.h"
#include "nvdl/Variant.h"

namespace nvdl {
namespace {

std::string asText(const Variant& v, USHORT flags = 0) {
    Variant s;
    if (FAILED(VariantChangeType(&s, &v, flags, VT_BSTR))) return "<fails>";
    return narrow(bstrView(s.bstrVal));
}

HRESULT convert(const Variant& v, VARTYPE vt, Variant& out) { return VariantChangeType(&out, &v, 0, vt); }

TEST(Bstr, CountedAndNullIsEmpty) {
    const OLECHAR text[] = {u'a', 0, u'b'};
    BSTR s = SysAllocStringLen(text, 3);  // an embedded zero is kept
    EXPECT_EQ(SysStringLen(s), 3u);
    EXPECT_EQ(s[3], 0);
    SysFreeString(s);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(bstrToAnsi(nullptr), "");
    Bstr owned(std::string_view("caf\xe9"));
    EXPECT_EQ(owned.view(), u"caf\u00e9");
    EXPECT_EQ(owned.ansi(), "caf\xe9");
}

TEST(Variant, TextToNumbers) {
    Variant out;
    ASSERT_EQ(convert(Variant::fromAnsi(" 42 "), VT_I4, out), S_OK);
    EXPECT_EQ(out.lVal, 42);
    ASSERT_EQ(convert(Variant::fromAnsi("2.5"), VT_I4, out), S_OK);
    EXPECT_EQ(out.lVal, 2);  // halves go to the even neighbour
    ASSERT_EQ(convert(Variant::fromAnsi("3.5"), VT_I2, out), S_OK);
    EXPECT_EQ(out.iVal, 4);
    ASSERT_EQ(convert(Variant::fromAnsi("1,234.5"), VT_R8, out), S_OK);
    EXPECT_DOUBLE_EQ(out.dblVal, 1234.5);
    EXPECT_EQ(convert(Variant::fromAnsi("12abc"), VT_I4, out), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(convert(Variant::fromAnsi(""), VT_R8, out), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(convert(Variant::fromAnsi("40000"), VT_I2, out), DISP_E_OVERFLOW);
    EXPECT_EQ(convert(Variant::fromDouble(1e300), VT_R4, out), DISP_E_OVERFLOW);
    ASSERT_EQ(convert(Variant::fromAnsi("True"), VT_BOOL, out), S_OK);
    EXPECT_EQ(out.boolVal, VARIANT_TRUE);
    ASSERT_EQ(convert(Variant::fromAnsi("0"), VT_BOOL, out), S_OK);
    EXPECT_EQ(out.boolVal, VARIANT_FALSE);
}

TEST(Variant, NumbersToText) {
    EXPECT_EQ(asText(Variant::fromLong(-17)), "-17");
    EXPECT_EQ(asText(Variant::fromDouble(0.1)), "0.1");
    EXPECT_EQ(asText(Variant::fromDouble(1.0 / 3)), "0.333333333333333");
    EXPECT_EQ(asText(Variant::fromFloat(1.0f / 3)), "0.3333333");
    EXPECT_EQ(asText(Variant::fromDouble(1e20)), "1E+20");
    EXPECT_EQ(asText(Variant::fromBool(true)), "-1");
    EXPECT_EQ(asText(Variant::fromBool(true), VARIANT_ALPHABOOL), "True");
    EXPECT_EQ(asText(Variant()), "");
    Variant missing = Variant::missing();
    EXPECT_EQ(asText(missing), "<fails>");
}

TEST(Variant, ReferencesAreFollowedAndCopiesOwnTheirStrings) {
    Variant inner = Variant::fromAnsi("7");
    Variant ref = Variant::byRef(&inner);
    Variant out;
    ASSERT_EQ(convert(ref, VT_I4, out), S_OK);
    EXPECT_EQ(out.lVal, 7);
    Variant copy;
    ASSERT_EQ(VariantCopyInd(&copy, &ref), S_OK);
    EXPECT_EQ(copy.vt, VT_BSTR);
    EXPECT_NE(copy.bstrVal, inner.bstrVal);
    Variant same = Variant::fromAnsi("x");
    ASSERT_EQ(VariantChangeType(&same, &same, 0, VT_BSTR), S_OK);  // in place
    EXPECT_EQ(asText(same), "x");
}

TEST(Variant, FloatVectors) {
    const float values[] = {1.f, 2.f, 3.f};
    Variant v;
    v.vt = VT_ARRAY | VT_R4;
    v.parray = makeFloatArray(values);
    Variant copy(v);
    ASSERT_NE(copy.parray, v.parray);
    std::span<float> data = floatArrayData(copy.parray);
    ASSERT_EQ(data.size(), 3u);
    EXPECT_EQ(data[2], 3.f);
    LONG upper = 0;
    SafeArrayGetUBound(copy.parray, 1, &upper);
    EXPECT_EQ(upper, 2);
    Variant out;
    EXPECT_EQ(convert(v, VT_BSTR, out), DISP_E_TYPEMISMATCH);
}

TEST(Date, DaysFromTheEpochAndText) {
    EXPECT_DOUBLE_EQ(dateFromParts(1899, 12, 30, 0, 0, 0), 0.0);
    EXPECT_DOUBLE_EQ(dateFromParts(2000, 1, 1, 12, 0, 0), 36526.5);
    EXPECT_DOUBLE_EQ(dateFromParts(1899, 12, 29, 6, 0, 0), -1.25);
    DateParts p;
    ASSERT_TRUE(dateToParts(-1.25, p));
    EXPECT_EQ(p.day, 29);
    EXPECT_EQ(p.hour, 6);
    EXPECT_EQ(formatDate(36526.5), "1/1/2000 12:00:00 PM");
    EXPECT_EQ(formatDate(36526.0), "1/1/2000");
    EXPECT_EQ(formatDate(0.25), "6:00:00 AM");
    EXPECT_EQ(formatDate(0.0), "12:00:00 AM");  // midnight of the zero day is a pure time
    for (const char* text : {"1/1/2000 12:00:00 PM", "2000-01-01 12:00", "1/1/00 12:00:00 PM"}) {
        DATE d = 0;
        ASSERT_TRUE(parseDate(text, d)) << text;
        EXPECT_DOUBLE_EQ(d, 36526.5) << text;
    }
    DATE d;
    EXPECT_FALSE(parseDate("2/30/2001", d));
    EXPECT_FALSE(parseDate("13:61", d));
    EXPECT_FALSE(parseDate("tomorrow", d));
}

TEST(Guid, ParseFormatAndGenerate) {
    auto g = parseGuid("{5b44cb71-f17b-4140-9d50-ec6f33b896b8}");
    ASSERT_TRUE(g);
    EXPECT_EQ(formatGuid(*g), "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}");
    EXPECT_EQ(formatGuid(*g, false), "5B44CB71-F17B-4140-9D50-EC6F33B896B8");
    EXPECT_EQ(parseGuid("5B44CB71-F17B-4140-9D50-EC6F33B896B8"), g);
    EXPECT_FALSE(parseGuid("{5B44CB71-F17B-4140-9D50-EC6F33B896B8"));
    EXPECT_FALSE(parseGuid("5B44CB71-F17B-4140-9D50-EC6F33B896BX"));
    GUID a = generateGuid(), b = generateGuid();
    EXPECT_NE(a, b);
    EXPECT_EQ(a.Data3 >> 12, 4);
}

TEST(MemoryStream, ReadWriteSeek) {
    MemoryStream* s = MemoryStream::create();
    ULONG n = 0;
    s->Write("abcdef", 6, &n);
    std::uint64_t pos = 0;
    EXPECT_EQ(s->Seek(-2, STREAM_SEEK_END, &pos), S_OK);
    EXPECT_EQ(pos, 4u);
    char buf[8] = {};
    s->Read(buf, 8, &n);
    EXPECT_EQ(n, 2u);
    EXPECT_STREQ(buf, "ef");
    EXPECT_EQ(s->Seek(-1, STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
    s->Seek(10, STREAM_SEEK_SET, nullptr);
    s->Write("z", 1, &n);  // writing past the end fills the gap with zeros
    EXPECT_EQ(s->bytes().size(), 11u);
    EXPECT_EQ(s->bytes()[7], 0);
    STATSTG stat;
    s->Stat(&stat, 0);
    EXPECT_EQ(stat.cbSize, 11u);
    s->Release();
}

}  // namespace
}  // namespace nvdl
