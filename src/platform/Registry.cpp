#include "platform/Registry.h"

#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <mutex>
#include <string_view>

#include "platform/DebugTrace.h"
#include "platform/RegistryDefaults.h"
#include "platform/RegistryText.h"
#include "platform/RegistryTree.h"

namespace nvdl::registry {

namespace {

// A settings file is a few kilobytes; anything this large is not one.
constexpr std::uintmax_t kMaxFileBytes = 16u * 1024 * 1024;

// File timestamps may lag the clock by a scheduler tick; a file changed this recently before it
// was read may change again without a new time stamp, so its bytes are compared on each read.
constexpr std::time_t kRacySeconds = 1;

struct FileStamp {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::timespec modified{};
    std::timespec changed{};  // also moves when a tool writes the file and puts its old mtime back

    bool operator==(const FileStamp& o) const {
        const auto same = [](const std::timespec& a, const std::timespec& b) {
            return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
        };
        return exists == o.exists && device == o.device && inode == o.inode && size == o.size &&
               same(modified, o.modified) && same(changed, o.changed);
    }
};

FileStamp stampOf(const std::string& path) {
    FileStamp stamp;
    struct stat info {};
    if (path.empty() || ::stat(path.c_str(), &info) != 0) return stamp;
    stamp.exists = true;
    stamp.device = info.st_dev;
    stamp.inode = info.st_ino;
    stamp.size = info.st_size;
    stamp.modified = info.st_mtim;
    stamp.changed = info.st_ctim;
    return stamp;
}

// The file's bytes; empty when it is missing, unreadable or too large.
std::string readFileBytes(const std::string& path, const FileStamp& stamp) {
    if (!stamp.exists) return {};
    if (static_cast<std::uintmax_t>(stamp.size) > kMaxFileBytes) {
        DebugTraceF("registry::readFileBytes - %s is larger than %ju bytes, not read", path.c_str(), kMaxFileBytes);
        return {};
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        DebugTraceF("registry::readFileBytes - %s cannot be opened", path.c_str());
        return {};
    }
    std::string bytes;
    bytes.resize(static_cast<std::size_t>(stamp.size));
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

RegistryTree buildTree(std::string_view fileBytes) {
    RegistryTree tree;
    parseRegistryText(fileBytes, tree);
    for (const RegistryDefault& row : registryDefaults()) {
        tree.setValueIfMissing(row.hive, row.key, row.valueName, row.value);
    }
    return tree;
}

std::timespec now() {
    std::timespec t{};
    std::timespec_get(&t, TIME_UTC);
    return t;
}

bool isRacy(const FileStamp& stamp, const std::timespec& loadedAt) {
    if (!stamp.exists) return false;
    const std::time_t safeBefore = loadedAt.tv_sec - kRacySeconds;
    const auto recent = [&](const std::timespec& t) {
        return t.tv_sec > safeBefore || (t.tv_sec == safeBefore && t.tv_nsec >= loadedAt.tv_nsec);
    };
    return recent(stamp.modified) || recent(stamp.changed);
}

const char* nonEmptyEnv(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && value[0] != '\0' ? value : nullptr;
}

// The parsed file as it was at the last read, with what identifies that state of the file.
class StoreCache {
public:
    // Runs `query` on the tree of the file as it is now.
    template <typename Query>
    auto withTree(Query query) {
        std::lock_guard lock(mutex_);
        refresh();
        return query(static_cast<const RegistryTree&>(tree_));
    }

private:
    // The file is parsed again only when its stamp differs from the one read last, or when it was
    // written so shortly before that read that a later write could have kept the stamp.
    void refresh() {
        const std::timespec readAt = now();
        std::string path = storePath();
        const bool samePath = loaded_ && path == path_;
        const FileStamp stamp = stampOf(path);
        if (samePath && stamp == stamp_) {
            if (!isRacy(stamp_, loadedAt_)) return;
            std::string bytes = readFileBytes(path, stamp);
            loadedAt_ = readAt;
            if (bytes == bytes_) return;
            bytes_ = std::move(bytes);
        } else {
            bytes_ = readFileBytes(path, stamp);
            loadedAt_ = readAt;
        }
        tree_ = buildTree(bytes_);
        path_ = std::move(path);
        stamp_ = stamp;
        loaded_ = true;
    }

    std::mutex mutex_;
    bool loaded_ = false;
    std::string path_;
    FileStamp stamp_;
    std::timespec loadedAt_{};
    std::string bytes_;
    RegistryTree tree_;
};

// Never destroyed, so that reads from other static destructors still work.
StoreCache& cache() {
    static StoreCache* instance = new StoreCache;
    return *instance;
}

bool isRoot(std::string_view key) { return key.find_first_not_of('\\') == std::string_view::npos; }

}  // namespace

std::string storePath() {
    if (const char* explicitPath = nonEmptyEnv("NVDL_REGISTRY")) return explicitPath;
    const char* configHome = nonEmptyEnv("XDG_CONFIG_HOME");
    if (configHome != nullptr && configHome[0] == '/') return std::string(configHome) + "/nvdl/registry.txt";
    if (const char* home = nonEmptyEnv("HOME")) return std::string(home) + "/.config/nvdl/registry.txt";
    return {};
}

std::optional<std::string> readString(Hive hive, std::string_view key, std::string_view valueName) {
    return cache().withTree([&](const RegistryTree& tree) -> std::optional<std::string> {
        const std::string* value = tree.findValue(hive, key, valueName);
        if (value == nullptr) return std::nullopt;
        return *value;
    });
}

bool keyExists(Hive hive, std::string_view key) {
    if (isRoot(key)) return true;
    return cache().withTree([&](const RegistryTree& tree) { return tree.findKey(hive, key) != nullptr; });
}

std::vector<std::string> subKeys(Hive hive, std::string_view key) {
    return cache().withTree([&](const RegistryTree& tree) { return tree.subKeys(hive, key); });
}

std::vector<std::string> valueNames(Hive hive, std::string_view key) {
    return cache().withTree([&](const RegistryTree& tree) {
        std::vector<std::string> names;
        if (const RegistryKey* k = tree.findKey(hive, key)) {
            for (const auto& entry : k->values) names.push_back(entry.first);
        }
        return names;
    });
}

std::optional<std::string> readSetting(std::string_view valueName) {
    return readString(Hive::CurrentUser, kSettingsKey, valueName);
}

void readSettings(std::span<const std::string_view> valueNames, std::span<std::optional<std::string>> values) {
    cache().withTree([&](const RegistryTree& tree) {
        for (std::size_t i = 0; i < valueNames.size() && i < values.size(); ++i) {
            const std::string* value = tree.findValue(Hive::CurrentUser, kSettingsKey, valueNames[i]);
            values[i] = value ? std::optional<std::string>(*value) : std::nullopt;
        }
    });
}

}  // namespace nvdl::registry
