// The workspace object: default names, sanitised names and paths, the flags that do not mark it, the
// direct writer of a new file, and the flat export of its measurements.
#include <fstream>

#include "../platform/TempDir.h"
#include "WorkspaceTestSupport.h"
#include "nvdl/IWsStorageV2.h"
#include "nvdl/Persist.h"
#include "platform/LittleEndian.h"

namespace nvdl::test {
namespace {

std::string nameOf(IDispatch* object) { return propertyText(object, "Name"); }

TEST(Workspace, NamesPathsAndFlagsThatDoNotMark) {
    ComPtr<IWorkspace> first = newWorkspace(), second = newWorkspace();
    const std::string a = nameOf(first.get()), b = nameOf(second.get());
    ASSERT_EQ(a.rfind("Workspace", 0), 0u);
    EXPECT_EQ(std::stol(b.substr(9)), std::stol(a.substr(9)) + 1);  // one count for the process
    expectProperties(first.get(), {{"Modified", "1"}, {"Default", "0"}, {"FullPathName", ""}});
    EXPECT_EQ(propertyText(first.get(), "ShmLink").rfind("0x", 0), 0u);
    EXPECT_FALSE(propertyText(first.get(), "OriginTime").empty());

    putValues(first.get(), {{"Name", " a/b:c<d>e|f\"g\\h\x01 "}});
    EXPECT_EQ(nameOf(first.get()), "a b c d e f g h");
    putValues(first.get(), {{"FullPathName", "  C:\\data\\run 4.wkd "}});  // no project: taken as it is
    expectProperties(first.get(), {{"FullPathName", "C:\\data\\run 4.wkd"}, {"Name", "run 4.wkd"}});
    EXPECT_EQ(first->put_FullPathName(nullptr), E_POINTER);

    first->put_Modified(0);
    putValues(first.get(), {{"Default", "-1"}, {"OriginFile", "run 4"}, {"OriginTime", "Mon Jan  5 10:00:00 2026"}});
    expectProperties(first.get(), {{"Modified", "0"}, {"Default", "-1"}, {"OriginFile", "run 4"}});
}

TEST(Workspace, DirectWriterLaysOutANewFile) {
    TempDir dir;
    const auto file = dir.path() / "direct.wkd";
    ComPtr<IWorkspace> ws = newWorkspace();
    ComPtr<IWsStorageV2> writer;
    ASSERT_EQ(ws->QueryInterface(IID_IWsStorageV2, reinterpret_cast<void**>(writer.out())), S_OK);
    {
        ComPtr<IStorage> root, blocks;
        ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        EXPECT_EQ(writer->Start(root.get(), nullptr, blocks.out()), E_POINTER);
        Bstr name(std::string_view{"  " + std::string(120, 'n') + " "});
        ASSERT_EQ(writer->Start(root.get(), name.get(), blocks.out()), S_OK);
        SHORT started = 0;
        writer->IsStarted(&started);
        EXPECT_EQ(started, -1);
        ComPtr<IMeasurement> m = measurementOf("direct", {1, 2, 3});
        ComPtr<IPersistStream> persist = ComPtr<IPersistStream>::query(m.get());
        ComPtr<IStream> stream;
        ASSERT_EQ(blocks->CreateStream(u"Meas<0>", kCreateElement, 0, 0, stream.out()), S_OK);
        ASSERT_EQ(persist->Save(stream.get(), 1), S_OK);
        EXPECT_EQ(writer->Finish(), E_FAIL);  // it answers so even when the file is complete
        writer->IsStarted(&started);
        EXPECT_EQ(started, 0);
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    ComPtr<IWorkspace> loaded = newWorkspace();
    ComPtr<IStorage> root;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    ASSERT_EQ(ComPtr<IPersistStorage>::query(loaded.get())->Load(root.get()), S_OK);
    // Written cut to 99 characters; the reader's last byte makes room for the end: 98 come back.
    expectProperties(loaded.get(), {{"Name", std::string(98, 'n').c_str()}, {"Default", "-1"}});
    ComPtr<ICollection> measurements = collectionNamed(loaded.get(), u"Measurements");
    ASSERT_EQ(countOf(measurements.get()), 1);
    EXPECT_EQ(nameOf(itemAt(measurements.get(), 0).get()), "direct");
}

std::vector<std::uint8_t> fileBytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Two channels of 10 samples in blocks of 4: two rounds, the samples of each channel with its
// overload count and gain, each round closed by its date text; the third block would pass the end.
TEST(Workspace, FlatExportWritesRoundsOfSelectedChannels) {
    TempDir dir;
    ComPtr<IWorkspace> ws = newWorkspace();
    ComPtr<ICollection> measurements = collectionNamed(ws.get(), u"Measurements");
    std::vector<float> a(10), b(10);
    for (int i = 0; i < 10; ++i) a[i] = static_cast<float>(i), b[i] = static_cast<float>(100 + i);
    addItem(measurements.get(), measurementOf("a", a).get());
    addItem(measurements.get(), measurementOf("b", b).get());
    Variant channels, gains;
    channels.vt = gains.vt = VT_ARRAY | VT_R4;
    channels.parray = makeFloatArray(std::vector<float>{2, 1});
    gains.parray = makeFloatArray(std::vector<float>{0.5f, 2.0f});
    const auto file = dir.path() / "export.bin";
    Bstr path(std::string_view{file.string()});
    ASSERT_EQ(ws->StoreMeasurementsToFile(path.get(), 7, 4, 0.001f, 0, 2, &channels, &gains), S_OK);
    const std::vector<std::uint8_t> bytes = fileBytes(file);
    const std::uint8_t* p = bytes.data();
    ASSERT_GE(bytes.size(), 16u);
    EXPECT_EQ(le::i32(p), 7);
    EXPECT_EQ(le::i32(p + 4), 2);
    EXPECT_EQ(le::i32(p + 8), 4);
    EXPECT_FLOAT_EQ(le::f32(p + 12), 0.001f);
    std::size_t at = 16;
    for (int round = 0; round < 2; ++round) {
        for (auto [samples, gain] : {std::pair{&b, 0.5f}, std::pair{&a, 2.0f}}) {
            ASSERT_LE(at + 24, bytes.size());
            for (int i = 0; i < 4; ++i) EXPECT_EQ(le::f32(p + at + 4 * i), (*samples)[round * 4 + i]);
            EXPECT_EQ(le::i32(p + at + 16), 0);
            EXPECT_EQ(le::f32(p + at + 20), gain);
            at += 24;
        }
        const std::int32_t length = le::i32(p + at);
        ASSERT_LE(at + 4 + length, bytes.size());
        const std::string text(reinterpret_cast<const char*>(p + at + 4));
        EXPECT_EQ(text.rfind("DateTimeFlag=", 0), 0u) << text;
        EXPECT_EQ(static_cast<std::size_t>(length), text.size() + 1);
        at += 4 + length;
    }
    EXPECT_EQ(at, bytes.size());
    Variant outOfRange;
    outOfRange.vt = VT_ARRAY | VT_R4;
    outOfRange.parray = makeFloatArray(std::vector<float>{3, 1});  // there are only two
    EXPECT_EQ(ws->StoreMeasurementsToFile(path.get(), 7, 4, 0.001f, 0, 2, &outOfRange, &gains), E_INVALIDARG);
}

}  // namespace
}  // namespace nvdl::test
