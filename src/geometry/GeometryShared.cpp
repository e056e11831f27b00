#include "geometry/GeometryShared.h"

#include "frame/Clip.h"
#include "platform/CodePage.h"

namespace nvdl::geometry {

namespace {

constexpr EnumPair kGeometryEnums[] = {
    {1401, u"Rectangular"},      {1402, u"Cylindrical"},     {1403, u"Spherical"},
    {1501, u"X Direction"},      {1502, u"Y Direction"},     {1503, u"Z Direction"},
    {1504, u"Radial Direction"}, {1505, u"Theta Direction"}, {1506, u"Phi Direction"},
};
constexpr EnumTable kTable{kGeometryEnums};

}  // namespace

const EnumTable& enums() { return kTable; }

std::string enumText(LONG code) {
    const std::u16string_view* text = kTable.lookupString(code);
    return text ? narrow(*text) : std::string();
}

HRESULT coordinateTypeOf(const VARIANT& value, LONG& code) {
    Variant number;
    HRESULT h = VariantChangeType(&number, &value, 0, VT_I4);
    if (SUCCEEDED(h)) {
        code = number.lVal;
        return S_OK;
    }
    if (h != DISP_E_TYPEMISMATCH) return h;
    Variant text;
    if (HRESULT t = VariantChangeType(&text, &value, 0, VT_BSTR); FAILED(t)) return t;
    LONG found = kTable.lookupEnum(bstrView(text.bstrVal));
    if (found == -1) return E_INVALIDARG;
    code = found;
    return S_OK;
}

HRESULT clipFields(BSTR format, std::span<const MessageArg> fields, BSTR* text) {
    if (!text) return E_POINTER;
    if (!format || !*format) {
        *text = allocBstrFromAnsi("");
        return S_OK;
    }
    return clip(format, fields, text);
}

}  // namespace nvdl::geometry
