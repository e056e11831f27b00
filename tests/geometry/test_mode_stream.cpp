// The Mode<i> stream of a workspace file: the older layouts built byte by byte and read, the current
// layout written and read back, and short or damaged streams refused.
#include "ModeTestSupport.h"
#include "geometry/ModeStream.h"
#include "platform/LittleEndian.h"
#include "platform/MemoryStream.h"

namespace nvdl::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
void put(Bytes& b, std::size_t at, std::int32_t v) { le::put32(&b[at], static_cast<std::uint32_t>(v)); }
void put(Bytes& b, std::size_t at, float v) { le::putF32(&b[at], v); }
void put(Bytes& b, std::size_t at, const char* v, std::size_t size) { le::putText(&b[at], size, v); }
void appendCoeff(Bytes& b, std::int32_t direction, float re, float im, const char* component, const char* node) {
    Bytes r(88);
    put(r, 12, direction), put(r, 16, re), put(r, 20, im), put(r, 24, component, 32), put(r, 56, node, 32);
    b.insert(b.end(), r.begin(), r.end());
}

ComPtr<IMode> load(const Bytes& bytes, long version, HRESULT expected = S_OK) {
    MemoryStream* stream = MemoryStream::create(bytes);
    ComPtr<IDispatch> mode;
    EXPECT_EQ(loadModeStream(stream, version, mode.out()), expected) << version;
    stream->Release();
    return ComPtr<IMode>::query(mode.get());
}
Bytes saved(IMode* mode) {
    MemoryStream* stream = MemoryStream::create();
    EXPECT_EQ(saveModeStream(stream, mode), S_OK);
    Bytes bytes = stream->bytes();
    stream->Release();
    return bytes;
}

// The oldest files: 128 bytes with no name; the type and method there are not taken, and
// directions are counted from -1 (none) to 2 (Z). Shape records come before Participation.
Bytes oldestStream() {
    Bytes b(128);
    put(b, 0, 7.5f), put(b, 4, 0.02f), put(b, 12, "Torsion", 100), put(b, 112, 3), put(b, 116, 4);
    put(b, 120, 1), put(b, 124, 2);
    appendCoeff(b, 2, 1, -1, "Frame", "P1"), appendCoeff(b, 7, 2, 0, "Frame", "P2"), appendCoeff(b, -1, 0.5f, 0.25f, "Arm", "Q");
    return b;
}
// The first 188 bytes of today's header; the method stored there is not taken, and no original lists.
Bytes namedStream() {
    Bytes b(188);
    put(b, 0, "Bending", 50), put(b, 52, 12.0f), put(b, 64, "First", 100), put(b, 164, 3.0f), put(b, 168, -2.0f);
    put(b, 172, 1602), put(b, 176, 1705), put(b, 180, 0), put(b, 184, 1);
    appendCoeff(b, 1504, 4, 5, "Frame", "P1");
    return b;
}

std::string headerText(IMode* mode) {
    std::string values = getText(mode, u"Name");
    for (const char16_t* p : {u"Frequency", u"Description", u"ModalAReal", u"ModalAImag", u"Type", u"Method"})
        values += " " + getText(mode, p);
    return values;
}

TEST(ModeStream, ReadsEachOlderLayout) {
    const struct { Bytes bytes; long version; const char* header; const char* coeffs[3]; } rows[] = {
        {oldestStream(), 19951205, "Mode 7.5 Torsion 0 0 1600 1700",
         {"Frame.P1 1503 1 -1", "Frame.P2 1500 2 0", "Arm.Q 1500 0.5 0.25"}},
        {namedStream(), 19960905, "Bending 12 First 3 -2 1602 1700", {"Frame.P1 1504 4 5", "<none>", "<none>"}}};
    for (const auto& r : rows) {
        ComPtr<IMode> mode = load(r.bytes, r.version);
        ASSERT_TRUE(mode);
        EXPECT_EQ(headerText(mode.get()), r.header);
        EXPECT_EQ(coeffText(mode.get(), kShape, 0), r.coeffs[0]);
        EXPECT_EQ(coeffText(mode.get(), kShape, 1), r.coeffs[1]);
        EXPECT_EQ(coeffText(mode.get(), kParticipation, 0), r.coeffs[2]);
        EXPECT_EQ(coeffText(mode.get(), kOrigShape, 0) + coeffText(mode.get(), kOrigParticip, 0), "<none><none>");
    }
}

