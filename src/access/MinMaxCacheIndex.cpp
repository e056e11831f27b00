#include "access/MinMaxCacheIndex.h"

#include <algorithm>
#include <memory>

#include "access/MinMaxCache.h"
#include "platform/LittleEndian.h"
#include "recording/Trc.h"
#include "recording/TrcFile.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::access {

namespace {

// Whole scans are read in pieces of about this many bytes (at least one scan).
constexpr std::int64_t kPieceBytes = std::int64_t{8} << 20;

struct Source {
    trc::ScanPart part;
    long index;  // among the part's used channels
    std::unique_ptr<CMinMaxCacheBuilder> builder;
};

void listChannels(trc::CTrcSetupSection& setup, const trc::ScanGeometry& g, std::vector<IndexedChannel>& channels,
                  std::vector<Source>& sources) {
    const long inputs = setup.GetInputs().GetTotalChannels();
    auto add = [&](trc::ScanPart part, long number, const char* name) {
        const long index = g.channelIndex(part, number);
        if (index < 0) return;
        channels.push_back({part == trc::ScanPart::Input ? 1L : 2L, number, name, 0, false});
        sources.push_back({part, index, nullptr});
    };
    for (long i = 0; i < inputs; ++i) add(trc::ScanPart::Input, i + 1, setup.GetInputs().GetItem(i)->GetName());
    for (long k = 0; k < setup.GetTachos().GetTotalChannels(); ++k)
        add(trc::ScanPart::Tacho, inputs + k + 1, setup.GetTachos().GetItem(k)->GetName());
}

}  // namespace

bool indexRecording(const std::string& recording, std::vector<IndexedChannel>& channels, std::string& reason) {
    channels.clear();
    trc::CTrc trc;
    if (!trc.Open(recording.c_str())) {
        reason = "not a readable recording";
        return false;
    }
    trc::CTrcRecorderSection& recorder = trc.GetRecorder();
    if (!recorder.Read()) {
        reason = "the recorder section cannot be read";
        return false;
    }
    trc::ScanGeometry g;
    recorder.GetHeader().DescribeScans(g);
    g.streamOffset = recorder.GetInputSection().GetSectionOffset();
    trc::CTrcFile& file = *trc.GetFile();
    const std::int64_t fileSize = file.GetFileSize();
    if (!g.bounded() || g.blocksize < 1 || g.stride() < 1 || g.streamOffset > fileSize) {
        reason = "the recorder's setup describes no scan stream";
        return false;
    }
    std::vector<Source> sources;
    listChannels(recorder.GetHeader().GetSetup(), g, channels, sources);

    // Only scans that stand whole in the file are taken.
    const std::int64_t stride = g.stride();
    const std::int64_t scans = std::min(g.scans, (fileSize - g.streamOffset) / stride);
    if (scans < 1) return true;
    for (std::size_t c = 0; c < sources.size(); ++c)
        sources[c].builder = CMinMaxCacheBuilder::Begin(recording, channels[c].kind, channels[c].channel,
                                                        static_cast<long>(g.blocksize), scans);

    const std::int64_t perPiece = std::clamp<std::int64_t>(kPieceBytes / stride, 1, scans);
    std::vector<unsigned char> piece(static_cast<std::size_t>(perPiece * stride));
    std::vector<float> values(static_cast<std::size_t>(g.blocksize));
    for (std::int64_t first = 1; first <= scans; first += perPiece) {
        const std::int64_t count = std::min(perPiece, scans - first + 1);
        if (!file.Seek(g.scanOffset(first), 0) || !file.Read(piece.data(), count * stride)) break;
        for (std::int64_t s = 0; s < count; ++s) {
            const unsigned char* scan = piece.data() + s * stride;
            for (Source& source : sources) {
                if (!source.builder) continue;
                const unsigned char* at = scan + g.samplesAt(source.part) + source.index * g.blockBytes();
                for (std::int64_t i = 0; i < g.blocksize; ++i)
                    values[static_cast<std::size_t>(i)] =
                        g.sampleBytes == 2 ? le::i16(at + 2 * i) : le::f32(at + 4 * i);
                trc::CTrcScanInfo info;
                info.Decode(scan + g.infosAt(source.part) + source.index * trc::ScanGeometry::kInfoBytes);
                source.builder->AddScan(values.data(), info.GetStatus(), info.GetRange());
            }
        }
        for (std::size_t c = 0; c < sources.size(); ++c) channels[c].scans += count;
    }
    for (std::size_t c = 0; c < sources.size(); ++c)
        channels[c].written = sources[c].builder && sources[c].builder->Finish() == 1;
    return true;
}

long BuildMinMaxCaches(const std::string& recording) {
    std::vector<IndexedChannel> channels;
    std::string reason;
    if (!indexRecording(recording, channels, reason)) return -1;
    return static_cast<long>(
        std::count_if(channels.begin(), channels.end(), [](const IndexedChannel& c) { return c.written; }));
}

}  // namespace nvdl::access
