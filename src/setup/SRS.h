// CSRS: the shock-response-spectrum section of a setup: a record of plain values and the limit
// curve, a fixed array of floats stored in the same record.
#pragma once

#include <array>
#include <string>

#include "frame/EnumTable.h"
#include "nvdl/ISRS.h"
#include "setup/SectionFrame.h"

namespace nvdl {

// The room for limits: what the record of 2,192 bytes holds after its head of 128.
inline constexpr std::size_t kSrsLimitCount = 516;

struct SRSFields {
    std::string Name = "SRS";
    float FreqMin = 10.0f;
    float FreqMax = 5000.0f;
    float OctaveSpacing = 12.0f;
    float SDOFDamping = 5.0f;
    std::int16_t DCOffset = 0;
    std::int16_t Drift = 0;
    std::int16_t Activated = 0;
    std::array<float, kSrsLimitCount> Limits{};

    bool operator==(const SRSFields&) const = default;
};

class CSRS;

// The stream companion of CSRS: the record is a head of plain fields followed by the limits.
template <>
class CSectionPersistStream<CSRS> final : public CPersistCompanion<CSRS, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;

    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

// Limits: SetLimits takes at most kSrsLimitCount values, puts them at the head of the array and
// zeros the rest; a longer array, or none, is refused with E_INVALIDARG and changes nothing.
// GetLimits gives the whole array, GetLimitBounds its lower and upper index (0 and the count less one).
class CSRS final : public CSectionFrame<CSRS, ISRS, SRSFields> {
public:
    static constexpr const char* kClassName = "CSRS";
    static constexpr const CLSID& kClassId = CLSID_CSRS;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CSRS)->dispatch(); }
    CSRS() : CSectionFrame(IID_ISRS) {}

    NVDL_IMPLEMENTS(NVDL_ISRS_MEMBERS)
};

}  // namespace nvdl
