// Sub-commands of the nvdl command-line tool. Each lives in its own source file, which defines the
// command's function and its entry: the name, the function, and the line that `nvdl --help` shows.
#pragma once

namespace nvdl::tool {

// Each command gets the arguments after its own name and returns the process exit status.
struct CommandEntry {
    const char* name;
    int (*run)(int argc, char** argv);
    const char* usage;
};

extern const CommandEntry infoCommand, lsCommand, treeCommand, exportCommand, importCommand, spectrumCommand,
    octaveCommand, cutCommand, plotCommand, convertCommand, indexCommand, demoCommand, planCommand,
    registerServerCommand, unregisterServerCommand;

}  // namespace nvdl::tool
