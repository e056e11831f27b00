// CWkdLoader: the loader of workspace files, registered as "nv_bench.io_wkd". Load reads the file's
// workspace into the workspace given, Save writes the workspace as a new file; a failure leaves its
// message as the thread's error, for the workspace to pass on.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/IWorkspaceLoader.h"

namespace nvdl {

class CWkdLoader final : public CObjectFrame<CWkdLoader, IWorkspaceLoader> {
public:
    static constexpr const char* kClassName = "CWkdLoader";
    static constexpr const CLSID& kClassId = CLSID_CWkdLoader;

    static IDispatch* create() { return (new CWkdLoader)->dispatch(); }
    CWkdLoader() : CObjectFrame(IID_IWorkspaceLoader) {}

    NVDL_IMPLEMENTS(NVDL_IWORKSPACELOADER_MEMBERS)
};

}  // namespace nvdl
