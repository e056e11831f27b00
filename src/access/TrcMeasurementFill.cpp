#include "access/TrcMeasurementFill.h"

#include <algorithm>
#include <cstdlib>

namespace nvdl::access {

void FreeCurve::operator()(float* p) const { std::free(p); }

bool readCurves(CTrcLoader& loader, long kind, long channel, long subChannel, std::int64_t fileSamples,
                std::int64_t start, std::int64_t count, CompressedCurves& out) {
    float* x = nullptr;
    float* re = nullptr;
    float* im = nullptr;
    const int read = loader.ReadCompressed(kind, channel, subChannel, fileSamples, start, count, &x, &re, &im,
                                           &out.factor, &out.uncompleted, &out.useful, &out.range, &out.status);
    out.x.reset(x);
    out.real.reset(re);
    out.imag.reset(im);
    return read && out.real;
}

HRESULT putText(CMeasurement& m, HRESULT (CMeasurement::*put)(BSTR), std::string_view text) {
    const Bstr value(text);
    return (m.*put)(value.get());
}

bool fillFirstPicture(CTrcLoader& loader, CMeasurement& m, long kind, long channel, long subChannel,
                      std::int64_t size) {
    if (size <= 0) return true;
    CompressedCurves read;
    if (!readCurves(loader, kind, channel, subChannel, size, 0, size, read)) return false;
    const LONG count = static_cast<LONG>(
        loader.GetLongFileFeature() ? std::min<std::int64_t>(size, loader.GetMaxBlockSize()) : size);
    if (FAILED(m.put_Size(count)) || FAILED(m.put_FileSamples(static_cast<LONG>(size))) ||
        FAILED(m.SetYValues(0, count, read.real.get(), read.imag.get())))
        return false;
    if (read.x && FAILED(m.SetXValues(0, count, read.x.get()))) return false;
    m.put_IsUncompleted(read.uncompleted ? -1 : 0);
    m.put_IsUsefullData(read.useful ? -1 : 0);
    m.put_CompressionFactor(read.factor);
    m.put_Overload(read.status);
    return true;
}

}  // namespace nvdl::access
