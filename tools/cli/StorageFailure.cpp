#include "cli/StorageFailure.h"

#include <cstdio>

#include "nvdl/Storage.h"

namespace nvdl::tool {

namespace {

const char* describe(HRESULT h) {
    switch (h) {
        case STG_E_FILEALREADYEXISTS: return "not a compound file";
        case STG_E_INVALIDHEADER: return "damaged compound file header";
        case STG_E_DOCFILECORRUPT: return "damaged compound file";
        case STG_E_FILENOTFOUND: return "file not found";
        case STG_E_PATHNOTFOUND: return "path not found";
        case STG_E_ACCESSDENIED: return "access denied";
        case STG_E_READFAULT: return "read error";
        case STG_E_INSUFFICIENTMEMORY: return "out of memory";
        default: return "cannot read compound file";
    }
}

}  // namespace

std::string storageFailureText(HRESULT status) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(status));
    return std::string(describe(status)) + " (" + code + ")";
}

}  // namespace nvdl::tool
