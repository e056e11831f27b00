// The module registers itself under the path it was loaded from.
#include <dlfcn.h>

#include <filesystem>

#include "frame/Registration.h"
#include "nvdl/ServerEntry.h"
#include "platform/CodePage.h"

namespace {

// The full path of the file this code was loaded from, in the system code page; empty when unknown.
std::string modulePath() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&DllRegisterServer), &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(info.dli_fname, error);
    if (error) return {};
    return nvdl::narrow(nvdl::utf8ToUtf16(path.lexically_normal().string()));
}

}  // namespace

HRESULT DllRegisterServer() {
    const std::string path = modulePath();
    if (path.empty()) return SELFREG_E_CLASS;
    return nvdl::registerServerAt(path);
}

HRESULT DllUnregisterServer() { return nvdl::unregisterServer(); }
