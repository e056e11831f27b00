// CWorkspace: the container of one set of results - measurements, modes, geometries, acquisition
// setups and data blocks - each in a named collection that the workspace owns. A project holds
// workspaces; a workspace also lives alone as a workspace file, read and written by a loader found
// through the loader registry (project/WorkspaceFile.cpp).
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/IWorkspace.h"
#include "nvdl/Persist.h"
#include "platform/SharedMemory.h"

namespace nvdl {

class CWorkspace;

struct WorkspaceFields {
    std::string FullPathName;
    std::string OriginFile;
    std::string OriginTime;  // a date as text, as ctime writes it
    std::int16_t Default = 0;
    std::string ShmLink;     // the link text of the shared record that publishes the name
};

// The workspace in a storage: the workspace file's tree, read and written in place.
class CWorkspacePersistStorage final : public CStoragePersistCompanion<CWorkspace> {
public:
    using CStoragePersistCompanion::CStoragePersistCompanion;
    HRESULT Load(IStorage* storage) override;
    HRESULT Save(IStorage* storage, int sameStorage) override;
};

// The workspace as a file of its own, for hosts that open documents by file name.
class CWorkspacePersistFile final : public CPersistCompanion<CWorkspace, IPersistFile> {
public:
    using CPersistCompanion::CPersistCompanion;
    // Load through the loader of the file, as Load does.
    HRESULT Load(const OLECHAR* file, DWORD mode) override;
    // Save takes the path of a save without a file name, which a workspace refuses: the call does
    // nothing and fails, whatever it is given. Hosts save through the workspace's own Save.
    HRESULT Save(const OLECHAR* file, int remember) override;
    // Nothing to finish after a save.
    HRESULT SaveCompleted(const OLECHAR*) override { return S_OK; }
    // The file the workspace was last read from or saved to.
    HRESULT GetCurFile(OLECHAR** file) override;
};

class CWorkspace final : public CObjectFrame<CWorkspace, IWorkspace> {
public:
    static constexpr const char* kClassName = "CWorkspace";
    static constexpr const CLSID& kClassId = CLSID_CWorkspace;
    static constexpr IID kModifiedParents[] = {IID_IProject};

    static IDispatch* create() { return (new CWorkspace)->dispatch(); }
    // A new workspace named "Workspace%d" by the process-wide count of such workspaces.
    CWorkspace();
    // A new workspace of the given name.
    explicit CWorkspace(std::string name);
    ~CWorkspace() override;

    NVDL_IMPLEMENTS(NVDL_IWORKSPACE_MEMBERS)

    // The names, times and the default flag, then clones of the items: measurements, data blocks,
    // geometries, modes, setups.
    static HRESULT Copy(IWorkspace* source, IWorkspace* target);

    CObjectCollection& measurements() { return m_measurements; }
    CObjectCollection& modes() { return m_modes; }
    CObjectCollection& geometries() { return m_geometries; }
    CObjectCollection& setups() { return m_setups; }
    CObjectCollection& dataBlocks() { return m_dataBlocks; }
    // Whether measurements take unit objects when they are read.
    bool loadUnits() const { return m_loadUnits != 0; }
    // Sets or clears the flag directly, without telling a project.
    void setModifiedHere(SHORT modified) { m_modified = modified; }
    void setSourceName(std::string name) { m_sourceName = std::move(name); }

    // The shared record that publishes the workspace's name to other processes (WorkspaceShm.cpp).
    // Closes an open block, then creates the named one.
    bool CreateShmInfo(std::string_view name, std::size_t size);
    bool CloseShmInfo();
    // Writes the record, once: a later write is skipped unless the parent project is a master.
    bool WriteShmInfo(const void* data, std::size_t length);
    // A new link text and a zeroed record, unless the workspace already has both.
    bool InitShmInfo();
    // Whether `parent` says by its Master property that it is a master project (-1).
    static bool IsMasterProjectParent(IDispatch* parent);
    // A new random identifier; false only for the null one.
    static bool GenerateNewUID(GUID& id);
    // The identifier as link text, cut to size - 1 characters.
    static std::string GetFormattedGuid(const GUID& id, std::size_t size);

    WorkspaceFields m_fields;

private:
    HRESULT queryCompanion(REFIID riid, void** ppv) override;
    void ownCollections();
    // Makes a path unique among the FullPathName of the workspaces of the parent project.
    void GenerateUnicId(std::string& name);

    std::string m_name;
    std::string m_sourceName;
    SHORT m_loadUnits = 1;
    CShmBlock m_shm;
    CWorkspacePersistStorage m_persistStorage{*this};
    CWorkspacePersistFile m_persistFile{*this};
    CObjectCollection m_measurements{IID_IMeasurements};
    CObjectCollection m_modes{IID_IModes};
    CObjectCollection m_geometries{IID_IGeometries};
    CObjectCollection m_setups{IID_ISetups};
    CObjectCollection m_dataBlocks{IID_IDataBlocks};
};

// A new direct writer of a workspace file (IWsStorageV2), with one reference.
HRESULT createWsStorageV2(void** ppv);

}  // namespace nvdl
