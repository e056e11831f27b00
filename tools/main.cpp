// nvdl: command-line entry of the object server's tools.
#include <cstdio>
#include <cstring>

#include "commands.h"

namespace {

struct Entry {
    const char* name;
    nvdl::tool::Command run;
    const char* usage;
};

const Entry kCommands[] = {
    {"demo", nvdl::tool::demo, "demo            create objects by ProgID and drive them late-bound"},
    {"tree", nvdl::tool::tree, "tree FILE       print the storage tree of a compound file"},
    {"ls", nvdl::tool::ls, "ls FILE         list what a workspace or project file holds: workspaces, measurements, geometries, modes, setups, layouts, documents"},
    {"plan", nvdl::tool::plan, "plan SIZE...    measure FFT plans of these lengths and keep them in the user's cache, so transforms of them run at full speed"},
};

int usage() {
    std::fprintf(stderr, "usage: nvdl COMMAND [ARGS...]\n");
    for (const Entry& e : kCommands) std::fprintf(stderr, "  nvdl %s\n", e.usage);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    for (const Entry& e : kCommands)
        if (std::strcmp(argv[1], e.name) == 0) return e.run(argc - 2, argv + 2);
    return usage();
}
