// CModeCoeff: one complex coefficient of a mode at a point (component and node names) in a direction.
// It belongs to one of the lists of its mode, and a change marks the mode.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "geometry/ModeEnums.h"
#include "nvdl/IModeCoeff.h"

namespace nvdl {

struct ModeCoeffFields {
    std::string Component;
    std::string Node;
    std::int32_t Direction = kNoDirection;
    float Real = 0;
    float Imaginary = 0;
};

class CModeCoeff final : public CObjectFrame<CModeCoeff, IModeCoeff> {
public:
    static constexpr const char* kClassName = "CModeCoeff";
    static constexpr IID kModifiedParents[] = {IID_IMode};

    static IDispatch* create() { return (new CModeCoeff)->dispatch(); }
    CModeCoeff() : CObjectFrame(IID_IModeCoeff) {}

    NVDL_IMPLEMENTS(NVDL_IMODECOEFF_MEMBERS)

    // A clone is a copy of every field, the flag and the back reference included.
    static HRESULT Copy(IModeCoeff* source, IModeCoeff* target);

    ModeCoeffFields m_fields;
};

}  // namespace nvdl
