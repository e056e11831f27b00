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

#define NVDL_ITESTITEM_MEMBERS(M)                                         \
    M(get, Name, (BSTR* v))                                               \
    M(put, Name, (BSTR v))                                                \
    M(get, Id, (BSTR* v))                                                 \
    M(put, Id, (BSTR v))                                                  \
    M(get, FullPathName, (BSTR* v))                                       \
    M(put, FullPathName, (BSTR v))                                        \
    M(frame_get, Parent, (IDispatch** v))                                 \
    M(frame_put, Parent, (IDispatch* v))                                  \
    M(frame_get, Modified, (SHORT* v), hidden())                          \
    M(frame_put, Modified, (SHORT v))                                     \
    M(get, Count, (LONG* v))                                              \
    M(put, Count, (LONG v))                                               \
    M(get, Level, (SHORT* v))                                             \
    M(put, Level, (SHORT v))                                              \
    M(get, Gain, (float* v))                                              \
    M(put, Gain, (float v))                                               \
    M(get, Scale, (double* v))                                            \
    M(put, Scale, (double v))                                             \
    M(get, When, (DATE* v), typed(VT_DATE))                               \
    M(put, When, (DATE v), typed(VT_DATE))                                \
    M(get, Enabled, (SHORT* v), typed(VT_BOOL))                           \
    M(put, Enabled, (SHORT v), typed(VT_BOOL))                            \
    M(get, Note, (VARIANT* v))                                            \
    M(put, Note, (VARIANT* v))                                            \
    M(get, Samples, (SAFEARRAY** v))                                      \
    M(get, Element, (LONG index, float* v))                               \
    M(put, Element, (LONG index, float v))                                \
    M(call, Split, (LONG at, VARIANT* head, VARIANT* tail), out("head"), out("tail")) \
    M(call, Clone, (ITestItem** copy))                                    \
    M(frame_get, Property, (BSTR name, BSTR* value))                      \
    M(frame_put, Property, (BSTR name, BSTR value))                       \
    M(frame_get, PropertiesCount, (LONG* count))                          \
    M(frame_get, PropertyName, (LONG index, BSTR* name))                  \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestItem, NVDL_ITESTITEM_MEMBERS);

class CTestItem final : public CObjectFrame<CTestItem, ITestItem> {
public:
    static CTestItem* create() { return new CTestItem; }

    HRESULT get_Name(BSTR* v) override { return giveText(m_name, v); }
    HRESULT put_Name(BSTR v) override { return takeText(m_name, v); }
    HRESULT get_Id(BSTR* v) override { return giveText(m_id, v); }
    HRESULT put_Id(BSTR v) override { return takeText(m_id, v); }
    HRESULT get_FullPathName(BSTR* v) override { return giveText(m_fullPath, v); }
    HRESULT put_FullPathName(BSTR v) override { return takeText(m_fullPath, v); }
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
    using CObjectFrame::GetPropertyByIndex;

    static const InterfaceDescription& description() { return describeInterface<ITestItem>(); }

private:
    CTestItem() : CObjectFrame(IID_ITestItem) { m_note.vt = VT_EMPTY; }
    ~CTestItem() override { VariantClear(&m_note); }

    Bstr m_name, m_id, m_fullPath;
    SHORT m_level = 0, m_enabled = 0;
    LONG m_count = 0;
    float m_gain = 0;
    double m_scale = 0;
    DATE m_when = 0;
    VARIANT m_note;
    float m_elements[4] = {};
};

#define NVDL_ITESTOWNER_MEMBERS(M)          \
    M(get, Items, (ICollection** v))        \
    M(frame_get, Modified, (SHORT* v))      \
    M(frame_put, Modified, (SHORT v))       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITestOwner, NVDL_ITESTOWNER_MEMBERS);

// An owner of one collection, whose item class the test chooses.
class CTestOwner final : public CObjectFrame<CTestOwner, ITestOwner> {
public:
    static CTestOwner* create(const CLSID& itemClass) { return new CTestOwner(itemClass); }

    HRESULT get_Items(ICollection** v) override {
        if (!v) return E_POINTER;
        *v = &m_items;
        m_items.AddRef();
        return S_OK;
    }
    CObjectCollection& items() { return m_items; }
    SHORT modified() const { return m_modified; }

private:
    explicit CTestOwner(const CLSID& itemClass) : CObjectFrame(IID_ITestOwner), m_items(IID_IParameters) {
        CTestItem::description();
        m_items.SetOwner(dispatch());
        m_items.SetItemClass(itemClass);
    }

    CObjectCollection m_items;
};

}  // namespace nvdl::test
