#include "platform/ReplaceFile.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstdio>
#include <string>
#include <system_error>

#include "platform/ComPtr.h"

namespace nvdl {

namespace {

// A name in the target's folder that no other save of this process or of another one takes.
std::filesystem::path temporaryBeside(const std::filesystem::path& target) {
    static std::atomic<unsigned> counter{0};
    std::string name = "." + target.filename().string() + ".saving." + std::to_string(::getpid()) + "." +
                       std::to_string(counter++);
    return target.parent_path() / name;
}

// Removes the temporary files that saves of `target` by processes no longer running left behind.
void removeStaleTemporaries(const std::filesystem::path& target) {
    const std::string prefix = "." + target.filename().string() + ".saving.";
    std::error_code error;
    std::filesystem::directory_iterator entries(target.parent_path().empty() ? "." : target.parent_path(), error);
    if (error) return;
    for (const auto& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(prefix, 0) != 0) continue;
        const long pid = std::atol(name.c_str() + prefix.size());
        if (pid > 0 && ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH) {
            std::error_code ignored;
            std::filesystem::remove(entry.path(), ignored);
        }
    }
}

// Flushes a file's data (or a folder's entries) to the disk.
bool flushToDisk(const std::filesystem::path& path, bool directory) {
    const int fd = ::open(path.empty() ? "." : path.c_str(), (directory ? O_DIRECTORY : 0) | O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool flushed = ::fsync(fd) == 0;
    ::close(fd);
    return flushed;
}

HRESULT writeAndCommit(const std::filesystem::path& path, const std::function<HRESULT(IStorage*)>& write) {
    ComPtr<IStorage> root;
    HRESULT h = createCompoundFile(path, STGM_READWRITE | STGM_SHARE_EXCLUSIVE, root.out());
    if (FAILED(h)) return h;
    h = write(root.get());
    if (SUCCEEDED(h)) h = root->Commit(STGC_DEFAULT);
    return h;
}

}  // namespace

HRESULT replaceFile(const std::filesystem::path& target,
                    const std::function<HRESULT(const std::filesystem::path& temporary)>& write) {
    removeStaleTemporaries(target);
    const std::filesystem::path temporary = temporaryBeside(target);
    HRESULT h = write(temporary);
    if (SUCCEEDED(h) && !flushToDisk(temporary, false)) h = STG_E_WRITEFAULT;
    if (SUCCEEDED(h)) {
        std::error_code error;
        std::filesystem::rename(temporary, target, error);
        if (error) h = STG_E_ACCESSDENIED;
    }
    if (FAILED(h)) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        return h;
    }
    flushToDisk(target.parent_path(), true);  // the rename itself; the data are safe already
    return S_OK;
}

HRESULT replaceWithCompoundFile(const std::filesystem::path& target, const std::function<HRESULT(IStorage*)>& write) {
    return replaceFile(target, [&write](const std::filesystem::path& temporary) { return writeAndCommit(temporary, write); });
}

}  // namespace nvdl
