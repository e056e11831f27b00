// The named collection: positions, unique names, per-item-class rules, look-ups, removal, clones
// and enumeration.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "TestHelpers.h"
#include "TestObjects.h"
#include "TestSetup.h"
#include "frame/ClassTable.h"
#include "nvdl/IParameter.h"

namespace nvdl::test {
namespace {

class Collection : public ::testing::Test {
protected:
    void use(const CLSID& itemClass) {
        if (owner) owner->Release();
        owner = CTestOwner::create(itemClass);
    }
    void TearDown() override {
        if (owner) owner->Release();
    }
    CObjectCollection& items() { return owner->items(); }

    // Adds a new test item named `name`; answers the status and keeps the index.
    HRESULT add(const char* name, Variant before = Variant(), Variant after = Variant()) {
        CTestItem* item = CTestItem::create();
        Bstr text{std::string_view(name)};
        item->put_Name(text.get());
        item->put_Id(text.get());
        Variant key;
        HRESULT h = items().Add(item->dispatch(), &key, &before, &after, &lastIndex);
        item->Release();
        return h;
    }
    HRESULT addParameter(const char* name, const char* value) {
        IDispatch* p = CParameterFactory();
        putText(p, u"Name", name);
        putText(p, u"Value", value);
        Variant key, before, after;
        HRESULT h = items().Add(p, &key, &before, &after, &lastIndex);
        p->Release();
        return h;
    }
    static IDispatch* CParameterFactory() {
        IDispatch* p = nullptr;
        createInstance(CLSID_CParameter, &p);
        return p;
    }
    std::vector<std::string> names() {
        std::vector<std::string> out;
        for (std::size_t i = 0; i < items().size(); ++i) out.push_back(getText(items().itemAt(i), u"Name"));
        return out;
    }

