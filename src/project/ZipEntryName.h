// The name of an entry in a zip archive, checked before anything is extracted: the path it takes
// inside the extraction directory, or the reason it is refused because it could reach outside it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nvdl {

struct ZipEntryPath {
    // The components below the extraction directory; empty for a name that is passed over.
    std::vector<std::string> parts;
    // The entry only makes a directory (its name ends with a separator).
    bool directory = false;
};

// Takes an 8-bit entry name apart, '/' and '\' both separating. White space around the name is
// trimmed; empty and "." components are dropped. Answers an empty text and fills `path`, or the
// reason of the refusal: an absolute name, a drive letter, a ".." component, or a control
// character (NUL included).
std::string checkZipEntryName(std::string_view name, ZipEntryPath& path);

// The name as it can stand in a one-line message: control characters become '?'.
std::string printableZipEntryName(std::string_view name);

}  // namespace nvdl
