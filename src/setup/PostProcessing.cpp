#include "setup/PostProcessing.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.PostProcessing", CLSID_CPostProcessing, "Sonvara PostProcessing",
                                 &CPostProcessing::create}};

// The tag as text in its 50 bytes, then a body that grew twice: 64 bytes (the flag, a short with two
// bytes of padding, and the replay span, then room), 300 more for the recording's file name, and
// 512 more that begin with the location and the read mode.
using R = PostProcessingFields;
using namespace record;
constexpr Field<R, 3> kPostProcessingFields[] = {
    {i16(&R::Activated), {50, 50, 50}},
    {f32(&R::ReplayStart), {54, 54, 54}},
    {f32(&R::ReplayStop), {58, 58, 58}},
    {text(&R::Filename, 300), {-1, 114, 114}},
    {i32(&R::Location), {-1, -1, 414}},
    {i32(&R::N2216ReadMode), {-1, -1, 418}},
};
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Text,
    0,
    {{{20030316, 50 + 64}, {20030617, 50 + 364}, {20061123, 50 + 876}}},
    kPostProcessingFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<PostProcessingFields, 3> CPostProcessing::kRecord = kLayout;

}  // namespace nvdl
