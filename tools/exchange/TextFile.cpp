#include "exchange/TextFile.h"

#include <filesystem>
#include <fstream>

#include "platform/ReplaceFile.h"

namespace nvdl::exchange {

bool writeTextFile(const std::string& path, const std::string& text, std::string& error) {
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

}  // namespace nvdl::exchange
