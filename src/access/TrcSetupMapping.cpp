#include "access/TrcSetupMapping.h"

#include "access/FieldPairs.h"
#include "access/SetupAccess.h"
#include "access/TrcSetupPairs.h"
#include "nvdl/Variant.h"

namespace nvdl::access {
namespace {

// The setup's own fields. Object side without a file field: DataMode. Creator goes only from the
// file to the setup (see applySetup).
struct SetupPairs {
    using File = trc::CTrcSetupSection;
    using Fields = SetupFields;
    static constexpr FieldPair<File, Fields> rows[] = {
        NVDL_SAME_FIELD(Default),           NVDL_SAME_FIELD(Name),
        NVDL_SAME_FIELD(GroupChannels),     NVDL_SAME_FIELD(GroupFunctions),
        NVDL_SAME_FIELD(GroupDataInSameWs), NVDL_SAME_FIELD(WorkspacePrefixName),
        NVDL_SAME_FIELD(ParametersLayout),
    };
};

}  // namespace

HRESULT append(CObjectCollection& collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return collection.Add(item, &key, &before, &after, &index);
}

int applySetup(CSetup& from, trc::CTrcSetupSection& to) {
    toFile<SetupPairs::File, SetupPairs::Fields>(SetupPairs::rows, from.m_fields, to);
    return applyChannels(from, to) && applySections(from, to) && applyLists(from, to);
}

int buildSetup(trc::CTrcSetupSection& from, CSetup& to) {
    toObject<SetupPairs::File, SetupPairs::Fields>(SetupPairs::rows, from, to.m_fields);
    to.m_fields.Creator = from.GetCreator();
    return buildChannels(from, to) && buildSections(from, to) && buildLists(from, to);
}

}  // namespace nvdl::access
