#include "platform/FileChangeWatch.h"

#include <linux/magic.h>
#include <pthread.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

namespace nvdl {

namespace {

// A directory on the path: its entry of the path created, deleted, renamed away or onto, written
// or given other attributes; the directory itself deleted, moved or given other permissions.
constexpr std::uint32_t kDirectoryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY |
                                           IN_ATTRIB | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;
// The file: written (through any of its names), given other attributes, time stamps or link
// count, deleted or moved.
constexpr std::uint32_t kFileEvents = IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;

// Symbolic links followed on one path before giving up, as the kernel does.
constexpr int kMaxLinks = 40;

// File systems whose files can change on another machine, or in a server process, without this
// kernel queuing a notice.
constexpr std::array<std::uint32_t, 14> kRemoteFileSystems = {
    NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, FUSE_SUPER_MAGIC,
    CODA_SUPER_MAGIC, AFS_SUPER_MAGIC,  AFS_FS_MAGIC,     CEPH_SUPER_MAGIC, V9FS_MAGIC,
    NCP_SUPER_MAGIC,  OCFS2_SUPER_MAGIC,
    0x01161970,  // GFS2
    0x0BD00BD0,  // Lustre
};

bool isOnRemoteFileSystem(const std::string& path) {
    struct statfs info {};
    // Failing here means the object went away after it was watched, which the watch has seen.
    if (::statfs(path.c_str(), &info) != 0) return false;
    const auto type = static_cast<std::uint32_t>(info.f_type);
    return std::find(kRemoteFileSystems.begin(), kRemoteFileSystems.end(), type) != kRemoteFileSystems.end();
}

// Whether an error looking at an entry says only that the entry is not there (or not a directory
// where the path needs one); the watch on the entry's directory reports when that changes.
bool isMissing(int error) { return error == ENOENT || error == ENOTDIR; }

// Appends the components of `path` to the stack `pending` so that the first one is on top; empty
// and "." components name nothing.
void pushComponents(std::string_view path, std::vector<std::string>& pending) {
    std::vector<std::string> components;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        const std::string_view part = path.substr(start, end - start);
        if (!part.empty() && part != ".") components.emplace_back(part);
        start = end + 1;
    }
    pending.insert(pending.end(), std::make_move_iterator(components.rbegin()),
                   std::make_move_iterator(components.rend()));
}

std::string joinPath(const std::string& directory, std::string_view name) {
    std::string out = directory;
    if (out.back() != '/') out += '/';
    out += name;
    return out;
}

// Counts the forks of this process, seen in the child: a child shares the parent's notice queue
// and must not read from it.
std::atomic<unsigned> forkCount{0};

void countFork() { forkCount.fetch_add(1, std::memory_order_relaxed); }

void countForksFromNowOn() {
    static const bool registered = ::pthread_atfork(nullptr, nullptr, countFork) == 0;
    (void)registered;
}

}  // namespace

FileChangeWatch::FileChangeWatch() {
    countForksFromNowOn();
    forkGeneration_ = forkCount.load(std::memory_order_relaxed);
    openQueue();
}

FileChangeWatch::~FileChangeWatch() {
    readiness_.close();
    if (inotify_ >= 0) ::close(inotify_);
}

void FileChangeWatch::openQueue() {
    inotify_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (inotify_ >= 0) readiness_.open(inotify_);
}

bool FileChangeWatch::hasOwnQueue() {
    const unsigned generation = forkCount.load(std::memory_order_relaxed);
    if (generation != forkGeneration_) {
        // Closing leaves the parent's watches alone; removing them would not.
        forkGeneration_ = generation;
        readiness_.close();
        if (inotify_ >= 0) ::close(inotify_);
        openQueue();
        watched_.clear();
        armed_ = false;
    }
    return inotify_ >= 0;
}

bool FileChangeWatch::arm(const std::string& path) {
    armed_ = false;
    if (!hasOwnQueue()) return false;
    // Queued notices are about the file before the caller reads it. Watches added from here on
    // keep every notice that matters.
    readiness_.settle();
    drainNotices();
    std::vector<Watched> previous = std::exchange(watched_, {});
    const bool watchable = watchAlongPath(path);
    if (!watchable) {
        previous.insert(previous.end(), watched_.begin(), watched_.end());
        watched_.clear();
    }
    for (const Watched& old : previous) {
        if (findWatched(old.descriptor) == nullptr) ::inotify_rm_watch(inotify_, old.descriptor);
    }
    armed_ = watchable;
    changed_ = false;
    return armed_;
}

