// Signal range: values and their Modified mark, put and get by name, copies and the owner rule,
// embedding in an owner that takes over the reference count.
#include <gtest/gtest.h>

#include "../frame/TestHelpers.h"
#include "../frame/TestObjects.h"
#include "frame/ClassTable.h"
#include "frame/ObjectCount.h"
#include "measurement/SignalRange.h"
#include "nvdl/IMeasurement.h"

namespace nvdl::test {
namespace {

using DoubleGet = HRESULT (ISignalRange::*)(double*);
using DoublePut = HRESULT (ISignalRange::*)(double);
struct DoubleMember {
    const char* name;
    DoubleGet get;
    DoublePut put;
};
const DoubleMember kDoubles[] = {
    {"Min", &ISignalRange::get_Min, &ISignalRange::put_Min},
    {"Max", &ISignalRange::get_Max, &ISignalRange::put_Max},
    {"OverallMin", &ISignalRange::get_OverallMin, &ISignalRange::put_OverallMin},
    {"OverallMax", &ISignalRange::get_OverallMax, &ISignalRange::put_OverallMax},
    {"Mean", &ISignalRange::get_Mean, &ISignalRange::put_Mean},
    {"Rms", &ISignalRange::get_Rms, &ISignalRange::put_Rms},
    {"StandardDeviation", &ISignalRange::get_StandardDeviation, &ISignalRange::put_StandardDeviation},
    {"Factor", &ISignalRange::get_Factor, &ISignalRange::put_Factor},
    {"UnitOffset", &ISignalRange::get_UnitOffset, &ISignalRange::put_UnitOffset},
};

double read(ISignalRange& r, DoubleGet get) {
    double v = -99.0;
    EXPECT_EQ((r.*get)(&v), S_OK);
    return v;
}

float rangeOf(ISignalRange& r) {
    float v = -99.0f;
    EXPECT_EQ(r.get_Range(&v), S_OK);
    return v;
}

SHORT modifiedOf(ISignalRange& r) {
    SHORT v = 99;
    EXPECT_EQ(r.get_Modified(&v), S_OK);
    return v;
}

IDispatch* measurementOf(ISignalRange& r) {
    IDispatch* owner = nullptr;
    EXPECT_EQ(r.get_Measurement(&owner), S_OK);
    if (owner) owner->Release();
    return owner;
}

// Distinct values for the ten properties, one per position.
void fill(ISignalRange& r, double base) {
    double value = base;
    for (const DoubleMember& m : kDoubles) {
        (r.*m.put)(value);
        value += 1.0;
    }
    r.put_Range(static_cast<float>(base) + 0.5f);
}

void expectFilled(ISignalRange& r, double base) {
    double value = base;
    for (const DoubleMember& m : kDoubles) {
        EXPECT_EQ(read(r, m.get), value) << m.name;
        value += 1.0;
    }
    EXPECT_EQ(rangeOf(r), static_cast<float>(base) + 0.5f);
}

TEST(SignalRange, NewRangeIsZeroAndUnmodified) {
    CSignalRange r;
    for (const DoubleMember& m : kDoubles) EXPECT_EQ(read(r, m.get), 0.0) << m.name;
    EXPECT_EQ(rangeOf(r), 0.0f);
    EXPECT_EQ(modifiedOf(r), 0);
    EXPECT_EQ(measurementOf(r), nullptr);
}

TEST(SignalRange, EverySetterStoresWithoutChecksAndMarksModified) {
    for (const DoubleMember& m : kDoubles) {
        CSignalRange r;
        EXPECT_EQ((r.*m.put)(-1e300), S_OK) << m.name;
        EXPECT_EQ(read(r, m.get), -1e300) << m.name;
        EXPECT_EQ(modifiedOf(r), -1) << m.name;
    }
    CSignalRange r;
    EXPECT_EQ(r.put_Range(-3.5f), S_OK);
    EXPECT_EQ(rangeOf(r), -3.5f);
    EXPECT_EQ(modifiedOf(r), -1);
    EXPECT_EQ(r.put_Modified(0), S_OK);
    EXPECT_EQ(modifiedOf(r), 0);
}

TEST(SignalRange, NullOutputsAreRefused) {
    CSignalRange r;
    for (const DoubleMember& m : kDoubles) EXPECT_EQ((r.*m.get)(nullptr), E_POINTER) << m.name;
    EXPECT_EQ(r.get_Range(nullptr), E_POINTER);
    EXPECT_EQ(r.get_Modified(nullptr), E_POINTER);
    EXPECT_EQ(r.get_Measurement(nullptr), E_POINTER);
    EXPECT_EQ(r.Clone(nullptr), E_POINTER);
    EXPECT_EQ(r.Copy(nullptr), E_POINTER);
    EXPECT_EQ(r.get_Property(Bstr(std::string_view("Min")).get(), nullptr), E_POINTER);
}

TEST(SignalRange, PutPropertyParsesByTheDeclaredType) {
    CSignalRange r;
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("Mean")).get(), Bstr(std::string_view("-2.5e3")).get()), S_OK);
    EXPECT_EQ(read(r, &ISignalRange::get_Mean), -2500.0);
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("Range")).get(), Bstr(std::string_view("10 V")).get()), S_OK);
    EXPECT_EQ(rangeOf(r), 10.0f);
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("Modified")).get(), Bstr(std::string_view("0")).get()), S_OK);
    EXPECT_EQ(modifiedOf(r), 0);

    EXPECT_EQ(r.put_Property(Bstr(std::string_view("Range")).get(), Bstr(std::string_view("abc")).get()), E_INVALIDARG);
    EXPECT_EQ(rangeOf(r), 10.0f);
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("Min")).get(), Bstr(std::string_view("")).get()), E_FAIL);
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("")).get(), Bstr(std::string_view("1")).get()), E_FAIL);
}

