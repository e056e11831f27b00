// CTrcLoader: the test definition that a new recording embeds, a file of the caller's application
// taken whole into the recording.
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>

#include "access/TrcLoader.h"
#include "platform/CodePage.h"
#include "recording/TrcTestDefinition.h"

namespace nvdl::access {

namespace {

// The name and extension of a path, without drive and folders; either slash separates.
std::string leafName(const std::string& path) {
    const std::size_t cut = path.find_last_of("\\/:");
    return cut == std::string::npos ? path : path.substr(cut + 1);
}

constexpr std::size_t kPieceSize = 4096;

}  // namespace

int CTrcLoader::SetTestDefinitionFile(const char* path) {
    if (m_currentName.empty() || !path || !*path) return 0;
    std::ifstream file(pathFromAnsi(path), std::ios::binary | std::ios::ate);
    if (!file) return 0;
    const std::streamoff size = file.tellg();
    // The header holds the size in 32 bits.
    if (size < 0 || static_cast<std::uint64_t>(size) > std::numeric_limits<std::uint32_t>::max()) return 0;
    trc::CTrcTestDefSectionHeader& header = GetTestDefinition().GetHeader();
    header.SetDataSize(static_cast<std::uint32_t>(size));
    header.SetFilename(leafName(path).c_str());
    m_testDefinitionPath = path;
    return 1;
}

int CTrcLoader::StoreTestDefinition(const char* path) {
    trc::CTrcTestDefSection& section = GetTestDefinition();
    const std::uint32_t expected = section.GetHeader().GetDataSize();
    if (!IsOpened() || !*section.GetHeader().GetFilename() || expected == 0 || !path) return 0;
    std::ifstream file(pathFromAnsi(path), std::ios::binary);
    if (!file) return 0;
    unsigned char piece[kPieceSize];
    std::int64_t total = 0;
    while (file) {
        file.read(reinterpret_cast<char*>(piece), kPieceSize);
        const std::streamsize got = file.gcount();
        if (got <= 0) break;
        // A file grown since it was measured runs over the section: the write refuses it.
        if (!section.GetData().Write(total, piece, got)) return 0;
        total += got;
    }
    return total == static_cast<std::int64_t>(expected) ? 1 : 0;
}

}  // namespace nvdl::access
