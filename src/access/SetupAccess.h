// Reaching the objects of a setup from the mapping: a single section's object with its field record,
// and the collection object behind one of the setup's collections. The setup keeps both alive, so
// the pointers handed out hold no reference of their own.
#pragma once

#include "frame/FrameBase.h"
#include "frame/ObjectCollection.h"
#include "platform/ComPtr.h"
#include "setup/Setup.h"

namespace nvdl::access {

template <class C>
C* frameOf(IUnknown* object) {
    return dynamic_cast<C*>(CFrameBase::of(object));
}

// The section object that `get` hands out, or null if it is not of class C.
template <class C>
C* sectionOf(CSetup& setup, HRESULT (CSetup::*get)(IDispatch**)) {
    ComPtr<IDispatch> section;
    if (FAILED((setup.*get)(section.out()))) return nullptr;
    return frameOf<C>(section.get());
}

template <class Owner>
CObjectCollection* collectionOf(Owner& owner, HRESULT (Owner::*get)(ICollection**)) {
    ComPtr<ICollection> collection;
    if (FAILED((owner.*get)(collection.out()))) return nullptr;
    return frameOf<CObjectCollection>(collection.get());
}

// Appends an item at the end of the collection.
HRESULT append(CObjectCollection& collection, IDispatch* item);

}  // namespace nvdl::access
