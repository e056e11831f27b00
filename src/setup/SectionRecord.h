// The stream record of a setup section: a fixed record in one or more generations, each named by
// a tag at the head of the record and each longer than the one before; the fields are declared once
// as a table (platform/RecordLayout.h) with their offset in every generation. The reader takes the
// generation that the stream's tag names, so a stream of an older generation leaves the fields it
// lacks as they were; the writer always writes the newest generation.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "nvdl/Stream.h"
#include "platform/RecordLayout.h"

namespace nvdl::section {

// Where a record keeps the tag of its generation.
enum class TagForm {
    None,  // a single generation without a tag
    Long,  // a 32-bit number at `tagOffset`
    Text,  // a text of 50 bytes at the start, digits of the date ("20021008")
};
inline constexpr std::size_t kTextTagSize = 50;

struct Generation {
    std::int32_t tag;
    std::uint32_t size;  // bytes of the whole record, tag included
};

template <class R, std::size_t N>
struct Record {
    TagForm tagForm;
    std::uint32_t tagOffset;  // for TagForm::Long
    std::array<Generation, N> generations;  // oldest first
    std::span<const record::Field<R, N>> fields;
    // Only the tags of the table are known; otherwise a tag names the newest generation at or below it.
    bool exactTags = false;

    const Generation& newest() const { return generations[N - 1]; }
};

// Reads exactly `size` bytes; a short read or a failed one is a failure (STG_E_READFAULT).
HRESULT readExactly(IStream* stream, std::uint8_t* bytes, std::size_t size);
// Writes all `size` bytes; a short write is STG_E_MEDIUMFULL.
HRESULT writeAll(IStream* stream, const std::uint8_t* bytes, std::size_t size);
// The tag at the head of a record; a text that is not a number gives 0.
std::int32_t tagOf(TagForm form, std::uint32_t tagOffset, const std::uint8_t* bytes);
void putTag(TagForm form, std::uint32_t tagOffset, std::int32_t tag, std::uint8_t* bytes);
// The generation a tag names, or nothing for a tag the reader does not know.
std::optional<std::size_t> generationOfTag(std::span<const Generation> generations, std::int32_t tag, bool exact);

// Reads one record from the stream into `fields`, which keep the values of the fields that the
// stream's generation lacks. A short stream or an unknown tag leaves `fields` untouched and fails.
// The generation read is put in `generation` when asked for.
template <class R, std::size_t N>
HRESULT read(IStream* stream, const Record<R, N>& layout, R& fields, std::size_t* generation = nullptr) {
    if (!stream) return E_POINTER;
    const std::size_t first = layout.generations[0].size;
    std::vector<std::uint8_t> bytes(first);
    if (HRESULT h = readExactly(stream, bytes.data(), first); FAILED(h)) return h;
    std::size_t g = N - 1;
    if (layout.tagForm != TagForm::None) {
        auto found = generationOfTag(layout.generations, tagOf(layout.tagForm, layout.tagOffset, bytes.data()),
                                     layout.exactTags);
        if (!found) return E_FAIL;
        g = *found;
    }
    const std::size_t size = layout.generations[g].size;
    bytes.resize(size);
    if (HRESULT h = readExactly(stream, bytes.data() + first, size - first); FAILED(h)) return h;
    R stored = fields;
    record::decode(layout.fields, g, bytes.data(), stored);
    fields = std::move(stored);
    if (generation) *generation = g;
    return S_OK;
}

// The bytes of the newest generation: zero-filled, the tag at its place, the fields.
template <class R, std::size_t N>
std::vector<std::uint8_t> encodeNewest(const Record<R, N>& layout, const R& fields) {
    std::vector<std::uint8_t> bytes(layout.newest().size, 0);
    if (layout.tagForm != TagForm::None) putTag(layout.tagForm, layout.tagOffset, layout.newest().tag, bytes.data());
    record::encode(layout.fields, N - 1, fields, bytes.data());
    return bytes;
}

template <class R, std::size_t N>
HRESULT write(IStream* stream, const Record<R, N>& layout, const R& fields) {
    if (!stream) return E_POINTER;
    std::vector<std::uint8_t> bytes = encodeNewest(layout, fields);
    return writeAll(stream, bytes.data(), bytes.size());
}

// Whether every generation's fields lie inside its record, clear of each other and of the tag.
template <class R, std::size_t N>
constexpr bool wellFormed(const Record<R, N>& layout) {
    for (std::size_t g = 0; g < N; ++g) {
        if (g > 0 && (layout.generations[g].size < layout.generations[g - 1].size ||
                      layout.generations[g].tag <= layout.generations[g - 1].tag))
            return false;
        if (!record::fitsAndDisjoint(layout.fields, g, layout.generations[g].size)) return false;
        std::size_t tagStart = 0, tagEnd = 0;
        if (layout.tagForm == TagForm::Long) tagStart = layout.tagOffset, tagEnd = layout.tagOffset + 4;
        if (layout.tagForm == TagForm::Text) tagEnd = kTextTagSize;
        if (tagEnd > layout.generations[0].size) return false;  // the tag is read with the first bytes
        for (const auto& f : layout.fields) {
            if (f.offset[g] < 0) continue;
            const std::size_t at = static_cast<std::size_t>(f.offset[g]);
            if (at < tagEnd && tagStart < at + f.value.size) return false;
        }
    }
    return true;
}

}  // namespace nvdl::section
