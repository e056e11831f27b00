// The file of one channel's min/max cache. It stands beside the recording, named after it and the
// channel, and holds:
//   - a 128-byte header: a tag, the format version, the channel (kind and number), the recording's
//     blocksize, the scans the levels are laid out for and the scans they cover, the recording's
//     size and modification time when the cache was made, and a check over the header's bytes;
//   - the sample levels: level 0 has one node (smallest, largest value) per run of 64 stored values
//     from the recording's first sample, each level above one node per two nodes below, up to a
//     single node; the last node of a level may stand for fewer values;
//   - the scan levels: level 0 has each scan's status and range, each level above per two nodes
//     below the first overload status (1 or 2; 0 when there is none) and the largest range.
// Every node is 8 bytes. The whole layout follows from the blocksize and the scans laid out for,
// so a file whose size differs from it is not a cache. All fields are little-endian.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nvdl::access::mmx {

constexpr std::int64_t kBaseShift = 6;
constexpr std::int64_t kBaseRun = std::int64_t{1} << kBaseShift;  // stored values per level-0 node
constexpr std::int64_t kHeaderSize = 128;
constexpr std::int64_t kNodeSize = 8;
constexpr std::int32_t kFormatVersion = 1;

struct Header {
    std::string tag;
    std::int32_t version = kFormatVersion;
    std::int32_t kind = 0;
    std::int32_t channel = 0;
    std::int32_t baseShift = static_cast<std::int32_t>(kBaseShift);
    std::int64_t blocksize = 0;
    std::int64_t layoutScans = 0;   // the levels' room
    std::int64_t coveredScans = 0;  // scans whose values the levels hold, from the first
    std::int64_t recordingSize = 0;
    std::int64_t recordingTime = 0;  // modification time, ns since the epoch
    std::int32_t check = 0;
};

// The extremes of a run of stored values; +inf and -inf for a run that holds only NaN.
struct SampleNode {
    float low;
    float high;
};

// Level 0: a scan's status and range. Above: the first overload status of the scans below (0 when
// none is overloaded) and their largest range, NaN ignored.
struct ScanNode {
    std::int32_t status;
    float range;
};

inline bool isOverload(std::int32_t status) { return status == 1 || status == 2; }

// Where each level stands in the file and how many nodes it has.
struct Layout {
    std::vector<std::int64_t> sampleAt, sampleCount, scanAt, scanCount;
    std::int64_t size = 0;  // of the whole file
    // False when the values give no layout (below 1, or sizes beyond 64 bits).
    bool make(std::int64_t blocksize, std::int64_t scans);
};

// Encodes the header with its check into 128 bytes.
void encodeHeader(Header header, std::uint8_t* bytes);
// False when the bytes are not a header of this format (tag, version, check).
bool decodeHeader(const std::uint8_t* bytes, Header& into);

SampleNode readSample(const std::uint8_t* at);
void writeSample(const SampleNode& node, std::uint8_t* at);
ScanNode readScan(const std::uint8_t* at);
void writeScan(const ScanNode& node, std::uint8_t* at);

// The cache file of a channel (kind 1 input, 2 tacho) of the recording `recording`; both names are
// system code page text.
std::string cachePath(const std::string& recording, long kind, long channel);

// The size and modification time of a file; false when it cannot be examined.
struct Stamp {
    std::int64_t size = 0;
    std::int64_t time = 0;
    bool operator==(const Stamp&) const = default;
};
bool stampOf(const std::string& path, Stamp& into);

}  // namespace nvdl::access::mmx
