// Writes the levels of a min/max pyramid to a file while its base nodes come in, in order: each
// level keeps a small buffer that goes to the level's place in the file when full, and one half
// made node; so memory stays a few buffers whatever the length of the recording.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "access/MinMaxCacheFormat.h"

namespace nvdl::access::mmx {

// How nodes of samples combine: the smaller low, the larger high.
struct SampleNodes {
    using Node = SampleNode;
    static Node lift(const Node& n) { return n; }
    static Node merge(const Node& a, const Node& b) {
        return {b.low < a.low ? b.low : a.low, b.high > a.high ? b.high : a.high};
    }
    static void write(const Node& n, std::uint8_t* at) { writeSample(n, at); }
};

// How nodes of scans combine: the first overload status, the larger range. A scan of level 0
// counts by its status only when it is an overload.
struct ScanNodes {
    using Node = ScanNode;
    static Node lift(const Node& n) { return {isOverload(n.status) ? n.status : 0, n.range}; }
    static Node merge(const Node& a, const Node& b) {
        return {a.status != 0 ? a.status : b.status, std::fmax(a.range, b.range)};
    }
    static void write(const Node& n, std::uint8_t* at) { writeScan(n, at); }
};

template <class Nodes>
class PyramidWriter {
public:
    using Node = typename Nodes::Node;

    PyramidWriter(int fd, const std::vector<std::int64_t>& at, const std::vector<std::int64_t>& count) : m_fd(fd) {
        m_levels.resize(at.size());
        for (std::size_t k = 0; k < at.size(); ++k) {
            m_levels[k].at = at[k];
            m_levels[k].count = count[k];
        }
    }

    void push(const Node& node) { emit(0, node); }

    // Writes the half made nodes and every buffer; false when a write failed at any time.
    bool finish() {
        for (std::size_t k = 1; k < m_levels.size(); ++k) {
            if (!m_levels[k].pending) continue;
            const Node node = *m_levels[k].pending;
            m_levels[k].pending.reset();
            emit(k, node);
        }
        for (Level& level : m_levels) flush(level);
        return m_ok;
    }

private:
    static constexpr std::int64_t kBufferNodes = 4096;

    struct Level {
        std::int64_t at = 0;
        std::int64_t count = 0;
        std::int64_t written = 0;  // nodes in the file or in the buffer
        std::int64_t flushed = 0;  // nodes in the file
        std::vector<std::uint8_t> buffer;
        std::optional<Node> pending;  // the left half of the next node of this level
    };

    void emit(std::size_t k, const Node& node) {
        Level& level = m_levels[k];
        if (level.written >= level.count) return;  // more than the layout has room for: dropped
        const std::size_t used = level.buffer.size();
        level.buffer.resize(used + kNodeSize);
        Nodes::write(node, level.buffer.data() + used);
        if (++level.written - level.flushed == kBufferNodes) flush(level);
        if (k + 1 == m_levels.size()) return;
        const Node up = k == 0 ? Nodes::lift(node) : node;
        Level& above = m_levels[k + 1];
        if (!above.pending) {
            above.pending = up;
            return;
        }
        const Node whole = Nodes::merge(*above.pending, up);
        above.pending.reset();
        emit(k + 1, whole);
    }

    void flush(Level& level) {
        const std::uint8_t* data = level.buffer.data();
        std::size_t left = level.buffer.size();
        off_t offset = static_cast<off_t>(level.at + level.flushed * kNodeSize);
        while (left > 0 && m_ok) {
            const ssize_t n = ::pwrite(m_fd, data, left, offset);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) m_ok = false;
            else {
                data += n;
                left -= static_cast<std::size_t>(n);
                offset += n;
            }
        }
        level.flushed = level.written;
        level.buffer.clear();
    }

    int m_fd;
    std::vector<Level> m_levels;
    bool m_ok = true;
};

}  // namespace nvdl::access::mmx
