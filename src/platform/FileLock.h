// A lock on a whole file against other processes, held through an open file description: it lives
// as long as the descriptor and does not vanish when another descriptor of the same process closes
// the same file.
#pragma once

#include <cstdint>
#include <filesystem>

namespace nvdl {

class FileLock {
public:
    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock() { release(); }

    // Opens an existing file and takes an exclusive lock on its bytes from 0 to its present size,
    // waiting while another process holds a conflicting lock (a file that a lock of this process
    // holds already is tried without waiting, which fails). The file stays open, held, even when
    // the lock itself could not be taken (a file that cannot be written to gets a shared lock). False
    // when the file cannot be opened.
    bool acquire(const std::filesystem::path& file);
    // Unlocks the bytes from 0 to the file's present size and closes the file; nothing when none is held.
    void release();
    bool held() const { return m_fd >= 0; }

    // Whether another open file description holds a lock that would keep an exclusive lock on the
    // file's first byte from being taken: what a second process sees.
    static bool lockedByOther(const std::filesystem::path& file);

private:
    int m_fd = -1;
};

}  // namespace nvdl
