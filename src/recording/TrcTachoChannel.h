// A tacho channel of a recording. The file keeps both ways a tacho can work side by side in one
// 2304-byte block: the rpm view (rpm limits, orders, trigger) and the cola view (frequency limits
// and step, window, harmonics). CTrcTachoChannel owns the block; CTrcRpmChannelHeader and
// CTrcColaChannelHeader hold nothing but a pointer back to their channel, and their accessors read
// and write in its block, so copying a header copies the pointer.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct TachoChannelRecord {
    std::int32_t version = 0;
    // rpm part
    std::string Name;
    std::int32_t Channel = 0;
    float NbPulseByRevolution = 0, RPMRange = 0;
    std::int32_t SaveRPMAction = 0, ConditionsMode = 0, IntervalMode = 0;
    float TimeInterval = 0, RPMIncrement = 0;
    std::int32_t EndMode = 0, StartMode = 0;
    float EndRPM = 0, StartRPM = 0, StartTime = 0, EndTime = 0;
    std::int32_t RPMRangeEnable = 0;
    float OrderResolution = 0;
    std::int32_t Activated = 0, TriggerChannel = 0, TriggerMode = 0;
    float TriggerLevel = 0;
    std::int32_t TriggerSignal = 0;
    float TriggerDelay = 0;
    std::string Orders;
    // cola part
    std::string ColaName;
    std::int32_t ColaChannel = 0;
    float ColaNbPulseByRevolution = 0;
    std::int32_t ColaConditionsMode = 0, ColaIntervalMode = 0;
    float ColaTimeInterval = 0;
    std::int32_t ColaEndMode = 0, ColaStartMode = 0;
    float ColaStartTime = 0, ColaEndTime = 0, ColaOrderResolution = 0;
    std::int32_t ColaActivated = 0;
    float StartFreq = 0, EndFreq = 0, FreqStep = 0;
    std::string Harmonics;
    float ColaTriggerLevel = 0, FreqPoints = 0;
    std::int32_t FreqMode = 0;
    float WindowBandWidthLimit = 0;
    std::int32_t WindowType = 0;
    double DateTime = 0;
};

class CTrcTachoChannel;

class CTrcRpmChannelHeader {
public:
    using eRpmMode = long;
    using eConditionsMode = long;
    using eRpmSaveMode = long;
    using eTriggerMode = long;
    using eTriggerSignal = long;

    int Init(CTrcTachoChannel* channel);

    const char* GetName() const;
    void SetName(const char* value);
    long GetChannel() const;
    void SetChannel(long value);
    float GetNbPulseByRevolution() const;
    void SetNbPulseByRevolution(float value);
    float GetRPMRange() const;
    void SetRPMRange(float value);
    eRpmSaveMode GetSaveRPMAction() const;
    void SetSaveRPMAction(eRpmSaveMode value);
    eConditionsMode GetConditionsMode() const;
    void SetConditionsMode(eConditionsMode value);
    eRpmMode GetIntervalMode() const;
    void SetIntervalMode(eRpmMode value);
    float GetTimeInterval() const;
    void SetTimeInterval(float value);
    float GetRPMIncrement() const;
    void SetRPMIncrement(float value);
    eRpmMode GetEndMode() const;
    void SetEndMode(eRpmMode value);
    eRpmMode GetStartMode() const;
    void SetStartMode(eRpmMode value);
    float GetEndRPM() const;
    void SetEndRPM(float value);
    float GetStartRPM() const;
    void SetStartRPM(float value);
    float GetStartTime() const;
    void SetStartTime(float value);
    float GetEndTime() const;
    void SetEndTime(float value);
    int GetRPMRangeEnable() const;
    void SetRPMRangeEnable(int value);
    float GetOrderResolution() const;
    void SetOrderResolution(float value);
    int GetActivated() const;
    void SetActivated(int value);
    long GetTriggerChannel() const;
    void SetTriggerChannel(long value);
    eTriggerMode GetTriggerMode() const;
    void SetTriggerMode(eTriggerMode value);
    float GetTriggerLevel() const;
    void SetTriggerLevel(float value);
    eTriggerSignal GetTriggerSignal() const;
    void SetTriggerSignal(eTriggerSignal value);
    float GetTriggerDelay() const;
    void SetTriggerDelay(float value);
    const char* GetOrders() const;
    void SetOrders(const char* value);

private:
    TachoChannelRecord& block() const;
    CTrcTachoChannel* m_channel = nullptr;
};

