// A project that arrives as a zip archive bundling a project file with recordings: the archive is
// unpacked into a private temporary folder, the project file is read, and the recordings take the
// place of its workspaces. Every unpacked file is gone when the call returns.
#include "frame/TextChecks.h"
#include "frame/TextCompare.h"
#include "platform/CodePage.h"
#include "project/FileNames.h"
#include "project/Project.h"
#include "project/ZipBundle.h"

namespace nvdl {

namespace {

bool hasExtension(const std::string& path, const char* extension) {
    return equalsIgnoringCase(widen(SplitPath(path).extension), widen(extension));
}

}  // namespace

HRESULT CProject::LoadProjectZipVersion(const std::string& file, bool& archive) {
    archive = false;
    const std::string name = trimmed(file);
    if (name.empty()) return E_FAIL;
    ExtractedBundle bundle;
    std::string message;
    if (FAILED(ExtractedBundle::extract(name, zipLimitsFromSettings(), bundle, message))) {
        // Not an archive at all carries no message: the caller tries the file as a project file.
        archive = !message.empty();
        if (archive) RaiseExecption(message, name);
        return E_FAIL;
    }
    archive = true;
    bool projectFile = false;
    for (const std::string& path : bundle.files()) {
        if (!hasExtension(path, ".VPJ")) continue;
        if (HRESULT h = LoadProject(path); FAILED(h)) return h;
        projectFile = true;
    }
    if (!projectFile) {
        RaiseExecption("The archive holds no project file.", name);
        return E_FAIL;
    }
    // The project file read from the archive is deleted with it: the lock goes to the archive.
    Close();
    LockUnLockFile(name);
    m_workspaces.Clear();
    for (const std::string& path : bundle.files())
        if (hasExtension(path, ".TRC") && AppendTRC(path) != 1) return E_FAIL;
    return S_OK;
}

}  // namespace nvdl
