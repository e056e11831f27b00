#include "geometry/GeometryStream.h"

#include <vector>

#include "geometry/Component.h"
#include "geometry/Geometry.h"
#include "geometry/GeometryRecords.h"
#include "geometry/Line.h"
#include "geometry/Node.h"
#include "geometry/Triangle.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"

namespace nvdl {

namespace {

namespace rec = geometry_record;

// The items of a list that are objects of class T, in order, without references of their own.
template <class T>
std::vector<T*> itemsOf(const CObjectCollection& list) {
    std::vector<T*> items;
    for (std::size_t i = 0; i < list.size(); ++i)
        if (auto* item = dynamic_cast<T*>(CFrameBase::of(list.itemAt(i)))) items.push_back(item);
    return items;
}

// Adds a new object to the end of a list, which takes its own reference.
HRESULT append(CObjectCollection& list, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return list.Add(item, &key, &before, &after, &index);
}

HRESULT saveNode(IStream* stream, CNode& node) {
    const NodeFields& f = node.m_fields;
    rec::Node r{f.Name,      f.X,         f.Y,         f.Z,           f.RotationX,   f.RotationY,
                f.RotationZ, f.Highlight, f.SlaveNode, f.MasterNode1, f.MasterNode2, 0};
    if (HRESULT h = rec::write(stream, r); FAILED(h)) return h;
    return node.put_Modified(0);
}

HRESULT saveLine(IStream* stream, CLine& line) {
    const LineFields& f = line.m_fields;
    if (HRESULT h = rec::write(stream, rec::Line{f.Node1, f.Node2, f.Visibility, f.ColorIndex}); FAILED(h)) return h;
    return line.put_Modified(0);
}

HRESULT saveTriangle(IStream* stream, CTriangle& triangle) {
    const TriangleFields& f = triangle.m_fields;
    rec::Triangle r{f.Node1, f.Node2, f.Node3, f.Visibility, f.ColorIndex};
    if (HRESULT h = rec::write(stream, r); FAILED(h)) return h;
    return triangle.put_Modified(0);
}

HRESULT saveComponent(IStream* stream, CComponent& component) {
    const std::vector<CNode*> nodes = itemsOf<CNode>(component.nodes());
    const std::vector<CLine*> lines = itemsOf<CLine>(component.lines());
    const std::vector<CTriangle*> triangles = itemsOf<CTriangle>(component.triangles());
    const ComponentFields& f = component.m_fields;
    rec::Component r;
    r.name = f.Name;
    r.x = f.X, r.y = f.Y, r.z = f.Z;
    r.rotationX = f.RotationX, r.rotationY = f.RotationY, r.rotationZ = f.RotationZ;
    r.coordinateText = geometry::enumText(f.CoordinateType);
    r.visibility = f.Visibility;
    r.colorIndex = f.ColorIndex;
    r.highlight = f.Highlight;
    r.drawSolid = f.DrawSolid;
    r.nodes = static_cast<std::int32_t>(nodes.size());
    r.lines = static_cast<std::int32_t>(lines.size());
    r.triangles = static_cast<std::int32_t>(triangles.size());
    if (HRESULT h = rec::write(stream, r); FAILED(h)) return h;
    for (CNode* node : nodes)
        if (HRESULT h = saveNode(stream, *node); FAILED(h)) return h;
    for (CLine* line : lines)
        if (HRESULT h = saveLine(stream, *line); FAILED(h)) return h;
    for (CTriangle* triangle : triangles)
        if (HRESULT h = saveTriangle(stream, *triangle); FAILED(h)) return h;
    return component.put_Modified(0);
}

// A coordinate type stored as its text; a text outside the table leaves the default.
void takeCoordinateText(std::int32_t& field, const std::string& text) {
    LONG code = geometry::enums().lookupEnum(widen(text));
    if (code != -1) field = code;
}

HRESULT loadNode(rec::Source& in, CComponent& component) {
    rec::Node r;
    if (FAILED(rec::read(in, r))) return E_FAIL;
    // Words behind the record belong to no field of the node.
    if (r.wordsAfter < 0 || FAILED(in.skip(std::uint64_t(r.wordsAfter) * 4))) return E_FAIL;
    ComPtr<CNode> node(new CNode);
    node->m_fields = {r.name,
                      r.x,
                      r.y,
                      r.z,
                      r.rotationX,
                      r.rotationY,
                      r.rotationZ,
                      static_cast<std::int16_t>(r.highlight),
                      0,
                      static_cast<std::int16_t>(r.slaveNode),
                      r.masterNode1,
                      r.masterNode2};
    return append(component.nodes(), node->dispatch());
}

HRESULT loadLine(rec::Source& in, CComponent& component) {
    rec::Line r;
    if (FAILED(rec::read(in, r))) return E_FAIL;
    ComPtr<CLine> line(new CLine);
    line->m_fields = {r.node1, r.node2, static_cast<std::int16_t>(r.visibility), r.colorIndex};
    return append(component.lines(), line->dispatch());
}

HRESULT loadTriangle(rec::Source& in, CComponent& component) {
    rec::Triangle r;
    if (FAILED(rec::read(in, r))) return E_FAIL;
    ComPtr<CTriangle> triangle(new CTriangle);
    triangle->m_fields = {r.node1, r.node2, r.node3, static_cast<std::int16_t>(r.visibility), r.colorIndex};
    return append(component.triangles(), triangle->dispatch());
}

// Whether the rest of the stream can hold the children that a component record announces.
bool holdsChildren(const rec::Source& in, const rec::Component& r) {
    if (r.nodes < 0 || r.lines < 0 || r.triangles < 0) return false;
    return in.holds(std::uint64_t(r.nodes) * rec::kNodeSize + std::uint64_t(r.lines) * rec::kLineSize +
                    std::uint64_t(r.triangles) * rec::kTriangleSize);
}

HRESULT loadComponent(rec::Source& in, rec::Form form, CGeometry& geometry) {
    rec::Component r;
    if (FAILED(rec::read(in, form, r)) || !holdsChildren(in, r)) return E_FAIL;
    ComPtr<CComponent> component(new CComponent);
    ComponentFields& f = component->m_fields;
    f.Name = r.name;
    f.X = r.x, f.Y = r.y, f.Z = r.z;
    f.RotationX = r.rotationX, f.RotationY = r.rotationY, f.RotationZ = r.rotationZ;
    if (form == rec::kCurrent) takeCoordinateText(f.CoordinateType, r.coordinateText);
    else f.CoordinateType = rec::coordinateTypeOfNumber(r.coordinateNumber);
    f.Visibility = static_cast<std::int16_t>(r.visibility);
    f.ColorIndex = r.colorIndex;
    f.Highlight = static_cast<std::int16_t>(r.highlight);
    f.DrawSolid = static_cast<std::int16_t>(r.drawSolid);
    for (std::int32_t i = 0; i < r.nodes; ++i)
        if (HRESULT h = loadNode(in, *component); FAILED(h)) return h;
    for (std::int32_t i = 0; i < r.lines; ++i)
        if (HRESULT h = loadLine(in, *component); FAILED(h)) return h;
    for (std::int32_t i = 0; i < r.triangles; ++i)
        if (HRESULT h = loadTriangle(in, *component); FAILED(h)) return h;
    return append(geometry.components(), component->dispatch());
}

}  // namespace

HRESULT saveGeometryStream(IStream* stream, IDispatch* geometry) {
    if (!stream || !geometry) return E_POINTER;
    auto* g = dynamic_cast<CGeometry*>(CFrameBase::of(geometry));
    if (!g) return E_INVALIDARG;
    const std::vector<CComponent*> components = itemsOf<CComponent>(g->components());
    rec::Header header{g->m_fields.Name, static_cast<std::int32_t>(components.size()),
                       geometry::enumText(g->m_fields.CoordinateType), 0};
    if (HRESULT h = rec::write(stream, header); FAILED(h)) return h;
    for (CComponent* component : components)
        if (HRESULT h = saveComponent(stream, *component); FAILED(h)) return h;
    return g->put_Modified(0);
}

HRESULT loadGeometryStream(IStream* stream, long version, IDispatch** geometry) {
    if (!geometry) return E_POINTER;
    *geometry = nullptr;
    if (!stream) return E_POINTER;
    rec::Source in;
    if (HRESULT h = in.open(stream); FAILED(h)) return h;
    const rec::Form form = version < rec::kCurrentFormVersion ? rec::kOld : rec::kCurrent;
    rec::Header header;
    if (FAILED(rec::read(in, form, header)) || header.components < 0 ||
        !in.holds(std::uint64_t(header.components) * rec::kComponentSize[form]))
        return E_FAIL;
    ComPtr<CGeometry> result(new CGeometry);
    if (form == rec::kCurrent) {
        result->m_fields.Name = header.name;
        takeCoordinateText(result->m_fields.CoordinateType, header.coordinateText);
    } else {
        result->m_fields.CoordinateType = rec::coordinateTypeOfNumber(header.coordinateNumber);
    }
    for (std::int32_t i = 0; i < header.components; ++i)
        if (HRESULT h = loadComponent(in, form, *result); FAILED(h)) return h;
    *geometry = result.release()->dispatch();
    return S_OK;
}

}  // namespace nvdl
