// Registration of the server in the settings store under the classes root: every creatable class,
// every interface of the type library and the project file type, all from one table of rows. A host
// finds a class by its ProgID and the module that serves it, and an interface's name and library,
// through these keys.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nvdl/HResult.h"

namespace nvdl {

struct RegistrationRow {
    std::string key;        // under the classes root
    std::string valueName;  // "" for the key's default value
    std::string value;      // may hold "<MODULEPATH>" and "<MODULEFULLPATHNAME>"
};

// The rows of the classes (by ProgID), then of the interfaces (by name), then of the project file type.
std::vector<RegistrationRow> registrationRows();

// "<MODULEPATH>" in `value` replaced by the module's directory, "<MODULEFULLPATHNAME>" by its path.
std::string withModulePath(std::string_view value, std::string_view modulePath);

// Removes the keys of the rows, then writes every row for the module at `modulePath` (8-bit text),
// all in one replacement of the settings file. SELFREG_E_CLASS when the file cannot be written.
HRESULT registerServerAt(std::string_view modulePath);
// Removes the keys of the rows with their subkeys, in the reverse order of the rows.
HRESULT unregisterServer();

}  // namespace nvdl
