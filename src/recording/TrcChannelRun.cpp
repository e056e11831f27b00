#include "recording/TrcChannelRun.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "recording/TrcFile.h"
#include "recording/TrcRecorderChannels.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::trc {

// A piece of the file held in memory. Every offset this reader reads is the channel's stream
// offset plus a multiple of the sample size, and a window starts at one of them, so every run
// handed out from a window is aligned for its samples as well as the window itself is.
struct ChannelRunReader::Window {
    std::unique_ptr<unsigned char[]> bytes;
    std::int64_t capacity = 0;
    std::int64_t begin = 0;  // file offsets held: [begin, end)
    std::int64_t end = 0;
};

ChannelRunReader::ChannelRunReader() = default;

ChannelRunReader::~ChannelRunReader() = default;

void ChannelRunReader::Begin(CTrcRecorderChannelSection& section, CTrcFile* file, long number,
                             std::int64_t endSample) {
    m_file = file;
    m_g = section.GetGeometry();
    m_part = section.GetPart();
    m_bounded = m_g.bounded();
    m_channel = number < 1 || number > m_g.lastChannelNumber(m_part) ? -1 : m_g.channelIndex(m_part, number);
    m_fileSize = file && file->IsOpened() ? file->GetFileSize() : -1;
    m_current.reset();
    // A window pays where this channel's blocks and records are at least half of every scan.
    const std::int64_t own = m_g.blockBytes() + ScanGeometry::kInfoBytes;
    m_windowed = m_bounded && m_g.blocksize > 0 && m_channel >= 0 && 2 * own >= m_g.stride();
    m_limit = m_fileSize;
    if (m_windowed) {
        const std::int64_t lastScan = std::max<std::int64_t>(endSample - 1, 0) / m_g.blocksize;  // from 0
        if (lastScan < m_g.maxScans) m_limit = std::min(m_limit, m_g.scanOffset(lastScan + 2));
    }
}

void ChannelRunReader::End() {
    m_file = nullptr;
    m_current.reset();
    // Windows still held by a caller live on with their holder.
    if (m_windows.size() > 2) m_windows.resize(2);
}

int ChannelRunReader::readAt(std::int64_t offset, unsigned char* data, std::int64_t size) {
    return m_file->ReadAt(offset, data, size);
}

std::shared_ptr<ChannelRunReader::Window> ChannelRunReader::freeWindow(std::int64_t capacity) {
    for (const std::shared_ptr<Window>& w : m_windows)
        if (w.use_count() == 1 && w->capacity >= capacity) return w;
    auto w = std::make_shared<Window>();
    w->capacity = std::max(capacity, kWindowBytes);
    w->bytes.reset(new (std::nothrow) unsigned char[static_cast<std::size_t>(w->capacity)]);
    if (!w->bytes) return nullptr;
    m_windows.push_back(w);
    return w;
}

const unsigned char* ChannelRunReader::windowed(std::int64_t offset, std::int64_t size,
                                                std::shared_ptr<const void>& keep) {
    if (!m_windowed || offset < 0 || size > m_fileSize - offset) return nullptr;
    if (!m_current || offset < m_current->begin || offset + size > m_current->end) {
        const std::int64_t wanted = std::max(size, std::min(kWindowBytes, m_limit - offset));
        const std::int64_t length = std::min(wanted, m_fileSize - offset);
        std::shared_ptr<Window> fresh = freeWindow(length);
        if (!fresh || !readAt(offset, fresh->bytes.get(), length)) return nullptr;
        fresh->begin = offset;
        fresh->end = offset + length;
        m_current = std::move(fresh);
        // Lets a file that is not in memory yet come in while this window is worked on.
        if (m_current->end < m_limit)
            ::posix_fadvise(m_file->GetHandle(), m_current->end, std::min(kWindowBytes, m_limit - m_current->end),
                            POSIX_FADV_WILLNEED);
    }
    keep = m_current;
    return m_current->bytes.get() + (offset - m_current->begin);
}

// The checks and pieces are those of the section's ReadChannel: the same requests fail, and a
// run stands at the same bytes of the file.
int ChannelRunReader::ReadChannel(std::int64_t position, std::int64_t count, Run& run) {
    run = Run{};
    ChannelRunPlace at;
    if (!m_file || !m_file->IsOpened() || !placeChannelRun(m_g, m_part, m_channel, position, count, at)) return 0;
    const std::int64_t stride = m_g.stride(), first = at.firstBlock, channelAt = at.channelAt;
    std::int64_t offset = at.offset, left = count * m_g.sampleBytes, piece = at.firstPiece;
    if (offset + left >= m_fileSize) return 0;
    if (piece == left) {
        if (const unsigned char* at = windowed(offset, piece, run.keep)) {
            run.data = at;
            return 1;
        }
        m_block.resize(static_cast<std::size_t>(left));
        if (!readAt(offset, m_block.data(), left)) return 0;
        run.data = m_block.data();
        return 1;
    }
    m_block.assign(static_cast<std::size_t>(left), 0);
    unsigned char* data = m_block.data();
    for (std::int64_t block = first;;) {
        std::shared_ptr<const void> keep;
        if (const unsigned char* at = windowed(offset, piece, keep)) {
            std::memcpy(data, at, static_cast<std::size_t>(piece));
        } else if (!readAt(offset, data, piece)) {
            return 0;
        }
        data += piece;
        left -= piece;
        if (left == 0) break;
        offset = channelAt + ++block * stride;
        if (offset + left >= m_fileSize) break;  // the end of the file cuts the run short
        piece = std::min(m_g.blockBytes(), left);
    }
    run.data = m_block.data();
    return 1;
}

int ChannelRunReader::ReadInfo(long scan, CTrcScanInfo& info) {
    if (!m_file || !m_file->IsOpened()) return 0;
    if (scan < 1 || scan > m_g.scans || m_g.usedInputs < 1 || m_g.blocksize < 1 || !m_bounded || m_channel < 0)
        return 0;
    const std::int64_t offset = m_g.scanOffset(scan) + m_g.infosAt(m_part) + m_channel * ScanGeometry::kInfoBytes;
    if (offset >= m_fileSize) return 0;
    std::uint8_t bytes[CTrcScanInfo::kRecordSize];
    std::shared_ptr<const void> keep;
    if (const unsigned char* at = windowed(offset, sizeof bytes, keep)) {
        std::memcpy(bytes, at, sizeof bytes);
    } else if (!readAt(offset, bytes, sizeof bytes)) {
        return 0;
    }
    info.Decode(bytes);
    return 1;
}

}  // namespace nvdl::trc
