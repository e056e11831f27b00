#include "geometry/Component.h"

#include "frame/ClassTable.h"
#include "nvdl/IGeometry.h"
#include "platform/ComPtr.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.component", CLSID_CComponent, "Sonvara Component", &CComponent::create}};

}  // namespace

HRESULT giveCollection(CObjectCollection& collection, ICollection** out) {
    if (!out) return E_POINTER;
    *out = &collection;
    collection.AddRef();
    return S_OK;
}

CComponent::CComponent() : CObjectFrame(IID_IComponent) {
    m_nodes.SetOwner(dispatch());
    m_nodes.SetItemClass(CLSID_CNode);
    m_lines.SetOwner(dispatch());
    m_lines.SetItemClass(CLSID_CLine);
    m_triangles.SetOwner(dispatch());
    m_triangles.SetItemClass(CLSID_CTriangle);
}

CComponent::~CComponent() {
    for (CObjectCollection* c : {&m_nodes, &m_lines, &m_triangles}) c->SetOwner(nullptr);
}

// The geometry's name in front when the component has a geometry.
HRESULT CComponent::get_FullName(BSTR* name) {
    if (!name) return E_POINTER;
    *name = nullptr;
    std::string full = m_fields.Name;
    ComPtr<IDispatch> parent;
    ComPtr<IGeometry> geometry;
    if (SUCCEEDED(get_Parent(parent.out())) && parent &&
        SUCCEEDED(parent->QueryInterface(IID_IGeometry, geometry.outVoid()))) {
        Bstr prefix;
        if (SUCCEEDED(geometry->get_Name(prefix.out()))) full = prefix.ansi() + "." + full;
    }
    *name = allocBstrFromAnsi(full);
    return S_OK;
}

HRESULT CComponent::setThree(float& a, float& b, float& c, float x, float y, float z) {
    a = x;
    b = y;
    c = z;
    return static_cast<IComponent*>(this)->put_Modified(1);
}

HRESULT CComponent::XYZ(float x, float y, float z) { return setThree(m_fields.X, m_fields.Y, m_fields.Z, x, y, z); }

HRESULT CComponent::RotationXYZ(float x, float y, float z) {
    return setThree(m_fields.RotationX, m_fields.RotationY, m_fields.RotationZ, x, y, z);
}

HRESULT CComponent::put_CoordinateType(VARIANT value) {
    LONG code;
    if (HRESULT h = geometry::coordinateTypeOf(value, code); FAILED(h)) return h;
    m_fields.CoordinateType = code;
    return static_cast<IComponent*>(this)->put_Modified(1);
}

HRESULT CComponent::get_Nodes(ICollection** nodes) { return giveCollection(m_nodes, nodes); }
HRESULT CComponent::get_Lines(ICollection** lines) { return giveCollection(m_lines, lines); }
HRESULT CComponent::get_Triangles(ICollection** triangles) { return giveCollection(m_triangles, triangles); }

HRESULT CComponent::Translate(LONG code, BSTR* text) { return geometry::enums().translate(code, text); }

HRESULT CComponent::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    using geometry::truncated;
    const ComponentFields& f = m_fields;
    const MessageArg fields[] = {
        f.Name,
        truncated(f.X),
        truncated(f.Y),
        truncated(f.Z),
        truncated(f.RotationX),
        truncated(f.RotationY),
        truncated(f.RotationZ),
        geometry::enumText(f.CoordinateType),
        std::int32_t{f.Visibility},
        f.ColorIndex,
        std::int32_t{f.Highlight},
        std::int32_t{f.DrawSolid},
        std::int32_t{f.ShowLabel},
    };
    return geometry::clipFields(format, fields, text);
}

// The parent and the flag are copied last, so that filling the lists does not mark the source's
// geometry modified.
HRESULT CComponent::Copy(IComponent* source, IComponent* target) {
    auto* from = dynamic_cast<CComponent*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CComponent*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from == to) return S_OK;
    to->m_fields = from->m_fields;
    for (auto list : {&CComponent::m_nodes, &CComponent::m_lines, &CComponent::m_triangles}) {
        (to->*list).Clear();
        if (HRESULT h = (to->*list).AddClonesOf(from->*list); FAILED(h)) return h;
    }
    to->m_parent = from->m_parent;
    to->m_modified = from->m_modified;
    return S_OK;
}

}  // namespace nvdl
