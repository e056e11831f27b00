// The unit service: physical dimensions and their units, read from a units file.
//
// The model keeps no table of units of its own; it reaches the service through these interfaces
// only (and through the helpers of project/UnitClient.h).
//
// A dimension carries ten 16-bit base exponents, always in this order (positions 1 to 10):
//    1 length (m)            2 time (s)              3 mass (kg)
//    4 electric current (A)  5 temperature (K)       6 amount of substance (mol)
//    7 luminous intensity (cd)  8 plane angle (rad)  9 solid angle (sr)
//   10 other: marks a dimensionless quantity of its own kind (strain has 1 here, a plain number 0)
// Velocity is (1, -1, 0, ...), acceleration (1, -2, 0, ...), pressure (-1, -2, 1, 0, ...).
//
// A unit converts by   value in the dimension's base unit = Factor * value in the unit + Offset.
//
// IsUnknown: the dimension's exponents say nothing (a dimension the table does not describe, or the
// table's "Unknown" row); operators treat such a dimension like a missing one.
// IsValid: the dimension can stand on a measurement axis: it has a name, and unless it is unknown
// the table or a unit expression gave it its exponents.
//
// A dimension object is also built step by step through its four writable properties, set in this
// order: `Dimension` (the base: a dimension object, a dimension name, or empty), `Exponent` (the
// power the base is raised to), `Unit` (the unit the values are given in) and `Factor` (a further
// scale on that unit). With no base, `Unit` is read as a unit expression over the table's units
// ("N*m", "m/s^3", "(m/s²)²/Hz", "V²/Hz"); a text that is no such expression leaves the dimension
// unknown and not valid, named by the text.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

namespace nvdl {

inline constexpr int kBaseExponentCount = 10;

// Positions of the base exponents, 1-based as they are read through IDimension::get_BaseExponent.
enum BaseExponent : SHORT {
    kLength = 1,
    kTime = 2,
    kMass = 3,
    kElectricCurrent = 4,
    kTemperature = 5,
    kAmountOfSubstance = 6,
    kLuminousIntensity = 7,
    kPlaneAngle = 8,
    kSolidAngle = 9,
    kOtherExponent = 10,
};

}  // namespace nvdl

struct IDimension;
struct IUnit;

// The units of one dimension, or of the whole table. Item by position (0-based) or by name
// (exact first, then ignoring case).
#define NVDL_IUNITS_MEMBERS(M) \
    M(get, Count, (LONG* count))                                            \
    M(get, Item, (VARIANT index, IUnit** unit), id(DISPID_VALUE))           \
    M(get, _NewEnum, (IUnknown** enumerator), id(DISPID_NEWENUM), hidden()) \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IUnits, NVDL_IUNITS_MEMBERS);

#define NVDL_IUNIT_MEMBERS(M) \
    M(get, Name, (BSTR* name), id(DISPID_VALUE))                 \
    M(get, Factor, (double* factor))                             \
    M(get, Offset, (double* offset))                             \
    M(get, Dimension, (IDimension** dimension))                  \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IUnit, NVDL_IUNIT_MEMBERS);

#define NVDL_IDIMENSION_MEMBERS(M) \
    M(get, Name, (BSTR* name), id(DISPID_VALUE))                                                       \
    /* The position in the table (0-based), or -1 for a dimension the table does not hold. */          \
    M(get, Index, (LONG* index))                                                                       \
    /* One base exponent by its position 1 to 10; another position gives E_INVALIDARG. */              \
    M(get, BaseExponent, (SHORT position, SHORT* exponent))                                            \
    M(get, IsUnknown, (SHORT* unknown), typed(VT_BOOL))                                                \
    M(get, IsValid, (SHORT* valid), typed(VT_BOOL))                                                    \
    /* The unit values of this dimension are given in unless told otherwise; null when it has none. */ \
    M(get, DefaultUnit, (IUnit** unit))                                                                \
    M(get, Units, (IUnits** units))                                                                    \
    /* The four building properties (see the head of this file). */                                    \
    M(get, Dimension, (BSTR* base))                                                                    \
    M(put, Dimension, (VARIANT base))                                                                  \
    M(get, Exponent, (SHORT* exponent))                                                                \
    M(put, Exponent, (SHORT exponent))                                                                 \
    M(get, Unit, (BSTR* unit))                                                                         \
    M(put, Unit, (BSTR unit))                                                                          \
    M(get, Factor, (double* factor))                                                                   \
    M(put, Factor, (double factor))                                                                    \
    /* The dimension whose square this one is: each exponent halved by integer division. An unknown */ \
    /* dimension gives itself. */                                                                      \
    M(call, SquareRoot, (IDimension** root))                                                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IDimension, NVDL_IDIMENSION_MEMBERS);

// The table's dimensions. Item by position (0-based, the dimension's Index) or by name ignoring case.
#define NVDL_IDIMENSIONS_MEMBERS(M)                                                                           \
    M(get, Count, (LONG* count))                                                                              \
    M(get, Item, (VARIANT index, IDimension** dimension), id(DISPID_VALUE))                                   \
    M(get, _NewEnum, (IUnknown** enumerator), id(DISPID_NEWENUM), hidden())                                   \
    /* The table's first dimension (not unknown) with these exponents, else a new unnamed dimension with */   \
    /* them, named by its base units ("m*s^-3"), Index -1. */                                                 \
    M(call, FromExponents,                                                                                    \
      (SHORT length, SHORT time, SHORT mass, SHORT current, SHORT temperature, SHORT amount,                   \
       SHORT luminousIntensity, SHORT planeAngle, SHORT solidAngle, SHORT other, IDimension** dimension))     \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IDimensions, NVDL_IDIMENSIONS_MEMBERS);

// The service. It starts with the units file shipped with the library and reads another one when
// told through Load; a file that cannot be read leaves the table as it was.
#define NVDL_IUNITSERVICE_MEMBERS(M) \
    M(get, Dimensions, (IDimensions** dimensions))                                                    \
    /* Every unit of every dimension, in table order. */                                              \
    M(get, Units, (IUnits** units))                                                                   \
    M(call, Load, (BSTR file))                                                                        \
    /* The file the table was read from; empty when not even the shipped file could be read. */       \
    M(get, FileName, (BSTR* file))                                                                    \
    /* A unit of any dimension by name: the first exact match in table order, else the first match */ \
    /* ignoring case; E_INVALIDARG when the table has none. */                                        \
    M(call, FindUnit, (BSTR name, IUnit** unit))                                                      \
    /* A new dimension object to be built through its four building properties. */                    \
    M(call, NewDimension, (IDimension** dimension))                                                   \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IUnitService, NVDL_IUNITSERVICE_MEMBERS);
