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

std::string enumText(LONG code) { return kTable.textOf(code); }

HRESULT coordinateTypeOf(const VARIANT& value, LONG& code) { return kTable.valueOf(value, code); }

HRESULT clipFields(BSTR format, std::span<const MessageArg> fields, BSTR* text) {
    if (!text) return E_POINTER;
    if (!format || !*format) {
        *text = allocBstrFromAnsi("");
        return S_OK;
    }
    return clip(format, fields, text);
}

}  // namespace nvdl::geometry
