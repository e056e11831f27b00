// The saving section and its save functions: the parameter-like rules of a save function, the two
// lists of a saving section, its stream in all three generations and a damaged stream refused.
#include "SectionTestSupport.h"
#include "frame/ObjectCollection.h"
#include "nvdl/ISaveFunction.h"
#include "nvdl/ISaving.h"
#include "setup/Saving.h"

namespace nvdl::test {
namespace {

ComPtr<ISaving> newSaving() { return ComPtr<ISaving>(static_cast<ISaving*>(CSaving::create())); }

ComPtr<ISaveFunction> newFunction(const char* name, const char* value = "") {
    ComPtr<IDispatch> object = newObject(u"nv_bench.savefunction");
    ComPtr<ISaveFunction> function;
    EXPECT_EQ(object->QueryInterface(IID_ISaveFunction, reinterpret_cast<void**>(function.out())), S_OK);
    EXPECT_EQ(function->put_Name(Bstr(std::string_view(name)).get()), S_OK);
    EXPECT_EQ(function->put_Value(Bstr(std::string_view(value)).get()), S_OK);
    return function;
}

ComPtr<ICollection> listOf(ISaving* saving, bool history) {
    ComPtr<ICollection> list;
    EXPECT_EQ(history ? saving->get_TimeHistoryFunctions(list.out()) : saving->get_MeasFunctions(list.out()), S_OK);
    return list;
}

HRESULT add(ICollection* list, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return list->Add(item, &key, &before, &after, &index);
}

void addNames(ISaving* saving, bool history, std::initializer_list<const char*> names) {
    ComPtr<ICollection> list = listOf(saving, history);
    for (const char* name : names) ASSERT_EQ(add(list.get(), newFunction(name).get()), S_OK) << name;
}

// The names of a list, joined by "|", and each item's value after "=" where it has one.
std::string contents(ISaving* saving, bool history) {
    ComPtr<ICollection> list = listOf(saving, history);
    LONG count = 0;
    list->get_Count(&count);
    std::string text;
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> item;
        EXPECT_EQ(list->Item(Variant::fromLong(i), item.out()), S_OK);
        if (!text.empty()) text += "|";
        text += getText(item.get(), u"Name");
        const std::string value = getText(item.get(), u"Value");
        if (!value.empty()) text += "=" + value;
    }
    return text;
}

// Save functions.

TEST(SaveFunction, BlankNamesAreRefusedWithTheParameterMessage) {
    ComPtr<ISaveFunction> f = newFunction("Autopower");
    for (const char* blank : {"", " ", "\t  \t"}) {
        EXPECT_EQ(f->put_Name(Bstr(std::string_view(blank)).get()), E_FAIL) << "[" << blank << "]";
        EXPECT_EQ(pendingDescription(), "Parameter Name required (blank not allowed).");
    }
    EXPECT_EQ(f->put_Name(nullptr), E_FAIL);
    EXPECT_EQ(getText(f.get(), u"Name"), "Autopower");
}

// A text longer than 99 characters is kept whole but stored cut.
TEST(SaveFunction, StreamKeepsNinetyNineCharacters) {
    const std::string longName(120, 'n'), longValue(101, 'v');
    struct Case {
        std::string name, value;
    } cases[] = {{"FRF", ""}, {"Spectrum", "1;2"}, {longName, longValue}, {std::string(99, 'x'), "y"}};
    for (const Case& c : cases) {
        ComPtr<ISaveFunction> f = newFunction(c.name.c_str(), c.value.c_str());
        EXPECT_EQ(getText(f.get(), u"Name"), c.name);
        std::vector<std::uint8_t> bytes = savedBytes(f.get());
        ASSERT_EQ(bytes.size(), 200u);
        ComPtr<ISaveFunction> target = newFunction("old", "old");
        ASSERT_EQ(loadBytes(target.get(), bytes), S_OK);
        EXPECT_EQ(getText(target.get(), u"Name"), c.name.substr(0, 99));
        EXPECT_EQ(getText(target.get(), u"Value"), c.value.substr(0, 99));
        EXPECT_TRUE(FAILED(loadBytes(target.get(), {bytes.begin(), bytes.begin() + 199})));
        EXPECT_EQ(getText(target.get(), u"Name"), c.name.substr(0, 99));
    }
}

TEST(SaveFunction, ModifiedClimbsToTheSavingSection) {
    ComPtr<ISaving> saving = newSaving();
    ComPtr<ISaveFunction> f = newFunction("Autopower");
    ASSERT_EQ(add(listOf(saving.get(), false).get(), f.get()), S_OK);
    ASSERT_EQ(saving->put_Modified(0), S_OK);
    ASSERT_EQ(f->put_Value(Bstr(std::string_view("")).get()), S_OK);
    SHORT modified = 0;
    ASSERT_EQ(saving->get_Modified(&modified), S_OK);
    EXPECT_NE(modified, 0);
    ASSERT_EQ(saving->put_Modified(0), S_OK);
    ASSERT_EQ(f->put_Modified(0), S_OK);
    ASSERT_EQ(saving->get_Modified(&modified), S_OK);
    EXPECT_EQ(modified, 0);
}

// The saving section.

TEST(Saving, NewSectionDefaultsAndTranslations) {
    ComPtr<ISaving> saving = newSaving();
    EXPECT_EQ(contents(saving.get(), false), "");
    EXPECT_EQ(contents(saving.get(), true), "");
    expectProperties(saving.get(), {{"SaveToDisk", "0"}, {"DelayTime", "15"}, {"CreateTimeHistory", "0"},
                                    {"SaveBlockDataToDisk", "0"}, {"Percentile", "70"}});
    expectTranslations(saving.get(), {{1001, "Time record"}, {1302, "Hanning"}, {106, "A"}, {2000, ""}, {0, ""}});
}

TEST(Saving, DuplicateNamesMergeIntoTheFirst) {
    ComPtr<ISaving> saving = newSaving();
    ComPtr<ICollection> list = listOf(saving.get(), false);
    ASSERT_EQ(add(list.get(), newFunction("Autopower", "1").get()), S_OK);
    ASSERT_EQ(add(list.get(), newFunction("FRF", "2").get()), S_OK);
    ASSERT_EQ(add(list.get(), newFunction("AUTOPOWER", "3").get()), S_OK);
    EXPECT_EQ(contents(saving.get(), false), "Autopower=3|FRF=2");
    EXPECT_EQ(contents(saving.get(), true), "");
}

TEST(Saving, CloneIsDeep) {
    ComPtr<ISaving> saving = newSaving();
    ASSERT_EQ(putText(saving.get(), u"DelayTime", "30"), S_OK);
    addNames(saving.get(), false, {"Autopower", "FRF"});
    addNames(saving.get(), true, {"RMS Time History"});
    ComPtr<ISaving> copy;
    ASSERT_EQ(saving->Clone(copy.out()), S_OK);
    EXPECT_EQ(getText(copy.get(), u"DelayTime"), "30");
    EXPECT_EQ(contents(copy.get(), false), "Autopower|FRF");
    EXPECT_EQ(contents(copy.get(), true), "RMS Time History");

    ComPtr<IDispatch> original, cloned, parent;
    ASSERT_EQ(listOf(saving.get(), false)->Item(Variant::fromLong(0), original.out()), S_OK);
    ASSERT_EQ(listOf(copy.get(), false)->Item(Variant::fromLong(0), cloned.out()), S_OK);
    EXPECT_NE(original.get(), cloned.get());
    ASSERT_EQ(putText(cloned.get(), u"Name", "Crosspower"), S_OK);
    EXPECT_EQ(contents(saving.get(), false), "Autopower|FRF");
    Variant owner;
    ASSERT_EQ(latebound::get(cloned.get(), u"Parent", &owner), S_OK);
    EXPECT_EQ(owner.pdispVal, static_cast<IDispatch*>(copy.get()));

    // Copy into a section that had lists of its own replaces them.
    ComPtr<ISaving> target = newSaving();
    addNames(target.get(), false, {"Old"});
    ASSERT_EQ(saving->Copy(target.get()), S_OK);
    EXPECT_EQ(contents(target.get(), false), "Autopower|FRF");
}

// The record as the stream keeps it: each field at its offset.
struct SavingBytes {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(284, 0);
    SavingBytes& tag(std::int32_t tag) { return put32(8, tag); }
    SavingBytes& put16(std::size_t at, std::int16_t v) {
        le::put16(bytes.data() + at, static_cast<std::uint16_t>(v));
        return *this;
    }
    SavingBytes& put32(std::size_t at, std::int32_t v) {
        le::put32(bytes.data() + at, static_cast<std::uint32_t>(v));
        return *this;
    }
    SavingBytes& cut(std::size_t size) {
        bytes.resize(size);
        return *this;
    }
    SavingBytes& text(const std::string& t) {
        bytes.insert(bytes.end(), t.begin(), t.end());
        return *this;
    }
};

SavingBytes newestRecord() {
    SavingBytes b;
    b.put16(0, -1).put32(4, 14).tag(20080417).put32(12, 2).put16(16, -1).put32(20, 45).put16(24, -1);
    b.put32(28, 17).put32(32, 1).put16(36, -1).put16(38, 1).put16(40, -1).put16(42, 1);
    le::putF32(b.bytes.data() + 44, 95.5f);
    return b;
}

const std::vector<PropertyText> kNewestValues = {
    {"SaveToDisk", "-1"}, {"EveryAverages", "-1"}, {"DelayTime", "45"}, {"CreateTimeHistory", "-1"},
    {"SaveTimeHistoryToDisk", "-1"}, {"SaveTimeHistoryToWorkspace", "1"}, {"SaveBlockDataToWorkspace", "-1"},
    {"SaveBlockDataToDisk", "1"}, {"Percentile", "95.5"}};

TEST(Saving, WritesTheNewestRecordThenTheTexts) {
    ComPtr<ISaving> saving = newSaving();
    for (const PropertyText& p : kNewestValues) ASSERT_EQ(putText(saving.get(), widen(p.name), p.text), S_OK);
    addNames(saving.get(), false, {"Autopower", "FRF"});
    addNames(saving.get(), true, {"RMS Time History"});
    SavingBytes expected = newestRecord();
    expected.text(std::string("Autopower;FRF\0", 14)).text(std::string("RMS Time History\0", 17));
    EXPECT_EQ(savedBytes(saving.get()), expected.bytes);

    ComPtr<IPersistStream> persist;
    ASSERT_EQ(saving->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out())), S_OK);
    std::uint64_t size = 0;
    ASSERT_EQ(persist->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size, expected.bytes.size());
    CLSID clsid{};
    ASSERT_EQ(persist->GetClassID(&clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_CSaving);

    ComPtr<ISaving> empty = newSaving();
    const std::vector<std::uint8_t> bare = savedBytes(empty.get());
    ASSERT_EQ(bare.size(), 284u);
    EXPECT_EQ(le::i32(bare.data() + 4), 0);
    EXPECT_EQ(le::i32(bare.data() + 28), 0);
}

