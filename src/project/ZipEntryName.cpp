#include "project/ZipEntryName.h"

#include "frame/TextChecks.h"

namespace nvdl {

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }
bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }
bool isAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

std::string checkZipEntryName(std::string_view name, ZipEntryPath& path) {
    path = ZipEntryPath{};
    // Looked for before trimming, which would take a trailing line break or tab away.
    for (char c : name)
        if (isControl(c)) return "control character in the name";
    const std::string text = trimmed(name);
    if (text.empty()) return {};
    if (isSeparator(text[0])) return "absolute path";
    if (text.size() >= 2 && isAsciiLetter(text[0]) && text[1] == ':') return "drive letter";

    std::size_t begin = 0;
    while (begin <= text.size()) {
        std::size_t end = begin;
        while (end < text.size() && !isSeparator(text[end])) ++end;
        const std::string_view part = std::string_view(text).substr(begin, end - begin);
        if (part == "..") return "\"..\" in the path";
        if (!part.empty() && part != ".") path.parts.emplace_back(part);
        begin = end + 1;
    }
    path.directory = isSeparator(text.back());
    return {};
}

std::string printableZipEntryName(std::string_view name) {
    std::string text(name);
    for (char& c : text)
        if (isControl(c)) c = '?';
    return text;
}

}  // namespace nvdl
