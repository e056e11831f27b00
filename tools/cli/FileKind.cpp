#include "cli/FileKind.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "nvdl/Identifiers.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

namespace nvdl::tool {

namespace {

constexpr unsigned char kCompoundSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr unsigned char kZipSignature[4] = {'P', 'K', 0x03, 0x04};

}  // namespace

FileKind kindOfFile(const std::string& path, std::string& reason) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        reason = std::strerror(EISDIR);
        return FileKind::Unreadable;
    }
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        reason = std::strerror(errno);
        return FileKind::Unreadable;
    }
    unsigned char head[8] = {};
    const std::size_t got = std::fread(head, 1, sizeof head, f);
    const bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed) {
        reason = std::strerror(EIO);
        return FileKind::Unreadable;
    }
    if (got >= sizeof kZipSignature && std::equal(kZipSignature, kZipSignature + 4, head)) return FileKind::Bundle;
    if (got < sizeof kCompoundSignature || !std::equal(head, head + 8, kCompoundSignature)) return FileKind::Other;

    ComPtr<IStorage> root;
    STATSTG stat{};
    if (FAILED(openCompoundFile(path, STGM_READ | STGM_SHARE_DENY_WRITE, root.out())) ||
        FAILED(root->Stat(&stat, STATFLAG_NONAME)))
        return FileKind::OtherCompound;
    if (stat.clsid == CLSID_CProject) return FileKind::Project;
    if (stat.clsid == CLSID_CWorkspace) return FileKind::Workspace;
    return FileKind::OtherCompound;
}

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

}  // namespace nvdl::tool
