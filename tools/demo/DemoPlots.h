// The demonstration's pictures, as PNG files in its folder: the FRFs (magnitude and phase), the
// coherences, the octave bands and min/max overviews of the recording's channels.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "nvdl/IMeasurement.h"

namespace nvdl::demo {

struct DemoPictures {
    std::vector<IMeasurement*> frfs, coherences;
    std::vector<IMeasurement*> records;  // the force first
    IMeasurement* bands = nullptr;
};

// Writes the pictures; `written` gets the file names. False with `error` set at the first failure.
bool writeDemoPlots(const DemoPictures& pictures, const std::filesystem::path& folder, std::vector<std::string>& written,
                    std::string& error);

}  // namespace nvdl::demo
