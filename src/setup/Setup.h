// CSetup: the complete description of one measurement task. It owns one object per section
// (acquisition, processing, saving, the analysis sections) and the named collections of parameters,
// transducers, input, strain and source channels and frontends; each of them has the setup as its
// owner, so that a change anywhere marks the setup modified and, through it, its workspace or project.
//
// A setup persists as a small tree of storages (a header stream and one sub-storage per section,
// setup/SetupStorage.cpp), through Load and Save of a compound file, and as one stream for older
// workspace files (setup/SetupStream.cpp).
#pragma once

#include <array>
#include <string>

#include "frame/EnumTable.h"
#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/ISetup.h"
#include "nvdl/Persist.h"
#include "setup/SetupSections.h"

namespace nvdl {

class CSetup;

struct SetupFields {
    std::string Name = "Setup";
    std::string Creator;
    std::string WorkspacePrefixName;
    std::string ParametersLayout = "[None]";
    std::int32_t DataMode = 340;
    std::int16_t Default = 0;
    std::int16_t GroupDataInSameWs = 0;
    std::int16_t GroupChannels = 0;
    std::int16_t GroupFunctions = -1;
    std::string tag = "20080422";  // the section version tag, kept as read

    bool operator==(const SetupFields&) const = default;
};

// The tree of storages: the header stream and a sub-storage per section.
class CSetupPersistStorage final : public CStoragePersistCompanion<CSetup> {
public:
    using CStoragePersistCompanion::CStoragePersistCompanion;
    HRESULT Load(IStorage* storage) override;
    HRESULT Save(IStorage* storage, int sameStorage) override;
};

// The whole setup in one stream.
class CSetupPersistStream final : public CPersistCompanion<CSetup, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

class CSetup final : public CObjectFrame<CSetup, ISetup> {
public:
    static constexpr const char* kClassName = "CSetup";
    static constexpr const CLSID& kClassId = CLSID_CSetup;
    static constexpr IID kModifiedParents[] = {IID_IWorkspace, IID_IProject};
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CSetup)->dispatch(); }
    CSetup();
    ~CSetup() override;

    NVDL_IMPLEMENTS(NVDL_ISETUP_MEMBERS)

    // Section by section: the plain fields through the setters, each single section through its own
    // Copy, and each collection of the target emptied and given a clone of every item of the source's.
    static HRESULT Copy(ISetup* source, ISetup* target);

    // The setup count of the header stream's name.
    LONG setupCount() const { return m_setupCount; }
    // The setup's number in the collection it is saved with: it names the header stream.
    void setSetupCount(LONG count) { m_setupCount = count; }

    SetupFields m_fields;

private:
    friend class CSetupPersistStorage;
    friend class CSetupPersistStream;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;
    HRESULT giveSection(SingleSection which, IDispatch** section);
    HRESULT giveCollection(CObjectCollection& collection, ICollection** out);
    // The object of a single section, or the collection that a collection section keeps.
    IDispatch* section(SingleSection which) const { return m_sections[static_cast<std::size_t>(which)]; }
    CObjectCollection& collection(SectionCollection which);

    CSetupPersistStorage m_persistStorage{*this};
    CSetupPersistStream m_persistStream{*this};
    std::string m_id;
    LONG m_setupCount = 1;
    std::array<IDispatch*, kSingleSectionCount> m_sections{};  // one counted reference each
    CObjectCollection m_parameters{IID_IParameters};
    CObjectCollection m_transducers{IID_ITransducers};
    CObjectCollection m_inputChannels{IID_IInputChannels};
    CObjectCollection m_strainChannels{IID_IStrainChannels};
    CObjectCollection m_sourceChannels{IID_ISourceChannels};
    CObjectCollection m_frontends{IID_IFrontends};
};

}  // namespace nvdl
