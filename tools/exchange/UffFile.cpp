#include "exchange/UffFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "exchange/UffReader.h"
#include "exchange/UffWriter.h"
#include "platform/ReplaceFile.h"

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
    HRESULT h = replaceFile(std::filesystem::path(path), [&](const std::filesystem::path& temporary) -> HRESULT {
        std::ofstream out(temporary, std::ios::binary);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.close();
        return out ? S_OK : E_FAIL;
    });
    if (FAILED(h)) {
        error = "cannot write the file";
        return false;
    }
    return true;
}

}  // namespace nvdl::exchange::uff
