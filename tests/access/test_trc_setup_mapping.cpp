// A setup carried into a recording's setup section, through a file, and back into a new setup.
#include <gtest/gtest.h>
#include <tuple>

#include "../recording/TrcSetupSupport.h"
#include "access/SetupAccess.h"
#include "access/TrcSetupMapping.h"
#include "frame/LateBound.h"
#include "measurement/Parameter.h"
#include "nvdl/Variant.h"
#include "setup/Acquisition.h"
#include "setup/InputChannel.h"
#include "setup/Octave.h"
#include "setup/PostProcessing.h"
#include "setup/Processing.h"
#include "setup/Resampling.h"
#include "setup/Rpm.h"
#include "setup/SRS.h"
#include "setup/SaveFunction.h"
#include "setup/Saving.h"
#include "setup/ShockCapture.h"
#include "setup/SinRed.h"
#include "setup/SourceChannel.h"
#include "setup/SteppedSine.h"
#include "setup/StrainChannel.h"
#include "setup/Throughput.h"
#include "setup/Transducer.h"

namespace nvdl::access {
namespace {

template <class C, auto Get>
struct Single {
    using Object = C;
    static C& in(CSetup& setup) { return *sectionOf<C>(setup, Get); }
};
using AcquisitionOf = Single<CAcquisition, &CSetup::get_Acquisition>;
using ProcessingOf = Single<CProcessing, &CSetup::get_Processing>;
using ThroughputOf = Single<CThroughput, &CSetup::get_Throughput>;
using PostProcessingOf = Single<CPostProcessing, &CSetup::get_PostProcessing>;
using SrsOf = Single<CSRS, &CSetup::get_SRS>;
using ShockOf = Single<CShockCapture, &CSetup::get_ShockCapture>;
using RpmOf = Single<CRpm, &CSetup::get_Rpm>;
using Singles =
    std::tuple<AcquisitionOf, ProcessingOf, ThroughputOf, PostProcessingOf, Single<COctave, &CSetup::get_Octave>,
               Single<CResampling, &CSetup::get_Resampling>, Single<CSteppedSine, &CSetup::get_SteppedSine>, ShockOf,
               RpmOf, Single<CSinRed, &CSetup::get_SinRed>>;

template <class C, auto Get>
struct Items {
    using Object = C;
    static CObjectCollection& in(CSetup& setup) { return *collectionOf(setup, Get); }
};
using Collections =
    std::tuple<Items<CInputChannel, &CSetup::get_InputChannels>, Items<CTransducer, &CSetup::get_Transducers>,
               Items<CSourceChannel, &CSetup::get_SourceChannels>, Items<CStrainChannel, &CSetup::get_StrainChannels>>;

template <class Tuple, class F>
void forEachType(F&& f) {
    std::apply([&](auto... kinds) { (f(kinds), ...); }, Tuple{});
}

struct SetupObject {
    ComPtr<IDispatch> object{CSetup::create()};
    CSetup& get() { return *frameOf<CSetup>(object.get()); }
};

// Every field of the record's table gets a value no other field has.
template <class C>
void fillDistinct(C& object, int& seed) {
    for (const auto& field : C::kRecord.fields) {
        std::visit(
            [&](auto member) {
                auto& value = object.m_fields.*member;
                using T = std::remove_cvref_t<decltype(value)>;
                ++seed;
                if constexpr (std::is_same_v<T, std::string>) value = "t" + std::to_string(seed);
                else if constexpr (std::is_arithmetic_v<T>)
                    value = static_cast<T>(seed + (std::is_floating_point_v<T> ? 0.5 : 0));
            },
            field.value.member);
    }
}

template <class C>
void expectSame(const C& built, const C& expected, const char* where) {
    for (const auto& field : C::kRecord.fields)
        std::visit([&](auto member) { EXPECT_EQ(built.m_fields.*member, expected.m_fields.*member) << where; },
                   field.value.member);
}

void addNamed(CObjectCollection& list, IDispatch* (*create)(), const std::string& name, const std::string& value) {
    ComPtr<IDispatch> item(create());
    ASSERT_TRUE(SUCCEEDED(latebound::put(item.get(), u"Name", Variant::fromAnsi(name))));
    ASSERT_TRUE(SUCCEEDED(latebound::put(item.get(), u"Value", Variant::fromAnsi(value))));
    ASSERT_TRUE(SUCCEEDED(append(list, item.get())));
}

// A setup with every section filled, three of each channel kind (the second input unused) and three
// entries in each name list; its name is longer than a recording holds.
void fillAll(CSetup& setup) {
    int seed = 0;
    setup.m_fields = {std::string(150, 'n'), "someone", "WS_", "Layout A", 341, 1, 2, 3, 4, "20080422"};
    forEachType<Singles>([&](auto kind) { fillDistinct(decltype(kind)::in(setup), seed); });
    SrsOf::in(setup).m_fields = {"Srs1", 1.5f, 2.5f, 3.5f, 4.5f, 5, 6, 7, {}};
    for (float& limit : SrsOf::in(setup).m_fields.Limits) limit = static_cast<float>(++seed);
    auto& shock = ShockOf::in(setup).m_fields;
    for (auto* limits : {&shock.UpperLimits, &shock.LowerLimits})
        for (float& limit : *limits) limit = static_cast<float>(++seed);
    forEachType<Collections>([&](auto kind) {
        using Object = typename decltype(kind)::Object;
        for (int i = 0; i < 3; ++i) {
            ComPtr<IDispatch> item(Object::create());
            fillDistinct(*frameOf<Object>(item.get()), seed);
            ASSERT_TRUE(SUCCEEDED(append(decltype(kind)::in(setup), item.get())));
        }
    });
    frameOf<CInputChannel>(collectionOf(setup, &CSetup::get_InputChannels)->itemAt(1))->m_fields.Usage = 0;
    auto* saving = sectionOf<CSaving>(setup, &CSetup::get_Saving);
    saving->m_fields = {1, 2, 3, 4, 5, 6, 7, 8, 9.5f};
    for (int i = 0; i < 3; ++i) {
        const std::string n = std::to_string(i);
        addNamed(*collectionOf(setup, &CSetup::get_Parameters), &CParameter::create, "P" + n, "v" + n);
        addNamed(*collectionOf(*saving, &CSaving::get_MeasFunctions), &CSaveFunction::create, "Autopower" + n, "m" + n);
        addNamed(*collectionOf(*saving, &CSaving::get_TimeHistoryFunctions), &CSaveFunction::create, "Rms" + n,
                 "h" + n);
    }
}

// What a recording cannot hold goes back to its default in the expected setup.
void forgetUnpaired(CSetup& setup) {
    setup.m_fields.Name.resize(99);
    setup.m_fields.Creator.clear();
    setup.m_fields.DataMode = SetupFields{}.DataMode;
    AcquisitionOf::in(setup).m_fields.Name = AcquisitionFields{}.Name;
    auto& processing = ProcessingOf::in(setup).m_fields;
    processing.AverageCalculation = ProcessingFields{}.AverageCalculation;
    processing.RealTime = ProcessingFields{}.RealTime;
    ThroughputOf::in(setup).m_fields.Location = ThroughputFields{}.Location;
    auto& post = PostProcessingOf::in(setup).m_fields;
    post.Location = PostProcessingFields{}.Location;
    post.N2216ReadMode = PostProcessingFields{}.N2216ReadMode;
    RpmOf::in(setup).m_fields.RotateMethod = RpmFields{}.RotateMethod;
    auto& limits = SrsOf::in(setup).m_fields.Limits;
    std::fill(limits.begin() + trc::SrsRecord::kRows * trc::SrsRecord::kColumns, limits.end(), 0.0f);
    auto& inputs = *collectionOf(setup, &CSetup::get_InputChannels);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        auto& fields = frameOf<CInputChannel>(inputs.itemAt(i))->m_fields;
        fields.Recorded = InputChannelFields{}.Recorded;
        fields.AcqScaleFactor = InputChannelFields{}.AcqScaleFactor;
    }
}

std::vector<std::string> namesAndValues(CObjectCollection& list) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < list.size(); ++i)
        for (const char16_t* member : {u"Name", u"Value"}) {
            Variant value;
            EXPECT_TRUE(SUCCEEDED(latebound::get(list.itemAt(i), member, &value)));
            texts.push_back(bstrToAnsi(value.bstrVal));
        }
    return texts;
}

