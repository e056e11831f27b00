// CComponent: one part of a geometry, placed and turned in the geometry's frame, owning the nodes,
// lines and triangles that draw it. A change to any of them marks the component, and through it
// the geometry, modified.
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "geometry/GeometryShared.h"
#include "nvdl/IComponent.h"

namespace nvdl {

struct ComponentFields {
    std::string Name = "Comp";
    float X = 0, Y = 0, Z = 0;
    float RotationX = 0, RotationY = 0, RotationZ = 0;
    std::int32_t CoordinateType = geometry::kRectangular;
    std::int16_t Visibility = 1;
    std::int32_t ColorIndex = 0;
    std::int16_t Highlight = 0;
    std::int16_t DrawSolid = 0;
    std::int16_t ShowLabel = 0;
};

class CComponent final : public CObjectFrame<CComponent, IComponent> {
public:
    static constexpr const char* kClassName = "CComponent";
    static constexpr const CLSID& kClassId = CLSID_CComponent;
    static constexpr IID kModifiedParents[] = {IID_IGeometry};

    static IDispatch* create() { return (new CComponent)->dispatch(); }
    CComponent();
    ~CComponent() override;

    NVDL_IMPLEMENTS(NVDL_ICOMPONENT_MEMBERS)

    // The same parent, name and values, and a clone of every node, line and triangle, in order.
    static HRESULT Copy(IComponent* source, IComponent* target);

    CObjectCollection& nodes() { return m_nodes; }
    CObjectCollection& lines() { return m_lines; }
    CObjectCollection& triangles() { return m_triangles; }

    ComponentFields m_fields;

private:
    HRESULT setThree(float& a, float& b, float& c, float x, float y, float z);

    CObjectCollection m_nodes{IID_INodes};
    CObjectCollection m_lines{IID_ILines};
    CObjectCollection m_triangles{IID_ITriangles};
};

// Hands out an embedded collection with a reference (taken on its owner).
HRESULT giveCollection(CObjectCollection& collection, ICollection** out);

}  // namespace nvdl
