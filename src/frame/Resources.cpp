#include "frame/Resources.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>

namespace nvdl {

std::string loadStringResource(int id, std::size_t maxChars) {
    const char* text = "";
    switch (id) {
        case IDS_NO_PROPERTY_PUT: text = " does not have property put."; break;
        case IDS_ALREADY_IN_COLLECTION: text = " already exists in the collection."; break;
        case IDS_PARAMETER_NAME_BLANK: text = "Parameter Name required (blank not allowed)."; break;
        case IDS_INVALID_VERSION: text = "Invalid version number."; break;
        default: break;
    }
    std::string s(text);
    if (s.size() > maxChars) s.resize(maxChars);
    return s;
}

std::string moduleFileName() {
    static const std::string name = [] {
        Dl_info info{};
        std::string path;
        if (dladdr(reinterpret_cast<void*>(&moduleFileName), &info) && info.dli_fname) {
            char resolved[PATH_MAX];
            path = realpath(info.dli_fname, resolved) ? resolved : info.dli_fname;
        }
        if (path.size() > 260) path.resize(260);
        return path;
    }();
    return name;
}

}  // namespace nvdl
