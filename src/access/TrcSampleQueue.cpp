#include "access/TrcSampleQueue.h"

#include <cstring>
#include <new>

namespace nvdl::access {

int CSampleQueue::QueuePush(const void* values, long elementSize, long count, long status, float range) {
    if ((elementSize != 2 && elementSize != 4) || count < 1 || !values) return 0;
    const std::size_t bytes = static_cast<std::size_t>(count) * static_cast<std::size_t>(elementSize);
    std::shared_ptr<unsigned char[]> copy(new (std::nothrow) unsigned char[bytes]);
    if (!copy) return 0;
    std::memcpy(copy.get(), values, bytes);
    const unsigned char* at = copy.get();
    return QueueLend(at, std::move(copy), elementSize, count, status, range);
}

int CSampleQueue::QueueLend(const void* values, std::shared_ptr<const void> keep, long elementSize, long count,
                            long status, float range) {
    if ((elementSize != 2 && elementSize != 4) || count < 1 || !values) return 0;
    m_chunks.push_back(Chunk{std::move(keep), static_cast<const unsigned char*>(values), count, elementSize, 0, count,
                             status, range});
    return 1;
}

bool CSampleQueue::QueueHasValues(std::int64_t n) const {
    if (n < 1) return false;
    std::int64_t sum = 0;
    for (const Chunk& chunk : m_chunks) {
        sum += chunk.remaining;
        if (sum >= n) return true;
    }
    return false;
}

void CSampleQueue::traceClear(std::int64_t n, long elementSize, void* target) {
    m_log.Add("Before memset  <Blocksize=%ld, DataLenght=%ld>", static_cast<long>(n), static_cast<long>(n * elementSize));
    if (target) std::memset(target, 0, static_cast<std::size_t>(n * elementSize));
    m_log.Add("After memset  <Blocksize=%ld, DataLenght=%ld>", static_cast<long>(n), static_cast<long>(n * elementSize));
}

int CSampleQueue::QueueTake(std::int64_t n, long elementSize, void* target, long* status, float* range) {
    if (!target || !status || !range || n < 1) return 0;
    traceClear(n, elementSize, target);
    auto* out = static_cast<unsigned char*>(target);
    auto copy = [&](const void* values, std::int64_t count) {
        const std::size_t bytes = static_cast<std::size_t>(count * elementSize);
        std::memcpy(out, values, bytes);
        out += bytes;
    };
    return takeChunks(n, elementSize, *status, *range, copy);
}

}  // namespace nvdl::access
