#include "geometry/ModeEnums.h"

#include "platform/CodePage.h"

namespace nvdl {

namespace {

constexpr EnumPair kModeEnums[] = {
    {1501, u"X"},
    {1502, u"Y"},
    {1503, u"Z"},
    {1504, u"Radial"},
    {1505, u"Theta"},
    {1506, u"Phi"},
    {1600, u"Unknown type"},
    {1601, u"Structural"},
    {1602, u"Operating"},
    {1603, u"Forced"},
    {1604, u"Intensity"},
    {1700, u"Unknown method"},
    {1701, u"Amplitude cut"},
    {1702, u"Quadrature cut"},
    {1703, u"Amplitude fit"},
    {1704, u"Quadrature fit"},
    {1705, u"Circle fit"},
    {1706, u"Least squares complex exponential"},
    {1707, u"Polyreference"},
    {1708, u"FDPI"},
    {1709, u"Ibrahim time domain method"},
};

const EnumTable g_modeEnums{kModeEnums};

}  // namespace

const EnumTable& modeEnumTable() { return g_modeEnums; }

HRESULT modeCodeOf(const VARIANT& value, LONG& code) { return g_modeEnums.valueOf(value, code); }

std::string modeCodeText(LONG code) { return g_modeEnums.textOf(code); }

}  // namespace nvdl
