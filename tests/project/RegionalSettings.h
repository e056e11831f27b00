// A settings file of its own for one test, with the regional values the test names.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "../platform/EnvGuard.h"

namespace nvdl::test {

class RegionalSettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("nvdl_project_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
        env_.set("NVDL_REGISTRY", (dir_ / "registry.txt").string());
    }
    void TearDown() override {
        env_.restore();
        std::filesystem::remove_all(dir_);
    }

    // Writes the values under the current user's "Control Panel\International"; a value left out
    // keeps its built-in default.
    void regional(const std::map<std::string, std::string>& values) {
        std::ofstream file(dir_ / "registry.txt", std::ios::binary | std::ios::trunc);
        file << "[HKEY_CURRENT_USER\\Control Panel\\International]\n";
        for (const auto& [name, value] : values) file << '"' << name << "\"=\"" << value << "\"\n";
    }

    EnvGuard env_;
    std::filesystem::path dir_;
};

}  // namespace nvdl::test
