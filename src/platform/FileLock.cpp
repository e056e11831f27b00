#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <set>
#include <tuple>

namespace nvdl {

namespace {

// The bytes from 0 to the file's present size.
bool wholeFile(int fd, short type, struct flock& range) {
    struct stat st{};
    if (::fstat(fd, &st) != 0) return false;
    range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = 0;
    range.l_len = st.st_size;
    // An empty file has no bytes to lock; a length of zero would mean "to the end and beyond".
    return st.st_size > 0;
}

int setLock(int fd, int command, struct flock& range) {
    int result;
    do result = ::fcntl(fd, command, &range);
    while (result != 0 && errno == EINTR);
    return result;
}

// The files that locks of this process hold, by device and inode, with the process: a child made
// by fork holds none of its parent's. A lock of this process on a file that another lock of this
// process holds would wait for itself: it is tried without waiting.
std::mutex g_heldMutex;
std::multiset<std::tuple<pid_t, dev_t, ino_t>> g_held;

std::tuple<pid_t, dev_t, ino_t> identityOf(int fd) {
    struct stat st{};
    ::fstat(fd, &st);
    return {::getpid(), st.st_dev, st.st_ino};
}

}  // namespace

bool FileLock::acquire(const std::filesystem::path& file) {
    release();
    short type = F_WRLCK;
    int fd = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        // A file this process may only read can still be held; others then see a shared lock.
        fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        type = F_RDLCK;
    }
    if (fd < 0) return false;
    m_fd = fd;
    bool heldHere;
    {
        std::lock_guard guard(g_heldMutex);
        const auto identity = identityOf(m_fd);
        heldHere = g_held.count(identity) > 0;
        g_held.insert(identity);
    }
    struct flock range;
    if (wholeFile(m_fd, type, range)) setLock(m_fd, heldHere ? F_OFD_SETLK : F_OFD_SETLKW, range);
    return true;
}

void FileLock::release() {
    if (m_fd < 0) return;
    struct flock range;
    if (wholeFile(m_fd, F_UNLCK, range)) setLock(m_fd, F_OFD_SETLK, range);
    {
        std::lock_guard guard(g_heldMutex);
        if (auto found = g_held.find(identityOf(m_fd)); found != g_held.end()) g_held.erase(found);
    }
    ::close(m_fd);
    m_fd = -1;
}

bool FileLock::lockedByOther(const std::filesystem::path& file) {
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    struct flock probe{};
    probe.l_type = F_WRLCK;
    probe.l_whence = SEEK_SET;
    probe.l_start = 0;
    probe.l_len = 1;
    const bool locked = ::fcntl(fd, F_OFD_GETLK, &probe) == 0 && probe.l_type != F_UNLCK;
    ::close(fd);
    return locked;
}

}  // namespace nvdl
