// The frame every model class derives from: reference counting, QueryInterface, the cached type
// description and late binding, and the one road of a failure message.
//
// A class names itself and its main interface; the interface's member list (nvdl/Members.h) gives
// its slots and its member table, registered under Interface::iid when the class is first used.
#pragma once

#include <string_view>

#include "frame/FieldRecord.h"
#include "frame/FrameBase.h"
#include "frame/ObjectCount.h"
#include "frame/PropertyAccess.h"
#include "frame/Resources.h"
#include "nvdl/ErrorInfo.h"
#include "platform/ComPtr.h"
#include "platform/DebugTrace.h"
#include "platform/MemberTable.h"
#include "platform/TypeDescription.h"
#include "frame/LateBound.h"

namespace nvdl {

// Records a failure message as the thread's pending error; false when the message is empty.
bool raiseError(const IID& iid, std::string_view message, std::string_view source);
// The message of a put by name that found no property put: the name and " does not have property put.".
std::string noPropertyPutMessage(BSTR name);

// Derived names itself for the frame's shared members:
//   static constexpr const char* kClassName = "CParameter";          (trace lines)
//   static constexpr IID kModifiedParents[] = {IID_IMeasurement, ...}; (the Modified climb, in order)
//   static HRESULT Copy(Interface* source, Interface* target);         (Copy and Clone)
//   a default constructor reachable by the frame                       (Clone)
//   static constexpr bool kCountedByServer = false;                    (an object of another server)
template <class Derived, class Interface>
class CObjectFrame : public Interface, public CFrameBase {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid == IID_IUnknown || riid == IID_IDispatch || riid == *m_pIID) {
            *ppv = static_cast<Interface*>(this);
            this->AddRef();
            return S_OK;
        }
        if (riid == IID_IFrameObject) {
            *ppv = static_cast<CFrameBase*>(this);
            return S_OK;
        }
        return queryCompanion(riid, ppv);
    }
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override {
        ULONG left = --m_cRef;
        if (left == 0) delete static_cast<CFrameBase*>(this);
        return left;
    }

    HRESULT GetTypeInfoCount(unsigned* count) override {
        if (!count) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT GetTypeInfo(unsigned index, LCID lcid, ITypeInfo** info) override {
        if (index != 0) return TYPE_E_ELEMENTNOTFOUND;
        if (!info) return E_POINTER;
        *info = nullptr;
        if (HRESULT h = ensureTypeInfo(lcid); FAILED(h)) return h;
        m_pTypeInfo->AddRef();
        *info = m_pTypeInfo;
        return S_OK;
    }
    HRESULT GetIDsOfNames(REFIID riid, OLECHAR** names, unsigned count, LCID lcid, DISPID* ids) override {
        if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (HRESULT h = ensureTypeInfo(lcid); FAILED(h)) return h;
        return m_pTypeInfo->GetIDsOfNames(names, count, ids);
    }
    // No exception leaves a call: the members' thunks turn them into status codes, and so does this
    // border for whatever happens around them.
    HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                   EXCEPINFO* excep, unsigned* argErr) override {
        if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        try {
            if (HRESULT h = ensureTypeInfo(lcid); FAILED(h)) return h;
            clearErrorInfo();  // what the client reads after this call is from this call
            return m_pTypeInfo->Invoke(static_cast<Interface*>(this), id, flags, params, result, excep, argErr);
        } catch (...) {
            return detail::failureOfException(*m_pIID);
        }
    }
    // Opens the type library anew and takes the description of the object's own interface.
    HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) {
        if (!info) return E_POINTER;
        *info = nullptr;
        ITypeLib* library = nullptr;
        HRESULT h = LoadRegTypeLib(LIBID_NVDL, 1, 0, lcid, &library);
        if (FAILED(h)) return h;
        h = library->GetTypeInfoOfGuid(*m_pIID, info);
        library->Release();
        return h;
    }

    // The members that every class of the model shares. Each one takes the slot of the same name in
    // the interface when the interface's list marks it as a frame member.

    HRESULT get_Parent(IDispatch** parent) { return giveParent(parent); }
    HRESULT put_Parent(IDispatch* parent) {
        m_parent.set(parent);
        return S_OK;
    }
    // The setup family calls its back reference Setup.
    HRESULT get_Setup(IDispatch** setup) { return giveParent(setup); }
    HRESULT put_Setup(IDispatch* setup) { return put_Parent(setup); }

    HRESULT get_Modified(SHORT* modified) {
        if (!modified) return E_POINTER;
        *modified = m_modified;
        return S_OK;
    }
    // Stores the flag; a set flag climbs to the parent, a cleared one stays here. A failure on the
    // way up is not the caller's concern.
    HRESULT put_Modified(SHORT modified) {
        m_modified = modified;
        if (modified) UpdateParentModifiedFlag(modified);
        return S_OK;
    }

    // Copy and Clone go through the class's Copy(source, target); a class whose Copy and Clone are
    // its own overrides these and never reaches the other branch.
    HRESULT Copy(Interface* target) {
        if (!target) return E_POINTER;
        if constexpr (copies()) return Derived::Copy(static_cast<Interface*>(this), target);
        else return E_NOTIMPL;
    }
    // A new object of the class with this one's properties, through its public setters; no parent
    // unless the copy gives one.
    HRESULT Clone(Interface** copy) {
        if (!copy) return E_POINTER;
        *copy = nullptr;
        if constexpr (copies() && requires { new Derived; }) {
            auto* fresh = new Derived;
            Derived::Copy(static_cast<Interface*>(this), static_cast<Interface*>(fresh));
            *copy = fresh;
            return S_OK;
        } else {
            return E_NOTIMPL;
        }
    }

    HRESULT get_Property(BSTR name, BSTR* value) { return getPropertyByName(name, value); }
    HRESULT put_Property(BSTR name, BSTR value) { return putPropertyByName(name, value); }
    HRESULT get_PropertiesCount(LONG* count) { return countProperties(count); }
    HRESULT get_PropertyName(LONG index, BSTR* name) { return nameOfProperty(index, name); }

    const IID& mainInterface() const { return *m_pIID; }
    IDispatch* dispatch() { return static_cast<Interface*>(this); }

