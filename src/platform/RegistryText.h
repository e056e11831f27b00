// Reading the settings file: the text of a registry export into a RegistryTree.
#pragma once

#include <string_view>

#include "platform/RegistryTree.h"

namespace nvdl::registry {

// Adds the keys and values of `fileBytes` to `tree`. The bytes are UTF-8 (a byte order mark is
// skipped; a UTF-16LE file with its mark is read too) and are kept as text in the system code page.
// Understood: "[HIVE\Key]" sections with HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_CLASSES_ROOT
// or HKCU, HKLM, HKCR; "\"Name\"=\"value\"" and "@=\"value\"" lines with \\ and \" escapes;
// ';' comments, blank lines and the export header line. A line that cannot be read is skipped
// with a trace line naming its number.
void parseRegistryText(std::string_view fileBytes, RegistryTree& tree);

}  // namespace nvdl::registry
