// Learns without a system call whether a descriptor may have become readable: a completion ring of
// the kernel's asynchronous interface keeps a standing poll on the descriptor, and the kernel marks
// the ring's shared memory in the very system call that makes the descriptor readable (it flags
// the ring for work, or posts the poll's completion). Reading two words of that memory then tells
// that nothing has arrived since the last settle.
//
// Only the thread that placed the poll can trust a quiet ring: while that thread completes the
// poll inside the kernel, the marks are briefly clear. Other threads, and systems without the
// interface, are told "not quiet" and look at the descriptor themselves. Once a thread that used
// a ring has ended, no ring is trusted until a settle has placed its poll anew from a live thread.
//
// Not thread-safe: one owner, or a lock around it. Not to be used in a child after fork: close it
// there (which leaves the parent's ring alone) and open a new one.
#pragma once

#include <cstddef>
#include <cstdint>

struct io_uring_cqe;
struct io_uring_sqe;

namespace nvdl {

class ReadinessRing {
public:
    ReadinessRing() = default;
    ~ReadinessRing() { close(); }
    ReadinessRing(const ReadinessRing&) = delete;
    ReadinessRing& operator=(const ReadinessRing&) = delete;

    // Starts watching `descriptor` for readability from this thread. False when the interface is
    // not there or refuses; quiet() then always answers false.
    bool open(int descriptor);
    void close();

    // True when, for certain, nothing has made the descriptor readable since the last settle (or
    // since open), and this thread placed the poll.
    bool quiet() const;

    // Takes in every mark made so far. Call it before the descriptor is read empty, so that
    // whatever arrives after that read marks the ring again. Places the poll anew when it ended.
    void settle();

private:
    io_uring_sqe& nextEntry();
    bool placePoll();
    // Takes in the completions posted so far.
    void takeIn();
    // Whether this thread placed the poll and may trust its marks.
    bool trustedHere() const;

    int ring_ = -1;
    int watched_ = -1;
    bool polling_ = false;
    const void* pollingThread_ = nullptr;
    std::uint64_t endedAtPlacement_ = 0;
    void* sqRing_ = nullptr;
    std::size_t sqRingBytes_ = 0;
    void* cqRing_ = nullptr;  // the same mapping as sqRing_ when the kernel maps both at once
    std::size_t cqRingBytes_ = 0;
    io_uring_sqe* sqes_ = nullptr;
    std::size_t sqesBytes_ = 0;
    std::uint32_t* sqFlags_ = nullptr;
    std::uint32_t* sqTail_ = nullptr;
    std::uint32_t* sqArray_ = nullptr;
    std::uint32_t sqMask_ = 0;
    std::uint32_t* cqHead_ = nullptr;
    std::uint32_t* cqTail_ = nullptr;
    std::uint32_t cqMask_ = 0;
    io_uring_cqe* cqes_ = nullptr;
};

}  // namespace nvdl
