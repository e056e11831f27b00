// nvdl convert: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int convert(int, char**) {
    std::fprintf(stderr, "nvdl convert: not yet\n");
    return 1;
}

const CommandEntry convertCommand{"convert", convert, "convert"};

}  // namespace nvdl::tool
