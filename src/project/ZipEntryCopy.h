// Unpacks the current entry of a zip archive, opened raw, into a file: stored entries are copied,
// deflated ones inflated here, so that the output is counted against the declared size as it is
// made and a lying header cannot make more than it declares.
#pragma once

#include <minizip/unzip.h>

#include <cstdint>

namespace nvdl {

enum class ZipCopyResult {
    Ok,
    TooLarge,    // more bytes than declared: nothing beyond the declared size was written
    Damaged,     // unreadable or cut-off data, or fewer bytes than declared
    CrcError,    // the bytes do not match the declared CRC
    WriteError,  // the file could not take the bytes; errno tells why
};

ZipCopyResult copyZipEntry(unzFile archive, int method, std::uint64_t declaredSize, std::uint32_t declaredCrc,
                           int fd);

}  // namespace nvdl
