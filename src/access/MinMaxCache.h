// The min/max cache of a recording's channels: for each channel, the smallest and largest stored
// value of every run of samples at several levels (a pyramid), and each scan's status and range, kept
// in a file beside the recording. It answers a reduced read of any span in time that grows with the
// number of steps, not with the span, and gives exactly what reading every sample would give.
//
// Values are the stored ones, before any scaling: floats as they are, 16-bit samples as their
// integer value. The caller converts the extremes to physical units (a rising conversion keeps the
// order of values; a falling one swaps minimum and maximum).
//
// The cache file is tied to the recording's size and modification time: a recording changed since
// the cache was made has no valid cache.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace nvdl::access {

class CTrcLoader;

// What a step of a reduced read gives, in the order the reduction writes it.
struct StepExtremes {
    float minimum;
    float maximum;
};

class CMinMaxCache {
public:
    virtual ~CMinMaxCache() = default;

    // The cache of one channel (kind 1 input or 2 tacho, number over all channels from 1) of the
    // recording at `recording`; null when there is none, it is stale, or it cannot be read.
    static std::unique_ptr<CMinMaxCache> Load(const std::string& recording, long kind, long channel);

    // Reduces `steps` runs of `stepLength` samples from sample `start` on: one StepExtremes per step
    // into `out`, and the status and range that a read of the same chunks would merge (chunk j is
    // the `blocksize` samples from start + j * blocksize on, with the status record of the scan that
    // holds its first sample; a step's status and range merge those of the chunks it takes from, and
    // the overall ones merge the steps' from range 20.0 and status 0, an overload status staying).
    // False when the cache cannot answer exactly, for instance when a chunk reaches past the
    // recorded scans; the caller then reads the file.
    virtual bool Reduce(std::int64_t start, std::int64_t stepLength, long steps, StepExtremes* out, long* status,
                        float* range) = 0;
};

// Builds the cache of one channel while its samples pass by in order, from the recording's first
// sample: each scan's block of `blocksize` stored values with the scan's status and range. Finish
// writes the cache file; a recording whose directory cannot be written simply has no cache.
class CMinMaxCacheBuilder {
public:
    virtual ~CMinMaxCacheBuilder() = default;
    static std::unique_ptr<CMinMaxCacheBuilder> Begin(const std::string& recording, long kind, long channel,
                                                      long blocksize, std::int64_t scans);
    // One scan's block, scans in order from the first; `values` holds `blocksize` stored values.
    virtual void AddScan(const float* values, long status, float range) = 0;
    // 1 when the cache file was written.
    virtual int Finish() = 0;
};

// Builds the caches of every used channel of a recording (the command `nvdl index FILE`); the
// number of channels indexed, -1 when the recording cannot be read.
long BuildMinMaxCaches(const std::string& recording);

}  // namespace nvdl::access
