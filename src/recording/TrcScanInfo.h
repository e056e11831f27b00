// CTrcScanInfo: the status record that every used channel carries in every scan of a recording,
// 12 bytes on disk: the record's version, the channel's status in that scan (0 normal, 1 and 2
// overload, which the compression of a recording keeps sticky) and the range the channel had.
#pragma once

#include <cstdint>

#include "recording/TrcFormat.h"

namespace nvdl::trc {

enum eStatus : std::int32_t {
    kStatusNormal = 0,
    kStatusOverload = 1,
    kStatusOverloadHeld = 2,
};

class CTrcScanInfo {
public:
    static constexpr std::int64_t kRecordSize = 12;

    long GetVersionNumber() const { return m_version; }
    void SetVersionNumber(long version) { m_version = static_cast<std::int32_t>(version); }
    long GetStatus() const { return m_status; }
    void SetStatus(long status) { m_status = static_cast<std::int32_t>(status); }
    float GetRange() const { return m_range; }
    void SetRange(float range) { m_range = range; }
    bool IsOverload() const { return m_status == kStatusOverload || m_status == kStatusOverloadHeld; }

    // The record's 12 bytes, version included: a record that was never written decodes as all zero.
    void Decode(const std::uint8_t* bytes);
    void Encode(std::uint8_t* bytes) const;

private:
    friend struct ScanInfoLayout;
    std::int32_t m_version = kBaseVersion;
    std::int32_t m_status = kStatusNormal;
    float m_range = 0.0f;
};

}  // namespace nvdl::trc
