// CProject: one document of the suite - its workspaces, screen layouts, setups and associated
// documents - kept in one project file (project/ProjectFile.cpp) that stays locked against other
// processes while the project has it open. Workspaces, layouts and setups have the project as their
// parent; setups that a workspace brings from a file are moved up into the project.
#pragma once

#include <string>

#include "frame/ObjectCollection.h"
#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/IProject.h"
#include "nvdl/Persist.h"
#include "platform/FileLock.h"

namespace nvdl {

class CProject;

// Hosts that embed a project as a storage: it forwards its reference operations to the project and
// keeps no storage of its own; the project is read and written as a whole file by Load and Save.
class CProjectPersistStorage final : public CStoragePersistCompanion<CProject> {
public:
    using CStoragePersistCompanion::CStoragePersistCompanion;
    HRESULT Load(IStorage* storage) override;
    HRESULT Save(IStorage* storage, int sameStorage) override;
};

class CProject final : public CObjectFrame<CProject, IProject> {
public:
    static constexpr const char* kClassName = "CProject";
    static constexpr const CLSID& kClassId = CLSID_CProject;

    static IDispatch* create() { return (new CProject)->dispatch(); }
    CProject();
    ~CProject() override;

    NVDL_IMPLEMENTS(NVDL_IPROJECT_MEMBERS)

    // Documents, workspaces, layouts and setups of the source replace the target's, as clones. The
    // target's file and Modified flag stay.
    static HRESULT Copy(IProject* source, IProject* target);

    // The project file: written beside the target and renamed over it when complete (SaveProject),
    // read from a project file or a zip bundle (LoadProject).
    HRESULT SaveProject(const std::string& file);
    HRESULT LoadProject(const std::string& file);
    // A zip archive holding a project file and recordings: the recordings take the place of the
    // project's workspaces. `archive` says whether the file was taken as an archive; when it was
    // not, the result is E_FAIL without a message.
    HRESULT LoadProjectZipVersion(const std::string& file, bool& archive);
    // A recording as a new workspace, read with every section of the file. 1 when it was added.
    int AppendTRC(const std::string& path);
    // The toggle of the lock on the project file: drops a held lock, or takes one on `file`.
    int LockUnLockFile(const std::string& file);
    // Lets the host process its pending events between units of long work.
    static void DoEvents();
    // A recording of the TEAC family converted to a project file; the count of workspaces made.
    HRESULT ConvertTEACtoVPJ(const std::string& source, const std::string& target, LONG* count);
    // Raises a message for the client with the file as its source.
    void RaiseExecption(const std::string& message, const std::string& file);

    CObjectCollection& workspaces() { return m_workspaces; }
    CObjectCollection& layouts() { return m_layouts; }
    CObjectCollection& setups() { return m_setups; }
    CObjectCollection& documents() { return m_documents; }

private:
    HRESULT queryCompanion(REFIID riid, void** ppv) override;

    CProjectPersistStorage m_persistStorage{*this};
    CObjectCollection m_workspaces{IID_IWorkspaces};
    CObjectCollection m_layouts{IID_ILayouts};
    CObjectCollection m_setups{IID_ISetups};
    CObjectCollection m_documents{IID_IParameters};
    std::string m_sFullPathName;
    FileLock m_hLock;
    LONG m_bMaster = 0;
};

// Writes "ImportAllTRCFlag" in the user's settings: whether a recording's import takes every section.
void SetImportAllTRCFlag(bool all);

}  // namespace nvdl
