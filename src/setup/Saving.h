// CSaving: which results of a run a setup keeps and where. Besides its plain switches it owns two
// lists of save functions, the results (MeasFunctions) and the time histories
// (TimeHistoryFunctions); its stream holds a fixed record followed by the names of both lists.
#pragma once

#include <optional>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/ISaving.h"
#include "nvdl/Persist.h"

namespace nvdl {

struct SavingFields {
    std::int16_t SaveToDisk = 0;
    std::int16_t EveryAverages = 0;
    std::int32_t DelayTime = 15;
    std::int16_t CreateTimeHistory = 0;
    std::int16_t SaveTimeHistoryToDisk = 0;
    std::int16_t SaveTimeHistoryToWorkspace = 0;
    std::int16_t SaveBlockDataToWorkspace = 0;
    std::int16_t SaveBlockDataToDisk = 0;
    float Percentile = 70.0f;

    bool operator==(const SavingFields&) const = default;
};

class CSaving;

// The stream companion: the fixed record of the generation its tag names, then the text of each
// list that the generation carries.
class CSavingPersistStream final : public CPersistCompanion<CSaving, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

class CSaving final : public CObjectFrame<CSaving, ISaving> {
public:
    static constexpr const char* kClassName = "CSaving";
    static constexpr const CLSID& kClassId = CLSID_CSaving;
    static constexpr IID kModifiedParents[] = {IID_ISetup};

    // Not creatable by clients: the setup makes its saving section through this.
    static IDispatch* create() { return (new CSaving)->dispatch(); }
    CSaving();
    ~CSaving() override;

    NVDL_IMPLEMENTS(NVDL_ISAVING_MEMBERS)

    // The switches, and a clone of every save function of the source's lists in the target's,
    // which lose what they held; then the target is marked modified.
    static HRESULT Copy(ISaving* source, ISaving* target);

    SavingFields m_fields;

private:
    friend class CSavingPersistStream;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;

    CSavingPersistStream m_persist{*this};
    CObjectCollection m_measFunctions{IID_ISaveFunctions};
    CObjectCollection m_timeHistoryFunctions{IID_ISaveFunctions};
};

}  // namespace nvdl
