// A setup filled with non-default values in every section and collection, and the reading of a
// setup's values back as text, for the tests of its persistence and copies.
#pragma once

#include <string>
#include <vector>

#include "PlainPutSupport.h"
#include "nvdl/ICollection.h"

namespace nvdl::test {

// A section of the setup, one of its properties and a value that is not its default.
struct SectionValue {
    const char16_t* section;
    const char* property;
    const char* value;
};

inline const std::vector<SectionValue> kSectionValues = {
    {u"Acquisition", "Blocksize", "2048"},   {u"Processing", "AverageNumber", "25"},
    {u"Saving", "DelayTime", "30"},          {u"Tacho", "Name", "Tacho A"},
    {u"Rpm", "StartRPM", "1234"},            {u"SinRed", "StartFreq", "30"},
    {u"SRS", "FreqMin", "15"},               {u"SteppedSine", "FreqStart", "12"},
    {u"Throughput", "Filename", "run.trc"},  {u"Octave", "StartFrequency", "25"},
    {u"Impact", "Activated", "-1"},          {u"TimeFilter", "StartFrequency", "5"},
    {u"Resampling", "Blocksize", "512"},     {u"PostProcessing", "Filename", "replay.trc"},
    {u"ShockCapture", "PulsePeak", "50"},
};

// A collection of the setup, the ProgID of its items and the values of each item.
struct CollectionValues {
    const char16_t* collection;
    const char16_t* progId;
    std::vector<std::vector<PropertyText>> items;
};

inline const std::vector<CollectionValues> kCollectionValues = {
    {u"Parameters", u"nv_bench.parameter", {{{"Name", "Operator"}, {"Value", "kim"}}, {{"Name", "Rig"}, {"Value", "B"}}}},
    {u"Transducers", u"nv_bench.transducer", {{{"SerialNumber", "S-1"}, {"Sensitivity", "10.5"}}, {{"Model", "A2"}}}},
    {u"InputChannels", u"nv_bench.input", {{{"Name", "Force"}, {"Range", "5"}}, {{"Name", "Acc 1"}, {"Usage", "1"}},
                                            {{"Name", "Acc 2"}, {"Coupling", "101"}}}},
    {u"StrainChannels", u"nv_bench.strain", {{{"GageFactor", "2.1"}}, {{"Config", "10271"}}}},
    {u"SourceChannels", u"nv_bench.source", {{{"Name", "Shaker"}, {"Level", "0.5"}}}},
};

// The save functions of the saving section, by list.
struct SaveFunctionValue {
    const char16_t* list;
    const char* name;
};
inline const SaveFunctionValue kSaveFunctions[] = {
    {u"MeasFunctions", "Autopower"}, {u"MeasFunctions", "FRF"}, {u"TimeHistoryFunctions", "Overall level"}};

inline ComPtr<IDispatch> member(IDispatch* object, const char16_t* name) {
    Variant v;
    EXPECT_EQ(latebound::get(object, name, &v), S_OK) << narrow(name);
    if (v.vt != VT_DISPATCH || !v.pdispVal) return {};
    v.pdispVal->AddRef();
    return ComPtr<IDispatch>(v.pdispVal);
}

inline ComPtr<ICollection> collectionOf(IDispatch* setup, const char16_t* name) {
    // A collection's dispatch interface is its collection interface.
    return ComPtr<ICollection>(static_cast<ICollection*>(member(setup, name).release()));
}

inline void fillSetup(IDispatch* setup) {
    putValues(setup, {{"Name", "Modal run"}, {"Creator", "Measure"}, {"WorkspacePrefixName", "WS"},
                          {"DataMode", "341"}, {"Default", "-1"}, {"GroupChannels", "-1"}, {"GroupFunctions", "0"}});
    for (const SectionValue& s : kSectionValues) putValues(member(setup, s.section).get(), {{s.property, s.value}});
    for (const CollectionValues& c : kCollectionValues) {
        ComPtr<ICollection> items = collectionOf(setup, c.collection);
        for (const auto& values : c.items) {
            ComPtr<IDispatch> item = newObject(c.progId);
            putValues(item.get(), values);
            Variant key, before, after;
            LONG index = 0;
            ASSERT_EQ(items->Add(item.get(), &key, &before, &after, &index), S_OK);
        }
    }
    for (const SaveFunctionValue& f : kSaveFunctions) {
        ComPtr<IDispatch> function = newObject(u"nv_bench.savefunction");
        putValues(function.get(), {{"Name", f.name}});
        Variant key, before, after;
        LONG index = 0;
        ASSERT_EQ(collectionOf(member(setup, u"Saving").get(), f.list)->Add(function.get(), &key, &before, &after, &index),
                  S_OK);
    }
}

// Every value that fillSetup set, read back from the setup.
inline void expectFilled(IDispatch* setup) {
    expectProperties(setup, {{"Name", "Modal run"}, {"Creator", "Measure"}, {"WorkspacePrefixName", "WS"},
                             {"DataMode", "341"}, {"Default", "-1"}, {"GroupChannels", "-1"}, {"GroupFunctions", "0"}});
    for (const SectionValue& s : kSectionValues)
        expectProperties(member(setup, s.section).get(), {{s.property, s.value}});
    for (const CollectionValues& c : kCollectionValues) {
        ComPtr<ICollection> items = collectionOf(setup, c.collection);
        LONG count = 0;
        items->get_Count(&count);
        ASSERT_EQ(count, static_cast<LONG>(c.items.size())) << narrow(c.collection);
        for (std::size_t i = 0; i < c.items.size(); ++i) {
            ComPtr<IDispatch> item;
            ASSERT_EQ(items->Item(Variant::fromLong(static_cast<LONG>(i)), item.out()), S_OK);
            expectProperties(item.get(), c.items[i]);
        }
    }
    ComPtr<IDispatch> saving = member(setup, u"Saving");
    for (const SaveFunctionValue& f : kSaveFunctions) {
        ComPtr<IDispatch> function;
        EXPECT_EQ(collectionOf(saving.get(), f.list)->Item(Variant::fromAnsi(f.name), function.out()), S_OK) << f.name;
    }
}

}  // namespace nvdl::test
