// CMode: one result of a modal analysis, held in a workspace's Modes. Its shape is kept in four
// lists of coefficients (Shape, Participation and the original forms of both); a change of the mode
// or of any coefficient marks the mode, and through it its workspace.
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "geometry/ModeEnums.h"
#include "nvdl/IMode.h"

namespace nvdl {

class CFields;

struct ModeFields {
    std::string Name = "Mode";
    std::string Description;
    float Frequency = 0;
    float Damping = 0;
    float ModalAReal = 0;
    float ModalAImag = 0;
    std::int32_t Type = kUnknownModeType;
    std::int32_t Method = kUnknownModeMethod;
};

// The coefficient lists, in the order in which a mode stream stores them.
enum class ModeCoeffList { Shape, OrigShape, Participation, OrigParticip };
inline constexpr ModeCoeffList kModeCoeffLists[] = {ModeCoeffList::Shape, ModeCoeffList::OrigShape,
                                                    ModeCoeffList::Participation, ModeCoeffList::OrigParticip};

class CMode final : public CObjectFrame<CMode, IMode> {
public:
    static constexpr const char* kClassName = "CMode";
    static constexpr const CLSID& kClassId = CLSID_CMode;
    static constexpr IID kModifiedParents[] = {IID_IWorkspace};

    static IDispatch* create() { return (new CMode)->dispatch(); }
    CMode();
    ~CMode() override;

    NVDL_IMPLEMENTS(NVDL_IMODE_MEMBERS)

    // The plain fields and the flag, then a clone of every coefficient of each list.
    static HRESULT Copy(IMode* source, IMode* target);

    CObjectCollection& coefficients(ModeCoeffList which);

    ModeFields m_fields;

private:
    HRESULT giveList(ModeCoeffList which, ICollection** out);

    CFields* m_fieldList = nullptr;  // made on first need
    CObjectCollection m_shape{IID_IModeCoeffs};
    CObjectCollection m_origShape{IID_IModeCoeffs};
    CObjectCollection m_participation{IID_IModeCoeffs};
    CObjectCollection m_origParticip{IID_IModeCoeffs};
};

}  // namespace nvdl
