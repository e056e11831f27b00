#include "recording/TrcScanInfo.h"

#include "platform/RecordLayout.h"

namespace nvdl::trc {

using namespace record;

// The record's fields are the object's own members.
struct ScanInfoLayout {
    static constexpr Field<CTrcScanInfo, 1> kFields[] = {
        {i32(&CTrcScanInfo::m_version), {0}},
        {i32(&CTrcScanInfo::m_status), {4}},
        {f32(&CTrcScanInfo::m_range), {8}},
    };
    static constexpr std::span<const Field<CTrcScanInfo, 1>> kTable{kFields};
};
static_assert(fitsAndDisjoint(ScanInfoLayout::kTable, 0, CTrcScanInfo::kRecordSize));

void CTrcScanInfo::Decode(const std::uint8_t* bytes) { decode(ScanInfoLayout::kTable, 0, bytes, *this); }

void CTrcScanInfo::Encode(std::uint8_t* bytes) const { encode(ScanInfoLayout::kTable, 0, *this, bytes); }

}  // namespace nvdl::trc
