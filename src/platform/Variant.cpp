#include "nvdl/Variant.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/CodePage.h"
#include "nvdl/Dispatch.h"

void VariantInit(VARIANT* v) {
    v->vt = VT_EMPTY;
    v->wReserved1 = v->wReserved2 = v->wReserved3 = 0;
    v->llVal = 0;
}

HRESULT VariantClear(VARIANT* v) {
    if (!v) return E_INVALIDARG;
    if (!(v->vt & VT_BYREF)) {
        if (v->vt & VT_ARRAY) {
            SafeArrayDestroy(v->parray);
        } else {
            switch (v->vt) {
                case VT_BSTR: SysFreeString(v->bstrVal); break;
                case VT_DISPATCH:
                case VT_UNKNOWN:
                    if (v->punkVal) v->punkVal->Release();
                    break;
                default: break;
            }
        }
    }
    VariantInit(v);
    return S_OK;
}

HRESULT VariantCopy(VARIANT* dest, const VARIANT* src) {
    if (!dest || !src) return E_INVALIDARG;
    if (dest == src) return S_OK;
    VARIANT copy = *src;
    if (!(src->vt & VT_BYREF)) {
        if (src->vt & VT_ARRAY) {
            HRESULT h = SafeArrayCopy(src->parray, &copy.parray);
            if (FAILED(h)) return h;
        } else if (src->vt == VT_BSTR) {
            if (src->bstrVal) {
                copy.bstrVal = SysAllocStringLen(src->bstrVal, SysStringLen(src->bstrVal));
                if (!copy.bstrVal) return E_OUTOFMEMORY;
            }
        } else if ((src->vt == VT_DISPATCH || src->vt == VT_UNKNOWN) && src->punkVal) {
            src->punkVal->AddRef();
        }
    }
    VariantClear(dest);
    *dest = copy;
    return S_OK;
}

namespace {

// The value a by-reference variant points at, as a plain variant that does not own anything.
bool dereference(const VARIANT& src, VARIANT& plain) {
    VariantInit(&plain);
    if (!(src.vt & VT_BYREF)) {
        plain = src;
        return true;
    }
    if (!src.byref) return false;
    VARTYPE base = static_cast<VARTYPE>(src.vt & ~VT_BYREF);
    if (base == VT_VARIANT) {
        if (src.pvarVal->vt & VT_BYREF) return dereference(*src.pvarVal, plain);
        plain = *src.pvarVal;
        return true;
    }
    plain.vt = base;
    if (base & VT_ARRAY) {
        plain.parray = *src.pparray;
        return true;
    }
    switch (base) {
        case VT_I2: plain.iVal = *src.piVal; break;
        case VT_I4: plain.lVal = *src.plVal; break;
        case VT_R4: plain.fltVal = *src.pfltVal; break;
        case VT_R8: plain.dblVal = *src.pdblVal; break;
        case VT_DATE: plain.date = *src.pdate; break;
        case VT_BOOL: plain.boolVal = *src.pboolVal; break;
        case VT_ERROR: plain.scode = *static_cast<HRESULT*>(src.byref); break;
        case VT_BSTR: plain.bstrVal = *src.pbstrVal; break;
        case VT_DISPATCH:
        case VT_UNKNOWN: plain.pdispVal = *src.ppdispVal; break;
        default: return false;
    }
    return true;
}

}  // namespace

HRESULT VariantCopyInd(VARIANT* dest, const VARIANT* src) {
    if (!dest || !src) return E_INVALIDARG;
    VARIANT plain;
    if (!dereference(*src, plain)) return E_INVALIDARG;
    if (dest == src) {
        VARIANT copy;
        VariantInit(&copy);
        HRESULT h = VariantCopy(&copy, &plain);
        if (FAILED(h)) return h;
        *dest = copy;  // a by-reference variant owns nothing, so nothing to free
        return S_OK;
    }
    return VariantCopy(dest, &plain);
}

namespace {

bool isNumericType(VARTYPE vt) {
    return vt == VT_I2 || vt == VT_I4 || vt == VT_R4 || vt == VT_R8 || vt == VT_DATE || vt == VT_BOOL;
}

double numericValue(const VARIANT& v) {
    switch (v.vt) {
        case VT_I2: return v.iVal;
        case VT_I4: return v.lVal;
        case VT_R4: return v.fltVal;
        case VT_R8: return v.dblVal;
        case VT_DATE: return v.date;
        case VT_BOOL: return v.boolVal;
        default: return 0;
    }
}

std::string trim(std::string_view s) {
    std::size_t b = 0, e = s.size();
    while (b < e && std::isspace(static_cast<unsigned char>(s[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(s[e - 1]))) --e;
    return std::string(s.substr(b, e - b));
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
    return true;
}

// Numbers as the system locale writes them: sign, digits with optional thousands separators, a point, an exponent.
bool parseNumber(std::string_view text, double& value) {
    std::string t = trim(text), cleaned;
    if (t.empty()) return false;
    bool seenPoint = false, seenExponent = false;
    for (std::size_t i = 0; i < t.size(); ++i) {
        char c = t[i];
        if (c == ',' && !seenPoint && !seenExponent && i > 0 && std::isdigit(static_cast<unsigned char>(t[i - 1])) &&
            i + 1 < t.size() && std::isdigit(static_cast<unsigned char>(t[i + 1])))
            continue;
        if (c == '.') seenPoint = true;
        if (c == 'e' || c == 'E') seenExponent = true;
        if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '+' || c == '-' || c == 'e' || c == 'E'))
            return false;
        cleaned += c;
    }
    char* end = nullptr;
    value = std::strtod(cleaned.c_str(), &end);
    return end && *end == '\0' && end != cleaned.c_str() && std::isfinite(value);
}

std::string formatReal(double value, int digits) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*G", digits, value);
    return buf;
}

