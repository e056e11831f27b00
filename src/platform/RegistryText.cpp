#include "platform/RegistryText.h"

#include <cstdint>
#include <optional>
#include <string>

#include "platform/CodePage.h"
#include "platform/DebugTrace.h"

namespace nvdl::registry {

std::string decodeRegistryFile(std::string_view bytes) {
    if (bytes.size() >= 2 && static_cast<std::uint8_t>(bytes[0]) == 0xFF &&
        static_cast<std::uint8_t>(bytes[1]) == 0xFE) {
        std::u16string units;
        units.reserve(bytes.size() / 2);
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
            units += static_cast<char16_t>(static_cast<std::uint8_t>(bytes[i]) |
                                           (static_cast<std::uint8_t>(bytes[i + 1]) << 8));
        }
        return narrow(units);
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    return narrow(utf8ToUtf16(bytes));
}

namespace {

std::string_view trim(std::string_view s) {
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
    while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
    return s;
}

}  // namespace

std::optional<Hive> hiveByName(std::string_view name) {
    if (equalsIgnoringCase(name, "HKEY_CURRENT_USER") || equalsIgnoringCase(name, "HKCU")) return Hive::CurrentUser;
    if (equalsIgnoringCase(name, "HKEY_LOCAL_MACHINE") || equalsIgnoringCase(name, "HKLM")) return Hive::LocalMachine;
    if (equalsIgnoringCase(name, "HKEY_CLASSES_ROOT") || equalsIgnoringCase(name, "HKCR")) return Hive::ClassesRoot;
    return std::nullopt;
}

namespace {

// Reads a quoted text at line[pos] (which is the opening quote); on success pos is behind the
// closing quote. Only \\ and \" are escapes; any other backslash stands for itself.
std::optional<std::string> readQuoted(std::string_view line, std::size_t& pos) {
    std::string out;
    for (std::size_t i = pos + 1; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '"') {
            pos = i + 1;
            return out;
        }
        if (c == '\\' && i + 1 < line.size() && (line[i + 1] == '\\' || line[i + 1] == '"')) ++i;
        out += line[i];
    }
    return std::nullopt;
}

struct Section {
    Hive hive;
    std::string key;
};

class Parser {
public:
    explicit Parser(RegistryTree& tree) : tree_(tree) {}

    void line(std::size_t number, std::string_view text) {
        number_ = number;
        text = trim(text);
        if (text.empty() || text.front() == ';') return;
        if (text == "REGEDIT4" || text.starts_with("Windows Registry Editor Version")) return;
        if (text.front() == '[') return sectionLine(text);
        valueLine(text);
    }

private:
    void skip(const char* reason) {
        DebugTraceF("registry::parseRegistryText - line %zu skipped: %s", number_, reason);
    }

    void sectionLine(std::string_view text) {
        section_.reset();
        if (text.back() != ']') return skip("section without closing bracket");
        if (text.substr(1).starts_with('-')) return skip("key deletions are not supported");
        std::optional<std::pair<Hive, std::string>> section = sectionOfLine(text);
        if (!section) return skip("unknown hive");
        section_ = Section{section->first, std::move(section->second)};
        tree_.addKey(section_->hive, section_->key);
    }

    void valueLine(std::string_view text) {
        std::size_t pos = 0;
        std::string name;
        if (text.front() == '@') {
            pos = 1;
        } else if (text.front() == '"') {
            std::optional<std::string> quoted = readQuoted(text, pos);
            if (!quoted) return skip("value name without closing quote");
            name = std::move(*quoted);
        } else {
            return skip("neither a section nor a value");
        }
        std::string_view rest = trim(text.substr(pos));
        if (!rest.starts_with('=')) return skip("'=' missing after the value name");
        rest = trim(rest.substr(1));
        if (!rest.starts_with('"')) return skip("not a string value");
        pos = 0;
        std::optional<std::string> value = readQuoted(rest, pos);
        if (!value) return skip("value without closing quote");
        if (!trim(rest.substr(pos)).empty()) return skip("text after the value");
        if (!section_) return skip("value outside a usable section");
        tree_.setValue(section_->hive, section_->key, name, *value);
    }

    RegistryTree& tree_;
    std::optional<Section> section_;
    std::size_t number_ = 0;
};

}  // namespace

std::optional<std::pair<Hive, std::string>> sectionOfLine(std::string_view line) {
    line = trim(line);
    if (line.size() < 2 || line.front() != '[' || line.back() != ']') return std::nullopt;
    const std::string_view path = line.substr(1, line.size() - 2);
    const std::size_t slash = path.find('\\');
    const std::optional<Hive> hive = hiveByName(path.substr(0, slash));
    if (!hive) return std::nullopt;
    const std::string_view key = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    return std::pair{*hive, normalizeKeyPath(key)};
}

std::optional<std::string> valueNameOfLine(std::string_view line) {
    line = trim(line);
    if (line.starts_with('@')) return std::string();
    std::size_t pos = 0;
    if (!line.starts_with('"')) return std::nullopt;
    std::optional<std::string> name = readQuoted(line, pos);
    if (!name || !trim(line.substr(pos)).starts_with('=')) return std::nullopt;
    return name;
}

void parseRegistryText(std::string_view fileBytes, RegistryTree& tree) {
    const std::string text = decodeRegistryFile(fileBytes);
    Parser parser(tree);
    std::size_t start = 0;
    for (std::size_t number = 1; start < text.size(); ++number) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        parser.line(number, std::string_view(text).substr(start, end - start));
        start = end + 1;
    }
}

}  // namespace nvdl::registry
