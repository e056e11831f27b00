#include "recording/TrcFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "platform/CodePage.h"
#include "platform/Host.h"

namespace nvdl::trc {

namespace {

constexpr unsigned long kConvertedLength = 799;  // local buffer of 800 characters
constexpr std::int64_t kDummyChunk = 1'024'000LL * 100;

// The largest block one Read or Write moves: the format never moves 4 GiB or more at once.
constexpr std::int64_t kMaxBlock = std::numeric_limits<std::uint32_t>::max();

void showSystemError(const char* caption, int error) {
    host::messageBox(std::strerror(error), caption, host::MB_OK | host::MB_ICONINFORMATION);
}

// Bytes from `offset` until `size` came or the file gives no more; how many came.
std::int64_t readFrom(int fd, std::int64_t offset, unsigned char* buffer, std::int64_t size) {
    std::int64_t done = 0;
    while (done < size) {
        const ssize_t n = ::pread(fd, buffer + done, static_cast<std::size_t>(size - done), offset + done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += n;
    }
    return done;
}

}  // namespace

int CTrcFile::Init() {
    m_name[0] = 0;
    m_fd = -1;
    m_readOnly = 0;
    m_position = 0;
    return 1;
}

// Linux has no short names: the name stays as it is, limited to the target's length.
int CTrcFile::ConvertLongFilenameToShortFilename(const char* source, char* target, unsigned long targetLength) {
    if (!source || !*source || !target || targetLength == 0) return 0;
    const std::size_t n = std::min<std::size_t>(std::strlen(source), targetLength);
    std::memcpy(target, source, n);
    target[n] = 0;
    return 1;
}

int CTrcFile::openAs(const char* name, Access access) {
    if (!name || !*name) return 0;
    char converted[kConvertedLength + 1];
    if (!ConvertLongFilenameToShortFilename(name, converted, kConvertedLength) || !converted[0]) return 0;
    if (access == Access::ReadWrite) {
        // ReOpen may be given the object's own name: only the descriptor goes.
        if (m_fd >= 0) ::close(m_fd);
        m_fd = -1;
    } else {
        Close();
    }
    const int flags = access == Access::Create     ? O_RDWR | O_CREAT | O_TRUNC
                      : access == Access::ReadOnly ? O_RDONLY
                                                   : O_RDWR;
    const std::string path = pathFromAnsi(converted).string();
    int fd;
    do fd = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) return 0;
    m_fd = fd;
    m_position = 0;
    std::strncpy(m_name, converted, kNameSize - 1);
    m_name[kNameSize - 1] = 0;
    m_readOnly = access == Access::ReadOnly ? 1 : 0;
    return 1;
}

int CTrcFile::Create(const char* name, long /*version*/) { return openAs(name, Access::Create); }
int CTrcFile::Open(const char* name) { return openAs(name, Access::ReadOnly); }
int CTrcFile::ReOpen(const char* name) { return openAs(name, Access::ReadWrite); }

int CTrcFile::Close() {
    if (m_fd >= 0) ::close(m_fd);
    return Init();
}

int CTrcFile::Seek(std::int64_t distance, int method) {
    if (!IsOpened()) return 0;
    std::int64_t target;
    switch (method) {
    case 0: target = distance; break;
    case 1:
        if (distance == 0) return 1;
        if (__builtin_add_overflow(m_position, distance, &target)) return 0;
        break;
    case 2: {
        const std::int64_t size = GetFileSize();
        if (size < 0 || __builtin_add_overflow(size, distance, &target)) return 0;
        break;
    }
    default: return 0;
    }
    if (target < 0) return 0;
    m_position = target;
    return 1;
}

int CTrcFile::MoveTo(std::int64_t position) { return Seek(position, 0); }

int CTrcFile::Write(const unsigned char* buffer, std::int64_t size) {
    if (!IsOpened() || m_readOnly || !buffer || size <= 0 || size > kMaxBlock) return 0;
    std::int64_t done = 0;
    while (done < size) {
        const ssize_t n = ::pwrite(m_fd, buffer + done, static_cast<std::size_t>(size - done), m_position + done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n < 0) showSystemError("Error", errno);
            m_position += done;
            return 0;
        }
        done += n;
    }
    m_position += done;
    return 1;
}

int CTrcFile::Read(unsigned char* buffer, std::int64_t size) {
    if (!IsOpened() || !buffer || size <= 0 || size > kMaxBlock) return 0;
    const std::int64_t done = readFrom(m_fd, m_position, buffer, size);
    m_position += done;
    return done == size ? 1 : 0;
}

int CTrcFile::ReadAt(std::int64_t offset, unsigned char* buffer, std::int64_t size) const {
    if (!IsOpened() || !buffer || size <= 0 || size > kMaxBlock || offset < 0) return 0;
    return readFrom(m_fd, offset, buffer, size) == size ? 1 : 0;
}

long CTrcFile::GetFileVersion() {
    std::int32_t version = -1;
    if (IsOpened() && Seek(0, 0)) {
        unsigned char bytes[4];
        if (Read(bytes, 4))
            version = static_cast<std::int32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16 |
                                                static_cast<std::uint32_t>(bytes[3]) << 24);
    }
    Seek(0, 0);
    return version;
}

std::int64_t CTrcFile::GetFileSize() const {
    struct stat st;
    if (!IsOpened() || ::fstat(m_fd, &st) != 0) return -1;
    return st.st_size;
}

// The file is only ever made longer. Extending it with ftruncate commits the new size at once,
// so no close and reopen is needed to make it stick; the position stays where it was.
int CTrcFile::SetFileSize(std::int64_t size) {
    if (!IsOpened() || m_readOnly) return 1;
    if (GetFileSize() > size) return 1;
    if (size < 0) {
        showSystemError("<SetFilePointerEx - Error>", EINVAL);
        return 0;
    }
    if (::ftruncate(m_fd, size) != 0) {
        showSystemError("<SetEndOfFile - Error>", errno);
        return 0;
    }
    return 1;
}

int CTrcFile::WriteDummyData(std::int64_t size) {
    if (size <= 0) return 0;
    const std::int64_t chunk = std::min(size, kDummyChunk);
    std::unique_ptr<unsigned char[]> zeros(new (std::nothrow) unsigned char[chunk]());
    if (!zeros) return 0;
    for (std::int64_t written = 0; written < size;) {
        const std::int64_t n = std::min(chunk, size - written);
        if (!Write(zeros.get(), n)) return 0;
        written += n;
    }
    return 1;
}

}  // namespace nvdl::trc
