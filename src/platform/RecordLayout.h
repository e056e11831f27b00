// Fixed records of the system's files, declared once as a table of fields (offset, size, type and
// the member of a plain struct that holds the value), which both the reader and the writer walk:
// reading decodes every field of the table into the struct, writing encodes every field from it,
// each in explicit little-endian order. A record may have several generations with the same fields
// at other places: a table then gives one offset per generation, -1 where a generation lacks it.
//
//   struct ParameterRecord { std::string name, value; };
//   constexpr record::Field<ParameterRecord, 1> kParameterTable[] = {
//       {record::text(&ParameterRecord::name, 100), {0}},
//       {record::text(&ParameterRecord::value, 100), {100}},
//   };
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/LittleEndian.h"

namespace nvdl::record {

// The value of one field: its member in the struct, and with it the field's type and size.
template <class R>
struct Value {
    std::variant<std::int16_t R::*, std::int32_t R::*, std::int64_t R::*, float R::*, double R::*, std::string R::*,
                 std::vector<float> R::*>
        member;
    std::uint16_t size;  // bytes in the record; a text holds at most size - 1 characters
};

template <class R>
constexpr Value<R> i16(std::int16_t R::*m) { return {m, 2}; }
template <class R>
constexpr Value<R> i32(std::int32_t R::*m) { return {m, 4}; }
template <class R>
constexpr Value<R> i64(std::int64_t R::*m) { return {m, 8}; }
template <class R>
constexpr Value<R> f32(float R::*m) { return {m, 4}; }
template <class R>
constexpr Value<R> f64(double R::*m) { return {m, 8}; }
template <class R>
constexpr Value<R> text(std::string R::*m, std::uint16_t size) { return {m, size}; }
// A fixed array of `count` floats; decoding makes the vector exactly that long.
template <class R>
constexpr Value<R> f32s(std::vector<float> R::*m, std::uint16_t count) { return {m, static_cast<std::uint16_t>(4 * count)}; }

// A field of a record with `Generations` layouts: its value and its offset in each.
template <class R, std::size_t Generations>
struct Field {
    Value<R> value;
    std::array<int, Generations> offset;
};

template <class R>
void decodeValue(const Value<R>& v, const std::uint8_t* at, R& into) {
    std::visit(
        [&](auto member) {
            using T = std::remove_reference_t<decltype(into.*member)>;
            if constexpr (std::is_same_v<T, std::int16_t>) into.*member = le::i16(at);
            else if constexpr (std::is_same_v<T, std::int32_t>) into.*member = le::i32(at);
            else if constexpr (std::is_same_v<T, std::int64_t>) into.*member = static_cast<std::int64_t>(le::u64(at));
            else if constexpr (std::is_same_v<T, float>) into.*member = le::f32(at);
            else if constexpr (std::is_same_v<T, double>) into.*member = le::f64(at);
            else if constexpr (std::is_same_v<T, std::vector<float>>) {
                (into.*member).resize(v.size / 4u);
                for (std::size_t i = 0; i < v.size / 4u; ++i) (into.*member)[i] = le::f32(at + 4 * i);
            } else into.*member = le::text(at, v.size - 1u);  // at most size - 1 characters, as written
        },
        v.member);
}

template <class R>
void encodeValue(const Value<R>& v, const R& from, std::uint8_t* at) {
    std::visit(
        [&](auto member) {
            using T = std::remove_cvref_t<decltype(from.*member)>;
            if constexpr (std::is_same_v<T, std::int16_t>) le::put16(at, static_cast<std::uint16_t>(from.*member));
            else if constexpr (std::is_same_v<T, std::int32_t>) le::put32(at, static_cast<std::uint32_t>(from.*member));
            else if constexpr (std::is_same_v<T, std::int64_t>) le::put64(at, static_cast<std::uint64_t>(from.*member));
            else if constexpr (std::is_same_v<T, float>) le::putF32(at, from.*member);
            else if constexpr (std::is_same_v<T, double>) le::putF64(at, from.*member);
            else if constexpr (std::is_same_v<T, std::vector<float>>) {
                const std::vector<float>& values = from.*member;  // a short vector leaves the rest as it is
                for (std::size_t i = 0; i < v.size / 4u && i < values.size(); ++i) le::putF32(at + 4 * i, values[i]);
            } else le::putText(at, v.size, from.*member);
        },
        v.member);
}

// Decodes the fields that generation `g` stores from `bytes` (at least the record's length).
template <class R, std::size_t N>
void decode(std::span<const Field<R, N>> table, std::size_t g, const std::uint8_t* bytes, R& into) {
    for (const Field<R, N>& f : table)
        if (f.offset[g] >= 0) decodeValue(f.value, bytes + f.offset[g], into);
}

// Encodes the fields of generation `g` into `bytes`; the bytes between the fields are left as they are.
template <class R, std::size_t N>
void encode(std::span<const Field<R, N>> table, std::size_t g, const R& from, std::uint8_t* bytes) {
    for (const Field<R, N>& f : table)
        if (f.offset[g] >= 0) encodeValue(f.value, from, bytes + f.offset[g]);
}

// Where generation `g` stores the field held in `member`, or -1.
template <class R, std::size_t N, class M>
int offsetOf(std::span<const Field<R, N>> table, std::size_t g, M R::*member) {
    for (const Field<R, N>& f : table) {
        const auto* held = std::get_if<M R::*>(&f.value.member);
        if (held && *held == member) return f.offset[g];
    }
    return -1;
}

// Whether generation `g` stores the field held in `member`.
template <class R, std::size_t N, class M>
bool stores(std::span<const Field<R, N>> table, std::size_t g, M R::*member) {
    return offsetOf(table, g, member) >= 0;
}

// Whether every field of generation `g` lies inside a record of `size` bytes and no two overlap.
template <class R, std::size_t N>
constexpr bool fitsAndDisjoint(std::span<const Field<R, N>> table, std::size_t g, std::size_t size) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        const int a = table[i].offset[g];
        if (a < 0) continue;
        if (static_cast<std::size_t>(a) + table[i].value.size > size) return false;
        for (std::size_t j = i + 1; j < table.size(); ++j) {
            const int b = table[j].offset[g];
            if (b >= 0 && a < b + table[j].value.size && b < a + table[i].value.size) return false;
        }
    }
    return true;
}

}  // namespace nvdl::record
