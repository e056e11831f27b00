// nvdl cut: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int cut(int, char**) {
    std::fprintf(stderr, "nvdl cut: not yet\n");
    return 1;
}

const CommandEntry cutCommand{"cut", cut, "cut"};

}  // namespace nvdl::tool
