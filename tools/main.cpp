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
    {"info", nvdl::tool::info, "info FILE       what a recording holds: a line of the recording (format version, scans, block size, sample rate), one per channel and one per stored measurement; for a workspace or project file the listing of ls"},
    {"index", nvdl::tool::index, "index FILE      make the min/max caches of a recording's used channels beside it (FILE.in<N>.mmx, FILE.tacho<N>.mmx), so that reduced reads of long spans skip the samples: a line per channel (kind, number, name, scans covered, cache file)"},
    {"register", nvdl::tool::registerServer, "register [LIB]  write the classes, interfaces and project file type of LIB (libnvdl.so beside nvdl) to the settings store ($NVDL_REGISTRY)"},
    {"unregister", nvdl::tool::unregisterServer, "unregister [LIB] remove what register wrote from the settings store"},
    {"plan", nvdl::tool::plan, "plan SIZE...    measure FFT plans of these lengths and keep them in the user's cache, so transforms of them run at full speed"},
};

int usage(std::FILE* out, int status) {
    std::fprintf(out, "usage: nvdl COMMAND [ARGS...]\n");
    for (const Entry& e : kCommands) std::fprintf(out, "  nvdl %s\n", e.usage);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage(stderr, 2);
    if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) return usage(stdout, 0);
    for (const Entry& e : kCommands)
        if (std::strcmp(argv[1], e.name) == 0) return e.run(argc - 2, argv + 2);
    return usage(stderr, 2);
}
