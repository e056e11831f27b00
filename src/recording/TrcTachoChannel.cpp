#include "recording/TrcTachoChannel.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = TachoChannelRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    // rpm part
    {text(&R::Name, 100), {4}},
    {i32(&R::Channel), {104}},
    {f32(&R::NbPulseByRevolution), {108}},
    {f32(&R::RPMRange), {112}},
    {i32(&R::SaveRPMAction), {116}},
    {i32(&R::ConditionsMode), {120}},
    {i32(&R::IntervalMode), {124}},
    {f32(&R::TimeInterval), {128}},
    {f32(&R::RPMIncrement), {132}},
    {i32(&R::EndMode), {136}},
    {i32(&R::StartMode), {140}},
    {f32(&R::EndRPM), {144}},
    {f32(&R::StartRPM), {148}},
    {f32(&R::StartTime), {152}},
    {f32(&R::EndTime), {156}},
    {i32(&R::RPMRangeEnable), {160}},
    {f32(&R::OrderResolution), {164}},
    {i32(&R::Activated), {168}},
    {i32(&R::TriggerChannel), {172}},
    {i32(&R::TriggerMode), {176}},
    {f32(&R::TriggerLevel), {180}},
    {i32(&R::TriggerSignal), {184}},
    {f32(&R::TriggerDelay), {188}},
    {text(&R::Orders, 50), {192}},
    // cola part
    {text(&R::ColaName, 100), {244}},
    {i32(&R::ColaChannel), {344}},
    {f32(&R::ColaNbPulseByRevolution), {348}},
    {i32(&R::ColaConditionsMode), {352}},
    {i32(&R::ColaIntervalMode), {356}},
    {f32(&R::ColaTimeInterval), {360}},
    {i32(&R::ColaEndMode), {364}},
    {i32(&R::ColaStartMode), {368}},
    {f32(&R::ColaStartTime), {372}},
    {f32(&R::ColaEndTime), {376}},
    {f32(&R::ColaOrderResolution), {380}},
    {i32(&R::ColaActivated), {384}},
    {f32(&R::StartFreq), {440}},
    {f32(&R::EndFreq), {444}},
    {f32(&R::FreqStep), {448}},
    {text(&R::Harmonics, 50), {452}},
    {f32(&R::ColaTriggerLevel), {504}},
    {f32(&R::FreqPoints), {508}},
    {i32(&R::FreqMode), {512}},
    {f32(&R::WindowBandWidthLimit), {516}},
    {i32(&R::WindowType), {520}},
    {f64(&R::DateTime), {528}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcTachoChannel::kBlockSize));

// Named by their list ("RPM%ld").
constexpr BlockShape<R> kShape{kFields, CTrcTachoChannel::kBlockSize, CTrcTachoChannel::kVersion,
                               CTrcTachoChannel::kVersion, kTachoChannel, nullptr};

// The float nearest 1/60: an end frequency in hertz becomes the rpm it stands for.
constexpr float kHertzToRpmRange = 0.016666668f;

}  // namespace

CTrcTachoChannel::CTrcTachoChannel() : TrcFixedSection(kShape) { Init(); }

int CTrcTachoChannel::Init() {
    TrcFixedSection::Init();
    m_block.DateTime = currentDate();
    m_rpm.Init(this);
    m_cola.Init(this);
    return 1;
}

float CTrcTachoChannel::GetEndRPM() const {
    if (m_block.Activated) return m_block.EndRPM;
    if (m_block.ColaActivated) return m_block.EndFreq * kHertzToRpmRange;
    return 0.0f;
}

int CTrcRpmChannelHeader::Init(CTrcTachoChannel* channel) {
    m_channel = channel;
    return channel ? 1 : 0;
}

int CTrcColaChannelHeader::Init(CTrcTachoChannel* channel) {
    m_channel = channel;
    return channel ? 1 : 0;
}

TachoChannelRecord& CTrcRpmChannelHeader::block() const { return m_channel->m_block; }
TachoChannelRecord& CTrcColaChannelHeader::block() const { return m_channel->m_block; }

// One Get and Set pair of a header, reading and writing the field `Member` of the channel's block.
#define TRC_HEADER_VALUE(Header, Type, Name, Member)                                                          \
    Type Header::Get##Name() const { return block().Member; }                                             \
    void Header::Set##Name(Type value) { block().Member = static_cast<decltype(TachoChannelRecord::Member)>(value); }
#define TRC_HEADER_TEXT(Header, Name, Member, Size)                                                           \
    const char* Header::Get##Name() const { return block().Member.c_str(); }                              \
    void Header::Set##Name(const char* value) { setBlockText(block().Member, value, Size); }

TRC_HEADER_TEXT(CTrcRpmChannelHeader, Name, Name, 100)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, Channel, Channel)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, NbPulseByRevolution, NbPulseByRevolution)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, RPMRange, RPMRange)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, SaveRPMAction, SaveRPMAction)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, ConditionsMode, ConditionsMode)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, IntervalMode, IntervalMode)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, TimeInterval, TimeInterval)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, RPMIncrement, RPMIncrement)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, EndMode, EndMode)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, StartMode, StartMode)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, EndRPM, EndRPM)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, StartRPM, StartRPM)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, StartTime, StartTime)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, EndTime, EndTime)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, int, RPMRangeEnable, RPMRangeEnable)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, OrderResolution, OrderResolution)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, int, Activated, Activated)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, TriggerChannel, TriggerChannel)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, TriggerMode, TriggerMode)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, TriggerLevel, TriggerLevel)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, long, TriggerSignal, TriggerSignal)
TRC_HEADER_VALUE(CTrcRpmChannelHeader, float, TriggerDelay, TriggerDelay)
TRC_HEADER_TEXT(CTrcRpmChannelHeader, Orders, Orders, 50)

TRC_HEADER_TEXT(CTrcColaChannelHeader, Name, ColaName, 100)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, Channel, ColaChannel)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, NbPulseByRevolution, ColaNbPulseByRevolution)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, ConditionsMode, ColaConditionsMode)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, IntervalMode, ColaIntervalMode)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, TimeInterval, ColaTimeInterval)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, EndMode, ColaEndMode)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, StartMode, ColaStartMode)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, StartTime, ColaStartTime)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, EndTime, ColaEndTime)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, OrderResolution, ColaOrderResolution)
TRC_HEADER_VALUE(CTrcColaChannelHeader, int, Activated, ColaActivated)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, StartFreq, StartFreq)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, EndFreq, EndFreq)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, FreqStep, FreqStep)
TRC_HEADER_TEXT(CTrcColaChannelHeader, Harmonics, Harmonics, 50)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, TriggerLevel, ColaTriggerLevel)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, FreqPoints, FreqPoints)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, FreqMode, FreqMode)
TRC_HEADER_VALUE(CTrcColaChannelHeader, float, WindowBandWidthLimit, WindowBandWidthLimit)
TRC_HEADER_VALUE(CTrcColaChannelHeader, long, WindowType, WindowType)

#undef TRC_HEADER_VALUE
#undef TRC_HEADER_TEXT

}  // namespace nvdl::trc
