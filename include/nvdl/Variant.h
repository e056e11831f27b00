// The automation value: a tagged union of the value types the system passes across interfaces,
// and the conversions between them with the platform's semantics (locale 0, dates as days).
#pragma once

#include <string>
#include <string_view>

#include "nvdl/Bstr.h"
#include "nvdl/Date.h"
#include "nvdl/Export.h"
#include "nvdl/HResult.h"
#include "nvdl/SafeArray.h"

NVDL_API_BEGIN

struct IUnknown;
struct IDispatch;

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_INT = 22,
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_PTR = 26,
    VT_SAFEARRAY = 27,
    VT_USERDEFINED = 29,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_TYPEMASK = 0x0FFF,
};

struct VARIANT {
    VARTYPE vt = VT_EMPTY;
    WORD wReserved1 = 0, wReserved2 = 0, wReserved3 = 0;
    union {
        LONG lVal;
        SHORT iVal;
        float fltVal;
        double dblVal;
        VARIANT_BOOL boolVal;
        HRESULT scode;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        LONG* plVal;
        SHORT* piVal;
        float* pfltVal;
        double* pdblVal;
        VARIANT_BOOL* pboolVal;
        DATE* pdate;
        BSTR* pbstrVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        void* byref;
        std::int64_t llVal = 0;
    };
};
using VARIANTARG = VARIANT;

// Flags of VariantChangeType.
constexpr USHORT VARIANT_NOVALUEPROP = 0x1;
constexpr USHORT VARIANT_ALPHABOOL = 0x2;

void VariantInit(VARIANT* v);
// Frees what the variant owns (string, array, object reference) and leaves it empty.
HRESULT VariantClear(VARIANT* v);
HRESULT VariantCopy(VARIANT* dest, const VARIANT* src);
// Copies, following one level of reference.
HRESULT VariantCopyInd(VARIANT* dest, const VARIANT* src);
// Converts src into dest as type vt. dest may equal src. Failures: DISP_E_TYPEMISMATCH for a text
// that does not parse or a type that does not convert, DISP_E_OVERFLOW for a value out of range,
// DISP_E_BADVARTYPE for a type outside the supported set.
HRESULT VariantChangeType(VARIANT* dest, const VARIANT* src, USHORT flags, VARTYPE vt);
HRESULT VariantChangeTypeEx(VARIANT* dest, const VARIANT* src, LCID lcid, USHORT flags, VARTYPE vt);

namespace nvdl {

// Owns one VARIANT and clears it when it goes.
class Variant : public VARIANT {
public:
    Variant() { vt = VT_EMPTY; }
    Variant(const Variant& other);
    Variant& operator=(const Variant& other);
    // A move takes the value over and leaves the source empty.
    Variant(Variant&& other) noexcept : VARIANT(other) { VariantInit(&other); }
    Variant& operator=(Variant&& other) noexcept {
        if (this != &other) {
            VariantClear(this);
            static_cast<VARIANT&>(*this) = other;
            VariantInit(&other);
        }
        return *this;
    }
    ~Variant() { VariantClear(this); }

    // Gives the value up to a caller's VARIANT (cleared first) and leaves this one empty.
    void release(VARIANT* dest) {
        VariantClear(dest);
        *dest = *this;
        VariantInit(this);
    }

    static Variant fromLong(LONG value);
    static Variant fromShort(SHORT value);
    static Variant fromFloat(float value);
    static Variant fromDouble(double value);
    static Variant fromDate(DATE value);
    static Variant fromBool(bool value);
    static Variant fromString(std::u16string_view text);
    static Variant fromAnsi(std::string_view text);
    // Takes one more reference on the object.
    static Variant fromDispatch(IDispatch* object);
    // The platform's "missing optional argument": VT_ERROR holding DISP_E_PARAMNOTFOUND.
    static Variant missing();
    static Variant byRef(VARIANT* target);

    // Changes this variant's type in place.
    HRESULT changeType(VARTYPE type);
};

}  // namespace nvdl

NVDL_API_END
