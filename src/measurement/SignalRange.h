// CSignalRange: the statistics of a signal as measured during acquisition (extremes, mean, RMS,
// standard deviation, the range of the input and two scaling values), carried with a measurement.
//
// A measurement embeds one by value and owns it: after SetOwner the embedded range shares the
// measurement's life, its reference operations go to the measurement, and a set Modified flag is
// passed on to it. A range made by Clone is an object of its own, counted and freed by its last
// Release.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/ISignalRange.h"

namespace nvdl {

class CSignalRange final : public CObjectFrame<CSignalRange, ISignalRange> {
public:
    static constexpr IID kModifiedParents[] = {IID_IMeasurement};

    // A range for embedding in its owner; until SetOwner it has no owner and is never freed by Release.
    CSignalRange();
    ~CSignalRange() override = default;
    CSignalRange(const CSignalRange&) = delete;
    // Copies the values and the Modified flag of the other range, as Copy does.
    CSignalRange& operator=(const CSignalRange& other);

    ULONG AddRef() override;
    ULONG Release() override;

    NVDL_IMPLEMENTS(NVDL_ISIGNALRANGE_MEMBERS)

    // For the embedding measurement: the object the range lives in and reports to. Not counted.
    // The reference operations follow this object for the range's whole life; put_Measurement
    // later changes only where Modified goes and what get_Measurement answers.
    void SetOwner(IDispatch* measurement);

private:
    struct Detached {};
    explicit CSignalRange(Detached);

    // Reads each value of the source through its interface and writes it to the target through
    // the setters; a target without an owner takes the source's.
    static HRESULT Copy(ISignalRange* source, ISignalRange* target);

    HRESULT store(double& field, double value);

    bool m_detached = false;
    IDispatch* m_host = nullptr;  // the embedding object, while there is one
    WeakParent m_owner;
    double m_min = 0.0;
    double m_max = 0.0;
    double m_overallMin = 0.0;
    double m_overallMax = 0.0;
    double m_mean = 0.0;
    double m_rms = 0.0;
    double m_standardDeviation = 0.0;
    double m_factor = 0.0;
    double m_unitOffset = 0.0;
    float m_range = 0.0f;
};

}  // namespace nvdl
