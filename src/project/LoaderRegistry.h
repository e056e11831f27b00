// From a file to its class, and from a class to the loader that reads and writes such files, by
// look-ups in the settings store (platform/Registry.h), so that a loader is added by registration
// alone. The keys, all under the classes root unless said otherwise:
//   FileType\{class}\<n>         default value: a signature "offset,length,mask,pattern" (n from 0)
//   .<ext>                       default value: the ProgID of the class of files with that extension
//   <ProgID>\CLSID               default value: the class, "{...}"
//   CLSID\{class}\CLSIDLoader    default value: the loader of files of that class, "{...}" or a ProgID
//   CLSID\{class}\InprocServer32 default value: the shared library of a class of another module
// and under the current user, or when it has none the machine,
//   Software\norvane instruments\Sonvara\CurrentVersion\Settings\Loaders\<any>
//                                FILTER: file extensions ("*.abc;*.xyz"), LOADER: the loader's ProgID
#pragma once

#include <string>

#include "nvdl/IWorkspaceLoader.h"

namespace nvdl {

// The settings key whose subkeys name loaders by the extensions they read.
inline constexpr const char* kLoadersKey = "Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings\\Loaders";

// The class of a file; the first answer of this chain wins:
//   1. a compound file with a stored class: that class;
//   2. a signature of FileType that the file's bytes match: the signature's class;
//   3. the extension, ignoring case, among the keys of the classes root: its ProgID's class;
//   4. a FILTER under the Loaders key that contains the extension, ignoring case: its LOADER's class;
// and MK_E_INVALIDEXTENSION (with a null class) when none answered.
HRESULT FindLoaderForFile(const std::string& file, CLSID* cls);

// The class that files of `cls` are loaded as now: the first class of workspace files is read as
// the workspace file class of today (CLSID_CWorkspace); any other class stays as it is.
HRESULT GetNewClsidLoader(const CLSID& cls, CLSID* result);

// The CLSIDLoader text of the class; E_FAIL when the class names no loader.
HRESULT GetProgIDLoaderFromCLSID(const CLSID& cls, std::string& text);

// The class of a ProgID: this module's class table first, then <ProgID>\CLSID of the store.
// CO_E_CLASSSTRING when neither knows it.
HRESULT ClassFromProgId(const std::string& progId, CLSID* cls);

// A new loader for a CLSIDLoader text (a class in braces or a ProgID): a class of this module
// through its own class object, any other class through the library registered for it
// (project/LoaderPlugin.h); either way asked for IWorkspaceLoader.
HRESULT createWorkspaceLoader(const std::string& loaderText, IWorkspaceLoader** loader);

}  // namespace nvdl
