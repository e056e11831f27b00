#include "frame/ClassTable.h"
#include "frame/ObjectCount.h"
#include "nvdl/ServerEntry.h"
#include "nvdl/nvdl.h"

namespace nvdl {

HRESULT CreateObject(std::u16string_view progId, IDispatch** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const ClassInfo* info = findClassByProgId(progId);
    if (!info) return REGDB_E_CLASSNOTREG;
    IClassFactory* factory = nullptr;
    HRESULT h = DllGetClassObject(info->clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(h)) return h;
    h = factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(object));
    factory->Release();
    return h;
}

long ObjectCount() { return g_nObjects; }

}  // namespace nvdl
