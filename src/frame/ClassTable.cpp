#include "frame/ClassTable.h"

#include <cctype>

namespace nvdl {

namespace {

std::vector<ClassInfo>& table() {
    static std::vector<ClassInfo> rows;
    return rows;
}

bool progIdEquals(std::u16string_view wide, const char* ascii) {
    std::size_t i = 0;
    for (; ascii[i]; ++i) {
        if (i >= wide.size() || wide[i] > 0x7F) return false;
        if (std::tolower(static_cast<unsigned char>(wide[i])) != std::tolower(static_cast<unsigned char>(ascii[i])))
            return false;
    }
    return i == wide.size();
}

}  // namespace

ClassRegistration::ClassRegistration(const ClassInfo& info) { table().push_back(info); }

const ClassInfo* findClass(REFCLSID clsid) {
    for (const ClassInfo& row : table())
        if (row.clsid == clsid) return &row;
    return nullptr;
}

const ClassInfo* findClassByProgId(std::u16string_view progId) {
    for (const ClassInfo& row : table())
        if (progIdEquals(progId, row.progId)) return &row;
    return nullptr;
}

std::vector<const ClassInfo*> registeredClasses() {
    std::vector<const ClassInfo*> rows;
    for (const ClassInfo& row : table()) rows.push_back(&row);
    return rows;
}

HRESULT createInstance(REFCLSID clsid, IDispatch** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const ClassInfo* info = findClass(clsid);
    if (!info) return REGDB_E_CLASSNOTREG;
    *object = info->create();
    return *object ? S_OK : E_OUTOFMEMORY;
}

}  // namespace nvdl

HRESULT CLSIDFromProgID(const OLECHAR* progId, CLSID* clsid) {
    if (!progId || !clsid) return E_INVALIDARG;
    const nvdl::ClassInfo* info = nvdl::findClassByProgId(progId);
    if (!info) return CO_E_CLASSSTRING;
    *clsid = info->clsid;
    return S_OK;
}
