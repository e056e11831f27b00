// ScanGeometry: where every sample and status record of a recording's scan stream stands. Nothing
// of it is stored in the file as such: the recorder works it out from the setup of the recording
// (blocksize, the used input and tacho channels, the scan counts) and the sample format, each time
// it is needed, since the scan count grows while a recording is written.
//
// The stream starts at `streamOffset` and holds `maxScans` scans of equal length. A scan is the
// input channels' samples, channel after channel in used order with `blocksize` samples each, then
// one status record per used input channel, then the same for the used tacho channels. The input
// part and the tacho part are two views of this one interleaved stream.
#pragma once

#include <cstdint>
#include <vector>

namespace nvdl::trc {

enum class ScanPart { Input, Tacho };

struct ScanGeometry {
    std::int64_t sampleBytes = 4;  // 2 for 16-bit integer samples, 4 for float samples
    std::int64_t blocksize = 0;    // samples per channel and scan
    std::int64_t usedInputs = 0;
    std::int64_t usedTachos = 0;
    std::int64_t scans = 0;         // scans recorded
    std::int64_t maxScans = 0;      // scans the stream has room for
    std::int64_t streamOffset = 0;  // absolute offset of the first scan
    // One flag per channel of the setup, used or not, in channel order.
    std::vector<std::uint8_t> inputUsed, tachoUsed;

    std::int64_t totalInputs() const { return static_cast<std::int64_t>(inputUsed.size()); }
    std::int64_t totalTachos() const { return static_cast<std::int64_t>(tachoUsed.size()); }
    std::int64_t used(ScanPart part) const { return part == ScanPart::Input ? usedInputs : usedTachos; }
    // The highest channel number a part accepts: tacho channels are numbered behind all inputs.
    std::int64_t lastChannelNumber(ScanPart part) const {
        return part == ScanPart::Input ? totalInputs() : totalInputs() + totalTachos();
    }

    // Position of a 1-based channel number among the part's used channels, or -1 when the channel
    // is unused or not there. Tacho channel k has the number total inputs + k.
    long channelIndex(ScanPart part, long number) const;

    // Whether every offset and size the stream can name, for the larger of the two scan counts,
    // fits in 64 bits. A damaged setup can claim anything; its geometry is then refused.
    bool bounded() const;

    std::int64_t blockBytes() const { return blocksize * sampleBytes; }
    std::int64_t stride() const { return (usedInputs + usedTachos) * (blockBytes() + kInfoBytes); }
    // Offset of scan `scan` (from 1).
    std::int64_t scanOffset(std::int64_t scan) const { return streamOffset + (scan - 1) * stride(); }
    // Offsets inside a scan: the part's first sample, and its first status record.
    std::int64_t samplesAt(ScanPart part) const {
        return part == ScanPart::Input ? 0 : usedInputs * (blockBytes() + kInfoBytes);
    }
    std::int64_t infosAt(ScanPart part) const { return samplesAt(part) + used(part) * blockBytes(); }

    // Bytes of the part over all `maxScans` scans, and of its status records; 0 when not bounded.
    std::int64_t sectionSize(ScanPart part) const;
    std::int64_t statusSize(ScanPart part) const;

    static constexpr std::int64_t kInfoBytes = 12;
};

// Where a run of one channel's samples stands: the channel's samples in every scan begin at
// `channelAt` + scan index * stride; the run's first byte is at `offset`, in the block `firstBlock`
// (from 0), and its first piece runs to the end of that block or of the run.
struct ChannelRunPlace {
    std::int64_t firstBlock = 0;
    std::int64_t channelAt = 0;
    std::int64_t offset = 0;
    std::int64_t firstPiece = 0;
};

// The place of `count` samples from sample `position` of the used channel at `index` among its
// part's used channels. False for a run the stream cannot hold: no such channel, a part that is
// not whole blocks of the blocksize (so a damaged geometry is refused), or a run outside the stream.
bool placeChannelRun(const ScanGeometry& g, ScanPart part, long index, std::int64_t position, std::int64_t count,
                     ChannelRunPlace& at);

}  // namespace nvdl::trc
