// The on-disk layout of a compound file: constants, the header and the directory entry, with
// explicit little-endian encoding of each field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "nvdl/Guid.h"
#include "platform/LittleEndian.h"

namespace nvdl::cfb {

inline constexpr std::uint8_t kSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

// Special sector numbers in the allocation tables.
inline constexpr std::uint32_t MAXREGSECT = 0xFFFFFFFA;
inline constexpr std::uint32_t DIFSECT = 0xFFFFFFFC;
inline constexpr std::uint32_t FATSECT = 0xFFFFFFFD;
inline constexpr std::uint32_t ENDOFCHAIN = 0xFFFFFFFE;
inline constexpr std::uint32_t FREESECT = 0xFFFFFFFF;
// Directory entry numbers.
inline constexpr std::uint32_t MAXREGSID = 0xFFFFFFFA;
inline constexpr std::uint32_t NOSTREAM = 0xFFFFFFFF;

inline constexpr std::size_t kHeaderSize = 512;
inline constexpr std::size_t kHeaderDifatSlots = 109;
inline constexpr std::size_t kDirEntrySize = 128;
inline constexpr std::uint32_t kMiniSectorShift = 6;
inline constexpr std::uint32_t kMiniSectorSize = 64;
// Streams shorter than this live in the mini stream.
inline constexpr std::uint64_t kMiniStreamCutoff = 4096;
// The largest stream a file of 512-byte sectors may hold.
inline constexpr std::uint64_t kMaxSmallSectorStreamSize = 0x80000000;
inline constexpr std::size_t kMaxNameLength = 31;

enum class EntryType : std::uint8_t { Unused = 0, Storage = 1, Stream = 2, Root = 5 };
enum class Color : std::uint8_t { Red = 0, Black = 1 };

struct Header {
    std::uint16_t majorVersion = 3;  // 3: 512-byte sectors, 4: 4096-byte sectors
    std::uint16_t sectorShift = 9;
    std::uint32_t directorySectorCount = 0;  // 0 in files of 512-byte sectors
    std::uint32_t fatSectorCount = 0;
    std::uint32_t firstDirectorySector = ENDOFCHAIN;
    std::uint32_t firstMiniFatSector = ENDOFCHAIN;
    std::uint32_t miniFatSectorCount = 0;
    std::uint32_t firstDifatSector = ENDOFCHAIN;
    std::uint32_t difatSectorCount = 0;
    std::uint32_t difat[kHeaderDifatSlots];

    Header();
};

// Reads the 512 header bytes. Fails with STG_E_FILEALREADYEXISTS when the signature is not there
// (not a compound file) and STG_E_INVALIDHEADER when a field is out of its range.
void decodeHeader(const std::uint8_t* bytes, Header& header);
void encodeHeader(const Header& header, std::uint8_t* bytes);

struct DirEntry {
    std::u16string name;
    EntryType type = EntryType::Unused;
    Color color = Color::Black;
    std::uint32_t left = NOSTREAM;
    std::uint32_t right = NOSTREAM;
    std::uint32_t child = NOSTREAM;
    CLSID clsid{};
    std::uint32_t stateBits = 0;
    std::uint64_t created = 0;
    std::uint64_t modified = 0;
    std::uint32_t startSector = ENDOFCHAIN;
    std::uint64_t size = 0;
};

// Reads one 128-byte entry. In files of 512-byte sectors only the low 32 bits of the size count:
// old writers left the high half uninitialised. Fails with STG_E_DOCFILECORRUPT on a bad name field.
DirEntry decodeDirEntry(const std::uint8_t* bytes, bool largeSectors);
void encodeDirEntry(const DirEntry& entry, std::uint8_t* bytes);

// Fields are read and written through the shared little-endian helpers.
inline std::uint16_t load16(const std::uint8_t* p) { return le::u16(p); }
inline std::uint32_t load32(const std::uint8_t* p) { return le::u32(p); }
inline std::uint64_t load64(const std::uint8_t* p) { return le::u64(p); }
inline void store16(std::uint8_t* p, std::uint16_t v) { le::put16(p, v); }
inline void store32(std::uint8_t* p, std::uint32_t v) { le::put32(p, v); }
inline void store64(std::uint8_t* p, std::uint64_t v) { le::put64(p, v); }

}  // namespace nvdl::cfb
