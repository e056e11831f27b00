// A zip archive bundling a project file with recording files, extracted into a private temporary
// directory that lives as long as the bundle object.
//
// Every name and size of the archive is checked before anything is written: names that could reach
// outside the directory, more entries or more bytes than the limits allow, more bytes than the
// temporary file system has free. While extracting, an entry that inflates beyond its declared size
// stops everything. Files are created only inside the fresh directory, never through a symbolic link
// and never over an existing file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "nvdl/HResult.h"
#include "nvdl/Types.h"

namespace nvdl {

struct ZipLimits {
    std::uint64_t maxTotalBytes;  // declared uncompressed bytes of all entries together
    std::uint32_t maxEntries;
};

// The limits from the settings "ZipExtractLimitMB" (mebibytes, default 4096) and "ZipMaxEntries"
// (default 10000); a value that is not a positive number counts as missing.
ZipLimits zipLimitsFromSettings();

// The entries of an archive, extracted into a fresh directory (mode 0700) under $TMPDIR or /tmp.
// The destructor deletes every extracted file and the directory, whatever happened. Move-only.
class ExtractedBundle {
public:
    ExtractedBundle() = default;
    ExtractedBundle(ExtractedBundle&& other) noexcept;
    ExtractedBundle& operator=(ExtractedBundle&& other) noexcept;
    ExtractedBundle(const ExtractedBundle&) = delete;
    ExtractedBundle& operator=(const ExtractedBundle&) = delete;
    ~ExtractedBundle();

    // S_OK with the files in `out`. E_FAIL with an empty message when the file is not a zip archive
    // or has no entries (the caller then tries other formats); E_FAIL with a one-line message naming
    // the entry and the reason for an archive that is refused or damaged, and then nothing stays on
    // disk. `zipFile` is 8-bit text in the code page; it is trimmed.
    static HRESULT extract(const std::string& zipFile, const ZipLimits& limits, ExtractedBundle& out,
                           std::string& message);

    // 8-bit paths of the extracted files (directory entries are not listed), in archive order;
    // entries with an empty name are passed over.
    const std::vector<std::string>& files() const { return m_files; }
    // 8-bit path of the directory; empty for a bundle that holds nothing.
    const std::string& directory() const { return m_directory; }

private:
    void removeAll();

    std::string m_directory;
    std::vector<std::string> m_files;
};

}  // namespace nvdl
