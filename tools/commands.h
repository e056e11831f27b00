// Sub-commands of the nvdl command-line tool. Each lives in its own source file.
#pragma once

namespace nvdl::tool {

// Each command gets the arguments after its own name and returns the process exit status.
using Command = int (*)(int argc, char** argv);

int demo(int argc, char** argv);
int tree(int argc, char** argv);
int ls(int argc, char** argv);
int info(int argc, char** argv);
int index(int argc, char** argv);
int registerServer(int argc, char** argv);
int unregisterServer(int argc, char** argv);
int plan(int argc, char** argv);

}  // namespace nvdl::tool