TEST(ModeStream, CurrentLayoutRoundTrip) {
    ComPtr<IMode> mode = newMode();
    mode->put_Name(Bstr(u"A name longer than the forty-nine characters of its field").get());
    mode->put_Frequency(101.25f), mode->put_ModalAImag(0.75f), mode->put_Method(Variant::fromLong(1708));
    addCoefficient(mode.get(), kShape, "Body", "N1", 1501, 1, 2);
    addCoefficient(mode.get(), kOrigShape, "Body", "N2", 1502, 3, 4);
    addCoefficient(mode.get(), kParticipation, "Body", "N3", 1503, 5, 6);
    addCoefficient(mode.get(), kParticipation, "Body", "N4", 1506, 7, 8);
    addCoefficient(mode.get(), kOrigParticip, "A component name of more than 31", "N5", 1505, 9, 10);
    const Bytes bytes = saved(mode.get());
    ASSERT_EQ(bytes.size(), 676u + 3 * 88 + 2 * 344);
    EXPECT_EQ(getText(mode.get(), u"Modified") + getText(coefficientAt(mode.get(), kShape, 0).get(), u"Modified"), "00");
    const struct { std::size_t offset; std::int32_t value; } fields[] = {
        {180, 2}, {184, 1}, {188, 1}, {192, 1}, {676 + 88 + 12, 1502}};  // Shape, then OrigShape
    for (const auto& f : fields) EXPECT_EQ(le::i32(&bytes[f.offset]), f.value) << f.offset;
    ComPtr<IMode> back = load(bytes, 20030819);
    ASSERT_TRUE(back);
    EXPECT_EQ(headerText(back.get()), "A name longer than the forty-nine characters of i 101.25 Mode 101.25 Hz 0 0.75 1600 1708");
    EXPECT_EQ(coeffText(back.get(), kOrigShape, 0), "Body.N2 1502 3 4");
    EXPECT_EQ(coeffText(back.get(), kParticipation, 1), "Body.N4 1506 7 8");
    EXPECT_EQ(coeffText(back.get(), kOrigParticip, 0), "A component name of more than 3.N5 1505 9 10");
}

// Every stream cut short fails, as does a count that the stream cannot hold or a negative one.
TEST(ModeStream, ShortAndDamagedStreamsAreRefused) {
    ComPtr<IMode> mode = newMode();
    addCoefficient(mode.get(), kOrigParticip, "C", "N", 1501, 1, 1);
    const struct { Bytes bytes; long version; std::size_t header; } layouts[] = {
        {oldestStream(), 19951107, 128}, {namedStream(), 20021112, 188}, {saved(mode.get()), 20030819, 676}};
    for (const auto& l : layouts)
        for (std::size_t cut : {std::size_t{0}, l.header - 1, l.header + 1, l.bytes.size() - 1})
            EXPECT_FALSE(load({l.bytes.begin(), l.bytes.begin() + cut}, l.version, E_FAIL)) << l.version << " " << cut;
    const struct { std::size_t offset; std::int32_t count; } damaged[] = {
        {180, 0x7fffffff}, {184, -1}, {188, 2}, {192, 0x01000000}};
    for (const auto& d : damaged) {
        Bytes bytes = layouts[2].bytes;
        put(bytes, d.offset, d.count);
        EXPECT_FALSE(load(bytes, 20030819, E_FAIL)) << d.offset;
    }
}

}  // namespace
}  // namespace nvdl::test
