// CTrcLoader: the loader of recording files (".trc"), registered as "nv_bench.io_newtrc". Load
// brings a recording into a workspace: its setup, one measurement per used input and tacho channel
// pointing into the file, and, when the import of all sections is asked for (the setting
// "ImportAllTRCFlag" is "1"), the measurements the recorder stored beside the scans. The samples
// stay in the file and are paged in on demand.
//
// The file work is done by access::CTrcLoader, the recording seen from the automation objects; this
// class is its face in the loader registry.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/IWorkspaceLoader.h"

namespace nvdl {

class CTrcLoader final : public CObjectFrame<CTrcLoader, IWorkspaceLoader> {
public:
    static constexpr const char* kClassName = "CTrcLoader";
    static constexpr const CLSID& kClassId = CLSID_CTrcLoader;

    static IDispatch* create();
    CTrcLoader();

    NVDL_IMPLEMENTS(NVDL_IWORKSPACELOADER_MEMBERS)
};

}  // namespace nvdl
