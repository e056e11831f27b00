#include "access/MinMaxCacheFormat.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <span>

#include "platform/CodePage.h"
#include "platform/RecordLayout.h"

namespace nvdl::access::mmx {

using namespace record;

namespace {

constexpr const char* kTag = "NVDL min/max";
constexpr int kCheckAt = 124;

constexpr Field<Header, 1> kHeaderFields[] = {
    {text(&Header::tag, 16), {0}},       {i32(&Header::version), {16}},      {i32(&Header::kind), {20}},
    {i32(&Header::channel), {24}},       {i32(&Header::baseShift), {28}},    {i64(&Header::blocksize), {32}},
    {i64(&Header::layoutScans), {40}},   {i64(&Header::coveredScans), {48}}, {i64(&Header::recordingSize), {56}},
    {i64(&Header::recordingTime), {64}}, {i32(&Header::check), {kCheckAt}},
};
constexpr std::span<const Field<Header, 1>> kHeaderTable{kHeaderFields};
static_assert(fitsAndDisjoint(kHeaderTable, 0, kHeaderSize));

constexpr Field<SampleNode, 1> kSampleFields[] = {
    {f32(&SampleNode::low), {0}},
    {f32(&SampleNode::high), {4}},
};
constexpr std::span<const Field<SampleNode, 1>> kSampleTable{kSampleFields};
static_assert(fitsAndDisjoint(kSampleTable, 0, kNodeSize));

constexpr Field<ScanNode, 1> kScanFields[] = {
    {i32(&ScanNode::status), {0}},
    {f32(&ScanNode::range), {4}},
};
constexpr std::span<const Field<ScanNode, 1>> kScanTable{kScanFields};
static_assert(fitsAndDisjoint(kScanTable, 0, kNodeSize));

// FNV-1a over the header's bytes in front of the check.
std::int32_t checkOf(const std::uint8_t* bytes) {
    std::uint32_t h = 2166136261u;
    for (int i = 0; i < kCheckAt; ++i) h = (h ^ bytes[i]) * 16777619u;
    return static_cast<std::int32_t>(h);
}

// Appends the levels of `count` base nodes, each level half the one below, at `at` on.
bool addLevels(std::int64_t count, std::int64_t& at, std::vector<std::int64_t>& starts,
               std::vector<std::int64_t>& counts) {
    for (;;) {
        starts.push_back(at);
        counts.push_back(count);
        std::int64_t bytes;
        if (__builtin_mul_overflow(count, kNodeSize, &bytes) || __builtin_add_overflow(at, bytes, &at)) return false;
        if (count == 1) return true;
        count = (count + 1) / 2;
    }
}

}  // namespace

bool Layout::make(std::int64_t blocksize, std::int64_t scans) {
    sampleAt.clear();
    sampleCount.clear();
    scanAt.clear();
    scanCount.clear();
    std::int64_t samples;
    if (blocksize < 1 || scans < 1 || __builtin_mul_overflow(blocksize, scans, &samples)) return false;
    size = kHeaderSize;
    return addLevels((samples - 1) / kBaseRun + 1, size, sampleAt, sampleCount) &&
           addLevels(scans, size, scanAt, scanCount);
}

void encodeHeader(Header header, std::uint8_t* bytes) {
    std::memset(bytes, 0, kHeaderSize);
    header.tag = kTag;
    encode(kHeaderTable, 0, header, bytes);
    header.check = checkOf(bytes);
    encode(kHeaderTable, 0, header, bytes);
}

bool decodeHeader(const std::uint8_t* bytes, Header& into) {
    decode(kHeaderTable, 0, bytes, into);
    return into.tag == kTag && into.version == kFormatVersion && into.check == checkOf(bytes);
}

SampleNode readSample(const std::uint8_t* at) {
    SampleNode node;
    decode(kSampleTable, 0, at, node);
    return node;
}

void writeSample(const SampleNode& node, std::uint8_t* at) { encode(kSampleTable, 0, node, at); }

ScanNode readScan(const std::uint8_t* at) {
    ScanNode node;
    decode(kScanTable, 0, at, node);
    return node;
}

void writeScan(const ScanNode& node, std::uint8_t* at) { encode(kScanTable, 0, node, at); }

std::string cachePath(const std::string& recording, long kind, long channel) {
    return recording + (kind == 2 ? ".tacho" : ".in") + std::to_string(channel) + ".mmx";
}

bool stampOf(const std::string& path, Stamp& into) {
    struct stat st;
    int r;
    do r = ::stat(pathFromAnsi(path).c_str(), &st);
    while (r != 0 && errno == EINTR);
    if (r != 0) return false;
    into.size = st.st_size;
    into.time = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    return true;
}

}  // namespace nvdl::access::mmx
