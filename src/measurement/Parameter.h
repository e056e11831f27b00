// CParameter: a name and a text value kept with a measurement, a setup or a project, persisted as a
// fixed record of 200 bytes through its stream companion.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "nvdl/IParameter.h"
#include "nvdl/Persist.h"

namespace nvdl {

class CParameter;

// The stream persistence companion: it has no count of its own and answers for its parameter.
class CParameterPersistStream final : public IPersistStream {
public:
    static constexpr std::size_t kRecordSize = 200;
    static constexpr std::size_t kTextField = 100;

    explicit CParameterPersistStream(CParameter& owner) : m_owner(owner) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;
    HRESULT GetClassID(CLSID* clsid) override;
    HRESULT IsDirty() override;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;

private:
    CParameter& m_owner;
};

class CParameter final : public CObjectFrame<CParameter, IParameter> {
public:
    static constexpr const char* kClassName = "CParameter";
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