void expectSameSetup(CSetup& built, CSetup& expected) {
    EXPECT_TRUE(built.m_fields == expected.m_fields) << "setup";
    forEachType<Singles>([&](auto kind) {
        using Object = typename decltype(kind)::Object;
        expectSame(decltype(kind)::in(built), decltype(kind)::in(expected), Object::kClassName);
    });
    EXPECT_TRUE(SrsOf::in(built).m_fields == SrsOf::in(expected).m_fields) << "SRS";
    const auto& bs = ShockOf::in(built).m_fields;
    const auto& es = ShockOf::in(expected).m_fields;
    EXPECT_EQ(std::tie(bs.UpperLimits, bs.LowerLimits), std::tie(es.UpperLimits, es.LowerLimits));
    forEachType<Collections>([&](auto kind) {
        using Object = typename decltype(kind)::Object;
        auto& bl = decltype(kind)::in(built);
        auto& el = decltype(kind)::in(expected);
        ASSERT_EQ(bl.size(), el.size()) << Object::kClassName;
        for (std::size_t i = 0; i < bl.size(); ++i)
            expectSame(*frameOf<Object>(bl.itemAt(i)), *frameOf<Object>(el.itemAt(i)), Object::kClassName);
    });
    auto* bsav = sectionOf<CSaving>(built, &CSetup::get_Saving);
    auto* esav = sectionOf<CSaving>(expected, &CSetup::get_Saving);
    EXPECT_TRUE(bsav->m_fields == esav->m_fields) << "Saving";
    EXPECT_EQ(namesAndValues(*collectionOf(built, &CSetup::get_Parameters)),
              namesAndValues(*collectionOf(expected, &CSetup::get_Parameters)));
    for (auto list : {&CSaving::get_MeasFunctions, &CSaving::get_TimeHistoryFunctions})
        EXPECT_EQ(namesAndValues(*collectionOf(*bsav, list)), namesAndValues(*collectionOf(*esav, list)));
}

