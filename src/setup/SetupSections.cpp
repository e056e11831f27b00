#include "setup/SetupSections.h"

#include "frame/ClassTable.h"
#include "nvdl/Identifiers.h"
#include "setup/Saving.h"

namespace nvdl {

namespace {

using S = SingleSection;
using C = SectionCollection;

// The class of each single section, in the order of SingleSection.
const CLSID* const kSectionClasses[kSingleSectionCount] = {
    &CLSID_CAcquisition, &CLSID_CProcessing, &CLSID_CSaving, &CLSID_CTacho, &CLSID_CRpm, &CLSID_CSinRed,
    &CLSID_CSRS, &CLSID_CSteppedSine, &CLSID_CThroughput, &CLSID_COctave, &CLSID_CImpact, &CLSID_CTimeFilter,
    &CLSID_CResampling, &CLSID_CPostProcessing, &CLSID_CShockCapture,
};

// The sine reduction section keeps its stream under the name of the order-tracking section before it:
// that is how the files have it.
const StorageSection kStorageSections[] = {
    {u"TransducerSection", u"Transducer", true, S{}, C::Transducers, &CLSID_CTransducer},
    {u"InputSection", u"InputChannel", true, S{}, C::InputChannels, &CLSID_CInputChannel},
    {u"StrainSection", u"StrainChannel", true, S{}, C::StrainChannels, &CLSID_CStrainChannel},
    {u"SourceSection", u"SourceChannel", true, S{}, C::SourceChannels, &CLSID_CSourceChannel},
    {u"AcquisitionSection", u"Acquisition", false, S::Acquisition, C{}, nullptr},
    {u"ProcessingSection", u"Processing", false, S::Processing, C{}, nullptr},
    {u"SavingSection", u"Saving", false, S::Saving, C{}, nullptr},
    {u"ParameterSection", u"Parameter", true, S{}, C::Parameters, &CLSID_CParameter},
    {u"TachoSection", u"Tacho", false, S::Tacho, C{}, nullptr},
    {u"RpmSection", u"Rpm", false, S::Rpm, C{}, nullptr},
    {u"SinRedSection", u"Rpm", false, S::SinRed, C{}, nullptr},
    {u"SRSSection", u"SRS", false, S::SRS, C{}, nullptr},
    {u"SteppedSineSection", u"SteppedSine", false, S::SteppedSine, C{}, nullptr},
    {u"ThroughputSection", u"Throughput", false, S::Throughput, C{}, nullptr},
    {u"OctaveSection", u"Octave", false, S::Octave, C{}, nullptr},
    {u"ImpactSection", u"Impact", false, S::Impact, C{}, nullptr},
    {u"TimeFilterSection", u"TimeFilter", false, S::TimeFilter, C{}, nullptr},
    {u"ResamplingSection", u"Resampling", false, S::Resampling, C{}, nullptr},
    {u"PostProcessingSection", u"PostProcessing", false, S::PostProcessing, C{}, nullptr},
    {u"ShockCaptureSection", u"ShockCapture", false, S::ShockCapture, C{}, nullptr},
};

}  // namespace

IDispatch* createSection(SingleSection which) {
    if (which == S::Saving) return CSaving::create();  // a section only, with no ProgID of its own
    IDispatch* object = nullptr;
    if (FAILED(createInstance(*kSectionClasses[static_cast<std::size_t>(which)], &object))) return nullptr;
    return object;
}

std::span<const StorageSection> storageSections() { return kStorageSections; }

}  // namespace nvdl
