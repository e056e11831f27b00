// CTrcMeasurementSection: one stored measurement (a spectrum, a function): a main table of three
// entries (header, data, sub-measurements), its header, its data and the list of its per-channel
// sub-measurements.
#pragma once

#include "recording/TrcMeasurementBase.h"
#include "recording/TrcSubMeasurements.h"

namespace nvdl::trc {

class CTrcMeasurementSection final : public CTrcMeasurementBase {
public:
    static constexpr const char* kNameFormat = "MEAS%ld";

    CTrcMeasurementSection() : CTrcMeasurementBase(3) { Init(nullptr, 0); }

    // With `keep` non-zero only the file is replaced; otherwise the measurement starts empty.
    int Init(CTrcFile* file, int keep);
    int Uninit() { return Init(nullptr, 0); }

    CTrcSubMeasurementsSection& GetMeasurements() { return m_subs; }

protected:
    CTrcSubMeasurementsSection* SubMeasurements() override { return &m_subs; }

private:
    CTrcSubMeasurementsSection m_subs;
};

}  // namespace nvdl::trc
