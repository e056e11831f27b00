// Signal range: values and their Modified mark, put and get by name, copies and the owner rule,
// embedding in an owner that takes over the reference count.
#include "../frame/TestObjects.h"
#include "PersistenceTestSupport.h"
#include "frame/ObjectCount.h"
#include "measurement/SignalRange.h"

namespace nvdl::test {
namespace {

using R = ISignalRange;
struct DoubleMember {
    const char* name;
    HRESULT (R::*get)(double*);
    HRESULT (R::*put)(double);
};
const DoubleMember kDoubles[] = {
    {"Min", &R::get_Min, &R::put_Min},
    {"Max", &R::get_Max, &R::put_Max},
    {"OverallMin", &R::get_OverallMin, &R::put_OverallMin},
    {"OverallMax", &R::get_OverallMax, &R::put_OverallMax},
    {"Mean", &R::get_Mean, &R::put_Mean},
    {"Rms", &R::get_Rms, &R::put_Rms},
    {"StandardDeviation", &R::get_StandardDeviation, &R::put_StandardDeviation},
    {"Factor", &R::get_Factor, &R::put_Factor},
    {"UnitOffset", &R::get_UnitOffset, &R::put_UnitOffset},
};

// What a getter gives; it starts away from every value the tests expect, so a getter that writes
// nothing shows.
template <class T>
T read(R& r, HRESULT (R::*get)(T*)) {
    T v = static_cast<T>(-99);
    EXPECT_EQ((r.*get)(&v), S_OK);
    return v;
}

IDispatch* measurementOf(R& r) {
    IDispatch* owner = nullptr;
    EXPECT_EQ(r.get_Measurement(&owner), S_OK);
    if (owner) owner->Release();
    return owner;
}

// Distinct values for the ten properties, one per position.
void fill(R& r, double base) {
    double value = base;
    for (const DoubleMember& m : kDoubles) {
        (r.*m.put)(value);
        value += 1.0;
    }
    r.put_Range(static_cast<float>(base) + 0.5f);
}

void expectFilled(R& r, double base) {
    double value = base;
    for (const DoubleMember& m : kDoubles) {
        EXPECT_EQ(read(r, m.get), value) << m.name;
        value += 1.0;
    }
    EXPECT_EQ(read(r, &R::get_Range), static_cast<float>(base) + 0.5f);
}

TEST(SignalRange, NewRangeIsZeroAndEverySetterStoresWithoutChecksAndMarksModified) {
    for (const DoubleMember& m : kDoubles) {
        CSignalRange r;
        EXPECT_EQ(read(r, m.get), 0.0) << m.name;
        EXPECT_EQ(read(r, &R::get_Modified), 0) << m.name;
        EXPECT_EQ((r.*m.put)(-1e300), S_OK) << m.name;
        EXPECT_EQ(read(r, m.get), -1e300) << m.name;
        EXPECT_EQ(read(r, &R::get_Modified), -1) << m.name;
    }
    CSignalRange r;
    EXPECT_EQ(read(r, &R::get_Range), 0.0f);
    EXPECT_EQ(measurementOf(r), nullptr);
    EXPECT_EQ(r.put_Range(-3.5f), S_OK);
    EXPECT_EQ(read(r, &R::get_Range), -3.5f);
    EXPECT_EQ(read(r, &R::get_Modified), -1);
    EXPECT_EQ(r.put_Modified(0), S_OK);
    EXPECT_EQ(read(r, &R::get_Modified), 0);
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

TEST(SignalRange, PropertiesByNameParseByTheDeclaredTypeAndLateBoundCallsSeeTheValues) {
    CSignalRange r;
    auto put = [&r](const char* name, const char* value) {
        return r.put_Property(Bstr(std::string_view(name)).get(), Bstr(std::string_view(value)).get());
    };
    EXPECT_EQ(put("Mean", "-2.5e3"), S_OK);
    EXPECT_EQ(read(r, &R::get_Mean), -2500.0);
    EXPECT_EQ(put("Range", "10 V"), S_OK);
    EXPECT_EQ(read(r, &R::get_Range), 10.0f);
    EXPECT_EQ(put("Modified", "0"), S_OK);
    EXPECT_EQ(read(r, &R::get_Modified), 0);
    EXPECT_EQ(put("Range", "abc"), E_INVALIDARG);
    EXPECT_EQ(read(r, &R::get_Range), 10.0f);
    EXPECT_EQ(put("Min", ""), E_FAIL);
    EXPECT_EQ(put("", "1"), E_FAIL);
    // An unknown name raises its message; names match as the interface spells them.
    clearErrorInfo();
    EXPECT_EQ(put("NoSuch", "1"), E_FAIL);
    EXPECT_EQ(pendingDescription(), "NoSuch does not have property put.");
    EXPECT_EQ(put("min", "1"), E_FAIL);
    EXPECT_EQ(read(r, &R::get_Min), 0.0);

    r.put_Rms(0.25);
    Bstr got;
    EXPECT_EQ(r.get_Property(Bstr(std::string_view("Rms")).get(), got.out()), S_OK);
    EXPECT_EQ(got.ansi(), "0.25");
    EXPECT_TRUE(FAILED(r.get_Property(Bstr(std::string_view("NoSuch")).get(), got.out())));
    EXPECT_EQ(putText(r.dispatch(), u"StandardDeviation", "1.75"), S_OK);
    EXPECT_EQ(read(r, &R::get_StandardDeviation), 1.75);
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
    EXPECT_EQ(read(loose, &R::get_Modified), 0);  // the flag is the source's, after the setters marked it
    EXPECT_EQ(measurementOf(loose), ownerA->dispatch());

    CSignalRange owned;
    owned.SetOwner(ownerB->dispatch());
    source.put_Modified(-1);
    EXPECT_EQ(source.Copy(&owned), S_OK);
    expectFilled(owned, 1.0);
    EXPECT_EQ(read(owned, &R::get_Modified), -1);
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
        EXPECT_EQ(read(*copy, &R::get_Modified), -1);
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
    EXPECT_EQ(read(r, &R::get_Modified), -1);
    EXPECT_EQ(measurementOf(r), nullptr);
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
    EXPECT_NE(value(m, &IMeasurement::get_Modified), 0);
    // Clearing stays with the range.
    range->put_Modified(0);
    EXPECT_NE(value(m, &IMeasurement::get_Modified), 0);
    m->put_Modified(0);
    EXPECT_EQ(putText(range, u"Range", "5"), S_OK);
    EXPECT_NE(value(m, &IMeasurement::get_Modified), 0);

    // The range's reference holds the whole measurement.
    m->Release();
    EXPECT_EQ(read(*range, &R::get_Mean), 0.5);
    EXPECT_EQ(read(*range, &R::get_Range), 5.0f);
    range->Release();
    EXPECT_EQ(g_nObjects, objectsBefore);
}

}  // namespace
}  // namespace nvdl::test
