// The user-defined frequency weighting that every input channel of the installation shares: one
// file, "NvUserFrequencies.dat", of (frequency, weight) pairs as little-endian 32-bit floats, in
// the user's local application data directory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

namespace nvdl::userweighting {

inline constexpr const char* kFileName = "NvUserFrequencies.dat";

// The file's full name. The directory is the "Local AppData" shell folder of the current user's
// settings when set; otherwise the platform's data directory ($XDG_DATA_HOME, else
// ~/.local/share) under a folder of ours, which `createFolder` makes when missing. Empty when no
// directory can be found at all.
std::filesystem::path location(bool createFolder);

// Whether the file is there and holds at least one pair.
bool holdsData(const std::filesystem::path& file);

// Deletes the file; false when there was none or it could not be deleted.
bool remove(const std::filesystem::path& file);

// One pair of the weighting, by index; false when it cannot be read.
using PairSource = std::function<bool(std::int32_t index, float& frequency, float& weight)>;

// Replaces the file by `count` pairs taken from `pair`, each flushed as it is written. A pair that
// cannot be read or written stops the writing and deletes the file.
bool write(const std::filesystem::path& file, std::int32_t count, const PairSource& pair);

}  // namespace nvdl::userweighting
