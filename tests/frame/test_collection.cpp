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

    // Adds an object, handing over the caller's reference; answers the status and keeps the index.
    HRESULT addObject(IDispatch* object, Variant before = Variant(), Variant after = Variant()) {
        Variant key;
        HRESULT h = items().Add(object, &key, &before, &after, &lastIndex);
        object->Release();
        return h;
    }
    // Adds a new test item with `name` as its Name and Id.
    HRESULT add(const char* name, Variant before = Variant(), Variant after = Variant()) {
        CTestItem* item = CTestItem::create();
        Bstr text{std::string_view(name)};
        item->put_Name(text.get());
        item->put_Id(text.get());
        return addObject(item->dispatch(), std::move(before), std::move(after));
    }
    static IDispatch* newParameter(const char* name, const char* value) {
        IDispatch* p = nullptr;
        createInstance(CLSID_CParameter, &p);
        if (name) putText(p, u"Name", name);
        putText(p, u"Value", value);
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

// Names are made unique as items enter, except where they may repeat (channels) or items are known
// by their Id (measurements).
TEST_F(Collection, EnteringNamesAreNumberedByItemClass) {
    struct Case {
        const CLSID* itemClass;
        std::vector<const char*> added;
        std::vector<std::string> expected;
    } cases[] = {
        // A name from a path loses its folders when renamed.
        {&CLSID_CSetup, {"A", "A", "a", "run.dat", "run.dat", "C:\\data\\A", "C:\\data\\A", "x.(1)", "x.(1)"},
         {"A", "A(2)", "a(3)", "run.dat", "run(2)..dat", "C:\\data\\A", "A(2)", "x.(1)", "x.(1)(2)"}},
        // B -> B(2) at item 1: item 0 is not asked again, so the name repeats.
        {&CLSID_CSetup, {"B(2)", "B", "B"}, {"B(2)", "B", "B(2)"}},
        {&CLSID_CInputChannel, {"ch", "ch"}, {"ch", "ch"}},
        {&CLSID_CMeasurement, {"m", "m"}, {"m", "m"}},
        {&CLSID_CWorkspace, {"W", "W"}, {"W", "W(2)"}},
    };
    for (const Case& c : cases) {
        use(*c.itemClass);
        for (const char* name : c.added) add(name);
        EXPECT_EQ(names(), c.expected) << c.added.front();
    }
    EXPECT_EQ(getText(items().itemAt(1), u"FullPathName"), "W(2)");  // a workspace's path follows
}

// Positions count as clients have always counted them: `before` from 1, and an `after` near the end
// inserts before the last item rather than behind it.
TEST_F(Collection, Positions) {
    use(CLSID_CSetup);
    for (const char* n : {"0", "1", "2", "3", "4"}) add(n);
    EXPECT_EQ(add("after2", Variant(), Variant::fromLong(2)), S_OK);
    EXPECT_EQ(lastIndex, 3);
    EXPECT_EQ(add("after4", Variant(), Variant::fromLong(4)), S_OK);
    EXPECT_EQ(lastIndex, 4);
    EXPECT_EQ(add("before1", Variant::fromLong(1)), S_OK);
    EXPECT_EQ(lastIndex, 0);
    EXPECT_EQ(add("x", Variant::fromLong(1), Variant::fromLong(1)), E_INVALIDARG);
    EXPECT_EQ(add("x", Variant::fromLong(-1)), E_INVALIDARG);
    EXPECT_EQ(add("last", Variant::fromAnsi("not a number")), S_OK);  // counts as absent: appended
    EXPECT_EQ(names(), (std::vector<std::string>{"before1", "0", "1", "2", "after2", "after4", "3", "4", "last"}));
    Variant v;
    EXPECT_EQ(items().Add(nullptr, &v, &v, &v, &lastIndex), E_POINTER);
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

// Items take the owner as Parent and lose it when removed or cleared, and each change marks the
// owner modified; an enumerator keeps the items it was made with.
TEST_F(Collection, ItemsAreAttachedToTheOwnerUntilRemovedOrCleared) {
    use(CLSID_CSetup);
    ASSERT_EQ(items().Clear(), S_OK);
    EXPECT_EQ(owner->modified(), 0);  // there was nothing to clear
    add("A");
    add("B");
    EXPECT_EQ(owner->modified(), 1);
    IDispatch* a = items().itemAt(0);
    IDispatch* b = items().itemAt(1);
    a->AddRef();
    b->AddRef();
    auto parentOf = [](IDispatch* item) {
        Variant parent;
        EXPECT_EQ(latebound::get(item, u"Parent", &parent), S_OK);
        return parent.pdispVal;
    };
    EXPECT_EQ(parentOf(a), owner->dispatch());
    IUnknown* unknown = nullptr;
    ASSERT_EQ(items().get__NewEnum(&unknown), S_OK);
    auto* e = static_cast<IEnumVARIANT*>(unknown);
    owner->put_Modified(0);
    ASSERT_EQ(items().Remove(Variant::fromLong(0)), S_OK);
    EXPECT_EQ(owner->modified(), 1);
    EXPECT_EQ(parentOf(a), nullptr);

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
    EXPECT_EQ(got[0].pdispVal, b);
    copy->Release();
    e->Release();

    owner->put_Modified(0);
    ASSERT_EQ(items().Clear(), S_OK);
    EXPECT_EQ(owner->modified(), 1);
    EXPECT_EQ(items().size(), 0u);
    EXPECT_EQ(parentOf(b), nullptr);
    a->Release();
    b->Release();
}

// A parameter enters as a copy of its own and needs a name; a second one of the same name (case
// ignored) only hands its value to the first.
TEST_F(Collection, ParametersAreCopiedNamedAndMergedByName) {
    use(CLSID_CParameter);
    IDispatch* given = newParameter("Foo", "1");
    given->AddRef();
    ASSERT_EQ(addObject(given), S_OK);
    EXPECT_NE(items().itemAt(0), given);
    given->Release();
    lastIndex = -99;
    ASSERT_EQ(addObject(newParameter("FOO", "2")), S_OK);
    EXPECT_EQ(lastIndex, -99);
    ASSERT_EQ(items().size(), 1u);
    EXPECT_EQ(getText(items().itemAt(0), u"Name"), "Foo");
    EXPECT_EQ(getText(items().itemAt(0), u"Value"), "2");
    // The index forgets a removed name, so the same name is added anew.
    ASSERT_EQ(items().Remove(Variant::fromAnsi("Foo")), S_OK);
    ASSERT_EQ(addObject(newParameter("foo", "3")), S_OK);
    EXPECT_EQ(items().size(), 1u);

    EXPECT_EQ(addObject(newParameter(nullptr, "4")), E_FAIL);
    EXPECT_EQ(pendingDescription(), "Parameter Name required (blank not allowed).");
    EXPECT_EQ(items().size(), 1u);
}

// The embedded collection counts its references on its owner; a clone is an object of its own, with
// copies of the items.
TEST_F(Collection, ReferencesGoToTheOwnerAndACloneCountsItsOwn) {
    use(CLSID_CSetup);
    ULONG before = owner->AddRef();
    EXPECT_EQ(items().AddRef(), before + 1);
    items().Release();
    owner->Release();

    add("A");
    add("B");
    items().put_Name(Bstr(std::string_view("list")).get());
    ICollection* copy = nullptr;
    ASSERT_EQ(items().Clone(&copy), S_OK);
    EXPECT_EQ(getText(copy, u"Count"), "2");
    EXPECT_EQ(getText(copy, u"Name"), "list");
    IDispatch* first = nullptr;
    ASSERT_EQ(copy->Item(Variant::fromLong(0), &first), S_OK);
    EXPECT_NE(first, items().itemAt(0));
    EXPECT_EQ(getText(first, u"Name"), "A");
    first->Release();
    EXPECT_EQ(copy->Release(), 0u);
}

TEST_F(Collection, RemovingAMeasurementWritesTheDiagnostic) {
    use(CLSID_CMeasurement);
    add("m");
    auto path = std::filesystem::temp_directory_path() / "remove.txt";
    std::filesystem::remove(path);
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
        setup->AddRef();
        ASSERT_EQ(addObject(setup->dispatch()), S_OK);
        EXPECT_EQ(setup->creator(), c.expected) << c.creator << " " << c.postProcessing << " " << c.impact;
        setup->Release();
    }
    EXPECT_EQ(items().size(), std::size(cases));  // each setup was kept
}

}  // namespace
}  // namespace nvdl::test
