#include "geometry/ModeStream.h"

#include <span>
#include <vector>

#include "geometry/Mode.h"
#include "geometry/ModeCoeff.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"
#include "platform/RecordLayout.h"

namespace nvdl {

namespace {

// The header in three generations: the oldest files (128 bytes, no name), files from 19960905 to
// 20021112 (the first 188 bytes of today's header) and today's 676 bytes.
enum Generation : std::size_t { kOldest, kNamed, kCurrent };
constexpr std::size_t kModeHeaderSize[] = {128, 188, 676};
constexpr long kFirstNamedVersion = 19960905;
constexpr long kLastNamedVersion = 20021112;

struct ModeHeader {
    std::string name;
    std::string description;
    float frequency = 0;
    float damping = 0;
    float modalAReal = 0;
    float modalAImag = 0;
    std::int32_t type = kUnknownModeType;
    std::int32_t method = kUnknownModeMethod;
    std::int32_t participation = 0;
    std::int32_t shape = 0;
    std::int32_t origParticip = 0;
    std::int32_t origShape = 0;
};

// The oldest header also holds a type and a method code (at 112 and 116) that no longer mean
// anything; the named generation holds a method code at 176 that has never been read back.
using H = ModeHeader;
using namespace record;
constexpr Field<H, 3> kHeaderFields[] = {
    {text(&H::name, 50), {-1, 0, 0}},
    {f32(&H::frequency), {0, 52, 52}},
    {f32(&H::damping), {4, 56, 56}},
    {text(&H::description, 100), {12, 64, 64}},
    {f32(&H::modalAReal), {-1, 164, 164}},
    {f32(&H::modalAImag), {-1, 168, 168}},
    {i32(&H::type), {-1, 172, 172}},
    {i32(&H::method), {-1, -1, 176}},
    {i32(&H::participation), {120, 180, 180}},
    {i32(&H::shape), {124, 184, 184}},
    {i32(&H::origParticip), {-1, -1, 188}},
    {i32(&H::origShape), {-1, -1, 192}},
};
constexpr std::span<const Field<H, 3>> kHeader(kHeaderFields);
static_assert(fitsAndDisjoint(kHeader, kOldest, kModeHeaderSize[kOldest]));
static_assert(fitsAndDisjoint(kHeader, kNamed, kModeHeaderSize[kNamed]));
static_assert(fitsAndDisjoint(kHeader, kCurrent, kModeHeaderSize[kCurrent]));

// A coefficient: the same fields in a record of 88 bytes (Shape, Participation) or 344 bytes
// (the original lists), the rest zero.
using C = ModeCoeffFields;
constexpr Field<C, 1> kCoeffFields[] = {
    {i32(&C::Direction), {12}},
    {f32(&C::Real), {16}},
    {f32(&C::Imaginary), {20}},
    {text(&C::Component, 32), {24}},
    {text(&C::Node, 32), {56}},
};
constexpr std::span<const Field<C, 1>> kCoeff(kCoeffFields);
constexpr std::size_t kCoeffSize = 88;
constexpr std::size_t kOrigCoeffSize = 344;
static_assert(fitsAndDisjoint(kCoeff, 0, kCoeffSize));

constexpr std::size_t recordSizeOf(ModeCoeffList list) {
    return list == ModeCoeffList::OrigShape || list == ModeCoeffList::OrigParticip ? kOrigCoeffSize : kCoeffSize;
}

// The count of a list in a header, to read or to set.
template <class Header>
auto& countOf(Header& h, ModeCoeffList list) {
    switch (list) {
        case ModeCoeffList::Shape: return h.shape;
        case ModeCoeffList::OrigShape: return h.origShape;
        case ModeCoeffList::Participation: return h.participation;
        case ModeCoeffList::OrigParticip: return h.origParticip;
    }
    return h.shape;
}

Generation generationOf(long version) {
    if (version < kFirstNamedVersion) return kOldest;
    return version <= kLastNamedVersion ? kNamed : kCurrent;
}

// The oldest files counted directions from -1 (none) to 2 (Z).
std::int32_t directionOfOldest(std::int32_t stored) {
    switch (stored) {
        case 0: return 1501;
        case 1: return 1502;
        case 2: return 1503;
        default: return kNoDirection;
    }
}

// Sequential reading with the stream's length in view, so that no count taken from the stream can
// make the reader allocate or loop beyond what the stream holds.
class BoundedReader {
public:
    HRESULT open(IStream* stream) {
        m_stream = stream;
        STATSTG stat;
        if (HRESULT h = stream->Stat(&stat, STATFLAG_NONAME); FAILED(h)) return h;
        m_length = stat.cbSize;
        return stream->Seek(0, STREAM_SEEK_CUR, &m_position);
    }
    bool holds(std::uint64_t bytes) const { return m_position <= m_length && bytes <= m_length - m_position; }
    // Exactly bytes.size() bytes, else E_FAIL.
    HRESULT read(std::vector<std::uint8_t>& bytes) {
        if (!holds(bytes.size())) return E_FAIL;
        ULONG got = 0;
        if (HRESULT h = m_stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got); FAILED(h)) return h;
        m_position += got;
        return got == bytes.size() ? S_OK : E_FAIL;
    }

private:
    IStream* m_stream = nullptr;
    std::uint64_t m_position = 0;
    std::uint64_t m_length = 0;
};

HRESULT writeAll(IStream* stream, const std::vector<std::uint8_t>& bytes) {
    ULONG written = 0;
    HRESULT h = stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
    if (FAILED(h)) return h;
    return written == bytes.size() ? S_OK : STG_E_MEDIUMFULL;
}

// The fields of an item of a coefficient list; an item of another class is written with the
// defaults of a coefficient, so that the counts of the header stay true.
ModeCoeffFields fieldsOfItem(IDispatch* item) {
    auto* coefficient = dynamic_cast<CModeCoeff*>(CFrameBase::of(item));
    return coefficient ? coefficient->m_fields : ModeCoeffFields{};
}

// Every count must be zero or more, and all the records must fit in what the stream still holds.
bool countsFit(const ModeHeader& h, const BoundedReader& cursor) {
    std::uint64_t bytes = 0;
    for (ModeCoeffList list : kModeCoeffLists) {
        const std::int32_t n = countOf(h, list);
        if (n < 0) return false;
        bytes += static_cast<std::uint64_t>(n) * recordSizeOf(list);
    }
    return cursor.holds(bytes);
}

HRESULT readCoefficient(BoundedReader& cursor, ModeCoeffList list, Generation g, CObjectCollection& into) {
    std::vector<std::uint8_t> bytes(recordSizeOf(list));
    if (HRESULT h = cursor.read(bytes); FAILED(h)) return h;
    ModeCoeffFields stored;
    record::decode(kCoeff, 0, bytes.data(), stored);
    if (g == kOldest) stored.Direction = directionOfOldest(stored.Direction);

    ComPtr<IModeCoeff> coefficient(new CModeCoeff);
    coefficient->put_Component(Bstr(std::string_view(stored.Component)).get());
    coefficient->put_Node(Bstr(std::string_view(stored.Node)).get());
    coefficient->put_Direction(Variant::fromLong(stored.Direction));
    coefficient->put_Real(stored.Real);
    coefficient->put_Imaginary(stored.Imaginary);
    Variant key, before, after;
    LONG index = 0;
    return into.Add(coefficient.get(), &key, &before, &after, &index);
}

}  // namespace

