#include "setup/Octave.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.octave", CLSID_COctave, "Sonvara Octave", &COctave::create}};

// Three generations, the tag a text of 50 bytes at the head: the band span, weighting and intervals
// (74 bytes), then the compute interval and the time weighting (82), then the peak hold in a record
// of 394 bytes whose last 308 are reserved and written as zeros.
using R = OctaveFields;
using namespace record;
constexpr Field<R, 3> kOctaveFields[] = {
    {i32(&R::Processing), {50, 50, 50}},
    {f32(&R::StartFrequency), {54, 54, 54}},
    {f32(&R::StopFrequency), {58, 58, 58}},
    {f32(&R::IntegrationTime), {62, 62, 62}},
    {i32(&R::Weighting), {66, 66, 66}},
    {i32(&R::SaveInterval), {70, 70, 70}},
    {f32(&R::ComputeInterval), {-1, 74, 74}},
    {i32(&R::TimeWeighting), {-1, 78, 78}},
    {i32(&R::PeakHold), {-1, -1, 82}},
};
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Text, 0, {{{20021008, 74}, {20070320, 82}, {20080319, 394}}}, kOctaveFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<OctaveFields, 3> COctave::kRecord = kLayout;

}  // namespace nvdl
