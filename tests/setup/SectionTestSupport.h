// Checks shared by the tests of the setup's sections, channels and transducers, driven by a table
// per class: the default of each property (as its text), the text of each enumeration code, and a
// stream round trip of non-default values.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "../frame/TestHelpers.h"
#include "nvdl/Persist.h"
#include "nvdl/nvdl.h"
#include "platform/ComPtr.h"
#include "platform/LittleEndian.h"
#include "platform/MemoryStream.h"

namespace nvdl::test {

struct PropertyText {
    const char* name;
    const char* text;  // as get_Property gives it
};
struct EnumText {
    LONG code;
    const char* text;
};

inline ComPtr<IDispatch> newObject(const char16_t* progId) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CreateObject(progId, object.out()), S_OK) << narrow(progId);
    return object;
}

inline std::string propertyText(IDispatch* object, const char* name) {
    Variant v;
    HRESULT h = latebound::get(object, widen(name), &v);
    return FAILED(h) ? "<failed>" : textOf(v);
}

inline void expectProperties(IDispatch* object, const std::vector<PropertyText>& expected) {
    for (const PropertyText& p : expected) EXPECT_EQ(propertyText(object, p.name), p.text) << p.name;
}

// Sets each property from its text, as put_Property does.
inline void putProperties(IDispatch* object, const std::vector<PropertyText>& values) {
    for (const PropertyText& p : values) {
        ASSERT_EQ(invoke(object, u"Property", DISPATCH_PROPERTYPUT, {Variant::fromAnsi(p.name), Variant::fromAnsi(p.text)}),
                  S_OK)
            << p.name;
    }
}

inline void expectTranslations(IDispatch* object, const std::vector<EnumText>& expected) {
    for (const EnumText& e : expected) {
        Variant result;
        ASSERT_EQ(invoke(object, u"Translate", DISPATCH_METHOD, {Variant::fromLong(e.code)}, &result), S_OK);
        EXPECT_EQ(textOf(result), e.text) << e.code;
    }
}

// The bytes the object's stream companion writes.
inline std::vector<std::uint8_t> savedBytes(IDispatch* object, bool clearDirty = true) {
    ComPtr<IPersistStream> persist;
    EXPECT_EQ(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out())), S_OK);
    if (!persist) return {};
    MemoryStream* stream = MemoryStream::create();
    EXPECT_EQ(persist->Save(stream, clearDirty), S_OK);
    std::vector<std::uint8_t> bytes = stream->bytes();
    stream->Release();
    return bytes;
}

// Loads the bytes into the object; the status of Load, and the bytes left unread in `left`.
inline HRESULT loadBytes(IDispatch* object, const std::vector<std::uint8_t>& bytes, std::size_t* left = nullptr) {
    ComPtr<IPersistStream> persist;
    EXPECT_EQ(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out())), S_OK);
    if (!persist) return E_NOINTERFACE;
    MemoryStream* stream = MemoryStream::create(bytes);
    HRESULT h = persist->Load(stream);
    if (left) {
        std::uint64_t at = 0;
        stream->Seek(0, STREAM_SEEK_CUR, &at);
        *left = bytes.size() - at;
    }
    stream->Release();
    return h;
}

// Every property set to a value, saved, loaded into a fresh object of the class: the same values;
// and every shorter stream is refused without changing the object.
inline void expectRoundTrip(const char16_t* progId, const std::vector<PropertyText>& values, std::size_t recordSize) {
    ComPtr<IDispatch> source = newObject(progId);
    putProperties(source.get(), values);
    std::vector<std::uint8_t> bytes = savedBytes(source.get());
    EXPECT_EQ(bytes.size(), recordSize);
    ComPtr<IDispatch> target = newObject(progId);
    std::size_t left = 1;
    ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK);
    EXPECT_EQ(left, 0u);
    expectProperties(target.get(), values);
    for (std::size_t cut : {std::size_t{0}, bytes.size() / 2, bytes.size() - 1}) {
        ComPtr<IDispatch> fresh = newObject(progId);
        EXPECT_TRUE(FAILED(loadBytes(fresh.get(), std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + cut))))
            << cut;
    }
}

}  // namespace nvdl::test
