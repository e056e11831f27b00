// Scalar types of the object runtime, with the widths the automation interfaces define.
#pragma once

#include <cstdint>

using HRESULT = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using MEMBERID = DISPID;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;  // days since 1899-12-30, fraction of the day after the point
using OLECHAR = char16_t;
using BSTR = OLECHAR*;  // counted UTF-16 string; see Bstr.h for its allocation contract

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;

constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x800;
constexpr LCID LOCALE_USER_DEFAULT = 0x400;
