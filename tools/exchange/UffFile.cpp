#include "exchange/UffFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "exchange/TextFile.h"
#include "exchange/UffReader.h"
#include "exchange/UffWriter.h"

namespace nvdl::exchange::uff {

bool readFile(const std::string& path, File& file, std::string& error) {
    std::error_code ec;
    const auto size = std::filesystem::file_size(path, ec);
    if (ec) {
        error = ec.message();
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    std::string text;
    try {
        text.resize(static_cast<std::size_t>(size));
    } catch (const std::exception&) {
        error = "the file is too large to read";
        return false;
    }
    if (!in || !in.read(text.data(), static_cast<std::streamsize>(text.size()))) {
        error = std::strerror(errno);
        return false;
    }
    return readText(text, file, error);
}

bool writeFile(const std::string& path, const File& file, std::string& error) {
    const std::string text = writeText(file);
    return writeTextFile(path, text, error);
}

}  // namespace nvdl::exchange::uff
