// libFuzzer target for the compound-file reader: the input is taken as a whole file, opened,
// and every storage and stream in it is walked and read.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "nvdl/Storage.h"

namespace {

constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;

void readStream(IStorage* storage, const STATSTG& e) {
    IStream* stream = nullptr;
    if (FAILED(storage->OpenStream(e.name.c_str(), nullptr, kRead, 0, &stream))) return;
    std::uint8_t buffer[4096];
    ULONG got = 0;
    // A stream may be far larger than the input (its sectors then read as zero); a sample suffices.
    for (int i = 0; i < 64 && SUCCEEDED(stream->Read(buffer, sizeof buffer, &got)) && got > 0; ++i) {
    }
    std::uint64_t position = 0;
    if (SUCCEEDED(stream->Seek(-1, STREAM_SEEK_END, &position))) stream->Read(buffer, 1, &got);
    STATSTG st;
    stream->Stat(&st, STATFLAG_DEFAULT);
    stream->Release();
}

void walk(IStorage* storage, int depth) {
    std::vector<STATSTG> elements;
    if (FAILED(storage->EnumElements(&elements))) return;
    for (const STATSTG& e : elements) {
        if (e.type == STGTY_STREAM) {
            readStream(storage, e);
            continue;
        }
        IStorage* child = nullptr;
        if (depth < 300 && SUCCEEDED(storage->OpenStorage(e.name.c_str(), nullptr, kRead, nullptr, 0, &child))) {
            walk(child, depth + 1);
            child->Release();
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int fd = memfd_create("compound", 0);
    if (fd < 0) return 0;
    if (ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) return 0;
    IStorage* root = nullptr;
    if (SUCCEEDED(nvdl::openCompoundFile("/proc/self/fd/" + std::to_string(fd), kRead, &root))) {
        walk(root, 0);
        root->Release();
    }
    return 0;
}
