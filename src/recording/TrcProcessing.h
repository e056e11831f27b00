// CTrcProcessing: the processing block of a stored setup (measurement function, averaging,
// windows, overload handling). AverageNumber is the count of scans recorded; MaxAverageNumber is
// the count the file was laid out for, and follows AverageNumber only as SetAverageNumber says.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct ProcessingRecord {
    std::int32_t version = 0;
    std::int32_t MeasurementFunction = 0, AverageType = 0, AverageNumber = 0, MaxAverageNumber = 0;
    float AverageParameter = 0, OverlapPercent = 0, Offset = 0;
    std::int32_t NbClasses = 0, ExtremalClass = 0, ResponseWindowType = 0;
    float ResponseWindowParameter = 0;
    std::int32_t ExcitationWindowType = 0;
    float ExcitationWindowParameter = 0;
    std::int32_t OverloadAction = 0, OverloadRetryCount = 0, DisplayRefreshCount = 0, RovingMode = 0;
    std::int32_t DoubleHitDetectionEnabled = 0, DoubleHitAutoCorrect = 0;
    float DoubleHitToleranceFactor = 0;
    std::int32_t CorrectDC = 0, ComputeAverageNumber = 0;
};

class CTrcProcessing final : public TrcFixedSection<ProcessingRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2140;

    CTrcProcessing();

    long GetMeasurementFunction() const { return m_block.MeasurementFunction; }
    void SetMeasurementFunction(long value) { m_block.MeasurementFunction = static_cast<std::int32_t>(value); }
    long GetAverageType() const { return m_block.AverageType; }
    void SetAverageType(long value) { m_block.AverageType = static_cast<std::int32_t>(value); }
    long GetAverageNumber() const { return m_block.AverageNumber; }
    // Stores the count; the first positive count sets the room of the recording, a lower one later
    // shrinks it, a higher one leaves it.
    void SetAverageNumber(long value);
    long GetMaxAverageNumber() const { return m_block.MaxAverageNumber; }
    float GetAverageParameter() const { return m_block.AverageParameter; }
    void SetAverageParameter(float value) { m_block.AverageParameter = value; }
    float GetOverlapPercent() const { return m_block.OverlapPercent; }
    void SetOverlapPercent(float value) { m_block.OverlapPercent = value; }
    float GetOffset() const { return m_block.Offset; }
    void SetOffset(float value) { m_block.Offset = value; }
    long GetNbClasses() const { return m_block.NbClasses; }
    void SetNbClasses(long value) { m_block.NbClasses = static_cast<std::int32_t>(value); }
    long GetExtremalClass() const { return m_block.ExtremalClass; }
    void SetExtremalClass(long value) { m_block.ExtremalClass = static_cast<std::int32_t>(value); }
    long GetResponseWindowType() const { return m_block.ResponseWindowType; }
    void SetResponseWindowType(long value) { m_block.ResponseWindowType = static_cast<std::int32_t>(value); }
    float GetResponseWindowParameter() const { return m_block.ResponseWindowParameter; }
    void SetResponseWindowParameter(float value) { m_block.ResponseWindowParameter = value; }
    long GetExcitationWindowType() const { return m_block.ExcitationWindowType; }
    void SetExcitationWindowType(long value) { m_block.ExcitationWindowType = static_cast<std::int32_t>(value); }
    float GetExcitationWindowParameter() const { return m_block.ExcitationWindowParameter; }
    void SetExcitationWindowParameter(float value) { m_block.ExcitationWindowParameter = value; }
    long GetOverloadAction() const { return m_block.OverloadAction; }
    void SetOverloadAction(long value) { m_block.OverloadAction = static_cast<std::int32_t>(value); }
    long GetOverloadRetryCount() const { return m_block.OverloadRetryCount; }
    void SetOverloadRetryCount(long value) { m_block.OverloadRetryCount = static_cast<std::int32_t>(value); }
    long GetDisplayRefreshCount() const { return m_block.DisplayRefreshCount; }
    void SetDisplayRefreshCount(long value) { m_block.DisplayRefreshCount = static_cast<std::int32_t>(value); }
    long GetRovingMode() const { return m_block.RovingMode; }
    void SetRovingMode(long value) { m_block.RovingMode = static_cast<std::int32_t>(value); }
    int GetDoubleHitDetectionEnabled() const { return m_block.DoubleHitDetectionEnabled; }
    void SetDoubleHitDetectionEnabled(int value) { m_block.DoubleHitDetectionEnabled = value; }
    int GetDoubleHitAutoCorrect() const { return m_block.DoubleHitAutoCorrect; }
    void SetDoubleHitAutoCorrect(int value) { m_block.DoubleHitAutoCorrect = value; }
    float GetDoubleHitToleranceFactor() const { return m_block.DoubleHitToleranceFactor; }
    void SetDoubleHitToleranceFactor(float value) { m_block.DoubleHitToleranceFactor = value; }
    int GetCorrectDC() const { return m_block.CorrectDC; }
    void SetCorrectDC(int value) { m_block.CorrectDC = value; }
    long GetComputeAverageNumber() const { return m_block.ComputeAverageNumber; }
    void SetComputeAverageNumber(long value) { m_block.ComputeAverageNumber = static_cast<std::int32_t>(value); }
};

}  // namespace nvdl::trc
