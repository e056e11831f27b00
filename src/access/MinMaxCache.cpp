// CMinMaxCache: a channel's min/max cache, read from its file, answering reduced reads.
//
// Files: one per channel, beside the recording, named "<recording>.in<N>.mmx" for input channel N
// and "<recording>.tacho<N>.mmx" for the tacho channel numbered N (numbers over all channels, tachos
// behind the inputs). MinMaxCacheFormat.h describes the content; the levels hold 8 bytes per 64
// stored values and about as much again above them, plus 16 bytes per scan.
//
// A loaded cache maps its file into memory (the file is only ever replaced by a rename, never
// rewritten in place, so the mapping never shrinks under the reader) and keeps the recording open
// for the raw reads at the edges of steps. A step of a reduced read is the level-0 runs that lie
// wholly inside it, taken from the fewest nodes of the levels, and at most two partial runs at its
// edges. An edge is read from the recording only when its run's extremes reach beyond what the
// whole runs give, since otherwise its values cannot change the step's answer; neighbouring edge
// reads go to the file together. Status and range come from the scan levels the same way.
#include "access/MinMaxCache.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <limits>
#include <vector>

#include "access/MinMaxCacheFormat.h"
#include "access/MinMaxPyramidWriter.h"
#include "access/TrcLoader.h"
#include "measurement/FloatExtremes.h"
#include "platform/CodePage.h"
#include "platform/LittleEndian.h"
#include "recording/Trc.h"
#include "recording/TrcRecorderSection.h"

namespace nvdl::access {

namespace {

using namespace mmx;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
// Where the reduction of a step starts: a step's minimum is never above, its maximum never below.
constexpr float kLowestStart = 2147483648.0f;
constexpr float kHighestStart = -2147483648.0f;
// Edge reads closer than this many samples are read as one; no read is longer than kMostRead.
constexpr std::int64_t kJoinGap = 1024;
constexpr std::int64_t kMostRead = std::int64_t{1} << 16;

struct Edge {
    std::int64_t from, to;  // samples [from, to)
    long step;
};

class Cache final : public CMinMaxCache {
public:
    ~Cache() override {
        if (m_map) ::munmap(const_cast<std::uint8_t*>(m_map), m_mapSize);
    }

    bool open(const std::string& recording, long kind, long channel);

    bool Reduce(std::int64_t start, std::int64_t stepLength, long steps, StepExtremes* out, long* status,
                float* range) override;

private:
    SampleNode sampleNode(std::size_t level, std::int64_t i) const {
        return readSample(m_map + m_layout.sampleAt[level] + i * kNodeSize);
    }
    ScanNode scanNode(std::size_t level, std::int64_t i) const {
        return readScan(m_map + m_layout.scanAt[level] + i * kNodeSize);
    }
    SampleNode wholeRuns(std::int64_t a, std::int64_t b) const;
    ScanNode scansBetween(std::int64_t a, std::int64_t b) const;
    void noteEdge(std::int64_t from, std::int64_t to, long step, const SampleNode& rest);
    bool readEdges();

