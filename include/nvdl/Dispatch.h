// Late binding: IDispatch with the platform's slot order, call parameters, and the type information
// interfaces through which a client or the frame learns an interface's members.
#pragma once

#include "nvdl/Unknown.h"
#include "nvdl/Variant.h"

inline constexpr IID IID_IDispatch{0x00020400, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ITypeInfo{0x00020401, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ITypeLib{0x00020402, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IEnumVARIANT{0x00020404, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constexpr DISPID DISPID_VALUE = 0;
constexpr DISPID DISPID_UNKNOWN = -1;
constexpr DISPID DISPID_PROPERTYPUT = -3;
constexpr DISPID DISPID_NEWENUM = -4;

constexpr WORD DISPATCH_METHOD = 0x1;
constexpr WORD DISPATCH_PROPERTYGET = 0x2;
constexpr WORD DISPATCH_PROPERTYPUT = 0x4;
constexpr WORD DISPATCH_PROPERTYPUTREF = 0x8;

struct DISPPARAMS {
    VARIANTARG* rgvarg = nullptr;  // arguments in reverse order: the last argument first
    DISPID* rgdispidNamedArgs = nullptr;
    unsigned cArgs = 0;
    unsigned cNamedArgs = 0;
};

struct EXCEPINFO {
    WORD wCode = 0;
    BSTR bstrSource = nullptr;
    BSTR bstrDescription = nullptr;
    BSTR bstrHelpFile = nullptr;
    DWORD dwHelpContext = 0;
    HRESULT scode = 0;
};

// Kinds of members.
enum INVOKEKIND : WORD {
    INVOKE_FUNC = 1,
    INVOKE_PROPERTYGET = 2,
    INVOKE_PROPERTYPUT = 4,
    INVOKE_PROPERTYPUTREF = 8,
};

// Function flags.
constexpr WORD FUNCFLAG_FRESTRICTED = 0x1;
constexpr WORD FUNCFLAG_FHIDDEN = 0x40;

// Parameter flags.
constexpr USHORT PARAMFLAG_FIN = 0x1;
constexpr USHORT PARAMFLAG_FOUT = 0x2;
constexpr USHORT PARAMFLAG_FRETVAL = 0x8;
constexpr USHORT PARAMFLAG_FOPT = 0x10;

// A declared type: vt, and for VT_PTR the type pointed to (VT_USERDEFINED for a named interface).
// Arrays are VT_ARRAY | element type.
struct TYPEDESC {
    VARTYPE vt = VT_EMPTY;
    VARTYPE pointee = VT_EMPTY;
};

struct PARAMDESC {
    const char* name = "";
    TYPEDESC type;
    USHORT flags = PARAMFLAG_FIN;
};

// One member as the dispatch view shows it: the [out, retval] parameter is not among the
// parameters; its type is the member's type.
struct FUNCDESC {
    MEMBERID memid = DISPID_UNKNOWN;
    INVOKEKIND invkind = INVOKE_FUNC;
    SHORT cParams = 0;
    SHORT cParamsOpt = 0;
    WORD wFuncFlags = 0;
    TYPEDESC elemdescFunc;
    const PARAMDESC* lprgelemdescParam = nullptr;
};

struct TYPEATTR {
    IID guid{};
    WORD cFuncs = 0;
};

struct IDispatch;

// The description of one interface.
struct ITypeInfo : IUnknown {
    virtual HRESULT GetTypeAttr(const TYPEATTR** attr) = 0;
    virtual HRESULT GetFuncDesc(unsigned index, const FUNCDESC** desc) = 0;
    // The member's name, then its parameters' names.
    virtual HRESULT GetNames(MEMBERID memid, BSTR* names, unsigned maxNames, unsigned* count) = 0;
    // Names compared ignoring case; unknown names give DISP_E_UNKNOWNNAME and DISPID_UNKNOWN.
    virtual HRESULT GetIDsOfNames(OLECHAR** names, unsigned count, MEMBERID* ids) = 0;
    // Calls a member of `instance`, which must implement this interface.
    virtual HRESULT Invoke(IDispatch* instance, MEMBERID memid, WORD flags, DISPPARAMS* params, VARIANT* result,
                           EXCEPINFO* excep, unsigned* argErr) = 0;

protected:
    ~ITypeInfo() = default;
};

// The system's type library: descriptions by interface identifier.
struct ITypeLib : IUnknown {
    virtual HRESULT GetTypeInfoOfGuid(REFIID iid, ITypeInfo** info) = 0;

protected:
    ~ITypeLib() = default;
};

struct IDispatch : IUnknown {
    virtual HRESULT GetTypeInfoCount(unsigned* count) = 0;
    virtual HRESULT GetTypeInfo(unsigned index, LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT GetIDsOfNames(REFIID riid, OLECHAR** names, unsigned count, LCID lcid, DISPID* ids) = 0;
    virtual HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                           EXCEPINFO* excep, unsigned* argErr) = 0;

protected:
    ~IDispatch() = default;
};

struct IEnumVARIANT : IUnknown {
    virtual HRESULT Next(ULONG count, VARIANT* items, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumVARIANT** copy) = 0;

protected:
    ~IEnumVARIANT() = default;
};