    CTestOwner* owner = nullptr;
    LONG lastIndex = -99;
};

TEST_F(Collection, DuplicateNamesAreNumbered) {
    use(CLSID_CSetup);
    add("A");
    add("A");
    add("a");
    add("run.dat");
    add("run.dat");
    add("C:\\data\\A");
    add("C:\\data\\A");  // renamed from the path: the folders go
    add("x.(1)");
    add("x.(1)");
    EXPECT_EQ(names(), (std::vector<std::string>{"A", "A(2)", "a(3)", "run.dat", "run(2)..dat", "C:\\data\\A",
                                                 "A(2)", "x.(1)", "x.(1)(2)"}));
}

TEST_F(Collection, RenamingDoesNotLookBack) {
    use(CLSID_CSetup);
    add("B(2)");
    add("B");
    add("B");  // B -> B(2) at item 1: item 0 is not asked again, so the name repeats
    EXPECT_EQ(names(), (std::vector<std::string>{"B(2)", "B", "B(2)"}));
}

TEST_F(Collection, WorkspacesGetTheNewNameAsPathToo) {
    use(CLSID_CWorkspace);
    add("W");
    add("W");
    EXPECT_EQ(getText(items().itemAt(1), u"FullPathName"), "W(2)");
}

TEST_F(Collection, ChannelNamesMayRepeatAndMeasurementsAreNotAsked) {
    use(CLSID_CInputChannel);
    add("ch");
    add("ch");
    EXPECT_EQ(names(), (std::vector<std::string>{"ch", "ch"}));
    use(CLSID_CMeasurement);
    add("m");
    add("m");
    EXPECT_EQ(names(), (std::vector<std::string>{"m", "m"}));
}

TEST_F(Collection, Positions) {
    use(CLSID_CSetup);
    for (const char* n : {"0", "1", "2", "3", "4"}) add(n);
    EXPECT_EQ(add("after3", Variant(), Variant::fromLong(3)), S_OK);
    EXPECT_EQ(lastIndex, 3);
    use(CLSID_CSetup);
    for (const char* n : {"0", "1", "2", "3", "4"}) add(n);
    EXPECT_EQ(add("after2", Variant(), Variant::fromLong(2)), S_OK);
    EXPECT_EQ(lastIndex, 3);
    EXPECT_EQ(add("before1", Variant::fromLong(1)), S_OK);
    EXPECT_EQ(lastIndex, 0);
    EXPECT_EQ(names().front(), "before1");
    EXPECT_EQ(add("x", Variant::fromLong(1), Variant::fromLong(1)), E_INVALIDARG);
    EXPECT_EQ(add("x", Variant::fromLong(-1)), E_INVALIDARG);
    EXPECT_EQ(add("x", Variant::fromAnsi("not a number")), S_OK);  // counts as absent: appended
    EXPECT_EQ(lastIndex, 7);
    Variant v;
    EXPECT_EQ(items().Add(nullptr, &v, &v, &v, &lastIndex), E_POINTER);
}

TEST_F(Collection, ItemsTakeTheOwnerAsParentAndMarkItModified) {
    use(CLSID_CSetup);
    add("A");
    Variant parent;
    ASSERT_EQ(latebound::get(items().itemAt(0), u"Parent", &parent), S_OK);
    EXPECT_EQ(parent.pdispVal, owner->dispatch());
    EXPECT_EQ(owner->modified(), 1);
}

TEST_F(Collection, ItemIgnoresCaseRemoveDoesNot) {
    use(CLSID_CSetup);
    add("Foo");
    add("Bar");
    IDispatch* found = nullptr;
    ASSERT_EQ(items().Item(Variant::fromAnsi("foo"), &found), S_OK);
    EXPECT_EQ(found, items().itemAt(0));
    found->Release();
    EXPECT_EQ(items().Item(Variant::fromLong(2), &found), E_INVALIDARG);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(items().Item(Variant::fromAnsi("nothing"), &found), E_INVALIDARG);
    ASSERT_EQ(items().Item(Variant::fromLong(1), &found), S_OK);
    found->Release();

    EXPECT_EQ(items().Remove(Variant::fromAnsi("foo")), E_INVALIDARG);
    EXPECT_EQ(items().Remove(Variant::fromDouble(1.5)), E_INVALIDARG);
    EXPECT_EQ(items().Remove(Variant::fromAnsi("Foo")), S_OK);
    EXPECT_EQ(names(), (std::vector<std::string>{"Bar"}));
}

TEST_F(Collection, RemoveDetachesAndEnumeratorKeepsItsSnapshot) {
    use(CLSID_CSetup);
    add("A");
    add("B");
    IDispatch* a = items().itemAt(0);
    a->AddRef();
    IUnknown* unknown = nullptr;
    ASSERT_EQ(items().get__NewEnum(&unknown), S_OK);
    auto* e = static_cast<IEnumVARIANT*>(unknown);
    owner->put_Modified(0);
    ASSERT_EQ(items().Remove(Variant::fromLong(0)), S_OK);
    EXPECT_EQ(owner->modified(), 1);
    Variant parent;
    latebound::get(a, u"Parent", &parent);
    EXPECT_EQ(parent.pdispVal, nullptr);

    Variant got[3];
    ULONG fetched = 0;
    EXPECT_EQ(e->Next(3, got, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(got[0].pdispVal, a);
    IEnumVARIANT* copy = nullptr;
    e->Reset();
    e->Skip(1);
    ASSERT_EQ(e->Clone(&copy), S_OK);
    VariantClear(&got[0]);  // Next fills its outputs as new
    EXPECT_EQ(copy->Next(1, got, &fetched), S_OK);
    EXPECT_EQ(getText(got[0].pdispVal, u"Name"), "B");
    copy->Release();
    e->Release();
    a->Release();
}

TEST_F(Collection, ClearMarksTheOwnerOnlyWhenThereWasSomething) {
    use(CLSID_CSetup);
    ASSERT_EQ(items().Clear(), S_OK);
    EXPECT_EQ(owner->modified(), 0);
    add("A");
    owner->put_Modified(0);
    items().Clear();
    EXPECT_EQ(owner->modified(), 1);
    EXPECT_EQ(items().size(), 0u);
}

TEST_F(Collection, ParametersMergeByNameIgnoringCase) {
    use(CLSID_CParameter);
    ASSERT_EQ(addParameter("Foo", "1"), S_OK);
    lastIndex = -99;
    ASSERT_EQ(addParameter("FOO", "2"), S_OK);
    EXPECT_EQ(lastIndex, -99);
    ASSERT_EQ(items().size(), 1u);
    EXPECT_EQ(getText(items().itemAt(0), u"Name"), "Foo");
    EXPECT_EQ(getText(items().itemAt(0), u"Value"), "2");
    // The index forgets a removed name, so the same name is added anew.
    ASSERT_EQ(items().Remove(Variant::fromAnsi("Foo")), S_OK);
    ASSERT_EQ(addParameter("foo", "3"), S_OK);
    EXPECT_EQ(items().size(), 1u);
}

TEST_F(Collection, ParametersAreCopiedAndNeedAName) {
    use(CLSID_CParameter);
    IDispatch* given = CParameterFactory();
    putText(given, u"Name", "Gain");
    Variant key, before, after;
    ASSERT_EQ(items().Add(given, &key, &before, &after, &lastIndex), S_OK);
    EXPECT_NE(items().itemAt(0), given);  // the collection keeps its own copy
    given->Release();

    IDispatch* blank = CParameterFactory();
    EXPECT_EQ(items().Add(blank, &key, &before, &after, &lastIndex), E_FAIL);
    EXPECT_EQ(pendingDescription(), "Parameter Name required (blank not allowed).");
    EXPECT_EQ(items().size(), 1u);
    blank->Release();
}

TEST_F(Collection, CloneCopiesItemsIntoAnUnownedCollection) {
    use(CLSID_CSetup);
    add("A");
    add("B");
    items().put_Name(Bstr(std::string_view("list")).get());
    ICollection* copy = nullptr;
    ASSERT_EQ(items().Clone(&copy), S_OK);
    LONG count = 0;
    copy->get_Count(&count);
    EXPECT_EQ(count, 2);
    Bstr name;
    copy->get_Name(name.out());
    EXPECT_EQ(name.ansi(), "list");
    IDispatch* first = nullptr;
    ASSERT_EQ(copy->Item(Variant::fromLong(0), &first), S_OK);
    EXPECT_NE(first, items().itemAt(0));
    EXPECT_EQ(getText(first, u"Name"), "A");
    first->Release();
    copy->Release();
}

TEST_F(Collection, ReferencesGoToTheOwner) {
    use(CLSID_CSetup);
    ULONG before = owner->AddRef();
    ULONG viaCollection = items().AddRef();
    EXPECT_EQ(viaCollection, before + 1);
    items().Release();
    owner->Release();
}

TEST_F(Collection, RemovingAMeasurementWritesTheDiagnostic) {
    use(CLSID_CMeasurement);
    add("m");
    auto path = std::filesystem::temp_directory_path() / "remove.txt";
    ASSERT_EQ(items().Remove(Variant::fromLong(0)), S_OK);
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, "cRef = 0");
}

// A setup's creator is normalised as it enters: trimmed, "Measure" when empty, and the kind of
// analysis when one of its sections is active, post-processing before impact.
TEST_F(Collection, SetupCreatorIsNormalised) {
    use(CLSID_CSetup);
    struct Case {
        const char* creator;
        SHORT postProcessing, impact;
        const char* expected;
    } cases[] = {
        {"  Front end  ", 0, 0, "Front end"}, {"   ", 0, 0, "Measure"},    {"x", -1, 0, "Post Process"},
        {"x", 0, -1, "Impact Wizard"},         {"x", -1, -1, "Post Process"}, {"x", 1, 1, "x"},
    };
    for (const Case& c : cases) {
        CTestSetup* setup = CTestSetup::create(c.creator, c.postProcessing, c.impact);
        Variant key, before, after;
        ASSERT_EQ(items().Add(setup->dispatch(), &key, &before, &after, &lastIndex), S_OK);
        EXPECT_EQ(setup->creator(), c.expected) << c.creator << " " << c.postProcessing << " " << c.impact;
        setup->Release();
    }
}

}  // namespace
}  // namespace nvdl::test
