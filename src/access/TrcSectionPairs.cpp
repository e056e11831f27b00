// The single sections of a setup and their blocks in a recording, one table of field pairs each.
// Each table names the section's object class, the setup's getter for it and the file section.
#include "access/FieldPairs.h"
#include "access/SetupAccess.h"
#include "access/TrcSetupPairs.h"
#include "setup/Acquisition.h"
#include "setup/Octave.h"
#include "setup/PostProcessing.h"
#include "setup/Processing.h"
#include "setup/Resampling.h"
#include "setup/SRS.h"
#include "setup/Saving.h"
#include "setup/ShockCapture.h"
#include "setup/SteppedSine.h"
#include "setup/Throughput.h"

namespace nvdl::access {
namespace {

using trc::CTrcSetupSection;

// Object side without a file field: Name.
struct AcquisitionPairs {
    using Object = CAcquisition;
    using File = trc::CTrcAcquisition;
    using Fields = AcquisitionFields;
    static constexpr auto get = &CSetup::get_Acquisition;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetAcquisition(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(SampleFrequency),
        NVDL_SAME_FIELD(CenterFrequency),
        NVDL_SAME_FIELD(TriggerMode),
        NVDL_SAME_FIELD(TriggerChannel),
        NVDL_SAME_FIELD(TriggerLevel),
        NVDL_SAME_FIELD(TriggerDelay),
        NVDL_SAME_FIELD(Blocksize),
        NVDL_SAME_FIELD(GapFree),
        NVDL_SAME_FIELD(AutoRangePercent),
        NVDL_SAME_FIELD(ArmMode),
        NVDL_SAME_FIELD(ComputationBlocksize),
        NVDL_SAME_FIELD(AcquisitionBlocksize),
        NVDL_SAME_FIELD(DigitalAC),
        NVDL_SAME_FIELD(DataFormat),
    };
};

// File side without an object field: MaxAverageNumber (the room of the file, which SetAverageNumber
// keeps). Object side without a file field: AverageCalculation, RealTime.
struct ProcessingPairs {
    using Object = CProcessing;
    using File = trc::CTrcProcessing;
    using Fields = ProcessingFields;
    static constexpr auto get = &CSetup::get_Processing;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetProcessing(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(MeasurementFunction),
        NVDL_SAME_FIELD(AverageType),
        NVDL_SAME_FIELD(AverageNumber),
        NVDL_SAME_FIELD(AverageParameter),
        NVDL_SAME_FIELD(OverlapPercent),
        NVDL_SAME_FIELD(Offset),
        NVDL_SAME_FIELD(NbClasses),
        NVDL_SAME_FIELD(ExtremalClass),
        NVDL_SAME_FIELD(ResponseWindowType),
        NVDL_SAME_FIELD(ResponseWindowParameter),
        NVDL_SAME_FIELD(ExcitationWindowType),
        NVDL_SAME_FIELD(ExcitationWindowParameter),
        NVDL_SAME_FIELD(OverloadAction),
        NVDL_SAME_FIELD(OverloadRetryCount),
        NVDL_SAME_FIELD(DisplayRefreshCount),
        NVDL_SAME_FIELD(RovingMode),
        NVDL_SAME_FIELD(DoubleHitDetectionEnabled),
        NVDL_SAME_FIELD(DoubleHitAutoCorrect),
        NVDL_SAME_FIELD(DoubleHitToleranceFactor),
        NVDL_SAME_FIELD(CorrectDC),
        NVDL_SAME_FIELD(ComputeAverageNumber),
    };
};

// Object side without a file field: Location.
struct ThroughputPairs {
    using Object = CThroughput;
    using File = trc::CTrcThroughput;
    using Fields = ThroughputFields;
    static constexpr auto get = &CSetup::get_Throughput;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetThroughput(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Filename),
        NVDL_SAME_FIELD(AutoIncrement),
        NVDL_SAME_FIELD(Length),
        NVDL_SAME_FIELD(Activated),
        // The file keeps period and interval as one sequencing pair.
        {[](const Fields& from, File& to) { to.SetSequencing(from.Period, from.Interval); },
         [](const File& from, Fields& to) {
             long period = 0, interval = 0;
             from.GetSequencing(period, interval);
             to.Period = static_cast<std::int32_t>(period);
             to.Interval = static_cast<std::int32_t>(interval);
         }},
    };
};

// Object side without a file field: Location, N2216ReadMode.
struct PostProcessingPairs {
    using Object = CPostProcessing;
    using File = trc::CTrcPostProcessing;
    using Fields = PostProcessingFields;
    static constexpr auto get = &CSetup::get_PostProcessing;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetPostProcessing(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Activated),
        NVDL_SAME_FIELD(ReplayStart),
        NVDL_SAME_FIELD(ReplayStop),
        NVDL_SAME_FIELD(Filename),
    };
};

// Every field paired.
struct OctavePairs {
    using Object = COctave;
    using File = trc::CTrcOctave;
    using Fields = OctaveFields;
    static constexpr auto get = &CSetup::get_Octave;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetOctave(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Processing),      NVDL_SAME_FIELD(StartFrequency), NVDL_SAME_FIELD(StopFrequency),
        NVDL_SAME_FIELD(IntegrationTime), NVDL_SAME_FIELD(Weighting),      NVDL_SAME_FIELD(ComputeInterval),
        NVDL_SAME_FIELD(SaveInterval),    NVDL_SAME_FIELD(TimeWeighting),  NVDL_SAME_FIELD(PeakHold),
    };
};

