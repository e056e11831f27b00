#include "geometry/Geometry.h"

#include "frame/ClassTable.h"
#include "geometry/Component.h"
#include "platform/ComPtr.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.geometry", CLSID_CGeometry, "Sonvara Geometry", &CGeometry::create}};

}  // namespace

CGeometry::CGeometry() : CObjectFrame(IID_IGeometry) {
    m_components.SetOwner(dispatch());
    m_components.SetItemClass(CLSID_CComponent);
}

CGeometry::~CGeometry() {
    m_components.SetOwner(nullptr);
    if (m_fieldList) m_fieldList->Release();
}

HRESULT CGeometry::put_CoordinateType(VARIANT value) {
    LONG code;
    if (HRESULT h = geometry::coordinateTypeOf(value, code); FAILED(h)) return h;
    m_fields.CoordinateType = code;
    return static_cast<IGeometry*>(this)->put_Modified(1);
}

HRESULT CGeometry::get_Components(ICollection** components) { return giveCollection(m_components, components); }

HRESULT CGeometry::Translate(LONG code, BSTR* text) { return geometry::enums().translate(code, text); }

HRESULT CGeometry::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    const MessageArg fields[] = {m_fields.Name, geometry::enumText(m_fields.CoordinateType)};
    return geometry::clipFields(format, fields, text);
}

// The list of a geometry's fields holds its flag alone. A field made from it takes its own
// reference on the geometry; the list does not.
HRESULT CGeometry::get_Fields(IFields** fields) {
    if (!fields) return E_POINTER;
    if (!m_fieldList) {
        m_fieldList = CFields::create();
        m_fieldList->SetInterface(IID_IGeometry);
        m_fieldList->Append("Modified");
    }
    m_fieldList->SetOwner(dispatch());
    *fields = m_fieldList;
    m_fieldList->AddRef();
    return S_OK;
}

// The clone is a new, unsaved geometry: it counts as modified. A component's clone keeps its
// parent, this geometry: it is let go before it joins the new list, so that the list's naming of
// it marks nothing here.
HRESULT CGeometry::Copy(IGeometry* source, IGeometry* target) {
    auto* from = dynamic_cast<CGeometry*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CGeometry*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from == to) return S_OK;
    to->m_fields = from->m_fields;
    to->m_components.Clear();
    for (std::size_t i = 0; i < from->m_components.size(); ++i) {
        ComPtr<IComponent> component = ComPtr<IComponent>::query(from->m_components.itemAt(i));
        ComPtr<IComponent> clone;
        if (!component || FAILED(component->Clone(clone.out()))) continue;
        clone->put_Parent(nullptr);
        Variant key, before, after;
        LONG index = 0;
        if (HRESULT h = to->m_components.Add(clone.get(), &key, &before, &after, &index); FAILED(h)) return h;
    }
    return target->put_Modified(1);
}

}  // namespace nvdl
