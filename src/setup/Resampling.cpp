#include "setup/Resampling.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.Resampling", CLSID_CResampling, "Sonvara Resampling",
                                 &CResampling::create}};

// The tag as text in its 50 bytes, then a body of 60 bytes: the flag (a short and two bytes of
// padding), the sample frequency and the block size, then room.
using R = ResamplingFields;
using namespace record;
constexpr Field<R, 1> kResamplingFields[] = {
    {i16(&R::Active), {50}},
    {f32(&R::SampleFrequency), {54}},
    {i32(&R::Blocksize), {58}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::Text, 0, {{{20030314, 50 + 60}}}, kResamplingFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<ResamplingFields, 1> CResampling::kRecord = kLayout;

}  // namespace nvdl
