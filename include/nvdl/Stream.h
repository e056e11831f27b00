// Byte streams and their description, in the shape the platform's structured storage uses.
// A stream is reference counted like every object; the slot order after IUnknown is
// Read, Write, Seek, SetSize, Commit, Stat.
#pragma once

#include <string>

#include "nvdl/Unknown.h"

inline constexpr IID IID_ISequentialStream{0x0c733a30, 0x2a1c, 0x11ce, {0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44, 0x77, 0x3d}};
inline constexpr IID IID_IStream{0x0000000C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Origins of Seek.
enum STREAM_SEEK : DWORD { STREAM_SEEK_SET = 0, STREAM_SEEK_CUR = 1, STREAM_SEEK_END = 2 };

// Kinds of storage elements.
enum STGTY : DWORD { STGTY_STORAGE = 1, STGTY_STREAM = 2, STGTY_LOCKBYTES = 3, STGTY_PROPERTY = 4 };

// Description of a stream or storage. The name is the element's own name (empty for a memory stream).
struct STATSTG {
    std::u16string name;
    DWORD type = STGTY_STREAM;
    std::uint64_t cbSize = 0;
    CLSID clsid{};
    DWORD stateBits = 0;
};

struct IStream : IUnknown {
    // Reads up to cb bytes; *pcbRead (optional) gets the count. Reading at the end gives S_OK and 0 bytes.
    virtual HRESULT Read(void* pv, ULONG cb, ULONG* pcbRead) = 0;
    // Writes cb bytes at the position, growing the stream as needed; *pcbWritten (optional) gets the count.
    virtual HRESULT Write(const void* pv, ULONG cb, ULONG* pcbWritten) = 0;
    // Moves the position; *newPosition (optional) gets it. A position before the start is STG_E_INVALIDFUNCTION.
    virtual HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) = 0;
    virtual HRESULT SetSize(std::uint64_t newSize) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Stat(STATSTG* stat, DWORD flags) = 0;

protected:
    ~IStream() = default;
};
