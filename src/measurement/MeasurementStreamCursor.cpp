// Bounded sequential reading of a measurement stream, and the position of the parameter text.
#include "measurement/MeasurementStreamFormat.h"

#include "measurement/Measurement.h"
#include "platform/LittleEndian.h"

namespace nvdl {

HRESULT StreamCursor::open(IStream* stream) {
    if (!stream) return E_POINTER;
    m_stream = stream;
    STATSTG stat;
    HRESULT h = stream->Stat(&stat, STATFLAG_NONAME);
    if (FAILED(h)) return h;
    m_length = stat.cbSize;
    return stream->Seek(0, STREAM_SEEK_CUR, &m_position);
}

HRESULT StreamCursor::read(std::uint8_t* into, std::size_t size) {
    if (!holds(size)) return E_FAIL;
    ULONG got = 0;
    HRESULT h = m_stream->Read(into, static_cast<ULONG>(size), &got);
    if (FAILED(h)) return h;
    m_position += got;
    return got == size ? S_OK : E_FAIL;
}

HRESULT StreamCursor::readFloats(std::size_t count, std::vector<float>& into) {
    if (count > remaining() / sizeof(float)) return E_FAIL;
    std::vector<std::uint8_t> bytes(count * sizeof(float));
    if (HRESULT h = read(bytes.data(), bytes.size()); FAILED(h)) return h;
    into.resize(count);
    for (std::size_t i = 0; i < count; ++i) into[i] = le::f32(bytes.data() + i * sizeof(float));
    return S_OK;
}

HRESULT StreamCursor::readAtMost(std::size_t size, std::vector<std::uint8_t>& into) {
    into.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, remaining())));
    return read(into.data(), into.size());
}

HRESULT StreamCursor::seek(std::uint64_t position) {
    HRESULT h = m_stream->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, &m_position);
    return FAILED(h) ? h : S_OK;
}

std::int64_t ComputeParametersOffset(std::int64_t header, LONG size, LONG complex, LONG axis) {
    if (size < 0 || header <= 0) return 0;
    const std::int64_t vector = static_cast<std::int64_t>(size) * 4;
    std::int64_t offset = header + vector;
    if (complex != 0) offset += vector;
    if (axisHasXVector(axis)) offset += vector;
    return offset;
}

}  // namespace nvdl
