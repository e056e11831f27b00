// The unit service objects and the client helpers, with the settings they read.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "../frame/TestHelpers.h"
#include "../platform/EnvGuard.h"
#include "platform/Registry.h"
#include "platform/TypeDescription.h"
#include "project/UnitClient.h"
#include "project/units/ShippedUnitsFile.h"

using namespace nvdl;
using nvdl::test::getText;

namespace {

class UnitServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("nvdl_unitservice_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
        env_.set("NVDL_REGISTRY", (dir_ / "registry.txt").string());
        ReleaseUnitService();
    }
    void TearDown() override {
        ReleaseUnitService();
        env_.restore();
        std::filesystem::remove_all(dir_);
    }

    // Settings values of the current user.
    void settings(const std::string& values, const std::string& machineValues = "") {
        std::string key = registry::kSettingsKey;
        std::ofstream(dir_ / "registry.txt") << "[HKEY_CURRENT_USER\\" << key << "]\n"
                                              << values << "[HKEY_LOCAL_MACHINE\\" << key << "]\n"
                                              << machineValues;
    }
    std::string writeUnits(const std::string& text) {
        std::filesystem::path file = dir_ / "units.txt";
        std::ofstream(file) << text;
        return file.string();
    }

    EnvGuard env_;
    std::filesystem::path dir_;
};

// Releases on leaving scope.
template <class T>
struct Ref {
    explicit Ref(T* p) : p(p) {}
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

const char* kTwoDimensions = "[Span] 1 0 0 0 0 0 0 0 0 0\nfurlong 201.168\n[Beat] 0 1 0 0 0 0 0 0 0 0\ntick 1\n";

}  // namespace

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
    Ref byUnit(DimensionFromText("m/s\xB2", false));
    EXPECT_EQ(DimensionName(byUnit.p), "Acceleration");
    EXPECT_EQ(DimensionIndex(byUnit.p), 6);
    Ref byFoldedUnit(DimensionFromText("RPM", false));
    EXPECT_EQ(DimensionName(byFoldedUnit.p), "Angular velocity");
    Ref byName(DimensionFromText("sound INTENSITY", false));
    EXPECT_EQ(DimensionName(byName.p), "Sound intensity");
    EXPECT_EQ(DimensionDefaultUnitName(byName.p), "W/m\xB2");
    EXPECT_EQ(DimensionFromText("nonsense", false), nullptr);
    EXPECT_EQ(DimensionFromText("", true), nullptr);

    DimensionExponents e;
    ASSERT_TRUE(GetDimensionExponents(byUnit.p, e));
    EXPECT_EQ(e, exps({1, -2}));
    EXPECT_TRUE(DimensionIsValid(byUnit.p));
    EXPECT_FALSE(DimensionIsUnknown(byUnit.p));

    Ref g(UnitOfDimension(byUnit.p, "G"));
    EXPECT_EQ(UnitName(g.p), "g");
    double scale = 0, offset = -1;
    EXPECT_TRUE(GetUnitScaleAndOffset(g.p, scale, offset));
    EXPECT_DOUBLE_EQ(scale, 9.80665);
    EXPECT_EQ(offset, 0.0);
    Ref temperature(DimensionFromText("temperature", false));
    Ref celsius(UnitOfDimension(temperature.p, "\xB0" "C"));
    EXPECT_TRUE(GetUnitScaleAndOffset(celsius.p, scale, offset));
    EXPECT_DOUBLE_EQ(offset, 273.15);
    Ref owner(UnitDimension(celsius.p));
    EXPECT_EQ(DimensionName(owner.p), "Temperature");
    EXPECT_EQ(UnitOfDimension(temperature.p, "Pa"), nullptr);
}

TEST_F(UnitServiceTest, ExponentsIndexesAndSquareRoots) {
    Ref acceleration(DimensionWithExponents(exps({1, -2})));
    EXPECT_EQ(DimensionName(acceleration.p), "Acceleration");
    Ref plain(DimensionWithExponents(exps({})));
    EXPECT_EQ(DimensionName(plain.p), "Dimensionless");  // never the unknown row
    EXPECT_FALSE(DimensionIsUnknown(plain.p));

    Ref jerk(DimensionWithExponents(exps({1, -3})));
    EXPECT_EQ(DimensionName(jerk.p), "m*s^-3");
    EXPECT_EQ(DimensionIndex(jerk.p), -1);
    EXPECT_EQ(DimensionTableIndex(jerk.p), 0);
    EXPECT_TRUE(DimensionIsValid(jerk.p));
    EXPECT_EQ(DimensionDefaultUnitName(jerk.p), "m*s^-3");

    Ref fifth(DimensionAtIndex(5));
    EXPECT_EQ(DimensionName(fifth.p), "Velocity");
    EXPECT_EQ(DimensionTableIndex(fifth.p), 5);
    EXPECT_EQ(DimensionAtIndex(-1), nullptr);
    EXPECT_EQ(DimensionAtIndex(100000), nullptr);
    Ref unknown(DimensionAtIndex(0));
    EXPECT_TRUE(DimensionIsUnknown(unknown.p));

    Ref psd(DimensionFromText("g\xB2/Hz", false));
    Ref root(SquareRootDimension(psd.p));  // (2,-3) halves to (1,-1)
    EXPECT_EQ(DimensionName(root.p), "Velocity");
    Ref same(SquareRootDimension(unknown.p));
    EXPECT_EQ(same.p, unknown.p);
}

