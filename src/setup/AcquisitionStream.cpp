// The stream record of the acquisition section. Its layout is fixed by the files in the field: the
// name, then 4-byte values with the generation's tag among them at offset 112, in three generations
// of 140, 144 and 2,200 bytes.
#include <climits>

#include "setup/Acquisition.h"

namespace nvdl {

namespace {

using R = AcquisitionFields;
using namespace record;
constexpr Field<R, 3> kAcquisitionFields[] = {
    {text(&R::Name, 100), {0, 0, 0}},
    {f32(&R::SampleFrequency), {100, 100, 100}},
    {f32(&R::CenterFrequency), {104, 104, 104}},
    {i32(&R::TriggerMode), {108, 108, 108}},
    {i32(&R::TriggerChannel), {116, 116, 116}},
    {f32(&R::TriggerLevel), {120, 120, 120}},
    {f32(&R::TriggerDelay), {124, 124, 124}},
    {f32(&R::AutoRangePercent), {128, 128, 128}},
    {i32(&R::Blocksize), {132, 132, 132}},
    {i32(&R::ArmMode), {136, 136, 136}},
    {i32(&R::ComputationBlocksize), {-1, 140, 140}},
    {i32(&R::AcquisitionBlocksize), {-1, -1, 144}},
    {i16(&R::GapFree), {-1, -1, 148}},
    {i16(&R::DigitalAC), {-1, -1, 150}},
    {i32(&R::DataFormat), {-1, -1, 152}},
};
// Every tag below 20030905 names the first generation, whatever it is: the oldest writers put no
// date there, so its tag is the lowest a long holds.
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Long, 112, {{{INT32_MIN, 140}, {20030905, 144}, {20060221, 2200}}}, kAcquisitionFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<AcquisitionFields, 3> CAcquisition::kRecord = kLayout;

// The values read pass the setters' rules: a rate at or below zero leaves the rate as it was.
HRESULT CSectionPersistStream<CAcquisition>::Load(IStream* stream) {
    AcquisitionFields read = m_owner.m_fields;
    std::size_t generation = 0;
    if (HRESULT h = section::read(stream, CAcquisition::kRecord, read, &generation); FAILED(h)) return h;
    read.SampleFrequency =
        CAcquisition::wholeSampleFrequency(read.SampleFrequency).value_or(m_owner.m_fields.SampleFrequency);
    read.ComputationBlocksize = CAcquisition::computationBlocksizeOf(read.ComputationBlocksize, read.Blocksize);
    read.DataFormat = CAcquisition::knownDataFormat(read.DataFormat);
    m_owner.m_fields = std::move(read);
    m_generation = generation;
    return S_OK;
}

HRESULT CSectionPersistStream<CAcquisition>::Save(IStream* stream, int clearDirty) {
    HRESULT h = section::write(stream, CAcquisition::kRecord, m_owner.m_fields);
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

// The size of the generation last read, though a save writes the newest.
HRESULT CSectionPersistStream<CAcquisition>::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    const auto& layout = CAcquisition::kRecord;
    *size = m_generation ? layout.generations[*m_generation].size : layout.newest().size;
    return S_OK;
}

}  // namespace nvdl
