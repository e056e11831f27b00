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

HRESULT CWorkspacePersistFile::Load(const OLECHAR* file, DWORD) {
    if (!file) return E_POINTER;
    Bstr name(std::u16string_view{file});
    Variant noLoader;
    return m_owner.Load(name.get(), noLoader);
}

HRESULT CWorkspacePersistFile::Save(const OLECHAR*, int) {
    Variant noLoader;
    return m_owner.Save(nullptr, noLoader);
}

HRESULT CWorkspacePersistFile::GetCurFile(OLECHAR** file) {
    if (!file) return E_POINTER;
    *file = allocBstrFromAnsi(m_owner.m_fields.FullPathName);
    return S_OK;
}

}  // namespace nvdl