TEST(SignalRange, PutPropertyOfAnUnknownNameRaisesItsMessage) {
    CSignalRange r;
    clearErrorInfo();
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("NoSuch")).get(), Bstr(std::string_view("1")).get()), E_FAIL);
    EXPECT_EQ(pendingDescription(), "NoSuch does not have property put.");
    // Names match as the interface spells them.
    EXPECT_EQ(r.put_Property(Bstr(std::string_view("min")).get(), Bstr(std::string_view("1")).get()), E_FAIL);
    EXPECT_EQ(read(r, &ISignalRange::get_Min), 0.0);
}

TEST(SignalRange, GetPropertyAndLateBoundCallsSeeTheValues) {
    CSignalRange r;
    r.put_Rms(0.25);
    Bstr text;
    EXPECT_EQ(r.get_Property(Bstr(std::string_view("Rms")).get(), text.out()), S_OK);
    EXPECT_EQ(text.ansi(), "0.25");
    EXPECT_TRUE(FAILED(r.get_Property(Bstr(std::string_view("NoSuch")).get(), text.out())));

    EXPECT_EQ(putText(r.dispatch(), u"StandardDeviation", "1.75"), S_OK);
    EXPECT_EQ(read(r, &ISignalRange::get_StandardDeviation), 1.75);
    EXPECT_EQ(getText(r.dispatch(), u"StandardDeviation"), "1.75");
}

TEST(SignalRange, CopyCarriesValuesFlagAndOwnerOnlyToAnOwnerlessTarget) {
    CTestItem* ownerA = CTestItem::create();
    CTestItem* ownerB = CTestItem::create();
    CSignalRange source;
    source.SetOwner(ownerA->dispatch());
    fill(source, 1.0);
    source.put_Modified(0);

    CSignalRange loose;
    loose.put_Min(77.0);
    EXPECT_EQ(source.Copy(&loose), S_OK);
    expectFilled(loose, 1.0);
    EXPECT_EQ(modifiedOf(loose), 0);  // the flag is the source's, after the setters marked it
    EXPECT_EQ(measurementOf(loose), ownerA->dispatch());

    CSignalRange owned;
    owned.SetOwner(ownerB->dispatch());
    source.put_Modified(-1);
    EXPECT_EQ(source.Copy(&owned), S_OK);
    expectFilled(owned, 1.0);
    EXPECT_EQ(modifiedOf(owned), -1);
    EXPECT_EQ(measurementOf(owned), ownerB->dispatch());

    CSignalRange assigned;
    assigned = source;
    expectFilled(assigned, 1.0);
    EXPECT_EQ(measurementOf(assigned), ownerA->dispatch());

    ownerA->Release();
    ownerB->Release();
}