// Rounds half to even, as the platform's conversions to integers do.
double roundHalfEven(double x) { return std::nearbyint(x); }

HRESULT toInteger(double x, double lo, double hi, double& out) {
    if (std::isnan(x)) return DISP_E_OVERFLOW;
    double r = roundHalfEven(x);
    if (r < lo || r > hi) return DISP_E_OVERFLOW;
    out = r;
    return S_OK;
}

HRESULT numberFromString(BSTR text, VARTYPE vt, VARIANT& out) {
    std::string s = nvdl::narrow(nvdl::bstrView(text));
    double value = 0;
    if (vt == VT_DATE) {
        if (!nvdl::parseDate(s, value)) return DISP_E_TYPEMISMATCH;
        out.vt = VT_DATE;
        out.date = value;
        return S_OK;
    }
    if (vt == VT_BOOL) {
        std::string t = trim(s);
        if (equalsIgnoringCase(t, "true")) value = -1;
        else if (equalsIgnoringCase(t, "false")) value = 0;
        else if (!parseNumber(s, value)) return DISP_E_TYPEMISMATCH;
        out.vt = VT_BOOL;
        out.boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    if (!parseNumber(s, value)) return DISP_E_TYPEMISMATCH;
    VARIANT num;
    VariantInit(&num);
    num.vt = VT_R8;
    num.dblVal = value;
    out = num;
    return S_OK;
}

HRESULT numericTo(double x, VARTYPE vt, VARIANT& out) {
    double r;
    HRESULT h;
    switch (vt) {
        case VT_I2:
            if (FAILED(h = toInteger(x, -32768, 32767, r))) return h;
            out.vt = VT_I2;
            out.iVal = static_cast<SHORT>(r);
            return S_OK;
        case VT_I4:
            if (FAILED(h = toInteger(x, -2147483648.0, 2147483647.0, r))) return h;
            out.vt = VT_I4;
            out.lVal = static_cast<LONG>(r);
            return S_OK;
        case VT_R4:
            if (std::isfinite(x) && std::fabs(x) > std::numeric_limits<float>::max()) return DISP_E_OVERFLOW;
            out.vt = VT_R4;
            out.fltVal = static_cast<float>(x);
            return S_OK;
        case VT_R8:
            out.vt = VT_R8;
            out.dblVal = x;
            return S_OK;
        case VT_DATE:
            if (!(x >= -657434.0 && x < 2958466.0)) return DISP_E_OVERFLOW;  // years 100 to 9999
            out.vt = VT_DATE;
            out.date = x;
            return S_OK;
        case VT_BOOL:
            out.vt = VT_BOOL;
            out.boolVal = x != 0 ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        default: return DISP_E_TYPEMISMATCH;
    }
}

HRESULT stringFrom(const VARIANT& v, USHORT flags, VARIANT& out) {
    std::string text;
    switch (v.vt) {
        case VT_EMPTY: break;
        case VT_I2: text = std::to_string(v.iVal); break;
        case VT_I4: text = std::to_string(v.lVal); break;
        case VT_R4: text = formatReal(v.fltVal, 7); break;
        case VT_R8: text = formatReal(v.dblVal, 15); break;
        case VT_DATE: text = nvdl::formatDate(v.date); break;
        case VT_BOOL:
            if (flags & VARIANT_ALPHABOOL) text = v.boolVal ? "True" : "False";
            else text = std::to_string(v.boolVal);
            break;
        default: return DISP_E_TYPEMISMATCH;
    }
    out.vt = VT_BSTR;
    out.bstrVal = nvdl::allocBstrFromAnsi(text);
    return out.bstrVal ? S_OK : E_OUTOFMEMORY;
}

// An object converts through its default property.
HRESULT valueOfObject(const VARIANT& v, VARIANT& value) {
    if (!v.pdispVal) return DISP_E_TYPEMISMATCH;
    IDispatch* object = nullptr;
    if (FAILED(v.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object))) || !object)
        return DISP_E_TYPEMISMATCH;
    DISPPARAMS none{};
    HRESULT h = object->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr);
    object->Release();
    if (FAILED(h)) return DISP_E_TYPEMISMATCH;
    if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) {
        VariantClear(&value);
        return DISP_E_TYPEMISMATCH;
    }
    return S_OK;
}

