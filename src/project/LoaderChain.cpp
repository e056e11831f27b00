// FindLoaderForFile: the chain of look-ups from a file to its class.
#include <fstream>
#include <optional>

#include "nvdl/Storage.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/Registry.h"
#include "platform/RegistryTree.h"
#include "project/FileNames.h"
#include "project/FileSignature.h"
#include "project/LoaderRegistry.h"

namespace nvdl {

namespace {

using registry::Hive;

// A FILTER is read into a buffer of this many bytes, its terminating zero included.
constexpr std::size_t kFilterBufferBytes = 300;

std::string upperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

// The class a compound file stores; a file that is not one, or stores no class, gives nothing.
std::optional<CLSID> storedClass(const std::filesystem::path& path) {
    if (isCompoundFile(path) != S_OK) return std::nullopt;
    ComPtr<IStorage> root;
    if (FAILED(openCompoundFile(path, STGM_READ | STGM_SHARE_EXCLUSIVE, root.out()))) return std::nullopt;
    STATSTG stat;
    if (FAILED(root->Stat(&stat, STATFLAG_NONAME)) || stat.clsid == CLSID_NULL) return std::nullopt;
    return stat.clsid;
}

// The first class under FileType with a signature that the file's bytes match. Each class key
// holds its signatures in the subkeys "0", "1", ... up to the first missing one.
std::optional<CLSID> classBySignature(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    for (const std::string& name : registry::subKeys(Hive::ClassesRoot, "FileType")) {
        const std::optional<GUID> cls = parseGuid(name);
        if (!cls) continue;
        for (long n = 0;; ++n) {
            const std::string key = "FileType\\" + name + "\\" + std::to_string(n);
            if (!registry::keyExists(Hive::ClassesRoot, key)) break;
            const std::optional<std::string> text = registry::readString(Hive::ClassesRoot, key, "");
            const std::optional<FileSignature> signature = text ? ParseFileSignature(*text) : std::nullopt;
            if (signature && MatchFileSignature(file, *signature)) return cls;
        }
    }
    return std::nullopt;
}

// The class of the ProgID that the extension's key of the classes root names.
std::optional<CLSID> classByExtension(const std::string& extension) {
    // Keys come sorted, so the dot keys are one run.
    for (const std::string& name : registry::subKeys(Hive::ClassesRoot, "")) {
        if (name.empty() || name.front() < '.') continue;
        if (name.front() > '.') break;
        if (!registry::equalsIgnoringCase(name, extension)) continue;
        const std::optional<std::string> progId = registry::readString(Hive::ClassesRoot, name, "");
        CLSID cls;
        if (progId && SUCCEEDED(ClassFromProgId(*progId, &cls))) return cls;
        return std::nullopt;
    }
    return std::nullopt;
}

// The class of the LOADER of the first key under Loaders whose FILTER contains the extension.
// Filters of the current user replace those of the machine.
std::optional<CLSID> classByFilter(const std::string& extension) {
    const Hive hive = registry::keyExists(Hive::CurrentUser, kLoadersKey) ? Hive::CurrentUser : Hive::LocalMachine;
    const std::string wanted = upperCase(extension);
    for (const std::string& name : registry::subKeys(hive, kLoadersKey)) {
        const std::string key = std::string(kLoadersKey) + "\\" + name;
        const std::optional<std::string> filter = registry::readString(hive, key, "FILTER");
        if (!filter) continue;
        const std::string text = upperCase(std::string_view(*filter).substr(0, kFilterBufferBytes - 1));
        if (text.find(wanted) == std::string::npos) continue;
        const std::optional<std::string> progId = registry::readString(hive, key, "LOADER");
        CLSID cls;
        if (progId && SUCCEEDED(ClassFromProgId(*progId, &cls))) return cls;
    }
    return std::nullopt;
}

}  // namespace

HRESULT FindLoaderForFile(const std::string& file, CLSID* cls) {
    if (!cls) return E_POINTER;
    *cls = CLSID_NULL;
    const std::filesystem::path path = pathFromAnsi(file);
    std::optional<CLSID> found = storedClass(path);
    if (!found) found = classBySignature(path);
    // A name without an extension would be found in every filter; it has none to look up.
    const std::string extension = SplitPath(file).extension;
    if (!found && extension.size() > 1) found = classByExtension(extension);
    if (!found && extension.size() > 1) found = classByFilter(extension);
    if (!found) return MK_E_INVALIDEXTENSION;
    *cls = *found;
    return S_OK;
}

}  // namespace nvdl
