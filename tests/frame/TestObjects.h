// Small model classes for the frame tests: an item that answers to the names a collection asks
// for (Name, Id, Parent, Modified, FullPathName, Clone) and has one property of each declared type,
// and an owner that embeds a collection.
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "nvdl/Identifiers.h"
#include "frame/ObjectFrame.h"
#include "platform/MemberTable.h"

namespace nvdl::test {

// The getters and setters of the test classes: a null output is refused, a value is copied.
inline HRESULT giveText(const Bstr& s, BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstr(s.view());
    return S_OK;
}
inline HRESULT takeText(Bstr& s, BSTR v) {
    s = Bstr(bstrView(v));
    return S_OK;
}
template <class T>
HRESULT giveValue(const T& x, T* v) {
    if (!v) return E_POINTER;
    *v = x;
    return S_OK;
}
template <class T, class U>
HRESULT setValue(T& x, U v) {
    x = v;
    return S_OK;
}

inline constexpr IID IID_ITestItem{0x1b2c3d4e, 0x0001, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 1}};
inline constexpr IID IID_ITestOwner{0x1b2c3d4e, 0x0002, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 2}};

struct ITestItem : IDispatch {
    static constexpr const IID& iid = IID_ITestItem;
    virtual HRESULT get_Name(BSTR* v) = 0;
    virtual HRESULT put_Name(BSTR v) = 0;
    virtual HRESULT get_Id(BSTR* v) = 0;
    virtual HRESULT put_Id(BSTR v) = 0;
    virtual HRESULT get_FullPathName(BSTR* v) = 0;
    virtual HRESULT put_FullPathName(BSTR v) = 0;
    virtual HRESULT get_Parent(IDispatch** v) = 0;
    virtual HRESULT put_Parent(IDispatch* v) = 0;
    virtual HRESULT get_Modified(SHORT* v) = 0;
    virtual HRESULT put_Modified(SHORT v) = 0;
    virtual HRESULT get_Count(LONG* v) = 0;
    virtual HRESULT put_Count(LONG v) = 0;
    virtual HRESULT get_Level(SHORT* v) = 0;
    virtual HRESULT put_Level(SHORT v) = 0;
    virtual HRESULT get_Gain(float* v) = 0;
    virtual HRESULT put_Gain(float v) = 0;
    virtual HRESULT get_Scale(double* v) = 0;
    virtual HRESULT put_Scale(double v) = 0;
    virtual HRESULT get_When(DATE* v) = 0;
    virtual HRESULT put_When(DATE v) = 0;
    virtual HRESULT get_Enabled(SHORT* v) = 0;
    virtual HRESULT put_Enabled(SHORT v) = 0;
    virtual HRESULT get_Note(VARIANT* v) = 0;
    virtual HRESULT put_Note(VARIANT* v) = 0;
    virtual HRESULT get_Samples(SAFEARRAY** v) = 0;
    virtual HRESULT get_Element(LONG index, float* v) = 0;
    virtual HRESULT put_Element(LONG index, float v) = 0;
    virtual HRESULT Split(LONG at, VARIANT* head, VARIANT* tail) = 0;
    virtual HRESULT Clone(ITestItem** copy) = 0;
    virtual HRESULT get_Property(BSTR name, BSTR* value) = 0;
    virtual HRESULT put_Property(BSTR name, BSTR value) = 0;
    virtual HRESULT get_PropertiesCount(LONG* count) = 0;
    virtual HRESULT get_PropertyName(LONG index, BSTR* name) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ITestItem() = default;
};

class CTestItem final : public CObjectFrame<ITestItem> {
public:
    static CTestItem* create() { return new CTestItem; }

