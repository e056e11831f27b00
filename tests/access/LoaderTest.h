// The fixture of the tests that run the recording loader: files in the test's own folder and a
// settings file holding the loader's values.
#pragma once

#include <string>

#include "../project/SettingsFileTest.h"

namespace nvdl::testing {

class LoaderTest : public nvdl::test::SettingsFileTest {
protected:
    std::string path(const char* name) const { return (dir_ / name).string(); }
    void settings(const Values& values) {
        writeSettings({{"HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings", values}});
    }
    // The size of a picture and whether a longer span is reduced to it.
    void settings(long maxBlock, int feature) {
        settings({{"MaxBlockSize", std::to_string(maxBlock)}, {"LongFileFeature", std::to_string(feature)}});
    }
};

}  // namespace nvdl::testing
