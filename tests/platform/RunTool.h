// Runs the built command-line tool (beside the test program) and gives its standard output.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace nvdl::test {

inline std::string runTool(const std::string& arguments, int& status) {
    const auto tool = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "nvdl";
    std::FILE* pipe = ::popen((tool.string() + " " + arguments + " 2>/dev/null").c_str(), "r");
    std::string out;
    char chunk[256];
    while (pipe && std::fgets(chunk, sizeof chunk, pipe)) out += chunk;
    status = pipe ? ::pclose(pipe) : -1;
    return out;
}

}  // namespace nvdl::test
