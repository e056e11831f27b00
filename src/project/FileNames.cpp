#include "project/FileNames.h"

#include <cctype>
#include <cstdio>

#include "platform/Host.h"

namespace nvdl {

namespace {

constexpr std::string_view kWkdExtension = ".WKD";

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i]))) return false;
    return true;
}

bool canOpenForReading(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    std::fclose(file);
    return true;
}

}  // namespace

PathParts SplitPath(std::string_view path) {
    PathParts parts;
    if (path.size() >= 2 && path[1] == ':') {
        parts.drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    std::size_t lastSlash = path.find_last_of("\\/");
    if (lastSlash != std::string_view::npos) {
        parts.directory = path.substr(0, lastSlash + 1);
        path.remove_prefix(lastSlash + 1);
    }
    std::size_t lastDot = path.rfind('.');
    if (lastDot != std::string_view::npos) {
        parts.extension = path.substr(lastDot);
        path.remove_suffix(path.size() - lastDot);
    }
    parts.baseName = path;
    return parts;
}

bool IsWkdFileName(std::string_view name) { return equalIgnoringCase(SplitPath(name).extension, kWkdExtension); }

std::string MakeWkdFileName(std::string_view name) {
    PathParts parts = SplitPath(name);
    if (!equalIgnoringCase(parts.extension, kWkdExtension)) parts.extension = kWkdExtension;
    const std::string stem = parts.drive + parts.directory + parts.baseName;
    std::string candidate = stem + parts.extension;
    for (unsigned long number = 1; canOpenForReading(candidate); ++number)
        candidate = stem + std::to_string(number) + parts.extension;
    return candidate;
}

std::string SanitizeFileName(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        switch (c) {
            case '"':
            case '/':
            case ':':
            case '<':
            case '>':
            case '\\':
            case '|': c = ' '; break;
            default:
                if (static_cast<unsigned char>(c) < 32) c = ' ';
        }
    }
    return out;
}

bool PromptSaveAs(std::string_view oldName, std::string_view newName) {
    std::string text = "Do you want to save the changes you made in workspace : \n";
    text.append(oldName).append("\nto ").append(newName).append(" ?");
    return host::messageBox(text, "Save Workspace...", host::MB_YESNO | host::MB_ICONQUESTION) == host::IDYES;
}

}  // namespace nvdl
