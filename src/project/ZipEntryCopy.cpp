#include "project/ZipEntryCopy.h"

#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace nvdl {

namespace {

constexpr std::size_t kChunk = 64 * 1024;

bool writeAll(int fd, const unsigned char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

// Where the unpacked bytes go: counted against the declared size before they are written.
class Sink {
public:
    Sink(int fd, std::uint64_t declaredSize) : m_fd(fd), m_declared(declaredSize) {}

    ZipCopyResult put(const unsigned char* data, std::size_t size) {
        if (size > m_declared - m_written) return ZipCopyResult::TooLarge;
        if (!writeAll(m_fd, data, size)) return ZipCopyResult::WriteError;
        m_crc = crc32(m_crc, data, static_cast<uInt>(size));
        m_written += size;
        return ZipCopyResult::Ok;
    }
    ZipCopyResult finish(std::uint32_t declaredCrc) const {
        if (m_written != m_declared) return ZipCopyResult::Damaged;
        return m_crc == declaredCrc ? ZipCopyResult::Ok : ZipCopyResult::CrcError;
    }

private:
    int m_fd;
    std::uint64_t m_declared;
    std::uint64_t m_written = 0;
    uLong m_crc = crc32(0, nullptr, 0);
};

ZipCopyResult copyStored(unzFile archive, Sink& sink, std::vector<unsigned char>& buffer) {
    for (;;) {
        const int n = unzReadCurrentFile(archive, buffer.data(), static_cast<unsigned>(buffer.size()));
        if (n < 0) return ZipCopyResult::Damaged;
        if (n == 0) return ZipCopyResult::Ok;
        if (ZipCopyResult r = sink.put(buffer.data(), static_cast<std::size_t>(n)); r != ZipCopyResult::Ok) return r;
    }
}

class Inflater {
public:
    Inflater() { m_ready = inflateInit2(&m_stream, -MAX_WBITS) == Z_OK; }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() {
        if (m_ready) inflateEnd(&m_stream);
    }
    bool ready() const { return m_ready; }
    z_stream& stream() { return m_stream; }

private:
    z_stream m_stream{};
    bool m_ready = false;
};

ZipCopyResult copyDeflated(unzFile archive, Sink& sink, std::vector<unsigned char>& in) {
    Inflater inflater;
    if (!inflater.ready()) return ZipCopyResult::Damaged;
    z_stream& z = inflater.stream();
    std::vector<unsigned char> out(kChunk);
    int status = Z_OK;
    while (status != Z_STREAM_END) {
        if (z.avail_in == 0) {
            const int n = unzReadCurrentFile(archive, in.data(), static_cast<unsigned>(in.size()));
            if (n <= 0) return ZipCopyResult::Damaged;  // the compressed data ends before the stream does
            z.next_in = in.data();
            z.avail_in = static_cast<uInt>(n);
        }
        z.next_out = out.data();
        z.avail_out = static_cast<uInt>(out.size());
        status = inflate(&z, Z_NO_FLUSH);
        const bool progress = status == Z_OK || status == Z_STREAM_END || (status == Z_BUF_ERROR && z.avail_in == 0);
        if (!progress) return ZipCopyResult::Damaged;
        if (ZipCopyResult r = sink.put(out.data(), out.size() - z.avail_out); r != ZipCopyResult::Ok) return r;
    }
    return ZipCopyResult::Ok;
}

}  // namespace

ZipCopyResult copyZipEntry(unzFile archive, int method, std::uint64_t declaredSize, std::uint32_t declaredCrc,
                           int fd) {
    Sink sink(fd, declaredSize);
    std::vector<unsigned char> buffer(kChunk);
    const ZipCopyResult copied =
        method == Z_DEFLATED ? copyDeflated(archive, sink, buffer) : copyStored(archive, sink, buffer);
    return copied == ZipCopyResult::Ok ? sink.finish(declaredCrc) : copied;
}

}  // namespace nvdl
