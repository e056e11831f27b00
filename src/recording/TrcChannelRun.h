// ChannelRunReader: reads one channel of a recording's scan stream in order, block after block with
// each scan's status record, and answers exactly as the channel's section would answer the same
// ReadChannel and ReadInfo calls, but from few large reads of the file. Where the channel's samples
// make up most of each scan (a recording of one or two channels) a window of many scans is read at
// once and every block is handed out in place, kept alive by whoever still holds it; a channel that
// is a small share of each scan is read piece by piece, as a window would mostly carry the bytes of
// other channels.
//
// The layout is taken once at Begin: the recorder's header does not change while a file is read.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "recording/TrcScanGeometry.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcRecorderChannelSection;
class CTrcScanInfo;

class ChannelRunReader {
public:
    // The bytes of a run after a read. `data` stays valid while `keep` is held; a run without
    // `keep` lives in the reader and is overwritten by the next read.
    struct Run {
        const unsigned char* data = nullptr;
        std::shared_ptr<const void> keep;
    };

    ChannelRunReader();
    ~ChannelRunReader();
    ChannelRunReader(const ChannelRunReader&) = delete;
    ChannelRunReader& operator=(const ChannelRunReader&) = delete;

    // Starts the reads of channel `number` of the section's part; the window never reads past the
    // scan that holds sample `endSample` - 1.
    void Begin(CTrcRecorderChannelSection& section, CTrcFile* file, long number, std::int64_t endSample);
    // `count` samples from sample `position` of the recording on. A run that the end of the file
    // cuts short succeeds with the part that is there, the rest reading as zeros.
    int ReadChannel(std::int64_t position, std::int64_t count, Run& run);
    int ReadInfo(long scan, CTrcScanInfo& info);
    // Lets go of the file and of the windows beyond the two that the next reads reuse.
    void End();

    static constexpr std::int64_t kWindowBytes = std::int64_t{256} << 10;

private:
    struct Window;

    // The bytes [offset, offset + size) of the file, inside the current window (read anew when they
    // are not), or null when a window cannot hold them; `keep` then holds the window.
    const unsigned char* windowed(std::int64_t offset, std::int64_t size, std::shared_ptr<const void>& keep);
    std::shared_ptr<Window> freeWindow(std::int64_t capacity);
    int readAt(std::int64_t offset, unsigned char* data, std::int64_t size);

    CTrcFile* m_file = nullptr;
    ScanGeometry m_g;
    ScanPart m_part = ScanPart::Input;
    long m_channel = -1;  // position among the part's used channels
    bool m_bounded = false;
    bool m_windowed = false;
    std::int64_t m_fileSize = -1;
    std::int64_t m_limit = 0;  // no window reads at or past this offset unless a request needs it
    std::vector<std::shared_ptr<Window>> m_windows;
    std::shared_ptr<Window> m_current;
    std::vector<unsigned char> m_block;  // a run that is not one piece of a window
};

}  // namespace nvdl::trc
