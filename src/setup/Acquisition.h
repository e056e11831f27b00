// CAcquisition: how a setup takes its data: the sampling rate, the trigger, the block sizes and the
// sample format. A few setters keep rules (a whole positive rate, a computation block size of at least
// one, the retired 334 format taken as 332), and the stream reader applies the same rules.
#pragma once

#include <optional>
#include <string>

#include "frame/EnumTable.h"
#include "nvdl/IAcquisition.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct AcquisitionFields {
    std::string Name = "Acquisition";
    float SampleFrequency = 51200.0f;
    float CenterFrequency = 0.0f;
    std::int32_t TriggerMode = 409;
    std::int32_t TriggerChannel = 0;
    float TriggerLevel = 0.5f;
    float TriggerDelay = 3.0f;
    float AutoRangePercent = 25.0f;
    std::int32_t Blocksize = 1024;
    std::int32_t ArmMode = 431;
    std::int16_t GapFree = 0;
    std::int32_t ComputationBlocksize = 8192;
    std::int16_t DigitalAC = 0;
    std::int32_t AcquisitionBlocksize = 1024;
    std::int32_t DataFormat = 332;
};

class CAcquisition;

// The stream companion: reads the generation the record's tag names and keeps it, since the size it
// announces is that generation's; writes the newest.
template <>
class CSectionPersistStream<CAcquisition> final : public CPersistCompanion<CAcquisition, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;

private:
    std::optional<std::size_t> m_generation;  // none until a record is read: the newest
};

class CAcquisition final : public CSectionFrame<CAcquisition, IAcquisition, AcquisitionFields> {
public:
    static constexpr const char* kClassName = "CAcquisition";
    static constexpr const CLSID& kClassId = CLSID_CAcquisition;
    static const section::Record<AcquisitionFields, 3> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CAcquisition)->dispatch(); }
    CAcquisition() : CSectionFrame(IID_IAcquisition) {}

    NVDL_IMPLEMENTS(NVDL_IACQUISITION_MEMBERS)

    // The rules of the setters, shared with the stream reader.
    // A rate is kept as a whole number; none at or below zero.
    static std::optional<float> wholeSampleFrequency(float value);
    // The 334 format is no longer made and reads as 332.
    static std::int32_t knownDataFormat(std::int32_t code) { return code == 334 ? 332 : code; }
    // A computation block size below one follows the acquisition's block size.
    static std::int32_t computationBlocksizeOf(std::int32_t value, std::int32_t blocksize) {
        return value < 1 ? blocksize : value;
    }
};

}  // namespace nvdl
