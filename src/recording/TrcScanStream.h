// ScanStream: moves samples and status records of one part (inputs or tachos) of a recording's
// scan stream between the file and the caller, at the places a ScanGeometry names. By scan, the
// part's samples of one scan move in one file operation; by channel, a run of one channel's samples
// moves in one operation per block it touches. Every call checks the geometry it is given and
// answers 0, without touching the file, when the request does not fit it.
#pragma once

#include <cstdint>

#include "recording/TrcScanGeometry.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcScanInfo;

class ScanStream {
public:
    ScanStream(CTrcFile* file, const ScanGeometry& geometry, ScanPart part)
        : m_file(file),
          m_g(geometry),
          m_part(part) {}

    // `count` samples of the channel with 1-based number `number`, from sample `position` of the
    // recording on.
    int ReadChannel(long number, std::int64_t position, unsigned char* buffer, std::int64_t count);
    int WriteChannel(long number, std::int64_t position, const unsigned char* buffer, std::int64_t count);

    // All the part's samples of scan `scan` (from 1); `count` must be the part's used channels
    // times the blocksize.
    int ReadScan(long scan, unsigned char* buffer, std::int64_t count);
    int WriteScan(long scan, const unsigned char* buffer, std::int64_t count);

    int ReadInfo(long scan, long number, CTrcScanInfo& info);
    int WriteInfo(long scan, long number, const CTrcScanInfo& info);

private:
    long usableChannel(long number) const;
    std::int64_t infoOffset(long scan, long number) const;
    // Reads into a buffer of unsigned char, writes from one of const unsigned char.
    template <class Byte>
    int moveChannel(long number, std::int64_t position, Byte* data, std::int64_t count);
    template <class Byte>
    int moveScan(long scan, Byte* data, std::int64_t count);
    int move(std::int64_t offset, unsigned char* data, std::int64_t size);
    int move(std::int64_t offset, const unsigned char* data, std::int64_t size);

    CTrcFile* m_file;
    const ScanGeometry& m_g;
    ScanPart m_part;
};

}  // namespace nvdl::trc
