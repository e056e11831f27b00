#include "setup/UserWeightingFile.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "platform/CodePage.h"
#include "platform/LittleEndian.h"
#include "platform/Registry.h"

namespace nvdl::userweighting {

namespace {

constexpr const char* kShellFoldersKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\explorer\\Shell Folders";
constexpr const char* kLocalAppData = "Local AppData";
constexpr const char* kOurFolder = "nvdl";

// The shell folder as the settings give it, ending with a separator.
std::optional<std::string> shellFolder() {
    std::optional<std::string> folder =
        registry::readString(registry::Hive::CurrentUser, kShellFoldersKey, kLocalAppData);
    if (!folder || folder->empty()) return std::nullopt;
    if (folder->back() != '/' && folder->back() != '\\') folder->push_back('/');
    return folder;
}

// The platform's own place for a user's data; relative values of the variable do not count.
std::filesystem::path platformDataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return std::filesystem::path(data) / kOurFolder;
    const char* home = std::getenv("HOME");
    if (home && home[0] != '\0') return std::filesystem::path(home) / ".local" / "share" / kOurFolder;
    return {};
}

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

}  // namespace

std::filesystem::path location(bool createFolder) {
    if (std::optional<std::string> folder = shellFolder()) return pathFromAnsi(*folder + kFileName);
    std::filesystem::path folder = platformDataFolder();
    if (folder.empty()) return {};
    if (createFolder) {
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
    }
    return folder / kFileName;
}

bool holdsData(const std::filesystem::path& file) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) return false;
    const std::uintmax_t size = std::filesystem::file_size(file, ec);
    return !ec && size >= 8;
}

bool remove(const std::filesystem::path& file) { return ::unlink(file.c_str()) == 0; }

bool write(const std::filesystem::path& file, std::int32_t count, const PairSource& pair) {
    userweighting::remove(file);
    std::unique_ptr<std::FILE, FileCloser> out(std::fopen(file.c_str(), "wb"));
    if (!out) return false;
    for (std::int32_t i = 0; i < count; ++i) {
        float frequency = 0, weight = 0;
        std::uint8_t bytes[8];
        bool written = pair(i, frequency, weight);
        if (written) {
            le::putF32(bytes, frequency);
            le::putF32(bytes + 4, weight);
            written = std::fwrite(bytes, 1, sizeof bytes, out.get()) == sizeof bytes && std::fflush(out.get()) == 0;
        }
        if (!written) {
            out.reset();
            userweighting::remove(file);
            return false;
        }
    }
    // The last flush may still be refused on close.
    if (std::fclose(out.release()) != 0) {
        userweighting::remove(file);
        return false;
    }
    return true;
}

}  // namespace nvdl::userweighting
