// Layouts: the 122-byte record and the components tree in a project file, refused records, Clean,
// the parent and the Modified climb, and copies that take the components deep.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "../frame/ForeignParent.h"
#include "../frame/TestHelpers.h"
#include "../platform/CompoundTestSupport.h"
#include "../platform/StorageTree.h"
#include "frame/ClassTable.h"
#include "nvdl/ILayout.h"
#include "nvdl/INVRootStorage.h"
#include "nvdl/Persist.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

namespace nvdl::test {
namespace {

const CLSID kViewClass{0x0a0b0c0d, 0x1111, 0x2222, {3, 3, 4, 4, 5, 5, 6, 6}};

// The record as the file format lays it out: the tag in 20 bytes from 0, the name in 100 bytes from
// 20 (99 characters at most, zero-ended), the default flag as a little-endian 16-bit value at 120.
Bytes expectedRecord(const std::string& name, SHORT isDefault) {
    Bytes r(122, 0);
    std::memcpy(r.data(), "20030218", 8);
    std::memcpy(r.data() + 20, name.data(), std::min<std::size_t>(name.size(), 99));
    r[120] = static_cast<std::uint8_t>(isDefault & 0xFF);
    r[121] = static_cast<std::uint8_t>((isDefault >> 8) & 0xFF);
    return r;
}

ComPtr<ILayout> newLayout(const std::string& name = {}, SHORT isDefault = 0) {
    IDispatch* object = nullptr;
    EXPECT_EQ(createInstance(CLSID_CLayout, &object), S_OK);
    ComPtr<ILayout> layout(static_cast<ILayout*>(object));
    if (!name.empty()) layout->put_Name(Bstr(std::string_view(name)).get());
    layout->put_Default(isDefault);
    return layout;
}

ComPtr<INVRootStorage> componentsOf(ILayout* layout) {
    ComPtr<IUnknown> components;
    EXPECT_EQ(layout->get_Components(components.out()), S_OK);
    return ComPtr<INVRootStorage>::query(components.get());
}

ComPtr<IStorage> storageOf(IUnknown* tree) {
    ComPtr<IStorage> storage;
    EXPECT_EQ(tree->QueryInterface(IID_IStorage, storage.outVoid()), S_OK);
    return storage;
}

ComPtr<IStorage> newMemoryStorage() {
    ComPtr<INVRootStorage> tree;
    EXPECT_EQ(CreateNVRootStorage(tree.out()), S_OK);
    return storageOf(tree.get());
}

ComPtr<IPersistStorage> persistOf(ILayout* layout) { return ComPtr<IPersistStorage>::query(layout); }

// What a client puts into a layout: streams, a nested storage with a class, an empty stream.
void fillComponents(ILayout* layout) {
    ComPtr<IStorage> root = storageOf(componentsOf(layout).get());
    putStream(root.get(), u"Window", {1, 2, 3, 4, 5});
    putStream(root.get(), u"Empty", {});
    ComPtr<IStorage> view, grid;
    ASSERT_EQ(root->CreateStorage(u"View 1", kCreate, 0, 0, view.out()), S_OK);
    ASSERT_EQ(view->SetClass(kViewClass), S_OK);
    putStream(view.get(), u"Trace", content("Trace", 70000));
    ASSERT_EQ(view->CreateStorage(u"Grid", kCreate, 0, 0, grid.out()), S_OK);
    putStream(grid.get(), u"Cells", {0, 0xFF});
}

std::vector<std::string> namesIn(IStorage* storage) {
    std::vector<std::string> paths;
    listTree(storage, "", paths);
    return paths;
}

SHORT modifiedOf(ILayout* layout) {
    SHORT modified = 7;
    EXPECT_EQ(layout->get_Modified(&modified), S_OK);
    return modified;
}

TEST(Layout, WithoutComponentsWritesOnlyItsRecord) {
    struct Case {
        std::string name;
        SHORT isDefault;
        bool touchComponents;  // an empty tree writes nothing either
    };
    const Case cases[] = {
        {"Main", 0, false},
        {"\xC9" "cran \xE0 gauche", -1, true},
        {std::string(130, 'n'), -1, false},
        {"", 1, true},
    };
    for (const Case& c : cases) {
        ComPtr<ILayout> layout = newLayout(c.name, c.isDefault);
        if (c.touchComponents) componentsOf(layout.get());
        ComPtr<IStorage> target = newMemoryStorage();
        ASSERT_EQ(persistOf(layout.get())->Save(target.get(), 0), S_OK);
        EXPECT_EQ(namesIn(target.get()), std::vector<std::string>{"Layout"}) << c.name;
        EXPECT_EQ(getStream(target.get(), u"Layout"), expectedRecord(c.name, c.isDefault)) << c.name;
        EXPECT_EQ(modifiedOf(layout.get()), 0);
    }
}

TEST(Layout, ComponentsGoThroughAProjectFileByteForByte) {
    ComPtr<ILayout> layout = newLayout("Acoustics", -1);
    fillComponents(layout.get());
    const TreeContents components = contentsOf(storageOf(componentsOf(layout.get()).get()).get());
    TempDir dir;
    {
        ComPtr<IStorage> root, layouts, slot;
        ASSERT_EQ(createCompoundFile(dir.file("p.vpj"), kCreate, root.out()), S_OK);
        ASSERT_EQ(root->CreateStorage(u"Layouts", kCreate, 0, 0, layouts.out()), S_OK);
        ASSERT_EQ(layouts->CreateStorage(u"Layout 1", kCreate, 0, 0, slot.out()), S_OK);
        ASSERT_EQ(persistOf(layout.get())->Save(slot.get(), 0), S_OK);
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    const std::vector<std::string> expectedTree = {
        "Layouts", "Layouts/Layout 1", "Layouts/Layout 1/Components", "Layouts/Layout 1/Components/Empty",
        "Layouts/Layout 1/Components/View 1", "Layouts/Layout 1/Components/View 1/Grid",
        "Layouts/Layout 1/Components/View 1/Grid/Cells", "Layouts/Layout 1/Components/View 1/Trace",
        "Layouts/Layout 1/Components/Window", "Layouts/Layout 1/Layout",
    };
    EXPECT_EQ(treeOf(dir.file("p.vpj")), expectedTree);

    ComPtr<IStorage> root, layouts, slot;
    ASSERT_EQ(openCompoundFile(dir.file("p.vpj"), STGM_READ, root.out()), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Layouts", nullptr, kRead, nullptr, 0, layouts.out()), S_OK);
    ASSERT_EQ(layouts->OpenStorage(u"Layout 1", nullptr, kRead, nullptr, 0, slot.out()), S_OK);
    EXPECT_EQ(getStream(slot.get(), u"Layout"), expectedRecord("Acoustics", -1));
    ComPtr<ILayout> loaded = newLayout();
    ASSERT_EQ(persistOf(loaded.get())->Load(slot.get()), S_OK);
    EXPECT_EQ(getText(loaded.get(), u"Name"), "Acoustics");
    EXPECT_EQ(getText(loaded.get(), u"Default"), "-1");
    EXPECT_EQ(modifiedOf(loaded.get()), 0);
    EXPECT_EQ(contentsOf(storageOf(componentsOf(loaded.get()).get()).get()), components);
}

TEST(Layout, RefusesARecordOfAnotherTagOrTooShort) {
    Bytes valid = expectedRecord("Loaded", -1);
    Bytes otherTag = valid, longerTag = valid, shortRecord(valid.begin(), valid.end() - 1), longer = valid;
    otherTag[7] = '7';
    longerTag[8] = 'x';
    longer.resize(200, 0xAB);
    struct Case {
        const char* what;
        Bytes bytes;
        HRESULT result;
        const char* name;
    };
    const Case cases[] = {
        {"the record", valid, S_OK, "Loaded"},
        {"more than the record", longer, S_OK, "Loaded"},
        {"another tag", otherTag, E_FAIL, "Kept"},
        {"a longer tag", longerTag, E_FAIL, "Kept"},
        {"one byte short", shortRecord, E_FAIL, "Kept"},
        {"empty", {}, E_FAIL, "Kept"},
    };
    for (const Case& c : cases) {
        ComPtr<IStorage> source = newMemoryStorage();
        putStream(source.get(), u"Layout", c.bytes);
        ComPtr<ILayout> layout = newLayout("Kept");
        clearErrorInfo();
        EXPECT_EQ(persistOf(layout.get())->Load(source.get()), c.result) << c.what;
        EXPECT_EQ(pendingDescription(), c.result == S_OK ? "" : "Invalid Layout version number") << c.what;
        EXPECT_EQ(getText(layout.get(), u"Name"), c.name) << c.what;
    }
    // No record at all is a storage failure, not a version.
    ComPtr<ILayout> layout = newLayout();
    EXPECT_EQ(persistOf(layout.get())->Load(newMemoryStorage().get()), STG_E_FILENOTFOUND);
}

TEST(Layout, CleanLeavesAnEmptyTreeOfItsOwn) {
    ComPtr<ILayout> bare = newLayout();
    EXPECT_EQ(invoke(bare.get(), u"Clean", DISPATCH_METHOD, {}), S_OK);
    SHORT has = 1;
    ASSERT_EQ(componentsOf(bare.get())->HasContents(&has), S_OK);
    EXPECT_EQ(has, 0);

    ComPtr<ILayout> filled = newLayout("Filled");
    fillComponents(filled.get());
    ComPtr<INVRootStorage> held = componentsOf(filled.get());
    ASSERT_EQ(filled->Clean(), S_OK);
    ComPtr<INVRootStorage> fresh = componentsOf(filled.get());
    EXPECT_NE(fresh.get(), held.get());
    for (INVRootStorage* tree : {held.get(), fresh.get()}) {
        has = 1;
        ASSERT_EQ(tree->HasContents(&has), S_OK);
        EXPECT_EQ(has, 0);
    }
    ComPtr<IStorage> target = newMemoryStorage();
    ASSERT_EQ(persistOf(filled.get())->Save(target.get(), 0), S_OK);
    EXPECT_EQ(namesIn(target.get()), std::vector<std::string>{"Layout"});
}

TEST(Layout, ParentAndTheModifiedClimb) {
    ComPtr<ILayout> alone = newLayout("Alone");
    IDispatch* parent = reinterpret_cast<IDispatch*>(0x1);
    EXPECT_EQ(alone->get_Parent(&parent), S_OK);
    EXPECT_EQ(parent, nullptr);

    struct Case {
        const char* what;
        std::function<HRESULT(ILayout*)> change;
        SHORT modified;
        int climbs;
    };
    const Case cases[] = {
        {"name", [](ILayout* l) { return l->put_Name(Bstr(std::string_view("N")).get()); }, 1, 1},
        {"name by property",
         [](ILayout* l) { return l->put_Property(Bstr(std::string_view("Name")).get(), Bstr(std::string_view("x")).get()); },
         1, 1},
        {"default", [](ILayout* l) { return l->put_Default(-1); }, 0, 0},
        {"modified set", [](ILayout* l) { return l->put_Modified(1); }, 1, 1},
        {"modified cleared", [](ILayout* l) { return l->put_Modified(0); }, 0, 0},
        {"clean", [](ILayout* l) { return l->Clean(); }, 0, 0},
    };
    for (IID kind : {IID_IProject, IID_IWorkspace}) {
        for (const Case& c : cases) {
            ForeignParent project(kind);
            ComPtr<ILayout> layout = newLayout("L");
            layout->put_Modified(0);
            ASSERT_EQ(layout->put_Parent(&project), S_OK);
            EXPECT_EQ(c.change(layout.get()), S_OK) << c.what;
            EXPECT_EQ(modifiedOf(layout.get()), c.modified) << c.what;
            EXPECT_EQ(project.puts, kind == IID_IProject ? c.climbs : 0) << c.what;
            layout->put_Parent(nullptr);
        }
    }
    clearErrorInfo();
    EXPECT_EQ(alone->put_Property(Bstr(std::string_view("Nope")).get(), Bstr(std::string_view("x")).get()), E_FAIL);
    EXPECT_EQ(pendingDescription(), "Nope does not have property put.");
}

TEST(Layout, CopyAndCloneTakeNameDefaultComponentsAndModified) {
    for (SHORT modified : {SHORT{0}, SHORT{1}}) {
        ComPtr<ILayout> source = newLayout("Vibration", -1);
        fillComponents(source.get());
        source->put_Modified(modified);
        const TreeContents components = contentsOf(storageOf(componentsOf(source.get()).get()).get());

        ILayout* raw = nullptr;
        ASSERT_EQ(source->Clone(&raw), S_OK);
        ComPtr<ILayout> clone(raw);
        ComPtr<ILayout> target = newLayout("Old", 0);
        putStream(storageOf(componentsOf(target.get()).get()).get(), u"Stale", {9});
        ASSERT_EQ(source->Copy(target.get()), S_OK);

        for (ILayout* copy : {clone.get(), target.get()}) {
            EXPECT_EQ(getText(copy, u"Name"), "Vibration");
            EXPECT_EQ(getText(copy, u"Default"), "-1");
            EXPECT_EQ(modifiedOf(copy), modified);
            EXPECT_NE(componentsOf(copy).get(), componentsOf(source.get()).get());
            EXPECT_EQ(contentsOf(storageOf(componentsOf(copy).get()).get()), components);
        }
        // The copies' trees are their own.
        ASSERT_EQ(componentsOf(clone.get())->Clear(), S_OK);
        ASSERT_EQ(storageOf(componentsOf(target.get()).get())->DestroyElement(u"Window"), S_OK);
        EXPECT_EQ(contentsOf(storageOf(componentsOf(source.get()).get()).get()), components);
    }
    ComPtr<ILayout> source = newLayout("S");
    EXPECT_EQ(source->Copy(nullptr), E_POINTER);
}

}  // namespace
}  // namespace nvdl::test
