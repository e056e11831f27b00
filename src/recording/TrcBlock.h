// A fixed block of a recording section: `size` bytes with the fields of a record table at their
// offsets and zeros between them, moved in one read or write at an absolute position.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/RecordLayout.h"
#include "recording/TrcFile.h"

namespace nvdl::trc {

template <class R>
int writeBlockAt(CTrcFile* file, std::int64_t offset, std::span<const record::Field<R, 1>> table, const R& from,
                 std::size_t size) {
    if (!file || !file->IsOpened() || file->IsReadOnly() || offset < 0) return 0;
    std::vector<std::uint8_t> bytes(size, 0);
    record::encode(table, 0, from, bytes.data());
    return file->Seek(offset, 0) && file->Write(bytes.data(), static_cast<std::int64_t>(size)) ? 1 : 0;
}

// Leaves `into` as it was when the block cannot be read whole.
template <class R>
int readBlockAt(CTrcFile* file, std::int64_t offset, std::span<const record::Field<R, 1>> table, R& into,
                std::size_t size) {
    if (!file || !file->IsOpened() || offset < 0) return 0;
    std::vector<std::uint8_t> bytes(size);
    if (!file->Seek(offset, 0) || !file->Read(bytes.data(), static_cast<std::int64_t>(size))) return 0;
    record::decode(table, 0, bytes.data(), into);
    return 1;
}

}  // namespace nvdl::trc
