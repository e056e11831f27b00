#include "geometry/Line.h"

#include "frame/ClassTable.h"
#include "geometry/GeometryShared.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.line", CLSID_CLine, "Sonvara Line", &CLine::create}};

}  // namespace

HRESULT CLine::Node12(BSTR node1, BSTR node2) {
    m_fields.Node1 = bstrToAnsi(node1);
    m_fields.Node2 = bstrToAnsi(node2);
    return static_cast<ILine*>(this)->put_Modified(1);
}

HRESULT CLine::Clip(BSTR format, BSTR* text) {
    if (!text) return E_POINTER;
    const MessageArg fields[] = {m_fields.Node1, m_fields.Node2, std::int32_t{m_fields.Visibility},
                                 m_fields.ColorIndex};
    return geometry::clipFields(format, fields, text);
}

HRESULT CLine::Copy(ILine* source, ILine* target) {
    auto* from = dynamic_cast<CLine*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CLine*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    to->m_fields = from->m_fields;
    to->m_modified = from->m_modified;
    return S_OK;
}

}  // namespace nvdl
