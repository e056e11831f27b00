// libFuzzer target for the zip bundle reader: the input is written to a file and extracted with small
// limits, so that damaged directories, lying sizes and hostile names are all reached quickly.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "project/ZipBundle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = memfd_create("zip", 0);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) return 0;
    const std::string file = "/proc/self/fd/" + std::to_string(fd);
    nvdl::ExtractedBundle bundle;
    std::string message;
    nvdl::ExtractedBundle::extract(file, nvdl::ZipLimits{1 << 20, 64}, bundle, message);
    return 0;
}
