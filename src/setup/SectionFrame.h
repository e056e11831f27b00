// The frame of the setup's sections, channels and transducers: a class whose values are one plain
// record of fields (`m_fields`, with the defaults in its initialisers) with the setup as its owner.
// It gives what every member of the family does the same way:
// - Setup (the owning setup, a weak back reference) and Modified, whose set flag climbs to the setup;
// - Copy and Clone: the whole record, after which the target is marked modified;
// - the stream persistence companion, over the class's record layout `Derived::kRecord`
//   (setup/SectionRecord.h): the reader takes the generation that the stream's tag names, the
//   writer writes the newest, and a save that clears the dirty state clears Modified.
// A class declares its interface list with `field_get` / `field_put` members for its plain values;
// the rest of its members are its own. A class whose record holds more than the fields of its table
// (arrays of limits, rules applied while reading) specialises CSectionPersistStream for itself.
#pragma once

#include "frame/FrameBase.h"
#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/Identifiers.h"
#include "setup/SectionRecord.h"

namespace nvdl {

template <class Owner>
class CSectionPersistStream final : public CPersistCompanion<Owner, IPersistStream> {
public:
    using CPersistCompanion<Owner, IPersistStream>::CPersistCompanion;

    HRESULT Load(IStream* stream) override { return section::read(stream, Owner::kRecord, this->m_owner.m_fields); }
    HRESULT Save(IStream* stream, int clearDirty) override {
        HRESULT h = section::write(stream, Owner::kRecord, this->m_owner.m_fields);
        if (SUCCEEDED(h) && clearDirty) this->m_owner.put_Modified(0);
        return h;
    }
    HRESULT GetSizeMax(std::uint64_t* size) override {
        if (!size) return E_POINTER;
        *size = Owner::kRecord.newest().size;
        return S_OK;
    }
};

template <class Derived, class Interface, class Fields>
class CSectionFrame : public CObjectFrame<Derived, Interface> {
public:
    static constexpr IID kModifiedParents[] = {IID_ISetup};

    // The values; the stream companion and Copy read and write them whole.
    Fields m_fields;

    // The record of the source, then the target marked modified (its owner learns of it).
    static HRESULT Copy(Interface* source, Interface* target) {
        auto* from = dynamic_cast<Derived*>(CFrameBase::of(source));
        auto* to = dynamic_cast<Derived*>(CFrameBase::of(target));
        if (!from || !to) return E_INVALIDARG;
        if (from != to) to->m_fields = from->m_fields;
        return target->put_Modified(1);
    }

protected:
    explicit CSectionFrame(const IID& iid) : CObjectFrame<Derived, Interface>(iid) {}

    HRESULT queryCompanion(REFIID riid, void** ppv) override {
        if (riid == IID_IPersistStream || riid == IID_IPersist) {
            *ppv = static_cast<IPersistStream*>(&m_persist);
            this->AddRef();
            return S_OK;
        }
        return E_NOINTERFACE;
    }

private:
    CSectionPersistStream<Derived> m_persist{static_cast<Derived&>(*this)};
};

}  // namespace nvdl
