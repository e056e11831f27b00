// CTrcSubMeasurementSection: one per-channel child of a stored measurement: a main table of two
// entries (header, data), its header and its data.
#pragma once

#include "recording/TrcMeasurementBase.h"

namespace nvdl::trc {

class CTrcSubMeasurementSection final : public CTrcMeasurementBase {
public:
    static constexpr const char* kNameFormat = "SUBMEAS%ld";

    CTrcSubMeasurementSection() : CTrcMeasurementBase(2) { Init(nullptr, 0); }

    // With `keep` non-zero only the file is replaced; otherwise the sub-measurement starts empty.
    int Init(CTrcFile* file, int keep);
    int Uninit() { return Init(nullptr, 0); }
};

}  // namespace nvdl::trc
