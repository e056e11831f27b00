#include "frame/UniqueName.h"

#include <cstdio>

namespace nvdl {

namespace {

// Splits a path as the platform's path splitter does: drive, directory, base name, extension with its dot.
void splitPath(const std::string& path, std::string& base, std::string& extension) {
    std::size_t start = 0;
    if (path.size() >= 2 && path[1] == ':') start = 2;
    std::size_t slash = path.find_last_of("/\\");
    if (slash != std::string::npos && slash + 1 > start) start = slash + 1;
    std::string file = path.substr(start);
    std::size_t dot = file.find_last_of('.');
    if (dot == std::string::npos) {
        base = file;
        extension.clear();
    } else {
        base = file.substr(0, dot);
        extension = file.substr(dot);
    }
}

}  // namespace

std::string numberedName(const std::string& original, long n, bool& closingInExtension) {
    std::string base, extension;
    splitPath(original, base, extension);
    if (extension.find(')') != std::string::npos) closingInExtension = true;
    char number[32];
    std::snprintf(number, sizeof number, "(%ld)", n);
    if (extension.empty() && !closingInExtension) return base + number;
    if (closingInExtension) return base + extension + number;
    return base + number + "." + extension;  // the extension keeps its own dot: Run(2)..dat
}

}  // namespace nvdl
