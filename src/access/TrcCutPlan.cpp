#include "access/TrcCutPlan.h"

#include <cfloat>
#include <cmath>
#include <limits>

#include "access/TrcLoader.h"

namespace nvdl::access {

namespace {

// The sample at `seconds`, truncated; -1 when it does not fit in 64 bits. The seconds come as a
// float, so a time such as 2.3 s arrives as 2.2999999523: a quotient within the float's precision
// of a whole sample is taken as that sample, so that 2.3 s at 1000 samples per second is sample
// 2300 and not 2299.
std::int64_t sampleAt(float seconds, double dt) {
    double q = static_cast<double>(seconds) / dt;
    if (!(q >= 0.0) || !(q < 0x1p62)) return -1;
    const double nearest = std::round(q);
    if (std::fabs(q - nearest) <= q * FLT_EPSILON) q = nearest;
    return static_cast<std::int64_t>(std::trunc(q));
}

}  // namespace

bool planCut(float start, float stop, double dt, std::int64_t scans, std::int64_t blocksize, CutPlan& plan) {
    if (!(dt > 0.0) || scans < 1 || blocksize < 1 || scans > std::numeric_limits<std::int64_t>::max() / blocksize)
        return false;
    const std::int64_t total = scans * blocksize;
    const long block = static_cast<long>(blocksize);
    CutPlan p;
    p.firstSample = sampleAt(start, dt);
    p.lastSample = sampleAt(stop, dt);
    if (p.firstSample < 0 || p.firstSample >= p.lastSample) return false;
    p.firstScan = CTrcLoader::ScanFromSample(p.firstSample, total, block);
    p.lastScan = CTrcLoader::ScanFromSample(p.lastSample, total, block);
    if (p.firstScan < 0 || p.lastScan < 0) return false;
    // The new recording holds the whole span, even where it runs past the end of the source.
    const std::int64_t span = p.lastSample - p.firstSample;
    p.newScans = span / blocksize + (span % blocksize != 0 ? 1 : 0);
    if (p.newScans > std::numeric_limits<std::int32_t>::max()) return false;
    // A span that ends inside a source scan copies that scan too, less what lies behind the stop.
    if (p.lastScan * blocksize < p.lastSample && p.lastScan < scans) {
        p.tail = p.lastSample - p.lastScan * blocksize;
        ++p.lastScan;
    }
    p.head = p.firstSample - p.firstScan * blocksize;
    if (p.head < 0 || p.head > blocksize) return false;
    p.passes = p.lastScan - p.firstScan;
    plan = p;
    return true;
}

}  // namespace nvdl::access
