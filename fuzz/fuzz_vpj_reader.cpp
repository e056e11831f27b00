// libFuzzer target for the project file reader: the input is read as a project file - version,
// documents, workspaces with their measurement headers, layouts with their components, setups.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "project/Project.h"
#include "project/ProjectFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = memfd_create("vpj", 0);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) return 0;
    const std::string file = "/proc/self/fd/" + std::to_string(fd);
    IStorage* root = nullptr;
    if (SUCCEEDED(nvdl::openCompoundFile(file, STGM_READ, &root))) {
        IDispatch* object = nvdl::CProject::create();
        auto* project = dynamic_cast<nvdl::CProject*>(nvdl::CFrameBase::of(object));
        std::string message;
        nvdl::readProjectTree(root, *project, file, message);
        object->Release();
        root->Release();
    }
    return 0;
}
