#include "platform/CompoundFormat.h"

#include <algorithm>
#include <cstring>

#include "platform/CompoundError.h"

namespace nvdl::cfb {

namespace {

// Header field offsets.
constexpr std::size_t kOffClsid = 8;
constexpr std::size_t kOffMinorVersion = 24;
constexpr std::size_t kOffMajorVersion = 26;
constexpr std::size_t kOffByteOrder = 28;
constexpr std::size_t kOffSectorShift = 30;
constexpr std::size_t kOffMiniSectorShift = 32;
constexpr std::size_t kOffDirectorySectorCount = 40;
constexpr std::size_t kOffFatSectorCount = 44;
constexpr std::size_t kOffFirstDirectorySector = 48;
constexpr std::size_t kOffTransactionSignature = 52;
constexpr std::size_t kOffMiniStreamCutoff = 56;
constexpr std::size_t kOffFirstMiniFatSector = 60;
constexpr std::size_t kOffMiniFatSectorCount = 64;
constexpr std::size_t kOffFirstDifatSector = 68;
constexpr std::size_t kOffDifatSectorCount = 72;
constexpr std::size_t kOffDifat = 76;

constexpr std::uint16_t kMinorVersion = 0x003E;
constexpr std::uint16_t kByteOrderMark = 0xFFFE;

// Directory entry field offsets.
constexpr std::size_t kOffName = 0;
constexpr std::size_t kOffNameLength = 64;
constexpr std::size_t kOffType = 66;
constexpr std::size_t kOffColor = 67;
constexpr std::size_t kOffLeft = 68;
constexpr std::size_t kOffRight = 72;
constexpr std::size_t kOffChild = 76;
constexpr std::size_t kOffEntryClsid = 80;
constexpr std::size_t kOffStateBits = 96;
constexpr std::size_t kOffCreated = 100;
constexpr std::size_t kOffModified = 108;
constexpr std::size_t kOffStartSector = 116;
constexpr std::size_t kOffSize = 120;

}  // namespace

Header::Header() { std::fill(std::begin(difat), std::end(difat), FREESECT); }

void decodeHeader(const std::uint8_t* b, Header& h) {
    if (std::memcmp(b, kSignature, sizeof kSignature) != 0) fail(STG_E_FILEALREADYEXISTS);
    if (load16(b + kOffByteOrder) != kByteOrderMark) fail(STG_E_INVALIDHEADER);
    h.majorVersion = load16(b + kOffMajorVersion);
    h.sectorShift = load16(b + kOffSectorShift);
    if (h.majorVersion != 3 && h.majorVersion != 4) fail(STG_E_INVALIDHEADER);
    if (h.sectorShift != 9 && h.sectorShift != 12) fail(STG_E_INVALIDHEADER);
    if (load16(b + kOffMiniSectorShift) != kMiniSectorShift) fail(STG_E_INVALIDHEADER);
    if (load32(b + kOffMiniStreamCutoff) != kMiniStreamCutoff) fail(STG_E_INVALIDHEADER);
    h.directorySectorCount = load32(b + kOffDirectorySectorCount);
    h.fatSectorCount = load32(b + kOffFatSectorCount);
    h.firstDirectorySector = load32(b + kOffFirstDirectorySector);
    h.firstMiniFatSector = load32(b + kOffFirstMiniFatSector);
    h.miniFatSectorCount = load32(b + kOffMiniFatSectorCount);
    h.firstDifatSector = load32(b + kOffFirstDifatSector);
    h.difatSectorCount = load32(b + kOffDifatSectorCount);
    for (std::size_t i = 0; i < kHeaderDifatSlots; ++i) h.difat[i] = load32(b + kOffDifat + 4 * i);
}

void encodeHeader(const Header& h, std::uint8_t* b) {
    std::memset(b, 0, kHeaderSize);
    std::memcpy(b, kSignature, sizeof kSignature);
    std::memset(b + kOffClsid, 0, 16);
    store16(b + kOffMinorVersion, kMinorVersion);
    store16(b + kOffMajorVersion, h.majorVersion);
    store16(b + kOffByteOrder, kByteOrderMark);
    store16(b + kOffSectorShift, h.sectorShift);
    store16(b + kOffMiniSectorShift, kMiniSectorShift);
    store32(b + kOffDirectorySectorCount, h.directorySectorCount);
    store32(b + kOffFatSectorCount, h.fatSectorCount);
    store32(b + kOffFirstDirectorySector, h.firstDirectorySector);
    store32(b + kOffTransactionSignature, 0);
    store32(b + kOffMiniStreamCutoff, static_cast<std::uint32_t>(kMiniStreamCutoff));
    store32(b + kOffFirstMiniFatSector, h.firstMiniFatSector);
    store32(b + kOffMiniFatSectorCount, h.miniFatSectorCount);
    store32(b + kOffFirstDifatSector, h.firstDifatSector);
    store32(b + kOffDifatSectorCount, h.difatSectorCount);
    for (std::size_t i = 0; i < kHeaderDifatSlots; ++i) store32(b + kOffDifat + 4 * i, h.difat[i]);
}

DirEntry decodeDirEntry(const std::uint8_t* b, bool largeSectors) {
    DirEntry e;
    std::uint8_t type = b[kOffType];
    if (type != 1 && type != 2 && type != 5) return e;  // unused (or unknown) slot
    e.type = static_cast<EntryType>(type);
    // The length counts bytes with the terminating NUL; a writer may leave the NUL out.
    std::uint16_t nameBytes = load16(b + kOffNameLength);
    if (nameBytes < 2 || nameBytes > 64 || nameBytes % 2 != 0) fail(STG_E_DOCFILECORRUPT);
    std::size_t chars = nameBytes / 2;
    for (std::size_t i = 0; i < chars; ++i) {
        char16_t c = load16(b + kOffName + 2 * i);
        if (c == 0) break;
        e.name.push_back(c);
    }
    if (e.name.empty() || e.name.size() > kMaxNameLength) fail(STG_E_DOCFILECORRUPT);
    e.color = b[kOffColor] == 0 ? Color::Red : Color::Black;
    e.left = load32(b + kOffLeft);
    e.right = load32(b + kOffRight);
    e.child = load32(b + kOffChild);
    e.clsid = guidFromBytes(b + kOffEntryClsid);
    e.stateBits = load32(b + kOffStateBits);
    e.created = load64(b + kOffCreated);
    e.modified = load64(b + kOffModified);
    e.startSector = load32(b + kOffStartSector);
    e.size = largeSectors ? load64(b + kOffSize) : load32(b + kOffSize);
    return e;
}

void encodeDirEntry(const DirEntry& e, std::uint8_t* b) {
    std::memset(b, 0, kDirEntrySize);
    if (e.type == EntryType::Unused) {
        store32(b + kOffLeft, NOSTREAM);
        store32(b + kOffRight, NOSTREAM);
        store32(b + kOffChild, NOSTREAM);
        return;
    }
    for (std::size_t i = 0; i < e.name.size(); ++i) store16(b + kOffName + 2 * i, e.name[i]);
    store16(b + kOffNameLength, static_cast<std::uint16_t>(2 * (e.name.size() + 1)));
    b[kOffType] = static_cast<std::uint8_t>(e.type);
    b[kOffColor] = static_cast<std::uint8_t>(e.color);
    store32(b + kOffLeft, e.left);
    store32(b + kOffRight, e.right);
    store32(b + kOffChild, e.child);
    guidToBytes(e.clsid, b + kOffEntryClsid);
    store32(b + kOffStateBits, e.stateBits);
    store64(b + kOffCreated, e.created);
    store64(b + kOffModified, e.modified);
    store32(b + kOffStartSector, e.startSector);
    store64(b + kOffSize, e.size);
}

}  // namespace nvdl::cfb
