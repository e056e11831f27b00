// The tree of storages of a setup: a header stream "Setup(n)" with one record of 384 bytes, then one
// sub-storage per section holding a stream per object, written by the object's stream persistence.
// A collection section with no items leaves no sub-storage. Loading walks the elements of the
// storage and loads each known section; an element of another name is passed over, so a file of a
// newer system with a section unknown here still loads.
#include <cstdio>
#include <string>
#include <vector>

#include "frame/ClassTable.h"
#include "nvdl/Storage.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "setup/SectionRecord.h"
#include "setup/Setup.h"

namespace nvdl {

namespace {

constexpr std::size_t kHeaderSize = 384;
constexpr DWORD kCreateMode = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kReadMode = STGM_READ | STGM_SHARE_EXCLUSIVE;

using R = SetupFields;
using namespace record;
constexpr Field<R, 1> kHeaderFields[] = {
    {text(&R::tag, 50), {0}},
    {text(&R::Name, 100), {50}},
    {text(&R::Creator, 100), {150}},
    {i32(&R::DataMode), {252}},
    {i16(&R::Default), {256}},
    {text(&R::WorkspacePrefixName, 60), {258}},
    {i16(&R::GroupDataInSameWs), {318}},
    {i16(&R::GroupChannels), {320}},
    {i16(&R::GroupFunctions), {322}},
    // 324 to 384: reserved, zero
};
constexpr std::span<const Field<R, 1>> kHeaderTable(kHeaderFields);
static_assert(fitsAndDisjoint(kHeaderTable, 0, kHeaderSize));

// "%s(%ld)"
std::u16string numberedName(const char16_t* base, long n) { return base + widen("(" + std::to_string(n) + ")"); }

bool isHeaderStreamName(std::u16string_view name) { return name.starts_with(u"Setup("); }

// Saves one object into a new stream of the storage, replacing an old stream of that name.
HRESULT saveObject(IStorage* storage, const std::u16string& name, IDispatch* object) {
    ComPtr<IPersistStream> persist;
    if (FAILED(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out())))) return S_OK;
    ComPtr<IStream> stream;
    HRESULT h = storage->CreateStream(name.c_str(), kCreateMode, 0, 0, stream.out());
    if (FAILED(h)) return h;
    return persist->Save(stream.get(), 1);
}

HRESULT loadObject(IStorage* storage, const std::u16string& name, IDispatch* object) {
    ComPtr<IPersistStream> persist;
    HRESULT h = object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out()));
    if (FAILED(h)) return h;
    ComPtr<IStream> stream;
    h = storage->OpenStream(name.c_str(), nullptr, kReadMode, 0, stream.out());
    if (FAILED(h)) return h;
    return persist->Load(stream.get());
}

// The stream elements of a storage, in the storage's order.
HRESULT streamsOf(IStorage* storage, std::vector<STATSTG>& streams) {
    std::vector<STATSTG> elements;
    HRESULT h = storage->EnumElements(&elements);
    if (FAILED(h)) return h;
    for (STATSTG& e : elements)
        if (e.type == STGTY_STREAM) streams.push_back(std::move(e));
    return S_OK;
}

}  // namespace

HRESULT CSetupPersistStorage::Save(IStorage* storage, int) {
    if (!storage) return E_POINTER;
    CSetup& setup = m_owner;
    std::uint8_t header[kHeaderSize] = {};
    R written = setup.m_fields;
    written.tag = "20080422";
    encode(kHeaderTable, 0, written, header);
    ComPtr<IStream> headerStream;
    HRESULT h = storage->CreateStream(numberedName(u"Setup", setup.m_setupCount).c_str(), kCreateMode, 0, 0,
                                      headerStream.out());
    if (SUCCEEDED(h)) h = section::writeAll(headerStream.get(), header, kHeaderSize);
    if (FAILED(h)) return h;

    for (const StorageSection& s : storageSections()) {
        std::vector<IDispatch*> objects;
        if (s.isCollection) {
            const CObjectCollection& c = setup.collection(s.collection);
            for (std::size_t i = 0; i < c.size(); ++i) objects.push_back(c.itemAt(i));
        } else if (IDispatch* single = setup.section(s.single)) {
            objects.push_back(single);
        }
        if (objects.empty()) continue;
        ComPtr<IStorage> sub;
        h = storage->CreateStorage(s.storage, kCreateMode, 0, 0, sub.out());
        for (std::size_t i = 0; SUCCEEDED(h) && i < objects.size(); ++i)
            h = saveObject(sub.get(), numberedName(s.stream, static_cast<long>(i + 1)), objects[i]);
        if (FAILED(h)) return h;
    }
    setup.put_Modified(0);
    return S_OK;
}

HRESULT CSetupPersistStorage::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    CSetup& setup = m_owner;
    std::vector<STATSTG> elements;
    HRESULT h = storage->EnumElements(&elements);
    if (FAILED(h)) return h;
    for (const STATSTG& e : elements) {
        if (e.type == STGTY_STREAM && isHeaderStreamName(e.name)) {
            ComPtr<IStream> stream;
            std::uint8_t header[kHeaderSize];
            h = storage->OpenStream(e.name.c_str(), nullptr, kReadMode, 0, stream.out());
            if (SUCCEEDED(h)) h = section::readExactly(stream.get(), header, kHeaderSize);
            if (FAILED(h)) return h;
            decode(kHeaderTable, 0, header, setup.m_fields);
            long count = 1;
            if (std::sscanf(narrow(e.name).c_str(), "Setup(%ld)", &count) == 1) setup.m_setupCount = count;
            continue;
        }
        if (e.type != STGTY_STORAGE) continue;
        for (const StorageSection& s : storageSections()) {
            if (e.name != s.storage) continue;
            ComPtr<IStorage> sub;
            std::vector<STATSTG> streams;
            h = storage->OpenStorage(s.storage, nullptr, kReadMode, nullptr, 0, sub.out());
            if (SUCCEEDED(h)) h = streamsOf(sub.get(), streams);
            for (std::size_t i = 0; SUCCEEDED(h) && i < streams.size(); ++i) {
                if (!s.isCollection) {
                    // Each stream in turn: the last one wins.
                    IDispatch* single = setup.section(s.single);
                    h = single ? loadObject(sub.get(), streams[i].name, single) : S_OK;
                    continue;
                }
                ComPtr<IDispatch> item;
                h = createInstance(*s.itemClass, item.out());
                if (SUCCEEDED(h)) h = loadObject(sub.get(), streams[i].name, item.get());
                Variant none1, none2, none3;
                LONG index;
                if (SUCCEEDED(h)) h = setup.collection(s.collection).Add(item.get(), &none1, &none2, &none3, &index);
            }
            if (FAILED(h)) return h;
            break;
        }
    }
    setup.put_Modified(0);
    return S_OK;
}

}  // namespace nvdl
