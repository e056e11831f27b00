// nvdl plot: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int plot(int, char**) {
    std::fprintf(stderr, "nvdl plot: not yet\n");
    return 1;
}

const CommandEntry plotCommand{"plot", plot, "plot"};

}  // namespace nvdl::tool
