// Writing a whole text file safely: through a temporary file beside it and a rename, so that a
// failed write leaves no half file and an existing file as it was.
#pragma once

#include <string>

namespace nvdl::exchange {

// False with `error` set when the file cannot be written.
bool writeTextFile(const std::string& path, const std::string& text, std::string& error);

}  // namespace nvdl::exchange
