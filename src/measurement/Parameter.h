// CParameter: a name and a text value kept with a measurement, a setup or a project, persisted as a
// fixed record of 200 bytes through its stream companion.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "measurement/ParameterRecord.h"
#include "nvdl/IParameter.h"
#include "nvdl/Persist.h"

namespace nvdl {

class CParameter;

// The stream persistence companion.
class CParameterPersistStream final : public CPersistCompanion<CParameter, IPersistStream> {
public:
    static constexpr std::size_t kRecordSize = parameter_record::kSize;

    using CPersistCompanion::CPersistCompanion;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

class CParameter final : public CObjectFrame<CParameter, IParameter> {
public:
    static constexpr const char* kClassName = "CParameter";
    static constexpr const CLSID& kClassId = CLSID_CParameter;
    static constexpr IID kModifiedParents[] = {IID_IMeasurement, IID_IMode, IID_ISetup, IID_ISaving};

    static IDispatch* create();
    CParameter();

    NVDL_IMPLEMENTS(NVDL_IPARAMETER_MEMBERS)

    // Through the public setters, in the order of the properties.
    static HRESULT Copy(IParameter* source, IParameter* target);

private:
    friend class CParameterPersistStream;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;

    CParameterPersistStream m_persist{*this};
    std::string m_name;
    std::string m_value;
};

}  // namespace nvdl
