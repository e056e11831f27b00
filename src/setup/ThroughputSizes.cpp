// CThroughput: the room a recording needs and the room free on a disk, as text for the dialogs.
//
// The disk of a path on this platform: the location asked is the path's directory part (the text up
// to its last slash, "/" for a name just under the root); a path without a directory part is taken
// as given, a name in the current directory, and an empty path is the current directory. That
// location must exist: a path that leads to nothing on disk is refused like a path without a drive.
#include <sys/statvfs.h>

#include <cstdio>
#include <string>

#include "access/TrcLoader.h"
#include "nvdl/Bstr.h"
#include "platform/CodePage.h"
#include "platform/FileSizeText.h"
#include "setup/Throughput.h"

namespace nvdl {

namespace {

// The scratch file that the estimate arms and never writes; it is removed in any case.
constexpr const char* kScratchName = "dummy.trc";

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string diskLocation(const std::string& path) {
    if (path.empty()) return ".";
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return path;
    return slash == 0 ? "/" : trimmed(path.substr(0, slash));
}

}  // namespace

int CThroughput::CheckFreeSpace(const char* path, std::uint64_t* freeToCaller, std::uint64_t* total,
                                std::uint64_t* free) {
    if (!path || !*path) return 0;
    struct statvfs disk{};
    if (statvfs(pathFromAnsi(path).c_str(), &disk) != 0) return 0;
    const std::uint64_t unit = disk.f_frsize ? disk.f_frsize : disk.f_bsize;
    if (freeToCaller) *freeToCaller = disk.f_bavail * unit;
    if (total) *total = disk.f_blocks * unit;
    if (free) *free = disk.f_bfree * unit;
    return 1;
}

HRESULT CThroughput::EstimatedFileSize(ISetup* setup, LONG count, BSTR* text) {
    if (!text) return E_POINTER;
    *text = nullptr;
    if (!setup) return E_POINTER;
    if (count <= 0) return E_FAIL;
    HRESULT h = E_FAIL;
    {
        // Armed only: the sections are filled and measured, nothing is created on disk.
        access::CTrcLoader local;
        if (local.PrepareNew(kScratchName) && local.ApplySetup(setup, 0)) {
            const auto size = static_cast<std::uint64_t>(local.GetSectionSize()) * static_cast<std::uint64_t>(count);
            *text = allocBstrFromAnsi(fileSizeText(size));
            h = S_OK;
        }
    }
    std::remove(kScratchName);
    return h;
}

HRESULT CThroughput::FreeDiskSize(BSTR path, BSTR* text) {
    if (!text) return E_POINTER;
    *text = nullptr;
    const std::string location = diskLocation(trimmed(bstrToAnsi(path)));
    std::uint64_t freeToCaller = 0;
    if (!CheckFreeSpace(location.c_str(), &freeToCaller, nullptr, nullptr)) return E_FAIL;
    *text = allocBstrFromAnsi(fileSizeText(freeToCaller));
    return S_OK;
}

}  // namespace nvdl
