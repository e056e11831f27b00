#include "project/FlatFile.h"

#include <cstring>
#include <vector>

#include "platform/CodePage.h"
#include "platform/LittleEndian.h"

namespace nvdl {

bool FlatFileWriter::create(const std::string& path) {
    close();
    const std::filesystem::path file = pathFromAnsi(path);
    std::remove(file.c_str());
    m_file = std::fopen(file.c_str(), "wb");
    return m_file != nullptr;
}

bool FlatFileWriter::close() {
    if (!m_file) return true;
    const bool flushed = std::fflush(m_file) == 0;
    const bool closed = std::fclose(m_file) == 0;
    m_file = nullptr;
    return flushed && closed;
}

bool FlatFileWriter::writeBytes(const void* bytes, std::size_t size) {
    return m_file && std::fwrite(bytes, 1, size, m_file) == size;
}

bool FlatFileWriter::writeLong(std::int32_t value) {
    std::uint8_t bytes[4];
    le::put32(bytes, static_cast<std::uint32_t>(value));
    return writeBytes(bytes, sizeof bytes);
}

bool FlatFileWriter::writeFloat(float value) {
    std::uint8_t bytes[4];
    le::putF32(bytes, value);
    return writeBytes(bytes, sizeof bytes);
}

bool FlatFileWriter::writeFloats(std::span<const float> values) {
    std::vector<std::uint8_t> bytes(values.size() * 4);
    for (std::size_t i = 0; i < values.size(); ++i) le::putF32(bytes.data() + 4 * i, values[i]);
    return writeBytes(bytes.data(), bytes.size());
}

bool FlatFileWriter::writeString(const std::string& text) {
    return writeLong(static_cast<std::int32_t>(text.size() + 1)) && writeBytes(text.c_str(), text.size() + 1);
}

}  // namespace nvdl
