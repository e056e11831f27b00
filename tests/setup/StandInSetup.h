// A setup-shaped stand-in for the sections that consult their setup: it has a Processing section
// whose MeasurementFunction the test chooses.
#pragma once

#include "../frame/TestObjects.h"

namespace nvdl::test {

inline constexpr IID IID_ITestProcessing{0x1b2c3d4e, 0x0011, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0x11}};
inline constexpr IID IID_ITestProcessingSetup{0x1b2c3d4e, 0x0012, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 0x12}};

#define NVDL_ITESTPROCESSING_MEMBERS(M)           \
    M(get, MeasurementFunction, (LONG* v))        \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestProcessing, NVDL_ITESTPROCESSING_MEMBERS);

class CTestProcessing final : public CObjectFrame<CTestProcessing, ITestProcessing> {
public:
    explicit CTestProcessing(LONG function) : CObjectFrame(IID_ITestProcessing), m_function(function) {}
    HRESULT get_MeasurementFunction(LONG* v) override { return giveValue(m_function, v); }

private:
    LONG m_function;
};

#define NVDL_ITESTPROCESSINGSETUP_MEMBERS(M)      \
    M(get, Processing, (IDispatch** v))           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestProcessingSetup, NVDL_ITESTPROCESSINGSETUP_MEMBERS);

class CTestProcessingSetup final : public CObjectFrame<CTestProcessingSetup, ITestProcessingSetup> {
public:
    explicit CTestProcessingSetup(LONG function)
        : CObjectFrame(IID_ITestProcessingSetup), m_processing(new CTestProcessing(function)) {}
    ~CTestProcessingSetup() override { m_processing->Release(); }
    HRESULT get_Processing(IDispatch** v) override {
        if (!v) return E_POINTER;
        *v = m_processing->dispatch();
        m_processing->AddRef();
        return S_OK;
    }

private:
    CTestProcessing* m_processing;
};

}  // namespace nvdl::test
