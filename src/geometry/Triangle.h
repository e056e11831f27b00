// CTriangle: a face of a component, between three nodes named by their names (not checked against
// the component's nodes).
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "nvdl/ITriangle.h"

namespace nvdl {

struct TriangleFields {
    std::string Node1, Node2, Node3;
    std::int16_t Visibility = 1;
    std::int32_t ColorIndex = 0;
};

class CTriangle final : public CObjectFrame<CTriangle, ITriangle> {
public:
    static constexpr const char* kClassName = "CTriangle";
    static constexpr const CLSID& kClassId = CLSID_CTriangle;
    static constexpr IID kModifiedParents[] = {IID_IComponent};

    static IDispatch* create() { return (new CTriangle)->dispatch(); }
    CTriangle() : CObjectFrame(IID_ITriangle) {}

    NVDL_IMPLEMENTS(NVDL_ITRIANGLE_MEMBERS)

    // The triangle as it stands: every field and the flag. The copy has no parent: the
    // list it joins gives it one, and until then a change to it marks nothing else.
    static HRESULT Copy(ITriangle* source, ITriangle* target);

    TriangleFields m_fields;
};

}  // namespace nvdl
