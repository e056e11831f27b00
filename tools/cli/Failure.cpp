#include "cli/Failure.h"

#include <cstdio>

#include "nvdl/ErrorInfo.h"
#include "platform/CodePage.h"

namespace nvdl::tool {

int failure(const std::string& command, const std::string& file, const std::string& reason) {
    // Messages of the server may span lines; the failure stays one line.
    std::string line = reason;
    for (char& c : line)
        if (c == '\n' || c == '\r') c = ' ';
    std::fprintf(stderr, "nvdl %s: %s: %s\n", command.c_str(), file.c_str(), line.c_str());
    return 1;
}

int usageFailure(const std::string& command, const std::string& usage, const std::string& problem) {
    if (!problem.empty()) std::fprintf(stderr, "nvdl %s: %s\n", command.c_str(), problem.c_str());
    std::fprintf(stderr, "usage: nvdl %s\n", usage.c_str());
    return 2;
}

std::string reasonOf(HRESULT status, const std::string& fallback) {
    if (auto record = takeErrorInfo(); record && !record->description.empty())
        return utf16ToUtf8(record->description);
    char code[16];
    std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(status));
    return fallback + " (" + code + ")";
}

}  // namespace nvdl::tool
