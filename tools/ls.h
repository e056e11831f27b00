// The listing of `nvdl ls`, also given by `nvdl info` for workspace and project files.
#pragma once

#include <string>

namespace nvdl::tool {

// Lists FILE on standard output; a failure is the line "nvdl COMMAND: FILE: REASON" and status 1.
int listFile(const std::string& command, const std::string& file);

}  // namespace nvdl::tool
