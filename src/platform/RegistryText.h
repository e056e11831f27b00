// Reading the settings file: the text of a registry export into a RegistryTree.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/RegistryTree.h"

namespace nvdl::registry {

// Adds the keys and values of `fileBytes` to `tree`. The bytes are UTF-8 (a byte order mark is
// skipped; a UTF-16LE file with its mark is read too) and are kept as text in the system code page.
// Understood: "[HIVE\Key]" sections with HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_CLASSES_ROOT
// or HKCU, HKLM, HKCR; "\"Name\"=\"value\"" and "@=\"value\"" lines with \\ and \" escapes;
// ';' comments, blank lines and the export header line. A line that cannot be read is skipped
// with a trace line naming its number.
void parseRegistryText(std::string_view fileBytes, RegistryTree& tree);

// The text of a settings file in the system code page.
std::string decodeRegistryFile(std::string_view fileBytes);
// The hive of a name: the long names and their short forms, in any case.
std::optional<Hive> hiveByName(std::string_view name);
// A "[HIVE\\Key]" line: its hive and normalised key path; nothing for any other line.
std::optional<std::pair<Hive, std::string>> sectionOfLine(std::string_view line);
// A string value line: its value name ("" for the default value "@"); nothing for any other line.
std::optional<std::string> valueNameOfLine(std::string_view line);

}  // namespace nvdl::registry
