// What kind of file a command was given, from its first bytes: a project or workspace file (a
// compound file, told apart by the class of its root storage), a zip bundle, or anything else (a
// recording, for the commands that read recordings).
#pragma once

#include <string>

namespace nvdl::tool {

enum class FileKind { Unreadable, Project, Workspace, OtherCompound, Bundle, Other };

// Unreadable with `reason` set (the system's text) when the file cannot be opened or read.
FileKind kindOfFile(const std::string& path, std::string& reason);

// A file name's extension in lower case, with its dot ("" when it has none).
std::string lowerExtension(const std::string& path);

}  // namespace nvdl::tool