HRESULT convertPlain(const VARIANT& src, USHORT flags, VARTYPE vt, VARIANT& out) {
    VariantInit(&out);
    if (src.vt == vt) return VariantCopy(&out, &src);
    if (vt == VT_EMPTY) return S_OK;
    if (vt == VT_DISPATCH || vt == VT_UNKNOWN) {
        if (src.vt != VT_DISPATCH && src.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
        if (!src.punkVal) {
            out.vt = vt;
            out.punkVal = nullptr;
            return S_OK;
        }
        void* p = nullptr;
        HRESULT h = src.punkVal->QueryInterface(vt == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &p);
        if (FAILED(h)) return h == E_NOINTERFACE ? DISP_E_TYPEMISMATCH : h;
        out.vt = vt;
        out.punkVal = static_cast<IUnknown*>(p);
        return S_OK;
    }
    if ((src.vt == VT_DISPATCH || src.vt == VT_UNKNOWN) && !(flags & VARIANT_NOVALUEPROP)) {
        VARIANT value;
        VariantInit(&value);
        HRESULT h = valueOfObject(src, value);
        if (FAILED(h)) return h;
        h = convertPlain(value, flags, vt, out);
        VariantClear(&value);
        return h;
    }
    if (vt == VT_BSTR) return stringFrom(src, flags, out);
    if (src.vt == VT_BSTR) {
        VARIANT parsed;
        VariantInit(&parsed);
        HRESULT h = numberFromString(src.bstrVal, vt, parsed);
        if (FAILED(h)) return h;
        if (parsed.vt == vt) {
            out = parsed;
            return S_OK;
        }
        return numericTo(parsed.dblVal, vt, out);
    }
    if (src.vt == VT_EMPTY && isNumericType(vt)) return numericTo(0, vt, out);
    if (isNumericType(src.vt)) return numericTo(numericValue(src), vt, out);
    if (vt == VT_ERROR || src.vt == VT_ERROR || src.vt == VT_NULL || (src.vt & VT_ARRAY) || (vt & VT_ARRAY))
        return DISP_E_TYPEMISMATCH;
    return isNumericType(vt) ? DISP_E_TYPEMISMATCH : DISP_E_BADVARTYPE;
}

}  // namespace

HRESULT VariantChangeTypeEx(VARIANT* dest, const VARIANT* src, LCID, USHORT flags, VARTYPE vt) {
    if (!dest || !src) return E_INVALIDARG;
    if (vt & VT_BYREF) return DISP_E_BADVARTYPE;
    VARIANT plain;
    if (!dereference(*src, plain)) return DISP_E_TYPEMISMATCH;
    VARIANT result;
    HRESULT h = convertPlain(plain, flags, vt, result);
    if (FAILED(h)) return h;
    VariantClear(dest);  // src may be dest: plain was taken before, and result owns its own copy
    *dest = result;
    return S_OK;
}

HRESULT VariantChangeType(VARIANT* dest, const VARIANT* src, USHORT flags, VARTYPE vt) {
    return VariantChangeTypeEx(dest, src, 0, flags, vt);
}

namespace nvdl {

Variant::Variant(const Variant& other) : VARIANT() { VariantCopy(this, &other); }

Variant& Variant::operator=(const Variant& other) {
    if (this != &other) VariantCopy(this, &other);
    return *this;
}

Variant Variant::fromLong(LONG value) {
    Variant v;
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}

Variant Variant::fromShort(SHORT value) {
    Variant v;
    v.vt = VT_I2;
    v.iVal = value;
    return v;
}

Variant Variant::fromFloat(float value) {
    Variant v;
    v.vt = VT_R4;
    v.fltVal = value;
    return v;
}

Variant Variant::fromDouble(double value) {
    Variant v;
    v.vt = VT_R8;
    v.dblVal = value;
    return v;
}

Variant Variant::fromDate(DATE value) {
    Variant v;
    v.vt = VT_DATE;
    v.date = value;
    return v;
}

Variant Variant::fromBool(bool value) {
    Variant v;
    v.vt = VT_BOOL;
    v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return v;
}

Variant Variant::fromString(std::u16string_view text) {
    Variant v;
    v.vt = VT_BSTR;
    v.bstrVal = allocBstr(text);
    return v;
}

Variant Variant::fromAnsi(std::string_view text) {
    Variant v;
    v.vt = VT_BSTR;
    v.bstrVal = allocBstrFromAnsi(text);
    return v;
}

Variant Variant::fromDispatch(IDispatch* object) {
    Variant v;
    v.vt = VT_DISPATCH;
    v.pdispVal = object;
    if (object) object->AddRef();
    return v;
}

Variant Variant::missing() {
    Variant v;
    v.vt = VT_ERROR;
    v.scode = DISP_E_PARAMNOTFOUND;
    return v;
}

Variant Variant::byRef(VARIANT* target) {
    Variant v;
    v.vt = VT_BYREF | VT_VARIANT;
    v.pvarVal = target;
    return v;
}

HRESULT Variant::changeType(VARTYPE type) { return VariantChangeType(this, this, 0, type); }

}  // namespace nvdl
