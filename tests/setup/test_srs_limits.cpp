// The limit curve of the shock-response-spectrum section: through SAFEARRAYs, through the stream,
// and the arrays it refuses.
#include <numeric>
#include <optional>

#include "SectionTestSupport.h"
#include "nvdl/SafeArray.h"

namespace nvdl::test {
namespace {

constexpr std::size_t kRoom = 516;  // what the 2,192-byte record holds after its head of 128

Variant floatArray(const std::vector<float>& values) {
    Variant v;
    v.vt = VT_ARRAY | VT_R4;
    v.parray = makeFloatArray(values);
    return v;
}

// No values stand for a call without an array.
HRESULT setLimits(IDispatch* srs, const std::optional<std::vector<float>>& values) {
    return invoke(srs, u"SetLimits", DISPATCH_METHOD, {values ? floatArray(*values) : Variant()});
}

std::vector<float> limitsOf(IDispatch* srs) {
    Variant result;
    EXPECT_EQ(invoke(srs, u"GetLimits", DISPATCH_METHOD, {}, &result), S_OK);
    EXPECT_EQ(result.vt, VT_ARRAY | VT_R4);
    if (result.vt != (VT_ARRAY | VT_R4)) return {};
    std::span<float> data = floatArrayData(result.parray);
    return {data.begin(), data.end()};
}

// The values given, then zeros up to the room.
std::vector<float> padded(std::vector<float> values) {
    values.resize(kRoom, 0.0f);
    return values;
}

std::vector<float> ramp(std::size_t count) {
    std::vector<float> values(count);
    std::iota(values.begin(), values.end(), 0.5f);
    return values;
}

TEST(SRSLimits, BoundsAreThoseOfTheWholeArray) {
    ComPtr<IDispatch> srs = newObject(u"nv_bench.SRS");
    Variant lower, upper;
    ASSERT_EQ(invoke(srs.get(), u"GetLimitBounds", DISPATCH_METHOD, {Variant::byRef(&lower)}, &upper), S_OK);
    EXPECT_EQ(textOf(lower), "0");
    EXPECT_EQ(textOf(upper), std::to_string(kRoom - 1));
    EXPECT_EQ(limitsOf(srs.get()), padded({}));
}

// What a second SetLimits leaves: its own values at the head and zeros after, whatever came before.
TEST(SRSLimits, SetThenGet) {
    struct Case {
        const char* what;
        std::optional<std::vector<float>> values;
        HRESULT status;
        std::vector<float> expected;  // after a first SetLimits of a full ramp
    };
    const Case cases[] = {
        {"a short curve", std::vector<float>{1.5f, -2.0f, 3.25f}, S_OK, padded({1.5f, -2.0f, 3.25f})},
        {"an empty array clears the curve", std::vector<float>{}, S_OK, padded({})},
        {"exactly the room", ramp(kRoom), S_OK, ramp(kRoom)},
        {"one more than the room", ramp(kRoom + 1), E_INVALIDARG, ramp(kRoom)},
        {"no array", std::nullopt, E_INVALIDARG, ramp(kRoom)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ComPtr<IDispatch> srs = newObject(u"nv_bench.SRS");
        ASSERT_EQ(setLimits(srs.get(), ramp(kRoom)), S_OK);
        ASSERT_EQ(invoke(srs.get(), u"Modified", DISPATCH_PROPERTYPUT, {Variant::fromShort(0)}), S_OK);
        EXPECT_EQ(setLimits(srs.get(), c.values), c.status);
        EXPECT_EQ(limitsOf(srs.get()), c.expected);
        EXPECT_EQ(propertyText(srs.get(), "Modified") != "0", c.status == S_OK);
    }
}

// The limits travel in the record after the head, one little-endian float each, and come back
// with the plain fields; a stream cut inside the limits changes neither.
TEST(SRSLimits, ThroughTheStream) {
    ComPtr<IDispatch> source = newObject(u"nv_bench.SRS");
    const std::vector<float> curve = {0.25f, 1e6f, -3.5f};
    ASSERT_EQ(setLimits(source.get(), curve), S_OK);
    putProperties(source.get(), {{"FreqMin", "2"}});
    std::vector<std::uint8_t> bytes = savedBytes(source.get());
    ASSERT_EQ(bytes.size(), 2192u);
    EXPECT_EQ(le::i32(bytes.data()), 20070228);
    EXPECT_EQ(le::f32(bytes.data() + 128), 0.25f);
    EXPECT_EQ(le::f32(bytes.data() + 136), -3.5f);

    ComPtr<IDispatch> target = newObject(u"nv_bench.SRS");
    std::size_t left = 1;
    ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK);
    EXPECT_EQ(left, 0u);
    EXPECT_EQ(limitsOf(target.get()), padded(curve));
    expectProperties(target.get(), {{"FreqMin", "2"}});

    ComPtr<IDispatch> cut = newObject(u"nv_bench.SRS");
    ASSERT_EQ(setLimits(cut.get(), std::vector<float>{9.0f}), S_OK);
    EXPECT_TRUE(FAILED(loadBytes(cut.get(), std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 1000))));
    EXPECT_EQ(limitsOf(cut.get()), padded({9.0f}));
    expectProperties(cut.get(), {{"FreqMin", "10"}});
}

}  // namespace
}  // namespace nvdl::test
