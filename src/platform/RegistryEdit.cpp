#include "platform/RegistryEdit.h"

#include "platform/CodePage.h"
#include "platform/RegistryText.h"
#include "platform/RegistryTree.h"

namespace nvdl::registry {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

const char* hiveText(Hive hive) {
    switch (hive) {
        case Hive::ClassesRoot: return "HKEY_CLASSES_ROOT";
        case Hive::LocalMachine: return "HKEY_LOCAL_MACHINE";
        case Hive::CurrentUser: break;
    }
    return "HKEY_CURRENT_USER";
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '\\' || c == '"') out += '\\';
        out += c;
    }
    return out + '"';
}

std::string valueLine(std::string_view name, std::string_view value) {
    return (name.empty() ? std::string("@") : quoted(name)) + "=" + quoted(value);
}

std::string_view trimmed(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

bool blank(std::string_view line) { return trimmed(line).empty(); }
bool blankOrComment(std::string_view line) { return blank(line) || trimmed(line).starts_with(';'); }
// Any "[...]" line ends the section above it, also one whose hive is unknown.
bool startsSection(std::string_view line) { return trimmed(line).starts_with('['); }

bool inKeyOrBelow(std::string_view path, std::string_view key) {
    if (path.size() == key.size()) return equalsIgnoringCase(path, key);
    return path.size() > key.size() && path[key.size()] == '\\' && equalsIgnoringCase(path.substr(0, key.size()), key);
}

}  // namespace

SettingsLines::SettingsLines(std::string_view fileBytes) {
    std::string utf8;
    if (fileBytes.starts_with("\xFF\xFE")) {
        utf8 = utf16ToUtf8(widen(decodeRegistryFile(fileBytes)));
    } else {
        if (fileBytes.starts_with(kUtf8Mark)) {
            bom_ = kUtf8Mark;
            fileBytes.remove_prefix(kUtf8Mark.size());
        }
        utf8 = fileBytes;
    }
    for (std::size_t start = 0; start < utf8.size();) {
        std::size_t end = utf8.find('\n', start);
        if (end == std::string::npos) {
            end = utf8.size();
            lastLineEnded_ = false;
        }
        std::string raw = utf8.substr(start, end - start);
        if (!raw.empty() && raw.back() == '\r') {
            raw.pop_back();
            if (lines_.empty()) eol_ = "\r\n";
        }
        std::string text = narrow(utf8ToUtf16(raw));
        lines_.push_back(Line{std::move(raw), std::move(text)});
        start = end + 1;
    }
}

SettingsLines::Line SettingsLines::makeLine(std::string text) { return Line{utf16ToUtf8(widen(text)), std::move(text)}; }

std::string SettingsLines::bytes() const {
    std::string out = bom_;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        out += lines_[i].raw;
        if (i + 1 < lines_.size() || lastLineEnded_) out += eol_;
    }
    return out;
}

void SettingsLines::setValue(Hive hive, std::string_view key, std::string_view name, std::string_view value) {
    const std::string path = normalizeKeyPath(key);
    bool inKey = false, replaced = false, sawKey = false;
    std::size_t insertAt = lines_.size();
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::string& text = lines_[i].text;
        if (startsSection(text)) {
            const auto section = sectionOfLine(text);
            inKey = section && section->first == hive && equalsIgnoringCase(section->second, path);
            if (inKey && !sawKey) insertAt = i + 1;
            sawKey = sawKey || inKey;
            continue;
        }
        if (!inKey) continue;
        if (auto existing = valueNameOfLine(text); existing && equalsIgnoringCase(*existing, name)) {
            lines_[i] = makeLine(valueLine(*existing, value));  // the name keeps its spelling
            replaced = true;
        }
        if (!blank(lines_[i].text) && insertAt == i) insertAt = i + 1;
    }
    if (replaced) return;
    if (sawKey) {
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(insertAt), makeLine(valueLine(name, value)));
        return;
    }
    if (lines_.empty()) lines_.push_back(makeLine("Windows Registry Editor Version 5.00"));
    lines_.push_back(makeLine(""));
    lines_.push_back(makeLine("[" + std::string(hiveText(hive)) + (path.empty() ? "" : "\\" + path) + "]"));
    lines_.push_back(makeLine(valueLine(name, value)));
}

void SettingsLines::deleteValue(Hive hive, std::string_view key, std::string_view name) {
    const std::string path = normalizeKeyPath(key);
    bool inKey = false;
    for (std::size_t i = 0; i < lines_.size();) {
        const std::string& text = lines_[i].text;
        if (startsSection(text)) {
            const auto section = sectionOfLine(text);
            inKey = section && section->first == hive && equalsIgnoringCase(section->second, path);
        } else if (auto existing = valueNameOfLine(text); inKey && existing && equalsIgnoringCase(*existing, name)) {
            lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        ++i;
    }
}

void SettingsLines::deleteKey(Hive hive, std::string_view key) {
    const std::string path = normalizeKeyPath(key);
    for (std::size_t i = 0; i < lines_.size();) {
        const auto section = startsSection(lines_[i].text) ? sectionOfLine(lines_[i].text) : std::nullopt;
        if (section && section->first == hive && inKeyOrBelow(section->second, path)) {
            deleteSection(i);
            i = i > 0 ? i - 1 : 0;  // the blank line above may have gone with it
            continue;
        }
        ++i;
    }
}

void SettingsLines::deleteSection(std::size_t header) {
    std::size_t next = header + 1;
    while (next < lines_.size() && !startsSection(lines_[next].text)) ++next;
    std::size_t end = next;
    while (end > header + 1 && blankOrComment(lines_[end - 1].text)) --end;
    std::size_t begin = header;
    const bool separatorStays = end == lines_.size() || blank(lines_[end].text);
    if (separatorStays && begin > 0 && blank(lines_[begin - 1].text)) --begin;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(begin), lines_.begin() + static_cast<std::ptrdiff_t>(end));
}

}  // namespace nvdl::registry
