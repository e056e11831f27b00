// CTrcLoader: the loader of recording files (".trc"), registered as "nv_bench.io_newtrc".
//
// Reading and writing recordings comes with the recording file layer, which this module does not
// have yet: until then the class is registered, found through the settings store like every
// loader, and its Load and Save answer E_NOTIMPL.
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
