// libFuzzer target for the setup readers: an input that starts like a compound file is loaded as a
// setup's tree of storages (the header record and every section's stream record); any other input
// as the one-stream form of a setup.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "nvdl/ISetup.h"
#include "nvdl/Persist.h"
#include "nvdl/Storage.h"
#include "nvdl/nvdl.h"
#include "platform/MemoryStream.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::uint8_t kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    IDispatch* object = nullptr;
    if (FAILED(nvdl::CreateObject(u"nv_bench.setup", &object))) return 0;
    if (size >= sizeof kSignature && std::memcmp(data, kSignature, sizeof kSignature) == 0) {
        static const int fd = memfd_create("setup", 0);
        if (fd >= 0 && ftruncate(fd, 0) == 0 && pwrite(fd, data, size, 0) == static_cast<ssize_t>(size)) {
            IPersistStorage* persist = nullptr;
            IStorage* root = nullptr;
            if (SUCCEEDED(nvdl::openCompoundFile("/proc/self/fd/" + std::to_string(fd), STGM_READ, &root)) &&
                SUCCEEDED(object->QueryInterface(IID_IPersistStorage, reinterpret_cast<void**>(&persist)))) {
                persist->Load(root);
            }
            if (persist) persist->Release();
            if (root) root->Release();
        }
    } else {
        IPersistStream* persist = nullptr;
        if (SUCCEEDED(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)))) {
            nvdl::MemoryStream* stream = nvdl::MemoryStream::create(std::vector<std::uint8_t>(data, data + size));
            persist->Load(stream);
            stream->Release();
            persist->Release();
        }
    }
    object->Release();
    return 0;
}