// Every field paired; the object's Active is the file's Activated.
struct ResamplingPairs {
    using Object = CResampling;
    using File = trc::CTrcResampling;
    using Fields = ResamplingFields;
    static constexpr auto get = &CSetup::get_Resampling;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetResampling(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_FIELD_AS(Activated, Active),
        NVDL_SAME_FIELD(SampleFrequency),
        NVDL_SAME_FIELD(Blocksize),
    };
};

// Every file field paired; the object's limit table has room for a few values more than the file's
// 128 x 4, which keep their values.
struct SrsPairs {
    using Object = CSRS;
    using File = trc::CTrcSrs;
    using Fields = SRSFields;
    static constexpr auto get = &CSetup::get_SRS;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetSrs(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Activated),
        NVDL_SAME_FIELD(Name),
        NVDL_SAME_FIELD(FreqMin),
        NVDL_SAME_FIELD(FreqMax),
        NVDL_SAME_FIELD(OctaveSpacing),
        NVDL_SAME_FIELD(SDOFDamping),
        NVDL_SAME_FIELD(DCOffset),
        NVDL_SAME_FIELD(Drift),
        limitsOf<File, &File::GetLimits, &File::SetLimits, &Fields::Limits,
                 trc::SrsRecord::kRows * trc::SrsRecord::kColumns>(),
    };
};

// Every field paired.
struct SteppedSinePairs {
    using Object = CSteppedSine;
    using File = trc::CTrcSteppedSine;
    using Fields = SteppedSineFields;
    static constexpr auto get = &CSetup::get_SteppedSine;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetSteppedSine(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Activated), NVDL_SAME_FIELD(Name),  NVDL_SAME_FIELD(FreqStart), NVDL_SAME_FIELD(FreqEnd),
        NVDL_SAME_FIELD(FreqIncr),  NVDL_SAME_FIELD(Delay), NVDL_SAME_FIELD(Averaging), NVDL_SAME_FIELD(Type),
    };
};

// Every field paired.
struct ShockCapturePairs {
    using Object = CShockCapture;
    using File = trc::CTrcShockCapture;
    using Fields = ShockCaptureFields;
    static constexpr auto get = &CSetup::get_ShockCapture;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetShockCapture(); }
    static constexpr std::size_t kLimits = trc::ShockCaptureRecord::kRows * trc::ShockCaptureRecord::kColumns;
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Activated),
        NVDL_SAME_FIELD(Name),
        NVDL_SAME_FIELD(PulsePeak),
        NVDL_SAME_FIELD(PulseDuration),
        NVDL_SAME_FIELD(UpperLimitsCount),
        NVDL_SAME_FIELD(LowerLimitsCount),
        NVDL_SAME_FIELD(RefType),
        NVDL_SAME_FIELD(LowPassExc),
        NVDL_SAME_FIELD(LowPassResp),
        limitsOf<File, &File::GetUpperLimits, &File::SetUpperLimits, &Fields::UpperLimits, kLimits>(),
        limitsOf<File, &File::GetLowerLimits, &File::SetLowerLimits, &Fields::LowerLimits, kLimits>(),
    };
};

// The switches of the saving section; its two function lists go with the other name lists.
struct SavingPairs {
    using Object = CSaving;
    using File = trc::CTrcSaving;
    using Fields = SavingFields;
    static constexpr auto get = &CSetup::get_Saving;
    static File& fileOf(CTrcSetupSection& setup) { return setup.GetSaving(); }
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(SaveToDisk),
        NVDL_SAME_FIELD(EveryAverages),
        NVDL_SAME_FIELD(DelayTime),
        NVDL_SAME_FIELD(CreateTimeHistory),
        NVDL_SAME_FIELD(SaveTimeHistoryToDisk),
        NVDL_SAME_FIELD(SaveTimeHistoryToWorkspace),
        NVDL_SAME_FIELD(SaveBlockDataToWorkspace),
        NVDL_SAME_FIELD(SaveBlockDataToDisk),
        NVDL_SAME_FIELD(Percentile),
    };
};

template <class Table>
bool sectionToFile(CSetup& from, CTrcSetupSection& to) {
    auto* object = sectionOf<typename Table::Object>(from, Table::get);
    if (!object) return false;
    toFile<typename Table::File, typename Table::Fields>(Table::rows, object->m_fields, Table::fileOf(to));
    return true;
}

template <class Table>
bool sectionToObject(CTrcSetupSection& from, CSetup& to) {
    auto* object = sectionOf<typename Table::Object>(to, Table::get);
    if (!object) return false;
    toObject<typename Table::File, typename Table::Fields>(Table::rows, Table::fileOf(from), object->m_fields);
    return true;
}

template <class... Tables>
struct SectionTables {
    static int apply(CSetup& from, CTrcSetupSection& to) { return (sectionToFile<Tables>(from, to) && ...); }
    static int build(CTrcSetupSection& from, CSetup& to) { return (sectionToObject<Tables>(from, to) && ...); }
};

using AllSections = SectionTables<AcquisitionPairs, ProcessingPairs, ThroughputPairs, PostProcessingPairs, SavingPairs,
                                  OctavePairs, SrsPairs, ShockCapturePairs, SteppedSinePairs, ResamplingPairs>;

}  // namespace

int applySections(CSetup& from, CTrcSetupSection& to) { return AllSections::apply(from, to); }
int buildSections(CTrcSetupSection& from, CSetup& to) { return AllSections::build(from, to); }

}  // namespace nvdl::access
