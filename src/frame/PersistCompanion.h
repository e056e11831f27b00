// What every persistence companion of a model class answers in the same way: it has no count of its
// own and forwards its reference operations to the object it is embedded in, its class identifier is
// that object's class (Owner::kClassId), and the object is dirty while its Modified flag is set. The
// companion itself reads and writes.
#pragma once

#include "nvdl/Persist.h"

namespace nvdl {

template <class Owner, class Persist>
class CPersistCompanion : public Persist {
public:
    explicit CPersistCompanion(Owner& owner) : m_owner(owner) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override { return m_owner.QueryInterface(riid, ppv); }
    ULONG AddRef() override { return m_owner.AddRef(); }
    ULONG Release() override { return m_owner.Release(); }
    HRESULT GetClassID(CLSID* clsid) override {
        if (!clsid) return E_POINTER;
        *clsid = Owner::kClassId;
        return S_OK;
    }
    HRESULT IsDirty() override {
        SHORT modified = 0;
        m_owner.get_Modified(&modified);
        return modified ? S_OK : S_FALSE;
    }

protected:
    Owner& m_owner;
};

// The storage companion of an object that reads or writes the storage it is given within one call
// and keeps none between calls: preparing a new storage, finishing a save and letting a storage go
// have nothing to do.
template <class Owner>
class CStoragePersistCompanion : public CPersistCompanion<Owner, IPersistStorage> {
public:
    using CPersistCompanion<Owner, IPersistStorage>::CPersistCompanion;
    HRESULT InitNew(IStorage*) override { return S_OK; }
    HRESULT SaveCompleted(IStorage*) override { return S_OK; }
    HRESULT HandsOffStorage() override { return S_OK; }
};

}  // namespace nvdl
