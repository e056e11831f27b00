// nvdl spectrum: PLACEHOLDER until its owner lands it.
#include <cstdio>

#include "commands.h"

namespace nvdl::tool {

int spectrum(int, char**) {
    std::fprintf(stderr, "nvdl spectrum: not yet\n");
    return 1;
}

const CommandEntry spectrumCommand{"spectrum", spectrum, "spectrum"};

}  // namespace nvdl::tool
