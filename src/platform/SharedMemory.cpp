#include "platform/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "platform/CodePage.h"

namespace nvdl {

std::string CShmBlock::systemName(std::string_view name) {
    if (name.empty() || name.size() > kMaxNameLength || name.find('\0') != std::string_view::npos) return {};
    std::string safe = "nvdl.";
    for (char c : name) {
        if (c == '/') safe += "%2F";
        else if (c == '%') safe += "%25";
        else safe += c;
    }
    safe = pathFromAnsi(safe).string();  // 8-bit text becomes UTF-8 and may grow
    if (safe.size() > NAME_MAX) return {};
    return "/" + safe;
}

bool CShmBlock::Create(std::string_view name, std::size_t size) {
    Close();
    return map(name, size, true);
}

bool CShmBlock::Open(std::string_view name, std::size_t size) {
    if (IsOpen()) return false;
    return map(name, size, false);
}

bool CShmBlock::map(std::string_view name, std::size_t size, bool create) {
    const std::string system = systemName(name);
    if (system.empty() || size == 0) return false;
    bool created = false;
    int fd = -1;
    if (create) {
        fd = ::shm_open(system.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
        created = fd >= 0;
    }
    if (fd < 0) fd = ::shm_open(system.c_str(), O_RDWR, 0);
    if (fd < 0) return false;
    struct stat st {};
    bool sized = ::fstat(fd, &st) == 0;
    if (sized && static_cast<std::size_t>(st.st_size) < size)
        sized = create && ::ftruncate(fd, static_cast<off_t>(size)) == 0;  // a reader never grows it
    void* view = sized ? ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0) : MAP_FAILED;
    ::close(fd);
    if (view == MAP_FAILED) {
        if (created) ::shm_unlink(system.c_str());
        return false;
    }
    m_view = view;
    m_size = size;
    if (created) m_ownedName = system;
    return true;
}

bool CShmBlock::Write(const void* data, std::size_t length) {
    if (!IsOpen() || !data || length < 1 || length > m_size) return false;
    std::memset(m_view, 0, m_size);
    std::memcpy(m_view, data, length);
    return true;
}

bool CShmBlock::Read(void* buffer, std::size_t bufferSize, std::size_t offset, std::size_t length) const {
    if (!IsOpen() || !buffer || length > bufferSize || offset > m_size || length > m_size - offset) return false;
    std::memcpy(buffer, static_cast<const char*>(m_view) + offset, length);
    return true;
}

void CShmBlock::Close() {
    if (m_view) ::munmap(m_view, m_size);
    if (!m_ownedName.empty()) ::shm_unlink(m_ownedName.c_str());
    m_view = nullptr;
    m_size = 0;
    m_ownedName.clear();
}

std::string shmRecordName(std::string_view link) { return std::string(link) + "0"; }

std::string readShmRecord(std::string_view link) {
    if (link.empty()) return {};
    CShmBlock block;
    char text[kShmRecordSize] = {};
    if (!block.Open(shmRecordName(link), sizeof text) || !block.Read(text, sizeof text, 0, sizeof text)) return {};
    return std::string(text, strnlen(text, sizeof text));
}

}  // namespace nvdl
