// The settings store: hives, keys and string values in the shape of the platform's registry.
// It lives in a text file in the shape of a registry export ("[HKEY_CURRENT_USER\Key]",
// "\"Name\"=\"value\"", "@=\"value\"") found at $NVDL_REGISTRY, else
// $XDG_CONFIG_HOME/nvdl/registry.txt, else $HOME/.config/nvdl/registry.txt; a missing file is an
// empty store. Every read sees the file as it is now. Built-in defaults of the system's own keys
// lie under the file: a value in the file wins. Keys and value names compare ignoring case; key
// paths use backslashes. Values are 8-bit text in the system code page. Safe to call from several
// threads.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nvdl::registry {

enum class Hive { ClassesRoot, CurrentUser, LocalMachine };

// The key of the system's settings under the current user.
inline constexpr const char* kSettingsKey = "Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings";

// The string value `valueName` of `key` ("" names the key's default value), or nothing.
std::optional<std::string> readString(Hive hive, std::string_view key, std::string_view valueName);
bool keyExists(Hive hive, std::string_view key);
// The names of the direct subkeys, sorted ignoring case.
std::vector<std::string> subKeys(Hive hive, std::string_view key);
// The names of the key's values in the order the file gives them, then those only the defaults
// have; "" stands for the default value.
std::vector<std::string> valueNames(Hive hive, std::string_view key);

// A value under kSettingsKey of the current user.
std::optional<std::string> readSetting(std::string_view valueName);
// Several values under kSettingsKey of the current user, all from one state of the file (and one
// look at whether it changed): values[i] answers valueNames[i]. The spans have the same length.
void readSettings(std::span<const std::string_view> valueNames, std::span<std::optional<std::string>> values);

// Creates or replaces a string value in the settings file, which keeps the rest of its text
// (comments, order, other keys, line ends) as it was; the key is added at the end, behind a blank
// line, when the file lacks it. The file is replaced in one step, so that a reader never sees it half
// written. False when the file cannot be written.
bool writeString(Hive hive, std::string_view key, std::string_view valueName, std::string_view value);
// Removes a value from every section of its key in the settings file; the key stays. True also when
// the file has no such value.
bool deleteValue(Hive hive, std::string_view key, std::string_view valueName);
// Removes a key with all its subkeys and values from the settings file. A key that the file does not
// have is no failure; an empty key (a whole hive) is refused. The built-in defaults stay.
bool deleteKey(Hive hive, std::string_view key);

// One change of the settings file.
struct Change {
    enum class Kind { SetString, DeleteValue, DeleteKey };
    Kind kind;
    Hive hive;
    std::string key;
    std::string valueName;  // SetString and DeleteValue
    std::string value;      // SetString
};
// Makes the changes in their order with one replacement of the file, as the functions above each
// make one; the file is not written when they leave it as it was. False when it cannot be written.
bool applyChanges(std::span<const Change> changes);

// The path of the file the store reads now; empty when no path can be made (no HOME either).
std::string storePath();

}  // namespace nvdl::registry
