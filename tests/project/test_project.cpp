// The project object and its file: members of the object, files built element by element of every
// version, a full project saved and read back, and the failures a user meets.
#include <unistd.h>

#include <fstream>

#include "../measurement/PersistenceTestSupport.h"
#include "../platform/TempDir.h"
#include "ProjectTestSupport.h"
#include "SettingsFileTest.h"
#include "platform/Registry.h"
#include "project/ProjectFile.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl::test {
namespace {

TEST(Project, MembersOfTheObject) {
    ComPtr<IProject> p = newProject();
    SHORT flag = 0;
    p->get_Modified(&flag);
    EXPECT_EQ(flag, 1);  // a new project is modified
    EXPECT_EQ(p->Close(), S_OK);  // no lock: nothing to do

    ComPtr<IWorkspace> active;
    EXPECT_EQ(p->get_ActiveWorkspace(active.out()), E_NOTIMPL);

    for (auto [put, expected] : {std::pair<SHORT, SHORT>{1, 0}, {-1, -1}, {0, 0}, {2, 0}}) {
        p->put_Master(put);
        p->get_Master(&flag);
        EXPECT_EQ(flag, expected) << put;
    }

    putText(p.get(), u"FullPathName", "C:\\runs\\a.vpj  ");
    EXPECT_EQ(getText(p.get(), u"FullPathName"), "C:\\runs\\a.vpj ");  // one blank at the end goes

    SHORT locked = 0;
    Bstr blanks(std::string_view{"   "}), missing(std::string_view{"/nonexistent/file.vpj"});
    EXPECT_EQ(p->Lock(blanks.get(), &locked), E_FAIL);
    EXPECT_EQ(p->Lock(missing.get(), &locked), S_OK);
    EXPECT_EQ(locked, -1);  // the lock was asked for, whether it took or not

    LONG count = 0;
    Bstr unknown(std::string_view{"/nonexistent/file.zzq"}), target(std::string_view{"/tmp/x.vpj"});
    EXPECT_EQ(p->Convert(unknown.get(), target.get(), &count), MK_E_INVALIDEXTENSION);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(p->Convert(nullptr, target.get(), &count), E_FAIL);
}

// Builds a project file by hand: the version stream, one workspace under Data with its origin
// streams, and further elements as the test asks.
struct HandMadeProject {
    TempDir dir;
    std::filesystem::path file = dir.path() / "hand.vpj";
    ComPtr<IStorage> root;
    ComPtr<IStorage> data;