TEST_F(UnitServiceTest, CreateDimensionBuildsFromItsFourProperties) {
    // From a unit text alone: an expression over the table's units, or an unknown dimension.
    Ref jerk(CreateDimension(Variant(), 1, "m/s^3", 1.0));
    EXPECT_TRUE(DimensionIsValid(jerk.p));
    EXPECT_EQ(DimensionName(jerk.p), "m*s^-3");
    EXPECT_EQ(DimensionDefaultUnitName(jerk.p), "m/s^3");
    Ref g(CreateDimension(Variant(), 1, "g", 1.0));
    EXPECT_EQ(DimensionName(g.p), "Acceleration");
    EXPECT_EQ(DimensionIndex(g.p), 6);
    EXPECT_EQ(DimensionDefaultUnitName(g.p), "g");
    Ref nonsense(CreateDimension(Variant(), 1, "mV/EU", 1.0));
    ASSERT_TRUE(nonsense.p);
    EXPECT_TRUE(DimensionIsUnknown(nonsense.p));
    EXPECT_FALSE(DimensionIsValid(nonsense.p));
    EXPECT_EQ(DimensionName(nonsense.p), "mV/EU");
    Ref viaHelper(DimensionFromText("kN*m", true));  // the Y axis's third way
    EXPECT_EQ(DimensionName(viaHelper.p), "Energy");
    EXPECT_EQ(DimensionDefaultUnitName(viaHelper.p), "kN*m");

    // From a base dimension raised to a power, in one of its units, scaled.
    Ref squared(CreateDimension(Variant::fromAnsi("acceleration"), 2, "g\xB2", 2.0));
    EXPECT_EQ(DimensionName(squared.p), "Acceleration\xB2");
    EXPECT_EQ(DimensionIndex(squared.p), 20);
    Ref unit(UnitOfDimension(squared.p, "g\xB2"));
    double scale = 0, offset = 0;
    GetUnitScaleAndOffset(unit.p, scale, offset);
    EXPECT_DOUBLE_EQ(scale, 2.0 * 9.80665 * 9.80665);
    EXPECT_EQ(getText(squared.p, u"Dimension"), "Acceleration");
    EXPECT_EQ(getText(squared.p, u"Exponent"), "2");
    Ref fromObject(CreateDimension(Variant::fromDispatch(g.p), 1, "mm/s\xB2", 1.0));
    EXPECT_EQ(DimensionDefaultUnitName(fromObject.p), "mm/s\xB2");

    EXPECT_EQ(CreateDimension(Variant::fromAnsi("acceleration"), 1, "Pa", 1.0), nullptr);  // not its unit
    EXPECT_EQ(CreateDimension(Variant::fromAnsi("no such"), 1, "", 1.0), nullptr);
    EXPECT_EQ(CreateDimension(Variant(), 1, "m", 0.0), nullptr);  // a factor of 0
}

