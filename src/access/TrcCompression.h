// CTrcCompression: the working state of the loader's reduced reads, kept between calls because a
// scrolling display reads every view: the working copy of the largest block (it only ever
// shrinks), the working arrays, the raw buffer, the read buffers of stored curves and the windows
// of the file. Nothing else survives a call.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "access/MinMaxCache.h"
#include "access/TrcCompressionPlan.h"
#include "access/TrcSampleQueue.h"
#include "recording/TrcChannelRun.h"

namespace nvdl::trc {
class CTrcScanInfo;
}

namespace nvdl::access {

class CTrcLoader;

// Stored values to physical units: a 16-bit sample first to range units by its scale, then
// factor x value + offset. Stored measurements are taken as they are.
struct SampleConversion {
    bool convert = false;
    bool int16 = false;
    float scale = 1.0f;
    float factor = 1.0f;
    float offset = 0.0f;

    // A stored value: a float, or the integer value of a 16-bit sample.
    float operator()(float stored) const;
    // Whether the pair of a run follows from the run's stored extremes alone: a finite, non-zero
    // factor keeps (or, below zero, reverses) the order of all values.
    bool keepsOrder() const;
    // The pair that a search over all converted values of a run gives, from the run's stored
    // extremes; +-infinity when the run held no number.
    StepExtremes pair(float lowest, float highest) const;
};

// An array that grows and never shrinks, released with free(); its values do not survive growth.
template <class T>
class ScratchArray {
public:
    ~ScratchArray() { std::free(m_data); }
    T* Ensure(std::int64_t count) {
        if (count > m_capacity) {
            std::free(m_data);
            m_data = static_cast<T*>(std::malloc(static_cast<std::size_t>(count) * sizeof(T)));
            m_capacity = m_data ? count : 0;
        }
        return m_data;
    }
    T* get() const { return m_data; }

private:
    T* m_data = nullptr;
    std::int64_t m_capacity = 0;
};

// An output array, the caller's once handed out.
struct FreeDeleter {
    void operator()(float* values) const { std::free(values); }
};
using OutputArray = std::unique_ptr<float, FreeDeleter>;

struct CompressionRequest {
    long kind;
    long channel;
    long subChannel;
    std::int64_t fileSamples;
    std::int64_t start;
    std::int64_t count;
};

struct CompressionResult {
    OutputArray x, yReal, yImag;
    CompressionPlan plan;
    float range = 20.0f;
    long status = 0;
};

class CTrcCompression {
public:
    explicit CTrcCompression(long maxBlockSize) : m_workingMaximum(maxBlockSize) {}
    long GetWorkingMaximum() const { return m_workingMaximum; }
    int Read(CTrcLoader& loader, const CompressionRequest& request, CompressionResult& result);

private:
    struct Source;
    struct Step;
    struct RecordedPart;

    int findRecorded(CTrcLoader& loader, const CompressionRequest& request, Source& source);
    int findStored(CTrcLoader& loader, const CompressionRequest& request, Source& source);
    // Answers a reduced read of a recorded channel from its min/max cache; false when it cannot.
    bool fromCache(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                   CompressionResult& result, std::int64_t length);
    int readRecorded(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                     CompressionResult& result, std::int64_t length);
    // Takes the steps of one part of a recorded channel with the part's reader, feeding `builder`
    // when one is given. Parts that search stored extremes touch nothing shared but their own
    // pairs of the output, so several run at once.
    void readSteps(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                   CompressionResult& result, std::int64_t length, CMinMaxCacheBuilder* builder, RecordedPart& part);
    // The steps in `count` parts, each but the first on a thread of its own, joined in order.
    int readInParts(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                    CompressionResult& result, std::int64_t length, long count);
    // One scan's block and status record into a cache being built.
    void feedCache(CMinMaxCacheBuilder& builder, const Source& source, const unsigned char* block,
                   const trc::CTrcScanInfo& info);
    int readStored(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                   CompressionResult& result, std::int64_t length);
    // Takes one step of `queue` into output `out` (a pair, or the values themselves).
    int takeStep(CSampleQueue& queue, const Step& step, float* working, float* out, std::int64_t length,
                 long& status, float& range);

    long m_workingMaximum;
    std::int64_t m_workingLength = 0;
    ScratchArray<float> m_workingX, m_workingY, m_workingImag;
    ScratchArray<unsigned char> m_raw;
    ScratchArray<float> m_readX, m_readY, m_readImag;
    ScratchArray<float> m_scanValues;  // one scan's block as floats, for a cache being built
    trc::ChannelRunReader m_reader;
    std::vector<std::unique_ptr<trc::ChannelRunReader>> m_partReaders;  // of the parts after the first
};

}  // namespace nvdl::access