// The setup through applySetup, a file and buildSetup.
void roundTrip(CSetup& from, CSetup& to, trc::CTrcSetupSection& section) {
    test::TempDir dir;
    const std::string name = dir.file("setup.trc").string();
    ASSERT_TRUE(applySetup(from, section));
    ASSERT_TRUE(trc::test::writeSetup(name, section));
    trc::CTrcSetupSection read;
    ASSERT_TRUE(trc::test::readSetup(name, read));
    ASSERT_TRUE(buildSetup(read, to));
}

TEST(TrcSetupMapping, EveryPairedFieldComesBackFromTheFile) {
    SetupObject original, built, expected;
    fillAll(original.get());
    trc::CTrcSetupSection section;
    ASSERT_TRUE(applySetup(original.get(), section));  // a second apply must not add to the lists
    roundTrip(original.get(), built.get(), section);
    EXPECT_EQ(section.GetInputs().GetTotalChannels(), 3);
    EXPECT_EQ(section.GetInputs().GetUsedChannels(), 2);
    EXPECT_EQ(section.GetTachos().GetTotalChannels(), 1);
    EXPECT_EQ(section.GetProcessing().GetMaxAverageNumber(), section.GetProcessing().GetAverageNumber());
    fillAll(expected.get());
    forgetUnpaired(expected.get());
    SetupObject direct;
    ASSERT_TRUE(buildSetup(section, direct.get()));
    expectSameSetup(direct.get(), expected.get());
    // A stored setup's table has no room for the strain list's entry, so strains do not come back
    // from a file.
    ASSERT_TRUE(SUCCEEDED(collectionOf(expected.get(), &CSetup::get_StrainChannels)->Clear()));
    expectSameSetup(built.get(), expected.get());
}

TEST(TrcSetupMapping, EmptySetupComesBackAsDefaults) {
    SetupObject original, built, fresh;
    trc::CTrcSetupSection section;
    roundTrip(original.get(), built.get(), section);
    for (long count : {section.GetInputs().GetTotalChannels(), section.GetOutputs().GetTotalChannels(),
                       section.GetStrains().GetTotalChannels(), section.GetParameters().GetCount()})
        EXPECT_EQ(count, 0);
    expectSameSetup(built.get(), fresh.get());
}

}  // namespace
}  // namespace nvdl::access
