// Pairs of fields between a section of a recording and a setup object: each pair names the file
// section's getter and setter and the member of the object's field record that holds the same value.
// One table of pairs serves both ways: toFile copies the record's values through the setters (which
// cut texts to the width of their field), toObject copies the getters' values into the record.
// Numbers are carried by value, enumerations unchanged, since the file stores the objects' own codes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <type_traits>

namespace nvdl::access {

template <class File, class Fields>
struct FieldPair {
    void (*toFile)(const Fields& from, File& to);
    void (*toObject)(const File& from, Fields& to);
};

namespace detail {

template <class>
struct MemberOf;
template <class C, class T>
struct MemberOf<T C::*> {
    using Class = C;
    using Type = T;
};

inline const char* fileValue(const std::string& text) { return text.c_str(); }
template <class T>
T fileValue(T value) {
    return value;
}

}  // namespace detail

// The pair of the getter `Get` and setter `Set` of a file section and the record member `Field`.
template <class File, auto Get, auto Set, auto Field>
constexpr auto pairOf() {
    using Fields = typename detail::MemberOf<decltype(Field)>::Class;
    using Value = typename detail::MemberOf<decltype(Field)>::Type;
    return FieldPair<File, Fields>{[](const Fields& from, File& to) { (to.*Set)(detail::fileValue(from.*Field)); },
                                   [](const File& from, Fields& to) { to.*Field = static_cast<Value>((from.*Get)()); }};
}

// The pair of a table of limits: the file holds `count` values, the record at least as many; values
// of the record beyond the file's room keep what they held.
template <class File, auto Get, auto Set, auto Field, std::size_t count>
constexpr auto limitsOf() {
    using Fields = typename detail::MemberOf<decltype(Field)>::Class;
    static_assert(std::tuple_size_v<typename detail::MemberOf<decltype(Field)>::Type> >= count);
    return FieldPair<File, Fields>{
        [](const Fields& from, File& to) { (to.*Set)((from.*Field).data()); },
        [](const File& from, Fields& to) { std::copy_n((from.*Get)(), count, (to.*Field).begin()); }};
}

template <class File, class Fields>
void toFile(std::span<const FieldPair<File, Fields>> pairs, const Fields& from, File& to) {
    for (const auto& pair : pairs) pair.toFile(from, to);
}

template <class File, class Fields>
void toObject(std::span<const FieldPair<File, Fields>> pairs, const File& from, Fields& to) {
    for (const auto& pair : pairs) pair.toObject(from, to);
}

}  // namespace nvdl::access

// A row whose file accessors carry the member's own name (GetX/SetX and X); the file class and the
// record are named by the aliases `File` and `Fields` of the table's scope.
#define NVDL_SAME_FIELD(name) ::nvdl::access::pairOf<File, &File::Get##name, &File::Set##name, &Fields::name>()
// A row whose file accessors carry another name than the member.
#define NVDL_FIELD_AS(fileName, member) \
    ::nvdl::access::pairOf<File, &File::Get##fileName, &File::Set##fileName, &Fields::member>()
