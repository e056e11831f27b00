// nvdl unregister [LIBRARY]: removes the keys that register wrote from the settings store.
#include "commands.h"
#include "library_entry.h"

namespace nvdl::tool {

int unregisterServer(int argc, char** argv) {
    return runLibraryEntry("unregister", "DllUnregisterServer", "unregistered", argc, argv);
}

const CommandEntry unregisterServerCommand{"unregister", unregisterServer, "unregister [LIB] remove what register wrote from the settings store"};

}  // namespace nvdl::tool
