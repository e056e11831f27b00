// The plan of a cut: which samples and scans of a recording a time span covers, and how its scans
// are copied into the new recording. All in 64-bit integers; scans are 0-based here.
//
// The span's first sample becomes the first sample of the new recording, so every source scan is
// copied with the shift `head`: a scan of the new recording takes the end of one source scan and
// the start of the next. `tail` is what the span leaves unused of its last source scan.
#pragma once

#include <cstdint>

namespace nvdl::access {

struct CutPlan {
    std::int64_t firstSample = 0;
    std::int64_t lastSample = 0;
    std::int64_t firstScan = 0;
    std::int64_t lastScan = 0;
    std::int64_t newScans = 0;  // scan count of the new recording
    std::int64_t tail = 0;
    std::int64_t head = 0;
    std::int64_t passes = 0;  // source scans copied
};

// Plans the span [start, stop) seconds of a recording of `scans` scans of `blocksize` samples per
// channel, one sample every `dt` seconds. False when the span covers no sample, lies beyond what
// 64-bit sample positions can hold, or gives a scan count that a recording cannot store.
bool planCut(float start, float stop, double dt, std::int64_t scans, std::int64_t blocksize, CutPlan& plan);

}  // namespace nvdl::access
