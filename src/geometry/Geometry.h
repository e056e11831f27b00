// CGeometry: the wire-frame picture of a test object, a named list of components. A change
// anywhere in it marks the geometry, and through it its workspace, modified.
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "geometry/GeometryShared.h"
#include "measurement/Field.h"
#include "nvdl/IGeometry.h"

namespace nvdl {

struct GeometryFields {
    std::string Name = "Geom";
    std::int32_t CoordinateType = geometry::kRectangular;
};

class CGeometry final : public CObjectFrame<CGeometry, IGeometry> {
public:
    static constexpr const char* kClassName = "CGeometry";
    static constexpr const CLSID& kClassId = CLSID_CGeometry;
    static constexpr IID kModifiedParents[] = {IID_IWorkspace};

    static IDispatch* create() { return (new CGeometry)->dispatch(); }
    CGeometry();
    ~CGeometry() override;

    NVDL_IMPLEMENTS(NVDL_IGEOMETRY_MEMBERS)

    // A new geometry with the name, the coordinate type and a clone of every component.
    static HRESULT Copy(IGeometry* source, IGeometry* target);

    CObjectCollection& components() { return m_components; }

    GeometryFields m_fields;

private:
    CObjectCollection m_components{IID_IComponents};
    CFields* m_fieldList = nullptr;  // made on first demand, one reference
};

}  // namespace nvdl
