// Registration through the server library itself, as a host's registration tool does it: the
// library is loaded and its own entry writes the keys, so that they name the library's path.
#pragma once

namespace nvdl::tool {

// Loads the library given as the only argument, or by default libnvdl.so beside this program, and
// calls its entry `entryName` (an HRESULT function without arguments). Prints what happened with
// `done` ("registered", "unregistered"); the exit status is 0 on success.
int runLibraryEntry(const char* command, const char* entryName, const char* done, int argc, char** argv);

}  // namespace nvdl::tool
