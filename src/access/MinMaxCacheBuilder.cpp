// CMinMaxCacheBuilder: makes a channel's cache file while the channel's scans pass by. The levels
// are streamed to a temporary file beside the recording as their nodes complete (a few buffers of
// memory, whatever the recording's length); Finish adds the header, syncs the data and renames the
// file to the cache's name, so that the name only ever holds a whole cache.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>

#include "access/MinMaxCache.h"
#include "access/MinMaxCacheFormat.h"
#include "access/MinMaxPyramidWriter.h"
#include "measurement/FloatExtremes.h"
#include "platform/CodePage.h"

namespace nvdl::access {

namespace {

using namespace mmx;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

class Builder final : public CMinMaxCacheBuilder {
public:
    Builder(const Header& header, const Layout& layout, const std::string& recording, std::string temporary, int fd)
        : m_header(header),
          m_recording(recording),
          m_temporary(std::move(temporary)),
          m_fd(fd),
          m_samples(fd, layout.sampleAt, layout.sampleCount),
          m_scans(fd, layout.scanAt, layout.scanCount) {}

    ~Builder() override { abandon(); }

    void AddScan(const float* values, long status, float range) override {
        if (m_fd < 0 || !values || m_header.coveredScans >= m_header.layoutScans) return;
        for (std::int64_t i = 0, n; i < m_header.blocksize; i += n) {
            n = std::min(kBaseRun - m_inRun, m_header.blocksize - i);
            floatExtremes(values + i, static_cast<std::size_t>(n), m_run.low, m_run.high);
            if ((m_inRun += n) == kBaseRun) endRun();
        }
        m_scans.push({static_cast<std::int32_t>(status), range});
        ++m_header.coveredScans;
    }

    int Finish() override {
        if (m_fd < 0 || m_header.coveredScans < 1) return abandon();
        if (m_inRun > 0) endRun();
        std::uint8_t head[kHeaderSize];
        encodeHeader(m_header, head);
        Stamp now;
        // A recording that changed while its scans were read would be described wrongly.
        if (!m_samples.finish() || !m_scans.finish() || ::pwrite(m_fd, head, sizeof head, 0) != kHeaderSize ||
            ::fdatasync(m_fd) != 0 || !stampOf(m_recording, now) || now.size != m_header.recordingSize ||
            now.time != m_header.recordingTime)
            return abandon();
        ::close(m_fd);
        m_fd = -1;
        const std::string target = pathFromAnsi(cachePath(m_recording, m_header.kind, m_header.channel)).string();
        if (std::rename(m_temporary.c_str(), target.c_str()) != 0) {
            ::unlink(m_temporary.c_str());
            return 0;
        }
        return 1;
    }

private:
    void endRun() {
        m_samples.push(m_run);
        m_run = {kInfinity, -kInfinity};
        m_inRun = 0;
    }

    int abandon() {
        if (m_fd < 0) return 0;
        ::close(m_fd);
        ::unlink(m_temporary.c_str());
        m_fd = -1;
        return 0;
    }

    Header m_header;
    std::string m_recording;
    std::string m_temporary;  // a file system path
    int m_fd;
    PyramidWriter<SampleNodes> m_samples;
    PyramidWriter<ScanNodes> m_scans;
    SampleNode m_run{kInfinity, -kInfinity};
    std::int64_t m_inRun = 0;
};

}  // namespace

std::unique_ptr<CMinMaxCacheBuilder> CMinMaxCacheBuilder::Begin(const std::string& recording, long kind, long channel,
                                                                long blocksize, std::int64_t scans) {
    Header header;
    Layout layout;
    Stamp stamp;
    if ((kind != 1 && kind != 2) || channel < 1 || channel > std::numeric_limits<std::int32_t>::max() ||
        !layout.make(blocksize, scans) || !stampOf(recording, stamp))
        return nullptr;
    header.kind = static_cast<std::int32_t>(kind);
    header.channel = static_cast<std::int32_t>(channel);
    header.blocksize = blocksize;
    header.layoutScans = scans;
    header.recordingSize = stamp.size;
    header.recordingTime = stamp.time;

    std::string temporary = pathFromAnsi(cachePath(recording, kind, channel)).string() + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) return nullptr;
    // The file takes its final length at once: the levels' places are fixed, and a cover of fewer
    // scans than laid out leaves zeros nobody reads.
    if (::fchmod(fd, 0644) != 0 || ::ftruncate(fd, static_cast<off_t>(layout.size)) != 0) {
        ::close(fd);
        ::unlink(temporary.c_str());
        return nullptr;
    }
    return std::make_unique<Builder>(header, layout, recording, std::move(temporary), fd);
}

}  // namespace nvdl::access
