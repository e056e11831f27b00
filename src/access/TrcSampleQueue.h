// CSampleQueue: the first-in, first-out list of sample chunks between the reads of a source and the
// steps of a reduced read. Reads come in the source's own pieces (a scan's block, a stretch of a
// stored curve), steps take runs of another length; the queue joins the two. Each chunk carries the
// status and range of the read it came from, and taking values merges those of the chunks they come
// from: an overload status (1 or 2) stays, the range is the largest.
//
// A chunk either holds a copy of its values or lends them from a buffer that it keeps alive (a
// window of the file), so that large reads reach the steps without being copied.
#pragma once

#include <cstdint>
#include <algorithm>
#include <deque>
#include <memory>

#include "access/TrcLogging.h"

namespace nvdl::access {

class CSampleQueue {
public:
    explicit CSampleQueue(CTrcLogging& log) : m_log(log) {}

    // Copies `count` values of `elementSize` bytes (2 or 4) into a new chunk; 0 for another size,
    // a count below 1 or a failed allocation.
    int QueuePush(const void* values, long elementSize, long count, long status, float range);
    // The same without the copy: the chunk refers to `values`, which `keep` holds alive.
    int QueueLend(const void* values, std::shared_ptr<const void> keep, long elementSize, long count, long status,
                  float range);
    // Whether the chunks hold at least `n` values; false for n below 1.
    bool QueueHasValues(std::int64_t n) const;
    // Moves the next `n` values into `target` (cleared first), with their merged status and range.
    // 0 when a chunk has another element size or the queue runs dry.
    int QueueTake(std::int64_t n, long elementSize, void* target, long* status, float* range);
    // The same, handing each stretch of values to `visit(const void* values, std::int64_t count)`
    // in order instead of copying them.
    template <class Visit>
    int QueueTakeInto(std::int64_t n, long elementSize, long& status, float& range, Visit&& visit) {
        traceClear(n, elementSize, nullptr);
        return takeChunks(n, elementSize, status, range, visit);
    }
    void QueueFree() { m_chunks.clear(); }
    long GetChunkCount() const { return static_cast<long>(m_chunks.size()); }

private:
    struct Chunk {
        std::shared_ptr<const void> keep;
        const unsigned char* values;
        std::int64_t remaining;
        long elementSize;
        std::int64_t readPosition;
        std::int64_t total;
        long status;
        float range;
    };

    // Clears the target, between the two trace lines of a take.
    void traceClear(std::int64_t n, long elementSize, void* target);
    template <class Visit>
    int takeChunks(std::int64_t n, long elementSize, long& status, float& range, Visit& visit);

    CTrcLogging& m_log;
    std::deque<Chunk> m_chunks;
};

template <class Visit>
int CSampleQueue::takeChunks(std::int64_t n, long elementSize, long& status, float& range, Visit& visit) {
    status = 0;
    range = 0.0f;
    std::int64_t wanted = n;
    while (wanted > 0) {
        if (m_chunks.empty()) return 0;
        Chunk& head = m_chunks.front();
        if (head.elementSize != elementSize) return 0;
        const std::int64_t take = std::min(head.remaining, wanted);
        m_log.Add("Before memset  <Values=%ld, DataLenght=%ld>", static_cast<long>(take),
                  static_cast<long>(take * elementSize));
        visit(static_cast<const void*>(head.values + head.readPosition * elementSize), take);
        if (status != 1 && status != 2) status = head.status;
        range = std::max(range, head.range);
        wanted -= take;
        head.remaining -= take;
        head.readPosition += take;
        if (head.remaining == 0) m_chunks.pop_front();
    }
    return 1;
}

}  // namespace nvdl::access
