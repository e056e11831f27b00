// How a command reports that it could not do its work: one line on standard error, "nvdl COMMAND:
// FILE: REASON", and a non-zero exit status. A usage mistake gets the command's usage line and 2.
#pragma once

#include <string>

#include "nvdl/HResult.h"

namespace nvdl::tool {

// Prints the line and returns 1, the exit status of a failed command.
int failure(const std::string& command, const std::string& file, const std::string& reason);
// Prints "usage: nvdl USAGE" (after "nvdl COMMAND: PROBLEM" when a problem is given) and returns 2.
int usageFailure(const std::string& command, const std::string& usage, const std::string& problem = {});
// The reason of a failed server call: the description of the error record it left when there is
// one (taking the record), else `fallback` with the status in hexadecimal.
std::string reasonOf(HRESULT status, const std::string& fallback);

}  // namespace nvdl::tool
