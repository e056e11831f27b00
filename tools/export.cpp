// nvdl export: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int exportFile(int, char**) {
    std::fprintf(stderr, "nvdl export: not yet\n");
    return 1;
}

const CommandEntry exportCommand{"export", exportFile, "export"};

}  // namespace nvdl::tool
