// The workspace's shared record: 150 bytes in named shared memory that hold the workspace's name, so
// that another process that knows the link text can read it. The link text is a new identifier; the
// block is named by the text followed by "0".
#include <cstdio>

#include "frame/LateBound.h"
#include "platform/ComPtr.h"
#include "project/Workspace.h"

namespace nvdl {

bool CWorkspace::CreateShmInfo(std::string_view name, std::size_t size) {
    if (name.empty() || name.size() > CShmBlock::kMaxNameLength || size == 0) return false;
    CloseShmInfo();
    return m_shm.Create(name, size);
}

bool CWorkspace::CloseShmInfo() {
    m_shm.Close();
    return true;
}

// The first name stays: a record that already holds text is only rewritten for a master project,
// whose workspaces may be renamed as often as it likes.
bool CWorkspace::WriteShmInfo(const void* data, std::size_t length) {
    if (!m_shm.IsOpen() || !data || length < 1) return false;
    if (length > m_shm.GetSize()) length = m_shm.GetSize();
    char first = 0;
    const bool read = m_shm.Read(&first, 1, 0, 1);
    if (first != 0) {
        ComPtr<IDispatch> parent;
        if (FAILED(get_Parent(parent.out())) || !IsMasterProjectParent(parent.get())) return read;
    }
    return m_shm.Write(data, length);
}

bool CWorkspace::InitShmInfo() {
    if (!m_fields.ShmLink.empty() && m_shm.IsOpen()) return true;
    m_fields.ShmLink.clear();
    GUID id;
    if (!GenerateNewUID(id)) return false;
    const std::string link = GetFormattedGuid(id, kShmRecordSize);
    if (!CreateShmInfo(shmRecordName(link), kShmRecordSize)) return false;
    m_fields.ShmLink = link;
    const char zeros[kShmRecordSize] = {};
    return m_shm.Write(zeros, sizeof zeros);
}

bool CWorkspace::IsMasterProjectParent(IDispatch* parent) {
    Variant master;
    if (!parent || FAILED(latebound::get(parent, u"Master", &master)) || FAILED(master.changeType(VT_I4))) return false;
    return master.lVal == -1;
}

bool CWorkspace::GenerateNewUID(GUID& id) {
    id = generateGuid();
    return id != GUID_NULL;
}

std::string CWorkspace::GetFormattedGuid(const GUID& id, std::size_t size) {
    if (size == 0) return {};
    char text[64] = {};
    std::snprintf(text, size < sizeof text ? size : sizeof text,
                  "0x%08lX-0x%04X-0x%04x-0x%02X%02X-0x%02X%02X%02X%02X%02X%02X", static_cast<unsigned long>(id.Data1),
                  id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5],
                  id.Data4[6], id.Data4[7]);
    return text;
}

}  // namespace nvdl
