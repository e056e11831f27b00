// CThroughput as a section of a setup: the settings of a recording to disk, a record of plain values.
// As the script's door to recordings it holds one recording loader, the open recording of Open,
// ReadScan, ReadRPMScan and Close, and the setup of that recording. ReadMeasurement and
// EstimatedFileSize use loaders of their own, so that they leave the open recording alone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "nvdl/IThroughput.h"
#include "platform/ComPtr.h"
#include "setup/SectionFrame.h"

namespace nvdl::access {
class CTrcLoader;
}

namespace nvdl {

struct ThroughputFields {
    std::string Filename;
    std::int16_t AutoIncrement = 0;
    double Length = 0.0;
    std::int16_t Activated = 0;
    std::int32_t Period = 0;
    std::int32_t Interval = 0;
    std::int32_t Location = 0;
};

class CThroughput final : public CSectionFrame<CThroughput, IThroughput, ThroughputFields> {
public:
    static constexpr const char* kClassName = "CThroughput";
    static constexpr const CLSID& kClassId = CLSID_CThroughput;
    static const section::Record<ThroughputFields, 4> kRecord;

    static IDispatch* create() { return (new CThroughput)->dispatch(); }
    CThroughput();
    ~CThroughput() override;

    NVDL_IMPLEMENTS(NVDL_ITHROUGHPUT_MEMBERS)

    // The room on the disk that holds `path`, in bytes: free to the caller, in all, and free in all.
    // A null or empty path, or one that names nothing on disk, gives 0.
    static int CheckFreeSpace(const char* path, std::uint64_t* freeToCaller, std::uint64_t* total,
                              std::uint64_t* free);

private:
    // Made on first use: most throughput sections of setups never open a recording.
    access::CTrcLoader& loader();
    std::unique_ptr<access::CTrcLoader> m_loader;
    ComPtr<ISetup> m_recordingSetup;  // of the recording opened last
};

}  // namespace nvdl
