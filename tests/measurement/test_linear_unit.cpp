// The unit in which the square root of a measurement's Y values stands: half the exponents for auto
// powers, half of Y plus X for spectral densities, the unit's name stripped of its square.
#include <gtest/gtest.h>

#include "../frame/TestHelpers.h"
#include "measurement/Measurement.h"
#include "platform/ComPtr.h"

namespace nvdl::test {
namespace {

struct Case {
    const char* function;
    const char16_t* x;
    const char16_t* y;
    const char16_t* storage;
    const char16_t* linearUnit;
    const char16_t* linearDimension;
};

TEST(MeasurementLinearUnit, PowersAndDensitiesGiveTheUnitOfTheirSquareRoot) {
    const Case cases[] = {
        {"Autopower", u"Frequency", u"Acceleration²", u"g²", u"g", u"Acceleration"},
        {"PSD", u"Frequency", u"Acceleration²/Hz", u"(m/s²)²/Hz", u"m/s²", u"Acceleration"},
        {"PSD", u"Frequency", u"Velocity²/Hz", u"(mm/s)²/Hz", u"mm/s", u"Velocity"},
        {"ESD", u"Frequency", u"Force²/Hz", u"", u"N", u"Force"},
        {"Spectrum", u"Frequency", u"Acceleration", u"g", u"g", u"Acceleration"},
    };
    for (const Case& c : cases) {
        ComPtr<IDispatch> m(CMeasurement::create());
        ASSERT_EQ(putText(m.get(), u"FunctionType", c.function), S_OK);
        ASSERT_EQ(latebound::put(m.get(), u"XDimension", Variant::fromString(c.x)), S_OK);
        ASSERT_EQ(latebound::put(m.get(), u"YDimension", Variant::fromString(c.y)), S_OK);
        ASSERT_EQ(latebound::put(m.get(), u"StorageUnitY", Variant::fromString(c.storage)), S_OK);
        Variant unit;
        ASSERT_EQ(latebound::get(m.get(), u"LinearUnitY", &unit), S_OK) << c.function;
        EXPECT_EQ(std::u16string(bstrView(unit.bstrVal)), c.linearUnit) << c.function;

        Variant unitObject;
        ASSERT_EQ(latebound::get(m.get(), u"LinearUnitYd", &unitObject), S_OK);
        Variant dimension, dimensionName;
        ASSERT_EQ(latebound::get(unitObject.pdispVal, u"Dimension", &dimension), S_OK);
        ASSERT_EQ(latebound::get(dimension.pdispVal, u"Name", &dimensionName), S_OK);
        EXPECT_EQ(std::u16string(bstrView(dimensionName.bstrVal)), c.linearDimension) << c.function;
    }
}

TEST(MeasurementLinearUnit, NoYDimensionGivesNoUnit) {
    ComPtr<IMeasurement> m(CMeasurement::createMeasurement());
    ComPtr<IDispatch> unit;
    EXPECT_EQ(m->get_LinearUnitYd(unit.out()), E_FAIL);
    EXPECT_FALSE(unit);
}

}  // namespace
}  // namespace nvdl::test