TEST_F(UnitServiceTest, SwitchedOffServiceAnswersNothingAndRaisesNothing) {
    Ref before(DimensionFromText("m", false));
    ASSERT_TRUE(before.p);
    env_.set("NVDL_UNIT_SERVICE", "0");
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
    env_.set("NVDL_UNIT_SERVICE", "1");
    Ref back(GetUnitService());
    EXPECT_TRUE(back.p);  // the module's instance was kept
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

TEST_F(UnitServiceTest, UnitsFileSettingNamesAnotherTable) {
    const std::string file = writeUnits(kTwoDimensions);
    settings("\"UnitsFile\"=\"" + file + "\"\n");
    Ref service(GetOrCreateUnitService());
    EXPECT_EQ(getText(service.p, u"FileName"), file);
    Ref span(DimensionFromText("FURLONG", false));
    EXPECT_EQ(DimensionName(span.p), "Span");
    EXPECT_EQ(DimensionFromText("m/s\xB2", false), nullptr);
    Ref beat(DimensionAtIndex(1));
    EXPECT_EQ(DimensionName(beat.p), "Beat");
}

TEST_F(UnitServiceTest, MachineValueStandsWhenTheUserHasNone) {
    const std::string file = writeUnits(kTwoDimensions);
    settings("\"UnitsFile\"=\"\"\n", "\"UnitsFile\"=\"" + file + "\"\n");
    Ref service(GetOrCreateUnitService());
    EXPECT_EQ(getText(service.p, u"FileName"), file);
}

TEST_F(UnitServiceTest, UnreadableUnitsFileLeavesTheShippedTable) {
    settings("\"UnitsFile\"=\"" + (dir_ / "absent.txt").string() + "\"\n");
    Ref service(GetOrCreateUnitService());
    ASSERT_TRUE(service.p);
    EXPECT_EQ(getText(service.p, u"FileName"), units::kShippedUnitsFile);
    EXPECT_EQ(peekErrorInfo(), nullptr);
    Ref found(DimensionFromText("g", false));
    EXPECT_EQ(DimensionName(found.p), "Acceleration");

    // Told directly, the service reports the failure and keeps its table.
    Variant result;
    EXPECT_EQ(test::invoke(service.p, u"Load", DISPATCH_METHOD, {Variant::fromAnsi("/no/such/units.txt")}, &result),
              E_FAIL);
    EXPECT_NE(test::pendingDescription().find("/no/such/units.txt"), std::string::npos);
    EXPECT_EQ(getText(service.p, u"FileName"), units::kShippedUnitsFile);
}

TEST_F(UnitServiceTest, ClientsReachTheCollectionsLateBound) {
    Ref service(GetOrCreateUnitService());
    Variant dimensions;
    ASSERT_EQ(latebound::get(service.p, u"Dimensions", &dimensions), S_OK);
    Variant velocity;
    ASSERT_EQ(test::invoke(dimensions.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromAnsi("VELOCITY")},
                           &velocity),
              S_OK);
    EXPECT_EQ(getText(velocity.pdispVal, u"Name"), "Velocity");
    EXPECT_EQ(getText(velocity.pdispVal, u"Index"), "5");
    EXPECT_EQ(getText(velocity.pdispVal, u"IsUnknown"), "0");
    Variant time;
    EXPECT_EQ(test::invoke(velocity.pdispVal, u"BaseExponent", DISPATCH_PROPERTYGET, {Variant::fromShort(2)}, &time),
              S_OK);
    EXPECT_EQ(test::textOf(time), "-1");
    Variant bad;
    EXPECT_EQ(test::invoke(velocity.pdispVal, u"BaseExponent", DISPATCH_PROPERTYGET, {Variant::fromShort(11)}, &bad),
              E_INVALIDARG);
    EXPECT_EQ(test::invoke(dimensions.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromLong(-1)}, &bad),
              E_INVALIDARG);

    Variant units;
    ASSERT_EQ(latebound::get(velocity.pdispVal, u"Units", &units), S_OK);
    Variant second;
    ASSERT_EQ(test::invoke(units.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromLong(1)}, &second), S_OK);
    EXPECT_EQ(getText(second.pdispVal, u"Name"), "mm/s");
    EXPECT_EQ(getText(second.pdispVal, u"Factor"), "0.001");

    Variant all;
    ASSERT_EQ(latebound::get(service.p, u"Units", &all), S_OK);
    Variant psi;
    ASSERT_EQ(test::invoke(all.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromAnsi("psi")}, &psi), S_OK);
    Variant owner;
    ASSERT_EQ(latebound::get(psi.pdispVal, u"Dimension", &owner), S_OK);
    EXPECT_EQ(getText(owner.pdispVal, u"Name"), "Pressure");
}

TEST_F(UnitServiceTest, NullOutputsAreRefusedByEveryMember) {
    Ref service(GetOrCreateUnitService());
    Ref dimensions(GetDimensions());
    Ref dimension(DimensionAtIndex(6));
    Ref units(GetUnits(dimension.p));
    Ref unit(UnitOfDimension(dimension.p, "g"));
    for (IDispatch* object : std::initializer_list<IDispatch*>{service.p, dimensions.p, dimension.p, units.p, unit.p}) {
        ASSERT_TRUE(object);
        ITypeInfo* info = nullptr;
        ASSERT_EQ(object->GetTypeInfo(0, 0, &info), S_OK);
        auto* description = static_cast<InterfaceDescription*>(info);
        for (const MemberEntry& m : description->members())
            if (m.hasOutputs) {
                EXPECT_EQ(description->invokeWithNullOutputs(object, m), E_POINTER)
                    << description->name() << "::" << m.name;
            }
        info->Release();
    }
}
