// The fixed records of a geometry in a workspace file: a header, then per component its record
// followed by the records of all its nodes, lines and triangles. The header and the component
// record have two forms: the current one and the one of files older than 19960905, which stores
// the coordinate type as a number and the component's flags closer together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "nvdl/Stream.h"

namespace nvdl::geometry_record {

enum Form : std::size_t { kCurrent = 0, kOld = 1 };

// Sequential reading with the bytes left in the stream in view, so that a count read from the
// stream is checked against what the stream can still hold before anything is made for it.
class Source {
public:
    // From the present position to the end (Stat).
    HRESULT open(IStream* stream);
    bool holds(std::uint64_t bytes) const { return bytes <= m_left; }
    // Exactly `size` bytes, else E_FAIL.
    HRESULT read(std::uint8_t* into, std::size_t size);
    // Passes over `size` bytes, else E_FAIL.
    HRESULT skip(std::uint64_t size);

private:
    IStream* m_stream = nullptr;
    std::uint64_t m_left = 0;
};

// The first version whose files hold the current form.
inline constexpr long kCurrentFormVersion = 19960905;

struct Header {
    std::string name;
    std::int32_t components = 0;
    std::string coordinateText;         // current form
    std::int32_t coordinateNumber = 0;  // old form: 0, 1, 2
};

struct Component {
    std::string name;
    float x = 0, y = 0, z = 0, rotationX = 0, rotationY = 0, rotationZ = 0;
    std::string coordinateText;         // current form
    std::int32_t coordinateNumber = 0;  // old form
    std::int32_t visibility = 0, colorIndex = 0, highlight = 0, drawSolid = 0;
    std::int32_t nodes = 0, lines = 0, triangles = 0;
};

struct Node {
    std::string name;
    float x = 0, y = 0, z = 0, rotationX = 0, rotationY = 0, rotationZ = 0;
    std::int32_t highlight = 0, slaveNode = 0;
    std::string masterNode1, masterNode2;
    std::int32_t wordsAfter = 0;  // 4-byte words behind the record, skipped by the reader
};

struct Line {
    std::string node1, node2;
    std::int32_t visibility = 0, colorIndex = 0;
};

struct Triangle {
    std::string node1, node2, node3;
    std::int32_t visibility = 0, colorIndex = 0;
};

inline constexpr std::size_t kHeaderSize[] = {108, 8};
inline constexpr std::size_t kComponentSize[] = {156, 108};
inline constexpr std::size_t kNodeSize = 188;
inline constexpr std::size_t kLineSize = 108;
inline constexpr std::size_t kTriangleSize = 160;

// The code of an old-form coordinate number: 0, 1, 2 are rectangular, cylindrical, spherical;
// anything else is taken as rectangular.
std::int32_t coordinateTypeOfNumber(std::int32_t number);

// Each reads one whole record of the form; a short read is E_FAIL.
HRESULT read(Source& in, Form form, Header& into);
HRESULT read(Source& in, Form form, Component& into);
HRESULT read(Source& in, Node& into);
HRESULT read(Source& in, Line& into);
HRESULT read(Source& in, Triangle& into);

// Each writes one whole record of the current form, zero-filled between the fields; a short write
// is STG_E_MEDIUMFULL.
HRESULT write(IStream* out, const Header& from);
HRESULT write(IStream* out, const Component& from);
HRESULT write(IStream* out, const Node& from);
HRESULT write(IStream* out, const Line& from);
HRESULT write(IStream* out, const Triangle& from);

}  // namespace nvdl::geometry_record
