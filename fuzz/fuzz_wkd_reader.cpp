// libFuzzer target for the workspace file reader: an input that starts like a compound file is read
// as a workspace file (measurement headers, geometry and mode records, setups); any other input as one
// geometry or mode stream, its first byte choosing the record and the version of the file.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "geometry/GeometryStream.h"
#include "geometry/ModeStream.h"
#include "platform/MemoryStream.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace {

constexpr long kVersions[] = {19951205, 19960905, 20021112, 20030819};

void readStream(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return;
    const long version = kVersions[data[0] % 4];
    nvdl::MemoryStream* stream = nvdl::MemoryStream::create(std::vector<std::uint8_t>(data + 1, data + size));
    IDispatch* object = nullptr;
    const HRESULT h = data[0] & 4 ? nvdl::loadModeStream(stream, version, &object)
                                  : nvdl::loadGeometryStream(stream, version, &object);
    if (SUCCEEDED(h) && object) object->Release();
    stream->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::uint8_t kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    if (size < sizeof kSignature || std::memcmp(data, kSignature, sizeof kSignature) != 0) {
        readStream(data, size);
        return 0;
    }
    static const int fd = memfd_create("wkd", 0);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) return 0;
    const std::string file = "/proc/self/fd/" + std::to_string(fd);
    IStorage* root = nullptr;
    if (SUCCEEDED(nvdl::openCompoundFile(file, STGM_READ, &root))) {
        IDispatch* object = nvdl::CWorkspace::create();
        auto* workspace = dynamic_cast<nvdl::CWorkspace*>(nvdl::CFrameBase::of(object));
        std::string message;
        nvdl::loadWkd(root, *workspace, nvdl::WkdPlace{file, {}}, message);
        object->Release();
        root->Release();
    }
    return 0;
}
