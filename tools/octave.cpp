// nvdl octave: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int octave(int, char**) {
    std::fprintf(stderr, "nvdl octave: not yet\n");
    return 1;
}

const CommandEntry octaveCommand{"octave", octave, "octave"};

}  // namespace nvdl::tool
