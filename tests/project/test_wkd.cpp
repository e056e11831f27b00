// Workspace files: a full workspace written and read back, files of every version tag built element
// by element, and the files the reader refuses.
#include "../measurement/GenerationRecords.h"
#include "../platform/TempDir.h"
#include "WorkspaceTestSupport.h"
#include "nvdl/Persist.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl::test {
namespace {

CWorkspace& frameOf(IWorkspace* ws) { return *dynamic_cast<CWorkspace*>(CFrameBase::of(ws)); }

HRESULT saveTo(IWorkspace* ws, const std::filesystem::path& file) {
    ComPtr<IStorage> root;
    HRESULT h = createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out());
    return FAILED(h) ? h : ComPtr<IPersistStorage>::query(ws)->Save(root.get(), 0);
}

// Loads the file into a new workspace; the status and the message in `message`.
ComPtr<IWorkspace> loadFrom(const std::filesystem::path& file, HRESULT& result, std::string& message) {
    ComPtr<IWorkspace> ws = newWorkspace();
    ComPtr<IStorage> root;
    result = openCompoundFile(file, STGM_READ, root.out());
    if (SUCCEEDED(result)) result = loadWkd(root.get(), frameOf(ws.get()), WkdPlace{file.string(), {}}, message);
    return ws;
}

TEST(Wkd, AWorkspaceWithEveryKindOfItemReadsBackEqual) {
    TempDir dir;
    ComPtr<IWorkspace> ws = newWorkspace();
    putValues(ws.get(), {{"Name", "Bench run"}, {"Default", "-1"}});
    ComPtr<ICollection> measurements = collectionNamed(ws.get(), u"Measurements");
    ComPtr<IMeasurement> real = measurementOf("real", {1, 2, 3, 4}), complex = measurementOf("complex", {1, 2}, {-1, 5});
    addParameter(real.get(), "Operator", "kim");
    addItem(collectionNamed(real.get(), u"Measurements").get(), measurementOf("sub", {9, 8}).get());
    addItem(measurements.get(), real.get());
    addItem(measurements.get(), complex.get());
    ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry"), mode = newObject(u"nv_bench.mode"),
                      setup = newObject(u"nv_bench.setup");
    putValues(geometry.get(), {{"Name", "frame"}});
    putValues(mode.get(), {{"Name", "first bending"}, {"Frequency", "12.5"}});
    putValues(setup.get(), {{"Name", "Hammer test"}});
    addItem(collectionNamed(ws.get(), u"Geometries").get(), geometry.get());
    addItem(collectionNamed(ws.get(), u"Modes").get(), mode.get());
    addItem(collectionNamed(ws.get(), u"Setups").get(), setup.get());
    const auto file = dir.path() / "bench.wkd";
    ASSERT_EQ(saveTo(ws.get(), file), S_OK);

    const std::vector<std::string> tree = treeOf(file);
    for (const char* path : {"Version/Version", "Workspace/WorkspaceStream", "Workspace/WorkspaceName",
                             "Workspace/Blocks/Meas<0>", "Workspace/Blocks/Meas<1>", "Workspace/SubBlocks/Meas<0>/SubMeas<0>",
                             "Workspace/Geometries/Geom<0>", "Workspace/Modes/Mode<0>",
                             "Workspace/AcqSetups/Setup<0>/Setup(1)"})
        EXPECT_EQ(std::count(tree.begin(), tree.end(), path), 1) << path;

    HRESULT result;
    std::string message;
    ComPtr<IWorkspace> loaded = loadFrom(file, result, message);
    ASSERT_EQ(result, S_OK) << message;
    expectProperties(loaded.get(), {{"Name", "Bench run"}, {"Default", "-1"}});
    ComPtr<ICollection> back = collectionNamed(loaded.get(), u"Measurements");
    ASSERT_EQ(countOf(back.get()), 2);
    auto m0 = ComPtr<IMeasurement>::query(itemAt(back.get(), 0).get());
    auto m1 = ComPtr<IMeasurement>::query(itemAt(back.get(), 1).get());
    EXPECT_EQ(floats(m0.get(), &IMeasurement::get_YRealArray), (std::vector<float>{1, 2, 3, 4}));
    EXPECT_EQ(floats(m1.get(), &IMeasurement::get_YImagArray), (std::vector<float>{-1, 5}));
    EXPECT_EQ(parameters(m0.get()), (std::vector<std::string>{"Operator=kim"}));
    ComPtr<ICollection> subs = collectionNamed(m0.get(), u"Measurements");
    ASSERT_EQ(countOf(subs.get()), 1);
    auto sub = ComPtr<IMeasurement>::query(itemAt(subs.get(), 0).get());
    EXPECT_EQ(floats(sub.get(), &IMeasurement::get_YRealArray), (std::vector<float>{9, 8}));
    expectProperties(itemAt(collectionNamed(loaded.get(), u"Geometries").get(), 0).get(), {{"Name", "frame"}});
    expectProperties(itemAt(collectionNamed(loaded.get(), u"Modes").get(), 0).get(),
                     {{"Name", "first bending"}, {"Frequency", "12.5"}});
    expectProperties(itemAt(collectionNamed(loaded.get(), u"Setups").get(), 0).get(), {{"Name", "Hammer test"}});

    // A host that opens documents by file name reaches the same through the file persistence.
    ComPtr<IWorkspace> opened = newWorkspace();
    auto asFile = ComPtr<IPersistFile>::query(opened.get());
    ASSERT_EQ(asFile->Load(widen(file.string()).c_str(), 0), S_OK);
    EXPECT_EQ(countOf(collectionNamed(opened.get(), u"Measurements").get()), 2);
    OLECHAR* current = nullptr;
    ASSERT_EQ(asFile->GetCurFile(&current), S_OK);
    EXPECT_EQ(narrow(current), file.string());
    SysFreeString(current);
    EXPECT_EQ(asFile->Save(u"elsewhere.wkd", 1), E_FAIL);  // saving goes through the workspace's own Save
    EXPECT_FALSE(std::filesystem::exists("elsewhere.wkd"));
}

