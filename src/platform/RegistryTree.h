// The in-memory form of the settings store: keys per hive with their string values.
// Key paths and value names compare ignoring case, in the system code page.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Registry.h"

namespace nvdl::registry {

// Lower-case form of 8-bit text in the system code page, for comparisons ignoring case.
std::string foldCase(std::string_view text);
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// The path with empty components dropped ("\\A\\\\B\\" is "A\\B"); empty is the hive's root.
std::string normalizeKeyPath(std::string_view key);

struct RegistryKey {
    std::string name;  // last component of the path, as first written
    std::vector<std::pair<std::string, std::string>> values;  // (name, value) in order of writing
};

class RegistryTree {
public:
    // Creates the key and every key above it.
    RegistryKey& addKey(Hive hive, std::string_view key);
    // Creates or replaces a value; the key is created when missing.
    void setValue(Hive hive, std::string_view key, std::string_view name, std::string_view value);
    // Sets the value only when the key does not have it yet.
    void setValueIfMissing(Hive hive, std::string_view key, std::string_view name, std::string_view value);

    const RegistryKey* findKey(Hive hive, std::string_view key) const;
    const std::string* findValue(Hive hive, std::string_view key, std::string_view name) const;
    std::vector<std::string> subKeys(Hive hive, std::string_view key) const;

private:
    // Orders (hive, path) pairs whether the path is held as a string or looked up as a view.
    struct KeyOrder {
        using is_transparent = void;
        template <typename A, typename B>
        bool operator()(const A& a, const B& b) const {
            if (a.first != b.first) return a.first < b.first;
            return std::string_view(a.second) < std::string_view(b.second);
        }
    };
    // Keyed by hive and the case-folded normalized path.
    std::map<std::pair<Hive, std::string>, RegistryKey, KeyOrder> keys_;
};

}  // namespace nvdl::registry
