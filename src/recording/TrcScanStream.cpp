#include "recording/TrcScanStream.h"

#include <algorithm>
#include <type_traits>

#include "recording/TrcFile.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::trc {

long ScanStream::usableChannel(long number) const {
    if (number < 1 || number > m_g.lastChannelNumber(m_part)) return -1;
    return m_g.channelIndex(m_part, number);
}

int ScanStream::move(std::int64_t offset, unsigned char* data, std::int64_t size) {
    return m_file->Seek(offset, 0) && m_file->Read(data, size) ? 1 : 0;
}

int ScanStream::move(std::int64_t offset, const unsigned char* data, std::int64_t size) {
    return m_file->Seek(offset, 0) && m_file->Write(data, size) ? 1 : 0;
}

template <class Byte>
int ScanStream::moveChannel(long number, std::int64_t position, Byte* data, std::int64_t count) {
    constexpr bool write = std::is_const_v<Byte>;
    if (!m_file || !m_file->IsOpened() || !data || (write && m_file->IsReadOnly())) return 0;
    // The run stays inside the stream, so a write never reaches the sections behind it.
    ChannelRunPlace at;
    if (!placeChannelRun(m_g, m_part, usableChannel(number), position, count, at)) return 0;
    const std::int64_t stride = m_g.stride(), first = at.firstBlock, channelAt = at.channelAt;
    std::int64_t offset = at.offset, left = count * m_g.sampleBytes;
    const std::int64_t fileSize = m_file->GetFileSize();
    if (offset + left >= fileSize) return 0;

    // The first piece runs to the end of its block, every further one is a whole block or the rest.
    std::int64_t piece = at.firstPiece;
    for (std::int64_t block = first;;) {
        if (!move(offset, data, piece)) return 0;
        data += piece;
        left -= piece;
        if (left == 0) return 1;
        // A write reaches the block of its first sample and the next one, never further, and
        // succeeds without the rest of a longer run. Kept so on purpose: writers move one block's
        // worth of samples at a time, which spans two blocks at most.
        if (write && block > first) return 1;
        offset = channelAt + ++block * stride;
        // A recording cut short by the end of the file gives back the part that is there.
        if (offset + left >= fileSize) return 1;
        piece = std::min(m_g.blockBytes(), left);
    }
}

template <class Byte>
int ScanStream::moveScan(long scan, Byte* data, std::int64_t count) {
    constexpr bool write = std::is_const_v<Byte>;
    if (!m_file || !m_file->IsOpened() || !data || (write && m_file->IsReadOnly())) return 0;
    const std::int64_t leastTachos = m_part == ScanPart::Input ? 0 : 1;
    if (scan < 1 || scan > m_g.scans || m_g.sampleBytes < 1 || m_g.usedInputs < 1 || m_g.usedTachos < leastTachos ||
        m_g.blocksize < 1 || !m_g.bounded())
        return 0;
    std::int64_t bytes;
    if (__builtin_mul_overflow(count, m_g.sampleBytes, &bytes) || bytes != m_g.used(m_part) * m_g.blockBytes())
        return 0;
    return move(m_g.scanOffset(scan) + m_g.samplesAt(m_part), data, bytes);
}

std::int64_t ScanStream::infoOffset(long scan, long number) const {
    if (scan < 1 || scan > m_g.scans || m_g.usedInputs < 1 || m_g.blocksize < 1 || !m_g.bounded()) return -1;
    const long c = usableChannel(number);
    if (c < 0) return -1;
    return m_g.scanOffset(scan) + m_g.infosAt(m_part) + c * ScanGeometry::kInfoBytes;
}

int ScanStream::ReadChannel(long number, std::int64_t position, unsigned char* buffer, std::int64_t count) {
    return moveChannel(number, position, buffer, count);
}

int ScanStream::WriteChannel(long number, std::int64_t position, const unsigned char* buffer, std::int64_t count) {
    return moveChannel(number, position, buffer, count);
}

int ScanStream::ReadScan(long scan, unsigned char* buffer, std::int64_t count) { return moveScan(scan, buffer, count); }

int ScanStream::WriteScan(long scan, const unsigned char* buffer, std::int64_t count) {
    return moveScan(scan, buffer, count);
}

int ScanStream::ReadInfo(long scan, long number, CTrcScanInfo& info) {
    if (!m_file || !m_file->IsOpened()) return 0;
    const std::int64_t offset = infoOffset(scan, number);
    std::uint8_t bytes[CTrcScanInfo::kRecordSize];
    if (offset < 0 || offset >= m_file->GetFileSize() || !move(offset, bytes, sizeof bytes)) return 0;
    info.Decode(bytes);
    return 1;
}

int ScanStream::WriteInfo(long scan, long number, const CTrcScanInfo& info) {
    if (!m_file || !m_file->IsOpened() || m_file->IsReadOnly()) return 0;
    const std::int64_t offset = infoOffset(scan, number);
    std::uint8_t bytes[CTrcScanInfo::kRecordSize];
    info.Encode(bytes);
    if (offset < 0 || offset >= m_file->GetFileSize()) return 0;
    return move(offset, static_cast<const unsigned char*>(bytes), sizeof bytes);
}

}  // namespace nvdl::trc
