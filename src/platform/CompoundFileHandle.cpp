#include "platform/CompoundFileHandle.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/CompoundError.h"

namespace nvdl::cfb {

namespace {

HRESULT openError(int err) {
    switch (err) {
        case ENOENT: return STG_E_FILENOTFOUND;
        case EEXIST: return STG_E_FILEALREADYEXISTS;
        case EACCES:
        case EPERM:
        case EROFS: return STG_E_ACCESSDENIED;
        case ENOTDIR:
        case ENAMETOOLONG: return STG_E_PATHNOTFOUND;
        case EMFILE:
        case ENFILE: return STG_E_TOOMANYOPENFILES;
        default: return STG_E_UNKNOWN;
    }
}

// Positioned transfers are split so that each call stays within what one system call may move.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;

}  // namespace

FileHandle::FileHandle(const std::filesystem::path& path, Mode mode) {
    int flags = O_CLOEXEC;
    switch (mode) {
        case Mode::Read: flags |= O_RDONLY; break;
        case Mode::ReadWrite: flags |= O_RDWR; break;
        case Mode::Create: flags |= O_RDWR | O_CREAT | O_TRUNC; break;
        case Mode::CreateNew: flags |= O_RDWR | O_CREAT | O_EXCL; break;
    }
    m_fd = ::open(path.c_str(), flags, 0666);
    if (m_fd < 0) fail(openError(errno));
    struct stat st;
    if (::fstat(m_fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(m_fd);
        fail(STG_E_FILEALREADYEXISTS);  // a directory or device is not a compound file
    }
}

FileHandle::~FileHandle() {
    if (m_fd >= 0) ::close(m_fd);
}

std::uint64_t FileHandle::size() const {
    struct stat st;
    if (::fstat(m_fd, &st) != 0) fail(STG_E_READFAULT);
    return static_cast<std::uint64_t>(st.st_size);
}

void FileHandle::readAt(std::uint64_t offset, void* buffer, std::size_t length) const {
    auto* out = static_cast<std::uint8_t*>(buffer);
    while (length > 0) {
        if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) fail(STG_E_SEEKERROR);
        ssize_t n = ::pread(m_fd, out, std::min(length, kMaxTransfer), static_cast<off_t>(offset));
        if (n < 0) {
            if (errno == EINTR) continue;
            fail(STG_E_READFAULT);
        }
        if (n == 0) {
            std::memset(out, 0, length);
            return;
        }
        out += n;
        offset += static_cast<std::uint64_t>(n);
        length -= static_cast<std::size_t>(n);
    }
}

void FileHandle::writeAt(std::uint64_t offset, const void* buffer, std::size_t length) {
    const auto* in = static_cast<const std::uint8_t*>(buffer);
    while (length > 0) {
        if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) fail(STG_E_SEEKERROR);
        ssize_t n = ::pwrite(m_fd, in, std::min(length, kMaxTransfer), static_cast<off_t>(offset));
        if (n < 0) {
            if (errno == EINTR) continue;
            fail(errno == ENOSPC || errno == EFBIG || errno == EDQUOT ? STG_E_MEDIUMFULL : STG_E_WRITEFAULT);
        }
        in += n;
        offset += static_cast<std::uint64_t>(n);
        length -= static_cast<std::size_t>(n);
    }
}

void FileHandle::truncate(std::uint64_t size) {
    if (::ftruncate(m_fd, static_cast<off_t>(size)) != 0)
        fail(errno == ENOSPC || errno == EFBIG ? STG_E_MEDIUMFULL : STG_E_WRITEFAULT);
}

}  // namespace nvdl::cfb
