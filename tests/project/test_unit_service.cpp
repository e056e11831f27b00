// The unit service objects and the client helpers, with the settings they read.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "../frame/TestHelpers.h"
#include "SettingsFileTest.h"
#include "frame/LateBound.h"
#include "nvdl/ServerEntry.h"
#include "nvdl/nvdl.h"
#include "platform/Registry.h"
#include "project/UnitClient.h"
#include "project/units/ShippedUnitsFile.h"

namespace nvdl::test {
namespace {

class UnitServiceTest : public SettingsFileTest {
protected:
    void SetUp() override {
        SettingsFileTest::SetUp();
        ReleaseUnitService();
    }
    void TearDown() override {
        ReleaseUnitService();
        SettingsFileTest::TearDown();
    }

    // The UnitsFile setting of the current user and of the machine.
    void unitsFileSetting(const std::string& user, const std::string& machine = "") {
        const std::string key = std::string("\\") + registry::kSettingsKey;
        writeSettings({{"HKEY_CURRENT_USER" + key, {{"UnitsFile", user}}},
                       {"HKEY_LOCAL_MACHINE" + key, {{"UnitsFile", machine}}}});
    }
    // A units file of two dimensions of its own.
    std::string writeUnits(const char* name) {
        std::filesystem::path file = dir_ / name;
        std::ofstream(file) << "[Span] 1 0 0 0 0 0 0 0 0 0\nfurlong 201.168\n[Beat] 0 1 0 0 0 0 0 0 0 0\ntick 1\n";
        return file.string();
    }
};

// Releases on leaving scope.
template <class T>
struct Ref {
    explicit Ref(T* p) : p(p) {}
    Ref(const Ref&) = delete;
    ~Ref() {
        if (p) p->Release();
    }
    T* operator->() const { return p; }
    T* p;
};

DimensionExponents exps(std::initializer_list<SHORT> leading) {
    DimensionExponents e{};
    std::copy(leading.begin(), leading.end(), e.begin());
    return e;
}

// A dimension in one line: "name #index row tableIndex in defaultUnit", then "unknown" and
// "not valid" when it is; "<none>" for null.
std::string summary(const Ref<IDimension>& d) {
    if (!d.p) return "<none>";
    return DimensionName(d.p) + " #" + std::to_string(DimensionIndex(d.p)) + " row " +
           std::to_string(DimensionTableIndex(d.p)) + " in " + DimensionDefaultUnitName(d.p) +
           (DimensionIsUnknown(d.p) ? " unknown" : "") + (DimensionIsValid(d.p) ? "" : " not valid");
}
// The same for a dimension the caller was given, releasing it.
std::string summary(IDimension* given) { return summary(Ref(given)); }

Variant propertyOf(IDispatch* object, std::u16string_view name) {
    Variant value;
    EXPECT_EQ(latebound::get(object, name, &value), S_OK) << narrow(name);
    return value;
}

Variant itemOf(IDispatch* collection, const Variant& key) {
    Variant item;
    EXPECT_EQ(invoke(collection, u"Item", DISPATCH_PROPERTYGET, {key}, &item), S_OK) << textOf(key);
    return item;
}

TEST_F(UnitServiceTest, StartsWithTheShippedFileWithoutConfiguration) {
    Ref service(GetOrCreateUnitService());
    ASSERT_TRUE(service.p);
    EXPECT_EQ(getText(service.p, u"FileName"), units::kShippedUnitsFile);
    Ref again(GetUnitService());
    EXPECT_EQ(again.p, service.p);  // one module-wide instance
    Ref dimensions(GetDimensions());
    ASSERT_TRUE(dimensions.p);
    LONG count = 0;
    dimensions->get_Count(&count);
    EXPECT_GT(count, 30);
}

TEST_F(UnitServiceTest, ResolvesUnitNamesThenDimensionNamesIgnoringCase) {
    Ref acceleration(DimensionFromText("m/s\xB2", false));
    EXPECT_EQ(summary(acceleration), "Acceleration #6 row 6 in m/s\xB2");
    EXPECT_EQ(summary(DimensionFromText("RPM", false)), "Angular velocity #15 row 15 in rad/s");
    EXPECT_EQ(summary(DimensionFromText("sound INTENSITY", false)), "Sound intensity #10 row 10 in W/m\xB2");
    EXPECT_EQ(summary(DimensionFromText("nonsense", false)), "<none>");
    EXPECT_EQ(summary(DimensionFromText("", true)), "<none>");
    DimensionExponents e;
    ASSERT_TRUE(GetDimensionExponents(acceleration.p, e));
    EXPECT_EQ(e, exps({1, -2}));

    Ref g(UnitOfDimension(acceleration.p, "G"));
    EXPECT_EQ(UnitName(g.p), "g");
    double scale = 0, offset = -1;
    EXPECT_TRUE(GetUnitScaleAndOffset(g.p, scale, offset));
    EXPECT_DOUBLE_EQ(scale, 9.80665);
    EXPECT_EQ(offset, 0.0);
    Ref temperature(DimensionFromText("temperature", false));
    Ref celsius(UnitOfDimension(temperature.p, "\xB0" "C"));
    EXPECT_TRUE(GetUnitScaleAndOffset(celsius.p, scale, offset));
    EXPECT_DOUBLE_EQ(offset, 273.15);
    EXPECT_EQ(summary(UnitDimension(celsius.p)), "Temperature #16 row 16 in K");
    EXPECT_EQ(UnitOfDimension(temperature.p, "Pa"), nullptr);
}

TEST_F(UnitServiceTest, ExponentsIndexesAndSquareRoots) {
    EXPECT_EQ(summary(DimensionWithExponents(exps({1, -2}))), "Acceleration #6 row 6 in m/s\xB2");
    EXPECT_EQ(summary(DimensionWithExponents(exps({}))), "Dimensionless #1 row 1 in 1");  // never the unknown row
    EXPECT_EQ(summary(DimensionWithExponents(exps({1, -3}))), "m*s^-3 #-1 row 0 in m*s^-3");  // no row: a new one
    EXPECT_EQ(summary(DimensionAtIndex(5)), "Velocity #5 row 5 in m/s");
    EXPECT_EQ(summary(DimensionAtIndex(-1)), "<none>");
    EXPECT_EQ(summary(DimensionAtIndex(100000)), "<none>");
    Ref unknown(DimensionAtIndex(0));
    EXPECT_EQ(summary(unknown), "Unknown #0 row 0 in ? unknown");

    Ref psd(DimensionFromText("g\xB2/Hz", false));
    EXPECT_EQ(summary(SquareRootDimension(psd.p)), "Velocity #5 row 5 in m/s");  // (2,-3) halves to (1,-1)
    Ref same(SquareRootDimension(unknown.p));
    EXPECT_EQ(same.p, unknown.p);
}

TEST_F(UnitServiceTest, CreateDimensionBuildsFromItsFourProperties) {
    // From a unit text alone: an expression over the table's units, or an unknown dimension.
    EXPECT_EQ(summary(CreateDimension(Variant(), 1, "m/s^3", 1.0)), "m*s^-3 #-1 row 0 in m/s^3");
    Ref g(CreateDimension(Variant(), 1, "g", 1.0));
    EXPECT_EQ(summary(g), "Acceleration #6 row 6 in g");
    EXPECT_EQ(summary(CreateDimension(Variant(), 1, "mV/EU", 1.0)), "mV/EU #-1 row 0 in mV/EU unknown not valid");
    EXPECT_EQ(summary(DimensionFromText("kN*m", true)), "Energy #18 row 18 in kN*m");  // the Y axis's third way

    // From a base dimension raised to a power, in one of its units, scaled.
    Ref squared(CreateDimension(Variant::fromAnsi("acceleration"), 2, "g\xB2", 2.0));
    EXPECT_EQ(summary(squared), "Acceleration\xB2 #20 row 20 in g\xB2");
    Ref unit(UnitOfDimension(squared.p, "g\xB2"));
    double scale = 0, offset = 0;
    GetUnitScaleAndOffset(unit.p, scale, offset);
    EXPECT_DOUBLE_EQ(scale, 2.0 * 9.80665 * 9.80665);
    EXPECT_EQ(getText(squared.p, u"Dimension"), "Acceleration");
    EXPECT_EQ(getText(squared.p, u"Exponent"), "2");
    EXPECT_EQ(summary(CreateDimension(Variant::fromDispatch(g.p), 1, "mm/s\xB2", 1.0)),
              "Acceleration #6 row 6 in mm/s\xB2");

    EXPECT_EQ(CreateDimension(Variant::fromAnsi("acceleration"), 1, "Pa", 1.0), nullptr);  // not its unit
    EXPECT_EQ(CreateDimension(Variant::fromAnsi("no such"), 1, "", 1.0), nullptr);
    EXPECT_EQ(CreateDimension(Variant(), 1, "m", 0.0), nullptr);  // a factor of 0
}

TEST_F(UnitServiceTest, SwitchedOffServiceAnswersNothingAndRaisesNothing) {
    env_.set("NVDL_UNIT_SERVICE", std::nullopt);
    Ref before(DimensionFromText("m", false));
    ASSERT_TRUE(before.p);
    const std::string key = std::string("HKEY_CURRENT_USER\\") + registry::kSettingsKey;
    writeSettings({{key, {{"UnitService", "0"}}}});
    EXPECT_EQ(GetUnitService(), nullptr);
    EXPECT_EQ(GetOrCreateUnitService(), nullptr);
    EXPECT_EQ(GetDimensions(), nullptr);
    EXPECT_EQ(GetUnits(before.p), nullptr);
    EXPECT_EQ(DimensionFromText("m", true), nullptr);
    EXPECT_EQ(CreateDimension(Variant(), 1, "m", 1.0), nullptr);
    EXPECT_EQ(DimensionAtIndex(1), nullptr);
    EXPECT_EQ(DimensionWithExponents(exps({1})), nullptr);
    EXPECT_EQ(DimensionTableIndex(before.p), 0);
    EXPECT_EQ(SquareRootDimension(before.p), nullptr);
    EXPECT_EQ(UnitOfDimension(before.p, "m"), nullptr);
    EXPECT_EQ(peekErrorInfo(), nullptr);
    // The environment overrides the setting either way.
    env_.set("NVDL_UNIT_SERVICE", "1");
    Ref back(GetUnitService());
    EXPECT_TRUE(back.p);  // the module's instance was kept
    env_.set("NVDL_UNIT_SERVICE", std::nullopt);
    EXPECT_EQ(GetUnitService(), nullptr);
    writeSettings({{key, {{"UnitService", "1"}}}});
    Ref again(GetUnitService());
    EXPECT_TRUE(again.p);
    env_.set("NVDL_UNIT_SERVICE", "0");
    EXPECT_EQ(GetUnitService(), nullptr);
}

TEST_F(UnitServiceTest, TheServiceNeitherCountsAsALiveObjectNorKeepsTheModuleLoaded) {
    env_.set("NVDL_UNIT_SERVICE", std::nullopt);
    ASSERT_EQ(ObjectCount(), 0);
    {
        IDispatch* object = nullptr;
        ASSERT_EQ(CreateObject(u"nv_bench.measurement", &object), S_OK);
        ASSERT_EQ(latebound::put(object, u"YDimension", Variant::fromAnsi("Acceleration")), S_OK);
        Variant dimension, name;
        ASSERT_EQ(latebound::get(object, u"YdDimension", &dimension), S_OK);
        ASSERT_EQ(latebound::get(dimension.pdispVal, u"Name", &name), S_OK);
        EXPECT_GT(ObjectCount(), 0);
        object->Release();
    }
    EXPECT_EQ(ObjectCount(), 0);
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
    Ref service(GetUnitService());
    EXPECT_TRUE(service.p) << "the module keeps its service until it is unloaded";
}

TEST_F(UnitServiceTest, NullObjectsAnswerNothing) {
    DimensionExponents e = exps({3});
    double scale = 5, offset = 5;
    EXPECT_EQ(DimensionName(nullptr), "");
    EXPECT_EQ(DimensionIndex(nullptr), -1);
    EXPECT_FALSE(GetDimensionExponents(nullptr, e));
    EXPECT_EQ(e, exps({}));
    EXPECT_FALSE(DimensionIsValid(nullptr));
    EXPECT_TRUE(DimensionIsUnknown(nullptr));
    EXPECT_EQ(DimensionDefaultUnitName(nullptr), "");
    EXPECT_EQ(DimensionTableIndex(nullptr), 0);
    EXPECT_EQ(UnitOfDimension(nullptr, "m"), nullptr);
    EXPECT_FALSE(GetUnitScaleAndOffset(nullptr, scale, offset));
    EXPECT_EQ(scale, 1.0);
    EXPECT_EQ(offset, 0.0);
    EXPECT_EQ(UnitDimension(nullptr), nullptr);
    EXPECT_EQ(GetUnits(nullptr), nullptr);
}

// The units file is the user's setting, else the machine's, read when the service is made.
TEST_F(UnitServiceTest, UnitsFileSettingNamesAnotherTable) {
    const std::string user = writeUnits("user.txt"), machine = writeUnits("machine.txt");
    unitsFileSetting(user, machine);
    Ref service(GetOrCreateUnitService());
    EXPECT_EQ(getText(service.p, u"FileName"), user);
    EXPECT_EQ(summary(DimensionFromText("FURLONG", false)), "Span #0 row 0 in furlong");
    EXPECT_EQ(summary(DimensionFromText("m/s\xB2", false)), "<none>");
    EXPECT_EQ(summary(DimensionAtIndex(1)), "Beat #1 row 1 in tick");

    unitsFileSetting("", machine);
    EXPECT_EQ(getText(Ref(GetOrCreateUnitService()).p, u"FileName"), user);
    ReleaseUnitService();
    Ref again(GetOrCreateUnitService());
    EXPECT_EQ(getText(again.p, u"FileName"), machine);
}

TEST_F(UnitServiceTest, UnreadableUnitsFileLeavesTheShippedTable) {
    unitsFileSetting((dir_ / "absent.txt").string());
    Ref service(GetOrCreateUnitService());
    ASSERT_TRUE(service.p);
    EXPECT_EQ(getText(service.p, u"FileName"), units::kShippedUnitsFile);
    EXPECT_EQ(peekErrorInfo(), nullptr);
    EXPECT_EQ(summary(DimensionFromText("g", false)), "Acceleration #6 row 6 in m/s\xB2");

    // Told directly, the service reports the failure and keeps its table.
    Variant result;
    EXPECT_EQ(invoke(service.p, u"Load", DISPATCH_METHOD, {Variant::fromAnsi("/no/such/units.txt")}, &result), E_FAIL);
    EXPECT_NE(pendingDescription().find("/no/such/units.txt"), std::string::npos);
    EXPECT_EQ(getText(service.p, u"FileName"), units::kShippedUnitsFile);
}

TEST_F(UnitServiceTest, ClientsReachTheCollectionsLateBound) {
    Ref service(GetOrCreateUnitService());
    Variant dimensions = propertyOf(service.p, u"Dimensions");
    Variant velocity = itemOf(dimensions.pdispVal, Variant::fromAnsi("VELOCITY"));
    EXPECT_EQ(getText(velocity.pdispVal, u"Name"), "Velocity");
    EXPECT_EQ(getText(velocity.pdispVal, u"Index"), "5");
    EXPECT_EQ(getText(velocity.pdispVal, u"IsUnknown"), "0");
    Variant time, bad;
    EXPECT_EQ(invoke(velocity.pdispVal, u"BaseExponent", DISPATCH_PROPERTYGET, {Variant::fromShort(2)}, &time), S_OK);
    EXPECT_EQ(textOf(time), "-1");
    EXPECT_EQ(invoke(velocity.pdispVal, u"BaseExponent", DISPATCH_PROPERTYGET, {Variant::fromShort(11)}, &bad),
              E_INVALIDARG);
    EXPECT_EQ(invoke(dimensions.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromLong(-1)}, &bad), E_INVALIDARG);

    Variant second = itemOf(propertyOf(velocity.pdispVal, u"Units").pdispVal, Variant::fromLong(1));
    EXPECT_EQ(getText(second.pdispVal, u"Name"), "mm/s");
    EXPECT_EQ(getText(second.pdispVal, u"Factor"), "0.001");
    Variant psi = itemOf(propertyOf(service.p, u"Units").pdispVal, Variant::fromAnsi("psi"));
    EXPECT_EQ(getText(propertyOf(psi.pdispVal, u"Dimension").pdispVal, u"Name"), "Pressure");
}

TEST_F(UnitServiceTest, NullOutputsAreRefusedByEveryMember) {
    Ref service(GetOrCreateUnitService());
    Ref dimensions(GetDimensions());
    Ref dimension(DimensionAtIndex(6));
    Ref units(GetUnits(dimension.p));
    Ref unit(UnitOfDimension(dimension.p, "g"));
    for (IDispatch* object : std::initializer_list<IDispatch*>{service.p, dimensions.p, dimension.p, units.p, unit.p}) {
        ASSERT_TRUE(object);
        expectNullOutputsRefused(object);
    }
}

}  // namespace
}  // namespace nvdl::test
