#include "access/TrcMeasurementFill.h"

#include <algorithm>
#include <cstdlib>

namespace nvdl::access {

namespace {

struct FreeArray {
    void operator()(float* p) const { std::free(p); }
};
using Curve = std::unique_ptr<float, FreeArray>;

}  // namespace

HRESULT putText(CMeasurement& m, HRESULT (CMeasurement::*put)(BSTR), std::string_view text) {
    const Bstr value(text);
    return (m.*put)(value.get());
}

bool fillFirstPicture(CTrcLoader& loader, CMeasurement& m, long kind, long channel, long subChannel,
                      std::int64_t size) {
    if (size <= 0) return true;
    float* x = nullptr;
    float* re = nullptr;
    float* im = nullptr;
    float factor = 1.0f, range = 0.0f;
    int uncompleted = 0, useful = 1;
    long status = 0;
    const int read = loader.ReadCompressed(kind, channel, subChannel, size, 0, size, &x, &re, &im, &factor,
                                           &uncompleted, &useful, &range, &status);
    const Curve xs(x), real(re), imag(im);
    if (!read || !real) return false;
    const LONG count = static_cast<LONG>(
        loader.GetLongFileFeature() ? std::min<std::int64_t>(size, loader.GetMaxBlockSize()) : size);
    if (FAILED(m.put_Size(count)) || FAILED(m.put_FileSamples(static_cast<LONG>(size))) ||
        FAILED(m.SetYValues(0, count, real.get(), imag.get())))
        return false;
    if (xs && FAILED(m.SetXValues(0, count, xs.get()))) return false;
    m.put_IsUncompleted(uncompleted ? -1 : 0);
    m.put_IsUsefullData(useful ? -1 : 0);
    m.put_CompressionFactor(factor);
    m.put_Overload(status);
    return true;
}

}  // namespace nvdl::access
