// A setup-shaped test class for the collection's creator rule: Creator, two sections (PostProcessing,
// Impact) with their Activated flag, and a Parent for the collection to write.
#pragma once

#include "TestObjects.h"

namespace nvdl::test {

inline constexpr IID IID_ITestSection{0x1b2c3d4e, 0x0004, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 4}};
inline constexpr IID IID_ITestSetup{0x1b2c3d4e, 0x0005, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 5}};

#define NVDL_ITESTSECTION_MEMBERS(M)                  \
    M(get, Activated, (SHORT* v), typed(VT_BOOL))     \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestSection, NVDL_ITESTSECTION_MEMBERS);

class CTestSection final : public CObjectFrame<CTestSection, ITestSection> {
public:
    explicit CTestSection(SHORT activated) : CObjectFrame(IID_ITestSection), m_activated(activated) {}
    HRESULT get_Activated(SHORT* v) override { return giveValue(m_activated, v); }

private:
    SHORT m_activated;
};

#define NVDL_ITESTSETUP_MEMBERS(M)                 \
    M(put, Parent, (IDispatch* v))                 \
    M(get, Creator, (BSTR* v))                     \
    M(put, Creator, (BSTR v))                      \
    M(get, PostProcessing, (IDispatch** v))        \
    M(get, Impact, (IDispatch** v))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestSetup, NVDL_ITESTSETUP_MEMBERS);

class CTestSetup final : public CObjectFrame<CTestSetup, ITestSetup> {
public:
    static CTestSetup* create(const char* creator, SHORT postProcessing, SHORT impact) {
        return new CTestSetup(creator, postProcessing, impact);
    }
    ~CTestSetup() override {
        m_postProcessing->Release();
        m_impact->Release();
    }
    HRESULT put_Parent(IDispatch*) override { return S_OK; }  // the setup need not keep it
    HRESULT get_Creator(BSTR* v) override { return giveText(m_creator, v); }
    HRESULT put_Creator(BSTR v) override { return takeText(m_creator, v); }
    HRESULT get_PostProcessing(IDispatch** v) override { return giveSection(m_postProcessing, v); }
    HRESULT get_Impact(IDispatch** v) override { return giveSection(m_impact, v); }
    std::string creator() const { return m_creator.ansi(); }

private:
    CTestSetup(const char* creator, SHORT postProcessing, SHORT impact)
        : CObjectFrame(IID_ITestSetup), m_creator(std::string_view(creator)),
          m_postProcessing(new CTestSection(postProcessing)), m_impact(new CTestSection(impact)) {}
    static HRESULT giveSection(CTestSection* s, IDispatch** v) {
        if (!v) return E_POINTER;
        *v = s->dispatch();
        s->AddRef();
        return S_OK;
    }

    Bstr m_creator;
    CTestSection* m_postProcessing;
    CTestSection* m_impact;
};

}  // namespace nvdl::test
