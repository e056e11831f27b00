// For the sections that have no put_Property: values set through each property's own put, and the
// stream round trip over them.
#pragma once

#include "SectionTestSupport.h"

namespace nvdl::test {

inline void putValues(IDispatch* object, const std::vector<PropertyText>& values) {
    for (const PropertyText& p : values) ASSERT_EQ(putText(object, widen(p.name), p.text), S_OK) << p.name;
}

// Saved from an object holding `values`, loaded into a fresh one: the same values, nothing left
// unread; every shorter stream is refused and leaves the fresh object at its defaults.
inline void expectPlainRoundTrip(const char16_t* progId, const std::vector<PropertyText>& values,
                                 std::size_t recordSize, const std::vector<PropertyText>& defaults) {
    ComPtr<IDispatch> source = newObject(progId);
    putValues(source.get(), values);
    const std::vector<std::uint8_t> bytes = savedBytes(source.get());
    ASSERT_EQ(bytes.size(), recordSize);
    ComPtr<IDispatch> target = newObject(progId);
    std::size_t left = 1;
    ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK);
    EXPECT_EQ(left, 0u);
    expectProperties(target.get(), values);
    for (std::size_t cut : {std::size_t{0}, bytes.size() / 2, bytes.size() - 1}) {
        ComPtr<IDispatch> fresh = newObject(progId);
        EXPECT_TRUE(FAILED(loadBytes(fresh.get(), {bytes.begin(), bytes.begin() + cut}))) << cut;
        expectProperties(fresh.get(), defaults);
    }
}

}  // namespace nvdl::test
