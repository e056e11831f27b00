#include "geometry/Node.h"

#include "frame/ClassTable.h"
#include "geometry/GeometryShared.h"
#include "nvdl/IComponent.h"
#include "platform/ComPtr.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.node", CLSID_CNode, "Sonvara Node", &CNode::create}};

}  // namespace

// The component's full name in front when there is a component, which itself puts the geometry's
// name in front of its own when it has one.
HRESULT CNode::get_FullName(BSTR* name) {
    if (!name) return E_POINTER;
    *name = nullptr;
    std::string full = m_fields.Name;
    ComPtr<IDispatch> parent;
    ComPtr<IComponent> component;
    if (SUCCEEDED(get_Parent(parent.out())) && parent &&
        SUCCEEDED(parent->QueryInterface(IID_IComponent, component.outVoid()))) {
        Bstr prefix;
        if (SUCCEEDED(component->get_FullName(prefix.out()))) full = prefix.ansi() + "." + full;
    }
    *name = allocBstrFromAnsi(full);
    return S_OK;
}

HRESULT CNode::XYZ(float x, float y, float z) {
    m_fields.X = x;
    m_fields.Y = y;
    m_fields.Z = z;
    return static_cast<INode*>(this)->put_Modified(1);
}

HRESULT CNode::RotationXYZ(float x, float y, float z) {
    m_fields.RotationX = x;
    m_fields.RotationY = y;
    m_fields.RotationZ = z;
    return static_cast<INode*>(this)->put_Modified(1);
}

HRESULT CNode::put_Coordinate(float x, float y, float z) { return XYZ(x, y, z); }
HRESULT CNode::put_Orientation(float x, float y, float z) { return RotationXYZ(x, y, z); }

HRESULT CNode::Translate(LONG code, BSTR* text) { return geometry::enums().translate(code, text); }

HRESULT CNode::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    using geometry::truncated;
    const NodeFields& f = m_fields;
    const MessageArg fields[] = {
        f.Name,
        truncated(f.X),
        truncated(f.Y),
        truncated(f.Z),
        truncated(f.RotationX),
        truncated(f.RotationY),
        truncated(f.RotationZ),
        std::int32_t{f.Highlight},
        f.ColorIndex,
        std::int32_t{f.SlaveNode},
        f.MasterNode1,
        f.MasterNode2,
    };
    return geometry::clipFields(format, fields, text);
}

HRESULT CNode::Copy(INode* source, INode* target) {
    auto* from = dynamic_cast<CNode*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CNode*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    to->m_fields = from->m_fields;
    to->m_modified = from->m_modified;
    return S_OK;
}

}  // namespace nvdl
