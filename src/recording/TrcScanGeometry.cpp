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

}  // namespace nvdl::trc
