// The table of creatable classes: ProgID (compared ignoring case), class identifier, friendly name
// and constructor. Each class registers its row from its own source file.
#pragma once

#include <string_view>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl {

struct ClassInfo {
    const char* progId;
    CLSID clsid;
    const char* friendlyName;
    IDispatch* (*create)();  // a new object holding one reference, or null
};

// Adds a row when the module loads: `static const ClassRegistration reg{{"nv_bench.x", CLSID_CX, "Sonvara X", make}};`
struct ClassRegistration {
    explicit ClassRegistration(const ClassInfo& info);
};

const ClassInfo* findClass(REFCLSID clsid);
const ClassInfo* findClassByProgId(std::u16string_view progId);
std::vector<const ClassInfo*> registeredClasses();

// Creates an instance of a class of the table by identifier, holding one reference.
HRESULT createInstance(REFCLSID clsid, IDispatch** object);

}  // namespace nvdl

HRESULT CLSIDFromProgID(const OLECHAR* progId, CLSID* clsid);
