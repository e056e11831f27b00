// Learns cheaply whether what a file path names may have changed, so that a reader can keep what
// it read from the file until then without looking at the file again.
//
// The watch follows the path from the root: every directory on the way that exists is watched for
// the one entry of the path in it (created, deleted, renamed, written, attributes changed), and so
// is the file itself when it exists (written through another name, attributes changed). A symbolic
// link on the way is watched as an entry and followed. The kernel queues the notice of a change in
// the system call that makes it, so a change finished before mayHaveChanged starts is reported.
// On the thread that made the watch, an empty queue is told by a readiness ring without a system
// call; elsewhere, and where there is no ring, the queue's size is asked for.
//
// Not thread-safe: one owner, or a lock around it. A child process after fork gets a watch of its
// own on the next call, so it never takes the parent's notices.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ReadinessRing.h"

namespace nvdl {

class FileChangeWatch {
public:
    FileChangeWatch();
    ~FileChangeWatch();
    FileChangeWatch(const FileChangeWatch&) = delete;
    FileChangeWatch& operator=(const FileChangeWatch&) = delete;

    // Starts watching `path` as it is now, forgetting earlier notices. Call it before reading the
    // file, so that a change made while reading is reported. False when the path cannot be watched
    // reliably (a relative path, a network file system, no watch facility, a watch refused); the
    // caller must then look at the file itself on every read. An empty path names no file and is
    // always watched.
    bool arm(const std::string& path);

    // Whether the path may name something else, or different bytes, than when arm was called;
    // also true when the watch is not armed or notices were lost. Once true, stays true until the
    // next arm.
    bool mayHaveChanged();

private:
    // One watched directory or file, and the names of the path's entries in it.
    struct Watched {
        int descriptor = -1;
        std::vector<std::string> entryNames;
    };

    // After a fork the queue is shared with the parent: the child drops it and opens its own.
    // False when there is no queue.
    bool hasOwnQueue();
    void openQueue();
    bool watchAlongPath(const std::string& path);
    // Adds `mask` to the watch on `path`; the index in watched_, or -1 with errno set.
    int watch(const std::string& path, std::uint32_t mask);
    const Watched* findWatched(int descriptor) const;
    bool isRelevant(int descriptor, std::uint32_t mask, std::string_view name) const;
    // Reads every queued notice; true when one of them concerns the path.
    bool drainNotices();

    int inotify_ = -1;
    // Tells the polling thread that the queue is still empty without asking the kernel.
    ReadinessRing readiness_;
    unsigned forkGeneration_ = 0;
    bool armed_ = false;
    bool changed_ = false;
    std::vector<Watched> watched_;
};

}  // namespace nvdl
