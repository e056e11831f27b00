// Workspaces for the tests: measurements with samples, compound files built element by element, and
// the tree of a compound file as paths.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "../frame/TestHelpers.h"
#include "../platform/StorageTree.h"
#include "../setup/PlainPutSupport.h"
#include "nvdl/IMeasurement.h"
#include "nvdl/IWorkspace.h"
#include "nvdl/SafeArray.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

namespace nvdl::test {

inline constexpr DWORD kCreateElement = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

inline ComPtr<IWorkspace> newWorkspace() { return ComPtr<IWorkspace>::query(newObject(u"nv_bench.workspace").get()); }

// A measurement named `name` holding `re` (and `im` when given).
inline ComPtr<IMeasurement> measurementOf(const char* name, const std::vector<float>& re,
                                          const std::vector<float>& im = {}) {
    ComPtr<IMeasurement> m = ComPtr<IMeasurement>::query(newObject(u"nv_bench.measurement").get());
    Variant reArray, imArray;
    reArray.vt = VT_ARRAY | VT_R4;
    reArray.parray = makeFloatArray(re);
    if (!im.empty()) {
        imArray.vt = VT_ARRAY | VT_R4;
        imArray.parray = makeFloatArray(im);
    }
    EXPECT_EQ(m->YArray(&reArray, static_cast<LONG>(re.size()), &imArray, nullptr), S_OK);
    putValues(m.get(), {{"Name", name}});
    return m;
}

inline void addItem(ICollection* collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    ASSERT_EQ(collection->Add(item, &key, &before, &after, &index), S_OK);
}

inline ComPtr<ICollection> collectionNamed(IDispatch* owner, const char16_t* name) {
    Variant v;
    EXPECT_EQ(latebound::get(owner, name, &v), S_OK);
    if (v.vt != VT_DISPATCH || !v.pdispVal) return {};
    v.pdispVal->AddRef();
    return ComPtr<ICollection>(static_cast<ICollection*>(v.pdispVal));
}

inline LONG countOf(ICollection* c) {
    LONG n = -1;
    c->get_Count(&n);
    return n;
}

inline ComPtr<IDispatch> itemAt(ICollection* c, LONG i) {
    ComPtr<IDispatch> item;
    EXPECT_EQ(c->Item(Variant::fromLong(i), item.out()), S_OK);
    return item;
}

inline ComPtr<IStorage> childStorage(IStorage* parent, const char16_t* name) {
    ComPtr<IStorage> child;
    EXPECT_EQ(parent->CreateStorage(name, kCreateElement, 0, 0, child.out()), S_OK);
    return child;
}

inline void putStream(IStorage* storage, const char16_t* name, const std::vector<std::uint8_t>& bytes) {
    ComPtr<IStream> stream;
    ASSERT_EQ(storage->CreateStream(name, kCreateElement, 0, 0, stream.out()), S_OK);
    ULONG written = 0;
    ASSERT_EQ(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
}

inline std::vector<std::uint8_t> textBytes(const std::string& text) { return {text.begin(), text.end() + 1}; }

}  // namespace nvdl::test