    HRESULT get_Name(BSTR* v) override { return giveText(m_name, v); }
    HRESULT put_Name(BSTR v) override { return takeText(m_name, v); }
    HRESULT get_Id(BSTR* v) override { return giveText(m_id, v); }
    HRESULT put_Id(BSTR v) override { return takeText(m_id, v); }
    HRESULT get_FullPathName(BSTR* v) override { return giveText(m_fullPath, v); }
    HRESULT put_FullPathName(BSTR v) override { return takeText(m_fullPath, v); }
    HRESULT get_Parent(IDispatch** v) override {
        if (!v) return E_POINTER;
        *v = nullptr;
        if (m_parent.check() == WeakParent::State::Dead) return E_POINTER;
        if ((*v = m_parent.get())) (*v)->AddRef();
        return S_OK;
    }
    HRESULT put_Parent(IDispatch* v) override {
        m_parent.set(v);
        return S_OK;
    }
    HRESULT get_Modified(SHORT* v) override { return giveValue(m_modified, v); }
    HRESULT put_Modified(SHORT v) override { return setValue(m_modified, v); }
    HRESULT get_Count(LONG* v) override { return giveValue(m_count, v); }
    HRESULT put_Count(LONG v) override { return setValue(m_count, v); }
    HRESULT get_Level(SHORT* v) override { return giveValue(m_level, v); }
    HRESULT put_Level(SHORT v) override { return setValue(m_level, v); }
    HRESULT get_Gain(float* v) override { return giveValue(m_gain, v); }
    HRESULT put_Gain(float v) override { return setValue(m_gain, v); }
    HRESULT get_Scale(double* v) override { return giveValue(m_scale, v); }
    HRESULT put_Scale(double v) override { return setValue(m_scale, v); }
    HRESULT get_When(DATE* v) override { return giveValue(m_when, v); }
    HRESULT put_When(DATE v) override { return setValue(m_when, v); }
    HRESULT get_Enabled(SHORT* v) override { return giveValue(m_enabled, v); }
    HRESULT put_Enabled(SHORT v) override { return setValue(m_enabled, v); }
    HRESULT get_Note(VARIANT* v) override { return v ? VariantCopy(v, &m_note) : E_POINTER; }
    HRESULT put_Note(VARIANT* v) override { return v ? VariantCopyInd(&m_note, v) : E_POINTER; }
    HRESULT get_Samples(SAFEARRAY** v) override {
        if (!v) return E_POINTER;
        const float values[] = {1.5f, -2.0f, 3.25f};
        *v = makeFloatArray(values);
        return S_OK;
    }
    HRESULT get_Element(LONG index, float* v) override {
        if (!v) return E_POINTER;
        if (index < 0 || index >= 4) return E_INVALIDARG;
        *v = m_elements[index];
        return S_OK;
    }
    HRESULT put_Element(LONG index, float v) override {
        if (index < 0 || index >= 4) return E_INVALIDARG;
        m_elements[index] = v;
        return S_OK;
    }
    HRESULT Split(LONG at, VARIANT* head, VARIANT* tail) override {
        if (!head || !tail) return E_POINTER;
        std::string name = bstrToAnsi(m_name.get());
        std::size_t cut = std::min<std::size_t>(static_cast<std::size_t>(std::max<LONG>(at, 0)), name.size());
        Variant h = Variant::fromAnsi(name.substr(0, cut)), t = Variant::fromAnsi(name.substr(cut));
        VariantCopy(head, &h);
        VariantCopy(tail, &t);
        return S_OK;
    }
    HRESULT Clone(ITestItem** copy) override {
        if (!copy) return E_POINTER;
        auto* c = new CTestItem;
        c->m_name = Bstr(m_name.view());
        c->m_id = Bstr(m_id.view());
        *copy = c;
        return S_OK;
    }
    HRESULT get_Property(BSTR name, BSTR* value) override { return getPropertyByName(name, value); }
    HRESULT put_Property(BSTR name, BSTR value) override { return putPropertyByName(name, value); }
    HRESULT get_PropertiesCount(LONG* count) override { return countProperties(count); }
    HRESULT get_PropertyName(LONG index, BSTR* name) override { return nameOfProperty(index, name); }

    static const InterfaceDescription& description();

private:
    CTestItem() : CObjectFrame(IID_ITestItem) {
        description();
        m_note.vt = VT_EMPTY;
    }
    ~CTestItem() override { VariantClear(&m_note); }

    Bstr m_name, m_id, m_fullPath;
    WeakParent m_parent;
    SHORT m_modified = 0, m_level = 0, m_enabled = 0;
    LONG m_count = 0;
    float m_gain = 0;
    double m_scale = 0;
    DATE m_when = 0;
    VARIANT m_note;
    float m_elements[4] = {};
};

