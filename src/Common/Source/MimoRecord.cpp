#include "Common/Source/MimoRecord.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/LittleEndian.h"

namespace nvdl::mimo {

namespace {

constexpr std::size_t kFloat = sizeof(float);

bool sameTextIgnoringCase(std::string_view a, std::string_view b) {
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) { return lower(x) == lower(y); });
}

// Offsets of the vectors of a record of `values` values whose tail starts at `start`.
void placeVectors(RecordLayout& layout, std::size_t start, std::size_t values) {
    layout.xOffset = start;
    layout.realOffset = start + (layout.hasX ? values * kFloat : 0);
    layout.imagOffset = layout.realOffset + values * kFloat;
}

}  // namespace

bool carriesXVector(const flat::Head& head) {
    return std::any_of(std::begin(kAxisTexts), std::end(kAxisTexts),
                       [&](const char* axis) { return sameTextIgnoringCase(head.xAxisType, axis); });
}

std::optional<RecordLayout> locate(RecordView record) {
    RecordLayout layout;
    if (!flat::decodeHead(record.data(), record.size(), layout.head)) return std::nullopt;
    const std::size_t tail = record.size() - flat::kHeadSize;
    if (layout.head.parameterBytes < 0 || static_cast<std::size_t>(layout.head.parameterBytes) > tail)
        return std::nullopt;
    layout.parameterOffset = flat::kHeadSize;
    layout.hasX = carriesXVector(layout.head);
    layout.complex = layout.head.complex != 0;
    const std::size_t start = flat::kHeadSize + static_cast<std::size_t>(layout.head.parameterBytes);
    const std::size_t declared = layout.head.size > 0 ? static_cast<std::size_t>(layout.head.size) : 0;
    const std::size_t vectors = 1 + (layout.hasX ? 1 : 0) + (layout.complex ? 1 : 0);
    // Divided rather than multiplied, so that no declared size can overflow the comparison.
    const bool fits = declared <= (record.size() - start) / (vectors * kFloat);
    layout.values = fits ? layout.head.size : 0;
    placeVectors(layout, start, fits ? declared : 0);
    return layout;
}

std::complex<double> valueAt(RecordView record, const RecordLayout& layout, std::int32_t index) {
    const std::size_t at = static_cast<std::size_t>(index) * kFloat;
    const double re = le::f32(record.data() + layout.realOffset + at);
    const double im = layout.complex ? le::f32(record.data() + layout.imagOffset + at) : 0.0;
    return {re, im};
}

std::optional<RecordBytes> CloneRecord(RecordView source, std::int32_t size, bool complex) {
    const std::optional<RecordLayout> from = locate(source);
    if (!from || size < -1) return std::nullopt;
    // The source's own size only when its values are all there: a damaged head's Size is no
    // measure of anything and must not decide an allocation.
    if (size == -1 && from->values != from->head.size) return std::nullopt;
    const std::int32_t newSize = size == -1 ? from->values : size;

    RecordLayout to;
    to.head = from->head;
    to.head.size = newSize;
    to.head.complex = complex ? 1 : 0;
    to.hasX = from->hasX;
    to.complex = complex;
    to.values = newSize;
    const std::size_t start = flat::kHeadSize + static_cast<std::size_t>(from->head.parameterBytes);
    const std::size_t count = static_cast<std::size_t>(newSize);
    placeVectors(to, start, count);
    const std::size_t vectors = 1 + (to.hasX ? 1 : 0) + (complex ? 1 : 0);

    RecordBytes out(start + vectors * count * kFloat, 0);
    flat::encodeHead(to.head, out.data());
    std::memcpy(out.data() + flat::kHeadSize, source.data() + flat::kHeadSize, start - flat::kHeadSize);
    const std::size_t copied = std::min(count, static_cast<std::size_t>(from->values)) * kFloat;
    if (to.hasX) std::memcpy(out.data() + to.xOffset, source.data() + from->xOffset, copied);
    std::memcpy(out.data() + to.realOffset, source.data() + from->realOffset, copied);
    if (complex && from->complex) std::memcpy(out.data() + to.imagOffset, source.data() + from->imagOffset, copied);
    return out;
}

void rewriteHead(RecordBytes& record, const flat::Head& head) { flat::encodeHead(head, record.data()); }

void putValue(RecordBytes& record, const RecordLayout& layout, std::int32_t index, std::complex<double> value) {
    const std::size_t at = static_cast<std::size_t>(index) * kFloat;
    le::putF32(record.data() + layout.realOffset + at, static_cast<float>(value.real()));
    if (layout.complex) le::putF32(record.data() + layout.imagOffset + at, static_cast<float>(value.imag()));
}

}  // namespace nvdl::mimo
