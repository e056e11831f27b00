// Making the min/max caches of a whole recording: every used input and tacho channel in one pass
// over the scan stream, read in large pieces of whole scans.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvdl::access {

struct IndexedChannel {
    long kind = 0;           // 1 input, 2 tacho
    long channel = 0;        // number over all channels, tachos behind the inputs
    std::string name;        // system code page text
    std::int64_t scans = 0;  // scans the cache covers
    bool written = false;
};

// Builds the cache of every used channel of the recording `recording` (system code page text),
// one entry per channel into `channels`. False, with the reason, when the recording cannot be read.
bool indexRecording(const std::string& recording, std::vector<IndexedChannel>& channels, std::string& reason);

}  // namespace nvdl::access
