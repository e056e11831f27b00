#include "project/ZipBundle.h"

#include <fcntl.h>
#include <minizip/unzip.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <set>
#include <system_error>
#include <utility>

#include "frame/TextChecks.h"
#include "platform/CodePage.h"
#include "project/ZipEntryCopy.h"
#include "project/ZipEntryName.h"

namespace nvdl {

namespace {

constexpr unsigned long kFlagEncrypted = 1u << 0;
constexpr unsigned long kFlagUtf8Name = 1u << 11;

struct Entry {
    std::string name;      // 8-bit, as the archive has it
    ZipEntryPath path;
    std::string relative;  // the parts joined by '/'
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
    int method = 0;
};

class Archive {
public:
    explicit Archive(unzFile file) : m_file(file) {}
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    ~Archive() {
        if (m_file) unzClose(m_file);
    }
    unzFile get() const { return m_file; }

private:
    unzFile m_file;
};

class Descriptor {
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~Descriptor() {
        if (m_fd >= 0) ::close(m_fd);
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

std::string refused(const std::string& name, const std::string& reason) {
    return "Zip entry \"" + printableZipEntryName(name) + "\" refused: " + reason + ".";
}
std::string damaged(const std::string& name, const std::string& reason) {
    return "Zip entry \"" + printableZipEntryName(name) + "\" is damaged: " + reason + ".";
}
std::string systemFailure(const std::string& name) {
    return "Zip entry \"" + printableZipEntryName(name) + "\" could not be extracted: " + std::strerror(errno) + ".";
}

// Moves to entry `index` when walking the archive from its first entry.
bool moveTo(unzFile zip, std::uint64_t index) {
    return (index == 0 ? unzGoToFirstFile(zip) : unzGoToNextFile(zip)) == UNZ_OK;
}

// The directory the extraction directory is made in, as the file system names it and as 8-bit text;
// /tmp when $TMPDIR is unset or has characters the code page cannot hold.
struct TemporaryBase {
    std::string native, ansi;
};
TemporaryBase temporaryBase() {
    const char* variable = std::getenv("TMPDIR");
    std::string native = variable && *variable ? variable : "/tmp";
    while (native.size() > 1 && native.back() == '/') native.pop_back();
    std::string ansi = narrow(utf8ToUtf16(native));
    if (pathFromAnsi(ansi).string() != native) return {"/tmp", "/tmp"};
    return {native, ansi};
}

std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b) {
    return b > std::numeric_limits<std::uint64_t>::max() - a ? std::numeric_limits<std::uint64_t>::max() : a + b;
}

// Reads the whole list of entries and refuses the archive for any name, count or size that is not
// allowed, before anything is written.
HRESULT scanArchive(unzFile zip, const ZipLimits& limits, const TemporaryBase& base, std::vector<Entry>& entries,
                    std::string& message) {
    unz_global_info64 global{};
    if (unzGetGlobalInfo64(zip, &global) != UNZ_OK || global.number_entry == 0) return E_FAIL;
    if (global.number_entry > limits.maxEntries) {
        message = "Zip archive refused: " + std::to_string(global.number_entry) + " entries, more than the limit of " +
                  std::to_string(limits.maxEntries) + ".";
        return E_FAIL;
    }
    std::vector<char> nameBuffer(0x10000);  // the name's length is a 16-bit field
    std::set<std::string> files, folders;
    std::uint64_t total = 0;
    for (std::uint64_t i = 0; i < global.number_entry; ++i) {
        unz_file_info64 info{};
        if (!moveTo(zip, i) || unzGetCurrentFileInfo64(zip, &info, nameBuffer.data(), nameBuffer.size(), nullptr, 0,
                                                       nullptr, 0) != UNZ_OK) {
            message = "Zip archive damaged: its list of entries cannot be read.";
            return E_FAIL;
        }
        Entry& entry = entries.emplace_back();
        const std::string_view raw(nameBuffer.data(), info.size_filename);
        entry.name = info.flag & kFlagUtf8Name ? narrow(utf8ToUtf16(raw)) : std::string(raw);
        if (std::string reason = checkZipEntryName(entry.name, entry.path); !reason.empty()) {
            message = refused(entry.name, reason);
            return E_FAIL;
        }
        const std::vector<std::string>& parts = entry.path.parts;
        for (std::size_t k = 0; k < parts.size(); ++k) {
            if (k > 0) entry.relative += '/';
            entry.relative += parts[k];
            if (k + 1 < parts.size() || entry.path.directory) folders.insert(entry.relative);
        }
        if (parts.empty() || entry.path.directory) continue;
        entry.size = info.uncompressed_size;
        entry.crc = static_cast<std::uint32_t>(info.crc);
        entry.method = static_cast<int>(info.compression_method);
        std::string reason;
        if (info.flag & kFlagEncrypted) reason = "encrypted";
        else if (entry.method != 0 && entry.method != Z_DEFLATED)
            reason = "compression method " + std::to_string(entry.method) + " is not supported";
        else if (!files.insert(entry.relative).second) reason = "a second entry of the same name";
        if (!reason.empty()) {
            message = refused(entry.name, reason);
            return E_FAIL;
        }
        total = saturatingAdd(total, entry.size);
    }
    for (const Entry& entry : entries) {
        if (!entry.path.directory && folders.count(entry.relative)) {
            message = refused(entry.name, "a file where another entry needs a folder");
            return E_FAIL;
        }
    }
    if (total > limits.maxTotalBytes) {
        message = "Zip archive refused: its entries unpack to " + std::to_string(total) + " bytes, more than the limit of " +
                  std::to_string(limits.maxTotalBytes) + " bytes (zip bomb).";
        return E_FAIL;
    }
    struct statvfs space {};
    if (::statvfs(base.native.c_str(), &space) != 0) {
        message = "Zip archive not extracted: the temporary folder \"" + base.ansi + "\" cannot be used: " +
                  std::strerror(errno) + ".";
        return E_FAIL;
    }
    const std::uint64_t available = static_cast<std::uint64_t>(space.f_bavail) * space.f_frsize;
    if (total > available) {
        message = "Zip archive refused: its entries unpack to " + std::to_string(total) + " bytes, more than the " +
                  std::to_string(available) + " bytes free in the temporary folder \"" + base.ansi + "\".";
        return E_FAIL;
    }
    return S_OK;
}

// Makes the entry's folders under `root` and the entry's file in the last of them, never following a
// symbolic link and never opening an existing file; answers a message on failure.
std::string writeEntry(unzFile zip, int root, const Entry& entry) {
    const std::vector<std::string>& parts = entry.path.parts;
    const std::size_t folderCount = entry.path.directory ? parts.size() : parts.size() - 1;
    Descriptor folder;
    int current = root;
    for (std::size_t k = 0; k < folderCount; ++k) {
        const std::string native = pathFromAnsi(parts[k]).string();
        if (::mkdirat(current, native.c_str(), 0700) != 0 && errno != EEXIST) return systemFailure(entry.name);
        Descriptor next(::openat(current, native.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (next.get() < 0) return systemFailure(entry.name);
        folder = std::move(next);
        current = folder.get();
    }
    if (entry.path.directory) return {};
    const std::string native = pathFromAnsi(parts.back()).string();
    Descriptor file(::openat(current, native.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file.get() < 0) return systemFailure(entry.name);
    if (unzOpenCurrentFile2(zip, nullptr, nullptr, 1) != UNZ_OK) return damaged(entry.name, "its header cannot be read");
    const ZipCopyResult result = copyZipEntry(zip, entry.method, entry.size, entry.crc, file.get());
    const int copyErrno = errno;
    unzCloseCurrentFile(zip);
    if (result == ZipCopyResult::Ok) return {};
    if (result == ZipCopyResult::TooLarge) return refused(entry.name, "it unpacks to more than its declared size (zip bomb)");
    if (result == ZipCopyResult::Damaged) return damaged(entry.name, "its data is cut off or unreadable");
    if (result == ZipCopyResult::CrcError) return damaged(entry.name, "CRC error");
    errno = copyErrno;
    return systemFailure(entry.name);
}

}  // namespace

ExtractedBundle::ExtractedBundle(ExtractedBundle&& other) noexcept
    : m_directory(std::exchange(other.m_directory, {})), m_files(std::exchange(other.m_files, {})) {}

ExtractedBundle& ExtractedBundle::operator=(ExtractedBundle&& other) noexcept {
    if (this != &other) {
        removeAll();
        m_directory = std::exchange(other.m_directory, {});
        m_files = std::exchange(other.m_files, {});
    }
    return *this;
}

ExtractedBundle::~ExtractedBundle() { removeAll(); }

void ExtractedBundle::removeAll() {
    if (!m_directory.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(pathFromAnsi(m_directory), ignored);  // does not follow links
    }
    m_directory.clear();
    m_files.clear();
}

HRESULT ExtractedBundle::extract(const std::string& zipFile, const ZipLimits& limits, ExtractedBundle& out,
                                 std::string& message) {
    message.clear();
    const std::string name = trimmed(zipFile);
    if (name.empty()) return E_FAIL;
    Archive zip(unzOpen64(pathFromAnsi(name).c_str()));
    if (!zip.get()) return E_FAIL;
    const TemporaryBase base = temporaryBase();
    std::vector<Entry> entries;
    if (HRESULT h = scanArchive(zip.get(), limits, base, entries, message); FAILED(h)) return h;

    ExtractedBundle bundle;
    std::string native = base.native + "/nvdl-zip-XXXXXX";
    if (!::mkdtemp(native.data())) {
        message = "Zip archive not extracted: no folder can be made in \"" + base.ansi + "\": " + std::strerror(errno) + ".";
        return E_FAIL;
    }
    bundle.m_directory = base.ansi + native.substr(base.native.size());
    const Descriptor root(::open(native.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (root.get() < 0) {
        message = "Zip archive not extracted: \"" + bundle.m_directory + "\" cannot be opened: " + std::strerror(errno) + ".";
        return E_FAIL;
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = entries[i];
        if (!moveTo(zip.get(), i)) {
            message = damaged(entry.name, "it cannot be found again");
            return E_FAIL;
        }
        if (entry.path.parts.empty()) continue;
        if (std::string failure = writeEntry(zip.get(), root.get(), entry); !failure.empty()) {
            message = failure;
            return E_FAIL;
        }
        if (!entry.path.directory) bundle.m_files.push_back(bundle.m_directory + "/" + entry.relative);
    }
    out = std::move(bundle);
    return S_OK;
}

}  // namespace nvdl
