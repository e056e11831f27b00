// The object frame: interfaces and references, late binding, error records, parents, property access
// by name and walks.
#include <gtest/gtest.h>

#include "TestHelpers.h"
#include "TestObjects.h"
#include "frame/ClassTable.h"
#include "nvdl/Identifiers.h"
#include "nvdl/ServerEntry.h"
#include "nvdl/ErrorInfo.h"

namespace nvdl::test {
namespace {

struct Item {
    CTestItem* object = CTestItem::create();
    IDispatch* d() { return object->dispatch(); }
    ~Item() { object->Release(); }
};

TEST(Frame, QueryInterfaceAnswersItsInterfacesWithAReference) {
    long objectsBefore = g_nObjects;
    CTestItem* item = CTestItem::create();
    EXPECT_EQ(g_nObjects, objectsBefore + 1);
    for (const IID* iid : {&IID_IUnknown, &IID_IDispatch, &IID_ITestItem}) {
        void* answer = nullptr;
        ASSERT_EQ(item->QueryInterface(*iid, &answer), S_OK);
        EXPECT_EQ(answer, item->dispatch());
        EXPECT_EQ(item->Release(), 1u);  // the answer carried a reference of its own
    }
    void* answer = item;
    EXPECT_EQ(item->QueryInterface(IID_ITestOwner, &answer), E_NOINTERFACE);
    EXPECT_EQ(answer, nullptr);
    EXPECT_EQ(item->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
    EXPECT_EQ(item->AddRef(), 2u);
    EXPECT_EQ(item->Release(), 1u);
    EXPECT_EQ(item->Release(), 0u);
    EXPECT_EQ(g_nObjects, objectsBefore);
}

TEST(Frame, TypeInfoIndexAndInterfaceChecks) {
    Item item;
    ITypeInfo* info = nullptr;
    EXPECT_EQ(item.d()->GetTypeInfo(1, 0, &info), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(item.d()->GetTypeInfo(0, 0, nullptr), E_POINTER);
    ASSERT_EQ(item.d()->GetTypeInfo(0, 0, &info), S_OK);
    info->Release();
    OLECHAR name[] = u"Name";
    OLECHAR* names[] = {name};
    DISPID id;
    EXPECT_EQ(item.d()->GetIDsOfNames(IID_ITestItem, names, 1, 0, &id), DISP_E_UNKNOWNINTERFACE);
    DISPPARAMS none{};
    EXPECT_EQ(item.d()->Invoke(1, IID_ITestItem, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
}

TEST(Frame, LateBoundCallsFindNamesAndCheckKindAndArguments) {
    Item item;
    ASSERT_EQ(putText(item.d(), u"nAmE", "Channel"), S_OK);  // names are found ignoring case
    EXPECT_EQ(getText(item.d(), u"NAME"), "Channel");
    DISPID id;
    EXPECT_EQ(latebound::memberId(item.d(), u"NoSuchThing", &id), DISP_E_UNKNOWNNAME);
    Variant result;
    // A method is not a property get, a property needs its argument, arguments must convert.
    EXPECT_EQ(invoke(item.d(), u"Clone", DISPATCH_PROPERTYGET, {}, &result), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(invoke(item.d(), u"Element", DISPATCH_PROPERTYGET, {}, &result), DISP_E_BADPARAMCOUNT);
    unsigned argErr = 99;
    EXPECT_EQ(invoke(item.d(), u"Element", DISPATCH_PROPERTYGET, {Variant::fromAnsi("two")}, &result, &argErr),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(argErr, 0u);
    EXPECT_EQ(invoke(item.d(), u"Count", DISPATCH_PROPERTYPUT, {Variant::fromDouble(1e12)}), DISP_E_OVERFLOW);
    // A put with an index argument before the value; the index converts from text.
    ASSERT_EQ(invoke(item.d(), u"Element", DISPATCH_PROPERTYPUT, {Variant::fromAnsi("2"), Variant::fromDouble(4.5)}), S_OK);
    ASSERT_EQ(invoke(item.d(), u"Element", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {Variant::fromLong(2)}, &result), S_OK);
    EXPECT_EQ(result.vt, VT_R4);
    EXPECT_FLOAT_EQ(result.fltVal, 4.5f);
    // The last output is the result; the one before it is filled through a by-reference variant.
    Variant head, tail;
    ASSERT_EQ(invoke(item.d(), u"Split", DISPATCH_METHOD, {Variant::fromLong(4), Variant::byRef(&head)}, &tail), S_OK);
    EXPECT_EQ(textOf(head), "Chan");
    EXPECT_EQ(textOf(tail), "nel");
}

TEST(Frame, DescriptionShowsTheDispatchView) {
    auto member = [](std::string_view name, INVOKEKIND kind) -> const MemberEntry* {
        for (const MemberEntry& m : CTestItem::description().members())
            if (m.name == name && m.desc.invkind == kind) return &m;
        return nullptr;
    };
    const MemberEntry* split = member("Split", INVOKE_FUNC);
    ASSERT_TRUE(split);
    EXPECT_EQ(split->desc.cParams, 2);
    EXPECT_EQ(split->params[1].flags, PARAMFLAG_FOUT);
    EXPECT_EQ(split->desc.elemdescFunc.vt, VT_VARIANT);  // the last output is the return value
    ASSERT_TRUE(member("When", INVOKE_PROPERTYGET) && member("When", INVOKE_PROPERTYPUT));
    EXPECT_EQ(member("When", INVOKE_PROPERTYGET)->desc.elemdescFunc.vt, VT_DATE);
    EXPECT_EQ(member("When", INVOKE_PROPERTYPUT)->params[0].type.vt, VT_DATE);
    ASSERT_TRUE(member("Clone", INVOKE_FUNC) && member("Parent", INVOKE_PROPERTYGET));
    EXPECT_EQ(member("Clone", INVOKE_FUNC)->desc.elemdescFunc.vt, VT_PTR);
    EXPECT_EQ(member("Parent", INVOKE_PROPERTYGET)->desc.elemdescFunc.vt, VT_DISPATCH);
}

TEST(Frame, PropertyWalkSkipsHiddenObjectsArraysAndArguments) {
    Item item;
    LONG count = 0;
    ASSERT_EQ(item.object->get_PropertiesCount(&count), S_OK);
    std::vector<std::string> names;
    for (LONG i = 0; i < count; ++i) {
        Bstr name;
        ASSERT_EQ(item.object->get_PropertyName(i, name.out()), S_OK);
        names.push_back(name.ansi());
    }
    std::vector<std::string> expected = {"Name", "Id", "FullPathName", "Count", "Level", "Gain", "Scale",
                                         "When", "Enabled", "Note", "PropertiesCount"};
    EXPECT_EQ(names, expected);
    BSTR untouched = reinterpret_cast<BSTR>(0x1);
    EXPECT_EQ(item.object->get_PropertyName(count, &untouched), S_OK);
    EXPECT_EQ(untouched, reinterpret_cast<BSTR>(0x1));
    EXPECT_EQ(item.object->get_PropertyName(-1, &untouched), S_OK);
}

TEST(Frame, PutPropertyConvertsByTheDeclaredType) {
    Item item;
    auto put = [&](const char* name, const char* value) {
        return item.object->put_Property(Bstr(std::string_view(name)).get(), Bstr(std::string_view(value)).get());
    };
    auto get = [&](const char* name) {
        Bstr value;
        HRESULT h = item.object->get_Property(Bstr(std::string_view(name)).get(), value.out());
        return FAILED(h) ? std::string("<failed>") : value.ansi();
    };
    // A refused text leaves the value as it was.
    struct Case {
        const char *name, *text;
        HRESULT status;
        const char* readBack;
    } cases[] = {
        {"Count", "42", S_OK, "42"},          {"Count", "abc", E_INVALIDARG, "42"},
        {"Level", "-7", S_OK, "-7"},          {"Gain", "2.5", S_OK, "2.5"},
        {"Scale", "1e-3", S_OK, "0.001"},     {"Scale", "x1", E_INVALIDARG, "0.001"},
        {"Name", "Probe 1", S_OK, "Probe 1"}, {"Note", "free text", S_OK, "free text"},
        {"When", "3/14/2024 1:30:00 PM", S_OK, "3/14/2024 1:30:00 PM"},
        {"When", "not a date", E_INVALIDARG, "3/14/2024 1:30:00 PM"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(put(c.name, c.text), c.status) << c.name << " " << c.text;
        EXPECT_EQ(get(c.name), c.readBack) << c.name << " " << c.text;
    }
    EXPECT_EQ(put("Enabled", "1"), S_OK);
    SHORT enabled = 0;
    item.object->get_Enabled(&enabled);
    EXPECT_EQ(enabled, 1);  // 1, not -1
    // Names compare exactly here. The message of a failed put lasts until the next late-bound call,
    // which clears it before it runs; a blank text is refused without a message.
    EXPECT_EQ(put("count", "1"), E_FAIL);
    EXPECT_EQ(pendingDescription(), "count does not have property put.");
    getText(item.d(), u"Name");
    EXPECT_EQ(peekErrorInfo(), nullptr);
    EXPECT_EQ(put("Count", ""), E_FAIL);
    EXPECT_EQ(peekErrorInfo(), nullptr);
    EXPECT_EQ(get("Nothing"), "<failed>");
}

TEST(Frame, DeadParentIsAnsweredAsNone) {
    Item child;
    CTestItem* parent = CTestItem::create();
    child.object->put_Parent(parent->dispatch());
    IDispatch* seen = nullptr;
    ASSERT_EQ(child.object->get_Parent(&seen), S_OK);
    EXPECT_EQ(seen, parent->dispatch());
    seen->Release();
    parent->Release();
    EXPECT_EQ(child.object->get_Parent(&seen), E_POINTER);
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(child.object->get_Parent(&seen), S_OK);  // cleared: now simply none
}

// Every member with an output, of every registered class, answers a null output with E_POINTER.
TEST(Frame, NullOutputsAreRefusedByEveryMember) {
    std::vector<IDispatch*> objects;
    for (const ClassInfo* info : registeredClasses()) objects.push_back(info->create());
    objects.push_back(CTestItem::create()->dispatch());
    CTestOwner* owner = CTestOwner::create(CLSID_CParameter);
    objects.push_back(owner->dispatch());
    ASSERT_GE(objects.size(), 3u);
    for (IDispatch* object : objects) expectNullOutputsRefused(object);
    expectNullOutputsRefused(&owner->items());  // the one table every collection interface shares
    for (IDispatch* object : objects) object->Release();
}

TEST(ServerEntry, FactoriesAndUnloading) {
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(DllGetClassObject(CLSID_CParameter, IID_IClassFactory, &first), S_OK);
    ASSERT_EQ(DllGetClassObject(CLSID_CParameter, IID_IClassFactory, &second), S_OK);
    EXPECT_EQ(first, second);
    auto* factory = static_cast<IClassFactory*>(first);
    void* object = nullptr;
    Item outer;
    EXPECT_EQ(factory->CreateInstance(outer.d(), IID_IDispatch, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(DllGetClassObject(CLSID_NULL, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);

    long before = g_nObjects;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, &object), S_OK);
    EXPECT_EQ(g_nObjects, before + 1);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    static_cast<IDispatch*>(object)->Release();
    EXPECT_EQ(g_nObjects, before);
    factory->LockServer(1);
    EXPECT_EQ(g_nLocks, 1);
    factory->LockServer(0);
    factory->Release();
    static_cast<IClassFactory*>(second)->Release();
}

TEST(ServerEntry, ProgIdsCompareIgnoringCase) {
    CLSID clsid;
    ASSERT_EQ(CLSIDFromProgID(u"NV_BENCH.PARAMETER", &clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_CParameter);
    EXPECT_EQ(CLSIDFromProgID(u"nv_bench.unknown", &clsid), CO_E_CLASSSTRING);
}

}  // namespace
}  // namespace nvdl::test
