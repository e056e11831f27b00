// What the recording's channel measurements and stored measurements share: owning a new
// measurement while it is filled, putting texts, and the first picture of the data.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "access/TrcLoader.h"
#include "measurement/Measurement.h"

namespace nvdl::access {

struct ReleaseMeasurement {
    void operator()(CMeasurement* m) const { m->Release(); }
};
using MeasurementRef = std::unique_ptr<CMeasurement, ReleaseMeasurement>;

struct FreeCurve {
    void operator()(float* p) const;
};
using Curve = std::unique_ptr<float, FreeCurve>;

// What a reduced read hands back, owned.
struct CompressedCurves {
    Curve x, real, imag;
    float factor = 1.0f, range = 0.0f;
    int uncompleted = 0, useful = 1;
    long status = 0;
};

// The reduced read of a span of a source; false when it fails or gives no values.
bool readCurves(CTrcLoader& loader, long kind, long channel, long subChannel, std::int64_t fileSamples,
                std::int64_t start, std::int64_t count, CompressedCurves& out);

HRESULT putText(CMeasurement& m, HRESULT (CMeasurement::*put)(BSTR), std::string_view text);

// Reads a source whole through the reduced read and gives the measurement its first picture: the
// values (at most MaxBlockSize with the long file feature on), the count in the file, and what the
// read tells of completeness, compression and overload. An X table and imaginary values go in when
// the measurement's axis and Complex ask for them.
bool fillFirstPicture(CTrcLoader& loader, CMeasurement& m, long kind, long channel, long subChannel,
                      std::int64_t size);

}  // namespace nvdl::access
