// CSaveFunction: a result kind that a run keeps, by name, with a text value; an item of the saving
// section's function lists, stored as the same 200-byte record as a parameter.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/ISaveFunction.h"
#include "nvdl/Persist.h"

namespace nvdl {

class CSaveFunction;

class CSaveFunctionPersistStream final : public CPersistCompanion<CSaveFunction, IPersistStream> {
public:
    using CPersistCompanion::CPersistCompanion;
    HRESULT Load(IStream* stream) override;
    HRESULT Save(IStream* stream, int clearDirty) override;
    HRESULT GetSizeMax(std::uint64_t* size) override;
};

class CSaveFunction final : public CObjectFrame<CSaveFunction, ISaveFunction> {
public:
    static constexpr const char* kClassName = "CSaveFunction";
    static constexpr const CLSID& kClassId = CLSID_CSaveFunction;
    static constexpr IID kModifiedParents[] = {IID_IMeasurement, IID_ISetup, IID_ISaving};

    static IDispatch* create() { return (new CSaveFunction)->dispatch(); }
    CSaveFunction() : CObjectFrame(IID_ISaveFunction) {}

    NVDL_IMPLEMENTS(NVDL_ISAVEFUNCTION_MEMBERS)

    // Through the public setters: name, value, then the Modified flag.
    static HRESULT Copy(ISaveFunction* source, ISaveFunction* target);

private:
    friend class CSaveFunctionPersistStream;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;

    CSaveFunctionPersistStream m_persist{*this};
    std::string m_name;
    std::string m_value;
};

}  // namespace nvdl
