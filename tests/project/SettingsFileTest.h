// A settings file of its own for one test, with the values the test names; the rest keep their
// built-in defaults.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "../platform/EnvGuard.h"

namespace nvdl::test {

class SettingsFileTest : public ::testing::Test {
protected:
    using Values = std::map<std::string, std::string>;

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

    // Writes the settings file: each key (with its hive, "HKEY_CURRENT_USER\...") and its values.
    void writeSettings(const std::vector<std::pair<std::string, Values>>& keys) {
        std::ofstream file(dir_ / "registry.txt", std::ios::binary | std::ios::trunc);
        for (const auto& [key, values] : keys) {
            file << '[' << key << "]\n";
            for (const auto& [name, value] : values) file << '"' << name << "\"=\"" << value << "\"\n";
        }
    }
    // The current user's regional values ("Control Panel\International").
    void regional(const Values& values) {
        writeSettings({{"HKEY_CURRENT_USER\\Control Panel\\International", values}});
    }

    EnvGuard env_;
    std::filesystem::path dir_;
};

}  // namespace nvdl::test
