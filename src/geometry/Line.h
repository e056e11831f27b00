// CLine: an edge of a component, between two nodes named by their names (not checked against the
// component's nodes).
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "nvdl/ILine.h"

namespace nvdl {

struct LineFields {
    std::string Node1, Node2;
    std::int16_t Visibility = 1;
    std::int32_t ColorIndex = 0;
};

class CLine final : public CObjectFrame<CLine, ILine> {
public:
    static constexpr const char* kClassName = "CLine";
    static constexpr const CLSID& kClassId = CLSID_CLine;
    static constexpr IID kModifiedParents[] = {IID_IComponent};

    static IDispatch* create() { return (new CLine)->dispatch(); }
    CLine() : CObjectFrame(IID_ILine) {}

    NVDL_IMPLEMENTS(NVDL_ILINE_MEMBERS)

    // The line as it stands: every field and the flag. The copy has no parent: the
    // list it joins gives it one, and until then a change to it marks nothing else.
    static HRESULT Copy(ILine* source, ILine* target);

    LineFields m_fields;
};

}  // namespace nvdl
