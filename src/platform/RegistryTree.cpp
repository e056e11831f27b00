#include "platform/RegistryTree.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace nvdl::registry {

namespace {

constexpr std::uint8_t lowerCaseOf(std::uint8_t c) {
    if (c >= 'A' && c <= 'Z') return static_cast<std::uint8_t>(c + 0x20);
    // Latin-1 capitals (without the multiplication sign) and the capitals of the 0x80 row.
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<std::uint8_t>(c + 0x20);
    if (c == 0x8A || c == 0x8C || c == 0x8E) return static_cast<std::uint8_t>(c + 0x10);
    if (c == 0x9F) return 0xFF;
    return c;
}

// Looked up per character on every read of a setting.
constexpr std::array<std::uint8_t, 256> kLowerCase = [] {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t c = 0; c < table.size(); ++c) table[c] = lowerCaseOf(static_cast<std::uint8_t>(c));
    return table;
}();

char foldChar(char ch) { return static_cast<char>(kLowerCase[static_cast<std::uint8_t>(ch)]); }

std::vector<std::string_view> splitPath(std::string_view key) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (start <= key.size()) {
        std::size_t end = key.find('\\', start);
        if (end == std::string_view::npos) end = key.size();
        if (end > start) parts.push_back(key.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

// The case-folded, normalized form of a key path, built on the stack for paths of usual length
// so that a look-up allocates nothing.
class FoldedKeyPath {
public:
    explicit FoldedKeyPath(std::string_view key) {
        char* out = shortPath_.data();
        if (key.size() > shortPath_.size()) {
            longPath_.resize(key.size());
            out = longPath_.data();
        }
        std::size_t length = 0;
        for (std::size_t start = 0; start < key.size();) {
            const std::size_t end = std::min(key.find('\\', start), key.size());
            if (end > start && length > 0) out[length++] = '\\';
            for (std::size_t i = start; i < end; ++i) out[length++] = foldChar(key[i]);
            start = end + 1;
        }
        path_ = std::string_view(out, length);
    }
    FoldedKeyPath(const FoldedKeyPath&) = delete;
    FoldedKeyPath& operator=(const FoldedKeyPath&) = delete;

    std::string_view view() const { return path_; }

private:
    std::array<char, 256> shortPath_;
    std::string longPath_;
    std::string_view path_;
};

}  // namespace

std::string foldCase(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = foldChar(c);
    return out;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (foldChar(a[i]) != foldChar(b[i])) return false;
    }
    return true;
}

std::string normalizeKeyPath(std::string_view key) {
    std::string out;
    for (std::string_view part : splitPath(key)) {
        if (!out.empty()) out += '\\';
        out += part;
    }
    return out;
}

RegistryKey& RegistryTree::addKey(Hive hive, std::string_view key) {
    RegistryKey* current = &keys_[{hive, std::string()}];
    std::string folded;
    for (std::string_view part : splitPath(key)) {
        if (!folded.empty()) folded += '\\';
        folded += foldCase(part);
        auto [it, inserted] = keys_.try_emplace({hive, folded});
        if (inserted) it->second.name = std::string(part);
        current = &it->second;
    }
    return *current;
}

void RegistryTree::setValue(Hive hive, std::string_view key, std::string_view name, std::string_view value) {
    RegistryKey& k = addKey(hive, key);
    for (auto& [existingName, existingValue] : k.values) {
        if (equalsIgnoringCase(existingName, name)) {
            existingName = std::string(name);
            existingValue = std::string(value);
            return;
        }
    }
    k.values.emplace_back(std::string(name), std::string(value));
}

void RegistryTree::setValueIfMissing(Hive hive, std::string_view key, std::string_view name,
                                     std::string_view value) {
    if (findValue(hive, key, name) == nullptr) setValue(hive, key, name, value);
}

const RegistryKey* RegistryTree::findKey(Hive hive, std::string_view key) const {
    const FoldedKeyPath path(key);
    auto it = keys_.find(std::pair{hive, path.view()});
    return it == keys_.end() ? nullptr : &it->second;
}

const std::string* RegistryTree::findValue(Hive hive, std::string_view key, std::string_view name) const {
    const RegistryKey* k = findKey(hive, key);
    if (k == nullptr) return nullptr;
    for (const auto& [valueName, value] : k->values) {
        if (equalsIgnoringCase(valueName, name)) return &value;
    }
    return nullptr;
}

std::vector<std::string> RegistryTree::subKeys(Hive hive, std::string_view key) const {
    std::string prefix(FoldedKeyPath(key).view());
    if (!prefix.empty()) prefix += '\\';
    std::vector<std::pair<std::string, std::string>> found;  // (folded name, name)
    // The map is ordered, so the keys below `key` follow it in one run.
    for (auto it = keys_.lower_bound(std::pair{hive, std::string_view(prefix)}); it != keys_.end(); ++it) {
        const auto& [itHive, path] = it->first;
        if (itHive != hive || path.compare(0, prefix.size(), prefix) != 0) break;
        std::string_view rest = std::string_view(path).substr(prefix.size());
        if (rest.empty() || rest.find('\\') != std::string_view::npos) continue;
        found.emplace_back(std::string(rest), it->second.name);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> names;
    names.reserve(found.size());
    for (auto& entry : found) names.push_back(std::move(entry.second));
    return names;
}

}  // namespace nvdl::registry
