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
#include "nvdl/Dispatch.h"

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
struct IUnits : IDispatch {
    static constexpr const IID& iid = IID_IUnits;

    virtual HRESULT get_Count(LONG* count) = 0;
    virtual HRESULT get_Item(VARIANT index, IUnit** unit) = 0;
    virtual HRESULT get__NewEnum(IUnknown** enumerator) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IUnits() = default;
};

struct IUnit : IDispatch {
    static constexpr const IID& iid = IID_IUnit;

    virtual HRESULT get_Name(BSTR* name) = 0;
    virtual HRESULT get_Factor(double* factor) = 0;
    virtual HRESULT get_Offset(double* offset) = 0;
    virtual HRESULT get_Dimension(IDimension** dimension) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IUnit() = default;
};

struct IDimension : IDispatch {
    static constexpr const IID& iid = IID_IDimension;

    virtual HRESULT get_Name(BSTR* name) = 0;
    // The position in the table (0-based), or -1 for a dimension the table does not hold.
    virtual HRESULT get_Index(LONG* index) = 0;
    // One base exponent by its position 1 to 10; another position gives E_INVALIDARG.
    virtual HRESULT get_BaseExponent(SHORT position, SHORT* exponent) = 0;
    virtual HRESULT get_IsUnknown(SHORT* unknown) = 0;
    virtual HRESULT get_IsValid(SHORT* valid) = 0;
    // The unit values of this dimension are given in unless told otherwise; null when it has none.
    virtual HRESULT get_DefaultUnit(IUnit** unit) = 0;
    virtual HRESULT get_Units(IUnits** units) = 0;
    // The four building properties (see the head of this file).
    virtual HRESULT get_Dimension(BSTR* base) = 0;
    virtual HRESULT put_Dimension(VARIANT base) = 0;
    virtual HRESULT get_Exponent(SHORT* exponent) = 0;
    virtual HRESULT put_Exponent(SHORT exponent) = 0;
    virtual HRESULT get_Unit(BSTR* unit) = 0;
    virtual HRESULT put_Unit(BSTR unit) = 0;
    virtual HRESULT get_Factor(double* factor) = 0;
    virtual HRESULT put_Factor(double factor) = 0;
    // The dimension whose square this one is: each exponent halved by integer division. An unknown
    // dimension gives itself.
    virtual HRESULT SquareRoot(IDimension** root) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IDimension() = default;
};

// The table's dimensions. Item by position (0-based, the dimension's Index) or by name ignoring case.
struct IDimensions : IDispatch {
    static constexpr const IID& iid = IID_IDimensions;

    virtual HRESULT get_Count(LONG* count) = 0;
    virtual HRESULT get_Item(VARIANT index, IDimension** dimension) = 0;
    virtual HRESULT get__NewEnum(IUnknown** enumerator) = 0;
    // The table's first dimension (not unknown) with these exponents, else a new unnamed dimension
    // with them, named by its base units ("m*s^-3"), Index -1.
    virtual HRESULT FromExponents(SHORT length, SHORT time, SHORT mass, SHORT current, SHORT temperature,
                                  SHORT amount, SHORT luminousIntensity, SHORT planeAngle, SHORT solidAngle,
                                  SHORT other, IDimension** dimension) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IDimensions() = default;
};

// The service. It starts with the units file shipped with the library and reads another one when
// told through Load; a file that cannot be read leaves the table as it was.
struct IUnitService : IDispatch {
    static constexpr const IID& iid = IID_IUnitService;

    virtual HRESULT get_Dimensions(IDimensions** dimensions) = 0;
    // Every unit of every dimension, in table order.
    virtual HRESULT get_Units(IUnits** units) = 0;
    virtual HRESULT Load(BSTR file) = 0;
    // The file the table was read from; empty when not even the shipped file could be read.
    virtual HRESULT get_FileName(BSTR* file) = 0;
    // A unit of any dimension by name: the first exact match in table order, else the first match
    // ignoring case; E_INVALIDARG when the table has none.
    virtual HRESULT FindUnit(BSTR name, IUnit** unit) = 0;
    // A new dimension object to be built through its four building properties.
    virtual HRESULT NewDimension(IDimension** dimension) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IUnitService() = default;
};
