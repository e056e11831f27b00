// Measurements built in memory for the exchange tests, and small file helpers.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../frame/TestHelpers.h"
#include "measurement/Measurement.h"
#include "platform/ComPtr.h"

namespace nvdl::test {

struct MeasurementRecipe {
    const char* name;
    const char* function;  // enumeration text
    const char* xDimension;
    const char* yDimension;
    float xStart, xIncrement;
    std::vector<float> re, im = {}, x = {};  // x: an arbitrary axis when given
    const char* response = "";
    const char* reference = "";
};

inline ComPtr<CMeasurement> buildMeasurement(const MeasurementRecipe& s) {
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    IDispatch* d = static_cast<IMeasurement*>(m.get());
    EXPECT_EQ(putText(d, u"Name", s.name), S_OK);
    EXPECT_EQ(putText(d, u"FunctionType", s.function), S_OK);
    if (*s.xDimension) {
        EXPECT_EQ(putText(d, u"XDimension", s.xDimension), S_OK);
    }
    if (*s.yDimension) {
        EXPECT_EQ(putText(d, u"YDimension", s.yDimension), S_OK);
    }
    EXPECT_EQ(putText(d, u"Response", s.response), S_OK);
    EXPECT_EQ(putText(d, u"Reference", s.reference), S_OK);
    EXPECT_EQ(m->put_XAxisType(Variant::fromLong(s.x.empty() ? kAxisEquidistant : kAxisArbitrary)), S_OK);
    EXPECT_EQ(m->put_XStart(s.xStart), S_OK);
    if (s.x.empty()) {
        EXPECT_EQ(m->put_XIncrement(s.xIncrement), S_OK);
    }
    EXPECT_EQ(m->put_Size(static_cast<LONG>(s.re.size())), S_OK);
    EXPECT_EQ(m->put_Complex(s.im.empty() ? VARIANT_FALSE : VARIANT_TRUE), S_OK);
    m->SetYValues(0, static_cast<LONG>(s.re.size()), s.re.data(), s.im.empty() ? nullptr : s.im.data());
    if (!s.x.empty()) m->SetXValues(0, static_cast<LONG>(s.x.size()), s.x.data());
    return m;
}

inline std::string readWhole(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

inline void writeWhole(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace nvdl::test