TEST(SignalRange, CloneIsACountedObjectOfItsOwnWithTheSourcesOwnerAsMeasurement) {
    CTestItem* owner = CTestItem::create();
    long objectsBefore = g_nObjects;
    {
        CSignalRange embedded;
        embedded.SetOwner(owner->dispatch());
        fill(embedded, 5.0);
        ISignalRange* copy = nullptr;
        ASSERT_EQ(embedded.Clone(&copy), S_OK);
        ASSERT_NE(copy, nullptr);
        expectFilled(*copy, 5.0);
        EXPECT_EQ(modifiedOf(*copy), -1);
        EXPECT_EQ(measurementOf(*copy), owner->dispatch());

        // The clone counts for itself; the owner's count does not move.
        EXPECT_EQ(copy->AddRef(), 2u);
        EXPECT_EQ(owner->AddRef(), 2u);
        EXPECT_EQ(owner->Release(), 1u);
        EXPECT_EQ(copy->Release(), 1u);
        EXPECT_EQ(g_nObjects, objectsBefore + 2);
        EXPECT_EQ(copy->Release(), 0u);
        EXPECT_EQ(g_nObjects, objectsBefore + 1);
    }
    EXPECT_EQ(g_nObjects, objectsBefore);
    owner->Release();
}

TEST(SignalRange, EmbeddedRangeLendsItsReferencesToItsOwner) {
    CTestItem* owner = CTestItem::create();
    CSignalRange embedded;
    EXPECT_EQ(embedded.AddRef(), 1u);  // no owner yet: the range lives by its embedding alone
    EXPECT_EQ(embedded.Release(), 1u);
    embedded.SetOwner(owner->dispatch());
    EXPECT_EQ(embedded.AddRef(), 2u);
    ISignalRange* asked = nullptr;
    ASSERT_EQ(embedded.QueryInterface(IID_ISignalRange, reinterpret_cast<void**>(&asked)), S_OK);
    EXPECT_EQ(owner->AddRef(), 4u);
    owner->Release();
    asked->Release();
    EXPECT_EQ(embedded.Release(), 1u);

    // Another measurement named later takes the Modified mark, not the references.
    CTestItem* other = CTestItem::create();
    embedded.put_Measurement(other->dispatch());
    EXPECT_EQ(measurementOf(embedded), other->dispatch());
    EXPECT_EQ(embedded.AddRef(), 2u);
    EXPECT_EQ(embedded.Release(), 1u);
    other->Release();
    owner->Release();
}

TEST(SignalRange, DeadMeasurementIsClearedAndTheFlagStaysLocal) {
    CTestItem* owner = CTestItem::create();
    CSignalRange r;
    r.put_Measurement(owner->dispatch());
    owner->Release();
    IDispatch* seen = reinterpret_cast<IDispatch*>(1);
    EXPECT_EQ(r.get_Measurement(&seen), E_POINTER);
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(r.put_Max(3.0), S_OK);
    EXPECT_EQ(modifiedOf(r), -1);
    EXPECT_EQ(measurementOf(r), nullptr);
}


IMeasurement* newMeasurement() {
    IDispatch* object = nullptr;
    EXPECT_EQ(createInstance(CLSID_CMeasurement, &object), S_OK);
    return static_cast<IMeasurement*>(object);
}

SHORT modifiedOf(IMeasurement& m) {
    SHORT v = 99;
    EXPECT_EQ(m.get_Modified(&v), S_OK);
    return v;
}

TEST(SignalRange, RangeOfAMeasurementMarksItAndKeepsItAlive) {
    long objectsBefore = g_nObjects;
    IMeasurement* m = newMeasurement();
    ISignalRange* range = nullptr;
    ASSERT_EQ(m->get_SignalRange(&range), S_OK);
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(measurementOf(*range), m);

    m->put_Modified(0);
    EXPECT_EQ(range->put_Mean(0.5), S_OK);
    EXPECT_NE(modifiedOf(*m), 0);
    // Clearing stays with the range.
    range->put_Modified(0);
    EXPECT_NE(modifiedOf(*m), 0);
    m->put_Modified(0);
    EXPECT_EQ(putText(range, u"Range", "5"), S_OK);
    EXPECT_NE(modifiedOf(*m), 0);

    // The range's reference holds the whole measurement.
    m->Release();
    EXPECT_EQ(read(*range, &ISignalRange::get_Mean), 0.5);
    EXPECT_EQ(rangeOf(*range), 5.0f);
    range->Release();
    EXPECT_EQ(g_nObjects, objectsBefore);
}

}  // namespace
}  // namespace nvdl::test
