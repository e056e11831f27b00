// Writing to the settings file: the changes are made to its lines (platform/RegistryEdit.h) and the
// file is replaced in one step; a file that the changes leave as it was is not written at all.
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "platform/RegistryEdit.h"
#include "platform/ReplaceFile.h"

namespace nvdl::registry {

namespace {

// A settings file is a few kilobytes; anything this large is not one and is not rewritten.
constexpr std::uintmax_t kMaxFileBytes = 16u * 1024 * 1024;

}  // namespace

bool applyChanges(std::span<const Change> changes) {
    const std::string path = storePath();
    if (path.empty()) return false;
    const std::filesystem::path file = pathFromAnsi(path);
    std::error_code error;
    if (std::filesystem::exists(file, error) && std::filesystem::file_size(file, error) > kMaxFileBytes) return false;
    std::string bytes;
    {
        std::ifstream in(file, std::ios::binary);
        if (in) bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    SettingsLines lines(bytes);
    for (const Change& change : changes) {
        switch (change.kind) {
            case Change::Kind::SetString: lines.setValue(change.hive, change.key, change.valueName, change.value); break;
            case Change::Kind::DeleteValue: lines.deleteValue(change.hive, change.key, change.valueName); break;
            case Change::Kind::DeleteKey: lines.deleteKey(change.hive, change.key); break;
        }
    }
    const std::string edited = lines.bytes();
    if (edited == bytes) return true;

    std::filesystem::create_directories(file.parent_path(), error);
    return SUCCEEDED(replaceFile(file, [&](const std::filesystem::path& temporary) -> HRESULT {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(edited.data(), static_cast<std::streamsize>(edited.size()));
        out.flush();
        return out ? S_OK : E_FAIL;
    }));
}

bool writeString(Hive hive, std::string_view key, std::string_view valueName, std::string_view value) {
    const Change change{Change::Kind::SetString, hive, std::string(key), std::string(valueName), std::string(value)};
    return applyChanges({&change, 1});
}

bool deleteValue(Hive hive, std::string_view key, std::string_view valueName) {
    const Change change{Change::Kind::DeleteValue, hive, std::string(key), std::string(valueName), {}};
    return applyChanges({&change, 1});
}

bool deleteKey(Hive hive, std::string_view key) {
    if (key.find_first_not_of('\\') == std::string_view::npos) return false;  // never a whole hive
    const Change change{Change::Kind::DeleteKey, hive, std::string(key), {}, {}};
    return applyChanges({&change, 1});
}

}  // namespace nvdl::registry
