// Small helpers for the file names of workspace export: the ".WKD" extension, free names beside
// existing files, names made from client texts, and asking the user before saving under a new name.
#pragma once

#include <string>
#include <string_view>

namespace nvdl {

// A path taken apart as the platform does it: "C:" drive, directory up to and including its last
// "\" or "/", base name, and extension from the last dot of the final part, dot included.
struct PathParts {
    std::string drive, directory, baseName, extension;
};
PathParts SplitPath(std::string_view path);

// True when the extension of the name is ".WKD", ignoring case.
bool IsWkdFileName(std::string_view name);

// The name with the extension ".WKD" (a ".wkd" of any case is kept, another extension replaced).
// When a file of that name can be opened for reading, a number from 1 upwards goes between base
// name and extension ("run.WKD", "run1.WKD", "run2.WKD") until the name is free.
std::string MakeWkdFileName(std::string_view name);

// Every character a file name cannot hold (" / : < > \ | and the control characters below 32) is
// replaced by a blank; nothing else changes, the caller trims.
std::string SanitizeFileName(std::string_view text);

// Asks the user through the host whether the workspace `oldName` may be saved as `newName`; true
// for Yes. A host without a window answers Yes.
bool PromptSaveAs(std::string_view oldName, std::string_view newName);

}  // namespace nvdl
