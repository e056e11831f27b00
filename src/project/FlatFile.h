// A flat binary file written value by value in little-endian order: longs, floats, float runs and
// strings (a long length that counts the zero, then the bytes with the zero). Each write fails
// unless every byte went out.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace nvdl {

class FlatFileWriter {
public:
    FlatFileWriter() = default;
    FlatFileWriter(const FlatFileWriter&) = delete;
    FlatFileWriter& operator=(const FlatFileWriter&) = delete;
    ~FlatFileWriter() { close(); }

    // Deletes the file and creates it anew, empty.
    bool create(const std::string& path);
    // Flushes and closes; false when the data could not all be written.
    bool close();

    bool writeLong(std::int32_t value);
    bool writeFloat(float value);
    bool writeFloats(std::span<const float> values);
    bool writeString(const std::string& text);

private:
    bool writeBytes(const void* bytes, std::size_t size);

    std::FILE* m_file = nullptr;
};

}  // namespace nvdl
