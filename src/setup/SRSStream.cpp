// The stream record of the shock-response-spectrum section: 2,192 bytes, a head of 128 (the tag as
// a long, then the plain fields, the last two bytes reserved) and the limits, one float each.
#include <vector>

#include "platform/LittleEndian.h"
#include "setup/SRS.h"

namespace nvdl {

namespace {

using R = SRSFields;
using namespace record;
constexpr Field<R, 1> kHeadFields[] = {
    {text(&R::Name, 100), {4}},
    {f32(&R::FreqMin), {104}},
    {f32(&R::FreqMax), {108}},
    {f32(&R::OctaveSpacing), {112}},
    {f32(&R::SDOFDamping), {116}},
    {i16(&R::DCOffset), {120}},
    {i16(&R::Drift), {122}},
    {i16(&R::Activated), {124}},
};
constexpr section::Record<R, 1> kHead{section::TagForm::Long, 0, {{{20070228, 128}}}, kHeadFields};
static_assert(section::wellFormed(kHead));

constexpr std::size_t kLimitsOffset = 128;
constexpr std::size_t kRecordSize = kLimitsOffset + kSrsLimitCount * 4;
static_assert(kRecordSize == 2192);

}  // namespace

// The head first, then the limits, into a copy: a short stream leaves the section as it was.
HRESULT CSectionPersistStream<CSRS>::Load(IStream* stream) {
    SRSFields stored = m_owner.m_fields;
    if (HRESULT h = section::read(stream, kHead, stored); FAILED(h)) return h;
    std::vector<std::uint8_t> bytes(kRecordSize - kLimitsOffset);
    if (HRESULT h = section::readExactly(stream, bytes.data(), bytes.size()); FAILED(h)) return h;
    for (std::size_t i = 0; i < kSrsLimitCount; ++i) stored.Limits[i] = le::f32(bytes.data() + 4 * i);
    m_owner.m_fields = std::move(stored);
    return S_OK;
}

HRESULT CSectionPersistStream<CSRS>::Save(IStream* stream, int clearDirty) {
    if (!stream) return E_POINTER;
    std::vector<std::uint8_t> bytes = section::encodeNewest(kHead, m_owner.m_fields);
    bytes.resize(kRecordSize);
    for (std::size_t i = 0; i < kSrsLimitCount; ++i)
        le::putF32(bytes.data() + kLimitsOffset + 4 * i, m_owner.m_fields.Limits[i]);
    HRESULT h = section::writeAll(stream, bytes.data(), bytes.size());
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

HRESULT CSectionPersistStream<CSRS>::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = kRecordSize;
    return S_OK;
}

}  // namespace nvdl
