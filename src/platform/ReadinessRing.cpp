#include "platform/ReadinessRing.h"

#include <linux/io_uring.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

namespace nvdl {

namespace {

constexpr unsigned kEntries = 4;
constexpr std::uint64_t kPollTag = 1;
// Rounds of taking in completions that overflowed the ring; more are left for the next settle.
constexpr int kOverflowRounds = 64;

// Any mark the kernel leaves in the submission ring's flags: work waiting for the polling thread,
// or completions that did not fit the completion ring.
constexpr std::uint32_t kKernelMarks = IORING_SQ_TASKRUN | IORING_SQ_CQ_OVERFLOW;

// Threads that have ended, among those that asked for their identity below. A poll placed by a
// thread that has ended goes on, but the kernel finishes its work on a worker of its own, so that
// no thread can trust its marks any more.
std::atomic<std::uint64_t> endedThreads{0};

struct ThreadMark {
    ~ThreadMark() { endedThreads.fetch_add(1, std::memory_order_release); }
};

// An identity of the calling thread that costs no system call and stays the same across fork.
const void* thisThread() {
    static thread_local ThreadMark mark;
    return &mark;
}

std::uint64_t threadsEnded() { return endedThreads.load(std::memory_order_acquire); }

std::uint32_t loadAcquire(const std::uint32_t* word) {
    return std::atomic_ref<std::uint32_t>(*const_cast<std::uint32_t*>(word)).load(std::memory_order_acquire);
}

void storeRelease(std::uint32_t* word, std::uint32_t value) {
    std::atomic_ref<std::uint32_t>(*word).store(value, std::memory_order_release);
}

template <class T>
T* at(void* base, std::uint32_t offset) {
    return reinterpret_cast<T*>(static_cast<char*>(base) + offset);
}

int enter(int ring, unsigned toSubmit, unsigned flags) {
    return static_cast<int>(::syscall(__NR_io_uring_enter, ring, toSubmit, 0, flags, nullptr, 0));
}

}  // namespace

bool ReadinessRing::open(int descriptor) {
    close();
    io_uring_params params{};
    // The kernel's work for the poll waits until the polling thread next enters the kernel, and
    // while it waits a flag in the shared memory says so.
    params.flags = IORING_SETUP_COOP_TASKRUN | IORING_SETUP_TASKRUN_FLAG;
    ring_ = static_cast<int>(::syscall(__NR_io_uring_setup, kEntries, &params));
    if (ring_ < 0) return false;
    sqRingBytes_ = params.sq_off.array + params.sq_entries * sizeof(std::uint32_t);
    cqRingBytes_ = params.cq_off.cqes + params.cq_entries * sizeof(io_uring_cqe);
    const bool oneMapping = (params.features & IORING_FEAT_SINGLE_MMAP) != 0;
    if (oneMapping) sqRingBytes_ = cqRingBytes_ = std::max(sqRingBytes_, cqRingBytes_);
    sqRing_ = ::mmap(nullptr, sqRingBytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, ring_, IORING_OFF_SQ_RING);
    if (sqRing_ == MAP_FAILED) sqRing_ = nullptr;
    cqRing_ = oneMapping || sqRing_ == nullptr
                  ? sqRing_
                  : ::mmap(nullptr, cqRingBytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, ring_,
                           IORING_OFF_CQ_RING);
    if (cqRing_ == MAP_FAILED) cqRing_ = nullptr;
    sqesBytes_ = params.sq_entries * sizeof(io_uring_sqe);
    void* sqes = ::mmap(nullptr, sqesBytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, ring_, IORING_OFF_SQES);
    sqes_ = sqes == MAP_FAILED ? nullptr : static_cast<io_uring_sqe*>(sqes);
    if (sqRing_ == nullptr || cqRing_ == nullptr || sqes_ == nullptr) {
        close();
        return false;
    }
    sqFlags_ = at<std::uint32_t>(sqRing_, params.sq_off.flags);
    sqTail_ = at<std::uint32_t>(sqRing_, params.sq_off.tail);
    sqArray_ = at<std::uint32_t>(sqRing_, params.sq_off.array);
    sqMask_ = *at<std::uint32_t>(sqRing_, params.sq_off.ring_mask);
    cqHead_ = at<std::uint32_t>(cqRing_, params.cq_off.head);
    cqTail_ = at<std::uint32_t>(cqRing_, params.cq_off.tail);
    cqMask_ = *at<std::uint32_t>(cqRing_, params.cq_off.ring_mask);
    cqes_ = at<io_uring_cqe>(cqRing_, params.cq_off.cqes);
    watched_ = descriptor;
    if (!placePoll()) {
        close();
        return false;
    }
    return true;
}

void ReadinessRing::close() {
    if (sqes_ != nullptr) ::munmap(sqes_, sqesBytes_);
    if (cqRing_ != nullptr && cqRing_ != sqRing_) ::munmap(cqRing_, cqRingBytes_);
    if (sqRing_ != nullptr) ::munmap(sqRing_, sqRingBytes_);
    if (ring_ >= 0) ::close(ring_);  // ends the poll, unless a forked parent still holds the ring
    ring_ = -1;
    watched_ = -1;
    polling_ = false;
    pollingThread_ = nullptr;
    sqRing_ = cqRing_ = nullptr;
    sqes_ = nullptr;
    sqFlags_ = sqTail_ = sqArray_ = cqHead_ = cqTail_ = nullptr;
    cqes_ = nullptr;
}

io_uring_sqe& ReadinessRing::nextEntry() {
    const std::uint32_t tail = *sqTail_;
    const std::uint32_t slot = tail & sqMask_;
    io_uring_sqe& entry = sqes_[slot];
    std::memset(&entry, 0, sizeof entry);
    sqArray_[slot] = slot;
    storeRelease(sqTail_, tail + 1);
    return entry;
}

bool ReadinessRing::placePoll() {
    // A standing poll: it reports every time the descriptor becomes readable, until it ends.
    io_uring_sqe& poll = nextEntry();
    poll.opcode = IORING_OP_POLL_ADD;
    poll.fd = watched_;
    poll.poll32_events = POLLIN;
    poll.len = IORING_POLL_ADD_MULTI;
    poll.user_data = kPollTag;
    endedAtPlacement_ = threadsEnded();
    polling_ = enter(ring_, 1, 0) == 1;
    pollingThread_ = polling_ ? thisThread() : nullptr;
    return polling_;
}

bool ReadinessRing::trustedHere() const {
    return polling_ && pollingThread_ == thisThread() && threadsEnded() == endedAtPlacement_;
}

bool ReadinessRing::quiet() const {
    if (!trustedHere()) return false;
    if ((loadAcquire(sqFlags_) & kKernelMarks) != 0) return false;
    return loadAcquire(cqTail_) == *cqHead_;
}

void ReadinessRing::settle() {
    if (ring_ < 0) return;
    if (polling_ && !trustedHere() && threadsEnded() != endedAtPlacement_) {
        // The polling thread may have ended, and the kernel's work for an ended thread leaves its
        // flag behind: a new ring is made from this thread. While the polling thread lives the
        // ring stays, so that threads taking turns do not move it back and forth.
        open(watched_);
    } else {
        takeIn();
        if (ring_ < 0 || polling_ || !placePoll()) return;
    }
    // What a new poll posted at once (for a descriptor readable already) is taken in too: the
    // caller reads the descriptor after this.
    takeIn();
}

void ReadinessRing::takeIn() {
    if (ring_ < 0) return;
    // The polling thread lets the kernel finish the work waiting for it, which posts completions
    // and clears the flag. Another thread cannot run that work; it takes in what is posted.
    const bool runsWork = trustedHere();
    bool refused = false;
    // Completions that did not fit the ring wait in the kernel and come in as room is made.
    for (int round = 0; round < kOverflowRounds; ++round) {
        if (runsWork || (loadAcquire(sqFlags_) & IORING_SQ_CQ_OVERFLOW) != 0) enter(ring_, 0, IORING_ENTER_GETEVENTS);
        std::uint32_t head = *cqHead_;
        const std::uint32_t tail = loadAcquire(cqTail_);
        for (; head != tail; ++head) {
            const io_uring_cqe& done = cqes_[head & cqMask_];
            // A completion of the poll without "more" is its last: it ended. A kernel without
            // standing polls refuses it at once.
            if (done.user_data == kPollTag && (done.flags & IORING_CQE_F_MORE) == 0) {
                polling_ = false;
                refused = refused || (done.res < 0 && done.res != -ECANCELED);
            }
        }
        storeRelease(cqHead_, tail);
        if ((loadAcquire(sqFlags_) & IORING_SQ_CQ_OVERFLOW) == 0) break;
    }
    if (refused) close();
}

}  // namespace nvdl
