// Why a compound file (a workspace or project file) could not be opened or read, in words for the
// failure line of a command, followed by the status in hexadecimal.
#pragma once

#include <string>

#include "nvdl/HResult.h"

namespace nvdl::tool {

std::string storageFailureText(HRESULT status);

}  // namespace nvdl::tool
