// A whole setup in one stream, the form of older workspace files: a head of 400 bytes with the tag,
// the texts, the data mode and the counts of the collections, then the records of the sections one
// after another, each by the object's own stream persistence. The tag tells which parts the stream
// holds: a part is read only when the tag is at or above the tag that introduced it.
#include <string>
#include <vector>

#include "frame/ClassTable.h"
#include "platform/ComPtr.h"
#include "setup/SectionRecord.h"
#include "setup/Setup.h"

namespace nvdl {

namespace {

constexpr std::size_t kHeadSize = 400;
constexpr const char* kOldestTag = "20000327";
constexpr const char* kNewestTag = "20080422";

// The head: the setup's texts and the counts of the collections kept in this form.
struct StreamHead {
    SetupFields fields;
    std::int32_t parameters = 0, transducers = 0, inputChannels = 0, sourceChannels = 0, strainChannels = 0;
};

struct HeadRecord {
    std::string tag, name, creator, prefix, layout;
    std::int32_t dataMode = 0, parameters = 0, transducers = 0, inputChannels = 0, sourceChannels = 0,
                 strainChannels = 0;
};
using H = HeadRecord;
using namespace record;
constexpr Field<H, 1> kHeadFields[] = {
    {text(&H::tag, 50), {0}},
    {text(&H::name, 100), {50}},
    {text(&H::creator, 100), {150}},
    {text(&H::prefix, 60), {250}},
    {text(&H::layout, 60), {310}},
    {i32(&H::dataMode), {370}},
    {i32(&H::parameters), {374}},
    {i32(&H::transducers), {378}},
    {i32(&H::inputChannels), {382}},
    {i32(&H::sourceChannels), {386}},
    {i32(&H::strainChannels), {390}},
};
constexpr std::span<const Field<H, 1>> kHeadTable(kHeadFields);
static_assert(fitsAndDisjoint(kHeadTable, 0, kHeadSize));

// The grouping flags, the part of the newest tag.
constexpr std::size_t kGroupingSize = 8;
using S = SetupFields;
constexpr Field<S, 1> kGroupingFields[] = {
    {i16(&S::Default), {0}},
    {i16(&S::GroupDataInSameWs), {2}},
    {i16(&S::GroupChannels), {4}},
    {i16(&S::GroupFunctions), {6}},
};
constexpr std::span<const Field<S, 1>> kGroupingTable(kGroupingFields);
static_assert(fitsAndDisjoint(kGroupingTable, 0, kGroupingSize));

// One part of the stream: a collection (its count in the head) or a single section.
struct StreamPart {
    const char* since;  // the tag that introduced it
    bool isCollection;
    SectionCollection collection;
    SingleSection single;
};
using SC = SectionCollection;
using SS = SingleSection;
constexpr StreamPart kParts[] = {
    {"20000327", true, SC::Parameters, {}},         {"20000327", true, SC::Transducers, {}},
    {"20000327", true, SC::InputChannels, {}},      {"20000327", false, {}, SS::Acquisition},
    {"20000327", true, SC::SourceChannels, {}},     {"20000327", false, {}, SS::Processing},
    {"20000327", false, {}, SS::Saving},            {"20000327", false, {}, SS::Tacho},
    {"20000327", false, {}, SS::Rpm},               {"20030220", false, {}, SS::Throughput},
    {"20030220", false, {}, SS::Octave},            {"20030220", false, {}, SS::Impact},
    {"20030220", false, {}, SS::TimeFilter},        {"20030220", false, {}, SS::Resampling},
    {"20030220", false, {}, SS::PostProcessing},    {"20061016", false, {}, SS::SinRed},
    {"20061016", false, {}, SS::SteppedSine},       {"20070406", false, {}, SS::SRS},
    {"20070509", false, {}, SS::ShockCapture},      {"20071123", true, SC::StrainChannels, {}},
};
constexpr const char* kGroupingSince = "20080422";

std::int32_t* countOf(HeadRecord& head, SectionCollection which) {
    switch (which) {
        case SC::Parameters: return &head.parameters;
        case SC::Transducers: return &head.transducers;
        case SC::InputChannels: return &head.inputChannels;
        case SC::SourceChannels: return &head.sourceChannels;
        case SC::StrainChannels: return &head.strainChannels;
        case SC::Frontends: return nullptr;  // frontends are not kept with a setup
    }
    return nullptr;
}

const CLSID& itemClassOf(SectionCollection which) {
    for (const StorageSection& s : storageSections())
        if (s.isCollection && s.collection == which) return *s.itemClass;
    return CLSID_NULL;
}

HRESULT saveInto(IStream* stream, IDispatch* object) {
    ComPtr<IPersistStream> persist;
    HRESULT h = object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()));
    return FAILED(h) ? h : persist->Save(stream, 1);
}

