// The channel lists of a setup and of a recording: input channels (with the transducer at the same
// place in the setup's transducer list), source channels as the file's outputs, strain channels, and
// the tacho list, whose channel carries the setup's order tracking in its rpm part and its sine
// reduction in its cola part. Each list of the file is made afresh, one channel per object.
#include <memory>

#include "access/FieldPairs.h"
#include "access/SetupAccess.h"
#include "access/TrcSetupPairs.h"
#include "setup/InputChannel.h"
#include "setup/Rpm.h"
#include "setup/SinRed.h"
#include "setup/SourceChannel.h"
#include "setup/StrainChannel.h"
#include "setup/Transducer.h"

namespace nvdl::access {
namespace {

using trc::CTrcSetupSection;

// File side without an object field: Mode and the sensor's fields (from the transducer, below),
// DateTime. Object side without a file field: Recorded, AcqScaleFactor.
struct InputPairs {
    using Object = CInputChannel;
    using File = trc::CTrcInputChannel;
    using Fields = InputChannelFields;
    static constexpr auto get = &CSetup::get_InputChannels;
    static trc::CTrcInputChannels& listOf(CTrcSetupSection& setup) { return setup.GetInputs(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Usage),        NVDL_SAME_FIELD(Name),       NVDL_SAME_FIELD(Coupling),
        NVDL_SAME_FIELD(Differential), NVDL_SAME_FIELD(Range),      NVDL_SAME_FIELD(PreGain),
        NVDL_SAME_FIELD(Weighting),    NVDL_SAME_FIELD(Offset),     NVDL_SAME_FIELD(Tacho),
        NVDL_SAME_FIELD(TachoPulses),  NVDL_SAME_FIELD(TachoLevel), NVDL_SAME_FIELD(TachoMode),
        NVDL_SAME_FIELD(TachoUnit),
    };
};

// The sensor on an input channel; the channel's Mode is the transducer's InputMode.
struct TransducerPairs {
    using Object = CTransducer;
    using File = trc::CTrcInputChannel;
    using Fields = TransducerFields;
    static constexpr auto get = &CSetup::get_Transducers;
    static trc::CTrcInputChannels& listOf(CTrcSetupSection& setup) { return setup.GetInputs(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_FIELD_AS(Mode, InputMode),   NVDL_SAME_FIELD(SerialNumber),   NVDL_SAME_FIELD(Model),
        NVDL_SAME_FIELD(Sensitivity),     NVDL_SAME_FIELD(Unit),           NVDL_SAME_FIELD(CalibrationType),
        NVDL_SAME_FIELD(CalibrationDate), NVDL_SAME_FIELD(CalibrationDue), NVDL_SAME_FIELD(Comment),
    };
};

// Every field paired.
struct OutputPairs {
    using Object = CSourceChannel;
    using File = trc::CTrcOutputChannel;
    using Fields = SourceChannelFields;
    static constexpr auto get = &CSetup::get_SourceChannels;
    static trc::CTrcOutputChannels& listOf(CTrcSetupSection& setup) { return setup.GetOutputs(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Usage),         NVDL_SAME_FIELD(Name),           NVDL_SAME_FIELD(Mode),
        NVDL_SAME_FIELD(Level),         NVDL_SAME_FIELD(BurstPercent),   NVDL_SAME_FIELD(RampTime),
        NVDL_SAME_FIELD(SineFrequency), NVDL_SAME_FIELD(SinePhase),      NVDL_SAME_FIELD(Bandwidth),
        NVDL_SAME_FIELD(StartPhase),    NVDL_SAME_FIELD(StartFrequency), NVDL_SAME_FIELD(EndFrequency),
        NVDL_SAME_FIELD(SweepType),     NVDL_SAME_FIELD(Filename),       NVDL_SAME_FIELD(SweepRate),
        NVDL_SAME_FIELD(SweepTime),
    };
};

// Every field paired.
struct StrainPairs {
    using Object = CStrainChannel;
    using File = trc::CTrcStrainChannel;
    using Fields = StrainChannelFields;
    static constexpr auto get = &CSetup::get_StrainChannels;
    static trc::CTrcStrainChannels& listOf(CTrcSetupSection& setup) { return setup.GetStrains(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(MinRange),
        NVDL_SAME_FIELD(MaxRange),
        NVDL_SAME_FIELD(Config),
        NVDL_SAME_FIELD(VexSource),
        NVDL_SAME_FIELD(VexValue),
        NVDL_SAME_FIELD(GageFactor),
        NVDL_SAME_FIELD(InitBridgeVoltage),
        NVDL_SAME_FIELD(GageResistance),
        NVDL_SAME_FIELD(PoissonRatio),
        NVDL_SAME_FIELD(LeadWireResistance),
        NVDL_SAME_FIELD(Gain),
        NVDL_SAME_FIELD(LowPassFilter),
        NVDL_SAME_FIELD(Offset),
        NVDL_SAME_FIELD(CalibrationType),
        NVDL_SAME_FIELD(CalibrationDate),
        NVDL_SAME_FIELD(Comment),
    };
};

// The rpm part of a tacho channel and the setup's order tracking. Object side without a file field:
// RotateMethod.
struct RpmPairs {
    using Object = CRpm;
    using File = trc::CTrcRpmChannelHeader;
    using Fields = RpmFields;
    static constexpr auto get = &CSetup::get_Rpm;
    static File& partOf(trc::CTrcTachoChannel& channel) { return channel.GetRpm(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Name),           NVDL_FIELD_AS(Channel, RPMChannel), NVDL_SAME_FIELD(NbPulseByRevolution),
        NVDL_SAME_FIELD(RPMRange),       NVDL_SAME_FIELD(SaveRPMAction),     NVDL_SAME_FIELD(ConditionsMode),
        NVDL_SAME_FIELD(IntervalMode),   NVDL_SAME_FIELD(TimeInterval),      NVDL_SAME_FIELD(RPMIncrement),
        NVDL_SAME_FIELD(EndMode),        NVDL_SAME_FIELD(StartMode),         NVDL_SAME_FIELD(EndRPM),
        NVDL_SAME_FIELD(StartRPM),       NVDL_SAME_FIELD(StartTime),         NVDL_SAME_FIELD(EndTime),
        NVDL_SAME_FIELD(RPMRangeEnable), NVDL_SAME_FIELD(OrderResolution),   NVDL_SAME_FIELD(Activated),
        NVDL_SAME_FIELD(TriggerChannel), NVDL_SAME_FIELD(TriggerMode),       NVDL_SAME_FIELD(TriggerLevel),
        NVDL_SAME_FIELD(TriggerSignal),  NVDL_SAME_FIELD(TriggerDelay),      NVDL_SAME_FIELD(Orders),
    };
};

// The cola part of a tacho channel and the setup's sine reduction: every field paired.
struct ColaPairs {
    using Object = CSinRed;
    using File = trc::CTrcColaChannelHeader;
    using Fields = SinRedFields;
    static constexpr auto get = &CSetup::get_SinRed;
    static File& partOf(trc::CTrcTachoChannel& channel) { return channel.GetCola(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Name),
        NVDL_FIELD_AS(Channel, COLAChannel),
        NVDL_SAME_FIELD(NbPulseByRevolution),
        NVDL_SAME_FIELD(ConditionsMode),
        NVDL_SAME_FIELD(IntervalMode),
        NVDL_SAME_FIELD(TimeInterval),
        NVDL_SAME_FIELD(EndMode),
        NVDL_SAME_FIELD(StartMode),
        NVDL_SAME_FIELD(StartTime),
        NVDL_SAME_FIELD(EndTime),
        NVDL_SAME_FIELD(OrderResolution),
        NVDL_SAME_FIELD(Activated),
        NVDL_SAME_FIELD(StartFreq),
        NVDL_SAME_FIELD(EndFreq),
        NVDL_SAME_FIELD(FreqStep),
        NVDL_SAME_FIELD(Harmonics),
        NVDL_SAME_FIELD(TriggerLevel),
        NVDL_SAME_FIELD(FreqPoints),
        NVDL_SAME_FIELD(FreqMode),
        NVDL_SAME_FIELD(WindowBandWidthLimit),
        NVDL_SAME_FIELD(WindowType),
    };
};

template <class Table>
void carryToFile(const typename Table::Object& object, typename Table::File& to) {
    toFile<typename Table::File, typename Table::Fields>(Table::rows, object.m_fields, to);
}

template <class Table>
void carryToObject(const typename Table::File& from, typename Table::Object& object) {
    toObject<typename Table::File, typename Table::Fields>(Table::rows, from, object.m_fields);
}

// The file list made afresh with one channel per item of the setup's collection.
template <class Table>
bool listToFile(CSetup& from, CTrcSetupSection& to) {
    CObjectCollection* items = collectionOf(from, Table::get);
    if (!items) return false;
    auto& list = Table::listOf(to);
    list.RemoveAll();
    for (std::size_t i = 0; i < items->size(); ++i) {
        auto* object = frameOf<typename Table::Object>(items->itemAt(i));
        if (!object) return false;
        auto channel = std::make_unique<typename Table::File>();
        carryToFile<Table>(*object, *channel);
        if (!list.Add(std::move(channel))) return false;
    }
    return true;
}

// The setup's collection emptied and given a new object per channel of the file's list.
template <class Table>
bool listToObjects(CTrcSetupSection& from, CSetup& to) {
    CObjectCollection* items = collectionOf(to, Table::get);
    if (!items || FAILED(items->Clear())) return false;
    auto& list = Table::listOf(from);
    for (long i = 0; i < list.GetTotalChannels(); ++i) {
        ComPtr<IDispatch> item(Table::Object::create());
        auto* object = frameOf<typename Table::Object>(item.get());
        if (!object) return false;
        carryToObject<Table>(*list.GetItem(i), *object);
        if (FAILED(append(*items, item.get()))) return false;
    }
    return true;
}

// The transducers fill the sensor fields of the input channels at their places; channels beyond the
// transducer list keep the defaults of their block.
bool transducersToFile(CSetup& from, CTrcSetupSection& to) {
    CObjectCollection* items = collectionOf(from, TransducerPairs::get);
    if (!items) return false;
    auto& inputs = to.GetInputs();
    for (long i = 0; i < inputs.GetTotalChannels() && static_cast<std::size_t>(i) < items->size(); ++i) {
        auto* object = frameOf<CTransducer>(items->itemAt(static_cast<std::size_t>(i)));
        if (!object) return false;
        carryToFile<TransducerPairs>(*object, *inputs.GetItem(i));
    }
    return true;
}

// The setup has one order tracking and one sine reduction: they make one tacho channel, and the
// first tacho channel of a recording gives them back.
bool tachoToFile(CSetup& from, CTrcSetupSection& to) {
    auto* rpm = sectionOf<CRpm>(from, RpmPairs::get);
    auto* cola = sectionOf<CSinRed>(from, ColaPairs::get);
    if (!rpm || !cola) return false;
    auto channel = std::make_unique<trc::CTrcTachoChannel>();
    carryToFile<RpmPairs>(*rpm, channel->GetRpm());
    carryToFile<ColaPairs>(*cola, channel->GetCola());
    to.GetTachos().RemoveAll();
    return to.GetTachos().Add(std::move(channel)) != 0;
}

bool tachoToObjects(CTrcSetupSection& from, CSetup& to) {
    auto* rpm = sectionOf<CRpm>(to, RpmPairs::get);
    auto* cola = sectionOf<CSinRed>(to, ColaPairs::get);
    if (!rpm || !cola) return false;
    if (trc::CTrcTachoChannel* channel = from.GetTachos().GetItem(0)) {
        carryToObject<RpmPairs>(channel->GetRpm(), *rpm);
        carryToObject<ColaPairs>(channel->GetCola(), *cola);
    }
    return true;
}

}  // namespace

int applyChannels(CSetup& from, CTrcSetupSection& to) {
    return listToFile<InputPairs>(from, to) && transducersToFile(from, to) && listToFile<OutputPairs>(from, to) &&
           listToFile<StrainPairs>(from, to) && tachoToFile(from, to);
}

// Every input channel gets a transducer of its own, from the sensor fields of its block.
int buildChannels(CTrcSetupSection& from, CSetup& to) {
    return listToObjects<InputPairs>(from, to) && listToObjects<TransducerPairs>(from, to) &&
           listToObjects<OutputPairs>(from, to) && listToObjects<StrainPairs>(from, to) && tachoToObjects(from, to);
}

}  // namespace nvdl::access
