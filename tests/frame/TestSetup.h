// A setup-shaped test class for the collection's creator rule: Creator, two sections (PostProcessing,
// Impact) with their Activated flag, and a Parent for the collection to write.
#pragma once

#include "TestObjects.h"

namespace nvdl::test {

inline constexpr IID IID_ITestSection{0x1b2c3d4e, 0x0004, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 4}};
inline constexpr IID IID_ITestSetup{0x1b2c3d4e, 0x0005, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 5}};

struct ITestSection : IDispatch {
    static constexpr const IID& iid = IID_ITestSection;
    virtual HRESULT get_Activated(SHORT* v) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ITestSection() = default;
};

class CTestSection final : public CObjectFrame<ITestSection> {
public:
    explicit CTestSection(SHORT activated) : CObjectFrame(IID_ITestSection), m_activated(activated) {
        static const InterfaceDescription& d = MemberTable<ITestSection>(IID_ITestSection, "ITestSection")
                                                   .propget<&ITestSection::get_Activated>("Activated", VT_BOOL)
                                                   .build();
        (void)d;
    }
    HRESULT get_Activated(SHORT* v) override { return giveValue(m_activated, v); }

private:
    SHORT m_activated;
};

struct ITestSetup : IDispatch {
    static constexpr const IID& iid = IID_ITestSetup;
    virtual HRESULT put_Parent(IDispatch* v) = 0;
    virtual HRESULT get_Creator(BSTR* v) = 0;
    virtual HRESULT put_Creator(BSTR v) = 0;
    virtual HRESULT get_PostProcessing(IDispatch** v) = 0;
    virtual HRESULT get_Impact(IDispatch** v) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ITestSetup() = default;
};

class CTestSetup final : public CObjectFrame<ITestSetup> {
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
          m_postProcessing(new CTestSection(postProcessing)), m_impact(new CTestSection(impact)) {
        static const InterfaceDescription& d = MemberTable<ITestSetup>(IID_ITestSetup, "ITestSetup")
                                                   .propput<&ITestSetup::put_Parent>("Parent")
                                                   .propget<&ITestSetup::get_Creator>("Creator")
                                                   .propput<&ITestSetup::put_Creator>("Creator")
                                                   .propget<&ITestSetup::get_PostProcessing>("PostProcessing")
                                                   .propget<&ITestSetup::get_Impact>("Impact")
                                                   .build();
        (void)d;
    }
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
