// Reader of the first stored measurement record, 19951107 and 19951205: 172 bytes with every
// enumeration as a small number, then the samples in one run, real and imaginary interleaved when
// the record is complex.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "platform/LittleEndian.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

constexpr std::size_t kBlockSize = 172;
constexpr double kDaysFrom1899To1970 = 25569.0;
constexpr double kSecondsPerDay = 86400.0;

// Function codes of the first record. 26 and 37 stand as they are.
LONG functionTypeOfCode(LONG code) {
    if (code == 1 || code == 2) return 1001;
    if ((code >= 3 && code <= 25) || (code >= 27 && code <= 29) || (code >= 31 && code <= 36)) return code + 999;
    if (code == 26 || code == 37) return code;
    return kFunctionNone;
}

// A small code counted from `first`, `last` codes in all; any other code is the first.
LONG codeInRange(LONG code, LONG first, LONG count) { return code >= 0 && code < count ? first + code : first; }

}  // namespace

HRESULT MeasurementStreamFormat::readGeneration1(CMeasurement& m, IStream* stream, LONG helperTag) {
    if (!stream) return E_POINTER;
    if (helperTag != k19951205 && helperTag != k19951107) return E_FAIL;
    StreamCursor cursor;
    HRESULT h = cursor.open(stream);
    if (FAILED(h)) return h;
    std::uint8_t b[kBlockSize];
    if (FAILED(cursor.read(b, kBlockSize))) return E_FAIL;

    const LONG size = le::i32(b + 132);
    const bool complex = le::i32(b + 136) == 1;
    if (!holdsSamples(cursor, size, complex ? 2 : 1)) return E_FAIL;

    takeFormatVersion(m, helperTag);
    m.put_FunctionType(Variant::fromLong(functionTypeOfCode(le::i32(b + 0))));
    m.put_Response(Bstr(std::string_view(le::text(b + 10, 54))).get());
    m.put_ResponseChannel(le::i16(b + 8));
    m.put_Reference(Bstr(std::string_view(le::text(b + 66, 50))).get());
    m.put_ReferenceChannel(le::i16(b + 64));
    m.put_Complex(complex ? VARIANT_TRUE : VARIANT_FALSE);
    setDimensionByIndex(m.m_xdDimension, le::i32(b + 128), false);
    m.put_XAxisType(Variant::fromLong(codeInRange(le::i32(b + 116), kAxisEquidistant, 5)));
    m.put_XStart(le::f32(b + 120));
    m.put_XIncrement(le::f32(b + 124));
    setYDimensionByIndex(m, le::i32(b + 140), false);
    m.put_AveragingType(Variant::fromLong(codeInRange(le::i32(b + 144), kAveragingNone, 5)));
    m.put_AveragingParameter(le::f32(b + 148));
    m.put_Averages(le::i16(b + 152));
    m.put_Overlap(le::f32(b + 156));
    m.put_WindowType(Variant::fromLong(codeInRange(le::i32(b + 160), kWindowNone, 9)));
    m.put_WindowParameter(le::f32(b + 164));
    m.put_MeasurementTime(kDaysFrom1899To1970 + le::i32(b + 168) / kSecondsPerDay);
    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;

    const std::size_t n = size > 0 ? static_cast<std::size_t>(size) : 0;
    std::vector<float> samples, re, im;
    if (FAILED(h = cursor.readFloats(complex ? 2 * n : n, samples))) return h;
    if (complex) {
        re.resize(n);
        im.resize(n);
        for (std::size_t i = 0; i < n; ++i) {
            re[i] = samples[2 * i];
            im[i] = samples[2 * i + 1];
        }
    } else {
        re = std::move(samples);
    }
    if (FAILED(h = feedVectors(m, re, complex ? &im : nullptr, nullptr))) return h;
    m.m_fileSamples = static_cast<LONG>(n);
    return S_OK;
}

}  // namespace nvdl
