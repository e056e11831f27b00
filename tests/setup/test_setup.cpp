// The setup: plain fields and data modes, the Modified climb from every section and collection item,
// the saved tree of storages, the one-stream form with its tag gates, deep clones and damaged files.
#include <algorithm>
#include <filesystem>

#include "../frame/ForeignParent.h"
#include "../frame/TestObjects.h"
#include "../platform/StorageTree.h"
#include "../platform/TempDir.h"
#include "SetupTestSupport.h"
#include "nvdl/ISetup.h"
#include "nvdl/Storage.h"

namespace nvdl::test {
namespace {

ComPtr<ISetup> newSetup() { return ComPtr<ISetup>::query(newObject(u"nv_bench.setup").get()); }

SHORT modifiedOf(IDispatch* object) {
    Variant v;
    latebound::get(object, u"Modified", &v);
    v.changeType(VT_I2);
    return v.iVal;
}

HRESULT saveSetup(ISetup* setup, const std::filesystem::path& file) {
    return setup->Save(Bstr(std::string_view(file.string())).get());
}
HRESULT loadSetup(ISetup* setup, const std::filesystem::path& file) {
    return setup->Load(Bstr(std::string_view(file.string())).get());
}

TEST(Setup, DefaultsDataModesAndWhichSettersMark) {
    ComPtr<ISetup> setup = newSetup();
    expectProperties(setup.get(), {{"Name", "Setup"}, {"Creator", ""}, {"ParametersLayout", "[None]"},
                                   {"DataMode", "340"}, {"Default", "0"}, {"GroupDataInSameWs", "0"},
                                   {"GroupChannels", "0"}, {"GroupFunctions", "-1"}, {"Modified", "0"}});
    expectTranslations(setup.get(), {{340, "Block Mode"}, {341, "Continuous Mode"}, {342, ""}});
    putValues(setup.get(), {{"Default", "-1"}, {"GroupDataInSameWs", "-1"}, {"GroupChannels", "-1"},
                                {"GroupFunctions", "0"}});
    EXPECT_EQ(modifiedOf(setup.get()), 0);
    for (const char* marking : {"Name", "Creator", "WorkspacePrefixName", "ParametersLayout"}) {
        setup->put_Modified(0);
        putValues(setup.get(), {{marking, "x"}});
        EXPECT_NE(modifiedOf(setup.get()), 0) << marking;
    }
    EXPECT_EQ(setup->Load(nullptr), E_FAIL);
    EXPECT_EQ(setup->Save(nullptr), E_FAIL);
    BSTR id = nullptr;
    ASSERT_EQ(setup->get_Id(&id), S_OK);
    EXPECT_NE(bstrToAnsi(id).find(".UID."), std::string::npos);
    SysFreeString(id);
}

// A setup that enters a collection of setups is renamed to a unique name and its creator is
// normalised from its post-processing and impact sections.
TEST(Setup, EnteringACollectionRenamesAndNormalisesTheCreator) {
    struct Case {
        const char* creator;
        const char* postProcessing;
        const char* impact;
        const char* expectedName;
        const char* expectedCreator;
    };
    const Case cases[] = {
        {" Lab ", "0", "0", "A", "Lab"},           {"  ", "0", "0", "A(2)", "Measure"},
        {"x", "-1", "0", "A(3)", "Post Process"},  {"x", "0", "-1", "A(4)", "Impact Wizard"},
        {"x", "-1", "-1", "A(5)", "Post Process"}, {"x", "1", "1", "A(6)", "x"},
    };
    ComPtr<IDispatch> owner(CTestOwner::create(CLSID_CSetup)->dispatch());
    CObjectCollection& setups = static_cast<CTestOwner*>(static_cast<ITestOwner*>(owner.get()))->items();
    for (const Case& c : cases) {
        ComPtr<ISetup> setup = newSetup();
        putValues(setup.get(), {{"Name", "A"}, {"Creator", c.creator}});
        putValues(member(setup.get(), u"PostProcessing").get(), {{"Activated", c.postProcessing}});
        putValues(member(setup.get(), u"Impact").get(), {{"Activated", c.impact}});
        Variant key, before, after;
        LONG index;
        ASSERT_EQ(setups.Add(setup.get(), &key, &before, &after, &index), S_OK);
        expectProperties(setup.get(), {{"Name", c.expectedName}, {"Creator", c.expectedCreator}});
    }
}

TEST(Setup, EverySectionAndCollectionItemMarksTheSetupAndItsParent) {
    ForeignParent workspace(IID_IWorkspace);
    ComPtr<ISetup> setup = newSetup();
    ASSERT_EQ(setup->put_Parent(&workspace), S_OK);
    fillSetup(setup.get());
    auto expectMarks = [&](IDispatch* changed, const char* property, const char* value, const std::string& what) {
        setup->put_Modified(0);
        const int before = workspace.puts;
        putValues(changed, {{property, value}});
        EXPECT_NE(modifiedOf(setup.get()), 0) << what;
        EXPECT_EQ(workspace.puts, before + 1) << what;
    };
    for (const SectionValue& s : kSectionValues) {
        ComPtr<IDispatch> section = member(setup.get(), s.section);
        ASSERT_TRUE(section) << narrow(s.section);
        expectMarks(section.get(), s.property, s.value, narrow(s.section));
        EXPECT_EQ(member(section.get(), u"Setup").get(), static_cast<IDispatch*>(setup.get())) << narrow(s.section);
    }
    for (const CollectionValues& c : kCollectionValues) {
        ComPtr<IDispatch> item;
        ASSERT_EQ(collectionOf(setup.get(), c.collection)->Item(Variant::fromLong(0), item.out()), S_OK);
        expectMarks(item.get(), c.items[0][0].name, c.items[0][0].text, narrow(c.collection));
    }
    ComPtr<IDispatch> function;  // through the saving section
    ASSERT_EQ(collectionOf(member(setup.get(), u"Saving").get(), u"MeasFunctions")->Item(Variant::fromLong(0), function.out()),
              S_OK);
    expectMarks(function.get(), "Value", "avg", "save function");
}

TEST(Setup, SavedFileHoldsTheSectionTreeAndReadsBackEqual) {
    TempDir dir;
    ComPtr<ISetup> setup = newSetup();
    fillSetup(setup.get());
    const auto file = dir.path() / "modal.setup";
    ASSERT_EQ(saveSetup(setup.get(), file), S_OK);
    EXPECT_EQ(modifiedOf(setup.get()), 0);
    std::vector<std::string> expected = {"Setup(1)"};
    auto add = [&](const char* storage, const char* stream, int count) {
        expected.push_back(storage);
        for (int i = 1; i <= count; ++i) expected.push_back(std::string(storage) + "/" + stream + "(" + std::to_string(i) + ")");
    };
    add("TransducerSection", "Transducer", 2);
    add("InputSection", "InputChannel", 3);
    add("StrainSection", "StrainChannel", 2);
    add("SourceSection", "SourceChannel", 1);
    add("ParameterSection", "Parameter", 2);
    for (const char* single : {"Acquisition", "Processing", "Saving", "Tacho", "Rpm", "SRS", "SteppedSine", "Throughput",
                               "Octave", "Impact", "TimeFilter", "Resampling", "PostProcessing", "ShockCapture"})
        add((std::string(single) + "Section").c_str(), single, 1);
    add("SinRedSection", "Rpm", 1);  // under the name of the order-tracking stream
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(treeOf(file), expected);

    ComPtr<ISetup> loaded = newSetup();
    ASSERT_EQ(loadSetup(loaded.get(), file), S_OK);
    expectFilled(loaded.get());
    EXPECT_EQ(modifiedOf(loaded.get()), 0);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);  // no temporary left
}

TEST(Setup, EmptyCollectionsLeaveNoSubStorageAndUnknownElementsAreIgnored) {
    TempDir dir;
    const auto file = dir.path() / "plain.setup";
    ComPtr<ISetup> setup = newSetup();
    putValues(member(setup.get(), u"Rpm").get(), {{"EndRPM", "4000"}});
    ASSERT_EQ(saveSetup(setup.get(), file), S_OK);
    std::vector<std::string> tree = treeOf(file);
    for (const char* absent : {"TransducerSection", "InputSection", "StrainSection", "SourceSection", "ParameterSection"})
        EXPECT_EQ(std::count(tree.begin(), tree.end(), absent), 0) << absent;
    {
        // A newer system's section and a stray stream.
        ComPtr<IStorage> root;
        ASSERT_EQ(openCompoundFile(file, STGM_READWRITE, root.out()), S_OK);
        ComPtr<IStorage> future;
        ComPtr<IStream> stray, inside;
        const DWORD create = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
        ASSERT_EQ(root->CreateStorage(u"AaaFutureSection", create, 0, 0, future.out()), S_OK);
        ASSERT_EQ(future->CreateStream(u"Future(1)", create, 0, 0, inside.out()), S_OK);
        ASSERT_EQ(root->CreateStream(u"Notes", create, 0, 0, stray.out()), S_OK);
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    ComPtr<ISetup> loaded = newSetup();
    ASSERT_EQ(loadSetup(loaded.get(), file), S_OK);
    expectProperties(member(loaded.get(), u"Rpm").get(), {{"EndRPM", "4000"}});
    LONG count = -1;
    collectionOf(loaded.get(), u"Transducers")->get_Count(&count);
    EXPECT_EQ(count, 0);
}

TEST(Setup, DamagedFilesAreRefused) {
    TempDir dir;
    ComPtr<ISetup> setup = newSetup();
    fillSetup(setup.get());
    const auto file = dir.path() / "damaged.setup";
    ASSERT_EQ(saveSetup(setup.get(), file), S_OK);
    struct Damage {
        const char16_t* storage;  // null: the root
        const char16_t* stream;
        std::size_t keep;  // bytes left in the stream
    };
    for (const Damage& d : {Damage{nullptr, u"Setup(1)", 383}, Damage{u"InputSection", u"InputChannel(2)", 10},
                            Damage{u"RpmSection", u"Rpm(1)", 0}}) {
        const auto copy = dir.path() / "copy.setup";
        std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
        {
            ComPtr<IStorage> root, sub;
            ASSERT_EQ(openCompoundFile(copy, STGM_READWRITE, root.out()), S_OK);
            IStorage* holder = root.get();
            if (d.storage) {
                ASSERT_EQ(root->OpenStorage(d.storage, nullptr, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                            sub.out()),
                          S_OK);
                holder = sub.get();
            }
            ComPtr<IStream> stream;
            ASSERT_EQ(holder->OpenStream(d.stream, nullptr, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, stream.out()), S_OK);
            ASSERT_EQ(stream->SetSize(d.keep), S_OK);
            ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        }
        ComPtr<ISetup> loaded = newSetup();
        EXPECT_EQ(loadSetup(loaded.get(), copy), STG_E_READFAULT) << narrow(d.stream);
    }
    ComPtr<ISetup> loaded = newSetup();
    EXPECT_TRUE(FAILED(loadSetup(loaded.get(), dir.path() / "missing.setup")));
}

TEST(Setup, CloneIsDeepAndCopyReplacesTheCollections) {
    ComPtr<ISetup> setup = newSetup();
    fillSetup(setup.get());
    ComPtr<ISetup> clone;
    ASSERT_EQ(setup->Clone(clone.out()), S_OK);
    expectFilled(clone.get());
    ComPtr<IDispatch> channel;
    ASSERT_EQ(collectionOf(clone.get(), u"InputChannels")->Item(Variant::fromLong(0), channel.out()), S_OK);
    putValues(channel.get(), {{"Name", "Changed"}, {"Range", "1"}});
    putValues(member(clone.get(), u"Rpm").get(), {{"StartRPM", "99"}});
    expectFilled(setup.get());  // the source is as it was
    EXPECT_EQ(member(member(clone.get(), u"Rpm").get(), u"Setup").get(), static_cast<IDispatch*>(clone.get()));
    ASSERT_EQ(setup->Copy(clone.get()), S_OK);  // the target's items are replaced, not added to
    expectFilled(clone.get());
}

// The one-stream form: the whole setup in a stream, and an older stream built from the head and the
// records of the parts its tag holds.
TEST(Setup, OneStreamFormReadsThePartsItsTagHolds) {
    ComPtr<ISetup> setup = newSetup();
    fillSetup(setup.get());
    std::vector<std::uint8_t> whole = savedBytes(setup.get());
    ComPtr<ISetup> loaded = newSetup();
    std::size_t left = 1;
    ASSERT_EQ(loadBytes(loaded.get(), whole, &left), S_OK);
    EXPECT_EQ(left, 0u);
    expectFilled(loaded.get());

    // Tag 20030220: the head (counts of parameters, transducers, input and source channels), then
    // those collections with acquisition, processing, saving, tacho, order tracking, and the parts
    // of that tag; no sine reduction, stepped sine, SRS, shock capture, strain channels or grouping.
    std::vector<std::uint8_t> older(whole.begin(), whole.begin() + 400);
    le::putText(older.data(), 50, "20030220");
    le::put32(older.data() + 390, 0);  // no strain channels in this generation
    auto append = [&older](IDispatch* object) {
        std::vector<std::uint8_t> bytes = savedBytes(object);
        older.insert(older.end(), bytes.begin(), bytes.end());
    };
    auto appendItems = [&](const char16_t* name) {
        ComPtr<ICollection> items = collectionOf(setup.get(), name);
        LONG count = 0;
        items->get_Count(&count);
        for (LONG i = 0; i < count; ++i) {
            ComPtr<IDispatch> item;
            items->Item(Variant::fromLong(i), item.out());
            append(item.get());
        }
    };
    appendItems(u"Parameters");
    appendItems(u"Transducers");
    appendItems(u"InputChannels");
    append(member(setup.get(), u"Acquisition").get());
    appendItems(u"SourceChannels");
    for (const char16_t* s : {u"Processing", u"Saving", u"Tacho", u"Rpm", u"Throughput", u"Octave", u"Impact",
                              u"TimeFilter", u"Resampling", u"PostProcessing"})
        append(member(setup.get(), s).get());
    older.push_back(0x5A);  // the next record of an enclosing stream
    ComPtr<ISetup> fromOlder = newSetup();
    ASSERT_EQ(loadBytes(fromOlder.get(), older, &left), S_OK);
    EXPECT_EQ(left, 1u);
    expectProperties(member(fromOlder.get(), u"Rpm").get(), {{"StartRPM", "1234"}});
    expectProperties(member(fromOlder.get(), u"PostProcessing").get(), {{"Filename", "replay.trc"}});
    expectProperties(member(fromOlder.get(), u"SinRed").get(), {{"StartFreq", "20"}});
    expectProperties(member(fromOlder.get(), u"ShockCapture").get(), {{"PulsePeak", "30"}});
    expectProperties(fromOlder.get(), {{"Default", "0"}, {"GroupFunctions", "-1"}, {"Name", "Modal run"}});

    le::putText(older.data(), 50, "20000326");  // older than the form
    EXPECT_EQ(loadBytes(newSetup().get(), older), E_FAIL);
    for (std::size_t cut : {std::size_t{399}, whole.size() / 2, whole.size() - 1})
        EXPECT_TRUE(FAILED(loadBytes(newSetup().get(), std::vector<std::uint8_t>(whole.begin(), whole.begin() + cut))))
            << cut;
}

}  // namespace
}  // namespace nvdl::test
