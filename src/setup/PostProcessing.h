// CPostProcessing: the post-processing section of a setup, a record of plain values.
#pragma once

#include <string>

#include "nvdl/IPostProcessing.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct PostProcessingFields {
    std::int16_t Activated = 0;
    float ReplayStart = 0.0f;
    float ReplayStop = 0.0f;
    std::string Filename;
    std::int32_t Location = 0;
    std::int32_t N2216ReadMode = 0;
};

class CPostProcessing final : public CSectionFrame<CPostProcessing, IPostProcessing, PostProcessingFields> {
public:
    static constexpr const char* kClassName = "CPostProcessing";
    static constexpr const CLSID& kClassId = CLSID_CPostProcessing;
    static const section::Record<PostProcessingFields, 3> kRecord;

    static IDispatch* create() { return (new CPostProcessing)->dispatch(); }
    CPostProcessing() : CSectionFrame(IID_IPostProcessing) {}

    NVDL_IMPLEMENTS(NVDL_IPOSTPROCESSING_MEMBERS)
};

}  // namespace nvdl
