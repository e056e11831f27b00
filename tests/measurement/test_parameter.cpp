// Parameters: names, values, the Modified climb, copies, the 200-byte stream record; fields as
// views of an owner's properties.
#include <gtest/gtest.h>

#include "../frame/TestHelpers.h"
#include "../frame/TestObjects.h"
#include "frame/ClassTable.h"
#include "measurement/Field.h"
#include "nvdl/IParameter.h"
#include "platform/MemoryStream.h"
#include "nvdl/Persist.h"

namespace nvdl::test {
namespace {

IParameter* newParameter(const char* name, const char* value) {
    IDispatch* object = nullptr;
    EXPECT_EQ(createInstance(CLSID_CParameter, &object), S_OK);
    auto* p = static_cast<IParameter*>(object);
    if (name) p->put_Name(Bstr(std::string_view(name)).get());
    if (value) p->put_Value(Bstr(std::string_view(value)).get());
    return p;
}

TEST(Parameter, BlankNamesAreRefusedAndACloneTakesNameValueAndModifiedButNoParent) {
    IParameter* p = newParameter("Gain", "2");
    EXPECT_EQ(p->put_Name(Bstr(std::string_view(" \t ")).get()), E_FAIL);
    EXPECT_EQ(p->put_Name(nullptr), E_FAIL);
    EXPECT_EQ(getText(p, u"Name"), "Gain");
    p->put_Modified(0);
    IParameter* c = nullptr;
    ASSERT_EQ(p->Clone(&c), S_OK);
    EXPECT_EQ(getText(c, u"Name") + "=" + getText(c, u"Value"), "Gain=2");
    SHORT modified = -1;
    EXPECT_EQ(c->get_Modified(&modified), S_OK);
    EXPECT_EQ(modified, 0);
    IDispatch* parent = reinterpret_cast<IDispatch*>(0x1);
    EXPECT_EQ(c->get_Parent(&parent), S_OK);
    EXPECT_EQ(parent, nullptr);
    EXPECT_EQ(p->put_Name(Bstr(std::string_view(" Offset ")).get()), S_OK);
    EXPECT_EQ(getText(p, u"Name"), " Offset ");  // stored untrimmed
    c->Release();
    p->Release();
}

TEST(Parameter, ModifiedClimbsOnlyWhenSet) {
    CTestOwner* owner = CTestOwner::create(CLSID_CParameter);
    IParameter* p = newParameter("Gain", "1");
    Variant key, before, after;
    LONG index;
    ASSERT_EQ(owner->items().Add(p, &key, &before, &after, &index), S_OK);
    p->Release();
    auto* kept = static_cast<IParameter*>(owner->items().itemAt(0));
    owner->put_Modified(0);
    // The test owner answers to none of the parameter's parent kinds, so the climb stops there;
    // what matters here is that clearing never climbs and that a dead parent is no parent.
    EXPECT_EQ(kept->put_Modified(0), S_OK);
    EXPECT_EQ(owner->modified(), 0);
    EXPECT_EQ(kept->put_Value(Bstr(std::string_view("")).get()), S_OK);
    EXPECT_EQ(getText(kept, u"Value"), "");
    kept->AddRef();
    owner->Release();
    IDispatch* parent = nullptr;
    EXPECT_EQ(kept->get_Parent(&parent), S_OK);  // the owner detached it when it went
    EXPECT_EQ(parent, nullptr);
    kept->Release();
}

TEST(Parameter, StreamRecordRoundTripsAndCutsAt99) {
    std::string longName(120, 'n'), longValue(150, 'v');
    IParameter* p = newParameter(longName.c_str(), longValue.c_str());
    EXPECT_EQ(getText(p, u"Name"), longName);  // stored whole
    IPersistStream* persist = nullptr;
    ASSERT_EQ(p->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)), S_OK);
    CLSID clsid{};
    persist->GetClassID(&clsid);
    EXPECT_EQ(clsid, CLSID_CParameter);
    std::uint64_t size = 0;
    persist->GetSizeMax(&size);
    EXPECT_EQ(size, 200u);
    EXPECT_EQ(persist->IsDirty(), S_OK);

    MemoryStream* stream = MemoryStream::create();
    ASSERT_EQ(persist->Save(stream, 1), S_OK);
    EXPECT_EQ(persist->IsDirty(), S_FALSE);
    ASSERT_EQ(stream->bytes().size(), 200u);
    EXPECT_EQ(stream->bytes()[99], 0);
    EXPECT_EQ(stream->bytes()[199], 0);

    IParameter* loaded = newParameter(nullptr, nullptr);
    IPersistStream* loader = nullptr;
    loaded->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&loader));
    stream->Seek(0, STREAM_SEEK_SET, nullptr);
    ASSERT_EQ(loader->Load(stream), S_OK);
    EXPECT_EQ(getText(loaded, u"Name"), std::string(99, 'n'));
    EXPECT_EQ(getText(loaded, u"Value"), std::string(99, 'v'));

    // A short record fails and leaves the parameter as it was.
    MemoryStream* shortStream = MemoryStream::create(std::vector<std::uint8_t>(150, 'x'));
    EXPECT_EQ(loader->Load(shortStream), E_FAIL);
    EXPECT_EQ(getText(loaded, u"Name"), std::string(99, 'n'));

    shortStream->Release();
    loader->Release();
    loaded->Release();
    stream->Release();
    persist->Release();
    p->Release();
}

TEST(Fields, ListScalarPropertiesAndReadWriteThem) {
    CTestItem* item = CTestItem::create();
    putText(item->dispatch(), u"Name", "Probe");
    CFields* fields = CFields::create();
    fields->SetInterface(IID_ITestItem);
    ITypeLib* library = nullptr;
    ASSERT_EQ(LoadRegTypeLib(LIBID_NVDL, 1, 0, 0, &library), S_OK);
    ASSERT_EQ(fields->Load(library, item->dispatch()), S_OK);
    LONG count = 0;
    fields->get_Count(&count);
    EXPECT_EQ(count, 11);
    ASSERT_EQ(fields->Load(library, item->dispatch()), S_OK);  // fills only an empty list
    fields->get_Count(&count);
    EXPECT_EQ(count, 11);

    IField* field = nullptr;
    ASSERT_EQ(fields->get_Item(Variant::fromAnsi("NAME"), &field), S_OK);
    EXPECT_EQ(getText(field, u"Value"), "Probe");
    field->Release();

    ASSERT_EQ(fields->get_Item(Variant::fromAnsi("Count"), &field), S_OK);
    EXPECT_EQ(field->put_Value(Bstr(std::string_view("17")).get()), S_OK);
    EXPECT_EQ(getText(item->dispatch(), u"Count"), "17");
    EXPECT_EQ(field->put_Value(Bstr(std::string_view("seventeen")).get()), E_FAIL);
    field->Release();

    EXPECT_EQ(fields->get_Item(Variant::fromAnsi("Nothing"), &field), E_INVALIDARG);
    EXPECT_EQ(fields->get_Item(Variant::fromLong(12), &field), E_INVALIDARG);
    ASSERT_EQ(fields->get_Item(Variant::fromLong(11), &field), S_OK);  // the count itself passes
    Bstr value;
    EXPECT_EQ(field->get_Value(value.out()), E_FAIL);
    field->Release();

    fields->Remove("name");
    fields->get_Count(&count);
    EXPECT_EQ(count, 10);
    fields->Release();
    item->Release();
}

}  // namespace
}  // namespace nvdl::test
