// CNode: a named point of a component, with its orientation, its colour and highlight, and the two
// master nodes that it follows when it is a slave node.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "nvdl/INode.h"

namespace nvdl {

struct NodeFields {
    std::string Name = "Node";
    float X = 0, Y = 0, Z = 0;
    float RotationX = 0, RotationY = 0, RotationZ = 0;
    std::int16_t Highlight = 0;
    std::int32_t ColorIndex = 0;
    std::int16_t SlaveNode = 0;
    std::string MasterNode1, MasterNode2;
};

class CNode final : public CObjectFrame<CNode, INode> {
public:
    static constexpr const char* kClassName = "CNode";
    static constexpr const CLSID& kClassId = CLSID_CNode;
    static constexpr IID kModifiedParents[] = {IID_IComponent};

    static IDispatch* create() { return (new CNode)->dispatch(); }
    CNode() : CObjectFrame(IID_INode) {}

    NVDL_IMPLEMENTS(NVDL_INODE_MEMBERS)

    // The node as it stands: every field and the flag. The copy has no parent: the
    // list it joins gives it one, and until then a change to it marks nothing else.
    static HRESULT Copy(INode* source, INode* target);

    NodeFields m_fields;
};

}  // namespace nvdl