class CTrcColaChannelHeader {
public:
    using eRpmMode = long;
    using eConditionsMode = long;
    using eFreqMode = long;
    using eWindowType = long;

    int Init(CTrcTachoChannel* channel);

    const char* GetName() const;
    void SetName(const char* value);
    long GetChannel() const;
    void SetChannel(long value);
    float GetNbPulseByRevolution() const;
    void SetNbPulseByRevolution(float value);
    eConditionsMode GetConditionsMode() const;
    void SetConditionsMode(eConditionsMode value);
    eRpmMode GetIntervalMode() const;
    void SetIntervalMode(eRpmMode value);
    float GetTimeInterval() const;
    void SetTimeInterval(float value);
    eRpmMode GetEndMode() const;
    void SetEndMode(eRpmMode value);
    eRpmMode GetStartMode() const;
    void SetStartMode(eRpmMode value);
    float GetStartTime() const;
    void SetStartTime(float value);
    float GetEndTime() const;
    void SetEndTime(float value);
    float GetOrderResolution() const;
    void SetOrderResolution(float value);
    int GetActivated() const;
    void SetActivated(int value);
    float GetStartFreq() const;
    void SetStartFreq(float value);
    float GetEndFreq() const;
    void SetEndFreq(float value);
    float GetFreqStep() const;
    void SetFreqStep(float value);
    const char* GetHarmonics() const;
    void SetHarmonics(const char* value);
    float GetTriggerLevel() const;
    void SetTriggerLevel(float value);
    float GetFreqPoints() const;
    void SetFreqPoints(float value);
    eFreqMode GetFreqMode() const;
    void SetFreqMode(eFreqMode value);
    float GetWindowBandWidthLimit() const;
    void SetWindowBandWidthLimit(float value);
    eWindowType GetWindowType() const;
    void SetWindowType(eWindowType value);

private:
    TachoChannelRecord& block() const;
    CTrcTachoChannel* m_channel = nullptr;
};

class CTrcTachoChannel final : public TrcFixedSection<TachoChannelRecord> {
public:
    // The enumerations of the block carry the values of the setup's rpm section as they are.
    using eRpmMode = long;
    using eConditionsMode = long;
    using eRpmSaveMode = long;
    using eTriggerMode = long;
    using eTriggerSignal = long;
    using eFreqMode = long;
    using eWindowType = long;

    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2304;

    CTrcTachoChannel();
    CTrcTachoChannel(const CTrcTachoChannel&) = delete;
    CTrcTachoChannel& operator=(const CTrcTachoChannel&) = delete;
    // Clears the block, DateTime becomes the current time, and both headers are bound to this channel.
    int Init();

    // In use when either part is.
    int GetActivated() const { return m_block.Activated || m_block.ColaActivated; }
    // The rpm name when the rpm part is active, else the cola name.
    const char* GetName() const { return m_block.Activated ? m_block.Name.c_str() : m_block.ColaName.c_str(); }
    // The top of the channel's range: EndRPM of an active rpm part, else the cola part's end
    // frequency over 60 (the rpm it stands for), else 0.
    float GetEndRPM() const;
    double GetDateTime() const { return m_block.DateTime; }
    void SetDateTime(double value) { m_block.DateTime = value; }

    CTrcRpmChannelHeader& GetRpm() { return m_rpm; }
    CTrcColaChannelHeader& GetCola() { return m_cola; }

private:
    friend class CTrcRpmChannelHeader;
    friend class CTrcColaChannelHeader;

    CTrcRpmChannelHeader m_rpm;
    CTrcColaChannelHeader m_cola;
};

}  // namespace nvdl::trc
