// CTrcSetupSection: a complete copy of the setup a recording was taken with. At its offset stand a
// 2156-byte setup block, the room of a table, and the fifteen subsections in table order, each
// directly behind the one before.
//
// The table's room is that of 14 entries while 15 are written (the strain list came fifteenth and
// the room was never grown; every file has it so). The last entry therefore runs over the start of
// the parameters list, whose own table head then overwrites it: a reader finds in entry 14 the
// parameters' head, whose version is older than the strain list's, and reads no strains. Writers
// keep it exactly so, since a real entry 14 would make a file that no reader of the format expects.
#pragma once

#include <cstdint>
#include <memory>
#include <tuple>

#include "recording/TrcAcquisition.h"
#include "recording/TrcChannelLists.h"
#include "recording/TrcFixedSection.h"
#include "recording/TrcOctave.h"
#include "recording/TrcParameters.h"
#include "recording/TrcPostProcessing.h"
#include "recording/TrcProcessing.h"
#include "recording/TrcResampling.h"
#include "recording/TrcSaving.h"
#include "recording/TrcShockCapture.h"
#include "recording/TrcSrs.h"
#include "recording/TrcSteppedSine.h"
#include "recording/TrcThroughput.h"

namespace nvdl::trc {

struct SetupRecord {
    std::int32_t version = 0;
    std::int32_t Default = 0;
    std::string Name;
    std::int32_t GroupDataInSameWs = 0, GroupChannels = 0;
    std::string WorkspacePrefixName, ParametersLayout, Creator;
    std::int32_t GroupFunctions = 0;
};

class CTrcSetupSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2156;
    static constexpr long kTocRoom = 14;        // entries the table has room for
    static constexpr long kSubsections = 15;    // entries written
    static constexpr long kAlwaysRead = 11;     // parameters to saving; later ones only when the table has them

    CTrcSetupSection();
    ~CTrcSetupSection() override;

    // Makes all fifteen subsections afresh and clears the block; 0 if one cannot be made.
    int Init();
    int Uninit();

    long GetDefault() const { return m_block.Default; }
    void SetDefault(long value) { m_block.Default = static_cast<std::int32_t>(value); }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 100); }
    long GetGroupDataInSameWs() const { return m_block.GroupDataInSameWs; }
    void SetGroupDataInSameWs(long value) { m_block.GroupDataInSameWs = static_cast<std::int32_t>(value); }
    long GetGroupChannels() const { return m_block.GroupChannels; }
    void SetGroupChannels(long value) { m_block.GroupChannels = static_cast<std::int32_t>(value); }
    const char* GetWorkspacePrefixName() const { return m_block.WorkspacePrefixName.c_str(); }
    void SetWorkspacePrefixName(const char* value) { setBlockText(m_block.WorkspacePrefixName, value, 60); }
    const char* GetParametersLayout() const { return m_block.ParametersLayout.c_str(); }
    void SetParametersLayout(const char* value) { setBlockText(m_block.ParametersLayout, value, 60); }
    const char* GetCreator() const { return m_block.Creator.c_str(); }
    void SetCreator(const char* value) { setBlockText(m_block.Creator, value, 60); }
    long GetGroupFunctions() const { return m_block.GroupFunctions; }
    void SetGroupFunctions(long value) { m_block.GroupFunctions = static_cast<std::int32_t>(value); }

    CTrcParametersSection& GetParameters() { return *m_parameters; }
    CTrcInputChannels& GetInputs() { return *m_inputs; }
    CTrcOutputChannels& GetOutputs() { return *m_outputs; }
    CTrcAcquisition& GetAcquisition() { return *m_acquisition; }
    CTrcTachoChannels& GetTachos() { return *m_tachos; }
    CTrcThroughput& GetThroughput() { return *m_throughput; }
    CTrcProcessing& GetProcessing() { return *m_processing; }
    CTrcPostProcessing& GetPostProcessing() { return *m_postProcessing; }
    CTrcOctave& GetOctave() { return *m_octave; }
    CTrcResampling& GetResampling() { return *m_resampling; }
    CTrcSaving& GetSaving() { return *m_saving; }
    CTrcSrs& GetSrs() { return *m_srs; }
    CTrcSteppedSine& GetSteppedSine() { return *m_steppedSine; }
    CTrcShockCapture& GetShockCapture() { return *m_shockCapture; }
    CTrcStrainChannels& GetStrains() { return *m_strains; }

    // The owner is the section whose table holds this setup's entry (the setups section or the
    // recorder header).
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);

    // Lays the subsections out behind the block and the table's room, and rebuilds the table.
    int UpdateTocSections();
    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    int Copy(CTrcSetupSection& target) const;

private:
    int InternWrite(CTrcFile* file);
    int InternRead(const TocEntry& entry, CTrcFile* file);

    // The fifteen subsections in table order.
    auto Subsections() const {
        return std::tie(*m_parameters, *m_inputs, *m_outputs, *m_acquisition, *m_tachos, *m_throughput,
                        *m_processing, *m_postProcessing, *m_octave, *m_resampling, *m_saving, *m_srs,
                        *m_steppedSine, *m_shockCapture, *m_strains);
    }
    // Calls `step` on each subsection in table order until one returns false.
    template <class F>
    bool ForEachSubsection(F&& step) const {
        return std::apply([&](auto&... section) { return (step(section) && ...); }, Subsections());
    }

    SetupRecord m_block;
    CTrcTableManagment m_toc;
    std::unique_ptr<CTrcParametersSection> m_parameters;
    std::unique_ptr<CTrcInputChannels> m_inputs;
    std::unique_ptr<CTrcOutputChannels> m_outputs;
    std::unique_ptr<CTrcAcquisition> m_acquisition;
    std::unique_ptr<CTrcTachoChannels> m_tachos;
    std::unique_ptr<CTrcThroughput> m_throughput;
    std::unique_ptr<CTrcProcessing> m_processing;
    std::unique_ptr<CTrcPostProcessing> m_postProcessing;
    std::unique_ptr<CTrcOctave> m_octave;
    std::unique_ptr<CTrcResampling> m_resampling;
    std::unique_ptr<CTrcSaving> m_saving;
    std::unique_ptr<CTrcSrs> m_srs;
    std::unique_ptr<CTrcSteppedSine> m_steppedSine;
    std::unique_ptr<CTrcShockCapture> m_shockCapture;
    std::unique_ptr<CTrcStrainChannels> m_strains;
};

}  // namespace nvdl::trc
