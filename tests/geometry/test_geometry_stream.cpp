// The Geom stream of a workspace file: records built byte by byte in the current and the old form
// and read, the round trip with text cut to its field, and short or damaged streams refused.
#include <cstring>

#include "GeometryTestSupport.h"
#include "geometry/GeometryStream.h"

namespace nvdl::test {
namespace {

constexpr long kCurrentVersion = 20030819;
constexpr long kOldVersion = 19951205;

// A stream being built: records of a fixed size, zero-filled, with fields put at their offsets.
struct Bytes {
    std::vector<std::uint8_t> bytes;
    std::size_t at = 0;

    Bytes& record(std::size_t size) { return at = bytes.size(), bytes.resize(at + size, 0), *this; }
    Bytes& text(std::size_t offset, const char* s) {
        return std::memcpy(&bytes[at + offset], s, std::strlen(s)), *this;
    }
    Bytes& i32(std::size_t offset, std::int32_t v) { return le::put32(&bytes[at + offset], std::uint32_t(v)), *this; }
    Bytes& floats(std::size_t offset, std::initializer_list<float> values) {
        for (float v : values) le::putF32(&bytes[at + offset], v), offset += 4;
        return *this;
    }
};

ComPtr<IDispatch> load(const std::vector<std::uint8_t>& bytes, long version, HRESULT* status = nullptr) {
    ComPtr<MemoryStream> stream(MemoryStream::create(bytes));
    ComPtr<IDispatch> geometry;
    HRESULT h = loadGeometryStream(stream.get(), version, geometry.out());
    if (status) *status = h;
    else EXPECT_EQ(h, S_OK);
    return geometry;
}

std::vector<std::uint8_t> save(IDispatch* geometry) {
    ComPtr<MemoryStream> stream(MemoryStream::create());
    EXPECT_EQ(saveGeometryStream(stream.get(), geometry), S_OK);
    return stream->bytes();
}

// Node records: "N1" with two words behind it to be skipped, then "N2".
void appendNodes(Bytes& b) {
    b.record(188).text(0, "N1").floats(52, {0.25f, 0.5f, 0.75f, 1, 2, 3}).i32(76, -1).i32(80, -1);
    b.text(84, "N2").text(134, "N3").i32(184, 2);
    b.record(8).i32(0, -1).text(4, "junk");
    b.record(188).text(0, "N2");
}

void expectSampleChildren(IDispatch* component) {
    ASSERT_EQ(countOf(component, u"Nodes"), 2);
    expectTexts(itemOf(component, u"Nodes", 0).get(),
                "Name=N1;X=0.25;Z=0.75;RotationY=2;Highlight=-1;SlaveNode=-1;MasterNode1=N2;MasterNode2=N3");
    expectTexts(itemOf(component, u"Nodes", 1).get(), "Name=N2;MasterNode1=");
}

TEST(GeometryStream, ReadsTheCurrentRecords) {
    Bytes b;
    b.record(108).text(0, "Frame").i32(52, 1).text(56, "Cylindrical");
    b.record(156).text(0, "Base").floats(52, {1.5f, -2, 3, 10, 20, 30}).text(76, "Spherical");
    b.i32(128, 0).i32(132, 7).i32(136, -1).i32(140, -1).i32(144, 2).i32(148, 1).i32(152, 1);
    appendNodes(b);
    b.record(108).text(0, "N1").text(50, "N2").i32(100, 1).i32(104, 5);
    b.record(160).text(0, "N1").text(50, "N2").text(100, "N3").i32(152, 0).i32(156, 9);

    ComPtr<IDispatch> geometry = load(b.bytes, kCurrentVersion);
    ASSERT_TRUE(geometry);
    expectTexts(geometry.get(), "Name=Frame;CoordinateType=1402");
    ASSERT_EQ(countOf(geometry.get(), u"Components"), 1);
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    expectTexts(component.get(),
                "FullName=Frame.Base;X=1.5;Y=-2;RotationZ=30;CoordinateType=1403;Visibility=0;ColorIndex=7;Highlight=-"
                "1;DrawSolid=-1;ShowLabel=0");
    expectSampleChildren(component.get());
    EXPECT_EQ(getText(itemOf(component.get(), u"Nodes", 0).get(), u"FullName"), "Frame.Base.N1");
    expectTexts(itemOf(component.get(), u"Lines", 0).get(), "Node1=N1;Node2=N2;Visibility=1;ColorIndex=5");
    expectTexts(itemOf(component.get(), u"Triangles", 0).get(), "Node1=N1;Node2=N2;Node3=N3;Visibility=0;ColorIndex=9");
}

TEST(GeometryStream, ReadsTheOldRecords) {
    Bytes b;
    b.record(8).i32(0, 1).i32(4, 2);
    b.record(108).text(0, "Old").floats(52, {1.5f, -2, 3, 10, 20, 30}).i32(76, 1);
    b.i32(80, 0).i32(84, 3).i32(88, -1).i32(92, 0).i32(96, 2).i32(100, 0).i32(104, 0);
    appendNodes(b);

    ComPtr<IDispatch> geometry = load(b.bytes, kOldVersion);
    ASSERT_TRUE(geometry);
    expectTexts(geometry.get(), "Name=Geom;CoordinateType=1403");
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    expectTexts(component.get(),
                "Name=Old;RotationX=10;CoordinateType=1402;Visibility=0;ColorIndex=3;Highlight=-1;DrawSolid=0");
    expectSampleChildren(component.get());
}

TEST(GeometryStream, VersionChoosesTheFormAndOldCoordinateNumbersMap) {
    const struct {
        long version;
        std::int32_t number;
        bool loads;
        const char* coordinateType;
    } cases[] = {
        {kOldVersion, 0, true, "1401"},  {kOldVersion, 1, true, "1402"},
        {19960904, 2, true, "1403"},     {19951107, 3, true, "1401"},
        {kOldVersion, -1, true, "1401"}, {19960905, 1, false, ""},  // the current header is longer than the stream
    };
    for (const auto& c : cases) {
        Bytes b;
        b.record(8).i32(0, 0).i32(4, c.number);
        HRESULT h;
        ComPtr<IDispatch> geometry = load(b.bytes, c.version, &h);
        EXPECT_EQ(SUCCEEDED(h), c.loads) << c.version << " " << c.number;
        EXPECT_EQ(geometry ? getText(geometry.get(), u"CoordinateType") : "", c.coordinateType) << c.number;
    }
}

TEST(GeometryStream, RoundTripKeepsEverythingAndClearsTheFlags) {
    ComPtr<IDispatch> geometry = sampleGeometry();
    const std::vector<std::uint8_t> bytes = save(geometry.get());
    ASSERT_EQ(bytes.size(), 108u + 156 + 2 * 188 + 108 + 160);
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    for (const char16_t* list : {u"Nodes", u"Lines", u"Triangles"})
        EXPECT_EQ(modifiedOf(itemOf(component.get(), list, 0).get()), 0) << narrow(list);
    EXPECT_EQ(modifiedOf(component.get()) + modifiedOf(geometry.get()), 0);
    // Booleans fill their 32-bit field sign-extended.
    EXPECT_EQ(le::i32(&bytes[108 + 136]), -1);

    // Read back and written again, the same bytes: every stored field came back.
    ComPtr<IDispatch> loaded = load(bytes, kCurrentVersion);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(save(loaded.get()), bytes);
    // A name of 60 characters comes back cut to 49.
    putText(loaded.get(), u"Name", std::string(60, 'g').c_str());
    EXPECT_EQ(getText(load(save(loaded.get()), kCurrentVersion).get(), u"Name"), std::string(49, 'g'));
}

TEST(GeometryStream, ShortStreamsAreRefused) {
    const std::vector<std::uint8_t> bytes = save(sampleGeometry().get());
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        HRESULT h;
        EXPECT_FALSE(load({bytes.begin(), bytes.begin() + cut}, kCurrentVersion, &h)) << cut;
        EXPECT_TRUE(FAILED(h)) << cut;
    }
}

TEST(GeometryStream, DamagedCountsAreRefused) {
    const std::vector<std::uint8_t> bytes = save(sampleGeometry().get());
    const std::size_t component = 108, node = 108 + 156;
    // Counts of components, of nodes, lines and triangles, and of the words behind a node.
    const std::pair<std::size_t, std::int32_t> cases[] = {{52, 2},
                                                          {52, -1},
                                                          {52, 0x7FFFFFFF},
                                                          {component + 144, 3},
                                                          {component + 144, -5},
                                                          {component + 144, 0x40000000},
                                                          {component + 148, 2},
                                                          {component + 152, -1},
                                                          {component + 152, 0x7FFFFFFF},
                                                          {node + 184, 1000},
                                                          {node + 184, -1},
                                                          {node + 184, 0x40000000}};
    for (const auto& [offset, value] : cases) {
        std::vector<std::uint8_t> damaged = bytes;
        le::put32(&damaged[offset], static_cast<std::uint32_t>(value));
        HRESULT h;
        EXPECT_FALSE(load(damaged, kCurrentVersion, &h)) << offset << " " << value;
        EXPECT_TRUE(FAILED(h));
    }
}

}  // namespace
}  // namespace nvdl::test