// Records of each generation built field by field: what a generation lacks keeps its value, and
// only the newest carries the time-history list.
TEST(Saving, ReadsEveryGeneration) {
    struct Case {
        const char* label;
        SavingBytes bytes;
        std::vector<PropertyText> expected;
        const char *meas, *history;
    } cases[] = {
        {"oldest", SavingBytes{}.put16(0, -1).put32(4, 9).tag(20030822).cut(12).text(std::string("Spectrum\0", 9)),
         {{"SaveToDisk", "-1"}, {"EveryAverages", "0"}, {"DelayTime", "15"}, {"Percentile", "70"}},
         "Spectrum", "Kept"},
        {"middle", SavingBytes{}.put32(4, 0).tag(20070219).put32(12, 0).put16(16, -1).put32(20, 60).cut(24),
         {{"SaveToDisk", "0"}, {"EveryAverages", "-1"}, {"DelayTime", "60"}, {"CreateTimeHistory", "0"}}, "", "Kept"},
        {"newest", newestRecord().text(std::string("A;b;;  ;a\0", 10)).put32(4, 10).text(std::string("Peak\0", 5)).put32(28, 5),
         kNewestValues, "A|b", "Peak"},
        {"later tag", newestRecord().tag(20991231).put32(4, 0).put32(28, 0), kNewestValues, "", ""},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.label);
        ComPtr<ISaving> saving = newSaving();
        addNames(saving.get(), false, {"Old"});
        addNames(saving.get(), true, {"Kept"});
        c.bytes.bytes.push_back(0xEE);  // what follows belongs to the next record
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(saving.get(), c.bytes.bytes, &left), S_OK) << c.label;
        EXPECT_EQ(left, 1u) << c.label;
        expectProperties(saving.get(), c.expected);
        EXPECT_EQ(contents(saving.get(), false), c.meas) << c.label;
        EXPECT_EQ(contents(saving.get(), true), c.history) << c.label;
    }
}