HRESULT loadFrom(IStream* stream, IDispatch* object) {
    ComPtr<IPersistStream> persist;
    HRESULT h = object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()));
    return FAILED(h) ? h : persist->Load(stream);
}

}  // namespace

HRESULT CSetupPersistStream::Save(IStream* stream, int clearDirty) {
    if (!stream) return E_POINTER;
    CSetup& setup = m_owner;
    const SetupFields& f = setup.m_fields;
    HeadRecord head{kNewestTag, f.Name, f.Creator, f.WorkspacePrefixName, f.ParametersLayout, f.DataMode};
    for (const StreamPart& p : kParts)
        if (p.isCollection) *countOf(head, p.collection) = static_cast<std::int32_t>(setup.collection(p.collection).size());
    std::uint8_t bytes[kHeadSize] = {};
    encode(kHeadTable, 0, head, bytes);
    HRESULT h = section::writeAll(stream, bytes, kHeadSize);
    for (const StreamPart& p : kParts) {
        if (FAILED(h)) return h;
        if (p.isCollection) {
            const CObjectCollection& c = setup.collection(p.collection);
            for (std::size_t i = 0; SUCCEEDED(h) && i < c.size(); ++i) h = saveInto(stream, c.itemAt(i));
        } else if (IDispatch* single = setup.section(p.single)) {
            h = saveInto(stream, single);
        }
    }
    if (FAILED(h)) return h;
    std::uint8_t grouping[kGroupingSize] = {};
    encode(kGroupingTable, 0, f, grouping);
    h = section::writeAll(stream, grouping, kGroupingSize);
    if (SUCCEEDED(h) && clearDirty) setup.put_Modified(0);
    return h;
}

HRESULT CSetupPersistStream::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    CSetup& setup = m_owner;
    std::uint8_t bytes[kHeadSize];
    HRESULT h = section::readExactly(stream, bytes, kHeadSize);
    if (FAILED(h)) return h;
    HeadRecord head;
    decode(kHeadTable, 0, bytes, head);
    if (head.tag < kOldestTag) return E_FAIL;  // tags compare as text, as they are written
    for (const StreamPart& p : kParts)
        if (p.isCollection && *countOf(head, p.collection) < 0) return E_FAIL;
    SetupFields& f = setup.m_fields;
    f.tag = head.tag;
    f.Name = head.name;
    f.Creator = head.creator;
    f.WorkspacePrefixName = head.prefix;
    f.ParametersLayout = head.layout;
    f.DataMode = head.dataMode;
    for (const StreamPart& p : kParts) {
        if (head.tag < p.since) continue;
        if (!p.isCollection) {
            IDispatch* single = setup.section(p.single);
            h = single ? loadFrom(stream, single) : S_OK;
        }
        for (std::int32_t i = 0; p.isCollection && SUCCEEDED(h) && i < *countOf(head, p.collection); ++i) {
            ComPtr<IDispatch> item;
            h = createInstance(itemClassOf(p.collection), item.out());
            if (SUCCEEDED(h)) h = loadFrom(stream, item.get());
            Variant none1, none2, none3;
            LONG index;
            if (SUCCEEDED(h)) h = setup.collection(p.collection).Add(item.get(), &none1, &none2, &none3, &index);
        }
        if (FAILED(h)) return h;
    }
    if (head.tag >= kGroupingSince) {
        std::uint8_t grouping[kGroupingSize];
        h = section::readExactly(stream, grouping, kGroupingSize);
        if (FAILED(h)) return h;
        decode(kGroupingTable, 0, grouping, f);
    }
    setup.put_Modified(0);
    return S_OK;
}

HRESULT CSetupPersistStream::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    std::uint64_t total = kHeadSize + kGroupingSize;
    CSetup& setup = m_owner;
    auto add = [&total](IDispatch* object) {
        ComPtr<IPersistStream> persist;
        std::uint64_t one = 0;
        if (SUCCEEDED(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()))) &&
            SUCCEEDED(persist->GetSizeMax(&one)))
            total += one;
    };
    for (const StreamPart& p : kParts) {
        if (!p.isCollection) {
            if (IDispatch* single = setup.section(p.single)) add(single);
            continue;
        }
        const CObjectCollection& c = setup.collection(p.collection);
        for (std::size_t i = 0; i < c.size(); ++i) add(c.itemAt(i));
    }
    *size = total;
    return S_OK;
}

}  // namespace nvdl