inline const InterfaceDescription& CTestItem::description() {
    static const InterfaceDescription& d =
        MemberTable<ITestItem>(IID_ITestItem, "ITestItem")
            .propget<&ITestItem::get_Name>("Name").propput<&ITestItem::put_Name>("Name")
            .propget<&ITestItem::get_Id>("Id").propput<&ITestItem::put_Id>("Id")
            .propget<&ITestItem::get_FullPathName>("FullPathName").propput<&ITestItem::put_FullPathName>("FullPathName")
            .propget<&ITestItem::get_Parent>("Parent").propput<&ITestItem::put_Parent>("Parent")
            .propget<&ITestItem::get_Modified>("Modified").hidden().propput<&ITestItem::put_Modified>("Modified")
            .propget<&ITestItem::get_Count>("Count").propput<&ITestItem::put_Count>("Count")
            .propget<&ITestItem::get_Level>("Level").propput<&ITestItem::put_Level>("Level")
            .propget<&ITestItem::get_Gain>("Gain").propput<&ITestItem::put_Gain>("Gain")
            .propget<&ITestItem::get_Scale>("Scale").propput<&ITestItem::put_Scale>("Scale")
            .propget<&ITestItem::get_When>("When", VT_DATE).propput<&ITestItem::put_When>("When", VT_DATE)
            .propget<&ITestItem::get_Enabled>("Enabled", VT_BOOL).propput<&ITestItem::put_Enabled>("Enabled", VT_BOOL)
            .propget<&ITestItem::get_Note>("Note").propput<&ITestItem::put_Note>("Note")
            .propget<&ITestItem::get_Samples>("Samples")
            .propget<&ITestItem::get_Element>("Element", VT_EMPTY, {"index"})
            .propput<&ITestItem::put_Element>("Element", VT_EMPTY, {"index"})
            .method<&ITestItem::Split>("Split", {"at", out("head"), out("tail")})
            .method<&ITestItem::Clone>("Clone")
            .method<&ITestItem::get_Property>("Property", {"name"})
            .method<&ITestItem::put_Property>("PutProperty", {"name", "value"})
            .propget<&ITestItem::get_PropertiesCount>("PropertiesCount")
            .propget<&ITestItem::get_PropertyName>("PropertyName", VT_EMPTY, {"index"})
            .build();
    return d;
}

struct ITestOwner : IDispatch {
    static constexpr const IID& iid = IID_ITestOwner;
    virtual HRESULT get_Items(ICollection** v) = 0;
    virtual HRESULT get_Modified(SHORT* v) = 0;
    virtual HRESULT put_Modified(SHORT v) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ITestOwner() = default;
};

// An owner of one collection, whose item class the test chooses.
class CTestOwner final : public CObjectFrame<ITestOwner> {
public:
    static CTestOwner* create(const CLSID& itemClass) { return new CTestOwner(itemClass); }

    HRESULT get_Items(ICollection** v) override {
        if (!v) return E_POINTER;
        *v = &m_items;
        m_items.AddRef();
        return S_OK;
    }
    HRESULT get_Modified(SHORT* v) override { return giveValue(m_modified, v); }
    HRESULT put_Modified(SHORT v) override { return setValue(m_modified, v); }
    CObjectCollection& items() { return m_items; }
    SHORT modified() const { return m_modified; }

    static const InterfaceDescription& description() {
        static const InterfaceDescription& d =
            MemberTable<ITestOwner>(IID_ITestOwner, "ITestOwner")
                .propget<&ITestOwner::get_Items>("Items")
                .propget<&ITestOwner::get_Modified>("Modified").propput<&ITestOwner::put_Modified>("Modified")
                .build();
        return d;
    }

private:
    explicit CTestOwner(const CLSID& itemClass) : CObjectFrame(IID_ITestOwner), m_items(IID_IParameters) {
        description();
        CTestItem::description();
        m_items.SetOwner(dispatch());
        m_items.SetItemClass(itemClass);
    }

    CObjectCollection m_items;
    SHORT m_modified = 0;
};

}  // namespace nvdl::test