TEST(Saving, DamagedStreamsLeaveTheSectionAsItWas) {
    const std::string twoNames("A;B\0", 4);
    struct Case {
        const char* label;
        SavingBytes bytes;
    } cases[] = {
        {"short record", newestRecord().put32(4, 0).put32(28, 0).cut(283)},
        {"short oldest record", SavingBytes{}.tag(20030822).cut(11)},
        {"unknown tag", newestRecord().tag(20030821).put32(4, 0).put32(28, 0)},
        {"text without its zero", newestRecord().put32(4, 3).put32(28, 0).text("A;B")},
        {"text cut short", newestRecord().put32(4, 4).put32(28, 0).text("A;")},
        {"negative length", newestRecord().put32(4, -4).put32(28, 0).text(twoNames)},
        {"length beyond any list", newestRecord().put32(4, (1 << 20) + 1).put32(28, 0).text(twoNames)},
        {"second text missing", newestRecord().put32(4, 4).put32(28, 4).text(twoNames)},
    };
    for (const Case& c : cases) {
        ComPtr<ISaving> saving = newSaving();
        addNames(saving.get(), false, {"Old"});
        addNames(saving.get(), true, {"Kept"});
        EXPECT_TRUE(FAILED(loadBytes(saving.get(), c.bytes.bytes))) << c.label;
        expectProperties(saving.get(), {{"SaveToDisk", "0"}, {"DelayTime", "15"}, {"Percentile", "70"}});
        EXPECT_EQ(contents(saving.get(), false), "Old") << c.label;
        EXPECT_EQ(contents(saving.get(), true), "Kept") << c.label;
    }
}

TEST(Saving, StreamRoundTrip) {
    ComPtr<ISaving> source = newSaving();
    for (const PropertyText& p : kNewestValues) ASSERT_EQ(putText(source.get(), widen(p.name), p.text), S_OK);
    addNames(source.get(), false, {"Autopower", "FRF", "Coherence"});
    ComPtr<ISaving> target = newSaving();
    addNames(target.get(), true, {"Gone"});
    ASSERT_EQ(loadBytes(target.get(), savedBytes(source.get())), S_OK);
    expectProperties(target.get(), kNewestValues);
    EXPECT_EQ(contents(target.get(), false), "Autopower|FRF|Coherence");
    EXPECT_EQ(contents(target.get(), true), "");
}

}  // namespace
}  // namespace nvdl::test
