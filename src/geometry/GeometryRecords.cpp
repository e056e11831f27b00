#include "geometry/GeometryRecords.h"

#include <span>
#include <vector>

#include "nvdl/Storage.h"
#include "platform/RecordLayout.h"

namespace nvdl::geometry_record {

namespace {

using namespace record;

constexpr Field<Header, 2> kHeaderFields[] = {
    {text(&Header::name, 50), {0, -1}},
    {i32(&Header::components), {52, 0}},
    {text(&Header::coordinateText, 50), {56, -1}},
    {i32(&Header::coordinateNumber), {-1, 4}},
};

using C = Component;
constexpr Field<C, 2> kComponentFields[] = {
    {text(&C::name, 50), {0, 0}},
    {f32(&C::x), {52, 52}},
    {f32(&C::y), {56, 56}},
    {f32(&C::z), {60, 60}},
    {f32(&C::rotationX), {64, 64}},
    {f32(&C::rotationY), {68, 68}},
    {f32(&C::rotationZ), {72, 72}},
    {text(&C::coordinateText, 50), {76, -1}},
    {i32(&C::coordinateNumber), {-1, 76}},
    {i32(&C::visibility), {128, 80}},
    {i32(&C::colorIndex), {132, 84}},
    {i32(&C::highlight), {136, 88}},
    {i32(&C::drawSolid), {140, 92}},
    {i32(&C::nodes), {144, 96}},
    {i32(&C::lines), {148, 100}},
    {i32(&C::triangles), {152, 104}},
};

constexpr Field<Node, 1> kNodeFields[] = {
    {text(&Node::name, 50), {0}},
    {f32(&Node::x), {52}},
    {f32(&Node::y), {56}},
    {f32(&Node::z), {60}},
    {f32(&Node::rotationX), {64}},
    {f32(&Node::rotationY), {68}},
    {f32(&Node::rotationZ), {72}},
    {i32(&Node::highlight), {76}},
    {i32(&Node::slaveNode), {80}},
    {text(&Node::masterNode1, 50), {84}},
    {text(&Node::masterNode2, 50), {134}},
    {i32(&Node::wordsAfter), {184}},
};

constexpr Field<Line, 1> kLineFields[] = {
    {text(&Line::node1, 50), {0}},
    {text(&Line::node2, 50), {50}},
    {i32(&Line::visibility), {100}},
    {i32(&Line::colorIndex), {104}},
};

constexpr Field<Triangle, 1> kTriangleFields[] = {
    {text(&Triangle::node1, 50), {0}},   {text(&Triangle::node2, 50), {50}},  {text(&Triangle::node3, 50), {100}},
    {i32(&Triangle::visibility), {152}}, {i32(&Triangle::colorIndex), {156}},
};

static_assert(fitsAndDisjoint(std::span<const Field<Header, 2>>(kHeaderFields), kCurrent, kHeaderSize[kCurrent]));
static_assert(fitsAndDisjoint(std::span<const Field<Header, 2>>(kHeaderFields), kOld, kHeaderSize[kOld]));
static_assert(fitsAndDisjoint(std::span<const Field<C, 2>>(kComponentFields), kCurrent, kComponentSize[kCurrent]));
static_assert(fitsAndDisjoint(std::span<const Field<C, 2>>(kComponentFields), kOld, kComponentSize[kOld]));
static_assert(fitsAndDisjoint(std::span<const Field<Node, 1>>(kNodeFields), 0, kNodeSize));
static_assert(fitsAndDisjoint(std::span<const Field<Line, 1>>(kLineFields), 0, kLineSize));
static_assert(fitsAndDisjoint(std::span<const Field<Triangle, 1>>(kTriangleFields), 0, kTriangleSize));

template <class R, std::size_t N, std::size_t M>
HRESULT readRecord(Source& in, const Field<R, N> (&fields)[M], std::size_t form, std::size_t size, R& into) {
    std::vector<std::uint8_t> bytes(size);
    if (FAILED(in.read(bytes.data(), size))) return E_FAIL;
    decode(std::span<const Field<R, N>>(fields), form, bytes.data(), into);
    return S_OK;
}

template <class R, std::size_t N, std::size_t M>
HRESULT writeRecord(IStream* out, const Field<R, N> (&fields)[M], std::size_t size, const R& from) {
    if (!out) return E_POINTER;
    std::vector<std::uint8_t> bytes(size, 0);
    encode(std::span<const Field<R, N>>(fields), kCurrent, from, bytes.data());
    ULONG written = 0;
    HRESULT h = out->Write(bytes.data(), static_cast<ULONG>(size), &written);
    if (FAILED(h)) return h;
    return written == size ? S_OK : STG_E_MEDIUMFULL;
}

}  // namespace

HRESULT Source::open(IStream* stream) {
    if (!stream) return E_POINTER;
    STATSTG stat;
    std::uint64_t at = 0;
    if (HRESULT h = stream->Stat(&stat, STATFLAG_NONAME); FAILED(h)) return h;
    if (HRESULT h = stream->Seek(0, STREAM_SEEK_CUR, &at); FAILED(h)) return h;
    m_stream = stream;
    m_left = stat.cbSize > at ? stat.cbSize - at : 0;
    return S_OK;
}

HRESULT Source::read(std::uint8_t* into, std::size_t size) {
    if (!holds(size)) return E_FAIL;
    ULONG got = 0;
    if (FAILED(m_stream->Read(into, static_cast<ULONG>(size), &got)) || got != size) return E_FAIL;
    m_left -= size;
    return S_OK;
}

HRESULT Source::skip(std::uint64_t size) {
    if (!holds(size)) return E_FAIL;
    if (size && FAILED(m_stream->Seek(static_cast<std::int64_t>(size), STREAM_SEEK_CUR, nullptr))) return E_FAIL;
    m_left -= size;
    return S_OK;
}

std::int32_t coordinateTypeOfNumber(std::int32_t number) {
    switch (number) {
        case 1: return 1402;
        case 2: return 1403;
        default: return 1401;
    }
}

HRESULT read(Source& in, Form form, Header& into) {
    return readRecord(in, kHeaderFields, form, kHeaderSize[form], into);
}
HRESULT read(Source& in, Form form, Component& into) {
    return readRecord(in, kComponentFields, form, kComponentSize[form], into);
}
HRESULT read(Source& in, Node& into) { return readRecord(in, kNodeFields, 0, kNodeSize, into); }
HRESULT read(Source& in, Line& into) { return readRecord(in, kLineFields, 0, kLineSize, into); }
HRESULT read(Source& in, Triangle& into) { return readRecord(in, kTriangleFields, 0, kTriangleSize, into); }

HRESULT write(IStream* out, const Header& from) { return writeRecord(out, kHeaderFields, kHeaderSize[kCurrent], from); }
HRESULT write(IStream* out, const Component& from) {
    return writeRecord(out, kComponentFields, kComponentSize[kCurrent], from);
}
HRESULT write(IStream* out, const Node& from) { return writeRecord(out, kNodeFields, kNodeSize, from); }
HRESULT write(IStream* out, const Line& from) { return writeRecord(out, kLineFields, kLineSize, from); }
HRESULT write(IStream* out, const Triangle& from) { return writeRecord(out, kTriangleFields, kTriangleSize, from); }

}  // namespace nvdl::geometry_record
