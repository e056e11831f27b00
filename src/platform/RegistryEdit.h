// The settings file as lines of text, edited in place: a value set, a value removed, a key removed
// with its subkeys. Lines that no edit touches keep their bytes; the file keeps its byte order mark,
// its line ends and whether its last line has one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace nvdl::registry {

class SettingsLines {
public:
    // The lines of a file's bytes (UTF-8, or UTF-16LE with its mark, which is written back as UTF-8).
    explicit SettingsLines(std::string_view fileBytes);
    // The bytes of the file with the edits made.
    std::string bytes() const;

    // Replaces every line of the value in the key's sections; with none, a line goes behind the last
    // value of the key's first section, or a new section goes at the end behind one blank line.
    void setValue(Hive hive, std::string_view key, std::string_view name, std::string_view value);
    // Removes every line of the value in the key's sections; the sections stay.
    void deleteValue(Hive hive, std::string_view key, std::string_view name);
    // Removes the sections of the key and of its subkeys, each as deleteSection does.
    void deleteKey(Hive hive, std::string_view key);

private:
    struct Line {
        std::string raw;   // as the file holds it (UTF-8), without the line end
        std::string text;  // in the system code page, for reading keys and names
    };
    static Line makeLine(std::string text);
    // Removes the section that starts at `header`: the header and the lines up to its last value
    // (blank and comment lines in front of the next section stay), and the blank line above it
    // when one is left behind anyway (below it, or at the end of the file).
    void deleteSection(std::size_t header);

    std::string bom_;
    std::string eol_ = "\n";
    bool lastLineEnded_ = true;
    std::vector<Line> lines_;
};

}  // namespace nvdl::registry
