#include "geometry/Triangle.h"

#include "frame/ClassTable.h"
#include "geometry/GeometryShared.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.triangle", CLSID_CTriangle, "Sonvara Triangle", &CTriangle::create}};

}  // namespace

HRESULT CTriangle::Node123(BSTR node1, BSTR node2, BSTR node3) {
    m_fields.Node1 = bstrToAnsi(node1);
    m_fields.Node2 = bstrToAnsi(node2);
    m_fields.Node3 = bstrToAnsi(node3);
    return static_cast<ITriangle*>(this)->put_Modified(1);
}

// The second node has no insert: the inserts are the first and third nodes, visibility and colour.
HRESULT CTriangle::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    const MessageArg fields[] = {m_fields.Node1, m_fields.Node3, std::int32_t{m_fields.Visibility},
                                 m_fields.ColorIndex};
    return geometry::clipFields(format, fields, text);
}

HRESULT CTriangle::Copy(ITriangle* source, ITriangle* target) {
    auto* from = dynamic_cast<CTriangle*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CTriangle*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    to->m_fields = from->m_fields;
    to->m_modified = from->m_modified;
    return S_OK;
}

}  // namespace nvdl
