// A setup-shaped test class for the collection's creator rule: Name, Parent, Creator, and two
// sections (PostProcessing, Impact) with their Activated flag.
#pragma once

#include "TestObjects.h"

namespace nvdl::test {

inline constexpr IID IID_ITestSection{0x1b2c3d4e, 0x0004, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 4}};
inline constexpr IID IID_ITestSetup{0x1b2c3d4e, 0x0005, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 5}};

struct ITestSection : IDispatch {
    static constexpr const IID& iid = IID_ITestSection;
    virtual HRESULT get_Activated(SHORT* v) = 0;
    virtual HRESULT put_Activated(SHORT v) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ITestSection() = default;
};

class CTestSection final : public CObjectFrame<ITestSection> {
public:
    static CTestSection* create() { return new CTestSection; }
    HRESULT get_Activated(SHORT* v) override {
        if (!v) return E_POINTER;
        *v = m_activated;
        return S_OK;
    }
    HRESULT put_Activated(SHORT v) override {
        m_activated = v;
        return S_OK;
    }

private:
    CTestSection() : CObjectFrame(IID_ITestSection) {
        static const InterfaceDescription& d = MemberTable<ITestSection>(IID_ITestSection, "ITestSection")
                                                   .propget<&ITestSection::get_Activated>("Activated", VT_BOOL)
                                                   .propput<&ITestSection::put_Activated>("Activated", VT_BOOL)
                                                   .build();
        (void)d;
    }
    SHORT m_activated = 0;
};

struct ITestSetup : IDispatch {
    static constexpr const IID& iid = IID_ITestSetup;
    virtual HRESULT get_Name(BSTR* v) = 0;
    virtual HRESULT put_Name(BSTR v) = 0;
    virtual HRESULT get_Parent(IDispatch** v) = 0;
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
        auto* s = new CTestSetup;
        s->m_creator = Bstr(std::string_view(creator));
        s->m_postProcessing->put_Activated(postProcessing);
        s->m_impact->put_Activated(impact);
        return s;
    }
    ~CTestSetup() override {
        m_postProcessing->Release();
        m_impact->Release();
    }
    HRESULT get_Name(BSTR* v) override { return give(m_name, v); }
    HRESULT put_Name(BSTR v) override {
        m_name = Bstr(bstrView(v));
        return S_OK;
    }
    HRESULT get_Parent(IDispatch** v) override {
        if (!v) return E_POINTER;
        if ((*v = m_parent.get())) (*v)->AddRef();
        return S_OK;
    }
    HRESULT put_Parent(IDispatch* v) override {
        m_parent.set(v);
        return S_OK;
    }
    HRESULT get_Creator(BSTR* v) override { return give(m_creator, v); }
    HRESULT put_Creator(BSTR v) override {
        m_creator = Bstr(bstrView(v));
        return S_OK;
    }
    HRESULT get_PostProcessing(IDispatch** v) override { return giveObject(m_postProcessing, v); }
    HRESULT get_Impact(IDispatch** v) override { return giveObject(m_impact, v); }
    std::string creator() const { return m_creator.ansi(); }

private:
    CTestSetup() : CObjectFrame(IID_ITestSetup) {
        static const InterfaceDescription& d = MemberTable<ITestSetup>(IID_ITestSetup, "ITestSetup")
                                                   .propget<&ITestSetup::get_Name>("Name")
                                                   .propput<&ITestSetup::put_Name>("Name")
                                                   .propget<&ITestSetup::get_Parent>("Parent")
                                                   .propput<&ITestSetup::put_Parent>("Parent")
                                                   .propget<&ITestSetup::get_Creator>("Creator")
                                                   .propput<&ITestSetup::put_Creator>("Creator")
                                                   .propget<&ITestSetup::get_PostProcessing>("PostProcessing")
                                                   .propget<&ITestSetup::get_Impact>("Impact")
                                                   .build();
        (void)d;
    }
    static HRESULT give(const Bstr& s, BSTR* v) {
        if (!v) return E_POINTER;
        *v = allocBstr(s.view());
        return S_OK;
    }
    static HRESULT giveObject(CTestSection* s, IDispatch** v) {
        if (!v) return E_POINTER;
        *v = s->dispatch();
        s->AddRef();
        return S_OK;
    }

    Bstr m_name{std::string_view("Setup")}, m_creator;
    WeakParent m_parent;
    CTestSection* m_postProcessing = CTestSection::create();
    CTestSection* m_impact = CTestSection::create();
};

}  // namespace nvdl::test