bool FileChangeWatch::mayHaveChanged() {
    if (!hasOwnQueue() || !armed_ || changed_) return true;
    if (readiness_.quiet()) return false;
    // Marks taken in before the queue is looked at, so that a notice after the look marks anew.
    readiness_.settle();
    // Asking for the queued size is cheaper than a read that finds nothing.
    int queuedBytes = 0;
    if (::ioctl(inotify_, FIONREAD, &queuedBytes) == 0 && queuedBytes == 0) return false;
    changed_ = drainNotices();
    return changed_;
}

bool FileChangeWatch::watchAlongPath(const std::string& path) {
    if (path.empty()) return true;
    // A relative path follows the working directory, whose changes no watch reports.
    if (path.front() != '/') return false;
    std::vector<std::string> pending;
    pushComponents(path, pending);
    const std::string root = "/";
    std::string directory = root;
    int directoryWatch = watch(directory, kDirectoryEvents | IN_ONLYDIR);
    if (directoryWatch < 0) return false;
    int linksFollowed = 0;
    while (!pending.empty()) {
        const std::string name = std::move(pending.back());
        pending.pop_back();
        watched_[static_cast<std::size_t>(directoryWatch)].entryNames.push_back(name);
        std::string entry = joinPath(directory, name);
        // The entry's directory is watched already, so a change after this look is reported.
        struct stat info {};
        if (::lstat(entry.c_str(), &info) != 0) return isMissing(errno);
        if (S_ISLNK(info.st_mode)) {
            if (++linksFollowed > kMaxLinks) return false;
            std::array<char, PATH_MAX> target{};
            const ssize_t length = ::readlink(entry.c_str(), target.data(), target.size());
            if (length < 0) return isMissing(errno) || errno == EINVAL;  // replaced since the look
            if (static_cast<std::size_t>(length) >= target.size()) return false;
            const std::string_view link(target.data(), static_cast<std::size_t>(length));
            pushComponents(link, pending);
            if (link.starts_with('/')) {
                directory = root;
                directoryWatch = watch(directory, kDirectoryEvents | IN_ONLYDIR);
                if (directoryWatch < 0) return false;
            }
            continue;
        }
        if (pending.empty()) return watch(entry, kFileEvents) >= 0 || isMissing(errno);
        // A path cannot go on through a file; its directory reports the entry replaced.
        if (!S_ISDIR(info.st_mode)) return true;
        directoryWatch = watch(entry, kDirectoryEvents | IN_ONLYDIR);
        if (directoryWatch < 0) return isMissing(errno);
        directory = std::move(entry);
    }
    return true;
}

int FileChangeWatch::watch(const std::string& path, std::uint32_t mask) {
    // Symbolic links are watched as entries and followed by the caller; IN_MASK_ADD keeps the
    // events of an object that is on the path twice.
    const int descriptor = ::inotify_add_watch(inotify_, path.c_str(), mask | IN_DONT_FOLLOW | IN_MASK_ADD);
    if (descriptor < 0) return -1;
    auto it = std::find_if(watched_.begin(), watched_.end(),
                           [&](const Watched& w) { return w.descriptor == descriptor; });
    if (it == watched_.end()) it = watched_.insert(it, Watched{descriptor, {}});
    const auto index = static_cast<int>(it - watched_.begin());
    if (isOnRemoteFileSystem(path)) {
        errno = EXDEV;
        return -1;
    }
    return index;
}

const FileChangeWatch::Watched* FileChangeWatch::findWatched(int descriptor) const {
    const auto it = std::find_if(watched_.begin(), watched_.end(),
                                 [&](const Watched& w) { return w.descriptor == descriptor; });
    return it == watched_.end() ? nullptr : &*it;
}

bool FileChangeWatch::isRelevant(int descriptor, std::uint32_t mask, std::string_view name) const {
    if ((mask & IN_Q_OVERFLOW) != 0) return true;
    const Watched* watched = findWatched(descriptor);
    // A watch dropped at the last arm still delivers its removal.
    if (watched == nullptr) return false;
    // Without a name the notice is about the watched object itself.
    if (name.empty()) return true;
    return std::find(watched->entryNames.begin(), watched->entryNames.end(), name) != watched->entryNames.end();
}

bool FileChangeWatch::drainNotices() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool relevant = false;
    for (;;) {
        const ssize_t got = ::read(inotify_, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        // The queue is empty; any other failure may have lost notices.
        if (got < 0) return relevant || errno != EAGAIN;
        if (got == 0) return true;
        for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(got);) {
            inotify_event notice;
            std::memcpy(&notice, buffer.data() + at, sizeof notice);
            const char* name = buffer.data() + at + sizeof notice;
            const std::size_t nameLength = ::strnlen(name, notice.len);
            if (isRelevant(notice.wd, notice.mask, std::string_view(name, nameLength))) relevant = true;
            at += sizeof notice + notice.len;
        }
    }
}

}  // namespace nvdl
