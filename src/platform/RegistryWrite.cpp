// Writing one value into the settings file by editing its text in place: the line of the value is
// replaced, or a line is added to its key's section, or a section is added at the end.
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

#include "platform/CodePage.h"
#include "platform/Registry.h"
#include "platform/RegistryText.h"
#include "platform/ReplaceFile.h"

namespace nvdl::registry {

namespace {

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

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
    }
    return lines;
}

bool blank(const std::string& line) { return line.find_first_not_of(" \t") == std::string::npos; }

// The lines with the value set: every line of the value in a section of the key is replaced; with
// none, the line goes behind the last value of the key's first section, or into a new section.
void setValueIn(std::vector<std::string>& lines, Hive hive, const std::string& key, std::string_view name,
                std::string_view value) {
    const std::string line = valueLine(name, value);
    bool inKey = false, replaced = false;
    std::size_t insertAt = lines.size();
    bool sawKey = false;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (auto section = sectionOfLine(lines[i])) {
            inKey = section->first == hive && equalsIgnoringCase(section->second, key);
            if (inKey && !sawKey) insertAt = i + 1;
            sawKey = sawKey || inKey;
            continue;
        }
        if (!inKey) continue;
        if (auto existing = valueNameOfLine(lines[i]); existing && equalsIgnoringCase(*existing, name)) {
            lines[i] = valueLine(*existing, value);  // the name keeps its spelling
            replaced = true;
        }
        if (!blank(lines[i]) && insertAt == i) insertAt = i + 1;
    }
    if (replaced) return;
    if (sawKey) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(insertAt), line);
        return;
    }
    if (!lines.empty() && !blank(lines.back())) lines.emplace_back();
    lines.push_back("[" + std::string(hiveText(hive)) + (key.empty() ? "" : "\\" + key) + "]");
    lines.push_back(line);
}

}  // namespace

bool writeString(Hive hive, std::string_view key, std::string_view valueName, std::string_view value) {
    const std::string path = storePath();
    if (path.empty()) return false;
    const std::filesystem::path file = pathFromAnsi(path);
    std::string bytes;
    {
        std::ifstream in(file, std::ios::binary);
        if (in) bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::vector<std::string> lines = bytes.empty() ? std::vector<std::string>{"Windows Registry Editor Version 5.00"}
                                                   : linesOf(decodeRegistryFile(bytes));
    setValueIn(lines, hive, normalizeKeyPath(key), valueName, value);
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    const std::string utf8 = utf16ToUtf8(widen(text));

    std::error_code ignored;
    std::filesystem::create_directories(file.parent_path(), ignored);
    return SUCCEEDED(replaceFile(file, [&](const std::filesystem::path& temporary) -> HRESULT {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(utf8.data(), static_cast<std::streamsize>(utf8.size()));
        out.flush();
        return out ? S_OK : E_FAIL;
    }));
}

}  // namespace nvdl::registry
