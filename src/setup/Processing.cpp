#include "setup/Processing.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "frame/ClassTable.h"
#include "measurement/Measurement.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.processing", CLSID_CProcessing, "Sonvara Processing", &CProcessing::create}};

constexpr EnumPair kProcessingEnums[] = {
    {0, u"Ignore"},
    {1, u"Retry"},
    {2, u"Break"},
    {3, u"Range up"},
    {2000, u"Input Range"},
    {2001, u"Maximal Input Range"},
    {3000, u"Roving Hammer"},
    {3001, u"Roving Accelerators"},
};

// Two generations, the tag a long at the head. The first ends with the double-hit flags; the
// second adds the tolerance, the DC correction, the averaging counts and real time, then room.
using R = ProcessingFields;
using namespace record;
constexpr Field<R, 2> kProcessingFields[] = {
    {i32(&R::MeasurementFunction), {4, 4}},
    {i32(&R::AverageType), {8, 8}},
    {i32(&R::AverageNumber), {12, 12}},
    {f32(&R::AverageParameter), {16, 16}},
    {f32(&R::OverlapPercent), {20, 20}},
    {f32(&R::Offset), {24, 24}},
    {i32(&R::NbClasses), {28, 28}},
    {i32(&R::ExtremalClass), {32, 32}},
    {i32(&R::ResponseWindowType), {36, 36}},
    {f32(&R::ResponseWindowParameter), {40, 40}},
    {i32(&R::ExcitationWindowType), {44, 44}},
    {f32(&R::ExcitationWindowParameter), {48, 48}},
    {i32(&R::OverloadAction), {52, 52}},
    {i32(&R::OverloadRetryCount), {56, 56}},
    {i32(&R::DisplayRefreshCount), {60, 60}},
    {i32(&R::RovingMode), {64, 64}},
    {i16(&R::DoubleHitDetectionEnabled), {68, 68}},
    {i16(&R::DoubleHitAutoCorrect), {70, 70}},
    {f32(&R::DoubleHitToleranceFactor), {-1, 72}},
    {i16(&R::CorrectDC), {-1, 76}},
    {i32(&R::ComputeAverageNumber), {-1, 80}},
    {i32(&R::AverageCalculation), {-1, 84}},
    {i16(&R::RealTime), {-1, 88}},
};
constexpr section::Record<R, 2> kLayout{
    section::TagForm::Long, 0, {{{19990219, 72}, {20000327, 620}}}, kProcessingFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<ProcessingFields, 2> CProcessing::kRecord = kLayout;

const EnumTable& CProcessing::enums() {
    static const std::vector<EnumPair> rows = [] {
        const std::span<const EnumPair> measurement = measurementEnumTable().rows();
        std::vector<EnumPair> merged;
        merged.reserve(std::size(kProcessingEnums) + measurement.size());
        std::merge(std::begin(kProcessingEnums), std::end(kProcessingEnums), measurement.begin(), measurement.end(),
                   std::back_inserter(merged), [](const EnumPair& a, const EnumPair& b) { return a.value < b.value; });
        return merged;
    }();
    static const EnumTable table{rows};
    return table;
}

HRESULT CProcessing::Translate(LONG code, BSTR* text) { return enums().translate(code, text); }

}  // namespace nvdl
