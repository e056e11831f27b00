// The server module's string resources and its own file name, the source of every failure message.
#pragma once

#include <string>

namespace nvdl {

enum StringResource : int {
    IDS_NO_PROPERTY_PUT = 1,      // " does not have property put."
    IDS_ALREADY_IN_COLLECTION = 2,  // " already exists in the collection."
    IDS_PARAMETER_NAME_BLANK = 3,   // "Parameter Name required (blank not allowed)."
    IDS_INVALID_VERSION = 4,        // "Invalid version number."
};

// The text of a string resource, cut to maxChars; empty for an unknown number.
std::string loadStringResource(int id, std::size_t maxChars = 100);
// The full path of the server module, at most 260 characters.
std::string moduleFileName();

}  // namespace nvdl
