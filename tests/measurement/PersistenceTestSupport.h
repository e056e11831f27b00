// Shared by the measurement tests: measurements, their texts, and stored records built byte by byte.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "../frame/TestHelpers.h"
#include "frame/ClassTable.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementPersistHelpers.h"
#include "platform/LittleEndian.h"
#include "platform/MemoryStream.h"
#include "nvdl/SafeArray.h"
#include "project/UnitClient.h"

namespace nvdl::test {

inline IMeasurement* newMeasurement() {
    IDispatch* object = nullptr;
    EXPECT_EQ(createInstance(CLSID_CMeasurement, &object), S_OK);
    return static_cast<IMeasurement*>(object);
}

template <class Persist = IPersistStream>
Persist* persistOf(IMeasurement* m, const IID& iid) {
    Persist* p = nullptr;
    EXPECT_EQ(m->QueryInterface(iid, reinterpret_cast<void**>(&p)), S_OK);
    return p;
}

// A measurement loaded from stored bytes through the helper of `iid`; released with the holder.
struct Loaded {
    IMeasurement* m = newMeasurement();
    HRESULT result = E_UNEXPECTED;
    Loaded(const std::vector<std::uint8_t>& bytes, const IID& iid) {
        IPersistStream* persist = persistOf(m, iid);
        MemoryStream* stream = MemoryStream::create(bytes);
        result = persist->Load(stream);
        stream->Release();
        persist->Release();
    }
    Loaded(const Loaded&) = delete;
    ~Loaded() { m->Release(); }
    operator IMeasurement*() const { return m; }
};

template <class T>
T value(IMeasurement* m, HRESULT (IMeasurement::*get)(T*)) {
    T v{};
    EXPECT_EQ((m->*get)(&v), S_OK);
    return v;
}

inline std::vector<float> floats(IMeasurement* m, HRESULT (IMeasurement::*get)(VARIANT*)) {
    Variant v;
    (m->*get)(&v);
    if (v.vt != (VT_ARRAY | VT_R4)) return {};
    std::span<float> data = floatArrayData(v.parray);
    return {data.begin(), data.end()};
}

inline void addParameter(IMeasurement* m, const char* name, const char* value) {
    IDispatch* object = nullptr;
    ASSERT_EQ(createInstance(CLSID_CParameter, &object), S_OK);
    putText(object, u"Name", name);
    putText(object, u"Value", value);
    ICollection* collection = nullptr;
    CMeasurement::from(m)->get_Parameters(&collection);
    Variant key, before, after;
    LONG index = 0;
    EXPECT_EQ(collection->Add(object, &key, &before, &after, &index), S_OK);
    collection->Release();
    object->Release();
}

inline std::vector<std::string> parameters(IMeasurement* m) {
    std::vector<std::string> pairs;
    CMeasurement* c = CMeasurement::from(m);
    ICollection* collection = nullptr;
    c->get_Parameters(&collection);
    LONG count = 0;
    collection->get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        IDispatch* item = nullptr;
        if (FAILED(collection->Item(Variant::fromLong(i), &item)) || !item) continue;
        pairs.push_back(getText(item, u"Name") + "=" + getText(item, u"Value"));
        item->Release();
    }
    collection->Release();
    return pairs;
}

// Properties read late-bound as text, each against the text it should give.
inline void expectTexts(IMeasurement* m, std::initializer_list<std::pair<std::u16string_view, std::string>> expected) {
    for (const auto& [name, text] : expected) EXPECT_EQ(getText(m, name), text) << narrow(name);
}

// The units table index of a dimension named by one of its units or its name.
inline LONG dimensionIndexOf(const char* text) {
    IDimension* d = DimensionFromText(text, false);
    LONG index = DimensionTableIndex(d);
    if (d) d->Release();
    return index;
}

// A stored record built field by field.
struct ByteRecord {
    std::vector<std::uint8_t> bytes;
    explicit ByteRecord(std::size_t size) : bytes(size, 0) {}
    void text(std::size_t at, std::size_t size, const std::string& s) { le::putText(&bytes[at], size, s); }
    void i16(std::size_t at, std::int16_t v) { le::put16(&bytes[at], static_cast<std::uint16_t>(v)); }
    void i32(std::size_t at, std::int32_t v) { le::put32(&bytes[at], static_cast<std::uint32_t>(v)); }
    void f32(std::size_t at, float v) { le::putF32(&bytes[at], v); }
    void f64(std::size_t at, double v) { le::putF64(&bytes[at], v); }
    // The text and its closing zero.
    void append(const std::string& s) {
        const std::size_t at = bytes.size();
        bytes.resize(at + s.size() + 1, 0);
        std::copy(s.begin(), s.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
    void appendFloats(const std::vector<float>& values) {
        for (float v : values) {
            std::uint8_t b[4];
            le::putF32(b, v);
            bytes.insert(bytes.end(), b, b + 4);
        }
    }
    void appendBlock(std::size_t size) { bytes.resize(bytes.size() + size, 0); }
};

}  // namespace nvdl::test