// A geometry "frame" of one component "beam" (cylindrical) in the records of the tag's time.
std::vector<std::uint8_t> geometryRecords(long version) {
    if (version < 19960905) {
        ByteRecord r(8 + 108);
        r.i32(0, 1);
        r.i32(4, 1);  // cylindrical, as a number
        r.text(8, 50, "beam");
        r.i32(8 + 76, 1);
        return r.bytes;
    }
    ByteRecord r(108 + 156);
    r.text(0, 50, "frame");
    r.i32(52, 1);
    r.text(56, 50, "Cylindrical");
    r.text(108, 50, "beam");
    r.text(108 + 76, 50, "Cylindrical");
    return r.bytes;
}

// A mode of 12.5 Hz without coefficients in the record of the tag's time.
std::vector<std::uint8_t> modeRecord(long version) {
    ByteRecord r(version < 19960905 ? 128 : version <= 20021112 ? 188 : 676);
    r.f32(version < 19960905 ? 0 : 52, 12.5f);
    return r.bytes;
}

// A workspace file of one version tag with one measurement record of the generation that tag calls
// for, and a geometry and a mode in the records of that tag.
void writeVersionFile(const std::filesystem::path& file, const char* tag, const std::vector<std::uint8_t>& record,
                      const char* name = "Old bench") {
    ComPtr<IStorage> root;
    ASSERT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
    putStream(childStorage(root.get(), u"Version").get(), u"Version", textBytes(tag));
    ComPtr<IStorage> ws = childStorage(root.get(), u"Workspace");
    std::vector<std::uint8_t> wsRecord(176, 0);
    le::putText(wsRecord.data(), 50, "20020220");
    le::put16(wsRecord.data() + 50, 0xFFFF);
    putStream(ws.get(), u"WorkspaceStream", wsRecord);
    putStream(ws.get(), u"WorkspaceName", textBytes(name));
    putStream(childStorage(ws.get(), u"Blocks").get(), u"Meas<0>", record);
    const long version = wkdVersionNumber(tag);
    if (version != 0) {
        putStream(childStorage(ws.get(), u"Geometries").get(), u"Geom<0>", geometryRecords(version));
        putStream(childStorage(ws.get(), u"Modes").get(), u"Mode<0>", modeRecord(version));
    }
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

TEST(Wkd, EveryVersionTagReadsTheMeasurementGenerationItCallsFor) {
    TempDir dir;
    struct Version {
        const char* tag;
        std::vector<std::uint8_t> record;
        const char* measurementName;  // as the generation's record has it
    };
    ByteRecord gen1 = generation1(5, 3, false);
    gen1.appendFloats({1, 2, 3});
    std::vector<Version> versions = {{"19951107", gen1.bytes, ""}, {"19951205", gen1.bytes, ""}};
    const char* oldTags[] = {"19960905", "19970312", "19970805", "19970819"};
    for (int g = 0; g < 4; ++g) versions.push_back({oldTags[g], oldGeneration(kOldRows[g]).bytes, "Autopower of run 2"});
    for (auto [tag, size] : {std::pair{19990222, std::size_t{848}}, std::pair{19991006, std::size_t{856}}}) {
        ByteRecord r = tagged(tag, size);
        versions.push_back({tag == 19990222 ? "19990222" : "19991006", appendDataAndPairs(r).bytes, "Crosspower mic/ref"});
    }
    for (auto tag : {20021112, 20030819}) {
        ByteRecord r = generation8(tag);
        versions.push_back({tag == 20021112 ? "20021112" : "20030819", appendDataAndPairs(r).bytes, "Crosspower mic/ref"});
    }
    for (const Version& v : versions) {
        SCOPED_TRACE(v.tag);
        const auto file = dir.path() / (std::string(v.tag) + ".wkd");
        writeVersionFile(file, v.tag, v.record);
        HRESULT result;
        std::string message;
        ComPtr<IWorkspace> ws = loadFrom(file, result, message);
        ASSERT_EQ(result, S_OK) << message;
        expectProperties(ws.get(), {{"Name", "Old bench"}, {"Default", "-1"}});
        ComPtr<ICollection> measurements = collectionNamed(ws.get(), u"Measurements");
        ASSERT_EQ(countOf(measurements.get()), 1);
        if (*v.measurementName) expectProperties(itemAt(measurements.get(), 0).get(), {{"Name", v.measurementName}});
        ComPtr<IDispatch> geometry = itemAt(collectionNamed(ws.get(), u"Geometries").get(), 0);
        expectProperties(itemAt(collectionNamed(geometry.get(), u"Components").get(), 0).get(),
                         {{"Name", "beam"}, {"CoordinateType", "1402"}});
        expectProperties(itemAt(collectionNamed(ws.get(), u"Modes").get(), 0).get(), {{"Frequency", "12.5"}});
    }
}

TEST(Wkd, UnknownTagsMissingVersionsAndDamagedRecordsAreRefusedWithTheirMessages) {
    TempDir dir;
    ByteRecord r = generation8(20030819);
    const std::vector<std::uint8_t> record = appendDataAndPairs(r).bytes;
    struct Case {
        const char* what;
        std::function<void(const std::filesystem::path&)> make;
        HRESULT result;
        const char* message;
    };
    const Case cases[] = {
        {"a tag of no known file", [&](auto& f) { writeVersionFile(f, "20040101", record); }, E_FAIL,
         " does not have property put."},
        {"no Version storage",
         [](auto& f) {
             ComPtr<IStorage> root;
             ASSERT_EQ(createCompoundFile(f, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
             childStorage(root.get(), u"Workspace");
             ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
         },
         E_FAIL, ""},
        {"a short workspace record",
         [&](auto& f) {
             writeVersionFile(f, "20030819", record);
             ComPtr<IStorage> root, ws;
             ASSERT_EQ(openCompoundFile(f, STGM_READWRITE, root.out()), S_OK);
             ASSERT_EQ(root->OpenStorage(u"Workspace", nullptr, kCreateElement & ~STGM_CREATE, nullptr, 0, ws.out()), S_OK);
             putStream(ws.get(), u"WorkspaceStream", std::vector<std::uint8_t>(100, 0));
             ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
         },
         E_FAIL, "Cannot read the WorkspaceData stream"},
        {"a damaged measurement is passed over",
         [&](auto& f) { writeVersionFile(f, "20030819", std::vector<std::uint8_t>(record.begin(), record.begin() + 500)); },
         S_OK, ""},
    };
    for (const Case& c : cases) {
        const auto file = dir.path() / "case.wkd";
        c.make(file);
        HRESULT result;
        std::string message;
        ComPtr<IWorkspace> ws = loadFrom(file, result, message);
        EXPECT_EQ(result, c.result) << c.what;
        EXPECT_EQ(message, c.message) << c.what;
    }
}

}  // namespace
}  // namespace nvdl::test