    HandMadeProject(const std::string& classTag, const std::string& fileTag) {
        EXPECT_EQ(createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        root->SetClass(CLSID_CProject);
        putStream(childStorage(root.get(), u"Version").get(), u"Version", versionBytes(classTag, fileTag));
    }
    // A workspace storage named `element` whose own name (WorkspaceName) is `name`, with one
    // measurement of three samples from `level` and, when asked, a setup.
    void addWorkspace(const char16_t* element, const char* name, const char* setupName = nullptr, float level = 1) {
        if (!data) data = childStorage(root.get(), u"Data");
        ComPtr<IWorkspace> ws = newWorkspace();
        putValues(ws.get(), {{"Name", name}});
        addItem(collectionNamed(ws.get(), u"Measurements").get(), measurementOf("m", {level, level + 1, level + 2}).get());
        if (setupName) {
            ComPtr<IDispatch> setup = newObject(u"nv_bench.setup");
            putValues(setup.get(), {{"Name", setupName}});
            addItem(collectionNamed(ws.get(), u"Setups").get(), setup.get());
        }
        ComPtr<IStorage> storage = childStorage(data.get(), element);
        std::string message;
        EXPECT_EQ(saveWkd(storage.get(), *dynamic_cast<CWorkspace*>(CFrameBase::of(ws.get())), message), S_OK);
        putStream(storage.get(), u"OriginFile", textBytes("origin.wkd"));
        putStream(storage.get(), u"OriginTime", textBytes("Tue Nov 24 10:00:00 2026"));
    }
    HRESULT load(ComPtr<IProject>& p) {
        EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        data.reset();
        root.reset();
        p = newProject();
        return loadProject(p.get(), file);
    }
};

TEST(ProjectFile, VersionTagsDecideTheLayout) {
    struct Case {
        std::string classTag, fileTag;
        ProjectLayout layout;
    };
    for (const Case& c : std::vector<Case>{
             {"20001123", "", ProjectLayout::Old},
             {"20001123", "20001123", ProjectLayout::Old},
             {"20001123", "20001122", ProjectLayout::Refused},
             {"20001123", "19991231", ProjectLayout::Refused},
             {"20001120", "", ProjectLayout::Refused},
             {"20001123", "20001221", ProjectLayout::Current},
             {"20001123", "20030221", ProjectLayout::Current},
             {"20001221", "", ProjectLayout::Current},
         }) {
        const std::vector<std::uint8_t> bytes = versionBytes(c.classTag, c.fileTag);
        EXPECT_EQ(projectLayoutOf(std::string(bytes.begin(), bytes.end())), c.layout) << c.classTag << "/" << c.fileTag;
    }
}

TEST(ProjectFile, HandMadeFilesOfEachLayoutLoad) {
    {  // the old layout names a workspace by its storage
        HandMadeProject made("20001123", "");
        made.addWorkspace(u"Bench A", "stored name");
        putStream(made.data.get(), u"WsName", textBytes("ignored"));
        ComPtr<IProject> p;
        ASSERT_EQ(made.load(p), S_OK);
        ComPtr<ICollection> ws = collectionNamed(p.get(), u"Workspaces");
        EXPECT_EQ(namesOf(ws.get()), (std::vector<std::string>{"Bench A"}));
        expectProperties(itemAt(ws.get(), 0).get(),
                         {{"OriginFile", "origin.wkd"}, {"OriginTime", "Tue Nov 24 10:00:00 2026"}, {"Modified", "0"}});
    }
    {  // the current layout by its WorkspaceName; the stream WsName among the workspaces is passed over
        HandMadeProject made("20001123", "20030221");
        made.addWorkspace(u"File 1", "Rig left");
        made.addWorkspace(u"File 2", "Rig right", nullptr, 7);
        putStream(made.data.get(), u"WsName", textBytes("ignored"));
        ComPtr<IProject> p;
        ASSERT_EQ(made.load(p), S_OK);
        ComPtr<ICollection> ws = collectionNamed(p.get(), u"Workspaces");
        EXPECT_EQ(namesOf(ws.get()), (std::vector<std::string>{"Rig left", "Rig right"}));
        // Samples stay in the project file and are paged in from File 2.
        auto m = ComPtr<IMeasurement>::query(itemAt(collectionNamed(itemAt(ws.get(), 1).get(), u"Measurements").get(), 0).get());
        EXPECT_EQ(floats(m.get(), &IMeasurement::get_YRealArray), (std::vector<float>{7, 8, 9}));
        SHORT modified = 1;
        p->get_Modified(&modified);
        EXPECT_EQ(modified, 0);
    }
    {  // a tag below the first current one is refused
        HandMadeProject made("20001123", "20001122");
        ComPtr<IProject> p;
        EXPECT_EQ(made.load(p), E_FAIL);
        EXPECT_EQ(pendingDescription(), "Invalid version number.");
    }
}

TEST(ProjectFile, SetupsOfWorkspacesMoveIntoTheProjectAndAreRenamed) {
    HandMadeProject made("20001123", "20030221");
    made.addWorkspace(u"File 1", "one", "Hammer");
    made.addWorkspace(u"File 2", "two", "Hammer");
    ComPtr<IProject> p;
    ASSERT_EQ(made.load(p), S_OK);
    ComPtr<ICollection> setups = collectionNamed(p.get(), u"Setups");
    ASSERT_EQ(countOf(setups.get()), 2);
    const std::vector<std::string> names = namesOf(setups.get());
    EXPECT_EQ(names[0], "Hammer");
    EXPECT_NE(names[1], "Hammer");
    for (LONG i = 0; i < 2; ++i) {
        EXPECT_EQ(countOf(collectionNamed(itemAt(collectionNamed(p.get(), u"Workspaces").get(), i).get(), u"Setups").get()), 0);
        Variant parent;
        ASSERT_EQ(latebound::get(itemAt(setups.get(), i).get(), u"Parent", &parent), S_OK);
        EXPECT_EQ(parent.pdispVal, static_cast<IDispatch*>(p.get()));  // the project, not none
    }
}

// The tree of components that a layout hands out, as a storage.
ComPtr<IStorage> storageIn(const Variant& components) {
    ComPtr<IStorage> storage;
    EXPECT_TRUE(components.vt == VT_UNKNOWN && components.punkVal);
    if (components.punkVal) components.punkVal->QueryInterface(IID_IStorage, storage.outVoid());
    return storage;
}

// A project of several workspaces with measurements, geometries and modes, setups and documents.
ComPtr<IProject> fullProject() {
    ComPtr<IProject> p = newProject();
    ComPtr<ICollection> workspaces = collectionNamed(p.get(), u"Workspaces");
    for (int w = 0; w < 3; ++w) {
        ComPtr<IWorkspace> ws = newWorkspace();
        putText(ws.get(), u"Name", ("Run " + std::to_string(w)).c_str());
        putText(ws.get(), u"OriginFile", "run.trc");
        ComPtr<ICollection> ms = collectionNamed(ws.get(), u"Measurements");
        for (int i = 0; i <= w; ++i)
            addItem(ms.get(), measurementOf(("ch" + std::to_string(i)).c_str(), std::vector<float>(100 + i, float(w * 10 + i))).get());
        ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry"), mode = newObject(u"nv_bench.mode");
        putText(geometry.get(), u"Name", ("frame " + std::to_string(w)).c_str());
        putText(mode.get(), u"Frequency", std::to_string(10 + w).c_str());
        addItem(collectionNamed(ws.get(), u"Geometries").get(), geometry.get());
        addItem(collectionNamed(ws.get(), u"Modes").get(), mode.get());
        addItem(workspaces.get(), ws.get());
    }
    for (const char* name : {"Hammer", "Shaker"}) {
        ComPtr<IDispatch> setup = newObject(u"nv_bench.setup");
        putValues(setup.get(), {{"Name", name}});
        addItem(collectionNamed(p.get(), u"Setups").get(), setup.get());
    }
    // One layout with a tree of components that the client filled, one without.
    for (const char* name : {"Overview", "Empty"}) {
        ComPtr<IDispatch> layout = newObject(u"nv_bench.Layout");
        putValues(layout.get(), {{"Name", name}});
        if (name == std::string("Overview")) {
            Variant components;
            EXPECT_EQ(latebound::get(layout.get(), u"Components", &components), S_OK);
            auto storage = storageIn(components);
            putStream(storage.get(), u"Window", textBytes("x=10 y=20"));
            putStream(childStorage(storage.get(), u"Panes").get(), u"Pane 1", {1, 2, 3, 4});
        }
        addItem(collectionNamed(p.get(), u"Layouts").get(), layout.get());
    }
    ComPtr<IDispatch> document = newObject(u"nv_bench.parameter");
    putValues(document.get(), {{"Name", "Report"}, {"Value", "/data/report.pdf"}});
    addItem(collectionNamed(p.get(), u"AssociatedDocuments").get(), document.get());
    return p;
}

void expectFullProject(IProject* p) {
    ComPtr<ICollection> workspaces = collectionNamed(p, u"Workspaces");
    EXPECT_EQ(namesOf(workspaces.get()), (std::vector<std::string>{"Run 0", "Run 1", "Run 2"}));
    for (LONG w = 0; w < countOf(workspaces.get()); ++w) {
        ComPtr<IDispatch> ws = itemAt(workspaces.get(), w);
        expectProperties(ws.get(), {{"OriginFile", "run.trc"}});
        ComPtr<ICollection> ms = collectionNamed(ws.get(), u"Measurements");
        ASSERT_EQ(countOf(ms.get()), w + 1);
        for (LONG i = 0; i <= w; ++i) {
            auto m = ComPtr<IMeasurement>::query(itemAt(ms.get(), i).get());
            EXPECT_EQ(floats(m.get(), &IMeasurement::get_YRealArray), std::vector<float>(100 + i, float(w * 10 + i)));
        }
        EXPECT_EQ(getText(itemAt(collectionNamed(ws.get(), u"Geometries").get(), 0).get(), u"Name"), "frame " + std::to_string(w));
        EXPECT_EQ(getText(itemAt(collectionNamed(ws.get(), u"Modes").get(), 0).get(), u"Frequency"), std::to_string(10 + w));
    }
    EXPECT_EQ(namesOf(collectionNamed(p, u"Setups").get()), (std::vector<std::string>{"Hammer", "Shaker"}));
    ComPtr<ICollection> layouts = collectionNamed(p, u"Layouts");
    EXPECT_EQ(namesOf(layouts.get()), (std::vector<std::string>{"Overview", "Empty"}));
    if (countOf(layouts.get()) == 2) {
        Variant components;
        ASSERT_EQ(latebound::get(itemAt(layouts.get(), 0).get(), u"Components", &components), S_OK);
        const TreeContents tree = contentsOf(storageIn(components).get());
        EXPECT_EQ(std::get<2>(tree.at("Window")), textBytes("x=10 y=20"));
        EXPECT_EQ(std::get<2>(tree.at("Panes/Pane 1")), (std::vector<std::uint8_t>{1, 2, 3, 4}));
    }
    ComPtr<ICollection> documents = collectionNamed(p, u"AssociatedDocuments");
    ASSERT_EQ(countOf(documents.get()), 1);
    expectProperties(itemAt(documents.get(), 0).get(), {{"Name", "Report"}, {"Value", "/data/report.pdf"}});
}

TEST(ProjectFile, AFullProjectSavesAndLoadsBackEqual) {
    TempDir dir;
    const auto file = dir.path() / "full.vpj";
    ComPtr<IProject> p = fullProject();
    ASSERT_EQ(saveProject(p.get(), file), S_OK);
    EXPECT_EQ(getText(p.get(), u"FullPathName"), file.string());
    EXPECT_EQ(getText(p.get(), u"Modified"), "0");

    const std::vector<std::string> tree = treeOf(file);
    for (const char* path : {"Version/Version", "Documents/Document(1)", "Data/File 1/Workspace/Blocks/Meas<0>",
                             "Data/File 3/Workspace/Blocks/Meas<2>", "Data/File 2/OriginFile", "Data/File 2/OriginTime",
                             "Setups/Setup 1/Setup(1)", "Setups/Setup 2/Setup(2)", "Layouts/Layout 1/Layout",
                             "Layouts/Layout 1/Components/Panes/Pane 1", "Layouts/Layout 2/Layout"})
        EXPECT_EQ(std::count(tree.begin(), tree.end(), path), 1) << path;
    EXPECT_EQ(std::count(tree.begin(), tree.end(), "Layouts/Layout 2/Components"), 0);

    ComPtr<IProject> loaded = newProject();
    ASSERT_EQ(loadProject(loaded.get(), file), S_OK);
    expectFullProject(loaded.get());

    // Saved again from the loaded project, whose samples still lie in the first file.
    const auto second = dir.path() / "second.vpj";
    ASSERT_EQ(saveProject(loaded.get(), second), S_OK);
    ComPtr<IProject> again = newProject();
    ASSERT_EQ(loadProject(again.get(), second), S_OK);
    expectFullProject(again.get());

    // Copy replaces the target's contents with clones.
    ComPtr<IProject> copy = newProject();
    ASSERT_EQ(again->Copy(copy.get()), S_OK);
    expectFullProject(copy.get());
}

// A loaded project saved over its own file: records paged from the old file are written whole and
// page from the new one, where a removed record before them moved them to other streams.
class PagedProject : public SettingsFileTest {};

TEST_F(PagedProject, PagedRecordsAreSavedWholeAndFollowASaveOverTheirOwnFile) {
    writeSettings({{std::string("HKEY_CURRENT_USER\\") + registry::kSettingsKey,
                    {{"MaxBlockSize", "32768"}, {"LongFileFeature", "1"}}}});
    TempDir dir;
    const auto file = dir.path() / "paged.vpj";
    constexpr LONG kSamples = 100000;  // longer than a block: paged from the file
    {
        ComPtr<IProject> p = newProject();
        ComPtr<IWorkspace> ws = newWorkspace();
        for (float level : {1.0f, 2.0f})
            addItem(collectionNamed(ws.get(), u"Measurements").get(), measurementOf("m", std::vector<float>(kSamples, level)).get());
        addItem(collectionNamed(p.get(), u"Workspaces").get(), ws.get());
        ASSERT_EQ(saveProject(p.get(), file), S_OK);
    }
    ComPtr<IProject> p = newProject();
    ASSERT_EQ(loadProject(p.get(), file), S_OK);
    ComPtr<ICollection> ms = collectionNamed(itemAt(collectionNamed(p.get(), u"Workspaces").get(), 0).get(), u"Measurements");
    ASSERT_EQ(ms->Remove(Variant::fromLong(0)), S_OK);
    ASSERT_EQ(saveProject(p.get(), file), S_OK);
    auto m = ComPtr<IMeasurement>::query(itemAt(ms.get(), 0).get());
    EXPECT_EQ(getText(m.get(), u"IsUncompleted"), "-1");
    for (LONG at : {kSamples - 100, LONG(0), kSamples / 2}) {
        ASSERT_EQ(m->ReadData(at, 100), S_OK) << at;
        const std::vector<float> block = floats(m.get(), &IMeasurement::get_YRealArray);
        ASSERT_FALSE(block.empty());
        EXPECT_EQ(block, std::vector<float>(block.size(), 2.0f)) << at;
    }
    // The file holds the whole record: a project read from it anew has every sample.
    ComPtr<IProject> fresh = newProject();
    p->Close();
    ASSERT_EQ(loadProject(fresh.get(), file), S_OK);
    auto back = ComPtr<IMeasurement>::query(
        itemAt(collectionNamed(itemAt(collectionNamed(fresh.get(), u"Workspaces").get(), 0).get(), u"Measurements").get(), 0).get());
    EXPECT_EQ(getText(back.get(), u"FileSamples"), std::to_string(kSamples));
    ASSERT_EQ(back->ReadData(kSamples - 100, 100), S_OK);
    EXPECT_EQ(floats(back.get(), &IMeasurement::get_YRealArray), std::vector<float>(32768, 2.0f));
}

TEST(ProjectFile, AnEmptyProjectHoldsOnlyItsVersion) {
    TempDir dir;
    const auto file = dir.path() / "empty.vpj";
    ASSERT_EQ(saveProject(newProject().get(), file), S_OK);
    EXPECT_EQ(treeOf(file), (std::vector<std::string>{"Version", "Version/Version"}));
    ComPtr<IProject> p = newProject();
    ASSERT_EQ(loadProject(p.get(), file), S_OK);
    EXPECT_EQ(countOf(collectionNamed(p.get(), u"Workspaces").get()), 0);
    // The version stream as written: both tags with their zeros.
    ComPtr<IStorage> root, version;
    ComPtr<IStream> stream;
    ASSERT_EQ(openCompoundFile(file, STGM_READ, root.out()), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Version", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0, version.out()), S_OK);
    ASSERT_EQ(version->OpenStream(u"Version", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.out()), S_OK);
    std::vector<std::uint8_t> bytes(64);
    ULONG read = 0;
    stream->Read(bytes.data(), 64, &read);
    bytes.resize(read);
    EXPECT_EQ(bytes, versionBytes("20001123", "20030221"));
}

TEST(ProjectFile, FailuresLeaveTheOldFileAndSayWhy) {
    TempDir dir;
    const auto text = dir.path() / "notes.vpj";
    { std::ofstream(text) << "not a project\n"; }
    ComPtr<IProject> p = newProject();
    EXPECT_EQ(loadProject(p.get(), text), E_FAIL);
    EXPECT_EQ(pendingDescription(), "the file exists but is not a storage object.");
    EXPECT_TRUE(FAILED(loadProject(p.get(), dir.path() / "missing.vpj")));

    // A save into a folder that does not exist fails and names the reason; a good file stays.
    EXPECT_TRUE(FAILED(saveProject(p.get(), dir.path() / "no" / "such.vpj")));
    EXPECT_NE(pendingDescription(), "");
    const auto file = dir.path() / "kept.vpj";
    ASSERT_EQ(saveProject(fullProject().get(), file), S_OK);
    std::filesystem::permissions(dir.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const bool asRoot = ::geteuid() == 0;
    if (!asRoot) {
        EXPECT_TRUE(FAILED(saveProject(newProject().get(), file)));
    }
    std::filesystem::permissions(dir.path(), std::filesystem::perms::owner_all);
    ComPtr<IProject> back = newProject();
    ASSERT_EQ(loadProject(back.get(), file), S_OK);
    expectFullProject(back.get());
}

}  // namespace
}  // namespace nvdl::test