    trc::CTrc m_trc;
    trc::CTrcRecorderChannelSection* m_section = nullptr;
    long m_channel = 0;
    std::int64_t m_sampleBytes = 4;
    std::int64_t m_blocksize = 0;
    std::int64_t m_scans = 0;  // covered by the levels
    const std::uint8_t* m_map = nullptr;
    std::size_t m_mapSize = 0;
    Layout m_layout;
    std::vector<SampleNode> m_steps;
    std::vector<Edge> m_edges;
    std::vector<unsigned char> m_raw;
    std::vector<float> m_values;
};

bool Cache::open(const std::string& recording, long kind, long channel) {
    const std::string path = pathFromAnsi(cachePath(recording, kind, channel)).string();
    int fd;
    do fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) return false;
    struct stat st;
    std::uint8_t head[kHeaderSize];
    Header header;
    Stamp stamp;
    const bool valid = ::fstat(fd, &st) == 0 && ::pread(fd, head, sizeof head, 0) == kHeaderSize &&
                       decodeHeader(head, header) && header.kind == kind && header.channel == channel &&
                       header.baseShift == kBaseShift && m_layout.make(header.blocksize, header.layoutScans) &&
                       m_layout.size == st.st_size && header.coveredScans >= 1 &&
                       header.coveredScans <= header.layoutScans && stampOf(recording, stamp) &&
                       stamp.size == header.recordingSize && stamp.time == header.recordingTime;
    if (valid) {
        void* map = ::mmap(nullptr, static_cast<std::size_t>(st.st_size), PROT_READ, MAP_SHARED, fd, 0);
        if (map != MAP_FAILED) {
            m_map = static_cast<const std::uint8_t*>(map);
            m_mapSize = static_cast<std::size_t>(st.st_size);
        }
    }
    ::close(fd);
    if (!m_map || !m_trc.Open(recording.c_str())) return false;
    trc::CTrcRecorderSection& recorder = m_trc.GetRecorder();
    if (!recorder.Read()) return false;
    trc::ScanGeometry g;
    recorder.GetHeader().DescribeScans(g);
    m_section = kind == kInputChannel ? static_cast<trc::CTrcRecorderChannelSection*>(&recorder.GetInputSection())
                                      : &recorder.GetTachoSection();
    m_channel = channel;
    m_sampleBytes = g.sampleBytes;
    m_blocksize = header.blocksize;
    m_scans = header.coveredScans;
    return g.blocksize == header.blocksize && m_scans <= g.scans && m_section->GetChannelIndex(channel) >= 0;
}

// The extremes of level-0 runs [a, b), from the fewest nodes.
SampleNode Cache::wholeRuns(std::int64_t a, std::int64_t b) const {
    SampleNode acc{kInfinity, -kInfinity};
    for (std::size_t level = 0; a < b; ++level, a >>= 1, b >>= 1) {
        if (a & 1) acc = SampleNodes::merge(acc, sampleNode(level, a++));
        if (b & 1) acc = SampleNodes::merge(acc, sampleNode(level, --b));
    }
    return acc;
}

// The first overload status and the largest range of scans [a, b) (from 0), in scan order.
ScanNode Cache::scansBetween(std::int64_t a, std::int64_t b) const {
    auto node = [this](std::size_t level, std::int64_t i) {
        return level == 0 ? ScanNodes::lift(scanNode(0, i)) : scanNode(level, i);
    };
    ScanNode left{0, -kInfinity}, right{0, -kInfinity};
    for (std::size_t level = 0; a < b; ++level, a >>= 1, b >>= 1) {
        if (a & 1) left = ScanNodes::merge(left, node(level, a++));
        if (b & 1) right = ScanNodes::merge(node(level, --b), right);
    }
    return ScanNodes::merge(left, right);
}

// An edge of a step needs its samples only when its run reaches beyond the rest of the step.
void Cache::noteEdge(std::int64_t from, std::int64_t to, long step, const SampleNode& rest) {
    if (from >= to) return;
    const SampleNode run = sampleNode(0, from >> kBaseShift);
    if (run.low < rest.low || run.high > rest.high) m_edges.push_back({from, to, step});
}

bool Cache::readEdges() {
    for (std::size_t e = 0; e < m_edges.size();) {
        const std::int64_t from = m_edges[e].from;
        std::int64_t to = m_edges[e].to;
        std::size_t last = e + 1;
        while (last < m_edges.size() && m_edges[last].from - to <= kJoinGap && m_edges[last].to - from <= kMostRead)
            to = m_edges[last++].to;
        const std::int64_t count = to - from;
        m_raw.resize(static_cast<std::size_t>(count * m_sampleBytes));
        m_values.resize(static_cast<std::size_t>(count));
        if (!m_section->ReadChannel(m_channel, from, m_raw.data(), count)) return false;
        for (std::int64_t i = 0; i < count; ++i)
            m_values[static_cast<std::size_t>(i)] = m_sampleBytes == 2
                                                        ? le::i16(&m_raw[static_cast<std::size_t>(2 * i)])
                                                        : le::f32(&m_raw[static_cast<std::size_t>(4 * i)]);
        for (; e < last; ++e) {
            SampleNode& step = m_steps[static_cast<std::size_t>(m_edges[e].step)];
            floatExtremes(m_values.data() + (m_edges[e].from - from),
                          static_cast<std::size_t>(m_edges[e].to - m_edges[e].from), step.low, step.high);
        }
    }
    return true;
}

bool Cache::Reduce(std::int64_t start, std::int64_t stepLength, long steps, StepExtremes* out, long* status,
                   float* range) {
    std::int64_t span, chunkEnd;
    if (!out || start < 0 || stepLength < 1 || steps < 1 || __builtin_mul_overflow(stepLength, steps, &span))
        return false;
    // The read takes whole chunks of a blocksize from the start on until the span is covered; each
    // must lie inside the scans the levels cover.
    const std::int64_t B = m_blocksize, chunks = (span - 1) / B + 1;
    if (__builtin_mul_overflow(chunks, B, &chunkEnd) || __builtin_add_overflow(start, chunkEnd, &chunkEnd) ||
        chunkEnd > m_scans * B)
        return false;

    m_steps.resize(static_cast<std::size_t>(steps));
    m_edges.clear();
    for (long k = 0; k < steps; ++k) {
        const std::int64_t lo = start + k * stepLength, hi = lo + stepLength;
        const std::int64_t a = (lo + kBaseRun - 1) >> kBaseShift, b = hi >> kBaseShift;
        if (a > b) {  // inside one run
            m_steps[static_cast<std::size_t>(k)] = {kInfinity, -kInfinity};
            noteEdge(lo, hi, k, m_steps[static_cast<std::size_t>(k)]);
            continue;
        }
        const SampleNode inner = wholeRuns(a, b);
        m_steps[static_cast<std::size_t>(k)] = inner;
        noteEdge(lo, a << kBaseShift, k, inner);
        noteEdge(b << kBaseShift, hi, k, inner);
    }
    if (!readEdges()) return false;

    float overallRange = 20.0f;
    long overallStatus = 0;
    const std::int64_t firstScan = start / B;
    for (long k = 0; k < steps; ++k) {
        const SampleNode& s = m_steps[static_cast<std::size_t>(k)];
        out[k] = {s.low < kLowestStart ? s.low : kLowestStart, s.high > kHighestStart ? s.high : kHighestStart};
        const std::int64_t last = firstScan + ((k + 1) * stepLength - 1) / B;
        const ScanNode chunks = scansBetween(firstScan + k * stepLength / B, last + 1);
        const long stepStatus = chunks.status != 0 ? chunks.status : scanNode(0, last).status;
        const float stepRange = std::fmax(0.0f, chunks.range);
        if (stepRange < overallRange) overallRange = stepRange;
        if (!isOverload(static_cast<std::int32_t>(overallStatus))) overallStatus = stepStatus;
    }
    if (status) *status = overallStatus;
    if (range) *range = overallRange;
    return true;
}

}  // namespace

std::unique_ptr<CMinMaxCache> CMinMaxCache::Load(const std::string& recording, long kind, long channel) {
    if ((kind != kInputChannel && kind != kTachoChannel) || channel < 1) return nullptr;
    auto cache = std::make_unique<Cache>();
    if (!cache->open(recording, kind, channel)) return nullptr;
    return cache;
}

}  // namespace nvdl::access
