#include "library_entry.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "nvdl/HResult.h"
#include "platform/Registry.h"

namespace nvdl::tool {

namespace {

std::filesystem::path defaultLibrary() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path("libnvdl.so") : self.parent_path() / "libnvdl.so";
}

}  // namespace

int runLibraryEntry(const char* command, const char* entryName, const char* done, int argc, char** argv) {
    if (argc > 1) {
        std::fprintf(stderr, "usage: nvdl %s [LIBRARY]\n", command);
        return 2;
    }
    const std::filesystem::path library = argc == 1 ? std::filesystem::absolute(argv[0]) : defaultLibrary();
    void* handle = ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        std::fprintf(stderr, "nvdl %s: %s\n", command, ::dlerror());
        return 1;
    }
    using Entry = HRESULT (*)();
    const auto entry = reinterpret_cast<Entry>(::dlsym(handle, entryName));
    if (!entry) {
        std::fprintf(stderr, "nvdl %s: %s has no %s\n", command, library.c_str(), entryName);
        ::dlclose(handle);
        return 1;
    }
    const HRESULT h = entry();
    ::dlclose(handle);
    if (FAILED(h)) {
        std::fprintf(stderr, "nvdl %s: %s failed with 0x%08X (settings file %s)\n", command, entryName,
                     static_cast<unsigned>(h), registry::storePath().c_str());
        return 1;
    }
    std::printf("%s %s in %s\n", library.c_str(), done, registry::storePath().c_str());
    return 0;
}

}  // namespace nvdl::tool