HRESULT saveModeStream(IStream* stream, IDispatch* mode) {
    if (!stream || !mode) return E_POINTER;
    auto* m = dynamic_cast<CMode*>(CFrameBase::of(mode));
    if (!m) return E_INVALIDARG;

    ModeHeader header;
    header.name = m->m_fields.Name;
    header.description = m->m_fields.Description;
    header.frequency = m->m_fields.Frequency;
    header.damping = m->m_fields.Damping;
    header.modalAReal = m->m_fields.ModalAReal;
    header.modalAImag = m->m_fields.ModalAImag;
    header.type = m->m_fields.Type;
    header.method = m->m_fields.Method;
    for (ModeCoeffList list : kModeCoeffLists)
        countOf(header, list) = static_cast<std::int32_t>(m->coefficients(list).size());
    std::vector<std::uint8_t> bytes(kModeHeaderSize[kCurrent]);
    record::encode(kHeader, kCurrent, header, bytes.data());
    if (HRESULT h = writeAll(stream, bytes); FAILED(h)) return h;

    for (ModeCoeffList list : kModeCoeffLists) {
        const CObjectCollection& items = m->coefficients(list);
        for (std::size_t i = 0; i < items.size(); ++i) {
            bytes.assign(recordSizeOf(list), 0);
            record::encode(kCoeff, 0, fieldsOfItem(items.itemAt(i)), bytes.data());
            if (HRESULT h = writeAll(stream, bytes); FAILED(h)) return h;
        }
    }
    // Written objects are clean: the coefficients first, then the mode that holds them.
    for (ModeCoeffList list : kModeCoeffLists) {
        const CObjectCollection& items = m->coefficients(list);
        for (std::size_t i = 0; i < items.size(); ++i)
            if (auto* c = dynamic_cast<CModeCoeff*>(CFrameBase::of(items.itemAt(i))))
                static_cast<IModeCoeff*>(c)->put_Modified(0);
    }
    return static_cast<IMode*>(m)->put_Modified(0);
}

HRESULT loadModeStream(IStream* stream, long version, IDispatch** mode) {
    if (!mode) return E_POINTER;
    *mode = nullptr;
    if (!stream) return E_POINTER;
    BoundedReader cursor;
    if (HRESULT h = cursor.open(stream); FAILED(h)) return h;

    const Generation g = generationOf(version);
    std::vector<std::uint8_t> bytes(kModeHeaderSize[g]);
    if (HRESULT h = cursor.read(bytes); FAILED(h)) return h;
    ModeHeader header;
    record::decode(kHeader, g, bytes.data(), header);
    if (!countsFit(header, cursor)) return E_FAIL;

    auto* m = new CMode;
    IMode* fresh = m;
    if (g != kOldest) fresh->put_Name(Bstr(std::string_view(header.name)).get());
    fresh->put_Frequency(header.frequency);
    fresh->put_Damping(header.damping);
    fresh->put_Description(Bstr(std::string_view(header.description)).get());
    fresh->put_ModalAReal(header.modalAReal);
    fresh->put_ModalAImag(header.modalAImag);
    if (g != kOldest) fresh->put_Type(Variant::fromLong(header.type));
    if (g == kCurrent) fresh->put_Method(Variant::fromLong(header.method));

    for (ModeCoeffList list : kModeCoeffLists) {
        for (std::int32_t i = 0; i < countOf(header, list); ++i) {
            if (HRESULT h = readCoefficient(cursor, list, g, m->coefficients(list)); FAILED(h)) {
                fresh->Release();
                return h;
            }
        }
    }
    *mode = m->dispatch();
    return S_OK;
}

}  // namespace nvdl
