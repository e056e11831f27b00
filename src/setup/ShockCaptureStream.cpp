// The stream record of the shock-capture section: the plain values with the counts, then the upper
// and the lower room, each of 384 little-endian floats, in the order of the table below, which the
// reader and the writer both walk.
#include <vector>

#include "platform/LittleEndian.h"
#include "setup/ShockCapture.h"

namespace nvdl {

namespace {

struct LimitArray {
    LimitValues ShockCaptureFields::*values;
    std::int32_t ShockCaptureFields::*count;
};
constexpr LimitArray kLimitArrays[] = {
    {&ShockCaptureFields::UpperLimits, &ShockCaptureFields::UpperLimitsCount},
    {&ShockCaptureFields::LowerLimits, &ShockCaptureFields::LowerLimitsCount},
};
constexpr std::size_t kRoomBytes = kLimitRoom * sizeof(float);

std::size_t recordSize() { return CShockCapture::kRecord.newest().size + std::size(kLimitArrays) * kRoomBytes; }

}  // namespace

HRESULT CSectionPersistStream<CShockCapture>::Load(IStream* stream) {
    ShockCaptureFields staged = m_owner.m_fields;
    if (HRESULT h = section::read(stream, CShockCapture::kRecord, staged); FAILED(h)) return h;
    std::vector<std::uint8_t> rooms(std::size(kLimitArrays) * kRoomBytes);
    if (HRESULT h = section::readExactly(stream, rooms.data(), rooms.size()); FAILED(h)) return h;
    const std::uint8_t* at = rooms.data();
    for (const LimitArray& a : kLimitArrays) {
        const std::int32_t count = staged.*a.count;
        if (count < 0 || static_cast<std::size_t>(count) > kLimitRoom) return E_FAIL;
        for (float& value : staged.*a.values) {
            value = le::f32(at);
            at += sizeof(float);
        }
    }
    m_owner.m_fields = std::move(staged);
    return S_OK;
}

HRESULT CSectionPersistStream<CShockCapture>::Save(IStream* stream, int clearDirty) {
    if (!stream) return E_POINTER;
    std::vector<std::uint8_t> bytes = section::encodeNewest(CShockCapture::kRecord, m_owner.m_fields);
    bytes.resize(recordSize());
    std::uint8_t* at = bytes.data() + CShockCapture::kRecord.newest().size;
    for (const LimitArray& a : kLimitArrays) {
        for (float value : m_owner.m_fields.*a.values) {
            le::putF32(at, value);
            at += sizeof(float);
        }
    }
    HRESULT h = section::writeAll(stream, bytes.data(), bytes.size());
    if (SUCCEEDED(h) && clearDirty) m_owner.put_Modified(0);
    return h;
}

HRESULT CSectionPersistStream<CShockCapture>::GetSizeMax(std::uint64_t* size) {
    if (!size) return E_POINTER;
    *size = recordSize();
    return S_OK;
}

}  // namespace nvdl
