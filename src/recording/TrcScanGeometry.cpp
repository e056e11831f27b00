#include "recording/TrcScanGeometry.h"

#include <algorithm>

namespace nvdl::trc {

long ScanGeometry::channelIndex(ScanPart part, long number) const {
    const std::vector<std::uint8_t>& flags = part == ScanPart::Input ? inputUsed : tachoUsed;
    const std::int64_t k = part == ScanPart::Input ? number : number - totalInputs();
    if (k < 1 || k > static_cast<std::int64_t>(flags.size()) || !flags[static_cast<std::size_t>(k - 1)]) return -1;
    const long index =
        static_cast<long>(std::count_if(flags.begin(), flags.begin() + (k - 1), [](std::uint8_t f) { return f != 0; }));
    // A list that marks more channels used than the setup counts has no room for the extra ones.
    return index < used(part) ? index : -1;
}

bool ScanGeometry::bounded() const {
    if (sampleBytes < 0 || blocksize < 0 || usedInputs < 0 || usedTachos < 0 || scans < 0 || maxScans < 0 ||
        streamOffset < 0)
        return false;
    std::int64_t block, channel, channels, stream, end, samples;
    return !__builtin_mul_overflow(blocksize, sampleBytes, &block) &&
           !__builtin_add_overflow(block, kInfoBytes, &channel) &&
           !__builtin_add_overflow(usedInputs, usedTachos, &channels) &&
           !__builtin_mul_overflow(channels, channel, &stream) &&  // the stride
           !__builtin_mul_overflow(std::max(scans, maxScans), stream, &stream) &&
           !__builtin_add_overflow(streamOffset, stream, &end) &&
           !__builtin_mul_overflow(blocksize, maxScans, &samples);
}

std::int64_t ScanGeometry::sectionSize(ScanPart part) const {
    return bounded() ? maxScans * used(part) * (blockBytes() + kInfoBytes) : 0;
}

std::int64_t ScanGeometry::statusSize(ScanPart part) const {
    return bounded() ? maxScans * used(part) * kInfoBytes : 0;
}

bool placeChannelRun(const ScanGeometry& g, ScanPart part, long index, std::int64_t position, std::int64_t count,
                     ChannelRunPlace& at) {
    const std::int64_t b = g.blocksize, d = g.sampleBytes, m = g.maxScans, used = g.used(part);
    if (index < 0 || g.usedInputs < 1 || g.usedTachos < 0 || b < 1 || m < 1 || used < 1 || d < 1) return false;
    if ((g.sectionSize(part) - g.statusSize(part)) / d / m / used != b) return false;
    if (count < 1 || count > b * m || position < 0 || position > b * m - count) return false;
    at.firstBlock = position / b;
    at.channelAt = g.streamOffset + g.samplesAt(part) + index * g.blockBytes();
    at.offset = at.channelAt + at.firstBlock * g.stride() + (position - at.firstBlock * b) * d;
    at.firstPiece = std::min(((at.firstBlock + 1) * b - position) * d, count * d);
    return true;
}

}  // namespace nvdl::trc
