// nvdl: command-line entry of the object server's tools.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

using nvdl::tool::CommandEntry;

// In the order that --help lists them: looking at files first, then making new ones, then set-up.
const CommandEntry* const kCommands[] = {
    &nvdl::tool::infoCommand,    &nvdl::tool::lsCommand,      &nvdl::tool::treeCommand,
    &nvdl::tool::exportCommand,  &nvdl::tool::importCommand,  &nvdl::tool::spectrumCommand,
    &nvdl::tool::octaveCommand,  &nvdl::tool::cutCommand,     &nvdl::tool::plotCommand,
    &nvdl::tool::convertCommand, &nvdl::tool::indexCommand,   &nvdl::tool::demoCommand,
    &nvdl::tool::planCommand,    &nvdl::tool::registerServerCommand, &nvdl::tool::unregisterServerCommand,
};

int usage(std::FILE* out, int status) {
    std::fprintf(out, "usage: nvdl COMMAND [ARGS...]\n");
    for (const CommandEntry* e : kCommands) std::fprintf(out, "  nvdl %s\n", e->usage);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage(stderr, 2);
    if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) return usage(stdout, 0);
    for (const CommandEntry* e : kCommands)
        if (std::strcmp(argv[1], e->name) == 0) return e->run(argc - 2, argv + 2);
    return usage(stderr, 2);
}
