// The workspace in a storage given by its caller: the storage's name is kept as the source, and the
// workspace file's tree is read from it or written into it.
#include "platform/CodePage.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl {

HRESULT CWorkspacePersistStorage::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    STATSTG stat;
    HRESULT h = storage->Stat(&stat, STATFLAG_DEFAULT);
    if (FAILED(h)) return h;
    const std::string name = narrow(stat.name);
    m_owner.setSourceName(name);
    std::string message;
    return loadWkd(storage, m_owner, WkdPlace{name, {}}, message);
}

HRESULT CWorkspacePersistStorage::Save(IStorage* storage, int) {
    std::string message;
    return saveWkd(storage, m_owner, message);
}

}  // namespace nvdl
