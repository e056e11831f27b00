// The frame every model class derives from: reference counting, QueryInterface, the cached type
// description and late binding, and the one road of a failure message.
//
// A class names its main interface; the interface declares, in its slot order, the class's own
// members including LoadTypeInfo, and its member table is registered under Interface::iid.
#pragma once

#include <string_view>

#include "frame/FrameBase.h"
#include "frame/ObjectCount.h"
#include "frame/PropertyAccess.h"
#include "frame/Resources.h"
#include "nvdl/ErrorInfo.h"
#include "platform/TypeDescription.h"

namespace nvdl {

// Records a failure message as the thread's pending error; false when the message is empty.
bool raiseError(const IID& iid, std::string_view message, std::string_view source);
// The message of a put by name that found no property put: the name and " does not have property put.".
std::string noPropertyPutMessage(BSTR name);

template <class Interface>
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
    HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                   EXCEPINFO* excep, unsigned* argErr) override {
        if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (HRESULT h = ensureTypeInfo(lcid); FAILED(h)) return h;
        clearErrorInfo();  // what the client reads after this call is from this call
        return m_pTypeInfo->Invoke(static_cast<Interface*>(this), id, flags, params, result, excep, argErr);
    }
    // Opens the type library anew and takes the description of the object's own interface.
    HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) override {
        if (!info) return E_POINTER;
        *info = nullptr;
        ITypeLib* library = nullptr;
        HRESULT h = LoadRegTypeLib(LIBID_NVDL, 1, 0, lcid, &library);
        if (FAILED(h)) return h;
        h = library->GetTypeInfoOfGuid(*m_pIID, info);
        library->Release();
        return h;
    }

    const IID& mainInterface() const { return *m_pIID; }
    IDispatch* dispatch() { return static_cast<Interface*>(this); }

protected:
    explicit CObjectFrame(const IID& iid) : m_pIID(&iid) { ++g_nObjects; }
    ~CObjectFrame() override {
        if (m_pTypeInfo) m_pTypeInfo->Release();
        --g_nObjects;
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

    ULONG m_cRef = 1;
    ITypeInfo* m_pTypeInfo = nullptr;
    const IID* m_pIID;
};

}  // namespace nvdl
