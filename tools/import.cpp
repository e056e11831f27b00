// nvdl import: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int importFile(int, char**) {
    std::fprintf(stderr, "nvdl import: not yet\n");
    return 1;
}

const CommandEntry importCommand{"import", importFile, "import"};

}  // namespace nvdl::tool