protected:
    explicit CObjectFrame(const IID& iid) : m_pIID(&iid) {
        if constexpr (requires { Interface::interfaceName; }) (void)s_description;
        if constexpr (counted()) ++g_nObjects;
    }
    ~CObjectFrame() override {
        if (m_pTypeInfo) m_pTypeInfo->Release();
        if constexpr (counted()) --g_nObjects;
    }

    // The body of a `field_put` member: stores the value and marks the object modified through its
    // interface, so that the mark climbs.
    template <class T, class V>
    HRESULT storeField(T& field, V value) {
        field::take(field, value);
        return static_cast<Interface*>(this)->put_Modified(1);
    }

    // Persistence companions and other interfaces beyond the main one.
    virtual HRESULT queryCompanion(REFIID, void**) { return E_NOINTERFACE; }

    // Fills the cache on first need.
    HRESULT ensureTypeInfo(LCID lcid) {
        if (m_pTypeInfo) return S_OK;
        HRESULT h = this->LoadTypeInfo(lcid, &m_pTypeInfo);
        if (FAILED(h)) return h;
        return m_pTypeInfo ? S_OK : E_UNEXPECTED;
    }

    bool RaiseException(std::string_view message, std::string_view source) {
        return raiseError(*m_pIID, message, source);
    }

    // The parent if it lives, counted; a dead one is cleared and answered E_POINTER.
    HRESULT giveParent(IDispatch** parent) {
        if (!parent) return E_POINTER;
        *parent = nullptr;
        switch (m_parent.check()) {
            case WeakParent::State::None:
                if constexpr (requires { Derived::kClassName; })
                    DebugTrace((std::string(Derived::kClassName) + "::get_Parent - parent pointer is NULL").c_str());
                return S_OK;
            case WeakParent::State::Dead: return E_POINTER;
            case WeakParent::State::Alive: break;
        }
        *parent = m_parent.get();
        (*parent)->AddRef();
        return S_OK;
    }

    // Passes a set flag to the parent, found through the object's own get_Parent (or get_Setup):
    // the first of the class's parent kinds that the parent answers to has its Modified put.
    HRESULT UpdateParentModifiedFlag(SHORT flag) {
        if constexpr (requires { Derived::kModifiedParents; }) {
            if (!flag) return S_OK;
            ComPtr<IDispatch> parent;
            HRESULT h;
            if constexpr (requires(Interface* i, IDispatch** p) { i->get_Parent(p); })
                h = static_cast<Interface*>(this)->get_Parent(parent.out());
            else if constexpr (requires(Interface* i, IDispatch** p) { i->get_Setup(p); })
                h = static_cast<Interface*>(this)->get_Setup(parent.out());
            else
                h = giveParent(parent.out());
            if (FAILED(h) || !parent) return S_OK;
            return putModifiedThroughFirst(parent.get(), Derived::kModifiedParents, flag);
        } else {
            (void)flag;
            return S_OK;
        }
    }

    // Property access by name over the class's own description, for get_Property, put_Property,
    // PropertiesCount and PropertyName.
    HRESULT getPropertyByName(BSTR name, BSTR* value) {
        if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
        return getPropertyText(dispatch(), m_pTypeInfo, name, value);
    }
    // A name with no property put fails with its message.
    HRESULT putPropertyByName(BSTR name, BSTR value) {
        if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
        PutPropertyOutcome outcome;
        HRESULT h = putPropertyText(dispatch(), m_pTypeInfo, name, value, outcome);
        if (SUCCEEDED(h) && outcome == PutPropertyOutcome::NoSuchMember) {
            RaiseException(noPropertyPutMessage(name), moduleFileName());
            return E_FAIL;
        }
        return h;
    }
    HRESULT countProperties(LONG* count) {
        if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
        return propertiesCount(m_pTypeInfo, count);
    }
    HRESULT nameOfProperty(LONG index, BSTR* name) {
        if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
        return propertyName(m_pTypeInfo, index, name);
    }
    // The value of the property at a place of the walk, as text.
    HRESULT GetPropertyByIndex(LONG index, BSTR* value) {
        if (HRESULT h = ensureTypeInfo(LOCALE_USER_DEFAULT); FAILED(h)) return h;
        return propertyTextByIndex(dispatch(), m_pTypeInfo, index, value);
    }

    ULONG m_cRef = 1;
    ITypeInfo* m_pTypeInfo = nullptr;
    const IID* m_pIID;
    SHORT m_modified = 0;
    WeakParent m_parent;

private:
    // Objects of the servers that this one calls (the unit service) live beside the client's objects
    // and do not keep the module loaded: a class says so by `kCountedByServer = false`.
    // Functions, so that they are asked only once the class is complete.
    static constexpr bool counted() {
        if constexpr (requires { Derived::kCountedByServer; }) return Derived::kCountedByServer;
        else return true;
    }
    static constexpr bool copies() { return requires(Interface* a) { Derived::Copy(a, a); }; }
    static inline const InterfaceDescription& s_description = describeInterface<Interface>();
};

}  // namespace nvdl
