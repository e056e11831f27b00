// What the paging benchmarks share: a fresh folder of their own whose settings file turns paging on
// (blocks of 32768 samples) and the unit service off, and the process's resident memory.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/Registry.h"

namespace nvdl::bench {

// The folder, made and put in effect on first use.
inline std::filesystem::path pagingWorkDir(const char* name) {
    static const std::filesystem::path dir = [name] {
        auto d = std::filesystem::temp_directory_path() / (std::string(name) + "_" + std::to_string(::getpid()));
        std::filesystem::create_directories(d);
        std::ofstream(d / "registry.txt") << "[HKEY_CURRENT_USER\\" << registry::kSettingsKey << "]\n"
                                          << "\"MaxBlockSize\"=\"32768\"\n\"LongFileFeature\"=\"1\"\n";
        ::setenv("NVDL_REGISTRY", (d / "registry.txt").c_str(), 1);
        ::setenv("NVDL_UNIT_SERVICE", "0", 1);
        return d;
    }();
    return dir;
}

inline long residentKiB() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0) return std::atol(line.c_str() + 6);
    return -1;
}

}  // namespace nvdl::bench
