// nvdl register [LIBRARY]: writes the server's classes, interfaces and project file type to the
// classes root of the settings store, naming the library's path.
#include "commands.h"
#include "library_entry.h"

namespace nvdl::tool {

int registerServer(int argc, char** argv) {
    return runLibraryEntry("register", "DllRegisterServer", "registered", argc, argv);
}

const CommandEntry registerServerCommand{"register", registerServer, "register [LIB]  write the classes, interfaces and project file type of LIB (libnvdl.so beside nvdl) to the settings store ($NVDL_REGISTRY)"};

}  // namespace nvdl::tool
