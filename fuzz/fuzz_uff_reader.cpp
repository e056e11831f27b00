// Universal files of any content: the reader answers a file or an error, never more.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "exchange/UffReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    nvdl::exchange::uff::File file;
    std::string error;
    nvdl::exchange::uff::readText(std::string_view(reinterpret_cast<const char*>(data), size), file, error);
    return 0;
}
