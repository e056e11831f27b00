// CTrcLoader: a setup object carried into the recording's setup section, and a new setup object
// made from a recording.
#include "access/SetupAccess.h"
#include "access/TrcLoader.h"
#include "access/TrcSetupMapping.h"
#include "frame/ClassTable.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcTestDefinition.h"

namespace nvdl::access {

ISetup* CTrcLoader::BuildSetup() {
    if (!IsOpened() || !GetRecorder().Read()) return nullptr;
    ComPtr<IDispatch> object;
    if (FAILED(createInstance(CLSID_CSetup, object.out()))) return nullptr;
    CSetup* setup = frameOf<CSetup>(object.get());
    if (!setup || !buildSetup(GetRecorder().GetHeader().GetSetup(), *setup)) return nullptr;
    return ComPtr<ISetup>::query(object.get()).release();
}

int CTrcLoader::ApplySetup(ISetup* setup, int create) {
    CSetup* from = setup ? frameOf<CSetup>(setup) : nullptr;
    if (!from || !applySetup(*from, GetRecorder().GetHeader().GetSetup())) return 0;
    if (!create) return 1;
    // The setup fixes the room of every section: the file is laid out and sized once, now.
    if (m_currentName.empty() || !Create(m_currentName.c_str()) || !GetRecorder().Write()) return 0;
    if (m_testDefinitionPath.empty()) return 1;
    return GetTestDefinition().Write() && StoreTestDefinition(m_testDefinitionPath.c_str());
}

}  // namespace nvdl::access
