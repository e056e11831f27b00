// Universal files on disk: reading one whole (bounded by the file's size) and writing one through a
// temporary file, so that a failed write leaves no half file and never damages the one it replaces.
#pragma once

#include <string>

#include "exchange/UffModel.h"

namespace nvdl::exchange::uff {

// False with `error` set: the file cannot be read, or "line N: ..." for a damaged one.
bool readFile(const std::string& path, File& file, std::string& error);
bool writeFile(const std::string& path, const File& file, std::string& error);

}  // namespace nvdl::exchange::uff
