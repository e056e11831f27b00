// CShockCapture: the shock-capture section of a setup: plain values and two limit profiles, each a
// fixed room of floats of which the first `...LimitsCount` are in use. The room matches the limit
// blocks of the recording files (128 rows of three values), so a profile passes between the two
// unchanged. Its stream record carries the rooms whole after the plain values, so it has a
// persistence companion of its own.
#pragma once

#include <array>
#include <string>

#include "frame/EnumTable.h"
#include "nvdl/IShockCapture.h"
#include "setup/SectionFrame.h"

namespace nvdl {

inline constexpr LONG kLimitRows = 128;
inline constexpr LONG kLimitColumns = 3;
inline constexpr std::size_t kLimitRoom = kLimitRows * kLimitColumns;
using LimitValues = std::array<float, kLimitRoom>;

struct ShockCaptureFields {
    std::string Name = "ShockCapture";
    LimitValues UpperLimits{};
    std::int32_t UpperLimitsCount = 0;
    LimitValues LowerLimits{};
    std::int32_t LowerLimitsCount = 0;
    float PulsePeak = 30.0f;
    float PulseDuration = 11.0f;
    std::int16_t Activated = 0;
    std::int32_t RefType = 0;
    float LowPassExc = 10000.0f;
    float LowPassResp = 10000.0f;
};

class CShockCapture;

// The stream record: the plain values (tag at the head) then both rooms, all 384 floats of each.
// A count outside the room marks a damaged record, which is refused with the object unchanged.
template <>
class CSectionPersistStream<CShockCapture> final : public CPersistCompanion<CShockCapture, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;

    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

class CShockCapture final : public CSectionFrame<CShockCapture, IShockCapture, ShockCaptureFields> {
public:
    static constexpr const char* kClassName = "CShockCapture";
    static constexpr const CLSID& kClassId = CLSID_CShockCapture;
    // The plain values; the rooms follow them in the stream.
    static const section::Record<ShockCaptureFields, 1> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CShockCapture)->dispatch(); }
    CShockCapture() : CSectionFrame(IID_IShockCapture) {}

    NVDL_IMPLEMENTS(NVDL_ISHOCKCAPTURE_MEMBERS)

private:
    HRESULT setLimits(LimitValues& room, std::int32_t& count, SAFEARRAY* limits);
    HRESULT setCount(std::int32_t& count, LONG value);
};

}  // namespace nvdl
